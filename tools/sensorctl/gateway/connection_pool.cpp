#include "connection_pool.h"

namespace sensorctl::gateway {

namespace {

thread_local bool t_turnedAway = false;

} // namespace

ConnectionPool::ConnectionPool(size_t limit) : limit_(limit == 0 ? 1 : limit) {}

ConnectionPool::~ConnectionPool() {
    shutdown();
}

bool ConnectionPool::TurnedAway() {
    return t_turnedAway;
}

void ConnectionPool::enqueue(std::function<void()> connection) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (admitted_ >= limit_) {
        overflow_.push_back(std::move(connection));
        if (!overflowThread_.joinable()) overflowThread_ = std::thread([this] { turnAway(); });
    } else {
        ++admitted_;
        waiting_.push_back(std::move(connection));
        // Every admitted connection gets a thread at once: a kept-alive
        // connection holds its thread, and must not make a new one wait.
        if (idle_ < waiting_.size()) threads_.emplace_back([this] { serve(); });
    }
    ready_.notify_all();
}

void ConnectionPool::serve() {
    std::unique_lock<std::mutex> lock(mutex_);
    for (;;) {
        ++idle_;
        ready_.wait(lock, [this] { return stopping_ || !waiting_.empty(); });
        --idle_;
        if (waiting_.empty()) return; // stopping, nothing left
        std::function<void()> connection = std::move(waiting_.front());
        waiting_.pop_front();
        lock.unlock();
        connection(); // reads, answers and closes the connection
        lock.lock();
        --admitted_;
    }
}

void ConnectionPool::turnAway() {
    t_turnedAway = true;
    std::unique_lock<std::mutex> lock(mutex_);
    for (;;) {
        ready_.wait(lock, [this] { return stopping_ || !overflow_.empty(); });
        if (overflow_.empty()) return;
        std::function<void()> connection = std::move(overflow_.front());
        overflow_.pop_front();
        lock.unlock();
        connection();
        lock.lock();
    }
}

void ConnectionPool::shutdown() {
    std::vector<std::thread> threads;
    std::thread overflow;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        stopping_ = true;
        threads.swap(threads_);
        overflow.swap(overflowThread_);
    }
    ready_.notify_all();
    for (std::thread& thread : threads)
        thread.join();
    if (overflow.joinable()) overflow.join();
}

} // namespace sensorctl::gateway

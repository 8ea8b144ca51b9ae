#include "sensor_queues.h"

#include <chrono>

namespace sensorctl::gateway {

namespace {

// How long the thread that holds a line may keep it, its own request
// included, before it hands the line on and answers its own client: about a
// hundred simulated requests; a request of a real instrument takes longer
// alone, so its line is handed on after each request.
constexpr std::chrono::microseconds kHoldLineFor{1000};

} // namespace

void SensorQueues::run(std::string const& sensor, std::function<void()> const& work) {
    Request request(work);
    std::unique_lock<std::mutex> lock(mutex_);
    auto const [line, idle] = lines_.try_emplace(sensor);
    if (!idle) {
        line->second.waiting.push_back(&request);
        request.woken.wait(lock, [&] { return request.state != Request::State::Waiting; });
    }
    if (request.state != Request::State::Done) {
        lock.unlock();
        auto const until = std::chrono::steady_clock::now() + kHoldLineFor;
        Execute(request);
        lock.lock();
        serveLine(sensor, until, lock);
    }
    lock.unlock();
    if (request.failure) std::rethrow_exception(request.failure);
}

size_t SensorQueues::pending(std::string const& sensor) {
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = lines_.find(sensor);
    return it == lines_.end() ? 0 : 1 + it->second.waiting.size();
}

void SensorQueues::Execute(Request& request) {
    try {
        request.work();
    } catch (...) {
        request.failure = std::current_exception();
    }
}

void SensorQueues::serveLine(std::string const& sensor, std::chrono::steady_clock::time_point until,
                             std::unique_lock<std::mutex>& lock) {
    Line& line = lines_.find(sensor)->second; // stays put while the line exists, and only its holder ends it
    while (!line.waiting.empty()) {
        Request* next = line.waiting.front();
        line.waiting.pop_front();
        if (std::chrono::steady_clock::now() >= until) {
            next->state = Request::State::HoldsLine;
            next->woken.notify_one(); // under the lock: the waiter cannot return and go before it
            return;
        }
        lock.unlock();
        Execute(*next);
        lock.lock();
        next->state = Request::State::Done;
        next->woken.notify_one();
    }
    lines_.erase(sensor);
}

} // namespace sensorctl::gateway

// The server's connections: one thread each (kept for reuse), up to a limit.
// Connections over the limit are served one after the other by a thread of
// their own, which only answers 503, so a flood of connections cannot take
// the threads that serve the others.
#pragma once

#include <httplib.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace sensorctl::gateway {

class ConnectionPool : public httplib::TaskQueue {
public:
    explicit ConnectionPool(size_t limit);
    ~ConnectionPool() override;

    void enqueue(std::function<void()> connection) override;
    void shutdown() override; // serves what was accepted, then joins

    // True on the thread that serves the connections over the limit.
    static bool TurnedAway();

private:
    void serve();
    void turnAway();

    size_t const limit_;
    std::mutex mutex_;
    std::condition_variable ready_;
    std::deque<std::function<void()>> waiting_;
    std::deque<std::function<void()>> overflow_;
    std::vector<std::thread> threads_;
    std::thread overflowThread_;
    size_t idle_ = 0;
    size_t admitted_ = 0; // waiting or being served
    bool stopping_ = false;
};

} // namespace sensorctl::gateway

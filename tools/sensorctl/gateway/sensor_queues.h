// Requests for one sensor are served in the order they arrived, one at a
// time; requests for different sensors never wait for each other.
//
// A request whose sensor is idle runs on its own thread. Requests that arrive
// meanwhile wait in the sensor's line, and the thread that holds the line
// runs them too, in order, for a short while (unless its own request alone
// took that long) before handing the line to the next waiting thread: waking
// a thread for each request would leave the sensor idle for a scheduling
// delay between requests, which is what bounds one sensor's throughput under
// load.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <string>
#include <unordered_map>

namespace sensorctl::gateway {

class SensorQueues {
public:
    // Runs `work` once every earlier request of `sensor` is done, on this
    // thread or on the one that holds the line, and returns when it has run.
    // What `work` throws is thrown here.
    void run(std::string const& sensor, std::function<void()> const& work);

    // Requests of the sensor running or waiting.
    size_t pending(std::string const& sensor);

private:
    struct Request {
        explicit Request(std::function<void()> const& work) : work(work) {}
        std::function<void()> const& work;
        std::exception_ptr failure;
        std::condition_variable woken;
        enum class State { Waiting, Done, HoldsLine } state = State::Waiting;
    };
    struct Line {
        std::deque<Request*> waiting; // behind the request that runs, in arrival order
    };

    static void Execute(Request& request);
    // Runs the requests waiting behind this thread's until `until`, then
    // hands the line to the next waiting thread, or ends it.
    void serveLine(std::string const& sensor, std::chrono::steady_clock::time_point until,
                   std::unique_lock<std::mutex>& lock);

    std::mutex mutex_;
    std::unordered_map<std::string, Line> lines_; // a sensor has a line while one of its requests runs
};

} // namespace sensorctl::gateway

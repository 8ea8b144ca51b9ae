// Requests for one sensor are served in the order they arrived: each waits
// in the sensor's line until every earlier request of that sensor is done,
// and only the next in line is woken. Requests for different sensors never
// wait for each other.
#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <unordered_map>

namespace sensorctl::gateway {

class SensorQueues {
public:
    // Held while the request runs; the next request of the sensor starts
    // when it is destroyed.
    class Turn {
    public:
        Turn(Turn&& other) noexcept : queues_(other.queues_), sensor_(std::move(other.sensor_)) {
            other.queues_ = nullptr;
        }
        Turn(Turn const&) = delete;
        Turn& operator=(Turn const&) = delete;
        Turn& operator=(Turn&&) = delete;
        ~Turn() {
            if (queues_ != nullptr) queues_->done(sensor_);
        }

    private:
        friend class SensorQueues;
        Turn(SensorQueues* queues, std::string sensor) : queues_(queues), sensor_(std::move(sensor)) {}

        SensorQueues* queues_;
        std::string sensor_;
    };

    Turn wait(std::string const& sensor);

    // Requests of the sensor running or waiting.
    size_t pending(std::string const& sensor);

private:
    struct Waiter {
        std::condition_variable woken;
        bool granted = false;
    };
    struct Line {
        std::deque<Waiter*> waiting; // behind the request that runs, in arrival order
    };

    void done(std::string const& sensor);

    std::mutex mutex_;
    std::unordered_map<std::string, Line> lines_; // a sensor has a line while one of its requests runs
};

} // namespace sensorctl::gateway

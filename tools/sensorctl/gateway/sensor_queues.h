// Requests for one sensor are served in the order they arrived: each takes a
// ticket and waits until every earlier ticket of that sensor is done.
// Requests for different sensors never wait for each other.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

namespace sensorctl::gateway {

class SensorQueues {
    struct Line;

public:
    // Held while the request runs; the next request of the sensor starts
    // when it is destroyed.
    class Turn {
    public:
        Turn(Turn&& other) noexcept;
        Turn(Turn const&) = delete;
        Turn& operator=(Turn const&) = delete;
        Turn& operator=(Turn&&) = delete;
        ~Turn();

    private:
        friend class SensorQueues;
        Turn(SensorQueues* queues, std::string sensor, Line* line)
            : queues_(queues), sensor_(std::move(sensor)), line_(line) {}

        SensorQueues* queues_;
        std::string sensor_;
        Line* line_;
    };

    Turn wait(std::string const& sensor);

    // Requests of the sensor running or waiting.
    size_t pending(std::string const& sensor);

private:
    struct Line {
        uint64_t next = 0;    // the ticket the next arrival takes
        uint64_t serving = 0; // the ticket whose turn it is
        size_t holders = 0;   // tickets taken and not yet done
        std::condition_variable turn;
    };

    void done(std::string const& sensor, Line* line);

    std::mutex mutex_;
    std::unordered_map<std::string, std::unique_ptr<Line>> lines_;
};

} // namespace sensorctl::gateway

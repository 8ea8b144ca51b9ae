// The server-sent event stream of /events. Publishing never waits for a
// client: each subscriber has a bounded queue, and what does not fit is
// dropped and counted (the subscriber is told how many it missed).
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace sensorctl::gateway {

class EventSubscriber {
public:
    explicit EventSubscriber(size_t capacity) : capacity_(capacity) {}

    // Waits up to `timeout` for events and appends them, in the stream's
    // text form, to *text. False once the hub is closed and nothing is left.
    bool take(std::string* text, std::chrono::milliseconds timeout);

    void push(std::string const& event);
    void close();
    uint64_t dropped() const;

private:
    size_t const capacity_;
    mutable std::mutex mutex_;
    std::condition_variable ready_;
    std::deque<std::string> queue_;
    uint64_t dropped_ = 0;
    uint64_t droppedReported_ = 0;
    bool closed_ = false;
};

class EventHub {
public:
    explicit EventHub(size_t queueCapacity = 1024) : capacity_(queueCapacity) {}

    std::shared_ptr<EventSubscriber> subscribe();
    void unsubscribe(std::shared_ptr<EventSubscriber> const& subscriber);

    // Cheap to ask before building an event nobody would read.
    bool hasSubscribers() const { return count_.load(std::memory_order_relaxed) != 0; }

    // `data` is one line of JSON.
    void publish(char const* event, std::string const& data);
    void close(); // the server stops: every stream ends

private:
    size_t const capacity_;
    std::mutex mutex_;
    std::vector<std::shared_ptr<EventSubscriber>> subscribers_;
    std::atomic<size_t> count_{0};
    bool closed_ = false;
};

} // namespace sensorctl::gateway

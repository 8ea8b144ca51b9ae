#include "event_hub.h"

#include <algorithm>

namespace sensorctl::gateway {

bool EventSubscriber::take(std::string* text, std::chrono::milliseconds timeout) {
    std::unique_lock<std::mutex> lock(mutex_);
    ready_.wait_for(lock, timeout, [this] { return closed_ || !queue_.empty(); });
    if (dropped_ != droppedReported_) {
        *text += "event: dropped\ndata: {\"count\":" + std::to_string(dropped_ - droppedReported_) + "}\n\n";
        droppedReported_ = dropped_;
    }
    for (std::string const& event : queue_)
        *text += event;
    queue_.clear();
    return !(closed_ && text->empty());
}

void EventSubscriber::push(std::string const& event) {
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (queue_.size() >= capacity_) {
            ++dropped_;
            return;
        }
        queue_.push_back(event);
    }
    ready_.notify_one();
}

void EventSubscriber::close() {
    {
        std::lock_guard<std::mutex> lock(mutex_);
        closed_ = true;
    }
    ready_.notify_one();
}

uint64_t EventSubscriber::dropped() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return dropped_;
}

std::shared_ptr<EventSubscriber> EventHub::subscribe() {
    auto subscriber = std::make_shared<EventSubscriber>(capacity_);
    std::lock_guard<std::mutex> lock(mutex_);
    if (closed_) subscriber->close();
    subscribers_.push_back(subscriber);
    count_.store(subscribers_.size(), std::memory_order_relaxed);
    return subscriber;
}

void EventHub::unsubscribe(std::shared_ptr<EventSubscriber> const& subscriber) {
    std::lock_guard<std::mutex> lock(mutex_);
    subscribers_.erase(std::remove(subscribers_.begin(), subscribers_.end(), subscriber), subscribers_.end());
    count_.store(subscribers_.size(), std::memory_order_relaxed);
}

void EventHub::publish(char const* event, std::string const& data) {
    std::string const text = std::string("event: ") + event + "\ndata: " + data + "\n\n";
    std::lock_guard<std::mutex> lock(mutex_);
    for (auto const& subscriber : subscribers_)
        subscriber->push(text);
}

void EventHub::close() {
    std::lock_guard<std::mutex> lock(mutex_);
    closed_ = true;
    for (auto const& subscriber : subscribers_)
        subscriber->close();
}

} // namespace sensorctl::gateway

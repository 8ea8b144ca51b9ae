#include "sensor_queues.h"

namespace sensorctl::gateway {

SensorQueues::Turn SensorQueues::wait(std::string const& sensor) {
    std::unique_lock<std::mutex> lock(mutex_);
    auto [line, idle] = lines_.try_emplace(sensor);
    if (!idle) {
        Waiter waiter;
        line->second.waiting.push_back(&waiter);
        waiter.woken.wait(lock, [&] { return waiter.granted; });
    }
    return Turn(this, sensor);
}

size_t SensorQueues::pending(std::string const& sensor) {
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = lines_.find(sensor);
    return it == lines_.end() ? 0 : 1 + it->second.waiting.size();
}

void SensorQueues::done(std::string const& sensor) {
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = lines_.find(sensor);
    if (it->second.waiting.empty()) {
        lines_.erase(it);
        return;
    }
    Waiter* next = it->second.waiting.front();
    it->second.waiting.pop_front();
    next->granted = true;
    next->woken.notify_one();
}

} // namespace sensorctl::gateway

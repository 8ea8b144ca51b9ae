#include "sensor_queues.h"

namespace sensorctl::gateway {

SensorQueues::Turn::Turn(Turn&& other) noexcept
    : queues_(other.queues_), sensor_(std::move(other.sensor_)), line_(other.line_) {
    other.line_ = nullptr;
}

SensorQueues::Turn::~Turn() {
    if (line_ != nullptr) queues_->done(sensor_, line_);
}

SensorQueues::Turn SensorQueues::wait(std::string const& sensor) {
    std::unique_lock<std::mutex> lock(mutex_);
    std::unique_ptr<Line>& slot = lines_[sensor];
    if (!slot) slot = std::make_unique<Line>();
    Line* line = slot.get();
    uint64_t const ticket = line->next++;
    ++line->holders;
    line->turn.wait(lock, [&] { return line->serving == ticket; });
    return Turn(this, sensor, line);
}

size_t SensorQueues::pending(std::string const& sensor) {
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = lines_.find(sensor);
    return it == lines_.end() ? 0 : it->second->holders;
}

void SensorQueues::done(std::string const& sensor, Line* line) {
    std::lock_guard<std::mutex> lock(mutex_);
    ++line->serving;
    if (--line->holders == 0)
        lines_.erase(sensor); // nobody waits: the line goes, and a later request starts a new one
    else
        line->turn.notify_all();
}

} // namespace sensorctl::gateway

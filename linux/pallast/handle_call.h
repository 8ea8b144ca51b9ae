// The frame of every function that takes a sensor handle.
#pragma once

#include "open_sensors.h"

namespace pallast {

// Runs call(sensor) -> code under the sensor's mutex. A closed or unknown
// handle, and one whose sensor has left the bus, answer 0x80000005.
template <typename Call> DvError withOpenSensor(void* handle, Call call) {
    std::shared_ptr<OpenSensor> sensor = findSensor(handle);
    if (!sensor || sensor->gone) return result(code::kNotRegistered);
    std::lock_guard<std::mutex> guard(sensor->device->mutex);
    if (sensor->gone) return result(code::kNotRegistered);
    return result(call(*sensor));
}

// What colord has no notion of: unsupported for an open handle.
inline DvError unsupportedFor(void* handle) {
    std::shared_ptr<OpenSensor> sensor = findSensor(handle);
    return result(!sensor || sensor->gone ? code::kNotRegistered : code::kUnsupported);
}

} // namespace pallast

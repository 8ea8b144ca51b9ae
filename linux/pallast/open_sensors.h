// The sensors this process has open, by handle.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "ccmx.h"
#include "colord_sensors.h"

namespace pallast {

// One colord sensor, shared by every handle open on it. Its mutex serialises
// this process's calls to the sensor: colord's lock is advisory, and a second
// Lock from the same connection would not keep two readings apart.
struct Device {
    std::mutex mutex;
    bool needsCalibration = false; // colord answered Required...Calibrate
};

// State of one handle; read and written under device->mutex.
struct OpenSensor {
    SensorInfo info;
    std::string name; // kept for MDGetName's pointer
    std::shared_ptr<Device> device;
    int32_t mode = -1;
    int32_t observerKey = 0;
    std::vector<Correction> corrections; // index i + 1 of the extra corrections
    uint32_t correctionIndex = 0;        // 0: no correction
    std::atomic<bool> gone{false};       // the sensor left the bus: the handle answers as closed
};

// Registers a freshly opened sensor and returns its handle. Handles are
// tokens that are never reused, so a stale handle cannot reach another sensor.
void* registerSensor(SensorInfo const& info);
// The sensor of a handle, or null when the handle is closed or unknown.
std::shared_ptr<OpenSensor> findSensor(void* handle);
bool unregisterSensor(void* handle);

} // namespace pallast

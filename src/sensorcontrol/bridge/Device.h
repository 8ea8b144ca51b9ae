// The per-sensor frame shared by every endpoint under /Sensors/<id>/...:
// resolve the id, get the HID handle of a built-in sensor, hold its monitor.
#pragma once

#include <string>

#include "sensorcontrol/MonitorLock.h"
#include "share/bridge.h"

namespace tovel {
namespace bridge {

// Appends "Sensors/<id>[/<resource>]" to *uri, then resolves the path
// parameter "id": 400 "URI is invalid." when empty, 404 "Not found." when no
// open sensor has it. Returns the measurement-device handle.
void* GetMDHandle(BridgeData const& data, std::string* uri, std::string const& resource);

// The HID handle of the monitor a sensor is built into; a sensor without one
// fails as the device error 0x80000000 with "Get HID handle.".
void* GetHIDHandle(void* device);

// A resolved built-in sensor: device handle, HID handle and its monitor's lock
// (taken by lock(), released when the frame goes out of scope).
class BuiltinSensor {
public:
    BuiltinSensor(BridgeData const& data, std::string* uri, std::string const& resource)
        : device(GetMDHandle(data, uri, resource)), hid(GetHIDHandle(device)), monitor(hid) {}
    void lock() { monitor.lock(); }

    void* const device;
    void* const hid;
    MonitorLock monitor;
};

} // namespace bridge
} // namespace tovel

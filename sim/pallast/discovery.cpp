// libpallast: enumeration, names, opening and closing of sensors.
#include "devices/pallast.h"
#include "world/world.h"

extern "C" {

int32_t MDEnumConnectedDevices(uint32_t index, MDDeviceID* deviceID, uint64_t* individualID) {
    sim::Call call("MDEnumConnectedDevices");
    call.num(index);
    uint32_t position = 0;
    for (sim::Device const& device : call.world().devices) {
        if (!device.usb) continue;
        if (position++ != index) continue;
        if (device.enumerationFails) return -1;
        if (deviceID != nullptr) *deviceID = device.deviceID;
        if (individualID != nullptr) *individualID = device.individualID;
        return 0;
    }
    return -1;
}

char const* MDGetNameFromDeviceID(MDDeviceID deviceID) {
    sim::Call call("MDGetNameFromDeviceID");
    call.num(deviceID);
    sim::World& world = call.world();
    for (sim::Device const& device : world.devices)
        if (device.deviceID == deviceID) return call.intern(device.name);
    for (sim::Monitor const& monitor : world.monitors)
        if (monitor.sensor.deviceID == deviceID) return call.intern(monitor.sensor.name);
    auto const model = world.modelNames.find(deviceID);
    return model != world.modelNames.end() ? call.intern(model->second) : nullptr;
}

DvError MDOpen(MDDeviceID deviceID, void** handle) {
    sim::Call call("MDOpen");
    call.num(deviceID);
    DvError r;
    if (call.injected(&r)) return r;
    if (handle == nullptr) return sim::result(sim::code::kInvalidArgument);
    for (sim::Device const& device : call.world().devices)
        if (device.deviceID == deviceID) {
            *handle = call.open(device);
            return sim::ok();
        }
    return sim::result(sim::code::kSensorConnection);
}

DvError MDOpenWithHIDHandle(void* hidHandle, void** handle) {
    sim::Call call("MDOpenWithHIDHandle");
    call.handle(hidHandle);
    DvError r;
    if (call.injected(&r)) return r;
    if (handle == nullptr) return sim::result(sim::code::kInvalidArgument);
    sim::Monitor* monitor = call.monitorByHid(hidHandle);
    if (monitor == nullptr) return sim::result(sim::code::kMonitorConnection);
    *handle = call.openBuiltin(*monitor);
    return sim::ok();
}

DvError MDOpenWithIndividualID(uint64_t individualID, void** handle) {
    sim::Call call("MDOpenWithIndividualID");
    call.unum(individualID);
    DvError r;
    if (call.injected(&r)) return r;
    if (handle == nullptr) return sim::result(sim::code::kInvalidArgument);
    for (sim::Device const& device : call.world().devices)
        if (device.individualID == individualID && individualID != 0) {
            *handle = call.open(device);
            return sim::ok();
        }
    return sim::result(sim::code::kSensorConnection);
}

DvError MDClose(void** handle) {
    sim::Call call("MDClose");
    if (handle != nullptr)
        call.handle(*handle);
    else
        call.null();
    DvError r;
    if (call.injected(&r)) return r;
    if (handle == nullptr) return sim::result(sim::code::kInvalidArgument);
    if (!call.close(*handle)) return sim::result(sim::code::kNotRegistered);
    *handle = nullptr;
    return sim::ok();
}

void* MDGetHIDHandle(void* handle) {
    sim::Call call("MDGetHIDHandle");
    call.handle(handle);
    sim::Monitor* monitor = call.monitorOfSensor(handle);
    return monitor != nullptr ? sim::hidPointer(monitor->hidHandle) : nullptr;
}

} // extern "C"

// libpallast: what a sensor is and what it can do.
#include "devices/pallast.h"
#include "world/world.h"

namespace {

// A yes/no question about an open sensor; false for a handle that is not open.
signed char ask(char const* function, void* handle, bool sim::Capabilities::*capability) {
    sim::Call call(function);
    call.handle(handle);
    sim::Device* device = call.device(handle);
    return device != nullptr && device->capabilities.*capability ? 1 : 0;
}

} // namespace

extern "C" {

MDDeviceID MDGetDeviceID(void* handle) {
    sim::Call call("MDGetDeviceID");
    call.handle(handle);
    sim::Device* device = call.device(handle);
    return device != nullptr ? device->deviceID : 0;
}

char const* MDGetName(void* handle) {
    sim::Call call("MDGetName");
    call.handle(handle);
    sim::Device* device = call.device(handle);
    return device != nullptr ? call.intern(device->name) : nullptr;
}

char const* MDGetSerialNumber(void* handle) {
    sim::Call call("MDGetSerialNumber");
    call.handle(handle);
    sim::Device* device = call.device(handle);
    return device != nullptr ? call.intern(device->serial) : nullptr;
}

signed char MDIsValidConnection(void* handle) {
    return ask("MDIsValidConnection", handle, &sim::Capabilities::validConnection);
}
signed char MDIsCalibrationNecessary(void* handle) {
    return ask("MDIsCalibrationNecessary", handle, &sim::Capabilities::needsCalibration);
}
signed char MDSupportsAmbient(void* handle) {
    return ask("MDSupportsAmbient", handle, &sim::Capabilities::ambient);
}
signed char MDSupportsReflectance(void* handle) {
    return ask("MDSupportsReflectance", handle, &sim::Capabilities::reflectance);
}
signed char MDHasArm(void* handle) {
    return ask("MDHasArm", handle, &sim::Capabilities::arm);
}
signed char MDHasMultipleSensorPosition(void* handle) {
    return ask("MDHasMultipleSensorPosition", handle, &sim::Capabilities::multiplePositions);
}
#ifndef SIM_PALLAST_LEGACY
signed char MDHasTargetMarker(void* handle) {
    return ask("MDHasTargetMarker", handle, &sim::Capabilities::targetMarker);
}
signed char MDHasExteriorLight(void* handle) {
    return ask("MDHasExteriorLight", handle, &sim::Capabilities::exteriorLight);
}
#endif

DvError MDSpectralRadianceFixedData(void* handle, int64_t* min, int64_t* max, int64_t* bandWidth,
                                    int64_t* count) {
    sim::Call call("MDSpectralRadianceFixedData");
    call.handle(handle);
    DvError r;
    sim::Device* device = sim::sensorOrResult(call, handle, &r);
    if (device == nullptr) return r;
    if (min != nullptr) *min = device->spectrum.min;
    if (max != nullptr) *max = device->spectrum.max;
    if (bandWidth != nullptr) *bandWidth = device->spectrum.bandWidth;
    if (count != nullptr) *count = device->spectrum.count;
    return sim::ok();
}

} // extern "C"

// libpallast: arm, position, exterior light, target marker, parameter
// description, IFS correction parameters and device options. A device without
// the capability answers "Unsupported.".
#include <cstring>
#include <string>

#include "devices/pallast.h"
#include "world/world.h"

namespace {

// The sensor for a setting that needs a capability.
sim::Device* capable(sim::Call& call, void* handle, bool sim::Capabilities::*capability, DvError* out) {
    sim::Device* device = sim::sensorOrResult(call, handle, out);
    if (device != nullptr && !(device->capabilities.*capability)) {
        *out = sim::result(sim::code::kUnsupported);
        return nullptr;
    }
    return device;
}

} // namespace

extern "C" {

DvError MDTakeOutArm(void* handle) {
    sim::Call call("MDTakeOutArm");
    call.handle(handle);
    DvError r;
    sim::Device* device = capable(call, handle, &sim::Capabilities::arm, &r);
    if (device == nullptr) return r;
    device->armOut = true;
    return sim::ok();
}

DvError MDTakeInArm(void* handle) {
    sim::Call call("MDTakeInArm");
    call.handle(handle);
    DvError r;
    sim::Device* device = capable(call, handle, &sim::Capabilities::arm, &r);
    if (device == nullptr) return r;
    device->armOut = false;
    return sim::ok();
}

DvError MDGetSensorPosition(void* handle, int32_t* position) {
    sim::Call call("MDGetSensorPosition");
    call.handle(handle);
    DvError r;
    sim::Device* device = sim::sensorOrResult(call, handle, &r);
    if (device == nullptr) return r;
    if (position == nullptr) return sim::result(sim::code::kInvalidBuffer);
    *position = device->position;
    return sim::ok();
}

#ifndef SIM_PALLAST_LEGACY

DvError MDGetExteriorLightingState(void* handle, MDExteriorLightingState* state) {
    sim::Call call("MDGetExteriorLightingState");
    call.handle(handle);
    DvError r;
    sim::Device* device = capable(call, handle, &sim::Capabilities::exteriorLight, &r);
    if (device == nullptr) return r;
    if (state == nullptr) return sim::result(sim::code::kInvalidBuffer);
    *state = device->exteriorLightingState;
    return sim::ok();
}

DvError MDSetExteriorLightingState(void* handle, MDExteriorLightingState state) {
    sim::Call call("MDSetExteriorLightingState");
    call.handle(handle).num(state);
    DvError r;
    sim::Device* device = capable(call, handle, &sim::Capabilities::exteriorLight, &r);
    if (device == nullptr) return r;
    device->exteriorLightingState = state;
    return sim::ok();
}

DvError MDGetParameterDescription(void* handle, MDParameterDescription* description) {
    sim::Call call("MDGetParameterDescription");
    call.handle(handle);
    DvError r;
    sim::Device* device = sim::sensorOrResult(call, handle, &r);
    if (device == nullptr) return r;
    if (description == nullptr) return sim::result(sim::code::kInvalidBuffer);
    std::memset(description, 0, sizeof *description);
    if (!device->parameterDescription) return sim::ok();
    sim::ParameterDescription const& d = *device->parameterDescription;
    description->year = d.date.year;
    description->month = d.date.month;
    description->day = d.date.day;
    description->hour = d.date.hour;
    description->minute = d.date.minute;
    description->referenceDeviceID = d.referenceDeviceID;
    std::memset(description->referenceSerial, d.serialPadding, sizeof description->referenceSerial);
    size_t const n = d.referenceSerial.size() < 32 ? d.referenceSerial.size() : 32;
    std::memcpy(description->referenceSerial, d.referenceSerial.data(), n);
    return sim::ok();
}

DvError MDSetParameterDescription(void* handle, MDParameterDescription description) {
    sim::Call call("MDSetParameterDescription");
    call.handle(handle).record(description);
    DvError r;
    sim::Device* device = sim::sensorOrResult(call, handle, &r);
    if (device == nullptr) return r;
    sim::ParameterDescription d;
    d.date = CSSG2_Date{description.year, description.month, description.day, description.hour,
                        description.minute};
    d.referenceDeviceID = description.referenceDeviceID;
    d.referenceSerial = sim::fieldText(description.referenceSerial, sizeof description.referenceSerial);
    device->parameterDescription = d;
    return sim::ok();
}

DvError MDGetTargetMarker(void* handle, MDTargetMarkerStatus* status) {
    sim::Call call("MDGetTargetMarker");
    call.handle(handle);
    DvError r;
    sim::Device* device = capable(call, handle, &sim::Capabilities::targetMarker, &r);
    if (device == nullptr) return r;
    if (status == nullptr) return sim::result(sim::code::kInvalidBuffer);
    *status = device->targetMarker;
    return sim::ok();
}

DvError MDSetTargetMarker(void* handle, MDTargetMarkerStatus status) {
    sim::Call call("MDSetTargetMarker");
    call.handle(handle).num(status);
    DvError r;
    sim::Device* device = capable(call, handle, &sim::Capabilities::targetMarker, &r);
    if (device == nullptr) return r;
    device->targetMarker = status;
    return sim::ok();
}

DvError MDCalcIFSTempCorrectParam(void* handle) {
    sim::Call call("MDCalcIFSTempCorrectParam");
    call.handle(handle);
    DvError r;
    sim::Device* device = capable(call, handle, &sim::Capabilities::ifs, &r);
    if (device == nullptr) return r;
    device->ifsTempCorrectParamCalculated = true;
    return sim::ok();
}

DvError MDGetIFSBrightCorrectParamUpdateEnabled(void* handle, signed char* enabled) {
    sim::Call call("MDGetIFSBrightCorrectParamUpdateEnabled");
    call.handle(handle);
    DvError r;
    sim::Device* device = capable(call, handle, &sim::Capabilities::ifs, &r);
    if (device == nullptr) return r;
    if (enabled == nullptr) return sim::result(sim::code::kInvalidBuffer);
    *enabled = device->ifsBrightCorrectParamUpdateEnabled ? 1 : 0;
    return sim::ok();
}

DvError MDSetIFSBrightCorrectParamUpdateEnabled(void* handle, signed char enabled) {
    sim::Call call("MDSetIFSBrightCorrectParamUpdateEnabled");
    call.handle(handle).num(enabled);
    DvError r;
    sim::Device* device = capable(call, handle, &sim::Capabilities::ifs, &r);
    if (device == nullptr) return r;
    device->ifsBrightCorrectParamUpdateEnabled = enabled != 0;
    return sim::ok();
}

// Options exist per device (the scenario lists them); others are "Unsupported.".
DvError MDGetDeviceOptionValue(void* handle, char const* option, int64_t* value) {
    sim::Call call("MDGetDeviceOptionValue");
    call.handle(handle).text(option);
    DvError r;
    sim::Device* device = sim::sensorOrResult(call, handle, &r);
    if (device == nullptr) return r;
    if (option == nullptr || value == nullptr) return sim::result(sim::code::kInvalidArgument);
    auto const found = device->options.find(option);
    if (found == device->options.end()) return sim::result(sim::code::kUnsupported);
    *value = found->second;
    return sim::ok();
}

DvError MDSetDeviceOptionValue(void* handle, char const* option, int64_t value) {
    sim::Call call("MDSetDeviceOptionValue");
    call.handle(handle).text(option).num(value);
    DvError r;
    sim::Device* device = sim::sensorOrResult(call, handle, &r);
    if (device == nullptr) return r;
    if (option == nullptr) return sim::result(sim::code::kInvalidArgument);
    auto const found = device->options.find(option);
    if (found == device->options.end()) return sim::result(sim::code::kUnsupported);
    found->second = value;
    return sim::ok();
}

#endif // SIM_PALLAST_LEGACY

} // extern "C"

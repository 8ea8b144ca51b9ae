// libpallast: what colord has no notion of. Every function answers for an
// open handle with 0x80000007 (unsupported), or with the empty answer of an
// enumeration, never with invented data.
#include "devices/pallast.h"
#include "handle_call.h"

using namespace pallast;

extern "C" {

DvError MDTakeOutArm(void* handle) {
    return unsupportedFor(handle);
}

DvError MDTakeInArm(void* handle) {
    return unsupportedFor(handle);
}

DvError MDGetSensorPosition(void* handle, int32_t*) {
    return unsupportedFor(handle);
}

DvError MDGetExteriorLightingState(void* handle, MDExteriorLightingState*) {
    return unsupportedFor(handle);
}

DvError MDSetExteriorLightingState(void* handle, MDExteriorLightingState) {
    return unsupportedFor(handle);
}

DvError MDGetParameterDescription(void* handle, MDParameterDescription*) {
    return unsupportedFor(handle);
}

DvError MDSetParameterDescription(void* handle, MDParameterDescription) {
    return unsupportedFor(handle);
}

DvError MDGetTargetMarker(void* handle, MDTargetMarkerStatus*) {
    return unsupportedFor(handle);
}

DvError MDSetTargetMarker(void* handle, MDTargetMarkerStatus) {
    return unsupportedFor(handle);
}

DvError MDCalcIFSTempCorrectParam(void* handle) {
    return unsupportedFor(handle);
}

DvError MDGetIFSBrightCorrectParamUpdateEnabled(void* handle, signed char*) {
    return unsupportedFor(handle);
}

DvError MDSetIFSBrightCorrectParamUpdateEnabled(void* handle, signed char) {
    return unsupportedFor(handle);
}

DvError MDGetDeviceOptionValue(void* handle, char const*, int64_t*) {
    return unsupportedFor(handle);
}

DvError MDSetDeviceOptionValue(void* handle, char const*, int64_t) {
    return unsupportedFor(handle);
}

// Correlation corrections and matrices live in the maker's sensors; colord's
// have none, so the lists are empty (a non-zero code ends an enumeration).
DvError MDEnumCorrelationCorrection(void* handle, uint64_t, int32_t*, char[33], char[33], char[17],
                                    uint64_t*) {
    std::shared_ptr<OpenSensor> sensor = findSensor(handle);
    return result(sensor ? code::kNoMoreData : code::kNotRegistered);
}

DvError MDApplyCorrelationCorrection(void* handle, uint64_t) {
    return unsupportedFor(handle);
}

DvError MDApplyCorrelationCorrectionWithRecalcLuminanceLevelCorrection(void* handle, uint64_t, colour) {
    return unsupportedFor(handle);
}

DvError MDClear9PointsCorrelationCorrection(void* handle) {
    return unsupportedFor(handle);
}

DvError MDReleaseCorrelationCorrection(void* handle) {
    return unsupportedFor(handle);
}

DvError MDEnumCorrelationMatrix(void* handle, char const*, uint16_t, uint64_t, MDDeviceID*, char[33],
                                uint64_t*) {
    std::shared_ptr<OpenSensor> sensor = findSensor(handle);
    return result(sensor ? code::kNoMoreData : code::kNotRegistered);
}

DvError MDApplyCorrelationMatrix(void* handle, uint64_t) {
    return unsupportedFor(handle);
}

DvError MDReleaseCorrelationMatrix(void* handle) {
    return unsupportedFor(handle);
}

} // extern "C"

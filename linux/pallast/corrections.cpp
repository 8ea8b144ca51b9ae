// libpallast: the maker's corrections (none under colord) and the extra
// corrections from CCMX files.
#include <cstring>

#include "devices/pallast.h"
#include "handle_call.h"

using namespace pallast;

namespace {

char const* const kNoCorrection = "no correction";

} // namespace

extern "C" {

DvError MDApplyEmissionCorrection(void* handle, int32_t, char const*, uint16_t) {
    return unsupportedFor(handle);
}

DvError MDApplyPaperWhiteCorrection(void* handle, int32_t) {
    return unsupportedFor(handle);
}

DvError MDApply10DegCorrectionFor2DegCorrelatedMeasurement(void* handle) {
    return unsupportedFor(handle);
}

DvError MDApplyPlainCorrectionFor2DegCorrelatedMeasurement(void* handle) {
    return unsupportedFor(handle);
}

DvError MDApplyPlainCorrection(void* handle) {
    return unsupportedFor(handle);
}

DvError MDReleaseCorrection(void* handle) {
    return unsupportedFor(handle);
}

uint32_t MDGetExCorrectionCount(void* handle) {
    std::shared_ptr<OpenSensor> sensor = findSensor(handle);
    if (!sensor) return 0;
    std::lock_guard<std::mutex> guard(sensor->device->mutex);
    return static_cast<uint32_t>(sensor->corrections.size() + 1);
}

DvError MDGetExCorrectionName(void* handle, uint32_t index, char* buffer, uint32_t* size) {
    return withOpenSensor(handle, [&](OpenSensor& sensor) {
        if (size == nullptr) return code::kInvalidArgument;
        if (index > sensor.corrections.size()) return code::kOutOfRange;
        std::string const& name =
            index == 0 ? std::string(kNoCorrection) : sensor.corrections[index - 1].name;
        uint32_t const needed = static_cast<uint32_t>(name.size() + 1);
        if (buffer == nullptr) {
            *size = needed;
            return code::kOK;
        }
        if (*size < needed) return code::kInvalidBufferSize;
        std::memcpy(buffer, name.c_str(), needed);
        *size = needed;
        return code::kOK;
    });
}

DvError MDGetExCorrectionIndex(void* handle, uint32_t* index) {
    return withOpenSensor(handle, [&](OpenSensor& sensor) {
        if (index == nullptr) return code::kInvalidBuffer;
        *index = sensor.correctionIndex;
        return code::kOK;
    });
}

DvError MDSetExCorrectionIndex(void* handle, uint32_t index) {
    return withOpenSensor(handle, [&](OpenSensor& sensor) {
        if (index > sensor.corrections.size()) return code::kOutOfRange;
        sensor.correctionIndex = index;
        return code::kOK;
    });
}

} // extern "C"

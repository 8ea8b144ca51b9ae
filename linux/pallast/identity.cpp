// libpallast: identity and capabilities of an open sensor, as colord reports them.
#include <cmath>

#include "devices/pallast.h"
#include "handle_call.h"
#include "modes.h"
#include "readings.h"

using namespace pallast;

namespace {

// A yes/no question about an open sensor; 0 for a closed handle.
template <typename Ask> signed char ask(void* handle, Ask question) {
    std::shared_ptr<OpenSensor> sensor = findSensor(handle);
    return sensor && !sensor->gone && question(*sensor) ? 1 : 0;
}

} // namespace

extern "C" {

void* MDGetHIDHandle(void*) {
    return nullptr; // colord's sensors are stand-alone instruments
}

MDDeviceID MDGetDeviceID(void* handle) {
    std::shared_ptr<OpenSensor> sensor = findSensor(handle);
    return sensor ? sensor->info.deviceID : 0;
}

char const* MDGetName(void* handle) {
    std::shared_ptr<OpenSensor> sensor = findSensor(handle);
    return sensor ? sensor->name.c_str() : nullptr;
}

char const* MDGetSerialNumber(void* handle) {
    std::shared_ptr<OpenSensor> sensor = findSensor(handle);
    return sensor ? sensor->info.serial.c_str() : nullptr;
}

signed char MDIsValidConnection(void* handle) {
    std::shared_ptr<OpenSensor> sensor = findSensor(handle);
    if (!sensor || sensor->gone) return 0;
    // Asks colord: the sensor may have been unplugged since the last call.
    SensorInfo fresh;
    int32_t code = 0;
    if (readSensor(sensor->info.objectPath, &fresh, &code, CallSite::OpenHandle)) return 1;
    if (code == code::kNotRegistered) sensor->gone = true;
    return 0;
}

signed char MDIsCalibrationNecessary(void* handle) {
    std::shared_ptr<OpenSensor> sensor = findSensor(handle);
    if (!sensor || sensor->gone) return 0;
    std::lock_guard<std::mutex> guard(sensor->device->mutex);
    return sensor->device->needsCalibration ? 1 : 0;
}

signed char MDSupportsAmbient(void* handle) {
    return ask(handle, [](OpenSensor const& s) { return s.info.has("ambient"); });
}

signed char MDSupportsReflectance(void* handle) {
    return ask(handle, [](OpenSensor const& s) { return measuresReflectance(s.info); });
}

signed char MDHasArm(void*) {
    return 0;
}

signed char MDHasMultipleSensorPosition(void*) {
    return 0;
}

signed char MDHasTargetMarker(void*) {
    return 0;
}

signed char MDHasExteriorLight(void*) {
    return 0;
}

DvError MDSpectralRadianceFixedData(void* handle, int64_t* min, int64_t* max, int64_t* bandWidth,
                                    int64_t* count) {
    if (min == nullptr || max == nullptr || bandWidth == nullptr || count == nullptr)
        return result(code::kInvalidArgument);
    return withOpenSensor(handle, [&](OpenSensor& sensor) {
        *min = *max = *bandWidth = *count = 0;
        // colord tells the range only with a reading; a sensor without the
        // spectral cap has none (a count of 0).
        char const* cap = capForMode(sensor.mode);
        if (!sensor.info.has("spectral") || cap == nullptr) return code::kOK;
        double start = 0, end = 0;
        std::vector<double> values;
        int32_t const r = readSpectrum(sensor, cap, &start, &end, &values);
        if (r != code::kOK) return r;
        *min = std::llround(start);
        *max = std::llround(end);
        *count = static_cast<int64_t>(values.size());
        *bandWidth =
            values.size() > 1 ? std::llround((end - start) / static_cast<double>(values.size() - 1)) : 0;
        return code::kOK;
    });
}

} // extern "C"

// libpallast: mode, calibration and measurement through colord's GetSample.
#include <cstring>

#include "devices/pallast.h"
#include "handle_call.h"
#include "modes.h"
#include "readings.h"

using namespace pallast;

namespace {

void fill(colour* out, double const xyz[3]) {
    std::memset(out, 0, sizeof *out);
    out->X = xyz[0];
    out->Y = xyz[1];
    out->Z = xyz[2];
    double const sum = xyz[0] + xyz[1] + xyz[2];
    if (sum != 0) {
        out->x = xyz[0] / sum;
        out->y = xyz[1] / sum;
    }
}

} // namespace

extern "C" {

DvError MDSetMode(void* handle, int32_t mode, int32_t observerKey) {
    return withOpenSensor(handle, [&](OpenSensor& sensor) {
        char const* cap = capForMode(mode);
        if (cap == nullptr || !sensor.info.has(cap) || observerKey != kObserver2Degree)
            return code::kUnsupported;
        sensor.mode = mode;
        sensor.observerKey = observerKey;
        return code::kOK;
    });
}

DvError MDCalibrate(void* handle) {
    return withOpenSensor(handle, [&](OpenSensor& sensor) {
        // colord calibrates through readings with the calibration caps; a
        // sensor without them (one that wants to be put in its calibration
        // position, say) cannot be calibrated from here.
        char const* const steps[] = {"calibration-dark", "calibration-irradiance"};
        bool calibrated = false;
        for (char const* cap : steps) {
            if (!sensor.info.has(cap)) continue;
            double ignored[3];
            int32_t const r = readSample(sensor, cap, ignored);
            if (r != code::kOK) return r;
            calibrated = true;
        }
        if (!calibrated) return code::kUnsupported;
        sensor.device->needsCalibration = false;
        return code::kOK;
    });
}

DvError MDMeasureXYZ2(void* handle, colour* rawColour, colour* measured) {
    return withOpenSensor(handle, [&](OpenSensor& sensor) {
        if (rawColour == nullptr || measured == nullptr) return code::kInvalidBuffer;
        char const* cap = capForMode(sensor.mode);
        if (cap == nullptr) return code::kUnsupported;
        double raw[3];
        int32_t const r = readSample(sensor, cap, raw);
        if (r != code::kOK) return r;
        sensor.device->needsCalibration = false;
        double corrected[3] = {raw[0], raw[1], raw[2]};
        if (sensor.correctionIndex > 0) {
            auto const& m = sensor.corrections[sensor.correctionIndex - 1].matrix;
            for (int i = 0; i < 3; ++i)
                corrected[i] = m[i][0] * raw[0] + m[i][1] * raw[1] + m[i][2] * raw[2];
        }
        fill(rawColour, raw);
        fill(measured, corrected);
        return code::kOK;
    });
}

DvError MDMeasureRaw(void* handle, MDMeasurementData*) {
    return unsupportedFor(handle); // colord hands out XYZ and spectra only
}

} // extern "C"

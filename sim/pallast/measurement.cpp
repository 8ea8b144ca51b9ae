// libpallast: mode, calibration and measurement.
//
// What a measurement answers (see sim/README.md): the device's XYZ reading,
// scaled by 1 + mode / 100, by the factor of the applied correction, by 0.99
// while a correlation correction is applied, then multiplied by the applied
// correlation matrix. The raw XYZ and the raw data are the readings as they are.
#include <cstring>
#include <string>

#include "devices/pallast.h"
#include "world/world.h"

namespace {

// Measured on every call: lengths first, so that most names are turned away
// without a compare of their text.
template <size_t N> bool is(std::string const& s, char const (&name)[N]) {
    return s.size() == N - 1 && std::memcmp(s.data(), name, N - 1) == 0;
}

double correctionFactor(std::string const& correction) {
    if (is(correction, "plain")) return 0.999;
    if (is(correction, "emission")) return 0.998;
    if (is(correction, "paperWhite")) return 0.997;
    if (is(correction, "10degFor2deg")) return 0.996;
    if (is(correction, "plainFor2deg")) return 0.995;
    return 1.0;
}

sim::XYZ measure(sim::Device const& device) {
    double const factor = (1.0 + device.mode / 100.0) * correctionFactor(device.correction) *
                          (device.appliedCorrelationCorrection ? 0.99 : 1.0);
    sim::XYZ v{device.XYZReading.X * factor, device.XYZReading.Y * factor, device.XYZReading.Z * factor};
    if (device.appliedCorrelationMatrix)
        for (auto const& stored : device.correlationMatrices)
            if (stored.id == *device.appliedCorrelationMatrix) {
                double const* m = stored.matrix;
                v = sim::XYZ{m[0] * v.X + m[1] * v.Y + m[2] * v.Z, m[3] * v.X + m[4] * v.Y + m[5] * v.Z,
                             m[6] * v.X + m[7] * v.Y + m[8] * v.Z};
                break;
            }
    return v;
}

void fill(colour* out, sim::XYZ const& v) {
    std::memset(out, 0, sizeof *out);
    out->X = v.X;
    out->Y = v.Y;
    out->Z = v.Z;
    double const sum = v.X + v.Y + v.Z;
    if (sum != 0) {
        out->x = v.X / sum;
        out->y = v.Y / sum;
    }
}

} // namespace

extern "C" {

DvError MDSetMode(void* handle, int32_t mode, int32_t observerKey) {
    sim::Call call("MDSetMode");
    call.handle(handle).num(mode).num(observerKey);
    DvError r;
    sim::Device* device = sim::sensorOrResult(call, handle, &r);
    if (device == nullptr) return r;
    device->mode = mode;
    device->observerKey = observerKey;
    return sim::ok();
}

DvError MDCalibrate(void* handle) {
    sim::Call call("MDCalibrate");
    call.handle(handle);
    DvError r;
    sim::Device* device = sim::sensorOrResult(call, handle, &r);
    if (device == nullptr) return r;
    device->capabilities.needsCalibration = false;
    return sim::ok();
}

DvError MDMeasureXYZ2(void* handle, colour* rawColour, colour* measured) {
    sim::Call call("MDMeasureXYZ2", handle);
    call.handle(handle);
    DvError r;
    sim::Device* device = sim::sensorOrResult(call, handle, &r);
    if (device == nullptr) return r;
    if (rawColour == nullptr || measured == nullptr) return sim::result(sim::code::kInvalidBuffer);
    fill(rawColour, device->rawXYZReading);
    fill(measured, measure(*device));
    return sim::ok();
}

#ifndef SIM_PALLAST_LEGACY
DvError MDMeasureRaw(void* handle, MDMeasurementData* data) {
    sim::Call call("MDMeasureRaw", handle);
    call.handle(handle);
    DvError r;
    sim::Device* device = sim::sensorOrResult(call, handle, &r);
    if (device == nullptr) return r;
    if (data == nullptr) return sim::result(sim::code::kInvalidBuffer);
    std::memset(data, 0, sizeof *data);
    for (size_t i = 0; i < device->rawData.size() && i < 16; ++i)
        data->value[i] = device->rawData[i];
    return sim::ok();
}
#endif

} // extern "C"

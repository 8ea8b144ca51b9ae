#include "readings.h"

#include "bus.h"

namespace pallast {

namespace {

int32_t failure(OpenSensor& sensor, GError const* error) {
    if (sensorIsGone(error)) sensor.gone = true;
    if (needsCalibration(error)) sensor.device->needsCalibration = true;
    return codeForError(error, CallSite::OpenHandle);
}

int32_t callSimple(OpenSensor& sensor, char const* method) {
    CallError error;
    Reply reply = callColord(sensor.info.objectPath.c_str(), kSensorInterface, method, nullptr, nullptr,
                             kQuickCallTimeout, error);
    return reply ? code::kOK : failure(sensor, error.error);
}

// colord asks the bus for the caller's user with a 200 ms time-out before it
// grants a lock; on a busy machine that question times out and Lock answers
// FailedToAuthenticate although nothing was refused. A few tries ride that out.
int32_t lock(OpenSensor& sensor) {
    int32_t r = code::kOK;
    for (int attempt = 0; attempt < 3; ++attempt)
        if ((r = callSimple(sensor, "Lock")) != code::kDisabled) break;
    return r;
}

// Runs read between Lock and Unlock; the lock is released whatever read answered.
template <typename Read> int32_t underColordLock(OpenSensor& sensor, Read read) {
    int32_t const locked = lock(sensor);
    if (locked != code::kOK) return locked;
    int32_t const r = read();
    int32_t const unlocked = sensor.gone ? code::kOK : callSimple(sensor, "Unlock");
    return r != code::kOK ? r : unlocked;
}

} // namespace

int32_t readSample(OpenSensor& sensor, char const* cap, double xyz[3]) {
    return underColordLock(sensor, [&] {
        CallError error;
        Reply reply = callColord(sensor.info.objectPath.c_str(), kSensorInterface, "GetSample",
                                 g_variant_new("(s)", cap), G_VARIANT_TYPE("(ddd)"), kReadingTimeout, error);
        if (!reply) return failure(sensor, error.error);
        g_variant_get(reply.value, "(ddd)", &xyz[0], &xyz[1], &xyz[2]);
        return code::kOK;
    });
}

int32_t readSpectrum(OpenSensor& sensor, char const* cap, double* startNm, double* endNm,
                     std::vector<double>* values) {
    return underColordLock(sensor, [&] {
        CallError error;
        Reply reply = callColord(sensor.info.objectPath.c_str(), kSensorInterface, "GetSpectrum",
                                 g_variant_new("(s)", cap), G_VARIANT_TYPE("(ddad)"), kReadingTimeout, error);
        if (!reply) return failure(sensor, error.error);
        GVariantIter* data = nullptr;
        g_variant_get(reply.value, "(ddad)", startNm, endNm, &data);
        double value = 0;
        values->clear();
        while (g_variant_iter_loop(data, "d", &value))
            values->push_back(value);
        g_variant_iter_free(data);
        return code::kOK;
    });
}

} // namespace pallast

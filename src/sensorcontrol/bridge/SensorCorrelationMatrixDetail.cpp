// The XYZ correction matrix of a monitor's built-in sensor: 3x3 always, 8x3
// where the sensor supports it.
#include "devices/quorsensor.h"
#include "sensorcontrol/MonitorLock.h"
#include "sensorcontrol/bridge/SensorCorrelationDetail.h"
#include "share/bridge_result.h"
#include "share/error_check.h"
#include "share/json_utils.h"
#include "share/lib/libquorSensorLoader.h"

namespace tovel {
namespace bridge {
namespace detail {

using quilljson::Value;

namespace {

// Element [r][c] of the JSON rows; a missing row or element reads as 0.0.
double Element(Value const& json, unsigned long r, unsigned long c) {
    return JsonToDouble(json[r][c]);
}

// The request checks made before the matrix reaches the device.
void CheckMatrixShape(Value const& json) {
    if (!json.isArray()) throw BadRequest("matrix data type is not array.");
    if (json.size() < 3) throw BadRequest("matrix data size is invalid.");
}

Value Rows(double const* values, int rows) {
    Value json = Value::array();
    for (int r = 0; r < rows; ++r)
        json.append(ToJson(values + 3 * r, 3));
    return json;
}

} // namespace

Value GetCorrelationMatrixData(void* monitor) {
    MonitorLock lock(monitor);
    lock.lock();
    libquorSensorLoader& sensor = libquorSensorLoader::loader();
    if (TOVEL_EXEC(sensor, CSSG2H_SupportedXYZCorrectionMatrix8DXT, monitor) != 0) {
        double m[8][3] = {};
        BridgeCheckDvError(TOVEL_EXEC(sensor, CSSG2H_GetXYZCorrectionMatrix8DXT, monitor, m),
                           "Get color sensor correction matrix 8x3.");
        return Rows(&m[0][0], 8);
    }
    double m[9] = {};
    BridgeCheckDvError(TOVEL_EXEC(sensor, CSSG2H_GetXYZCorrectionMatrix, monitor, m),
                       "Get color sensor correction matrix 3x3.");
    return Rows(m, 3);
}

void CorrelationMatrixFromJson(Value const& json, double (*out)[9]) {
    CheckMatrixShape(json);
    if (json.size() >= 8) {
        // The 8x3 form: rows 1 to 3, transposed.
        for (unsigned long c = 0; c < 3; ++c)
            for (unsigned long r = 1; r <= 3; ++r)
                (*out)[c * 3 + (r - 1)] = Element(json, r, c);
        return;
    }
    for (unsigned long r = 0; r < 3; ++r)
        for (unsigned long c = 0; c < 3; ++c)
            (*out)[r * 3 + c] = Element(json, r, c);
}

void SetCorrelationMatrixData(void* monitor, Value const& json) {
    CheckMatrixShape(json);
    MonitorLock lock(monitor);
    lock.lock();
    libquorSensorLoader& sensor = libquorSensorLoader::loader();
    if (json.size() >= 8 && TOVEL_EXEC(sensor, CSSG2H_SupportedXYZCorrectionMatrix8DXT, monitor) != 0) {
        double m[8][3] = {};
        for (unsigned long r = 0; r < 8; ++r)
            for (unsigned long c = 0; c < 3; ++c)
                m[r][c] = Element(json, r, c);
        BridgeCheckDvError(TOVEL_EXEC(sensor, CSSG2H_SetXYZCorrectionMatrix8DXT, monitor, m),
                           "Set color sensor correction matrix 8x3.");
        return;
    }
    double m[9] = {};
    CorrelationMatrixFromJson(json, &m);
    BridgeCheckDvError(TOVEL_EXEC(sensor, CSSG2H_SetXYZCorrectionMatrix, monitor, m),
                       "Set color sensor correction matrix 3x3.");
}

} // namespace detail
} // namespace bridge
} // namespace tovel

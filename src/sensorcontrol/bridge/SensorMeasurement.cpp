// Measurements: XYZ and raw data of any device; RGB, infrared and
// uncorrelated XYZ counts of a monitor's built-in sensor.
#include "devices/pallast.h"
#include "devices/quorsensor.h"
#include "sensorcontrol/bridge/Device.h"
#include "sensorcontrol/bridge/SensorControl.h"
#include "share/error_check.h"
#include "share/json_utils.h"
#include "share/lib/libpallastLoader.h"
#include "share/lib/libquorSensorLoader.h"

namespace tovel {
namespace bridge {

using quilljson::Value;

BridgeResult SensorXYZ::Get(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "XYZ");
    colour raw{};
    colour measured{};
    BridgeCheckDvError(MDMeasureXYZ2(device, &raw, &measured), "Measure XYZ.");
    Value result = Value::object();
    result.setMemberInOrder("XYZ", ToJson(measured, "XYZ"));
    result.setMemberInOrder("rawXYZ", ToJson(raw, "XYZ"));
    return BridgeResultOK(result);
}

BridgeResult SensorRawData::Get(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "RawData");
    MDMeasurementData raw{};
    BridgeCheckDvError(TOVEL_EXEC(libpallastLoader::loader(), MDMeasureRaw, device, &raw),
                       "Measure raw data.");
    Value values = Value::array();
    for (unsigned long i = 0; i < 3; ++i)
        values[i] = raw.value[i];
    Value result = Value::object();
    result["rawData"] = values;
    return BridgeResultOK(result);
}

namespace {

// The three readings of a built-in sensor as {"<a>": .., "<b>": .., "<c>": ..}.
Value Triple(char const* a, double x, char const* b, double y, char const* c, double z) {
    Value v = Value::object();
    v[a] = x;
    v[b] = y;
    v[c] = z;
    return v;
}

} // namespace

BridgeResult SensorRGB::Get(BridgeData const& data) {
    BuiltinSensor sensor(data, &uri, "RGB");
    sensor.lock();
    double r = 0.0, g = 0.0, b = 0.0;
    BridgeCheckDvError(TOVEL_EXEC(libquorSensorLoader::loader(), CSSG2H_MeasureRGB, sensor.hid, &r, &g, &b),
                       "Measure RGB.");
    Value result = Value::object();
    result["RGB"] = Triple("R", r, "G", g, "B", b);
    return BridgeResultOK(result);
}

BridgeResult SensorIR::Get(BridgeData const& data) {
    BuiltinSensor sensor(data, &uri, "IR");
    sensor.lock();
    double ir = 0.0, second = 0.0; // the second reading is not reported
    BridgeCheckDvError(TOVEL_EXEC(libquorSensorLoader::loader(), CSSG2H_GetIRValue, sensor.hid, &ir, &second),
                       "Get IR value.");
    Value result = Value::object();
    result["IR"] = ir;
    return BridgeResultOK(result);
}

BridgeResult SensorXYZWithoutCorrelation::Get(BridgeData const& data) {
    BuiltinSensor sensor(data, &uri, "XYZWithoutCorrelation");
    sensor.lock();
    double x = 0.0, y = 0.0, z = 0.0;
    BridgeCheckDvError(TOVEL_EXEC(libquorSensorLoader::loader(), CSSG2H_MeasureNotCorrelatedXYZCount,
                                  sensor.hid, &x, &y, &z),
                       "Measure not correlated XYZ count.");
    // Plain counts under "XYZ", not a colour record.
    Value result = Value::object();
    result["XYZ"] = Triple("X", x, "Y", y, "Z", z);
    return BridgeResultOK(result);
}

} // namespace bridge
} // namespace tovel

// Presence sensing of a monitor's built-in sensor: detection on/off and its level.
#include "sensorcontrol/bridge/SensorAmbrelSenseControl.h"

#include "devices/quorsensor.h"
#include "sensorcontrol/bridge/Device.h"
#include "sensorcontrol/bridge/SensorHelpers.h"
#include "share/error_check.h"
#include "share/lib/libquorSensorLoader.h"

namespace tovel {
namespace bridge {

using quilljson::Value;

BridgeResult SensorAmbrelSense::Get(BridgeData const& data) {
    BuiltinSensor sensor(data, &uri, "AmbrelSense");
    sensor.lock();
    signed char on = 0;
    BridgeCheckDvError(TOVEL_EXEC(libquorSensorLoader::loader(), CSSG2H_GetHumanDetectOnOff, sensor.hid, &on),
                       "Get human detect on off.");
    // A number, although Put takes a boolean.
    return BridgeResultOK(Value(on != 0 ? 1 : 0));
}

BridgeResult SensorAmbrelSense::Put(BridgeData const& data) {
    BuiltinSensor sensor(data, &uri, "AmbrelSense");
    Value const& request = data.data;
    bool on = false;
    if (request.isBool())
        on = request.getBool();
    else if (request.isInteger())
        on = request.getInteger() != 0;
    else if (request.isDouble())
        on = request.getDouble() != 0.0;
    else
        throw BadRequest("data must be number or boolean.");
    sensor.lock();
    BridgeCheckDvError(TOVEL_EXEC(libquorSensorLoader::loader(), CSSG2H_SetHumanDetectOnOff, sensor.hid,
                                  static_cast<signed char>(on ? 1 : 0)),
                       "Set human detect on off.");
    return BridgeResultOK(Value());
}

BridgeResult SensorAmbrelSenseLevel::Get(BridgeData const& data) {
    BuiltinSensor sensor(data, &uri, "AmbrelSense/Level");
    sensor.lock();
    CSSG2_HUMANDETECT_MODE mode = 0;
    BridgeCheckDvError(
        TOVEL_EXEC(libquorSensorLoader::loader(), CSSG2H_GetHumanDetectMode, sensor.hid, &mode),
        "Get human detect mode.");
    return BridgeResultOK(Value(mode));
}

BridgeResult SensorAmbrelSenseLevel::Put(BridgeData const& data) {
    BuiltinSensor sensor(data, &uri, "AmbrelSense/Level");
    if (!data.data.isNumber()) throw BadRequest("data must be number.");
    sensor.lock();
    BridgeCheckDvError(TOVEL_EXEC(libquorSensorLoader::loader(), CSSG2H_SetHumanDetectMode, sensor.hid,
                                  detail::Low32(data.data)),
                       "Set human detect mode.");
    return BridgeResultOK(Value());
}

} // namespace bridge
} // namespace tovel

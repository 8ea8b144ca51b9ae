// Mechanical parts of a measurement device: arm, sensor position, exterior
// light and target marker.
#include "devices/pallast.h"
#include "sensorcontrol/bridge/Device.h"
#include "sensorcontrol/bridge/SensorControl.h"
#include "sensorcontrol/bridge/SensorHelpers.h"
#include "share/error_check.h"
#include "share/lib/libpallastLoader.h"

namespace tovel {
namespace bridge {

using quilljson::Value;
using namespace detail;

BridgeResult SensorArm::Get(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "Arm");
    if (!HasQuery(data, "supports")) throw BadRequest("requires 'supports' query.");
    return Capability(MDHasArm(device));
}

BridgeResult SensorArm::Put(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "Arm");
    if (!data.data.isBool()) throw BadRequest("data must be boolean.");
    if (data.data.getBool())
        BridgeCheckDvError(MDTakeOutArm(device), "Open sensor arm.");
    else
        BridgeCheckDvError(MDTakeInArm(device), "Close sensor arm.");
    return BridgeResultOK(Value());
}

BridgeResult SensorPosition::Get(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "Position");
    if (HasQuery(data, "supports")) return Capability(MDHasMultipleSensorPosition(device));
    int32_t position = 0;
    BridgeCheckDvError(MDGetSensorPosition(device, &position), "Get sensor position.");
    return BridgeResultOK(Value(position));
}

BridgeResult SensorExteriorLight::Get(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "ExteriorLight");
    libpallastLoader& pallast = libpallastLoader::loader();
    if (HasQuery(data, "supports")) return Capability(TOVEL_EXEC(pallast, MDHasExteriorLight, device));
    MDExteriorLightingState state = 0;
    BridgeCheckDvError(TOVEL_EXEC(pallast, MDGetExteriorLightingState, device, &state),
                       "Get exterior lighting state.");
    Value result = Value::object();
    result["state"] = state;
    return BridgeResultOK(result);
}

BridgeResult SensorExteriorLight::Put(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "ExteriorLight");
    // A missing or non-numeric state is accepted silently and changes nothing.
    Value const& state = data.data["state"];
    if (state.isNumber())
        BridgeCheckDvError(
            TOVEL_EXEC(libpallastLoader::loader(), MDSetExteriorLightingState, device, Low32(state)),
            "Set exterior lighting state.");
    return BridgeResultOK(Value());
}

BridgeResult SensorTargetMarker::Get(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "TargetMarker");
    libpallastLoader& pallast = libpallastLoader::loader();
    if (HasQuery(data, "supports")) return Capability(TOVEL_EXEC(pallast, MDHasTargetMarker, device));
    MDTargetMarkerStatus status = 1;
    BridgeCheckDvError(TOVEL_EXEC(pallast, MDGetTargetMarker, device, &status), "Get target marker.");
    return BridgeResultOK(Value(status));
}

BridgeResult SensorTargetMarker::Put(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "TargetMarker");
    if (!data.data.isNumber()) throw BadRequest("Request data is not number type.");
    BridgeCheckDvError(TOVEL_EXEC(libpallastLoader::loader(), MDSetTargetMarker, device, Low32(data.data)),
                       "Set target marker.");
    return BridgeResultOK(Value());
}

} // namespace bridge
} // namespace tovel

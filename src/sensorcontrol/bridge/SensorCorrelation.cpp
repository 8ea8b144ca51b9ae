// Correlation corrections of a sensor, and the reference-sensor description
// and correlation data held in its monitor.
#include "devices/pallast.h"
#include "quilljson/serializer.h"
#include "sensorcontrol/bridge/Device.h"
#include "sensorcontrol/bridge/SensorCorrelationControl.h"
#include "sensorcontrol/bridge/SensorCorrelationDetail.h"
#include "sensorcontrol/bridge/SensorHelpers.h"
#include "share/error_check.h"
#include "share/json_utils.h"

namespace tovel {
namespace bridge {

using quilljson::Value;
using namespace detail;

BridgeResult SensorCorrelation::Get(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "Correlation");
    if (!HasQuery(data, "available")) throw BadRequest("requires 'available' query.");

    Value list = Value::array();
    for (uint64_t index = 0;; ++index) {
        int32_t referenceDeviceID = 0;
        char referenceSerial[33] = {};
        char monitorProduct[33] = {};
        char monitorSerial[17] = {};
        uint64_t id = 0;
        // Any non-zero code ends the list.
        if (MDEnumCorrelationCorrection(device, index, &referenceDeviceID, referenceSerial, monitorProduct,
                                        monitorSerial, &id)
                .code != 0)
            break;
        Value reference = Value::object();
        reference["deviceID"] = referenceDeviceID;
        reference["serial"] = BufferText(referenceSerial);
        Value monitor = Value::object();
        monitor["product"] = BufferText(monitorProduct);
        monitor["serial"] = BufferText(monitorSerial);
        Value entry = Value::object();
        entry["referenceSensor"] = reference;
        entry["monitor"] = monitor;
        entry["id"] = id;
        list.append(entry);
    }
    return BridgeResultOK(list);
}

BridgeResult SensorCorrelation::Put(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "Correlation");
    Value const& request = data.data;
    if (!request.contains("id")) throw BadRequest("data must have id.");
    uint64_t const id = JsonToUInt64(request["id"]);

    if (StringOf(request["type"]) != "recalc") {
        BridgeCheckDvError(MDApplyCorrelationCorrection(device, id), "Apply correlation correction.");
        return BridgeResultOK(Value());
    }
    if (!request.contains("targetWhite")) throw BadRequest("data must have targetWhite.");
    Value const& white = request["targetWhite"];
    if (!white.contains("x") || !white.contains("y") || !white.contains("Y"))
        throw BadRequest("targetWhite must have x, y, Y.");
    colour target = Zeroed<colour>();
    target.x = JsonToDouble(white["x"]);
    target.y = JsonToDouble(white["y"]);
    target.Y = JsonToDouble(white["Y"]);
    BridgeCheckDvError(MDApplyCorrelationCorrectionWithRecalcLuminanceLevelCorrection(device, id, target),
                       "Apply correlation correction with recalc luminance level correction.");
    return BridgeResultOK(Value());
}

BridgeResult SensorCorrelation::Delete(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "Correlation");
    if (HasQuery(data, "swingSensor"))
        BridgeCheckDvError(MDClear9PointsCorrelationCorrection(device),
                           "Clear 9 points correlation correction.");
    else
        BridgeCheckDvError(MDReleaseCorrelationCorrection(device), "Release correlation correction.");
    return BridgeResultOK(Value());
}

BridgeResult SensorCorrelation9Points::Delete(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "Correlation/9Points");
    BridgeCheckDvError(MDClear9PointsCorrelationCorrection(device), "Clear 9 points correlation correction.");
    return BridgeResultOK(Value());
}

namespace {

// The monitor of the sensor, addressing its current data set.
void* CurrentDescriptionMonitor(BridgeData const& data, std::string* uri) {
    void* monitor = GetHIDHandle(GetMDHandle(data, uri, "Correlation/Description"));
    ApplyBuiltinSensorDataIndex(monitor, nullptr, false);
    return monitor;
}

} // namespace

BridgeResult SensorCorrelationDescription::Get(BridgeData const& data) {
    void* monitor = CurrentDescriptionMonitor(data, &uri);
    return BridgeResultOK(GetCorrelationDescription(monitor));
}

BridgeResult SensorCorrelationDescription::Put(BridgeData const& data) {
    void* monitor = CurrentDescriptionMonitor(data, &uri);
    SetCorrelationDescription(monitor, data.data);
    return BridgeResultOK(Value());
}

BridgeResult SensorCorrelationDescription::Delete(BridgeData const& data) {
    void* monitor = CurrentDescriptionMonitor(data, &uri);
    SetCorrelationDescription(monitor, Value());
    return BridgeResultOK(Value());
}

BridgeResult SensorCorrelationData::Get(BridgeData const& data) {
    BuiltinSensor sensor(data, &uri, "Correlation/Data");
    // Held for both reads, so that no other request switches the data set in between.
    sensor.lock();
    DvCtrlHZEPriority priority = 0;
    ApplyBuiltinSensorDataIndex(sensor.hid, &priority, false);
    Value result = GetCorrelationData(sensor.hid, sensor.device, priority, false);
    if (HasQuery(data, "checksFactoryData")) {
        // The monitor is left addressing the factory set.
        ApplyBuiltinSensorDataIndex(sensor.hid, nullptr, true);
        Value const factory = GetCorrelationData(sensor.hid, sensor.device, priority, true);
        bool const same = quilljson::Serializer::toText(result) == quilljson::Serializer::toText(factory);
        result["isFactory"] = same;
    }
    return BridgeResultOK(result);
}

BridgeResult SensorCorrelationData::Put(BridgeData const& data) {
    BuiltinSensor sensor(data, &uri, "Correlation/Data");
    DvCtrlHZEPriority priority = 0;
    ApplyBuiltinSensorDataIndex(sensor.hid, &priority, false);
    SetCorrelationData(sensor.hid, sensor.device, priority, data.data, false);
    return BridgeResultOK(Value());
}

} // namespace bridge
} // namespace tovel

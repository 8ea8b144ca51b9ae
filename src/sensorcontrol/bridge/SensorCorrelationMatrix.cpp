// Correlation matrices stored for a sensor and monitor, and the XYZ correction
// matrix held in the monitor.
#include "devices/pallast.h"
#include "quilljson/serializer.h"
#include "sensorcontrol/bridge/Device.h"
#include "sensorcontrol/bridge/SensorCorrelationControl.h"
#include "sensorcontrol/bridge/SensorCorrelationDetail.h"
#include "sensorcontrol/bridge/SensorHelpers.h"
#include "share/error_check.h"
#include "share/json_utils.h"
#include "share/lib/libpallastLoader.h"

namespace tovel {
namespace bridge {

using quilljson::Value;
using namespace detail;

BridgeResult SensorCorrelationMatrix::Get(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "CorrelationMatrix");
    if (!HasQuery(data, "available")) throw BadRequest("requires 'available' query.");
    MonitorIdentity monitor = GetMonitorIdentity(GetHIDHandle(device));

    libpallastLoader& pallast = libpallastLoader::loader();
    Value list = Value::array();
    for (uint64_t index = 0;; ++index) {
        MDDeviceID referenceDeviceID = 0;
        char referenceSerial[33] = {};
        uint64_t id = 0;
        if (TOVEL_EXEC(pallast, MDEnumCorrelationMatrix, device, monitor.databaseProduct(),
                       monitor.panelRevision, index, &referenceDeviceID, referenceSerial, &id)
                .code != 0)
            break;
        Value reference = Value::object();
        reference["deviceID"] = referenceDeviceID;
        reference["serial"] = BufferText(referenceSerial);
        Value entry = Value::object();
        entry["referenceSensor"] = reference;
        entry["id"] = id;
        list.append(entry);
    }
    return BridgeResultOK(list);
}

BridgeResult SensorCorrelationMatrix::Put(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "CorrelationMatrix");
    if (!data.data.isNumber()) throw BadRequest("data must be number.");
    uint64_t const id = JsonToUInt64(data.data);
    BridgeCheckDvError(TOVEL_EXEC(libpallastLoader::loader(), MDApplyCorrelationMatrix, device, id),
                       "Apply correlation matrix.");
    return BridgeResultOK(Value());
}

BridgeResult SensorCorrelationMatrix::Delete(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "CorrelationMatrix");
    BridgeCheckDvError(TOVEL_EXEC(libpallastLoader::loader(), MDReleaseCorrelationMatrix, device),
                       "Release correlation matrix.");
    return BridgeResultOK(Value());
}

BridgeResult SensorCorrelationMatrixData::Get(BridgeData const& data) {
    void* monitor = GetHIDHandle(GetMDHandle(data, &uri, "CorrelationMatrix/Data"));
    ApplyBuiltinSensorDataIndex(monitor, nullptr, false);
    Value const matrix = GetCorrelationMatrixData(monitor);
    Value result = Value::object();
    result["matrix"] = matrix;
    if (HasQuery(data, "checksFactoryData")) {
        // The monitor is left addressing the factory set.
        ApplyBuiltinSensorDataIndex(monitor, nullptr, true);
        Value const factory = GetCorrelationMatrixData(monitor);
        result["isFactory"] = quilljson::Serializer::toText(matrix) == quilljson::Serializer::toText(factory);
    }
    return BridgeResultOK(result);
}

BridgeResult SensorCorrelationMatrixData::Put(BridgeData const& data) {
    void* monitor = GetHIDHandle(GetMDHandle(data, &uri, "CorrelationMatrix/Data"));
    // Selected before the matrix is checked, and not undone when it is refused.
    ApplyBuiltinSensorDataIndex(monitor, nullptr, false);
    SetCorrelationMatrixData(monitor, data.data["matrix"]);
    return BridgeResultOK(Value());
}

} // namespace bridge
} // namespace tovel

// Sensor (description, closing), SensorMode and SensorCalibration.
#include "devices/pallast.h"
#include "sensorcontrol/bridge/Device.h"
#include "sensorcontrol/bridge/SensorControl.h"
#include "sensorcontrol/bridge/SensorHelpers.h"
#include "sensorcontrol/device/SensorCache.h"
#include "share/error_check.h"
#include "share/lib/libpallastLoader.h"
#include "tvl/threading/mutex_locker.h"

namespace tovel {
namespace bridge {

using quilljson::Value;
using namespace detail;

BridgeResult Sensor::Get(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "");
    if (HasQuery(data, "connection")) return BridgeResultOK(Value(MDIsValidConnection(device) != 0));

    Value description = Value::object();
    description["deviceID"] = MDGetDeviceID(device);
    description["name"] = Text(MDGetName(device));
    description["serial"] = Text(MDGetSerialNumber(device));
    description["needsCalibration"] = MDIsCalibrationNecessary(device) != 0;
    description["supportsAmbient"] = MDSupportsAmbient(device) != 0;
    description["supportsReflectance"] = MDSupportsReflectance(device) != 0;
    description["hasArm"] = MDHasArm(device) != 0;
    description["hasMultipleSensorPosition"] = MDHasMultipleSensorPosition(device) != 0;

    // Older library versions lack the target marker; the key is then left out.
    libpallastLoader& pallast = libpallastLoader::loader();
    if (pallast.symbol("MDHasTargetMarker") != nullptr)
        description["hasTargetMarker"] = TOVEL_EXEC(pallast, MDHasTargetMarker, device) != 0;

    int64_t min = 0, max = 0, bandWidth = 0, count = 0;
    MDSpectralRadianceFixedData(device, &min, &max, &bandWidth, &count);
    if (count != 0) {
        Value spectrum = Value::object();
        spectrum["min"] = min;
        spectrum["max"] = max;
        spectrum["bandWidth"] = bandWidth;
        spectrum["count"] = count;
        description["spectrum"] = spectrum;
    }
    return BridgeResultOK(description);
}

BridgeResult Sensor::Delete(BridgeData const& data) {
    // Held across resolution and close, so that two concurrent deletes of one
    // sensor cannot both close its device.
    tovel::device::SensorCache& cache = tovel::device::SensorCache::Instance();
    threading::MutexLocker locker(cache.mutex());
    void* device = GetMDHandle(data, &uri, "");
    if (device != nullptr) {
        cache.unregisterHandle(StringOrEmpty(data.parameters["id"]));
        MDClose(&device);
    }
    return BridgeResultOK(Value());
}

BridgeResult SensorMode::Get(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "Mode");
    if (!HasQuery(data, "supports")) throw BadRequest("requires 'supports' query.");
    Value supports = Value::object();
    supports["ambient"] = MDSupportsAmbient(device) != 0;
    supports["reflectance"] = MDSupportsReflectance(device) != 0;
    return BridgeResultOK(supports);
}

BridgeResult SensorMode::Put(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "Mode");
    Value const& mode = data.data["mode"];
    if (!mode.isNumber()) throw BadRequest("data requires 'mode'.");
    Value const& observerKey = data.data["observerKey"];
    if (!observerKey.isNumber()) throw BadRequest("data requires 'observerKey'.");
    BridgeCheckDvError(MDSetMode(device, Low32(mode), Low32(observerKey)), "Set sensor mode.");
    return BridgeResultOK(Value());
}

BridgeResult SensorCalibration::Get(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "Calibration");
    if (!HasQuery(data, "needs")) throw BadRequest("requires 'needs' query.");
    return BridgeResultOK(Value(MDIsCalibrationNecessary(device) != 0));
}

BridgeResult SensorCalibration::Put(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "Calibration");
    BridgeCheckDvError(MDCalibrate(device), "Calibrate sensor.");
    return BridgeResultOK(Value());
}

} // namespace bridge
} // namespace tovel

// Corrections a measurement device applies to its readings, and the list of
// extra corrections of which one is selected.
#include <cstring>
#include <string>

#include "devices/pallast.h"
#include "sensorcontrol/bridge/Device.h"
#include "sensorcontrol/bridge/SensorControl.h"
#include "sensorcontrol/bridge/SensorHelpers.h"
#include "share/error_check.h"

namespace tovel {
namespace bridge {

using quilljson::Value;
using namespace detail;

namespace {

int32_t ObserverKey(Value const& request) {
    Value const& key = request["observerKey"];
    if (!key.isNumber()) throw BadRequest("data must have observerKey.");
    return Low32(key);
}

} // namespace

BridgeResult SensorCorrection::Put(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "Correction");
    Value const& request = data.data;
    std::string const type = StringOrEmpty(request["type"]);
    if (type == "emission") {
        int32_t const observerKey = ObserverKey(request);
        Value const& product = request["product"];
        if (!product.isString()) throw BadRequest("data must have product.");
        Value const& panelRevision = request["panelRevision"];
        if (!panelRevision.isNumber()) throw BadRequest("data must have panelRevision.");
        BridgeCheckDvError(MDApplyEmissionCorrection(device, observerKey, product.stringRef().c_str(),
                                                     UnsignedOrZero<uint16_t>(panelRevision)),
                           "Apply emission correction.");
    } else if (type == "paperWhite") {
        BridgeCheckDvError(MDApplyPaperWhiteCorrection(device, ObserverKey(request)),
                           "Apply paper white correction.");
    } else if (type == "10degFor2deg") {
        BridgeCheckDvError(MDApply10DegCorrectionFor2DegCorrelatedMeasurement(device),
                           "Apply 10deg correction for 2deg correlated measurement.");
    } else if (type == "plainFor2deg") {
        BridgeCheckDvError(MDApplyPlainCorrectionFor2DegCorrelatedMeasurement(device),
                           "Apply plain correction for 2deg correlated measurement.");
    } else {
        // Any other or no type: the plain correction, never an error.
        BridgeCheckDvError(MDApplyPlainCorrection(device), "Apply plain correction.");
    }
    return BridgeResultOK(Value());
}

BridgeResult SensorCorrection::Delete(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "Correction");
    BridgeCheckDvError(MDReleaseCorrection(device), "Release correction.");
    return BridgeResultOK(Value());
}

BridgeResult SensorExCorrection::Get(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "ExCorrection");
    uint32_t const count = MDGetExCorrectionCount(device);
    if (HasQuery(data, "count")) return BridgeResultOK(Value(count));

    if (HasQuery(data, "name")) {
        Value names = Value::array();
        for (uint32_t index = 0; index < count; ++index) {
            uint32_t size = 0;
            BridgeCheckDvError(MDGetExCorrectionName(device, index, nullptr, &size), "Get correction name.");
            // A fixed buffer, whatever size the first call reported; the size
            // handed on never exceeds it, so a longer name fails instead of
            // overrunning the buffer.
            char buffer[256] = {};
            if (size > sizeof buffer) size = sizeof buffer;
            BridgeCheckDvError(MDGetExCorrectionName(device, index, buffer, &size), "Get correction name.");
            names.append(Value(std::string(buffer, strnlen(buffer, sizeof buffer))));
        }
        return BridgeResultOK(names);
    }

    uint32_t index = 0;
    BridgeCheckDvError(MDGetExCorrectionIndex(device, &index), "Get correction index.");
    return BridgeResultOK(Value(index));
}

BridgeResult SensorExCorrection::Put(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "ExCorrection");
    if (!data.data.isNumber()) throw BadRequest("data must be number.");
    BridgeCheckDvError(MDSetExCorrectionIndex(device, UnsignedOrZero<uint32_t>(data.data)),
                       "Set correction index.");
    return BridgeResultOK(Value());
}

} // namespace bridge
} // namespace tovel

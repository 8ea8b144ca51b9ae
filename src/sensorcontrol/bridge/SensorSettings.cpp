// Stored settings of a measurement device: parameter description, the IFS
// correction parameters and the model-dependent device options.
#include <algorithm>
#include <cstring>
#include <ctime>

#include "devices/pallast.h"
#include "sensorcontrol/bridge/Device.h"
#include "sensorcontrol/bridge/SensorControl.h"
#include "sensorcontrol/bridge/SensorHelpers.h"
#include "share/error_check.h"
#include "share/json_utils.h"
#include "share/lib/libpallastLoader.h"
#include "tvl/date_time.h"

namespace tovel {
namespace bridge {

using quilljson::Value;
using namespace detail;

BridgeResult SensorParameterDescription::Get(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "ParameterDescription");
    MDParameterDescription description;
    std::memset(&description, 0, sizeof description);
    BridgeCheckDvError(
        TOVEL_EXEC(libpallastLoader::loader(), MDGetParameterDescription, device, &description),
        "Get sensor parameter description.");

    // Unwritten bytes of the serial read as 0xFF; the field need not be terminated.
    char* const serial = description.referenceSerial;
    std::replace(serial, serial + sizeof description.referenceSerial, '\xff', '\0');
    std::string const serialText(serial, strnlen(serial, sizeof description.referenceSerial));

    DateTime const date(description.year, description.month, description.day, description.hour,
                        description.minute, 0);
    Value reference = Value::object();
    reference["deviceID"] = description.referenceDeviceID;
    reference["serial"] = serialText;
    Value result = Value::object();
    result["date"] = ToJson(date, false, false, false);
    result["referenceSensor"] = reference;
    return BridgeResultOK(result);
}

BridgeResult SensorParameterDescription::Put(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "ParameterDescription");
    MDParameterDescription description;
    std::memset(&description, 0, sizeof description);

    DateTime const date = DateTimeFromJson(data.data["date"]);
    description.year = static_cast<uint16_t>(date.year);
    description.month = static_cast<uint8_t>(date.month);
    description.day = static_cast<uint8_t>(date.day);
    description.hour = static_cast<uint8_t>(date.hour);
    description.minute = static_cast<uint8_t>(date.minute);

    Value const& reference = data.data["referenceSensor"];
    description.referenceDeviceID = static_cast<MDDeviceID>(reference["deviceID"].asInteger());
    // At most the field's 32 bytes; a serial that fills it has no terminator.
    std::string const serial = StringOrEmpty(reference["serial"]);
    std::memcpy(description.referenceSerial, serial.data(),
                std::min(serial.size(), sizeof description.referenceSerial));

    BridgeCheckDvError(TOVEL_EXEC(libpallastLoader::loader(), MDSetParameterDescription, device, description),
                       "Set sensor parameter description.");
    return BridgeResultOK(Value());
}

BridgeResult SensorIFSTempCorrectParam::Post(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "IFSTempCorrectParam");
    BridgeCheckDvError(TOVEL_EXEC(libpallastLoader::loader(), MDCalcIFSTempCorrectParam, device),
                       "Calc IFS temp correct param.");
    return BridgeResultOK(Value());
}

BridgeResult SensorIFSBrightCorrectParamUpdate::Get(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "IFSBrightCorrectParamUpdate");
    // Read in every case: the device supports the update when the read succeeds.
    signed char enabled = 0;
    DvError const result =
        TOVEL_EXEC(libpallastLoader::loader(), MDGetIFSBrightCorrectParamUpdateEnabled, device, &enabled);
    if (HasQuery(data, "supports")) return BridgeResultOK(Value(result.code == 0));
    BridgeCheckDvError(result, "Get IFS bright correct param update enabled.");
    return BridgeResultOK(Value(enabled != 0));
}

BridgeResult SensorIFSBrightCorrectParamUpdate::Put(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "IFSBrightCorrectParamUpdate");
    signed char const enabled = data.data.asBool() ? 1 : 0;
    BridgeCheckDvError(
        TOVEL_EXEC(libpallastLoader::loader(), MDSetIFSBrightCorrectParamUpdateEnabled, device, enabled),
        "Set IFS bright correct param update enabled.");
    return BridgeResultOK(Value());
}

namespace {

// Device models whose options the endpoints know. Writing the calibration set
// is allowed on more models than reading it reports.
constexpr MDDeviceID kCalibrationDateModeModel = 8;
constexpr MDDeviceID kCalibrationSetReadable[] = {11, 19, 21, 22};
constexpr MDDeviceID kCalibrationSetWritable[] = {11, 12, 13, 17, 18, 19, 21, 22};

template <size_t N> bool OneOf(MDDeviceID id, MDDeviceID const (&ids)[N]) {
    return std::find(ids, ids + N, id) != ids + N;
}

int64_t GetOption(void* device, char const* option, char const* action) {
    int64_t value = 0;
    BridgeCheckDvError(TOVEL_EXEC(libpallastLoader::loader(), MDGetDeviceOptionValue, device, option, &value),
                       action);
    return value;
}

void SetOption(void* device, char const* option, int64_t value, char const* action) {
    BridgeCheckDvError(TOVEL_EXEC(libpallastLoader::loader(), MDSetDeviceOptionValue, device, option, value),
                       action);
}

// A calibration date in seconds of the platform's time type, in local time.
DateTime LocalDateTime(int64_t seconds) {
    time_t const t = static_cast<time_t>(seconds);
    struct tm local;
    std::memset(&local, 0, sizeof local);
    localtime_r(&t, &local);
    return DateTime(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
                    local.tm_sec);
}

} // namespace

BridgeResult SensorDeviceOption::Get(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "DeviceOption");
    Value options = Value::object();
    MDDeviceID const model = MDGetDeviceID(device);
    if (model == kCalibrationDateModeModel) {
        int64_t const date = GetOption(device, "OPT_CALDATE", "Get device option CALDATE.");
        options["calibrationDate"] = ToJson(LocalDateTime(date), false, true, false);
        options["calibrationMode"] = GetOption(device, "OPT_CALMODE", "Get device option CALMODE.");
    } else if (OneOf(model, kCalibrationSetReadable)) {
        options["calibrationSet"] =
            GetOption(device, "OPT_CALIBRATIONSET", "Get device option CALIBRATIONSET.");
    }
    return BridgeResultOK(options);
}

BridgeResult SensorDeviceOption::Put(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, "DeviceOption");
    MDDeviceID const model = MDGetDeviceID(device);
    if (OneOf(model, kCalibrationSetWritable)) {
        if (data.data.contains("calibrationSet"))
            SetOption(device, "OPT_CALIBRATIONSET", data.data["calibrationSet"].asInteger(),
                      "Set device option CALIBRATIONSET.");
    } else if (model == kCalibrationDateModeModel) {
        // The calibration date is read-only.
        if (data.data.contains("calibrationMode"))
            SetOption(device, "OPT_CALMODE", data.data["calibrationMode"].asInteger(),
                      "Set device option CALMODE.");
    }
    return BridgeResultOK(Value());
}

} // namespace bridge
} // namespace tovel

// The data set selection, the reference-sensor description and the correlation
// data of a monitor's built-in sensor.
#include "sensorcontrol/bridge/SensorCorrelationDetail.h"

#include <algorithm>

#include "devices/dvc.h"
#include "devices/pallast.h"
#include "devices/quorsensor.h"
#include "sensorcontrol/MonitorLock.h"
#include "share/error_check.h"
#include "share/json_utils.h"
#include "share/lib/libdvcLoader.h"
#include "share/lib/libquorSensorLoader.h"

namespace tovel {
namespace bridge {
namespace detail {

using quilljson::Value;

MonitorIdentity GetMonitorIdentity(void* monitor) {
    MonitorIdentity identity;
    GetSerialProductWithHIDHandle(monitor, &identity.product, &identity.serial, true);
    identity.panelRevision =
        TOVEL_EXEC(libdvcLoader::loader(), DvCtrlGetPanelRevision, identity.product, identity.serial);
    return identity;
}

void ApplyBuiltinSensorDataIndex(void* monitor, DvCtrlHZEPriority* priority, bool factory) {
    char product[9] = {};
    char serial[17] = {};
    GetSerialProductWithHIDHandle(monitor, &product, &serial, true);
    MonitorLock lock(monitor);

    libdvcLoader& dvc = libdvcLoader::loader();
    CSSG2_COLORSENSOR_DATA_INDEX index = 0;
    // The 9-character text first (see MonitorIdentity).
    if (TOVEL_EXEC(dvc, DvCtrlSupportedHZEPriority, product, serial) != 0) {
        DvCtrlHZEPriority read = 0;
        BridgeCheckDvError(TOVEL_EXEC(dvc, DvCtrlGetHZEPriority, product, serial, &read),
                           "Get HZE priority.");
        if (priority != nullptr) *priority = read;
        index = read == 2 ? 1 : 0;
    }

    lock.lock();
    libquorSensorLoader& sensor = libquorSensorLoader::loader();
    CSSG2_COLORSENSOR_DATA const dataSet = factory ? 0 : 3;
    // Older sensors lack the first form; its failure only selects the second.
    if (TOVEL_EXEC(sensor, CSSG2H_SetColorSensorDataIndex, monitor, dataSet, 0).code >= 0) return;
    CSSG2_COLORSENSOR_DATA_PAGE const page = factory ? 0 : 1;
    BridgeCheckDvError(TOVEL_EXEC(sensor, CSSG2H_SetColorSensorDataIndex2, monitor, page, index),
                       "Set color sensor data index.");
}

Value GetCorrelationDescription(void* monitor) {
    MonitorLock lock(monitor);
    lock.lock();
    CSSG2_Date date = Zeroed<CSSG2_Date>();
    int deviceID = 0;
    char serial[33] = {};
    DvError const result = TOVEL_EXEC(libquorSensorLoader::loader(), CSSG2H_GetCriterionSensorDescription,
                                      monitor, &date, &deviceID, serial);
    lock.unlock();
    BridgeCheckDvError(result, "Get criterion sensor descripction.");

    if (date.year == 0 && date.month == 0 && date.day == 0 && date.hour == 0 && date.minute == 0 &&
        deviceID == 0 && serial[0] == '\0')
        return Value();
    Value reference = Value::object();
    reference["deviceID"] = deviceID;
    reference["serial"] = BufferText(serial);
    Value json = Value::object();
    json["date"] = ToJson(DateTimeFromCSSG2Date(date), true, false, false);
    json["referenceSensor"] = reference;
    return json;
}

void SetCorrelationDescription(void* monitor, Value const& json) {
    CSSG2_Date const date = CSSG2DateFromDateTime(DateTimeFromJson(json["date"]));
    Value const& reference = json["referenceSensor"];
    int const deviceID = JsonToInt32(reference["deviceID"]);
    std::string const text = StringOf(reference["serial"]);
    char serial[33] = {};
    std::copy_n(text.begin(), std::min<size_t>(text.size(), 32), serial);

    MonitorLock lock(monitor);
    lock.lock();
    BridgeCheckDvError(TOVEL_EXEC(libquorSensorLoader::loader(), CSSG2H_SetCriterionSensorDescription,
                                  monitor, date, deviceID, serial),
                       "Set criterion sensor descripction.");
}

Value GetCorrelationData(void* monitor, void* device, DvCtrlHZEPriority priority, bool factory) {
    uint32_t const kind = MDGetDeviceID(device);
    MonitorLock lock(monitor);
    lock.lock();
    libquorSensorLoader& sensor = libquorSensorLoader::loader();

    if (IsIFSv3Kind(kind)) {
        MDIFSv3CorrelationData d = Zeroed<MDIFSv3CorrelationData>();
        BridgeCheckDvError(TOVEL_EXEC(sensor, CSSG2H_R2XCGetRefParam, monitor, &d.reference),
                           "Get color sensor reference parameter.");
        BridgeCheckDvError(
            TOVEL_EXEC(sensor, CSSG2H_R2XCGetNormalizedMeasurementValue, monitor, &d.normalizedMeasurement),
            "Get color sensor normalized measurement data.");
        BridgeCheckDvError(TOVEL_EXEC(sensor, CSSG2H_R2XCGetToneCorrectionParam, monitor, &d.toneCorrection),
                           "Get color sensor tone correction parameter.");
        BridgeCheckDvError(TOVEL_EXEC(sensor, CSSG2H_R2XCGetRefToneParam, monitor, &d.referenceTone),
                           "Get color sensor reference tone parameter.");
        return ToJson(d);
    }

    MDCSSG2CorrelationDataEx d = Zeroed<MDCSSG2CorrelationDataEx>();
    MDCSSG2CalibrationData& calibration = d.calibrationData;
    BridgeCheckDvError(TOVEL_EXEC(sensor, CSSG2H_GetColorSensorCalibData, monitor,
                                  &calibration.criterionBrightness, &calibration.criterionTemperature,
                                  &calibration.coefficientType, &calibration.calibration,
                                  &calibration.measurement),
                       "Get color sensor calibration data.");
    MDCSSG2CorrectionData& correction = d.correctionData;
    BridgeCheckDvError(TOVEL_EXEC(sensor, CSSG2H_GetColorSensorCorrectionData, monitor,
                                  &correction.correction, correction.step, &correction.measurement,
                                  &correction.gamma, &correction.threshold),
                       "Get color sensor correction data.");
    if (TOVEL_EXEC(sensor, CSSG2H_SupportedLuminanceLevelCorrectionParams, monitor) != 0) {
        MDCSSG2LuminanceLevelCorrectionParams& luminance = d.luminanceLevelCorrection;
        BridgeCheckDvError(TOVEL_EXEC(sensor, CSSG2H_GetLuminanceLevelCorrectionParams, monitor,
                                      QUORSENSOR_SENSOR_MODE(factory ? 1 : 0), priority == 2 ? 1u : 0u,
                                      &luminance.brightness, &luminance.dimmerOut),
                           "Get color sensor luminance level correction parameter.");
    }
    return ToJson(d);
}

void SetCorrelationData(void* monitor, void* device, DvCtrlHZEPriority priority, Value const& json,
                        bool factory) {
    uint32_t const kind = MDGetDeviceID(device);
    MonitorLock lock(monitor);
    lock.lock();
    libquorSensorLoader& sensor = libquorSensorLoader::loader();

    if (IsIFSv3Kind(kind)) {
        MDIFSv3CorrelationData const d = MDIFSv3CorrelationDataFromJson(json);
        if (json.contains("reference"))
            BridgeCheckDvError(TOVEL_EXEC(sensor, CSSG2H_R2XCSetRefParam, monitor, d.reference),
                               "Set color sensor reference parameter.");
        if (json.contains("normalizedMeasurement"))
            BridgeCheckDvError(TOVEL_EXEC(sensor, CSSG2H_R2XCSetNormalizedMeasurementValue, monitor,
                                          d.normalizedMeasurement),
                               "Set color sensor normalized measurement data.");
        if (json.contains("toneCorrection"))
            BridgeCheckDvError(
                TOVEL_EXEC(sensor, CSSG2H_R2XCSetToneCorrectionParam, monitor, d.toneCorrection),
                "Set color sensor tone correction parameter.");
        if (json.contains("referenceTone"))
            BridgeCheckDvError(TOVEL_EXEC(sensor, CSSG2H_R2XCSetRefToneParam, monitor, d.referenceTone),
                               "Set color sensor reference tone parameter.");
        return;
    }

    MDCSSG2CorrelationDataEx const d = MDCSSG2CorrelationDataExFromJson(json);
    if (json.contains("calibrationData")) {
        MDCSSG2CalibrationData const& c = d.calibrationData;
        BridgeCheckDvError(TOVEL_EXEC(sensor, CSSG2H_SetColorSensorCalibData, monitor, c.criterionBrightness,
                                      c.criterionTemperature, c.coefficientType, &c.calibration,
                                      &c.measurement),
                           "Set color sensor calibration data.");
        BridgeCheckDvError(TOVEL_EXEC(sensor, CSSG2H_SendColorSensorCalibData, monitor),
                           "Send color sensor calibration data.");
    }
    if (json.contains("correctionData")) {
        MDCSSG2CorrectionData const& c = d.correctionData;
        BridgeCheckDvError(TOVEL_EXEC(sensor, CSSG2H_SetColorSensorCorrectionData, monitor, &c.correction,
                                      c.step, &c.measurement, c.gamma, c.threshold),
                           "Set color sensor correction data.");
        BridgeCheckDvError(TOVEL_EXEC(sensor, CSSG2H_SendColorSensorCorrectionData, monitor),
                           "Send color sensor correction data.");
    }
    if (json.contains("luminanceLevelCorrection") &&
        TOVEL_EXEC(sensor, CSSG2H_SupportedLuminanceLevelCorrectionParams, monitor) != 0) {
        MDCSSG2LuminanceLevelCorrectionParams const& l = d.luminanceLevelCorrection;
        BridgeCheckDvError(TOVEL_EXEC(sensor, CSSG2H_SetLuminanceLevelCorrectionParams, monitor,
                                      QUORSENSOR_SENSOR_MODE(factory ? 1 : 0), priority == 2 ? 1u : 0u,
                                      l.brightness, l.dimmerOut),
                           "Set color sensor luminance level correction parameter.");
    }
}

} // namespace detail
} // namespace bridge
} // namespace tovel

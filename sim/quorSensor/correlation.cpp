// libquorSensor: the correlation data of the selected data set. The R2XC
// functions serve first-generation sensors (device id 0x130, 0x131), the
// calibration and correction data second-generation ones; a sensor of the
// other generation answers "Unsupported.". Set stores at once; Send only
// confirms (it appears in the journal).
#include "devices/quorsensor.h"
#include "quorSensor/builtin.h"

namespace {

// Get and Set of one R2XC part of the selected set's first-generation record.
template <typename Part>
DvError getPart(char const* function, void* hid, Part* out, Part MDIFSv3CorrelationData::*member) {
    sim::Call call(function);
    call.handle(hid);
    DvError result;
    sim::Monitor* monitor = sim::generationOrResult(call, hid, true, &result);
    if (monitor == nullptr) return result;
    if (out == nullptr) return sim::result(sim::code::kInvalidBuffer);
    *out = sim::selectedSet(*monitor).ifsv3.*member;
    return sim::ok();
}

template <typename Part>
DvError setPart(char const* function, void* hid, Part const& value, Part MDIFSv3CorrelationData::*member) {
    sim::Call call(function);
    call.handle(hid).record(value);
    DvError result;
    sim::Monitor* monitor = sim::generationOrResult(call, hid, true, &result);
    if (monitor == nullptr) return result;
    sim::selectedSet(*monitor).ifsv3.*member = value;
    return sim::ok();
}

DvError send(char const* function, void* hid) {
    sim::Call call(function);
    call.handle(hid);
    DvError result;
    sim::Monitor* monitor = sim::generationOrResult(call, hid, false, &result);
    return monitor == nullptr ? result : sim::ok();
}

} // namespace

extern "C" {

DvError CSSG2H_R2XCGetRefParam(void* hid, R2XC_RefParam* param) {
    return getPart("CSSG2H_R2XCGetRefParam", hid, param, &MDIFSv3CorrelationData::reference);
}
DvError CSSG2H_R2XCSetRefParam(void* hid, R2XC_RefParam param) {
    return setPart("CSSG2H_R2XCSetRefParam", hid, param, &MDIFSv3CorrelationData::reference);
}
DvError CSSG2H_R2XCGetNormalizedMeasurementValue(void* hid, R2XC_NormalizedMeasurementValue* value) {
    return getPart("CSSG2H_R2XCGetNormalizedMeasurementValue", hid, value,
                   &MDIFSv3CorrelationData::normalizedMeasurement);
}
DvError CSSG2H_R2XCSetNormalizedMeasurementValue(void* hid, R2XC_NormalizedMeasurementValue value) {
    return setPart("CSSG2H_R2XCSetNormalizedMeasurementValue", hid, value,
                   &MDIFSv3CorrelationData::normalizedMeasurement);
}
DvError CSSG2H_R2XCGetToneCorrectionParam(void* hid, R2XC_ToneCorrectionParam* param) {
    return getPart("CSSG2H_R2XCGetToneCorrectionParam", hid, param, &MDIFSv3CorrelationData::toneCorrection);
}
DvError CSSG2H_R2XCSetToneCorrectionParam(void* hid, R2XC_ToneCorrectionParam param) {
    return setPart("CSSG2H_R2XCSetToneCorrectionParam", hid, param, &MDIFSv3CorrelationData::toneCorrection);
}
DvError CSSG2H_R2XCGetRefToneParam(void* hid, R2XC_RefToneParam* param) {
    return getPart("CSSG2H_R2XCGetRefToneParam", hid, param, &MDIFSv3CorrelationData::referenceTone);
}
DvError CSSG2H_R2XCSetRefToneParam(void* hid, R2XC_RefToneParam param) {
    return setPart("CSSG2H_R2XCSetRefToneParam", hid, param, &MDIFSv3CorrelationData::referenceTone);
}

DvError CSSG2H_GetColorSensorCalibData(void* hid, double* brightness, double* temperature,
                                       CSSG2_COLORSENSOR_COEFFICIENTTYPE* coefficientType,
                                       KMCAL_CALDATA_USERPROOF* calibration,
                                       KMCAL_MEASDATA_USERPROOF* measurement) {
    sim::Call call("CSSG2H_GetColorSensorCalibData");
    call.handle(hid);
    DvError result;
    sim::Monitor* monitor = sim::generationOrResult(call, hid, false, &result);
    if (monitor == nullptr) return result;
    if (brightness == nullptr || temperature == nullptr || coefficientType == nullptr ||
        calibration == nullptr || measurement == nullptr)
        return sim::result(sim::code::kInvalidBuffer);
    MDCSSG2CalibrationData const& data = sim::selectedSet(*monitor).calibration;
    *brightness = data.criterionBrightness;
    *temperature = data.criterionTemperature;
    *coefficientType = data.coefficientType;
    *calibration = data.calibration;
    *measurement = data.measurement;
    return sim::ok();
}

DvError CSSG2H_SetColorSensorCalibData(void* hid, double brightness, double temperature,
                                       CSSG2_COLORSENSOR_COEFFICIENTTYPE coefficientType,
                                       KMCAL_CALDATA_USERPROOF const* calibration,
                                       KMCAL_MEASDATA_USERPROOF const* measurement) {
    sim::Call call("CSSG2H_SetColorSensorCalibData");
    call.handle(hid).real(brightness).real(temperature).num(coefficientType);
    if (calibration != nullptr)
        call.record(*calibration);
    else
        call.null();
    if (measurement != nullptr)
        call.record(*measurement);
    else
        call.null();
    DvError result;
    sim::Monitor* monitor = sim::generationOrResult(call, hid, false, &result);
    if (monitor == nullptr) return result;
    if (calibration == nullptr || measurement == nullptr) return sim::result(sim::code::kInvalidArgument);
    sim::selectedSet(*monitor).calibration =
        MDCSSG2CalibrationData{brightness, temperature, coefficientType, *calibration, *measurement};
    return sim::ok();
}

DvError CSSG2H_SendColorSensorCalibData(void* hid) {
    return send("CSSG2H_SendColorSensorCalibData", hid);
}

DvError CSSG2H_GetColorSensorCorrectionData(void* hid, KMCAL_CALDATA_CORRECT* correction, double* step,
                                            KMCAL_MEASDATA_CORRECT_GRAY* measurement, double* gamma,
                                            double* threshold) {
    sim::Call call("CSSG2H_GetColorSensorCorrectionData");
    call.handle(hid);
    DvError result;
    sim::Monitor* monitor = sim::generationOrResult(call, hid, false, &result);
    if (monitor == nullptr) return result;
    if (correction == nullptr || step == nullptr || measurement == nullptr || gamma == nullptr ||
        threshold == nullptr)
        return sim::result(sim::code::kInvalidBuffer);
    MDCSSG2CorrectionData const& data = sim::selectedSet(*monitor).correction;
    *correction = data.correction;
    for (int i = 0; i < 9; ++i)
        step[i] = data.step[i];
    *measurement = data.measurement;
    *gamma = data.gamma;
    *threshold = data.threshold;
    return sim::ok();
}

DvError CSSG2H_SetColorSensorCorrectionData(void* hid, KMCAL_CALDATA_CORRECT const* correction,
                                            double const* step,
                                            KMCAL_MEASDATA_CORRECT_GRAY const* measurement, double gamma,
                                            double threshold) {
    sim::Call call("CSSG2H_SetColorSensorCorrectionData");
    call.handle(hid);
    if (correction != nullptr)
        call.record(*correction);
    else
        call.null();
    call.reals(step, 9);
    if (measurement != nullptr)
        call.record(*measurement);
    else
        call.null();
    call.real(gamma).real(threshold);
    DvError result;
    sim::Monitor* monitor = sim::generationOrResult(call, hid, false, &result);
    if (monitor == nullptr) return result;
    if (correction == nullptr || step == nullptr || measurement == nullptr)
        return sim::result(sim::code::kInvalidArgument);
    MDCSSG2CorrectionData& data = sim::selectedSet(*monitor).correction;
    data.correction = *correction;
    for (int i = 0; i < 9; ++i)
        data.step[i] = step[i];
    data.measurement = *measurement;
    data.gamma = gamma;
    data.threshold = threshold;
    return sim::ok();
}

DvError CSSG2H_SendColorSensorCorrectionData(void* hid) {
    return send("CSSG2H_SendColorSensorCorrectionData", hid);
}

} // extern "C"

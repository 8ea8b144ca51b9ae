// libquorSensor of the Linux set. A built-in sensor is reached through its
// monitor's own channel, which Linux does not offer, and the set's libdvc never
// hands out a HID handle; so every reading, setting and stored data set answers
// unsupported and every "is it supported" question answers no.
#include "devices/quorsensor.h"
#include "codes.h"

namespace {
DvError const kUnsupported = pallast::result(pallast::code::kUnsupported);
} // namespace

extern "C" {

DvError CSSG2H_MeasureRGB(void*, double*, double*, double*) {
    return kUnsupported;
}
DvError CSSG2H_GetIRValue(void*, double*, double*) {
    return kUnsupported;
}
DvError CSSG2H_MeasureNotCorrelatedXYZCount(void*, double*, double*, double*) {
    return kUnsupported;
}

DvError CSSG2H_GetHumanDetectOnOff(void*, signed char*) {
    return kUnsupported;
}
DvError CSSG2H_SetHumanDetectOnOff(void*, signed char) {
    return kUnsupported;
}
DvError CSSG2H_GetHumanDetectMode(void*, CSSG2_HUMANDETECT_MODE*) {
    return kUnsupported;
}
DvError CSSG2H_SetHumanDetectMode(void*, CSSG2_HUMANDETECT_MODE) {
    return kUnsupported;
}

DvError CSSG2H_SetColorSensorDataIndex(void*, CSSG2_COLORSENSOR_DATA, int) {
    return kUnsupported;
}
DvError CSSG2H_SetColorSensorDataIndex2(void*, CSSG2_COLORSENSOR_DATA_PAGE, CSSG2_COLORSENSOR_DATA_INDEX) {
    return kUnsupported;
}

DvError CSSG2H_GetCriterionSensorDescription(void*, CSSG2_Date*, int*, char*) {
    return kUnsupported;
}
DvError CSSG2H_SetCriterionSensorDescription(void*, CSSG2_Date, int, char*) {
    return kUnsupported;
}

DvError CSSG2H_R2XCGetRefParam(void*, R2XC_RefParam*) {
    return kUnsupported;
}
DvError CSSG2H_R2XCSetRefParam(void*, R2XC_RefParam) {
    return kUnsupported;
}
DvError CSSG2H_R2XCGetNormalizedMeasurementValue(void*, R2XC_NormalizedMeasurementValue*) {
    return kUnsupported;
}
DvError CSSG2H_R2XCSetNormalizedMeasurementValue(void*, R2XC_NormalizedMeasurementValue) {
    return kUnsupported;
}
DvError CSSG2H_R2XCGetToneCorrectionParam(void*, R2XC_ToneCorrectionParam*) {
    return kUnsupported;
}
DvError CSSG2H_R2XCSetToneCorrectionParam(void*, R2XC_ToneCorrectionParam) {
    return kUnsupported;
}
DvError CSSG2H_R2XCGetRefToneParam(void*, R2XC_RefToneParam*) {
    return kUnsupported;
}
DvError CSSG2H_R2XCSetRefToneParam(void*, R2XC_RefToneParam) {
    return kUnsupported;
}

DvError CSSG2H_GetColorSensorCalibData(void*, double*, double*, CSSG2_COLORSENSOR_COEFFICIENTTYPE*,
                                       KMCAL_CALDATA_USERPROOF*, KMCAL_MEASDATA_USERPROOF*) {
    return kUnsupported;
}
DvError CSSG2H_SetColorSensorCalibData(void*, double, double, CSSG2_COLORSENSOR_COEFFICIENTTYPE,
                                       KMCAL_CALDATA_USERPROOF const*, KMCAL_MEASDATA_USERPROOF const*) {
    return kUnsupported;
}
DvError CSSG2H_SendColorSensorCalibData(void*) {
    return kUnsupported;
}
DvError CSSG2H_GetColorSensorCorrectionData(void*, KMCAL_CALDATA_CORRECT*, double*,
                                            KMCAL_MEASDATA_CORRECT_GRAY*, double*, double*) {
    return kUnsupported;
}
DvError CSSG2H_SetColorSensorCorrectionData(void*, KMCAL_CALDATA_CORRECT const*, double const*,
                                            KMCAL_MEASDATA_CORRECT_GRAY const*, double, double) {
    return kUnsupported;
}
DvError CSSG2H_SendColorSensorCorrectionData(void*) {
    return kUnsupported;
}

signed char CSSG2H_SupportedLuminanceLevelCorrectionParams(void*) {
    return 0;
}
DvError CSSG2H_GetLuminanceLevelCorrectionParams(void*, QUORSENSOR_SENSOR_MODE, unsigned int, double*,
                                                 uint16_t*) {
    return kUnsupported;
}
DvError CSSG2H_SetLuminanceLevelCorrectionParams(void*, QUORSENSOR_SENSOR_MODE, unsigned int, double,
                                                 uint16_t) {
    return kUnsupported;
}

signed char CSSG2H_SupportedXYZCorrectionMatrix8DXT(void*) {
    return 0;
}
DvError CSSG2H_GetXYZCorrectionMatrix8DXT(void*, double (*)[3]) {
    return kUnsupported;
}
DvError CSSG2H_SetXYZCorrectionMatrix8DXT(void*, double (*)[3]) {
    return kUnsupported;
}
DvError CSSG2H_GetXYZCorrectionMatrix(void*, double*) {
    return kUnsupported;
}
DvError CSSG2H_SetXYZCorrectionMatrix(void*, double*) {
    return kUnsupported;
}

} // extern "C"

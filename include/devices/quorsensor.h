/* libquorSensor: the built-in-sensor library (functions prefixed CSSG2H_),
 * opened at run time. The first argument is always the monitor's HID handle. */
#ifndef DEVICES_QUORSENSOR_H
#define DEVICES_QUORSENSOR_H

#include "records.h"

DEVICE_EXTERN_C_BEGIN

/* measurement */
DEVICE_API DvError CSSG2H_MeasureRGB(void* hid, double* r, double* g, double* b);
DEVICE_API DvError CSSG2H_GetIRValue(void* hid, double* ir, double* second);
DEVICE_API DvError CSSG2H_MeasureNotCorrelatedXYZCount(void* hid, double* x, double* y, double* z);

/* presence sensing */
DEVICE_API DvError CSSG2H_GetHumanDetectOnOff(void* hid, signed char* on);
DEVICE_API DvError CSSG2H_SetHumanDetectOnOff(void* hid, signed char on);
DEVICE_API DvError CSSG2H_GetHumanDetectMode(void* hid, CSSG2_HUMANDETECT_MODE* mode);
DEVICE_API DvError CSSG2H_SetHumanDetectMode(void* hid, CSSG2_HUMANDETECT_MODE mode);

/* which stored data set (current or factory page) later calls address */
DEVICE_API DvError CSSG2H_SetColorSensorDataIndex(void* hid, CSSG2_COLORSENSOR_DATA data, int value);
DEVICE_API DvError CSSG2H_SetColorSensorDataIndex2(void* hid, CSSG2_COLORSENSOR_DATA_PAGE page,
                                                   CSSG2_COLORSENSOR_DATA_INDEX index);

/* reference-sensor description; the serial buffer holds 33 characters */
DEVICE_API DvError CSSG2H_GetCriterionSensorDescription(void* hid, CSSG2_Date* date, int* deviceID,
                                                        char* serial);
DEVICE_API DvError CSSG2H_SetCriterionSensorDescription(void* hid, CSSG2_Date date, int deviceID,
                                                        char* serial);

/* correlation data, first generation */
DEVICE_API DvError CSSG2H_R2XCGetRefParam(void* hid, R2XC_RefParam* param);
DEVICE_API DvError CSSG2H_R2XCSetRefParam(void* hid, R2XC_RefParam param);
DEVICE_API DvError CSSG2H_R2XCGetNormalizedMeasurementValue(void* hid,
                                                            R2XC_NormalizedMeasurementValue* value);
DEVICE_API DvError CSSG2H_R2XCSetNormalizedMeasurementValue(void* hid, R2XC_NormalizedMeasurementValue value);
DEVICE_API DvError CSSG2H_R2XCGetToneCorrectionParam(void* hid, R2XC_ToneCorrectionParam* param);
DEVICE_API DvError CSSG2H_R2XCSetToneCorrectionParam(void* hid, R2XC_ToneCorrectionParam param);
DEVICE_API DvError CSSG2H_R2XCGetRefToneParam(void* hid, R2XC_RefToneParam* param);
DEVICE_API DvError CSSG2H_R2XCSetRefToneParam(void* hid, R2XC_RefToneParam param);

/* correlation data, second generation */
DEVICE_API DvError CSSG2H_GetColorSensorCalibData(void* hid, double* brightness, double* temperature,
                                                  CSSG2_COLORSENSOR_COEFFICIENTTYPE* coefficientType,
                                                  KMCAL_CALDATA_USERPROOF* calibration,
                                                  KMCAL_MEASDATA_USERPROOF* measurement);
DEVICE_API DvError CSSG2H_SetColorSensorCalibData(void* hid, double brightness, double temperature,
                                                  CSSG2_COLORSENSOR_COEFFICIENTTYPE coefficientType,
                                                  KMCAL_CALDATA_USERPROOF const* calibration,
                                                  KMCAL_MEASDATA_USERPROOF const* measurement);
DEVICE_API DvError CSSG2H_SendColorSensorCalibData(void* hid);
DEVICE_API DvError CSSG2H_GetColorSensorCorrectionData(void* hid, KMCAL_CALDATA_CORRECT* correction,
                                                       double* step /* 9 */,
                                                       KMCAL_MEASDATA_CORRECT_GRAY* measurement,
                                                       double* gamma, double* threshold);
DEVICE_API DvError CSSG2H_SetColorSensorCorrectionData(void* hid, KMCAL_CALDATA_CORRECT const* correction,
                                                       double const* step /* 9 */,
                                                       KMCAL_MEASDATA_CORRECT_GRAY const* measurement,
                                                       double gamma, double threshold);
DEVICE_API DvError CSSG2H_SendColorSensorCorrectionData(void* hid);
DEVICE_API signed char CSSG2H_SupportedLuminanceLevelCorrectionParams(void* hid);
DEVICE_API DvError CSSG2H_GetLuminanceLevelCorrectionParams(void* hid, QUORSENSOR_SENSOR_MODE mode,
                                                            unsigned int index, double* brightness,
                                                            uint16_t* dimmerOut);
DEVICE_API DvError CSSG2H_SetLuminanceLevelCorrectionParams(void* hid, QUORSENSOR_SENSOR_MODE mode,
                                                            unsigned int index, double brightness,
                                                            uint16_t dimmerOut);

/* XYZ correction matrix: 3x3 always, 8x3 where supported */
DEVICE_API signed char CSSG2H_SupportedXYZCorrectionMatrix8DXT(void* hid);
DEVICE_API DvError CSSG2H_GetXYZCorrectionMatrix8DXT(void* hid, double (*matrix)[3] /* [8][3] */);
DEVICE_API DvError CSSG2H_SetXYZCorrectionMatrix8DXT(void* hid, double (*matrix)[3] /* [8][3] */);
DEVICE_API DvError CSSG2H_GetXYZCorrectionMatrix(void* hid, double* matrix /* 9 */);
DEVICE_API DvError CSSG2H_SetXYZCorrectionMatrix(void* hid, double* matrix /* 9 */);

DEVICE_EXTERN_C_END

#endif

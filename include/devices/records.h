/* Records exchanged with the device libraries. Field order is the libraries'. */
#ifndef DEVICES_RECORDS_H
#define DEVICES_RECORDS_H

#include "device_api.h"

DEVICE_EXTERN_C_BEGIN

/* ---- measurement device (libpallast) ---- */

/* A measured colour; which members a measurement fills depends on its space. */
typedef struct colour {
    double X, Y, Z;
    double x, y;
    double L, a, b;
    double C, h, T;
    double R, G, B;
    double M, K;
} colour;

typedef struct MDMeasurementData {
    double value[16];
} MDMeasurementData;

typedef int32_t MDExteriorLightingState;
typedef int32_t MDTargetMarkerStatus;

typedef struct MDParameterDescription {
    uint16_t year;
    uint8_t month;
    uint8_t day;
    uint8_t hour;
    uint8_t minute;
    MDDeviceID referenceDeviceID;
    char referenceSerial[32]; /* not necessarily terminated */
} MDParameterDescription;

/* ---- built-in sensor (libquorSensor) ---- */

typedef struct CSSG2_Date {
    uint16_t year;
    uint8_t month;
    uint8_t day;
    uint8_t hour;
    uint8_t minute;
} CSSG2_Date;

typedef int32_t CSSG2_HUMANDETECT_MODE;
typedef int32_t CSSG2_COLORSENSOR_DATA;
typedef int32_t CSSG2_COLORSENSOR_DATA_PAGE;
typedef int32_t CSSG2_COLORSENSOR_DATA_INDEX;
typedef int32_t CSSG2_COLORSENSOR_COEFFICIENTTYPE;
typedef int32_t QUORSENSOR_SENSOR_MODE;

/* ---- monitor control (libdvc) ---- */

typedef uint32_t DvCtrlHZEPriority;

/* ---- correlation records, first sensor generation (R2XC) ---- */

typedef struct R2XC_Value {
    double X, Y, Z, R, G, B;
} R2XC_Value;

typedef struct R2XC_ValueRGB {
    R2XC_Value red, green, blue;
} R2XC_ValueRGB;

typedef struct R2XC_ValueRGBK {
    R2XC_Value red, green, blue, black;
} R2XC_ValueRGBK;

typedef R2XC_ValueRGBK R2XC_NormalizedMeasurementValue;

typedef struct R2XC_RefParam {
    double ambientTemperature;
    double setTemperature;
    int32_t dimmerOut;
    double toneRed, toneGreen, toneBlue;
} R2XC_RefParam;

typedef struct R2XC_RefToneParam {
    double tone[7];
    double gamma[8];
} R2XC_RefToneParam;

typedef struct R2XC_ToneCorrectionParam {
    R2XC_ValueRGB value[7];
} R2XC_ToneCorrectionParam;

typedef struct MDIFSv3CorrelationData {
    R2XC_RefParam reference;
    R2XC_RefToneParam referenceTone;
    R2XC_NormalizedMeasurementValue normalizedMeasurement;
    R2XC_ToneCorrectionParam toneCorrection;
} MDIFSv3CorrelationData;

/* ---- correlation records, second sensor generation (KMCAL / MDCSSG2) ---- */

typedef struct KMCAL_G2XYZcnt {
    double X, Y, Z;
} KMCAL_G2XYZcnt;

typedef struct KMCAL_StdXYZ {
    double X, Y, Z;
} KMCAL_StdXYZ;

typedef struct KMCAL_G2RGBems {
    double R, G, B;
} KMCAL_G2RGBems;

typedef struct KMCAL_CALDATA_USERPROOF {
    KMCAL_G2XYZcnt XYZ0;
    KMCAL_StdXYZ XYZBlack;
    double a[3][3];
    double b[3][3];
} KMCAL_CALDATA_USERPROOF;

/* Black precedes white in both runs. */
typedef struct KMCAL_MEASDATA_USERPROOF {
    KMCAL_StdXYZ referenceRed, referenceGreen, referenceBlue, referenceBlack, referenceWhite;
    KMCAL_G2XYZcnt XYZRed, XYZGreen, XYZBlue, XYZBlack, XYZWhite;
} KMCAL_MEASDATA_USERPROOF;

/* Nine pairs, stored as the run of first members, then the run of second members. */
typedef struct KMCAL_CALDATA_CORRECT {
    KMCAL_G2XYZcnt reference[9];
    KMCAL_StdXYZ XYZ[9];
} KMCAL_CALDATA_CORRECT;

typedef struct KMCAL_MEASDATA_CORRECT_GRAY {
    KMCAL_StdXYZ reference[9];
    KMCAL_G2RGBems RGB[9];
} KMCAL_MEASDATA_CORRECT_GRAY;

typedef struct MDCSSG2CalibrationData {
    double criterionBrightness;
    double criterionTemperature;
    CSSG2_COLORSENSOR_COEFFICIENTTYPE coefficientType;
    KMCAL_CALDATA_USERPROOF calibration;
    KMCAL_MEASDATA_USERPROOF measurement;
} MDCSSG2CalibrationData;

typedef struct MDCSSG2CorrectionData {
    KMCAL_CALDATA_CORRECT correction;
    double step[9];
    KMCAL_MEASDATA_CORRECT_GRAY measurement;
    double gamma;
    double threshold;
} MDCSSG2CorrectionData;

typedef struct MDCSSG2LuminanceLevelCorrectionParams {
    double brightness;
    uint16_t dimmerOut;
} MDCSSG2LuminanceLevelCorrectionParams;

typedef struct MDCSSG2CorrelationDataEx {
    MDCSSG2CalibrationData calibrationData;
    MDCSSG2CorrectionData correctionData;
    MDCSSG2LuminanceLevelCorrectionParams luminanceLevelCorrection;
} MDCSSG2CorrelationDataEx;

/* ---- correlation databases ---- */

typedef struct MDCorrelationInfo {
    int32_t referenceDeviceID;
    char referenceSerial[33];
    char monitorProduct[33];
    char monitorSerial[17];
    uint16_t panelRevision;
} MDCorrelationInfo;

typedef struct MDCorrelationMatrixInfo {
    MDDeviceID referenceDeviceID;
    char referenceSerial[33];
    char monitorProduct[33];
    char monitorSerial[17];
    uint16_t panelRevision;
} MDCorrelationMatrixInfo;

DEVICE_EXTERN_C_END

#endif

/* libpallast: the measurement-device library (functions prefixed MD).
 *
 * libsensorcontrol links this library; the functions marked "by name" are
 * looked up at run time instead, because older versions of the library lack
 * them. A sensor handle is the opaque pointer that the open functions return. */
#ifndef DEVICES_PALLAST_H
#define DEVICES_PALLAST_H

#include <stddef.h>

#include "records.h"

DEVICE_EXTERN_C_BEGIN

/* set-up */
DEVICE_API DvError MDInitDeviceLibrariesDirectoryPath(char const* path);
DEVICE_API signed char MDSupports32bitCompatibilityProcess(void);
DEVICE_API DvError MDLaunch32bitCompatibilityProcess(char const* processPath, char const* applicationName);
DEVICE_API DvError MDQuit32bitCompatibilityProcess(void);

/* discovery and opening */
DEVICE_API int32_t MDEnumConnectedDevices(uint32_t index, MDDeviceID* deviceID, uint64_t* individualID);
DEVICE_API char const* MDGetNameFromDeviceID(MDDeviceID deviceID);
DEVICE_API DvError MDOpen(MDDeviceID deviceID, void** handle);
DEVICE_API DvError MDOpenWithHIDHandle(void* hidHandle, void** handle);
DEVICE_API DvError MDOpenWithIndividualID(uint64_t individualID, void** handle);
DEVICE_API DvError MDOpenPallastControlPanel(void);
DEVICE_API DvError MDClose(void** handle);

/* identity and capabilities */
DEVICE_API void* MDGetHIDHandle(void* handle); /* null for a sensor not built into a monitor */
DEVICE_API MDDeviceID MDGetDeviceID(void* handle);
DEVICE_API char const* MDGetName(void* handle);
DEVICE_API char const* MDGetSerialNumber(void* handle);
DEVICE_API signed char MDIsValidConnection(void* handle);
DEVICE_API signed char MDIsCalibrationNecessary(void* handle);
DEVICE_API signed char MDSupportsAmbient(void* handle);
DEVICE_API signed char MDSupportsReflectance(void* handle);
DEVICE_API signed char MDHasArm(void* handle);
DEVICE_API signed char MDHasMultipleSensorPosition(void* handle);
DEVICE_API signed char MDHasTargetMarker(void* handle);  /* by name */
DEVICE_API signed char MDHasExteriorLight(void* handle); /* by name */
DEVICE_API DvError MDSpectralRadianceFixedData(void* handle, int64_t* min, int64_t* max, int64_t* bandWidth,
                                               int64_t* count);

/* mode, calibration, measurement */
DEVICE_API DvError MDSetMode(void* handle, int32_t mode, int32_t observerKey);
DEVICE_API DvError MDCalibrate(void* handle);
DEVICE_API DvError MDMeasureXYZ2(void* handle, colour* rawColour, colour* colour);
DEVICE_API DvError MDMeasureRaw(void* handle, MDMeasurementData* data); /* by name */

/* mechanics and settings */
DEVICE_API DvError MDTakeOutArm(void* handle);
DEVICE_API DvError MDTakeInArm(void* handle);
DEVICE_API DvError MDGetSensorPosition(void* handle, int32_t* position);
DEVICE_API DvError MDGetExteriorLightingState(void* handle, MDExteriorLightingState* state);     /* by name */
DEVICE_API DvError MDSetExteriorLightingState(void* handle, MDExteriorLightingState state);      /* by name */
DEVICE_API DvError MDGetParameterDescription(void* handle, MDParameterDescription* description); /* by name */
DEVICE_API DvError MDSetParameterDescription(void* handle, MDParameterDescription description);  /* by name */
DEVICE_API DvError MDGetTargetMarker(void* handle, MDTargetMarkerStatus* status);                /* by name */
DEVICE_API DvError MDSetTargetMarker(void* handle, MDTargetMarkerStatus status);                 /* by name */
DEVICE_API DvError MDCalcIFSTempCorrectParam(void* handle);                                      /* by name */
DEVICE_API DvError MDGetIFSBrightCorrectParamUpdateEnabled(void* handle, signed char* enabled);  /* by name */
DEVICE_API DvError MDSetIFSBrightCorrectParamUpdateEnabled(void* handle, signed char enabled);   /* by name */
DEVICE_API DvError MDGetDeviceOptionValue(void* handle, char const* option, int64_t* value);     /* by name */
DEVICE_API DvError MDSetDeviceOptionValue(void* handle, char const* option, int64_t value);      /* by name */

/* corrections */
DEVICE_API DvError MDApplyEmissionCorrection(void* handle, int32_t observerKey, char const* product,
                                             uint16_t panelRevision);
DEVICE_API DvError MDApplyPaperWhiteCorrection(void* handle, int32_t observerKey);
DEVICE_API DvError MDApply10DegCorrectionFor2DegCorrelatedMeasurement(void* handle);
DEVICE_API DvError MDApplyPlainCorrectionFor2DegCorrelatedMeasurement(void* handle);
DEVICE_API DvError MDApplyPlainCorrection(void* handle);
DEVICE_API DvError MDReleaseCorrection(void* handle);
DEVICE_API uint32_t MDGetExCorrectionCount(void* handle);
/* With a null buffer only the size is reported. */
DEVICE_API DvError MDGetExCorrectionName(void* handle, uint32_t index, char* buffer, uint32_t* size);
DEVICE_API DvError MDGetExCorrectionIndex(void* handle, uint32_t* index);
DEVICE_API DvError MDSetExCorrectionIndex(void* handle, uint32_t index);

/* correlation corrections stored for a sensor; a non-zero code ends the list */
DEVICE_API DvError MDEnumCorrelationCorrection(void* handle, uint64_t index, int32_t* referenceDeviceID,
                                               char referenceSerial[33], char monitorProduct[33],
                                               char monitorSerial[17], uint64_t* correlationID);
DEVICE_API DvError MDApplyCorrelationCorrection(void* handle, uint64_t correlationID);
DEVICE_API DvError MDApplyCorrelationCorrectionWithRecalcLuminanceLevelCorrection(void* handle,
                                                                                  uint64_t correlationID,
                                                                                  colour targetWhite);
DEVICE_API DvError MDClear9PointsCorrelationCorrection(void* handle);
DEVICE_API DvError MDReleaseCorrelationCorrection(void* handle);

/* correlation matrices stored for a sensor and monitor (by name) */
DEVICE_API DvError MDEnumCorrelationMatrix(void* handle, char const* monitorProduct, uint16_t panelRevision,
                                           uint64_t index, MDDeviceID* referenceDeviceID,
                                           char referenceSerial[33], uint64_t* matrixID);
DEVICE_API DvError MDApplyCorrelationMatrix(void* handle, uint64_t matrixID);
DEVICE_API DvError MDReleaseCorrelationMatrix(void* handle);

DEVICE_EXTERN_C_END

#endif

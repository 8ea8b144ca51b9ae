/* libsensorcontrol: the public C interface a host application calls.
 *
 * Every endpoint takes four NUL-terminated JSON texts (request with its
 * "method", path parameters, query, body; pass "" for nothing), runs the
 * request on the calling thread and returns a promise id whose response the
 * host collects with BridgeHelperGetResponse: once with a null buffer for the
 * length (text length + 1), then with a buffer, which removes the entry. */
#ifndef SENSORCONTROL_SENSORCONTROL_H
#define SENSORCONTROL_SENSORCONTROL_H

#include <stdbool.h>
#include <stdint.h>

#if defined(__GNUC__)
#define SENSORCONTROL_API __attribute__((visibility("default")))
#else
#define SENSORCONTROL_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

SENSORCONTROL_API void Setup(void);
SENSORCONTROL_API void TearDown(void);

SENSORCONTROL_API uint32_t BridgeHelperGetResponse(uint32_t id, char* buffer, uint32_t* length);

#define SENSORCONTROL_ENDPOINT(name)                                                                    \
    SENSORCONTROL_API uint32_t name(char const* request, char const* parameters, char const* query,      \
                                    char const* data)

/* discovery and opening */
SENSORCONTROL_ENDPOINT(Sensors);
SENSORCONTROL_ENDPOINT(SensorsName);
SENSORCONTROL_ENDPOINT(DeviceID);
SENSORCONTROL_ENDPOINT(IndividualID);
SENSORCONTROL_ENDPOINT(Monitors);
SENSORCONTROL_ENDPOINT(PallastControlPanel);
/* information, mode, calibration */
SENSORCONTROL_ENDPOINT(Sensor);
SENSORCONTROL_ENDPOINT(SensorMode);
SENSORCONTROL_ENDPOINT(SensorCalibration);
/* measurement */
SENSORCONTROL_ENDPOINT(SensorXYZ);
SENSORCONTROL_ENDPOINT(SensorRawData);
SENSORCONTROL_ENDPOINT(SensorRGB);
SENSORCONTROL_ENDPOINT(SensorIR);
SENSORCONTROL_ENDPOINT(SensorXYZWithoutCorrelation);
/* mechanics and settings */
SENSORCONTROL_ENDPOINT(SensorArm);
SENSORCONTROL_ENDPOINT(SensorPosition);
SENSORCONTROL_ENDPOINT(SensorExteriorLight);
SENSORCONTROL_ENDPOINT(SensorParameterDescription);
SENSORCONTROL_ENDPOINT(SensorTargetMarker);
SENSORCONTROL_ENDPOINT(SensorIFSTempCorrectParam);
SENSORCONTROL_ENDPOINT(SensorIFSBrightCorrectParamUpdate);
SENSORCONTROL_ENDPOINT(SensorDeviceOption);
/* corrections */
SENSORCONTROL_ENDPOINT(SensorCorrection);
SENSORCONTROL_ENDPOINT(SensorExCorrection);
/* presence sensing */
SENSORCONTROL_ENDPOINT(SensorAmbrelSense);
SENSORCONTROL_ENDPOINT(SensorAmbrelSenseLevel);
/* built-in sensor correlation */
SENSORCONTROL_ENDPOINT(SensorCorrelation);
SENSORCONTROL_ENDPOINT(SensorCorrelation9Points);
SENSORCONTROL_ENDPOINT(SensorCorrelationDescription);
SENSORCONTROL_ENDPOINT(SensorCorrelationData);
SENSORCONTROL_ENDPOINT(SensorCorrelationDatabase);
SENSORCONTROL_ENDPOINT(SensorCorrelationMatrix);
SENSORCONTROL_ENDPOINT(SensorCorrelationMatrixData);
SENSORCONTROL_ENDPOINT(SensorCorrelationMatrixDatabase);

#undef SENSORCONTROL_ENDPOINT

/* handle management, for the host and its other plug-ins; results are DvError codes */
SENSORCONTROL_API bool SensorControlGetHandleForID(char const* id, void** handle);
SENSORCONTROL_API int32_t MirelGetHandleForHIDHandle(uint64_t hidHandle, void** handle);
SENSORCONTROL_API int32_t MirelGetHandleForDeviceID(int32_t deviceID, void** handle);
SENSORCONTROL_API int32_t MirelRemoveSensor(void* handle);
SENSORCONTROL_API int32_t MirelPreUpdateBuiltInSensorHandle(char const* product, char const* serial);
SENSORCONTROL_API int32_t MirelUpdateBuiltInSensorHandle(char const* product, char const* serial);
SENSORCONTROL_API int32_t MirelEnumConnectedSerialSensors(uint32_t index, int32_t* deviceID);
SENSORCONTROL_API int32_t MirelLockSensors(void);
SENSORCONTROL_API int32_t MirelUnlockSensors(void);

#ifdef __cplusplus
}
#endif

#endif

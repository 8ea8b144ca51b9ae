/* libsensorcontrol: the public C interface a host application calls.
 *
 * Calling protocol
 *   1. Call Setup() once after loading the library.
 *   2. Call an endpoint export (one per resource, below) with four
 *      NUL-terminated texts, never null (pass "" for nothing):
 *        request     a JSON object whose "method" is "GET", "POST", "PUT" or
 *                    "DELETE" (any case; anything else, or none, is GET);
 *        parameters  a JSON object of the values taken from the resource
 *                    path: "id" (the sensor id an opening endpoint returned)
 *                    for every per-sensor endpoint, "deviceID",
 *                    "individualID", "product", "serial" for the opening ones;
 *        query       a JSON object of query keys, mostly tested for presence
 *                    only ({"supports":true});
 *        data        the request body, JSON (text that is not JSON arrives as
 *                    a JSON string).
 *      The request runs to completion on the calling thread; the export
 *      returns a promise id under which the response is already stored.
 *   3. Fetch the response in two steps with BridgeHelperGetResponse: once
 *      with a null buffer for its length, once with a buffer of that length
 *      for its text (which removes it).
 *   4. Call TearDown() once before unloading.
 *
 * Every response is a JSON object {"error":null,"value":...} with status 200,
 * or {"error":{"message":"...","name":"..."},"value":null} with the status of
 * the error: 400 "BadRequestError" (a missing or ill-typed parameter, query
 * key or body), 404 "Error" (an unknown sensor id) or "FunctionNotFoundError"
 * (a device library lacks a function), 405 "MethodError" (a method the
 * resource does not serve), 500 "DvError" (the device failed; the error also
 * carries "code" and "reason") or "UnknownError". Requests may come from any
 * number of threads.
 *
 * The resource path of each endpoint, as the sensorctl tool writes it, stands
 * beside it below with the methods it serves and the query keys it reads. */
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

/* Tells the measurement-device library where the device libraries live (the
 * host support library's exports folder) and starts its helper process where
 * it has one. Call once, before any other export. */
SENSORCONTROL_API void Setup(void);

/* Closes every sensor still open and stops the helper process. Responses not
 * yet fetched stay stored. */
SENSORCONTROL_API void TearDown(void);

/* Fetches the response stored under a promise id, in two steps:
 *
 *   uint32_t length = 0;
 *   uint32_t status = BridgeHelperGetResponse(id, NULL, &length);
 *   char* text = malloc(length);                      // length counts the closing zero
 *   status = BridgeHelperGetResponse(id, text, &length);
 *
 * With a null buffer it sets *length to the text's length plus one and keeps
 * the response. With a buffer it zero-fills *length bytes, copies at most
 * *length bytes of the text (so a buffer of exactly the text's length gets no
 * closing zero, a shorter one a cut text) and removes the response either way.
 * Returns the response's status code (200, 400, 404, 405 or 500), or 500 when
 * length is null or the id has no response stored (then *length is untouched). */
SENSORCONTROL_API uint32_t BridgeHelperGetResponse(uint32_t id, char* buffer, uint32_t* length);

/* Every endpoint takes the four texts described above and returns the promise
 * id of its response. */
#define SENSORCONTROL_ENDPOINT(name)                                                                         \
    SENSORCONTROL_API uint32_t name(char const* request, char const* parameters, char const* query,          \
                                    char const* data)

/* Discovery and opening. An opening endpoint answers the new sensor id, a
 * string that the per-sensor endpoints take as the path parameter "id" and
 * that lives until the sensor is closed or TearDown. */
/* /Sensors. GET: the connected devices ?connected, the serial ones
 * ?serialConnected ([{"deviceID":n,"individualID":"16 hex digits"}...]), else
 * the ids of the open sensors; PUT {"libraryPath":...,"serialMappings":
 * {"usb device name":deviceID}}; DELETE closes every open sensor. */
SENSORCONTROL_ENDPOINT(Sensors);
/* /Sensors/Name. GET: the names of the devices ?deviceIDs=8,11, else of the
 * open sensors, as an array of strings. */
SENSORCONTROL_ENDPOINT(SensorsName);
/* /Sensors/{deviceID}. POST opens the device with that device id. */
SENSORCONTROL_ENDPOINT(DeviceID);
/* /Sensors/Individual/{individualID}. POST opens the device with that
 * individual id. */
SENSORCONTROL_ENDPOINT(IndividualID);
/* /Monitors/{product}/{serial}/Sensor. POST opens the built-in sensor of that
 * monitor. */
SENSORCONTROL_ENDPOINT(Monitors);
/* /Pallast/ControlPanel. PUT shows the measurement-device library's control
 * panel. */
SENSORCONTROL_ENDPOINT(PallastControlPanel);

/* Information, mode, calibration of an open sensor ("id"). */
/* /Sensors/{id}. GET: the sensor's description, or ?connection whether it is
 * still connected; DELETE closes it. */
SENSORCONTROL_ENDPOINT(Sensor);
/* /Sensors/{id}/Mode. GET ?supports: {"ambient":bool,"reflectance":bool};
 * PUT {"mode":n,"observerKey":n}. */
SENSORCONTROL_ENDPOINT(SensorMode);
/* /Sensors/{id}/Calibration. GET ?needs: whether it needs calibrating; PUT
 * calibrates. */
SENSORCONTROL_ENDPOINT(SensorCalibration);

/* Measurement: GET takes one measurement and answers real numbers. */
/* /Sensors/{id}/XYZ: {"XYZ":{"X":..,"Y":..,"Z":..},"rawXYZ":{...}}. */
SENSORCONTROL_ENDPOINT(SensorXYZ);
/* /Sensors/{id}/RawData: the device's raw data. */
SENSORCONTROL_ENDPOINT(SensorRawData);
/* /Sensors/{id}/RGB, /IR, /XYZWithoutCorrelation: the readings only a
 * monitor's built-in sensor offers. */
SENSORCONTROL_ENDPOINT(SensorRGB);
SENSORCONTROL_ENDPOINT(SensorIR);
SENSORCONTROL_ENDPOINT(SensorXYZWithoutCorrelation);

/* Mechanics and settings. With ?supports a GET answers whether the sensor has
 * the feature at all. */
/* /Sensors/{id}/Arm. GET ?supports; PUT true or false moves the arm. */
SENSORCONTROL_ENDPOINT(SensorArm);
/* /Sensors/{id}/Position. GET: the position, an integer (?supports). */
SENSORCONTROL_ENDPOINT(SensorPosition);
/* /Sensors/{id}/ExteriorLight. GET: {"state":n} (?supports); PUT {"state":n}. */
SENSORCONTROL_ENDPOINT(SensorExteriorLight);
/* /Sensors/{id}/ParameterDescription. GET and PUT {"date":...,
 * "referenceSensor":{"deviceID":n,"serial":"..."}}. */
SENSORCONTROL_ENDPOINT(SensorParameterDescription);
/* /Sensors/{id}/TargetMarker. GET: the marker status (?supports); PUT a number. */
SENSORCONTROL_ENDPOINT(SensorTargetMarker);
/* /Sensors/{id}/IFSTempCorrectParam. POST applies the temperature correction. */
SENSORCONTROL_ENDPOINT(SensorIFSTempCorrectParam);
/* /Sensors/{id}/IFSBrightCorrectParamUpdate. GET ?supports; PUT a boolean. */
SENSORCONTROL_ENDPOINT(SensorIFSBrightCorrectParamUpdate);
/* /Sensors/{id}/DeviceOption. GET and PUT an object keyed by device model. */
SENSORCONTROL_ENDPOINT(SensorDeviceOption);

/* Corrections. */
/* /Sensors/{id}/Correction. PUT {"type":...} with, by type, "observerKey",
 * "product", "panelRevision" applies a correction; DELETE releases it. */
SENSORCONTROL_ENDPOINT(SensorCorrection);
/* /Sensors/{id}/ExCorrection. GET: the number of extra corrections ?count, or
 * their names ?name, else the index of the one in use; PUT selects one by
 * index. */
SENSORCONTROL_ENDPOINT(SensorExCorrection);

/* Presence sensing of a monitor's built-in sensor. */
/* /Sensors/{id}/AmbrelSense. GET: 0 or 1; PUT true or false. */
SENSORCONTROL_ENDPOINT(SensorAmbrelSense);
/* /Sensors/{id}/AmbrelSense/Level. GET and PUT the detection level, a number. */
SENSORCONTROL_ENDPOINT(SensorAmbrelSenseLevel);

/* Correlation held in a monitor's built-in sensor. */
/* /Sensors/{id}/Correlation: GET (?available, ?swingSensor), PUT, DELETE. */
SENSORCONTROL_ENDPOINT(SensorCorrelation);
/* /Sensors/{id}/Correlation/9Points: DELETE. */
SENSORCONTROL_ENDPOINT(SensorCorrelation9Points);
/* /Sensors/{id}/Correlation/Description: GET, PUT, DELETE the reference
 * sensor and date of the correlation. */
SENSORCONTROL_ENDPOINT(SensorCorrelationDescription);
/* /Sensors/{id}/Correlation/Data: GET (?checksFactoryData), PUT the records. */
SENSORCONTROL_ENDPOINT(SensorCorrelationData);
/* /Sensors/{id}/Correlation/Database: GET ?available lists the stored data
 * sets, GET without it answers the one equal to the monitor's current data
 * (null when none is); POST adds the monitor's data. */
SENSORCONTROL_ENDPOINT(SensorCorrelationDatabase);
/* /Sensors/{id}/CorrelationMatrix: GET (?available), PUT, DELETE. */
SENSORCONTROL_ENDPOINT(SensorCorrelationMatrix);
/* /Sensors/{id}/CorrelationMatrix/Data: GET (?checksFactoryData), PUT
 * {"matrix":[[...]...]}. */
SENSORCONTROL_ENDPOINT(SensorCorrelationMatrixData);
/* /Sensors/{id}/CorrelationMatrix/Database: GET (?available), POST, as for
 * the correlation database. */
SENSORCONTROL_ENDPOINT(SensorCorrelationMatrixDatabase);

#undef SENSORCONTROL_ENDPOINT

/* Handle management, for the host and its other plug-ins. A handle is the
 * measurement-device library's handle of an open sensor. The int32_t results
 * are device-library codes: 0 or positive succeeds, negative fails
 * (0x80000005 "Not registered."). */

/* The handle of the open sensor with that sensor id, written to *handle (null
 * for an unknown id); true when found. A null id answers false and writes
 * nothing. */
SENSORCONTROL_API bool SensorControlGetHandleForID(char const* id, void** handle);
/* The open sensor with that HID handle (a monitor's built-in sensor), or
 * device id; 0x80000005 when there is none or the key is 0. */
SENSORCONTROL_API int32_t MirelGetHandleForHIDHandle(uint64_t hidHandle, void** handle);
SENSORCONTROL_API int32_t MirelGetHandleForDeviceID(int32_t deviceID, void** handle);
/* Forgets an open sensor without closing its device; 0x80000005 for a handle
 * the library does not hold. */
SENSORCONTROL_API int32_t MirelRemoveSensor(void* handle);
/* Around an update of a monitor by the host: the first closes the monitor's
 * built-in sensor, keeping its sensor id; the second opens it again under
 * the same id. */
SENSORCONTROL_API int32_t MirelPreUpdateBuiltInSensorHandle(char const* product, char const* serial);
SENSORCONTROL_API int32_t MirelUpdateBuiltInSensorHandle(char const* product, char const* serial);
/* The device id of the serial sensor at index among those plugged in (index 0
 * refreshes the list): 1 with *deviceID written while there is one,
 * 0x8000000B "No more data." past the end, 0x80000000 when the list cannot be
 * refreshed. */
SENSORCONTROL_API int32_t MirelEnumConnectedSerialSensors(uint32_t index, int32_t* deviceID);
/* Hold and release the lock of the open-sensor registry, so that no request
 * uses a sensor meanwhile; the lock is recursive. */
SENSORCONTROL_API int32_t MirelLockSensors(void);
SENSORCONTROL_API int32_t MirelUnlockSensors(void);

#ifdef __cplusplus
}
#endif

#endif

// Sensor description and closing, mode, calibration.
#include "host/sensor_test_util.h"

namespace {

using namespace sensortest;

using SensorInformation = SensorTest;

TEST_F(SensorInformation, DescribesIdentityCapabilitiesAndSpectrum) {
    // Only the key's presence counts: the connection alone is answered.
    ExpectOK(get(::Sensor, R"({"connection":0})"), Value(true));
    EXPECT_EQ(std::vector<std::string>{"MDIsValidConnection"}, Functions());
    ExpectOK(get(::Sensor), Json(R"({"deviceID":8,"name":"Lumetra Spectro 8","serial":"LS8-20419",
                                    "needsCalibration":true,"supportsAmbient":true,"supportsReflectance":true,
                                    "hasArm":true,"hasMultipleSensorPosition":true,"hasTargetMarker":true,
                                    "spectrum":{"min":380,"max":730,"bandWidth":10,"count":36}})"));
    // Each key answers its own capability; a count of 0 leaves the spectrum out.
    id = host::OpenByDeviceID(11);
    ExpectOK(get(::Sensor), Json(R"({"deviceID":11,"name":"Lumetra Colori 11","serial":"LC11-88210",
                                    "needsCalibration":false,"supportsAmbient":true,"supportsReflectance":false,
                                    "hasArm":false,"hasMultipleSensorPosition":false,"hasTargetMarker":false})"));
}

TEST_F(SensorInformation, DeleteForgetsTheIdAndClosesTheDeviceOnce) {
    ExpectOK(host::Call(::Sensor, "DELETE", host::IdParams(id)), Value());
    host::Response again = host::Call(::Sensor, "DELETE", host::IdParams(id));
    EXPECT_EQ(404u, again.status);
    EXPECT_EQ("Not found.", again.errorMessage());
    EXPECT_EQ(std::vector<std::string>{"MDClose"}, Functions());
    ExpectOK(host::Call(::Sensors, "GET"), Value::array());
}

TEST_F(SensorInformation, ModeChecksQueryThenModeThenObserverKey) {
    id = host::OpenByDeviceID(11);
    ExpectBadRequest(get(::SensorMode), "requires 'supports' query.");
    ExpectOK(get(::SensorMode, R"({"supports":false})"), Json(R"({"ambient":true,"reflectance":false})"));

    ExpectBadRequest(put(::SensorMode, R"({"mode":"1","observerKey":"x"})"), "data requires 'mode'.");
    ExpectBadRequest(put(::SensorMode, R"({"mode":1})"), "data requires 'observerKey'.");
    ExpectBadRequest(put(::SensorMode, "3"), "data requires 'mode'.");
    EXPECT_FALSE(Called("MDSetMode"));

    // Reals are rounded half away from zero; values beyond 32 bits keep their low 32 bits.
    ExpectOK(put(::SensorMode, R"({"mode":1.5,"observerKey":4294967298})"), Value());
    Value const device = host::World()["devices"][1];
    EXPECT_EQ(Value(2), device["mode"]);
    EXPECT_EQ(Value(2), device["observerKey"]);
}

TEST_F(SensorInformation, CalibrationNeedsQueryAndRunsTheDevice) {
    ExpectBadRequest(get(::SensorCalibration), "requires 'needs' query.");
    ExpectOK(get(::SensorCalibration, R"({"needs":null})"), Value(true));
    ExpectOK(put(::SensorCalibration, ""), Value());
    ExpectOK(get(::SensorCalibration, R"({"needs":1})"), Value(false));
}

} // namespace

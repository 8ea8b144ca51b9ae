// Sensor description and closing, mode, calibration.
#include "host/sensor_test_util.h"

namespace {

using namespace sensortest;

class SensorInformation : public host::HostTest {};

TEST_F(SensorInformation, DescribesIdentityCapabilitiesAndSpectrum) {
    std::string spectro = host::OpenByDeviceID(8);
    ExpectOK(host::Call(::Sensor, "GET", host::IdParams(spectro)),
             Json(R"({"deviceID":8,"name":"Lumetra Spectro 8","serial":"LS8-20419","needsCalibration":true,
                      "supportsAmbient":true,"supportsReflectance":true,"hasArm":true,
                      "hasMultipleSensorPosition":true,"hasTargetMarker":true,
                      "spectrum":{"min":380,"max":730,"bandWidth":10,"count":36}})"));
    // Each key answers its own capability; a count of 0 leaves the spectrum out.
    ExpectOK(host::Call(::Sensor, "GET", host::IdParams(host::OpenByDeviceID(11))),
             Json(R"({"deviceID":11,"name":"Lumetra Colori 11","serial":"LC11-88210","needsCalibration":false,
                      "supportsAmbient":true,"supportsReflectance":false,"hasArm":false,
                      "hasMultipleSensorPosition":false,"hasTargetMarker":false})"));

    // Only the key's presence counts: the connection alone is answered.
    host::ClearJournal();
    ExpectOK(host::Call(::Sensor, "GET", host::IdParams(spectro), R"({"connection":0})"), Value(true));
    EXPECT_EQ(std::vector<std::string>{"MDIsValidConnection"}, Functions());
}

TEST_F(SensorInformation, DeleteForgetsTheIdAndClosesTheDeviceOnce) {
    std::string id = host::OpenByDeviceID(8);
    host::ClearJournal();
    ExpectOK(host::Call(::Sensor, "DELETE", host::IdParams(id)), Value());
    EXPECT_EQ(std::vector<std::string>{"MDClose"}, Functions());
    host::Response again = host::Call(::Sensor, "DELETE", host::IdParams(id));
    EXPECT_EQ(404u, again.status);
    EXPECT_EQ("Not found.", again.errorMessage());
    EXPECT_EQ(std::vector<std::string>{"MDClose"}, Functions());
    ExpectOK(host::Call(::Sensors, "GET"), Value::array());
}

TEST_F(SensorInformation, ModeChecksQueryThenModeThenObserverKey) {
    std::string id = host::OpenByDeviceID(11);
    ExpectBadRequest(host::Call(::SensorMode, "GET", host::IdParams(id)), "requires 'supports' query.");
    ExpectOK(host::Call(::SensorMode, "GET", host::IdParams(id), R"({"supports":false})"),
             Json(R"({"ambient":true,"reflectance":false})"));

    auto put = [&](char const* b) { return host::Call(::SensorMode, "PUT", host::IdParams(id), "", b); };
    ExpectBadRequest(put(R"({"mode":"1","observerKey":"x"})"), "data requires 'mode'.");
    ExpectBadRequest(put(R"({"mode":1})"), "data requires 'observerKey'.");
    ExpectBadRequest(put("3"), "data requires 'mode'.");
    EXPECT_FALSE(Called("MDSetMode"));

    // Reals are rounded half away from zero; values beyond 32 bits keep their low 32 bits.
    ExpectOK(put(R"({"mode":1.5,"observerKey":4294967298})"), Value());
    Value const device = host::World()["devices"][1];
    EXPECT_EQ(Value(2), device["mode"]);
    EXPECT_EQ(Value(2), device["observerKey"]);
}

TEST_F(SensorInformation, CalibrationNeedsQueryAndRunsTheDevice) {
    std::string id = host::OpenByDeviceID(8);
    ExpectBadRequest(host::Call(::SensorCalibration, "GET", host::IdParams(id)), "requires 'needs' query.");
    ExpectOK(host::Call(::SensorCalibration, "GET", host::IdParams(id), R"({"needs":null})"), Value(true));

    ExpectOK(host::Call(::SensorCalibration, "PUT", host::IdParams(id)), Value());
    ExpectOK(host::Call(::SensorCalibration, "GET", host::IdParams(id), R"({"needs":1})"), Value(false));
}

} // namespace

// Sensor description and closing, mode, calibration.
#include "host/sensor_test_util.h"

namespace {

using quilljson::Value;
using namespace sensortest;

class SensorInformation : public host::HostTest {};

TEST_F(SensorInformation, DescribesIdentityCapabilitiesAndSpectrum) {
    std::string spectro = host::OpenByDeviceID(8);
    host::Response r = host::Call(::Sensor, "GET", host::IdParams(spectro));
    ASSERT_EQ(200u, r.status) << r.text;
    Value const& v = r.value();
    EXPECT_EQ(Value(8), v["deviceID"]);
    EXPECT_EQ(Value("Lumetra Spectro 8"), v["name"]);
    EXPECT_TRUE(v["serial"].isString());
    for (char const* key : {"needsCalibration", "supportsAmbient", "supportsReflectance"})
        EXPECT_TRUE(v[key].isBool()) << key;
    EXPECT_EQ(Value(true), v["hasArm"]);
    EXPECT_EQ(Value(true), v["hasMultipleSensorPosition"]);
    EXPECT_EQ(Value(true), v["hasTargetMarker"]);
    Value spectrum = Value::object();
    spectrum["min"] = 380;
    spectrum["max"] = 730;
    spectrum["bandWidth"] = 10;
    spectrum["count"] = 36;
    EXPECT_EQ(spectrum, v["spectrum"]);

    // Only the key's presence counts: the connection alone is answered.
    host::ClearJournal();
    ExpectOK(host::Call(::Sensor, "GET", host::IdParams(spectro), "{\"connection\":0}"), Value(true));
    EXPECT_EQ(std::vector<std::string>{"MDIsValidConnection"}, Functions());
}

TEST_F(SensorInformation, DeviceWithoutSpectrumHasNoSpectrumKey) {
    host::Response r = host::Call(::Sensor, "GET", host::IdParams(host::OpenByDeviceID(11)));
    ASSERT_EQ(200u, r.status) << r.text;
    EXPECT_FALSE(r.value().contains("spectrum")) << r.text;
    EXPECT_EQ(Value(false), r.value()["hasArm"]);
    EXPECT_TRUE(r.value().contains("hasTargetMarker"));
}

TEST_F(SensorInformation, DeleteForgetsTheIdThenClosesTheDevice) {
    std::string id = host::OpenByDeviceID(8);
    ExpectOK(host::Call(::Sensor, "DELETE", host::IdParams(id)), Value());
    EXPECT_TRUE(Called("MDClose"));
    host::Response again = host::Call(::Sensor, "DELETE", host::IdParams(id));
    EXPECT_EQ(404u, again.status);
    EXPECT_EQ("Not found.", again.errorMessage());
    ExpectOK(host::Call(::Sensors, "GET"), Value::array());
}

TEST_F(SensorInformation, ModeChecksQueryThenModeThenObserverKey) {
    std::string id = host::OpenByDeviceID(8);
    ExpectBadRequest(host::Call(::SensorMode, "GET", host::IdParams(id)), "requires 'supports' query.");
    host::Response supports = host::Call(::SensorMode, "GET", host::IdParams(id), "{\"supports\":false}");
    ASSERT_EQ(200u, supports.status);
    EXPECT_TRUE(supports.value()["ambient"].isBool() && supports.value()["reflectance"].isBool()) << supports.text;

    auto put = [&](std::string const& body) { return host::Call(::SensorMode, "PUT", host::IdParams(id), "", body); };
    ExpectBadRequest(put("{\"mode\":\"1\",\"observerKey\":\"x\"}"), "data requires 'mode'.");
    ExpectBadRequest(put("{\"mode\":1}"), "data requires 'observerKey'.");
    ExpectBadRequest(put("3"), "data requires 'mode'.");
    EXPECT_FALSE(Called("MDSetMode"));

    // Reals are rounded half away from zero; values beyond 32 bits keep their low 32 bits.
    ExpectOK(put("{\"mode\":1.5,\"observerKey\":4294967298}"), Value());
    EXPECT_EQ(Value(2), Arg("MDSetMode", 1));
    EXPECT_EQ(Value(2), Arg("MDSetMode", 2));

    SimInjectResult("MDSetMode", kInvalidArgument);
    ExpectDvError(put("{\"mode\":-2.5,\"observerKey\":1}"), 0x80000001, "Set sensor mode.");
}

TEST_F(SensorInformation, CalibrationNeedsQueryAndRunsTheDevice) {
    std::string id = host::OpenByDeviceID(8);
    ExpectBadRequest(host::Call(::SensorCalibration, "GET", host::IdParams(id)), "requires 'needs' query.");
    EXPECT_TRUE(host::Call(::SensorCalibration, "GET", host::IdParams(id), "{\"needs\":null}").value().isBool());

    SimInjectResult("MDCalibrate", static_cast<int32_t>(0x80010008));
    ExpectDvError(host::Call(::SensorCalibration, "PUT", host::IdParams(id)), 0x80010008, "Calibrate sensor.");
    SimClearInjections();
    ExpectOK(host::Call(::SensorCalibration, "PUT", host::IdParams(id)), Value());
    ExpectOK(host::Call(::SensorCalibration, "GET", host::IdParams(id), "{\"needs\":1}"), Value(false));
}

} // namespace

// Arm, position, exterior light, target marker, parameter description, IFS
// parameters and device options.
#include <cstdlib>
#include <ctime>

#include "host/sensor_test_util.h"

namespace {

using quilljson::Value;
using namespace sensortest;

class SensorMechanics : public host::HostTest {
protected:
    void SetUp() override {
        host::HostTest::SetUp();
        id = host::OpenByDeviceID(8);
        host::ClearJournal();
    }
    host::Response get(host::Endpoint e, std::string const& query = "") {
        return host::Call(e, "GET", host::IdParams(id), query);
    }
    host::Response put(host::Endpoint e, std::string const& body) {
        return host::Call(e, "PUT", host::IdParams(id), "", body);
    }
    std::string id;
};

TEST_F(SensorMechanics, ArmNeedsSupportsQueryAndABooleanBody) {
    ExpectBadRequest(get(::SensorArm), "requires 'supports' query.");
    ExpectOK(get(::SensorArm, "{\"supports\":false}"), Value(true));
    ExpectBadRequest(put(::SensorArm, "1"), "data must be boolean.");
    ExpectBadRequest(put(::SensorArm, "\"true\""), "data must be boolean.");
    EXPECT_FALSE(Called("MDTakeOutArm") || Called("MDTakeInArm"));

    ExpectOK(put(::SensorArm, "true"), Value());
    EXPECT_TRUE(Called("MDTakeOutArm"));
    SimInjectResult("MDTakeInArm", static_cast<int32_t>(0x80010004));
    ExpectDvError(put(::SensorArm, "false"), 0x80010004, "Close sensor arm.");
}

TEST_F(SensorMechanics, SupportsQueryAnswersTheCapabilityOnly) {
    struct {
        host::Endpoint endpoint;
        char const* reader;
    } const cases[] = {{::SensorPosition, "MDGetSensorPosition"},
                       {::SensorExteriorLight, "MDGetExteriorLightingState"},
                       {::SensorTargetMarker, "MDGetTargetMarker"}};
    for (auto const& c : cases) {
        SCOPED_TRACE(c.reader);
        ExpectOK(get(c.endpoint, "{\"supports\":null}"), Value(true));
        EXPECT_FALSE(Called(c.reader));
        host::Response r = get(c.endpoint);
        EXPECT_EQ(200u, r.status) << r.text;
        EXPECT_TRUE(Called(c.reader));
        SimInjectResult(c.reader, kInvalidArgument);
        EXPECT_EQ(500u, get(c.endpoint).status);
        SimClearInjections();
    }
    EXPECT_TRUE(get(::SensorPosition).value().isInteger());
    EXPECT_TRUE(get(::SensorExteriorLight).value()["state"].isInteger());
}

TEST_F(SensorMechanics, SettersConvertNumbersAndExteriorLightIgnoresBadState) {
    ExpectOK(put(::SensorExteriorLight, "{\"state\":\"1\"}"), Value());
    ExpectOK(put(::SensorExteriorLight, "2"), Value());
    EXPECT_FALSE(Called("MDSetExteriorLightingState"));
    ExpectOK(put(::SensorExteriorLight, "{\"state\":1.5}"), Value());
    EXPECT_EQ(Value(2), Arg("MDSetExteriorLightingState", 1));
    ExpectOK(get(::SensorExteriorLight), Object("state", 2));

    ExpectBadRequest(put(::SensorTargetMarker, "\"2\""), "Request data is not number type.");
    EXPECT_FALSE(Called("MDSetTargetMarker"));
    ExpectOK(put(::SensorTargetMarker, "-0.5"), Value());
    EXPECT_EQ(Value(-1), Arg("MDSetTargetMarker", 1));
    SimInjectResult("MDSetTargetMarker", kInvalidArgument);
    ExpectDvError(put(::SensorTargetMarker, "0"), 0x80000001, "Set target marker.");
}

TEST_F(SensorMechanics, ParameterDescriptionRoundTripCutsSerialAndSeconds) {
    std::string const serial40 = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789abcd";
    ExpectOK(put(::SensorParameterDescription,
                 "{\"date\":\"2024-05-07 10:11:12\",\"referenceSensor\":{\"deviceID\":8,\"serial\":\"" + serial40 +
                     "\"}}"),
             Value());
    host::Response r = get(::SensorParameterDescription);
    ASSERT_EQ(200u, r.status) << r.text;
    Value date = Value::object();
    date["year"] = 2024;
    date["month"] = 5;
    date["day"] = 7;
    date["hour"] = 10;
    date["minute"] = 11;
    EXPECT_EQ(date, r.value()["date"]) << r.text;
    EXPECT_EQ(Value(8), r.value()["referenceSensor"]["deviceID"]);
    EXPECT_EQ(Value(serial40.substr(0, 32)), r.value()["referenceSensor"]["serial"]);

    // Missing members write zeros and an empty serial.
    ExpectOK(put(::SensorParameterDescription, "{}"), Value());
    r = get(::SensorParameterDescription);
    EXPECT_EQ(Value(0), r.value()["date"]["year"]) << r.text;
    EXPECT_EQ(Value(""), r.value()["referenceSensor"]["serial"]) << r.text;
}

TEST_F(SensorMechanics, IFSParameters) {
    ExpectOK(host::Call(::SensorIFSTempCorrectParam, "POST", host::IdParams(id)), Value());
    EXPECT_TRUE(Called("MDCalcIFSTempCorrectParam"));

    // The boolean conversion: the exact string "true" counts, anything else not a truth is false.
    ExpectOK(put(::SensorIFSBrightCorrectParamUpdate, "\"true\""), Value());
    ExpectOK(get(::SensorIFSBrightCorrectParamUpdate), Value(true));
    ExpectOK(put(::SensorIFSBrightCorrectParamUpdate, "\"yes\""), Value());
    ExpectOK(get(::SensorIFSBrightCorrectParamUpdate), Value(false));

    ExpectOK(get(::SensorIFSBrightCorrectParamUpdate, "{\"supports\":1}"), Value(true));
    SimInjectResult("MDGetIFSBrightCorrectParamUpdateEnabled", static_cast<int32_t>(0x80000007));
    ExpectOK(get(::SensorIFSBrightCorrectParamUpdate, "{\"supports\":1}"), Value(false));
    ExpectDvError(get(::SensorIFSBrightCorrectParamUpdate), 0x80000007,
                  "Get IFS bright correct param update enabled.");
}

TEST_F(SensorMechanics, DeviceOptionsDependOnTheModel) {
    // The calibration date (2025-01-01 10:00:00 UTC) is reported in local time.
    char const* const savedZone = std::getenv("TZ");
    std::string const zone = savedZone != nullptr ? savedZone : "";
    setenv("TZ", "JST-9", 1);
    tzset();
    host::Response r = get(::SensorDeviceOption);
    savedZone != nullptr ? setenv("TZ", zone.c_str(), 1) : unsetenv("TZ");
    tzset();
    ASSERT_EQ(200u, r.status) << r.text;
    Value date = Value::object();
    date["year"] = 2025;
    date["month"] = 1;
    date["day"] = 1;
    date["hour"] = 19;
    date["minute"] = 0;
    date["second"] = 0;
    Value options = Value::object();
    options["calibrationDate"] = date;
    options["calibrationMode"] = 1;
    ExpectOK(r, options);

    // Mode is writable on this model, the date is not; the calibration set is not its option.
    host::ClearJournal();
    ExpectOK(put(::SensorDeviceOption, "{\"calibrationMode\":\"7\",\"calibrationDate\":0,\"calibrationSet\":1}"),
             Value());
    EXPECT_EQ((std::vector<std::string>{"MDGetDeviceID", "MDSetDeviceOptionValue"}), Functions());
    EXPECT_EQ(Value("OPT_CALMODE"), Arg("MDSetDeviceOptionValue", 1));
    EXPECT_EQ(Value(7), get(::SensorDeviceOption).value()["calibrationMode"]);

    std::string colori = host::OpenByDeviceID(11);
    ExpectOK(host::Call(::SensorDeviceOption, "PUT", host::IdParams(colori), "", "{\"calibrationSet\":2.5}"), Value());
    ExpectOK(host::Call(::SensorDeviceOption, "GET", host::IdParams(colori)), Object("calibrationSet", 3));

    SimInjectResult("MDGetDeviceOptionValue", kInvalidArgument);
    ExpectDvError(get(::SensorDeviceOption), 0x80000001, "Get device option CALDATE.");
}

// Model 12 may write its calibration set but does not report it.
TEST_F(SensorMechanics, CalibrationSetWritableButNotReadableOnSomeModels) {
    host::LoadScenario("{\"devices\":[{\"deviceID\":12,\"name\":\"Lumetra Colori 12\",\"serial\":\"LC12-1\","
                       "\"options\":{\"OPT_CALIBRATIONSET\":1}}]}");
    std::string model12 = host::OpenByDeviceID(12);
    ExpectOK(host::Call(::SensorDeviceOption, "GET", host::IdParams(model12)), Value::object());
    host::ClearJournal();
    ExpectOK(host::Call(::SensorDeviceOption, "PUT", host::IdParams(model12), "", "{\"calibrationSet\":2}"), Value());
    EXPECT_EQ(Value(2), Arg("MDSetDeviceOptionValue", 2));
    SimInjectResult("MDSetDeviceOptionValue", kInvalidArgument);
    ExpectDvError(host::Call(::SensorDeviceOption, "PUT", host::IdParams(model12), "", "{\"calibrationSet\":2}"),
                  0x80000001, "Set device option CALIBRATIONSET.");
}

} // namespace

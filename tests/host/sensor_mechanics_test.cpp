// Arm, position, exterior light, target marker, parameter description, IFS
// parameters and device options.
#include <cstdlib>
#include <ctime>

#include "host/sensor_test_util.h"

namespace {

using namespace sensortest;

using SensorMechanics = SensorTest;

TEST_F(SensorMechanics, ArmNeedsSupportsQueryAndABooleanBody) {
    ExpectBadRequest(get(::SensorArm), "requires 'supports' query.");
    ExpectBadRequest(put(::SensorArm, "1"), "data must be boolean.");
    ExpectBadRequest(put(::SensorArm, "\"true\""), "data must be boolean.");
    EXPECT_TRUE(Functions().empty()) << JournalText();

    ExpectOK(put(::SensorArm, "true"), Value());
    ExpectOK(put(::SensorArm, "false"), Value());
    EXPECT_EQ((std::vector<std::string>{"MDTakeOutArm", "MDTakeInArm"}), Functions());
}

TEST_F(SensorMechanics, SupportsQueryAnswersTheCapabilityOnly) {
    std::string const plain = host::OpenByDeviceID(11); // none of these capabilities
    struct {
        host::Endpoint endpoint;
        char const *reader, *value;
    } const cases[] = {{::SensorArm, nullptr, nullptr},
                       {::SensorPosition, "MDGetSensorPosition", "2"},
                       {::SensorExteriorLight, "MDGetExteriorLightingState", R"({"state":1})"},
                       {::SensorTargetMarker, "MDGetTargetMarker", "0"}};
    for (auto const& c : cases) {
        host::ClearJournal();
        ExpectOK(get(c.endpoint, R"({"supports":null})"), Value(true));
        ExpectOK(host::Call(c.endpoint, "GET", host::IdParams(plain), R"({"supports":null})"), Value(false));
        if (c.reader == nullptr) continue;
        SCOPED_TRACE(c.reader);
        EXPECT_FALSE(Called(c.reader));
        ExpectOK(get(c.endpoint), Json(c.value));
    }
}

TEST_F(SensorMechanics, SettersConvertNumbersAndExteriorLightIgnoresBadState) {
    ExpectOK(put(::SensorExteriorLight, R"({"state":"1"})"), Value());
    ExpectOK(put(::SensorExteriorLight, "2"), Value());
    EXPECT_FALSE(Called("MDSetExteriorLightingState"));
    ExpectOK(put(::SensorExteriorLight, R"({"state":1.5})"), Value());
    ExpectOK(get(::SensorExteriorLight), Json(R"({"state":2})"));

    ExpectBadRequest(put(::SensorTargetMarker, "\"2\""), "Request data is not number type.");
    EXPECT_FALSE(Called("MDSetTargetMarker"));
    ExpectOK(put(::SensorTargetMarker, "-0.5"), Value());
    ExpectOK(get(::SensorTargetMarker), Value(-1));
}

TEST_F(SensorMechanics, ParameterDescriptionRoundTripCutsSerialAndSeconds) {
    auto description = [](std::string const& date, std::string const& reference) {
        return Json(R"({"date":)" + date + R"(,"referenceSensor":)" + reference + "}");
    };
    ExpectOK(get(::SensorParameterDescription),
             description(R"({"year":2024,"month":11,"day":5,"hour":14,"minute":20})",
                         R"({"deviceID":11,"serial":"LC11-88210"})"));
    std::string const serial40 = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789abcd";
    ExpectOK(put(::SensorParameterDescription,
                 R"({"date":"2024-05-07 10:11:12","referenceSensor":{"deviceID":8,"serial":")" + serial40 +
                     "\"}}"),
             Value());
    ExpectOK(get(::SensorParameterDescription),
             description(R"({"year":2024,"month":5,"day":7,"hour":10,"minute":11})",
                         R"({"deviceID":8,"serial":")" + serial40.substr(0, 32) + "\"}"));

    // Missing members write zeros; a serial that is no string writes an empty one.
    ExpectOK(put(::SensorParameterDescription, R"({"referenceSensor":{"serial":12345}})"), Value());
    ExpectOK(
        get(::SensorParameterDescription),
        description(R"({"year":0,"month":0,"day":0,"hour":0,"minute":0})", R"({"deviceID":0,"serial":""})"));
}

TEST_F(SensorMechanics, IFSParameters) {
    ExpectOK(host::Call(::SensorIFSTempCorrectParam, "POST", host::IdParams(id)), Value());
    EXPECT_EQ(Value(true), host::World()["devices"][0]["ifsTempCorrectParamCalculated"]);

    // The boolean conversion: the exact string "true" counts, anything else not a truth is false.
    ExpectOK(put(::SensorIFSBrightCorrectParamUpdate, "\"true\""), Value());
    ExpectOK(get(::SensorIFSBrightCorrectParamUpdate), Value(true));
    ExpectOK(put(::SensorIFSBrightCorrectParamUpdate, "\"yes\""), Value());
    ExpectOK(get(::SensorIFSBrightCorrectParamUpdate), Value(false));

    ExpectOK(get(::SensorIFSBrightCorrectParamUpdate, R"({"supports":1})"), Value(true));
    SimInjectResult("MDGetIFSBrightCorrectParamUpdateEnabled", static_cast<int32_t>(0x80000007));
    ExpectOK(get(::SensorIFSBrightCorrectParamUpdate, R"({"supports":1})"), Value(false));
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
    ExpectOK(r, Json(R"({"calibrationDate":{"year":2025,"month":1,"day":1,"hour":19,"minute":0,"second":0},
                         "calibrationMode":1})"));

    // Mode is writable on this model, the date is not; the calibration set is not its option.
    host::ClearJournal();
    ExpectOK(put(::SensorDeviceOption, R"({"calibrationMode":"7","calibrationDate":0,"calibrationSet":1})"),
             Value());
    EXPECT_EQ((std::vector<std::string>{"MDGetDeviceID", "MDSetDeviceOptionValue"}), Functions());
    EXPECT_EQ(Value("OPT_CALMODE"), Arg("MDSetDeviceOptionValue", 1));
    EXPECT_EQ(Value(7), get(::SensorDeviceOption).value()["calibrationMode"]);

    id = host::OpenByDeviceID(11);
    ExpectOK(put(::SensorDeviceOption, R"({"calibrationSet":2.5})"), Value());
    ExpectOK(get(::SensorDeviceOption), Json(R"({"calibrationSet":3})"));
}

// Model 12 may write its calibration set but does not report it.
TEST_F(SensorMechanics, CalibrationSetWritableButNotReadableOnSomeModels) {
    LoadEditedWorld([](Value& world) { world["devices"][1]["deviceID"] = 12; });
    id = host::OpenByDeviceID(12);
    ExpectOK(get(::SensorDeviceOption), Value::object());
    ExpectOK(put(::SensorDeviceOption, R"({"calibrationSet":3})"), Value());
    EXPECT_EQ(Value(3), host::World()["devices"][1]["options"]["OPT_CALIBRATIONSET"]);
}

} // namespace

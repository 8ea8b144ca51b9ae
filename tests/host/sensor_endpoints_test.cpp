// The per-sensor endpoints: description and closing, mode, calibration,
// measurements, presence sensing of a monitor's built-in sensor, arm,
// position, exterior light, target marker, parameter description, IFS
// parameters, device options, and corrections.
#include <algorithm>
#include <cstdlib>
#include <ctime>

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

using SensorMeasurement = SensorTest;

TEST_F(SensorMeasurement, DeviceAnswersXYZRawXYZAndThreeRawValues) {
    ExpectOK(get(::SensorXYZ), Json(R"({"XYZ":{"X":95.0429,"Y":100.0137,"Z":108.8812},
                                       "rawXYZ":{"X":0.950429,"Y":1.000137,"Z":1.088812}})"));
    ExpectOK(get(::SensorRawData), Json(R"({"rawData":[0.3127,0.329,0.2481]})"));

    // The mode and the correction set through the endpoints reach the reading.
    ExpectOK(put(::SensorMode, R"({"mode":2,"observerKey":1})"), Value());
    ExpectOK(put(::SensorCorrection, R"({"type":"paperWhite","observerKey":1})"), Value());
    host::Response r = get(::SensorXYZ);
    EXPECT_NEAR(100.0137 * 1.02 * 0.997, r.value()["XYZ"]["Y"].getDouble(), 1e-9) << r.text;
    EXPECT_EQ(Value(1.000137), r.value()["rawXYZ"]["Y"]) << r.text;
}

TEST_F(SensorMeasurement, BuiltinReadingsAreTakenUnderTheMonitorLock) {
    id = host::OpenMonitorSensor("LMN27A", "41A00017");
    struct {
        host::Endpoint endpoint;
        char const* function;
        char const* value;
    } const cases[] = {
        {::SensorRGB, "CSSG2H_MeasureRGB", R"({"RGB":{"R":812.5,"G":904.25,"B":655.75}})"},
        {::SensorIR, "CSSG2H_GetIRValue", R"({"IR":42.5})"},
        {::SensorXYZWithoutCorrelation, "CSSG2H_MeasureNotCorrelatedXYZCount",
         R"({"XYZ":{"X":1520.5,"Y":1610.25,"Z":1733.75}})"},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.function);
        host::ClearJournal();
        ExpectOK(get(c.endpoint), Json(c.value));
        EXPECT_EQ(Value(4097), Arg(c.function, 0)) << "the HID handle, not the device handle";
        auto calls = Functions();
        auto lock = std::find(calls.begin(), calls.end(), "DvCtrlLockMonitor");
        auto call = std::find(calls.begin(), calls.end(), c.function);
        auto unlock = std::find(calls.begin(), calls.end(), "DvCtrlUnlockMonitor");
        EXPECT_TRUE(lock < call && call < unlock && unlock != calls.end()) << JournalText();
        EXPECT_EQ(Value(0), host::World()["monitors"][0]["lockCount"]);
    }
}

class SensorPresence : public SensorTest {
protected:
    std::string open() override { return host::OpenMonitorSensor("LMN27A", "41A00017"); }
};

TEST_F(SensorPresence, OnOffTakesBooleansAndNumbersAndAnswersANumber) {
    struct {
        char const* body;
        int64_t on;
    } const cases[] = {{"true", 1}, {"false", 0}, {"1", 1}, {"0", 0}, {"0.5", 1}, {"0.0", 0}, {"-3", 1}};
    for (auto const& c : cases) {
        SCOPED_TRACE(c.body);
        putThenGet(::SensorAmbrelSense, c.body, Value(c.on));
    }
    EXPECT_EQ(Value(4097), Arg("CSSG2H_SetHumanDetectOnOff", 0)) << "the HID handle";
    host::ClearJournal();
    ExpectBadRequest(put(::SensorAmbrelSense, "\"true\""), "data must be number or boolean.");
    EXPECT_FALSE(Called("CSSG2H_SetHumanDetectOnOff") || Called("DvCtrlLockMonitor")) << JournalText();
}

TEST_F(SensorPresence, LevelTakesNumbersOnlyRoundedHalfAwayFromZero) {
    putThenGet(::SensorAmbrelSenseLevel, "2.5", Value(3));
    putThenGet(::SensorAmbrelSenseLevel, "-1.5", Value(-2));
    host::ClearJournal();
    ExpectBadRequest(put(::SensorAmbrelSenseLevel, "true"), "data must be number.");
    EXPECT_FALSE(Called("DvCtrlLockMonitor"));
}

// A sensor not built into a monitor fails at its HID handle, before the data
// is looked at and before any built-in-sensor function is looked up.
TEST_F(SensorPresence, BuiltinEndpointsNeedTheHIDHandleFirst) {
    std::string usb = host::OpenByDeviceID(8);
    host::ClearJournal();
    for (host::Endpoint e : {::SensorAmbrelSense, ::SensorAmbrelSenseLevel}) {
        ExpectDvError(host::Call(e, "PUT", host::IdParams(usb), "", "\"bad\""), kFailed, "Get HID handle.");
        ExpectDvError(host::Call(e, "GET", host::IdParams(usb)), kFailed, "Get HID handle.");
    }
    for (host::Endpoint e :
         {::SensorRGB, ::SensorIR, ::SensorXYZWithoutCorrelation, ::SensorCorrelationDescription,
          ::SensorCorrelationData, ::SensorCorrelationMatrixData})
        ExpectDvError(host::Call(e, "GET", host::IdParams(usb)), kFailed, "Get HID handle.");
    EXPECT_EQ(std::vector<std::string>(10, "MDGetHIDHandle"), Functions());
}

using SensorMechanics = SensorTest;

TEST_F(SensorMechanics, ArmNeedsSupportsQueryAndABooleanBody) {
    ExpectBadRequest(get(::SensorArm), "requires 'supports' query.");
    ExpectBadRequest(put(::SensorArm, "1"), "data must be boolean.");
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
    putThenGet(::SensorExteriorLight, R"({"state":1.5})", Json(R"({"state":2})"));

    ExpectBadRequest(put(::SensorTargetMarker, "\"2\""), "Request data is not number type.");
    EXPECT_FALSE(Called("MDSetTargetMarker"));
    putThenGet(::SensorTargetMarker, "-0.5", Value(-1));
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
    putThenGet(::SensorIFSBrightCorrectParamUpdate, "\"true\"", Value(true));
    putThenGet(::SensorIFSBrightCorrectParamUpdate, "\"yes\"", Value(false));

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
    putThenGet(::SensorDeviceOption, R"({"calibrationSet":2.5})", Json(R"({"calibrationSet":3})"));

    // Model 12 may write its calibration set but does not report it.
    LoadEditedWorld([](Value& world) { world["devices"][1]["deviceID"] = 12; });
    id = host::OpenByDeviceID(12);
    ExpectOK(get(::SensorDeviceOption), Value::object());
    ExpectOK(put(::SensorDeviceOption, R"({"calibrationSet":3})"), Value());
    EXPECT_EQ(Value(3), host::World()["devices"][1]["options"]["OPT_CALIBRATIONSET"]);
}

class SensorCorrections : public SensorTest {
protected:
    host::Response getEx(std::string const& query) { return get(::SensorExCorrection, query); }
    Value correction() { return host::World()["devices"][0]["correction"]; }
};

TEST_F(SensorCorrections, TypeSelectsTheCorrectionPlainByDefault) {
    struct {
        char const *body, *function, *type;
    } const cases[] = {
        {R"({"type":"paperWhite","observerKey":2.5})", "MDApplyPaperWhiteCorrection", "paperWhite"},
        {R"({"type":"10degFor2deg"})", "MDApply10DegCorrectionFor2DegCorrelatedMeasurement", "10degFor2deg"},
        {R"({"type":"plainFor2deg"})", "MDApplyPlainCorrectionFor2DegCorrelatedMeasurement", "plainFor2deg"},
        {R"({"type":"Emission"})", "MDApplyPlainCorrection", "plain"},
        {"{}", "MDApplyPlainCorrection", "plain"},
        {R"("emission")", "MDApplyPlainCorrection", "plain"},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.body);
        host::ClearJournal();
        ExpectOK(put(::SensorCorrection, c.body), Value());
        EXPECT_EQ(std::vector<std::string>{c.function}, Functions());
        EXPECT_EQ(Value(c.type), correction()["type"]);
    }
    EXPECT_EQ(Value(3), correction()["observerKey"]);
    ExpectOK(host::Call(::SensorCorrection, "DELETE", host::IdParams(id)), Value());
    EXPECT_EQ(Value("none"), correction()["type"]);
}

TEST_F(SensorCorrections, EmissionChecksInOrderThenConvertsPanelRevision) {
    ExpectBadRequest(put(::SensorCorrection, R"({"type":"emission","observerKey":"1","product":5})"),
                     "data must have observerKey.");
    ExpectBadRequest(put(::SensorCorrection, R"({"type":"emission","observerKey":1,"product":5})"),
                     "data must have product.");
    ExpectBadRequest(put(::SensorCorrection, R"({"type":"emission","observerKey":1,"product":"X"})"),
                     "data must have panelRevision.");
    ExpectBadRequest(put(::SensorCorrection, R"({"type":"paperWhite"})"), "data must have observerKey.");
    EXPECT_TRUE(Functions().empty()) << JournalText();

    struct {
        char const* panelRevision;
        int64_t expected;
    } const revisions[] = {{"65535", 65535}, {"65536", 0},   {"-1", 0},
                           {"2.5", 3},       {"65535.6", 0}, {"-0.4", 0}};
    for (auto const& c : revisions) {
        SCOPED_TRACE(c.panelRevision);
        std::string const body =
            R"({"type":"emission","observerKey":-1.5,"product":"LMN27A","panelRevision":)";
        ExpectOK(put(::SensorCorrection, body + c.panelRevision + "}"), Value());
        EXPECT_EQ(Json(R"({"type":"emission","observerKey":-2,"product":"LMN27A","panelRevision":)" +
                       std::to_string(c.expected) + "}"),
                  correction());
    }
}

TEST_F(SensorCorrections, ExCorrectionListsAndSelects) {
    ExpectOK(getEx(R"({"count":0,"name":0})"), Value(3));
    ExpectOK(getEx(R"({"name":null})"), Json(R"(["Wide gamut LED","Standard LED","CCFL"])"));

    ExpectBadRequest(put(::SensorExCorrection, "\"1\""), "data must be number.");
    // Reals are rounded; what does not fit in 32 bits selects 0.
    struct {
        char const* body;
        int64_t index;
    } const cases[] = {{"2.4", 2}, {"-1", 0}, {"1", 1}, {"4294967296", 0}};
    for (auto const& c : cases)
        putThenGet(::SensorExCorrection, c.body, Value(c.index));
}

// Names are read into a buffer of 256 bytes: a longer one is refused, not overrun.
TEST_F(SensorCorrections, ExCorrectionNameLongerThanTheBufferFails) {
    std::string const name(255, 'n');
    LoadEditedWorld([&](Value& world) { world["devices"][0]["exCorrections"]["names"] = Json("[]"); });
    for (std::string const& added : {name, name + "!"}) {
        LoadEditedWorld(
            [&](Value& world) { world["devices"][0]["exCorrections"]["names"].append(Value(added)); });
        id = host::OpenByDeviceID(8);
        host::ClearJournal();
        if (added == name) {
            ExpectOK(getEx(R"({"name":1})"), Json("[\"" + name + "\"]"));
        } else {
            ExpectDvError(getEx(R"({"name":1})"), 0x80000003, "Get correction name.");
            EXPECT_EQ(Value(256), host::Journal()[4]["args"][2]) << JournalText();
        }
    }
}

} // namespace

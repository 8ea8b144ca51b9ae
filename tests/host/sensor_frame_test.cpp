// Every per-sensor endpoint: the methods it serves resolve the sensor first,
// the others answer 405.
#include <set>

#include "host/sensor_test_util.h"

namespace {

struct EndpointMethods {
    char const* name;
    host::Endpoint endpoint;
    std::set<std::string> methods;
};

EndpointMethods const kEndpoints[] = {
    {"Sensor", ::Sensor, {"GET", "DELETE"}},
    {"SensorMode", ::SensorMode, {"GET", "PUT"}},
    {"SensorCalibration", ::SensorCalibration, {"GET", "PUT"}},
    {"SensorXYZ", ::SensorXYZ, {"GET"}},
    {"SensorRawData", ::SensorRawData, {"GET"}},
    {"SensorRGB", ::SensorRGB, {"GET"}},
    {"SensorIR", ::SensorIR, {"GET"}},
    {"SensorXYZWithoutCorrelation", ::SensorXYZWithoutCorrelation, {"GET"}},
    {"SensorArm", ::SensorArm, {"GET", "PUT"}},
    {"SensorPosition", ::SensorPosition, {"GET"}},
    {"SensorExteriorLight", ::SensorExteriorLight, {"GET", "PUT"}},
    {"SensorParameterDescription", ::SensorParameterDescription, {"GET", "PUT"}},
    {"SensorTargetMarker", ::SensorTargetMarker, {"GET", "PUT"}},
    {"SensorIFSTempCorrectParam", ::SensorIFSTempCorrectParam, {"POST"}},
    {"SensorIFSBrightCorrectParamUpdate", ::SensorIFSBrightCorrectParamUpdate, {"GET", "PUT"}},
    {"SensorDeviceOption", ::SensorDeviceOption, {"GET", "PUT"}},
    {"SensorCorrection", ::SensorCorrection, {"PUT", "DELETE"}},
    {"SensorExCorrection", ::SensorExCorrection, {"GET", "PUT"}},
    {"SensorAmbrelSense", ::SensorAmbrelSense, {"GET", "PUT"}},
    {"SensorAmbrelSenseLevel", ::SensorAmbrelSenseLevel, {"GET", "PUT"}},
};

class SensorFrame : public host::HostTest {};

TEST_F(SensorFrame, ServedMethodsResolveTheSensorOthersAre405) {
    for (auto const& e : kEndpoints) {
        for (std::string method : {"GET", "PUT", "POST", "DELETE"}) {
            SCOPED_TRACE(std::string(e.name) + " " + method);
            host::Response unknown =
                host::Call(e.endpoint, method, host::IdParams("no-such-sensor"), "", "1");
            host::Response missing = host::Call(e.endpoint, method, "{}", "", "1");
            if (e.methods.count(method) != 0) {
                EXPECT_EQ(404u, unknown.status) << unknown.text;
                EXPECT_EQ("Error", unknown.errorName());
                EXPECT_EQ("Not found.", unknown.errorMessage());
                sensortest::ExpectBadRequest(missing, "URI is invalid.");
            } else {
                EXPECT_EQ(405u, unknown.status) << unknown.text;
                EXPECT_EQ("MethodError", unknown.errorName());
                EXPECT_EQ(method + " method is not allowed.", unknown.errorMessage());
            }
        }
    }
    EXPECT_TRUE(host::Journal().arrayRef().empty()) << "no device call without a sensor";
}

// Every device call that can fail: its action text, the code as the unsigned
// reading, nothing changed in the world and no monitor left locked.
TEST_F(SensorFrame, EveryFailedDeviceCallIsReportedAndChangesNothing) {
    std::string const sensors[] = {host::OpenByDeviceID(8), host::OpenByDeviceID(11),
                                   host::OpenMonitorSensor("LMN27A", "41A00017")};
    enum { kSpectro, kColori, kBuiltin };
    struct {
        host::Endpoint endpoint;
        char const *method, *body, *function, *reason;
        int sensor = kSpectro;
        char const* query = "";
    } const cases[] = {
        {::SensorMode, "PUT", R"({"mode":1,"observerKey":1})", "MDSetMode", "Set sensor mode."},
        {::SensorCalibration, "PUT", "", "MDCalibrate", "Calibrate sensor."},
        {::SensorXYZ, "GET", "", "MDMeasureXYZ2", "Measure XYZ."},
        {::SensorRawData, "GET", "", "MDMeasureRaw", "Measure raw data."},
        {::SensorRGB, "GET", "", "CSSG2H_MeasureRGB", "Measure RGB.", kBuiltin},
        {::SensorIR, "GET", "", "CSSG2H_GetIRValue", "Get IR value.", kBuiltin},
        {::SensorXYZWithoutCorrelation, "GET", "", "CSSG2H_MeasureNotCorrelatedXYZCount",
         "Measure not correlated XYZ count.", kBuiltin},
        {::SensorArm, "PUT", "true", "MDTakeOutArm", "Open sensor arm."},
        {::SensorArm, "PUT", "false", "MDTakeInArm", "Close sensor arm."},
        {::SensorPosition, "GET", "", "MDGetSensorPosition", "Get sensor position."},
        {::SensorExteriorLight, "GET", "", "MDGetExteriorLightingState", "Get exterior lighting state."},
        {::SensorExteriorLight, "PUT", R"({"state":3})", "MDSetExteriorLightingState",
         "Set exterior lighting state."},
        {::SensorParameterDescription, "GET", "", "MDGetParameterDescription",
         "Get sensor parameter description."},
        {::SensorParameterDescription, "PUT", "{}", "MDSetParameterDescription",
         "Set sensor parameter description."},
        {::SensorTargetMarker, "GET", "", "MDGetTargetMarker", "Get target marker."},
        {::SensorTargetMarker, "PUT", "1", "MDSetTargetMarker", "Set target marker."},
        {::SensorIFSTempCorrectParam, "POST", "", "MDCalcIFSTempCorrectParam",
         "Calc IFS temp correct param."},
        {::SensorIFSBrightCorrectParamUpdate, "GET", "", "MDGetIFSBrightCorrectParamUpdateEnabled",
         "Get IFS bright correct param update enabled."},
        {::SensorIFSBrightCorrectParamUpdate, "PUT", "true", "MDSetIFSBrightCorrectParamUpdateEnabled",
         "Set IFS bright correct param update enabled."},
        {::SensorDeviceOption, "GET", "", "MDGetDeviceOptionValue", "Get device option CALDATE."},
        {::SensorDeviceOption, "PUT", R"({"calibrationMode":2})", "MDSetDeviceOptionValue",
         "Set device option CALMODE."},
        {::SensorDeviceOption, "GET", "", "MDGetDeviceOptionValue", "Get device option CALIBRATIONSET.",
         kColori},
        {::SensorDeviceOption, "PUT", R"({"calibrationSet":1})", "MDSetDeviceOptionValue",
         "Set device option CALIBRATIONSET.", kColori},
        {::SensorCorrection, "PUT", R"({"type":"emission","observerKey":1,"product":"X","panelRevision":1})",
         "MDApplyEmissionCorrection", "Apply emission correction."},
        {::SensorCorrection, "PUT", R"({"type":"paperWhite","observerKey":1})", "MDApplyPaperWhiteCorrection",
         "Apply paper white correction."},
        {::SensorCorrection, "PUT", R"({"type":"10degFor2deg"})",
         "MDApply10DegCorrectionFor2DegCorrelatedMeasurement",
         "Apply 10deg correction for 2deg correlated measurement."},
        {::SensorCorrection, "PUT", R"({"type":"plainFor2deg"})",
         "MDApplyPlainCorrectionFor2DegCorrelatedMeasurement",
         "Apply plain correction for 2deg correlated measurement."},
        {::SensorCorrection, "PUT", "", "MDApplyPlainCorrection", "Apply plain correction."},
        {::SensorCorrection, "DELETE", "", "MDReleaseCorrection", "Release correction."},
        {::SensorExCorrection, "GET", "", "MDGetExCorrectionName", "Get correction name.", kSpectro,
         R"({"name":1})"},
        {::SensorExCorrection, "GET", "", "MDGetExCorrectionIndex", "Get correction index."},
        {::SensorExCorrection, "PUT", "1", "MDSetExCorrectionIndex", "Set correction index."},
        {::SensorAmbrelSense, "GET", "", "CSSG2H_GetHumanDetectOnOff", "Get human detect on off.", kBuiltin},
        {::SensorAmbrelSense, "PUT", "false", "CSSG2H_SetHumanDetectOnOff", "Set human detect on off.",
         kBuiltin},
        {::SensorAmbrelSenseLevel, "GET", "", "CSSG2H_GetHumanDetectMode", "Get human detect mode.",
         kBuiltin},
        {::SensorAmbrelSenseLevel, "PUT", "4", "CSSG2H_SetHumanDetectMode", "Set human detect mode.",
         kBuiltin},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.function);
        SimClearInjections();
        quilljson::Value const before = host::World();
        SimInjectResult(c.function, static_cast<int32_t>(0x80010003));
        sensortest::ExpectDvError(
            host::Call(c.endpoint, c.method, host::IdParams(sensors[c.sensor]), c.query, c.body), 0x80010003,
            c.reason);
        EXPECT_EQ(before, host::World());
    }
}

} // namespace

// Correlation corrections, and the description and correlation data held in a
// monitor's built-in sensor, as a host drives them.
#include "host/sensor_test_util.h"
#include "quilljson/parser.h"

namespace {

using quilljson::Value;
using namespace sensortest;

Value Json(std::string const& text) {
    Value v;
    EXPECT_TRUE(quilljson::Parser().parse(&v, text)) << text;
    return v;
}

// The names of the journal's calls of the data set selection and of the built-in sensor.
std::vector<std::string> SensorCalls() {
    std::vector<std::string> calls;
    for (std::string const& f : host::JournalFunctions())
        if (f.rfind("CSSG2H_", 0) == 0) calls.push_back(f.substr(7));
    return calls;
}

class Correlation : public host::HostTest {
protected:
    void SetUp() override {
        host::HostTest::SetUp();
        first = host::OpenMonitorSensor("VX2710", "41A00017");  // first generation, HZE priority 2
        second = host::OpenMonitorSensor("VX3220", "52B00042"); // second generation, luminance levels
        usb = host::OpenByDeviceID(8);
        host::ClearJournal();
    }
    host::Response call(host::Endpoint e, std::string const& method, std::string const& id,
                        std::string const& query = "", std::string const& body = "") {
        return host::Call(e, method, host::IdParams(id), query, body);
    }
    std::string first, second, usb;
};

TEST_F(Correlation, ListsAppliesAndReleasesStoredCorrections) {
    ExpectBadRequest(call(::SensorCorrelation, "GET", usb, R"({"availabl":1})"),
                     "requires 'available' query.");
    ExpectOK(call(::SensorCorrelation, "GET", usb, R"({"available":false})"),
             Json(R"([{"id":12,"monitor":{"product":"VX2710","serial":"41A00017"},)"
                  R"("referenceSensor":{"deviceID":11,"serial":"LC11-88210"}}])"));
    ExpectOK(call(::SensorCorrelation, "GET", first, R"({"available":null})"), Value::array());

    ExpectOK(call(::SensorCorrelation, "PUT", usb, "", R"({"id":"12","type":"Recalc"})"), Value());
    EXPECT_EQ(Json("12"), Arg("MDApplyCorrelationCorrection", 1)) << JournalText();
    host::ClearJournal();
    // Not wholly a number: identifier 0, which the sensor does not know.
    ExpectDvError(call(::SensorCorrelation, "PUT", usb, "", R"({"id":"12a"})"), 0x80000005,
                  "Apply correlation correction.");
    EXPECT_EQ(Json("0"), Arg("MDApplyCorrelationCorrection", 1));

    ExpectOK(call(::SensorCorrelation, "PUT", usb, "",
                  R"({"id":12.4,"type":"recalc","targetWhite":{"x":"0.3127","y":0.329,"Y":true}})"),
             Value());
    Value const& white = Arg("MDApplyCorrelationCorrectionWithRecalcLuminanceLevelCorrection", 2);
    EXPECT_EQ(Json("12"), Arg("MDApplyCorrelationCorrectionWithRecalcLuminanceLevelCorrection", 1));
    EXPECT_EQ(0.3127, white["x"].asDouble()) << JournalText();
    EXPECT_EQ(0.329, white["y"].asDouble());
    EXPECT_EQ(1.0, white["Y"].asDouble());

    ExpectOK(call(::SensorCorrelation, "DELETE", usb, R"({"swingSensor":0})"), Value());
    ExpectOK(call(::SensorCorrelation9Points, "DELETE", usb), Value());
    EXPECT_FALSE(Called("MDReleaseCorrelationCorrection"));
    ExpectOK(call(::SensorCorrelation, "DELETE", usb), Value());
    EXPECT_TRUE(Called("MDReleaseCorrelationCorrection"));
}

TEST_F(Correlation, RefusesIncompleteRequestsBeforeAnyDeviceCall) {
    ExpectBadRequest(call(::SensorCorrelation, "PUT", usb, "", R"([12])"), "data must have id.");
    ExpectBadRequest(call(::SensorCorrelation, "PUT", usb, "", R"({"id":12,"type":"recalc"})"),
                     "data must have targetWhite.");
    ExpectBadRequest(
        call(::SensorCorrelation, "PUT", usb, "", R"({"id":12,"type":"recalc","targetWhite":{"x":1,"y":1}})"),
        "targetWhite must have x, y, Y.");
    EXPECT_FALSE(Called("MDApplyCorrelationCorrection") ||
                 Called("MDApplyCorrelationCorrectionWithRecalcLuminanceLevelCorrection"))
        << JournalText();
    ExpectDvError(call(::SensorCorrelationDescription, "GET", usb), kFailed, "Get HID handle.");
    ExpectDvError(call(::SensorCorrelationData, "PUT", usb, "", "{}"), kFailed, "Get HID handle.");
}

TEST_F(Correlation, DescriptionSelectsTheCurrentPageAndRoundTrips) {
    ExpectOK(call(::SensorCorrelationDescription, "GET", first),
             Json(R"({"date":{"dateString":"2025-01-10 09:30:00","day":10,"hour":9,"minute":30,"month":1,)"
                  R"("year":2025},"referenceSensor":{"deviceID":8,"serial":"LS8-20419"}})"));
    // No data index support: the page form, index 1 for HZE priority 2.
    EXPECT_EQ(Json("[4097,3,0]"), host::FirstCall("CSSG2H_SetColorSensorDataIndex")["args"]);
    EXPECT_EQ(Json("[4097,1,1]"), host::FirstCall("CSSG2H_SetColorSensorDataIndex2")["args"]);

    std::string const longSerial(40, 'S');
    ExpectOK(call(::SensorCorrelationDescription, "PUT", first, "",
                  R"({"date":"2026-03-04 05:06:07","referenceSensor":{"deviceID":"0x13","serial":")" +
                      longSerial + "\"}}"),
             Value());
    EXPECT_EQ(Json(R"({"day":4,"hour":5,"minute":6,"month":3,"year":2026})"),
              Arg("CSSG2H_SetCriterionSensorDescription", 1))
        << JournalText();
    EXPECT_EQ(Value(longSerial.substr(0, 32)), Arg("CSSG2H_SetCriterionSensorDescription", 3));
    Value const back = call(::SensorCorrelationDescription, "GET", first).value();
    EXPECT_EQ("2026-03-04 05:06:00", back["date"]["dateString"].toString(""));
    EXPECT_EQ(Value(19), back["referenceSensor"]["deviceID"]);

    // Any one field set makes a description, even without a date.
    ExpectOK(call(::SensorCorrelationDescription, "PUT", first, "", R"({"referenceSensor":{"deviceID":5}})"),
             Value());
    Value const noDate = call(::SensorCorrelationDescription, "GET", first).value();
    EXPECT_EQ("0000-00-00 00:00:00", noDate["date"]["dateString"].toString(""))
        << noDate["date"].toString("");
    EXPECT_EQ(Json(R"({"deviceID":5,"serial":""})"), noDate["referenceSensor"]);

    ExpectOK(call(::SensorCorrelationDescription, "DELETE", first), Value());
    ExpectOK(call(::SensorCorrelationDescription, "GET", first), Value());
}

TEST_F(Correlation, DescriptionFailureReleasesTheMonitor) {
    SimInjectResult("CSSG2H_GetCriterionSensorDescription", static_cast<int32_t>(0x8001000A));
    ExpectDvError(call(::SensorCorrelationDescription, "GET", first), 0x8001000A,
                  "Get criterion sensor descripction.");
    std::vector<std::string> const names = host::JournalFunctions();
    ASSERT_FALSE(names.empty());
    EXPECT_EQ("DvCtrlUnlockMonitor", names.back()) << JournalText();
    SimInjectResult("CSSG2H_SetCriterionSensorDescription", static_cast<int32_t>(0x80000001));
    ExpectDvError(call(::SensorCorrelationDescription, "DELETE", first), 0x80000001,
                  "Set criterion sensor descripction.");
}

TEST_F(Correlation, DataReadsBothSetsUnderOneLockAndComparesThemAsText) {
    host::Response r = call(::SensorCorrelationData, "GET", first, R"({"checksFactoryData":0})");
    EXPECT_EQ(Value(true), r.value()["isFactory"]) << r.text;
    EXPECT_EQ(7u, r.value()["toneCorrection"].size());
    EXPECT_EQ((std::vector<std::string>{
                  "SetColorSensorDataIndex", "SetColorSensorDataIndex2", "R2XCGetRefParam",
                  "R2XCGetNormalizedMeasurementValue", "R2XCGetToneCorrectionParam", "R2XCGetRefToneParam",
                  "SetColorSensorDataIndex", "SetColorSensorDataIndex2", "R2XCGetRefParam",
                  "R2XCGetNormalizedMeasurementValue", "R2XCGetToneCorrectionParam", "R2XCGetRefToneParam"}),
              SensorCalls());
    Value const journal = host::Journal();
    // The factory page is addressed last, and the monitor is released as many times as it was locked.
    int depth = 0, deepest = 0;
    Value lastPage;
    for (Value const& c : journal.arrayRef()) {
        std::string const f = c["function"].toString("");
        if (f == "DvCtrlLockMonitor") deepest = std::max(deepest, ++depth);
        if (f == "DvCtrlUnlockMonitor") --depth;
        if (f == "CSSG2H_SetColorSensorDataIndex2") lastPage = c["args"];
    }
    EXPECT_EQ(0, depth);
    EXPECT_EQ(2, deepest); // the endpoint's hold and each step's own
    EXPECT_EQ(Json("[4097,0,1]"), lastPage);

    // Second generation: the luminance levels of mode 0 (current) and mode 1 (factory), index 0
    // without HZE priority; the sets differ.
    r = call(::SensorCorrelationData, "GET", second, R"({"checksFactoryData":0})");
    EXPECT_EQ(Value(false), r.value()["isFactory"]);
    EXPECT_EQ(Json(R"({"brightness":120.5,"dimmerOut":180})"), r.value()["luminanceLevelCorrection"])
        << r.text;
    EXPECT_FALSE(r.value()["calibrationData"]["measurement"]["XYZ"].contains("isFactory"));
    r = call(::SensorCorrelationData, "GET", second);
    EXPECT_FALSE(r.value().contains("isFactory"));
}

TEST_F(Correlation, DataWithHZEPriorityReadsThePriorityLevels) {
    host::LoadScenarioFile("priority_pages.json");
    std::string const id = host::OpenMonitorSensor("VX2790", "61C00005");
    host::ClearJournal();
    host::Response const r = call(::SensorCorrelationData, "GET", id);
    EXPECT_EQ(Json(R"({"brightness":140.5,"dimmerOut":210})"), r.value()["luminanceLevelCorrection"])
        << r.text;
    EXPECT_EQ(Json("[4105,0,1]"), host::FirstCall("CSSG2H_GetLuminanceLevelCorrectionParams")["args"]);
}

TEST_F(Correlation, DataWritesOnlyTheNamedPartsOfTheSensorsFamily) {
    Value current = call(::SensorCorrelationData, "GET", second).value();
    current["luminanceLevelCorrection"]["dimmerOut"] = 70000; // out of range: written as 0
    current["correctionData"]["gamma"] = "2.5";
    host::ClearJournal();
    Value body = Value::object();
    body["correctionData"] = current["correctionData"];
    body["luminanceLevelCorrection"] = current["luminanceLevelCorrection"];
    body["reference"] = Json(R"({"dimmerOut":1})");
    ExpectOK(call(::SensorCorrelationData, "PUT", second, "", quilljson::Serializer::toText(body)), Value());
    EXPECT_EQ((std::vector<std::string>{
                  "SetColorSensorDataIndex", "SetColorSensorCorrectionData", "SendColorSensorCorrectionData",
                  "SupportedLuminanceLevelCorrectionParams", "SetLuminanceLevelCorrectionParams"}),
              SensorCalls());
    EXPECT_EQ(Json("[4098,0,0,120.5,0]"),
              host::FirstCall("CSSG2H_SetLuminanceLevelCorrectionParams")["args"]);
    Value const back = call(::SensorCorrelationData, "GET", second).value();
    EXPECT_EQ(Value(2.5), back["correctionData"]["gamma"]);
    EXPECT_EQ(current["calibrationData"], back["calibrationData"]);

    // A first-generation sensor ignores the second generation's parts; a non-object writes nothing.
    host::ClearJournal();
    ExpectOK(call(::SensorCorrelationData, "PUT", first, "", R"({"calibrationData":{},"referenceTone":{}})"),
             Value());
    EXPECT_EQ(Json(R"({"gamma":[0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0],"tone":[0.0,0.0,0.0,0.0,0.0,0.0,0.0]})"),
              Arg("CSSG2H_R2XCSetRefToneParam", 1));
    std::vector<std::string> const selection{"SetColorSensorDataIndex", "SetColorSensorDataIndex2"};
    std::vector<std::string> expected = selection;
    expected.push_back("R2XCSetRefToneParam");
    EXPECT_EQ(expected, SensorCalls());
    host::ClearJournal();
    ExpectOK(call(::SensorCorrelationData, "PUT", first, "", R"(["reference"])"), Value());
    EXPECT_EQ(selection, SensorCalls());
}

TEST_F(Correlation, DataWriteStopsAtTheFailingPartAndKeepsEarlierOnes) {
    Value current = call(::SensorCorrelationData, "GET", second).value();
    current["calibrationData"]["coefficientType"] = 4;
    SimInjectResult("CSSG2H_SetColorSensorCorrectionData", static_cast<int32_t>(0x8000001A));
    host::ClearJournal();
    ExpectDvError(call(::SensorCorrelationData, "PUT", second, "", quilljson::Serializer::toText(current)),
                  0x8000001A, "Set color sensor correction data.");
    EXPECT_FALSE(Called("CSSG2H_SendColorSensorCorrectionData") ||
                 Called("CSSG2H_SetLuminanceLevelCorrectionParams"));
    SimClearInjections();
    EXPECT_EQ(Value(4),
              call(::SensorCorrelationData, "GET", second).value()["calibrationData"]["coefficientType"]);
}

} // namespace

// Correlation corrections and matrices, the description, correlation data and
// matrix held in a monitor's built-in sensor, and the correlation databases,
// as a host drives them.
#include "host/sensor_test_util.h"

namespace {

using namespace sensortest;

// The names of the journal's calls of the data set selection and of the built-in sensor.
std::vector<std::string> SensorCalls() {
    std::vector<std::string> calls;
    for (std::string const& f : host::JournalFunctions())
        if (f.rfind("CSSG2H_", 0) == 0) calls.push_back(f.substr(7));
    return calls;
}

Value const kStoredEntry = StoredEntry();

using Correlation = MonitorSensorsTest;

TEST_F(Correlation, ListsAppliesAndReleasesStoredCorrectionsAndRefusesIncompleteRequests) {
    ExpectBadRequest(call(::SensorCorrelation, "GET", usb, R"({"availabl":1})"),
                     "requires 'available' query.");
    ExpectOK(call(::SensorCorrelation, "GET", usb, R"({"available":false})"),
             Json(R"([{"id":12,"monitor":{"product":"LMN27A","serial":"41A00017"},)"
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
    std::string const recalc = "MDApplyCorrelationCorrectionWithRecalcLuminanceLevelCorrection";
    Value const& white = Arg(recalc, 2);
    EXPECT_EQ(Json("12"), Arg(recalc, 1));
    EXPECT_EQ(0.3127, white["x"].asDouble()) << JournalText();
    EXPECT_EQ(0.329, white["y"].asDouble());
    EXPECT_EQ(1.0, white["Y"].asDouble());

    ExpectOK(call(::SensorCorrelation, "DELETE", usb, R"({"swingSensor":0})"), Value());
    ExpectOK(call(::SensorCorrelation9Points, "DELETE", usb), Value());
    EXPECT_FALSE(Called("MDReleaseCorrelationCorrection"));
    ExpectOK(call(::SensorCorrelation, "DELETE", usb), Value());
    EXPECT_TRUE(Called("MDReleaseCorrelationCorrection"));
    // Incomplete requests are refused before any device call.
    host::ClearJournal();
    ExpectBadRequest(call(::SensorCorrelation, "PUT", usb, "", R"([12])"), "data must have id.");
    ExpectBadRequest(call(::SensorCorrelation, "PUT", usb, "", R"({"id":12,"type":"recalc"})"),
                     "data must have targetWhite.");
    ExpectBadRequest(
        call(::SensorCorrelation, "PUT", usb, "", R"({"id":12,"type":"recalc","targetWhite":{"x":1,"y":1}})"),
        "targetWhite must have x, y, Y.");
    EXPECT_EQ(std::vector<std::string>{}, Functions()) << JournalText();
}

TEST_F(Correlation, DescriptionSelectsTheCurrentPageRoundTripsAndReleasesTheMonitor) {
    ExpectOK(call(::SensorCorrelationDescription, "GET", first),
             Json(R"({"date":)" + Text(kStoredEntry["date"]) + R"(,"referenceSensor":)" +
                  Text(kStoredEntry["referenceSensor"]) + "}"));
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
    EXPECT_EQ(Json("19"), Arg("CSSG2H_SetCriterionSensorDescription", 2));
    EXPECT_EQ(Value(longSerial.substr(0, 32)), Arg("CSSG2H_SetCriterionSensorDescription", 3));

    // Any one field set makes a description, even without a date.
    ExpectOK(call(::SensorCorrelationDescription, "PUT", first, "", R"({"referenceSensor":{"deviceID":5}})"),
             Value());
    Value const noDate = call(::SensorCorrelationDescription, "GET", first).value();
    EXPECT_EQ("0000-00-00 00:00:00", noDate["date"]["dateString"].toString(""));
    EXPECT_EQ(Json(R"({"deviceID":5,"serial":""})"), noDate["referenceSensor"]);

    ExpectOK(call(::SensorCorrelationDescription, "DELETE", first), Value());
    ExpectOK(call(::SensorCorrelationDescription, "GET", first), Value());

    // A failing read still releases the monitor.
    SimInjectResult("CSSG2H_GetCriterionSensorDescription", static_cast<int32_t>(0x8001000A));
    ExpectDvError(call(::SensorCorrelationDescription, "GET", first), 0x8001000A,
                  "Get criterion sensor descripction.");
    ASSERT_FALSE(Functions().empty());
    EXPECT_EQ("DvCtrlUnlockMonitor", Functions().back()) << JournalText();
    SimInjectResult("CSSG2H_SetCriterionSensorDescription", static_cast<int32_t>(0x80000001));
    ExpectDvError(call(::SensorCorrelationDescription, "DELETE", first), 0x80000001,
                  "Set criterion sensor descripction.");
}

TEST_F(Correlation, DataReadsBothSetsUnderOneLockAndComparesThemAsText) {
    host::Response r = call(::SensorCorrelationData, "GET", first, R"({"checksFactoryData":0})");
    EXPECT_EQ(Value(true), r.value()["isFactory"]) << r.text;
    std::vector<std::string> const oneSet{
        "SetColorSensorDataIndex",           "SetColorSensorDataIndex2",   "R2XCGetRefParam",
        "R2XCGetNormalizedMeasurementValue", "R2XCGetToneCorrectionParam", "R2XCGetRefToneParam"};
    std::vector<std::string> bothSets = oneSet;
    bothSets.insert(bothSets.end(), oneSet.begin(), oneSet.end());
    EXPECT_EQ(bothSets, SensorCalls());
    // The factory page is addressed last, and the monitor is released as many times as it was locked.
    int depth = 0, deepest = 0;
    Value lastPage;
    Value const journal = host::Journal();
    for (Value const& c : journal.arrayRef()) {
        std::string const f = c["function"].toString("");
        if (f == "DvCtrlLockMonitor") deepest = std::max(deepest, ++depth);
        if (f == "DvCtrlUnlockMonitor") --depth;
        if (f == "CSSG2H_SetColorSensorDataIndex2") lastPage = c["args"];
    }
    EXPECT_EQ(0, depth);
    EXPECT_EQ(2, deepest); // the endpoint's hold and each step's own
    EXPECT_EQ(Json("[4097,0,1]"), lastPage);

    // Second generation: the luminance levels of mode 0 (current), index 0 without HZE priority;
    // the sets differ.
    r = call(::SensorCorrelationData, "GET", second, R"({"checksFactoryData":0})");
    EXPECT_EQ(Value(false), r.value()["isFactory"]);
    EXPECT_EQ(Json(R"({"brightness":120.5,"dimmerOut":180})"), r.value()["luminanceLevelCorrection"])
        << r.text;
    EXPECT_FALSE(call(::SensorCorrelationData, "GET", second).value().contains("isFactory"));
    // With HZE priority 2 the priority levels (index 1) are read.
    host::LoadScenarioFile("priority_pages.json");
    std::string const id = host::OpenMonitorSensor("LMN27C", "61C00005");
    host::ClearJournal();
    r = call(::SensorCorrelationData, "GET", id);
    EXPECT_EQ(Json(R"({"brightness":140.5,"dimmerOut":210})"), r.value()["luminanceLevelCorrection"])
        << r.text;
    EXPECT_EQ(Json("[4105,0,1]"), host::FirstCall("CSSG2H_GetLuminanceLevelCorrectionParams")["args"]);
}

TEST_F(Correlation, DataWritesOnlyTheNamedPartsOfTheSensorsFamily) {
    Value current = call(::SensorCorrelationData, "GET", second).value();
    current["luminanceLevelCorrection"]["dimmerOut"] = 70000; // out of range: written as 0
    current["correctionData"]["gamma"] = "2.5";
    Value body = Value::object();
    body["correctionData"] = current["correctionData"];
    body["luminanceLevelCorrection"] = current["luminanceLevelCorrection"];
    body["reference"] = Json(R"({"dimmerOut":1})");
    host::ClearJournal();
    ExpectOK(call(::SensorCorrelationData, "PUT", second, "", Text(body)), Value());
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
    EXPECT_EQ(std::vector<std::string>(
                  {"SetColorSensorDataIndex", "SetColorSensorDataIndex2", "R2XCSetRefToneParam"}),
              SensorCalls());
    host::ClearJournal();
    ExpectOK(call(::SensorCorrelationData, "PUT", first, "", R"(["reference"])"), Value());
    EXPECT_EQ(std::vector<std::string>({"SetColorSensorDataIndex", "SetColorSensorDataIndex2"}),
              SensorCalls());
    // A failing part stops the write; the parts before it stay written.
    current = call(::SensorCorrelationData, "GET", second).value();
    current["calibrationData"]["coefficientType"] = 4;
    SimInjectResult("CSSG2H_SetColorSensorCorrectionData", static_cast<int32_t>(0x8000001A));
    host::ClearJournal();
    ExpectDvError(call(::SensorCorrelationData, "PUT", second, "", Text(current)), 0x8000001A,
                  "Set color sensor correction data.");
    EXPECT_FALSE(Called("CSSG2H_SendColorSensorCorrectionData") ||
                 Called("CSSG2H_SetLuminanceLevelCorrectionParams"));
    SimClearInjections();
    EXPECT_EQ(Value(4),
              call(::SensorCorrelationData, "GET", second).value()["calibrationData"]["coefficientType"]);
}

TEST_F(Correlation, DatabaseListsAndAddsEntries) {
    Value list = Value::array();
    list.append(kStoredEntry);
    ExpectOK(call(::SensorCorrelationDatabase, "GET", first, R"({"available":0})"), list);
    EXPECT_EQ(Json(R"([305,"QS3-41A00017",0])"), host::FirstCall("MDEnumCorrelationInfo")["args"]);

    SimInjectResult("MDGetCorrelationDataDate", static_cast<int32_t>(0x8000000B));
    Value const listed = call(::SensorCorrelationDatabase, "GET", first, R"({"available":0})").value();
    EXPECT_FALSE(listed[0].contains("date"));
    // Finding an entry needs its date.
    ExpectDvError(call(::SensorCorrelationDatabase, "GET", first), 0x8000000B, "Get correlation data date.");
    // Adding uses the function of the sensor's family.
    host::Response r =
        call(::SensorCorrelationDatabase, "POST", first, "",
             R"({"referenceSensor":{"deviceID":"0x0B","serial":"LC11-88210"},"correlationData":{}})");
    Value const args = host::FirstCall("MDAddIFSv3CorrelationData")["args"];
    EXPECT_EQ(Value(11), args[2]) << Text(args); // "0x0B"
    // The database functions take the 17-character monitor text where they name the product.
    EXPECT_EQ(Value("41A00017"), args[4]);
    EXPECT_EQ(Value("LMN27A"), args[5]);
    EXPECT_TRUE(args[8].isNull()); // no date
    ASSERT_TRUE(r.value()["id"].isInteger()) << r.text;
    int64_t const id = r.value()["id"].getInteger();

    ExpectOK(call(::SensorCorrelationDatabase, "POST", second, "", R"({"date":null})"),
             Json(R"({"id":)" + std::to_string(id + 1) + "}"));
    EXPECT_TRUE(Called("MDAddCSSG2CorrelationDataEx"));
    EXPECT_FALSE(Called("MDAddCSSG2CorrelationDataWithDateEx"));
    ExpectOK(call(::SensorCorrelationDatabase, "POST", second, "", R"({"date":"2025-04-05 06:07"})"),
             Json(R"({"id":)" + std::to_string(id + 2) + "}"));
    EXPECT_EQ(Json(R"({"day":5,"hour":6,"minute":7,"month":4,"year":2025})"),
              host::FirstCall("MDAddCSSG2CorrelationDataWithDateEx")["args"][8]);

    SimInjectResult("MDAddCSSG2CorrelationDataEx", static_cast<int32_t>(0x80000004));
    ExpectDvError(call(::SensorCorrelationDatabase, "POST", second, "", "{}"), 0x80000004,
                  "Add correlation data to database.");
}

TEST_F(Correlation, DatabaseFindsTheEntryEqualToTheCurrentDataWithinTolerance) {
    ExpectOK(call(::SensorCorrelationDatabase, "GET", first), kStoredEntry);
    // The monitor is shown as it is now, not as the entry recorded it.
    Value world = host::World();
    world["correlationDatabase"][0]["monitor"]["panelRevision"] = 9;
    world["correlationDatabase"][0]["monitor"]["product"] = "VX2700";
    host::LoadScenario(Text(world));
    open();
    ExpectOK(call(::SensorCorrelationDatabase, "GET", first), kStoredEntry);
    ExpectOK(
        call(::SensorCorrelationDatabase, "GET", second),
        Json(R"({"date":{"dateString":"2025-02-14 16:05:00","day":14,"hour":16,"minute":5,"month":2,)"
             R"("year":2025},"id":2,"monitor":{"panelRevision":1,"product":"52B00042","serial":"LMN32B"},)"
             R"("referenceSensor":{"deviceID":11,"serial":"LC11-88210"}})"));

    Value data = call(::SensorCorrelationData, "GET", first).value();
    data["reference"]["ambientTemperature"] = data["reference"]["ambientTemperature"].asDouble() + 5e-6;
    ExpectOK(call(::SensorCorrelationData, "PUT", first, "", Text(data)), Value());
    EXPECT_EQ(Value(1), call(::SensorCorrelationDatabase, "GET", first).value()["id"]);
    data["reference"]["ambientTemperature"] = data["reference"]["ambientTemperature"].asDouble() + 1e-4;
    ExpectOK(call(::SensorCorrelationData, "PUT", first, "", Text(data)), Value());
    ExpectOK(call(::SensorCorrelationDatabase, "GET", first), Value());

    // Entries are walked in order: the first equal one answers.
    Value body = Value::object();
    body["correlationData"] = data;
    body["referenceSensor"] = Json(R"({"deviceID":8,"serial":"LS8-20419"})");
    body["date"] = Json(R"({"year":2025,"month":3,"day":1,"hour":12,"minute":0})");
    Value const added = call(::SensorCorrelationDatabase, "POST", first, "", Text(body)).value();
    call(::SensorCorrelationDatabase, "POST", first, "", Text(body));
    host::Response const found = call(::SensorCorrelationDatabase, "GET", first);
    EXPECT_EQ(added["id"], found.value()["id"]) << found.text;
    EXPECT_EQ("2025-03-01 12:00:00", found.value()["date"]["dateString"].toString(""));
}

// Numbers compared by their text: the journal reads whole reals back as integers.
std::string CanonText(std::string const& text) {
    return Text(Json(text));
}

// Eight rows whose element [r][c] is r + c / 10, and the 3x3 block they reduce to: rows 1 to 3, transposed.
std::string const kEightRows = "[[0.0,0.1,0.2],[1,1.1,1.2],[2,2.1,2.2],[3,3.1,3.2],[4,4.1,4.2],[5,5.1,5.2],"
                               "[6,6.1,6.2],[7,7.1,7.2]]";
std::string const kReduced = "[[1,2,3],[1.1,2.1,3.1],[1.2,2.2,3.2]]";

using CorrelationMatrix = MonitorSensorsTest;

TEST_F(CorrelationMatrix, ListsAppliesAndReleasesStoredMatrices) {
    ExpectBadRequest(call(::SensorCorrelationMatrix, "GET", first), "requires 'available' query.");
    EXPECT_FALSE(Called("MDGetHIDHandle"));
    ExpectOK(call(::SensorCorrelationMatrix, "GET", first, R"({"available":1})"),
             Json(R"([{"id":7,"referenceSensor":{"deviceID":8,"serial":"LS8-20419"}}])"));
    // The monitor text as the database names the product, and the panel revision.
    EXPECT_EQ(Value("41A00017"), Arg("MDEnumCorrelationMatrix", 1));
    EXPECT_EQ(Value(3), Arg("MDEnumCorrelationMatrix", 2));
    ExpectOK(call(::SensorCorrelationMatrix, "GET", second, R"({"available":1})"), Value::array());

    ExpectBadRequest(call(::SensorCorrelationMatrix, "PUT", usb, "", "\"4\""), "data must be number.");
    ExpectOK(call(::SensorCorrelationMatrix, "PUT", usb, "", "3.6"), Value());
    EXPECT_EQ(Value(4), Arg("MDApplyCorrelationMatrix", 1));
    ExpectDvError(call(::SensorCorrelationMatrix, "PUT", usb, "", "-4"), 0x80000005,
                  "Apply correlation matrix.");
    ExpectOK(call(::SensorCorrelationMatrix, "DELETE", usb), Value());
    SimInjectResult("MDReleaseCorrelationMatrix", static_cast<int32_t>(0x80000007));
    ExpectDvError(call(::SensorCorrelationMatrix, "DELETE", usb), 0x80000007, "Release correlation matrix.");
}

TEST_F(CorrelationMatrix, MonitorMatrixIsReadInItsOwnFormAndComparedWithTheFactorySet) {
    host::Response r = call(::SensorCorrelationMatrixData, "GET", first, R"({"checksFactoryData":"no"})");
    EXPECT_EQ(Value(true), r.value()["isFactory"]) << r.text;
    ASSERT_EQ(8u, r.value()["matrix"].size());
    EXPECT_EQ(CanonText("[1.012,0.002,0.001]"), Text(r.value()["matrix"][1]));
    std::string const matrix = "[[1.021,0.004,0.002],[0.003,0.987,0.006],[0.002,0.004,1.013]]";
    r = call(::SensorCorrelationMatrixData, "GET", second, R"({"checksFactoryData":"no"})");
    EXPECT_EQ(CanonText(R"({"isFactory":false,"matrix":)" + matrix + "}"), Text(r.value()));
    EXPECT_EQ(CanonText(R"({"matrix":)" + matrix + "}"),
              Text(call(::SensorCorrelationMatrixData, "GET", second).value()));
}

TEST_F(CorrelationMatrix, WritesEightRowsWhereSupportedElseTheTransposedBlock) {
    ExpectOK(call(::SensorCorrelationMatrixData, "PUT", first, "", R"({"matrix":)" + kEightRows + "}"),
             Value());
    EXPECT_EQ(CanonText(kEightRows), Text(Arg("CSSG2H_SetXYZCorrectionMatrix8DXT", 1))) << JournalText();
    EXPECT_FALSE(Called("CSSG2H_SetXYZCorrectionMatrix"));
    ExpectOK(call(::SensorCorrelationMatrixData, "PUT", second, "", R"({"matrix":)" + kEightRows + "}"),
             Value());
    EXPECT_EQ(CanonText(kReduced), Text(Arg("CSSG2H_SetXYZCorrectionMatrix", 1))) << JournalText();

    // Fewer than eight rows: the first three as they are; lenient elements.
    host::ClearJournal();
    ExpectOK(call(::SensorCorrelationMatrixData, "PUT", first, "",
                  R"({"matrix":[[1,"2",true],[4],{"x":1},[9,9,9],[9,9,9],[9,9,9],[9,9,9]]})"),
             Value());
    EXPECT_EQ(CanonText("[[1,2,1],[4,0.0,0.0],[0.0,0.0,0.0]]"),
              Text(Arg("CSSG2H_SetXYZCorrectionMatrix", 1)));
    EXPECT_FALSE(Called("CSSG2H_SetXYZCorrectionMatrix8DXT"));
    // Matrices of the wrong shape are refused after the data set was selected.
    host::ClearJournal();
    ExpectBadRequest(call(::SensorCorrelationMatrixData, "PUT", first, "", R"({"matrx":[]})"),
                     "matrix data type is not array.");
    ExpectBadRequest(call(::SensorCorrelationMatrixData, "PUT", first, "", R"({"matrix":[[1,2,3],[4,5,6]]})"),
                     "matrix data size is invalid.");
    EXPECT_TRUE(Called("CSSG2H_SetColorSensorDataIndex2"));
    EXPECT_FALSE(Called("CSSG2H_SupportedXYZCorrectionMatrix8DXT") || Called("CSSG2H_SetXYZCorrectionMatrix"))
        << JournalText();
}

TEST_F(CorrelationMatrix, DatabaseListsAndFindsTheMatrixOfTheCurrentDescription) {
    std::string const entry = Text(StoredEntry());
    EXPECT_EQ(CanonText("[" + entry + "]"),
              Text(call(::SensorCorrelationMatrixDatabase, "GET", first, R"({"available":true})").value()));
    EXPECT_EQ(entry, Text(call(::SensorCorrelationMatrixDatabase, "GET", first).value()));

    // A description of another date no longer finds it; another reference sensor finds none.
    ExpectOK(call(::SensorCorrelationDescription, "PUT", first, "",
                  R"({"date":"2025-01-10 09:31","referenceSensor":{"deviceID":8,"serial":"LS8-20419"}})"),
             Value());
    ExpectOK(call(::SensorCorrelationMatrixDatabase, "GET", first), Value());
    ExpectOK(call(::SensorCorrelationDescription, "PUT", first, "",
                  R"({"date":"2025-01-10 09:30","referenceSensor":{"deviceID":11,"serial":"LS8-20419"}})"),
             Value());
    host::ClearJournal();
    ExpectOK(call(::SensorCorrelationMatrixDatabase, "GET", first), Value());
    EXPECT_FALSE(Called("MDGetCorrelationMatrixDate"));
}

TEST_F(CorrelationMatrix, DatabaseAddsTheReducedMatrixOnThePriorityPage) {
    host::Response r =
        call(::SensorCorrelationMatrixDatabase, "POST", first, "",
             R"({"correlationID":5.9,"referenceSensor":{"deviceID":"11","serial":"LC11-88210"},)"
             R"("correlationData":{"matrix":)" +
                 kEightRows + "}}");
    ASSERT_TRUE(r.value()["id"].isInteger()) << r.text;
    // Sensor, reference, monitor texts as the database names them, panel revision, the page of HZE
    // priority 2, the truncated correlation id, the reduced matrix, no date.
    EXPECT_EQ(
        CanonText(R"([305,"QS3-41A00017",11,"LC11-88210","41A00017","LMN27A",3,1,5,)" + kReduced + ",null]"),
        Text(host::FirstCall("MDAddCorrelationMatrix")["args"]));

    ExpectBadRequest(call(::SensorCorrelationMatrixDatabase, "POST", second, "", R"({"date":"2025-01-01"})"),
                     "matrix data type is not array.");
    host::ClearJournal();
    ExpectOK(call(::SensorCorrelationMatrixDatabase, "POST", second, "",
                  R"({"date":"2025-01-02 03:04","correlationData":{"matrix":[[1,0,0],[0,1,0],[0,0,1]]}})"),
             Json(R"({"id":)" + std::to_string(r.value()["id"].getInteger() + 1) + "}"));
    Value const dated = host::FirstCall("MDAddCorrelationMatrix")["args"];
    EXPECT_EQ(Value(0), dated[7]); // no HZE priority: page 0
    EXPECT_EQ(CanonText(R"({"day":2,"hour":3,"minute":4,"month":1,"year":2025})"), Text(dated[10]));
}

} // namespace

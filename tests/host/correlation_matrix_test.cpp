// Correlation matrices: those stored for a sensor, the one held in a monitor, and their database.
#include "host/sensor_test_util.h"

namespace {

using namespace sensortest;

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

// Correlation matrices: those stored for a sensor and the one held in a monitor.
#include "host/sensor_test_util.h"
#include "quilljson/parser.h"
#include "quilljson/serializer.h"

namespace {

using quilljson::Value;
using namespace sensortest;

Value Json(std::string const& text) {
    Value v;
    EXPECT_TRUE(quilljson::Parser().parse(&v, text)) << text;
    return v;
}

// Numbers compared by their text: the journal reads whole reals back as integers.
std::string Canon(Value const& v) {
    return quilljson::Serializer::toText(v);
}
std::string CanonText(std::string const& text) {
    return Canon(Json(text));
}

// The last journal entry of that function, or null.
Value LastCall(std::string const& function) {
    Value last;
    Value const journal = host::Journal();
    for (Value const& c : journal.arrayRef())
        if (c["function"].toString("") == function) last = c;
    return last;
}

// Eight rows whose element [r][c] is r + c / 10.
std::string const kEightRows = "[[0.0,0.1,0.2],[1,1.1,1.2],[2,2.1,2.2],[3,3.1,3.2],[4,4.1,4.2],[5,5.1,5.2],"
                               "[6,6.1,6.2],[7,7.1,7.2]]";

class CorrelationMatrix : public host::HostTest {
protected:
    void SetUp() override {
        host::HostTest::SetUp();
        first = host::OpenMonitorSensor("VX2710", "41A00017");  // 8x3 supported
        second = host::OpenMonitorSensor("VX3220", "52B00042"); // 3x3 only
        usb = host::OpenByDeviceID(8);
        host::ClearJournal();
    }
    host::Response call(host::Endpoint e, std::string const& method, std::string const& id,
                        std::string const& query = "", std::string const& body = "") {
        return host::Call(e, method, host::IdParams(id), query, body);
    }
    std::string first, second, usb;
};

TEST_F(CorrelationMatrix, ListsAppliesAndReleasesStoredMatrices) {
    ExpectBadRequest(call(::SensorCorrelationMatrix, "GET", first), "requires 'available' query.");
    EXPECT_FALSE(Called("MDGetHIDHandle"));
    ExpectOK(call(::SensorCorrelationMatrix, "GET", first, R"({"available":1})"),
             Json(R"([{"id":7,"referenceSensor":{"deviceID":8,"serial":"LS8-20419"}}])"));
    EXPECT_EQ(Json("3"), Arg("MDEnumCorrelationMatrix", 2)); // the panel revision
    ExpectOK(call(::SensorCorrelationMatrix, "GET", second, R"({"available":1})"), Value::array());

    ExpectBadRequest(call(::SensorCorrelationMatrix, "PUT", usb, "", "\"4\""), "data must be number.");
    ExpectOK(call(::SensorCorrelationMatrix, "PUT", usb, "", "3.6"), Value());
    EXPECT_EQ(Json("4"), Arg("MDApplyCorrelationMatrix", 1));
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
    EXPECT_EQ(Json("[1.012,0.002,0.001]"), r.value()["matrix"][1]);
    // Left addressing the factory page.
    EXPECT_EQ(Json("[4097,0,1]"), LastCall("CSSG2H_SetColorSensorDataIndex2")["args"]);
    r = call(::SensorCorrelationMatrixData, "GET", second, R"({"checksFactoryData":"no"})");
    EXPECT_EQ(Value(false), r.value()["isFactory"]);
    EXPECT_EQ(Json("[[1.021,0.004,0.002],[0.003,0.987,0.006],[0.002,0.004,1.013]]"), r.value()["matrix"]);
    r = call(::SensorCorrelationMatrixData, "GET", second);
    EXPECT_EQ(Json(R"({"matrix":[[1.021,0.004,0.002],[0.003,0.987,0.006],[0.002,0.004,1.013]]})"), r.value());
}

TEST_F(CorrelationMatrix, WritesEightRowsWhereSupportedElseTheTransposedBlock) {
    ExpectOK(call(::SensorCorrelationMatrixData, "PUT", first, "", R"({"matrix":)" + kEightRows + "}"),
             Value());
    EXPECT_EQ(CanonText(kEightRows), Canon(Arg("CSSG2H_SetXYZCorrectionMatrix8DXT", 1))) << JournalText();
    EXPECT_FALSE(Called("CSSG2H_SetXYZCorrectionMatrix"));

    // Without 8x3 support: rows 1 to 3, transposed.
    ExpectOK(call(::SensorCorrelationMatrixData, "PUT", second, "", R"({"matrix":)" + kEightRows + "}"),
             Value());
    EXPECT_EQ(CanonText("[[1,2,3],[1.1,2.1,3.1],[1.2,2.2,3.2]]"),
              Canon(Arg("CSSG2H_SetXYZCorrectionMatrix", 1)))
        << JournalText();
    host::ClearJournal();
    // Fewer than eight rows: the first three as they are; lenient elements.
    ExpectOK(call(::SensorCorrelationMatrixData, "PUT", first, "",
                  R"({"matrix":[[1,"2",true],[4],{"x":1},[9,9,9],[9,9,9],[9,9,9],[9,9,9]]})"),
             Value());
    EXPECT_EQ(CanonText("[[1,2,1],[4,0.0,0.0],[0.0,0.0,0.0]]"),
              Canon(Arg("CSSG2H_SetXYZCorrectionMatrix", 1)));
    EXPECT_FALSE(Called("CSSG2H_SetXYZCorrectionMatrix8DXT"));
}

TEST_F(CorrelationMatrix, RefusesMatricesOfTheWrongShapeAfterSelectingTheDataSet) {
    ExpectBadRequest(call(::SensorCorrelationMatrixData, "PUT", first, "", R"({"matrx":[]})"),
                     "matrix data type is not array.");
    ExpectBadRequest(call(::SensorCorrelationMatrixData, "PUT", first, "", R"({"matrix":[[1,2,3],[4,5,6]]})"),
                     "matrix data size is invalid.");
    EXPECT_TRUE(Called("CSSG2H_SetColorSensorDataIndex2"));
    EXPECT_FALSE(Called("CSSG2H_SupportedXYZCorrectionMatrix8DXT") || Called("CSSG2H_SetXYZCorrectionMatrix"))
        << JournalText();
}

TEST_F(CorrelationMatrix, DatabaseListsAndFindsTheMatrixOfTheCurrentDescription) {
    Value const entry =
        Json(R"({"date":{"dateString":"2025-01-10 09:30:00","day":10,"hour":9,"minute":30,)"
             R"("month":1,"year":2025},"id":1,"monitor":{"panelRevision":3,"product":"VX2710",)"
             R"("serial":"41A00017"},"referenceSensor":{"deviceID":8,"serial":"LS8-20419"}})");
    Value list = Value::array();
    list.append(entry);
    ExpectOK(call(::SensorCorrelationMatrixDatabase, "GET", first, R"({"available":true})"), list);
    ExpectOK(call(::SensorCorrelationMatrixDatabase, "GET", first), entry);

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

    // A listed matrix whose date cannot be read is listed without one.
    SimInjectResult("MDGetCorrelationMatrixDate", static_cast<int32_t>(0x8000000B));
    host::Response const r = call(::SensorCorrelationMatrixDatabase, "GET", first, R"({"available":true})");
    EXPECT_FALSE(r.value()[0].contains("date")) << r.text;
}

TEST_F(CorrelationMatrix, DatabaseAddsTheReducedMatrixOnThePriorityPage) {
    host::Response r =
        call(::SensorCorrelationMatrixDatabase, "POST", first, "",
             R"({"correlationID":5.9,"referenceSensor":{"deviceID":"11","serial":"LC11-88210"},)"
             R"("correlationData":{"matrix":)" +
                 kEightRows + "}}");
    EXPECT_EQ(200u, r.status) << r.text;
    EXPECT_TRUE(r.value()["id"].isInteger()) << r.text;
    Value const args = host::FirstCall("MDAddCorrelationMatrix")["args"];
    EXPECT_EQ(Json("305"), args[0]);
    EXPECT_EQ(Json("11"), args[2]);
    EXPECT_EQ(Json("\"LC11-88210\""), args[3]);
    EXPECT_EQ(Json("3"), args[6]); // panel revision
    EXPECT_EQ(Json("1"), args[7]); // data page of HZE priority 2
    EXPECT_EQ(Json("5"), args[8]); // correlation id, truncated
    EXPECT_EQ(CanonText("[[1,2,3],[1.1,2.1,3.1],[1.2,2.2,3.2]]"), Canon(args[9])) << JournalText();
    EXPECT_TRUE(args[10].isNull()); // no date

    ExpectBadRequest(call(::SensorCorrelationMatrixDatabase, "POST", second, "", R"({"date":"2025-01-01"})"),
                     "matrix data type is not array.");
    ExpectOK(call(::SensorCorrelationMatrixDatabase, "POST", second, "",
                  R"({"date":"2025-01-02 03:04","correlationData":{"matrix":[[1,0,0],[0,1,0],[0,0,1]]}})"),
             Json(R"({"id":)" + std::to_string(r.value()["id"].getInteger() + 1) + "}"));
    Value const dated = LastCall("MDAddCorrelationMatrix")["args"];
    EXPECT_EQ(Json("0"), dated[7]); // no HZE priority: page 0
    EXPECT_EQ(Json(R"({"day":2,"hour":3,"minute":4,"month":1,"year":2025})"), dated[10]);
}

} // namespace

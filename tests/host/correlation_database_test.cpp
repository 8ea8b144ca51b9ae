// The correlation database: listing, finding the monitor's current data, adding it.
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

std::string Text(Value const& v) {
    return quilljson::Serializer::toText(v);
}

// Elements [from, to) of an array.
Value Slice(Value const& array, unsigned long from, unsigned long to) {
    Value slice = Value::array();
    for (unsigned long i = from; i < to; ++i)
        slice.append(array[i]);
    return slice;
}

Value const kStoredEntry =
    Json(R"({"date":{"dateString":"2025-01-10 09:30:00","day":10,"hour":9,"minute":30,)"
         R"("month":1,"year":2025},"id":1,"monitor":{"panelRevision":3,"product":"VX2710",)"
         R"("serial":"41A00017"},"referenceSensor":{"deviceID":8,"serial":"LS8-20419"}})");

class CorrelationDatabase : public host::HostTest {
protected:
    void SetUp() override {
        host::HostTest::SetUp();
        open();
    }
    void open() {
        first = host::OpenMonitorSensor("VX2710", "41A00017");
        second = host::OpenMonitorSensor("VX3220", "52B00042");
        host::ClearJournal();
    }
    host::Response call(std::string const& method, std::string const& id, std::string const& query = "",
                        std::string const& body = "") {
        return host::Call(::SensorCorrelationDatabase, method, host::IdParams(id), query, body);
    }
    host::Response putData(std::string const& id, Value const& data) {
        return host::Call(::SensorCorrelationData, "PUT", host::IdParams(id), "", Text(data));
    }
    Value currentData(std::string const& id) {
        return host::Call(::SensorCorrelationData, "GET", host::IdParams(id)).value();
    }
    std::string first, second;
};

TEST_F(CorrelationDatabase, ListsTheSensorsEntriesAndLeavesUnreadableDatesOut) {
    Value list = Value::array();
    list.append(kStoredEntry);
    ExpectOK(call("GET", first, R"({"available":0})"), list);
    EXPECT_EQ(Json(R"([305,"QS3-41A00017",0])"), host::FirstCall("MDEnumCorrelationInfo")["args"]);

    SimInjectResult("MDGetCorrelationDataDate", static_cast<int32_t>(0x8000000B));
    Value const undated =
        Json(R"({"id":1,"monitor":{"panelRevision":3,"product":"VX2710","serial":"41A00017"},)"
             R"("referenceSensor":{"deviceID":8,"serial":"LS8-20419"}})");
    list = Value::array();
    list.append(undated);
    ExpectOK(call("GET", first, R"({"available":0})"), list);
    // Finding an entry needs its date.
    ExpectDvError(call("GET", first), 0x8000000B, "Get correlation data date.");
}

TEST_F(CorrelationDatabase, FindsTheEntryEqualToTheCurrentDataWithinTolerance) {
    ExpectOK(call("GET", first), kStoredEntry);
    ExpectOK(
        call("GET", second),
        Json(R"({"date":{"dateString":"2025-02-14 16:05:00","day":14,"hour":16,"minute":5,"month":2,)"
             R"("year":2025},"id":2,"monitor":{"panelRevision":1,"product":"VX3220","serial":"52B00042"},)"
             R"("referenceSensor":{"deviceID":11,"serial":"LC11-88210"}})"));

    Value data = currentData(first);
    data["reference"]["ambientTemperature"] = data["reference"]["ambientTemperature"].asDouble() + 5e-6;
    ExpectOK(putData(first, data), Value());
    EXPECT_EQ(Value(1), call("GET", first).value()["id"]);
    data["reference"]["ambientTemperature"] = data["reference"]["ambientTemperature"].asDouble() + 1e-4;
    ExpectOK(putData(first, data), Value());
    ExpectOK(call("GET", first), Value());

    // Entries are walked in order: the first equal one answers.
    Value body = Value::object();
    body["correlationData"] = data;
    body["referenceSensor"] = Json(R"({"deviceID":8,"serial":"LS8-20419"})");
    body["date"] = Json(R"({"year":2025,"month":3,"day":1,"hour":12,"minute":0})");
    Value const added = call("POST", first, "", Text(body)).value();
    call("POST", first, "", Text(body));
    host::Response const found = call("GET", first);
    EXPECT_EQ(added["id"], found.value()["id"]) << found.text;
    EXPECT_EQ("2025-03-01 12:00:00", found.value()["date"]["dateString"].toString(""));
}

TEST_F(CorrelationDatabase, FoundEntryShowsTheMonitorAsItIsNow) {
    Value world = host::World();
    world["correlationDatabase"][0]["monitor"]["panelRevision"] = 9;
    world["correlationDatabase"][0]["monitor"]["product"] = "VX2700";
    host::LoadScenario(Text(world));
    open();
    ExpectOK(call("GET", first), kStoredEntry);
}

TEST_F(CorrelationDatabase, AddsWithTheFunctionOfTheSensorsFamily) {
    host::Response r =
        call("POST", first, "",
             R"({"referenceSensor":{"deviceID":"0x0B","serial":"LC11-88210"},"correlationData":{}})");
    EXPECT_EQ(200u, r.status) << r.text;
    Value const args = host::FirstCall("MDAddIFSv3CorrelationData")["args"];
    // The database functions take the 17-character monitor text where they name the product.
    EXPECT_EQ(Json(R"([305,"QS3-41A00017",11,"LC11-88210","41A00017","VX2710",3])"), Slice(args, 0, 7));
    EXPECT_TRUE(args[8].isNull()) << Text(args);
    ASSERT_TRUE(r.value()["id"].isInteger()) << r.text;
    int64_t const id = r.value()["id"].getInteger();

    ExpectOK(call("POST", second, "", R"({"date":null})"), Json(R"({"id":)" + std::to_string(id + 1) + "}"));
    EXPECT_TRUE(Called("MDAddCSSG2CorrelationDataEx"));
    EXPECT_FALSE(Called("MDAddCSSG2CorrelationDataWithDateEx"));
    ExpectOK(call("POST", second, "", R"({"date":"2025-04-05 06:07"})"),
             Json(R"({"id":)" + std::to_string(id + 2) + "}"));
    EXPECT_EQ(Json(R"({"day":5,"hour":6,"minute":7,"month":4,"year":2025})"),
              host::FirstCall("MDAddCSSG2CorrelationDataWithDateEx")["args"][8]);

    SimInjectResult("MDAddCSSG2CorrelationDataEx", static_cast<int32_t>(0x80000004));
    ExpectDvError(call("POST", second, "", "{}"), 0x80000004, "Add correlation data to database.");
}

} // namespace

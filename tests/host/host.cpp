#include "host/host.h"

#include <algorithm>

#include "quilljson/parser.h"
#include "quilljson/serializer.h"

namespace quilljson {
void PrintTo(Value const& value, std::ostream* out) {
    *out << Serializer::toText(value);
}
} // namespace quilljson

namespace host {

Response Call(Endpoint endpoint, std::string const& method, std::string const& params,
              std::string const& query, std::string const& body) {
    std::string request = method.empty() ? std::string() : "{\"method\":\"" + method + "\"}";
    uint32_t id = endpoint(request.c_str(), params.c_str(), query.c_str(), body.c_str());
    Response r;
    uint32_t length = 0;
    uint32_t status = BridgeHelperGetResponse(id, nullptr, &length);
    EXPECT_GT(length, 0u);
    std::string buffer(length, '\xff');
    r.status = BridgeHelperGetResponse(id, &buffer[0], &length);
    EXPECT_EQ(status, r.status);
    r.text = buffer.c_str();
    EXPECT_TRUE(quilljson::Parser().parse(&r.json, r.text)) << r.text;
    return r;
}

std::string IdParams(std::string const& id) {
    return "{\"id\":\"" + id + "\"}";
}

std::string OpenByDeviceID(uint32_t deviceID) {
    Response r = Call(::DeviceID, "POST", "{\"deviceID\":\"" + std::to_string(deviceID) + "\"}");
    EXPECT_EQ(200u, r.status) << r.text;
    return r.value().toString("");
}

std::string OpenMonitorSensor(std::string const& product, std::string const& serial) {
    Response r = Call(::Monitors, "POST", "{\"product\":\"" + product + "\",\"serial\":\"" + serial + "\"}");
    EXPECT_EQ(200u, r.status) << r.text;
    return r.value().toString("");
}

size_t CallCount(std::string const& function) {
    auto const names = JournalFunctions();
    return static_cast<size_t>(std::count(names.begin(), names.end(), function));
}

quilljson::Value FirstCall(std::string const& function) {
    quilljson::Value const journal = Journal();
    for (auto const& call : journal.arrayRef())
        if (call["function"].toString("") == function) return call;
    return quilljson::Value();
}

void ClearJournal() {
    SimClearJournal();
}

void LoadScenario(std::string const& json) {
    ASSERT_EQ(0, SimLoadScenario(json.c_str())) << json;
}

void LoadScenarioFile(std::string const& name) {
    LoadScenario(simworld::ScenarioText(name));
}

void HostTest::SetUp() {
    LoadScenarioFile("default.json");
    SimClearInjections();
    ::Setup();
    SimClearJournal();
}

void HostTest::TearDown() {
    ::TearDown();
}

} // namespace host

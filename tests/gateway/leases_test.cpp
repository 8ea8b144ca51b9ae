// Leases: only the holder reaches a leased sensor (its description excepted),
// renewing keeps the token, releasing or expiring frees the sensor.
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "gateway_server.h"
#include "quilljson/parser.h"

namespace gatewaytest {
namespace {

struct LeaseAnswer {
    int status = 0;
    std::string token;
    std::string expires;
    std::string body;
};

LeaseAnswer PutLease(httplib::Client& client, std::string const& sensor, std::string const& body,
                     std::string const& token = "") {
    httplib::Headers headers;
    if (!token.empty()) headers.emplace("Sensor-Lease", token);
    httplib::Result result =
        client.Put(("/Sensors/" + sensor + "/Lease").c_str(), headers, body, "application/json");
    LeaseAnswer answer;
    if (!result) return answer;
    answer.status = result->status;
    answer.body = result->body;
    quilljson::Value parsed;
    quilljson::Parser().parse(&parsed, result->body);
    answer.token = parsed["value"]["token"].toString("");
    answer.expires = parsed["value"]["expires"].toString("");
    return answer;
}

using GatewayLeases = GatewayTest;

TEST_F(GatewayLeases, OnlyTheHolderReachesALeasedSensor) {
    std::string const other = server.openSpectro();
    std::string const xyz = "/Sensors/" + sensor + "/XYZ";

    LeaseAnswer const lease = PutLease(*client, sensor, R"({"owner":"line 3","seconds":60})");
    ASSERT_EQ(200, lease.status) << lease.body;
    EXPECT_EQ(64u, lease.token.size());
    EXPECT_EQ(20u, lease.expires.size()) << lease.expires; // 2026-11-23T15:40:00Z

    httplib::Result refused = client->Get(xyz.c_str());
    EXPECT_EQ(409, Status(refused));
    EXPECT_NE(std::string::npos, refused->body.find("\"name\":\"LeaseError\"")) << refused->body;
    EXPECT_NE(std::string::npos, refused->body.find("line 3")) << refused->body;
    EXPECT_EQ(409, Status(client->Get(xyz.c_str(), {{"Sensor-Lease", "not-the-token"}})));
    EXPECT_EQ(409, Status(client->Put(("/Sensors/" + sensor + "/Mode").c_str(), "{}", "application/json")));
    EXPECT_EQ(409, Status(client->Delete(("/Sensors/" + sensor).c_str())));
    EXPECT_EQ(409, Status(client->Delete("/Sensors"))); // would close the leased sensor too
    // Its description stays readable; the holder and other sensors go on.
    EXPECT_EQ(200, Status(client->Get(("/Sensors/" + sensor).c_str())));
    EXPECT_EQ(200, Status(client->Get(xyz.c_str(), {{"Sensor-Lease", lease.token}})));
    EXPECT_EQ(200, Status(client->Get(("/Sensors/" + other + "/XYZ").c_str())));

    // Another client cannot take it; the holder renews and keeps the token.
    EXPECT_EQ(409, PutLease(*client, sensor, R"({"owner":"line 4","seconds":60})").status);
    LeaseAnswer const renewed = PutLease(*client, sensor, R"({"owner":"line 3","seconds":120})", lease.token);
    EXPECT_EQ(200, renewed.status) << renewed.body;
    EXPECT_EQ(lease.token, renewed.token);

    EXPECT_EQ(409, Status(client->Delete(("/Sensors/" + sensor + "/Lease").c_str())));
    EXPECT_EQ(200, Status(client->Delete(("/Sensors/" + sensor + "/Lease").c_str(),
                                         {{"Sensor-Lease", lease.token}})));
    EXPECT_EQ(404, Status(client->Delete(("/Sensors/" + sensor + "/Lease").c_str())));
    EXPECT_EQ(200, Status(client->Get(xyz.c_str())));

    for (char const* body : {"[]", R"({"owner":"","seconds":5})", R"({"owner":"a","seconds":"5"})",
                             R"({"owner":"a","seconds":3601})"})
        EXPECT_EQ(400, PutLease(*client, sensor, body).status) << body;
    // The library's own answer for a sensor that is not open.
    LeaseAnswer const unknown = PutLease(*client, "no-such-sensor", R"({"owner":"a","seconds":5})");
    EXPECT_EQ(404, unknown.status);
    EXPECT_NE(std::string::npos, unknown.body.find("Not found.")) << unknown.body;
}

TEST_F(GatewayLeases, LeasesEndByThemselvesAndWithTheSensor) {
    // A one-second lease, on the real clock.
    std::string const xyz = "/Sensors/" + sensor + "/XYZ";
    LeaseAnswer const short_ = PutLease(*client, sensor, R"({"owner":"a","seconds":1})");
    ASSERT_EQ(200, short_.status);
    EXPECT_EQ(409, Status(client->Get(xyz.c_str())));
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    EXPECT_EQ(200, Status(client->Get(xyz.c_str())));

    // Closing the sensor ends its lease: a sensor opened later starts free.
    LeaseAnswer const held = PutLease(*client, sensor, R"({"owner":"a","seconds":60})");
    EXPECT_EQ(200, Status(client->Delete(("/Sensors/" + sensor).c_str(), {{"Sensor-Lease", held.token}})));
    EXPECT_EQ(404, Status(client->Delete(("/Sensors/" + sensor + "/Lease").c_str(),
                                         {{"Sensor-Lease", held.token}})));
}

} // namespace
} // namespace gatewaytest

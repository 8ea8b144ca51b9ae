// The result line every request leaves in the log.
#include <map>
#include <thread>
#include <vector>

#include "host/host.h"
#include "host/log_file.h"

namespace {

class ResultLog : public host::HostTest {
protected:
    void SetUp() override {
        host::HostTest::SetUp();
        log.lines(); // set-up's own sentences
    }
    hostlog::Tail log;
};

std::string const kUri = "/sensorbridge.tovelworks.net/";

} // namespace

// With the URI as far as the request got, and the method word as dispatched.
TEST_F(ResultLog, OneLinePerRequest) {
    std::string const id = host::OpenByDeviceID(8);
    log.lines();
    host::Call(::SensorXYZ, "", host::IdParams(id));
    SimInjectResult("MDMeasureXYZ2", static_cast<int32_t>(0x80000001u));
    host::Call(::SensorXYZ, "GET", host::IdParams(id));
    host::Call(::SensorXYZ, "GET", host::IdParams(id + "0"));
    host::Call(::SensorXYZ, "Put", host::IdParams("x"));
    host::Call(::SensorXYZ, "patch");

    std::string const uri = kUri + "Sensors/" + id;
    std::vector<hostlog::Line> const expected = {
        {2, "statusCode:200\tmethod:GET\turi:" + uri + "/XYZ\tmsg:Success"},
        {5, "statusCode:500\tmethod:GET\turi:" + uri +
                "/XYZ\terr:DvError\tmsg:Invalid argument.\tcode:80000001"},
        {5, "statusCode:404\tmethod:GET\turi:" + uri + "0/XYZ\terr:Error\tmsg:Not found."},
        {5, "statusCode:405\tmethod:PUT\turi:" + kUri + "\terr:MethodError\tmsg:PUT method is not allowed."},
        {5, "statusCode:400\tmethod:GET\turi:" + kUri +
                "Sensors//XYZ\terr:BadRequestError\tmsg:URI is invalid."},
    };
    EXPECT_EQ(expected, log.lines());
}

// Two host threads, each with its own sensor: every request answers and
// leaves exactly its own line.
TEST_F(ResultLog, ConcurrentRequestsEachLeaveTheirLine) {
    std::string const ids[2] = {host::OpenByDeviceID(8), host::OpenByDeviceID(11)};
    log.lines();
    int constexpr kRequests = 200;
    std::vector<std::thread> threads;
    int failed[2] = {0, 0};
    for (int t = 0; t < 2; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < kRequests; ++i)
                failed[t] += host::Call(::SensorXYZ, "GET", host::IdParams(ids[t])).status != 200;
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(0, failed[0] + failed[1]);
    std::map<std::string, int> seen;
    for (hostlog::Line const& line : log.lines())
        ++seen[line.message];
    std::map<std::string, int> expected;
    for (std::string const& id : ids)
        expected["statusCode:200\tmethod:GET\turi:" + kUri + "Sensors/" + id + "/XYZ\tmsg:Success"] =
            kRequests;
    EXPECT_EQ(expected, seen);
}

// The result line every request leaves in the log; set-up and tear-down: the
// device-library path and the compatibility helper, and what they log.
#include <dlfcn.h>

#include <map>
#include <thread>
#include <vector>

#include "host/host.h"
#include "host/log_file.h"
#include "quilljson/serializer.h"

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

// A text of the host support library, which the library loaded with itself.
std::string Host(char const* function) {
    auto const get = reinterpret_cast<char const* (*)()>(dlsym(RTLD_DEFAULT, function));
    return get != nullptr ? get() : "(" + std::string(function) + " missing)";
}

// A world of its own: no sensors, only the compatibility helper's behaviour.
class Lifecycle : public ::testing::Test {
protected:
    void Load(bool supported, int32_t launchResult = 0, int32_t quitResult = 0) {
        host::LoadScenario(R"({"compatibilityProcess":{"supported":)" +
                           std::string(supported ? "true" : "false") + R"(,"launchResult":)" +
                           std::to_string(launchResult) + R"(,"quitResult":)" + std::to_string(quitResult) +
                           "}}");
        SimClearInjections();
        SimClearJournal();
    }
    quilljson::Value Helper() { return host::World()["compatibilityProcess"]; }

    hostlog::Tail log;
};

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

TEST_F(Lifecycle, SetupPointsThePallastLibraryAtTheExportsAndLaunchesTheHelper) {
    Load(true);
    ::Setup();
    EXPECT_EQ(Host("Plg_GetRegistryExportsPath"), host::World()["libraryPath"].toString(""));
    quilljson::Value const launched = Helper()["launched"];
    ASSERT_EQ(1u, launched.size()) << quilljson::Serializer::toText(launched);
    EXPECT_EQ(Host("Plg_GetRegistryPath") + "/net.tovelworks.framework.sensorcontrol/" +
                  Host("Plg_GetArchitecture") + "/vostrand",
              launched[0]["path"].toString(""));
    EXPECT_EQ(Host("Plg_GetApplicationName"), launched[0]["application"].toString(""));
    EXPECT_EQ(std::vector<hostlog::Line>({{3, "Launch vostrand."}}), log.lines());

    ::TearDown();
    EXPECT_FALSE(Helper()["running"].getBool());
    EXPECT_EQ(std::vector<hostlog::Line>({{3, "Quit vostrand."}}), log.lines());
}

TEST_F(Lifecycle, HelperFailuresAndAbsence) {
    Load(true, static_cast<int32_t>(0x80000013u), static_cast<int32_t>(0x80000000u));
    ::Setup();
    EXPECT_EQ(std::vector<hostlog::Line>({{5, "Failed to launch vostrand."}}), log.lines());
    ::TearDown(); // a failed quit is not logged
    EXPECT_EQ(std::vector<hostlog::Line>(), log.lines());

    Load(false);
    ::Setup();
    EXPECT_EQ(Host("Plg_GetRegistryExportsPath"), host::World()["libraryPath"].toString(""));
    ::TearDown();
    EXPECT_EQ(0u, Helper()["launched"].size());
    EXPECT_EQ(std::vector<hostlog::Line>(), log.lines());
}

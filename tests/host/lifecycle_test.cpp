// Set-up, tear-down and the library's exported surface.
#include <cstdio>
#include <fstream>
#include <set>

#include <dlfcn.h>

#include "host/host.h"
#include "host/log_file.h"
#include "quilljson/serializer.h"

namespace {

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
                           std::string(supported ? "true" : "false") +
                           ",\"launchResult\":" + std::to_string(launchResult) +
                           ",\"quitResult\":" + std::to_string(quitResult) + "}}");
        SimClearInjections();
        SimClearJournal();
    }
    quilljson::Value Helper() { return host::World()["compatibilityProcess"]; }

    hostlog::Tail log;
};

std::string HelperPath() {
    return Host("Plg_GetRegistryPath") + "/net.tovelworks.framework.sensorcontrol/" +
           Host("Plg_GetArchitecture") + "/vostrand";
}

} // namespace

TEST_F(Lifecycle, SetupPointsThePallastLibraryAtTheExportsAndLaunchesTheHelper) {
    Load(true);
    ::Setup();
    EXPECT_EQ(Host("Plg_GetRegistryExportsPath"), host::World()["libraryPath"].toString(""));
    quilljson::Value const launched = Helper()["launched"];
    ASSERT_EQ(1u, launched.size()) << quilljson::Serializer::toText(launched);
    EXPECT_EQ(HelperPath(), launched[0]["path"].toString(""));
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

class Teardown : public host::HostTest {};

TEST_F(Teardown, ClosesEverySensorButKeepsTheResponses) {
    std::string const first = host::OpenByDeviceID(8);
    std::string const second = host::OpenByDeviceID(8);
    uint32_t const pending = ::SensorXYZ("", host::IdParams(first).c_str(), "", "");
    host::ClearJournal();

    ::TearDown();
    size_t closes = 0;
    quilljson::Value const journal = host::Journal();
    for (auto const& call : journal.arrayRef())
        closes += call["function"].toString("") == "MDClose";
    EXPECT_EQ(2u, closes) << quilljson::Serializer::toText(journal);
    void* handle = reinterpret_cast<void*>(1);
    EXPECT_FALSE(SensorControlGetHandleForID(first.c_str(), &handle));
    EXPECT_FALSE(SensorControlGetHandleForID(second.c_str(), &handle));
    host::Response const gone = host::Call(::SensorXYZ, "GET", host::IdParams(first));
    EXPECT_EQ(404u, gone.status) << gone.text;

    uint32_t length = 0;
    EXPECT_EQ(200u, BridgeHelperGetResponse(pending, nullptr, &length));
}

TEST(Exports, ExactlyThePublicSurface) {
    std::set<std::string> expected;
    std::ifstream map(TEST_SOURCE_DIR "/src/sensorcontrol/exports.map");
    std::string word;
    bool global = false;
    while (map >> word) {
        if (word == "global:")
            global = true;
        else if (word == "local:")
            global = false;
        else if (global && word.size() > 1 && word.back() == ';')
            expected.insert(word.substr(0, word.size() - 1));
    }
    EXPECT_EQ(46u, expected.size());

    std::string const command =
        "nm -D --defined-only '" TEST_LIBRARY_DIR "/libsensorcontrol" SENSORCONTROL_LIBRARY_SUFFIX "'";
    FILE* nm = popen(command.c_str(), "r");
    ASSERT_NE(nullptr, nm);
    std::set<std::string> exported;
    char line[1024];
    while (fgets(line, sizeof line, nm) != nullptr) {
        char address[64], type[8], name[512];
        if (sscanf(line, "%63s %7s %511s", address, type, name) == 3) exported.insert(name);
    }
    EXPECT_EQ(0, pclose(nm));
    EXPECT_EQ(expected, exported);
}

// Set-up and tear-down: the device-library path and the compatibility helper.
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

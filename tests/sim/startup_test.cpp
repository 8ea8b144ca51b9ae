// The world a process starts with: the built-in default, or the file named by
// SENSORSIM_SCENARIO. Each case runs in a child process, which writes the
// world it found to a file for the parent to compare.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "sim_test_util.h"

namespace {

using namespace simtest;

char const* const kOutput = "SENSORSIM_TEST_WORLD_OUT";

// Runs the child test with `scenario` as SENSORSIM_SCENARIO (none when empty);
// returns the world it started with and its standard error.
Value StartChild(std::string const& scenario, std::string* errors) {
    char folder[] = "/tmp/sensorsim-start-XXXXXX";
    EXPECT_NE(nullptr, mkdtemp(folder));
    std::string const out = std::string(folder) + "/world.json";
    std::string const err = std::string(folder) + "/stderr";
    pid_t const pid = fork();
    if (pid == 0) {
        setenv(kOutput, out.c_str(), 1);
        scenario.empty() ? unsetenv("SENSORSIM_SCENARIO") : setenv("SENSORSIM_SCENARIO", scenario.c_str(), 1);
        if (freopen(err.c_str(), "w", stderr) == nullptr || freopen("/dev/null", "w", stdout) == nullptr)
            _exit(126);
        execl("/proc/self/exe", "sim_tests", "--gtest_filter=StartupChild.*", static_cast<char*>(nullptr));
        _exit(127);
    }
    int status = 0;
    EXPECT_EQ(pid, waitpid(pid, &status, 0));
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    *errors = ReadFile(err);
    Value world = Parse(ReadFile(out));
    std::system(("rm -rf " + std::string(folder)).c_str());
    return world;
}

Value WorldOf(std::string const& text) {
    EXPECT_EQ(0, SimLoadScenario(text.c_str()));
    return World();
}

TEST(Startup, TheNamedScenarioFileOrElseTheDefaultIsTheWorld) {
    std::string const named = std::string(TEST_SOURCE_DIR) + "/sim/scenarios/monitor_held_elsewhere.json";
    std::string const bad = std::string(TEST_SOURCE_DIR) + "/sim/README.md";
    for (std::string const& scenario : {std::string(), named, bad}) {
        SCOPED_TRACE(scenario);
        std::string errors;
        Value const started = StartChild(scenario, &errors);
        EXPECT_EQ(WorldOf(scenario == named ? ReadFile(named) : ScenarioText("default.json")), started);
        // A file that is no scenario is reported once, with its name.
        EXPECT_EQ(scenario == bad ? 1 : 0, std::count(errors.begin(), errors.end(), '\n')) << errors;
        EXPECT_EQ(scenario == bad, errors.find(bad) != std::string::npos) << errors;
    }
}

TEST(StartupChild, WritesTheWorldItStartedWith) {
    char const* out = std::getenv(kOutput);
    if (out == nullptr) GTEST_SKIP() << "runs in a child process only";
    // Several first uses: the scenario is read (and reported) once.
    std::string const world = WorldText();
    SimClearJournal();
    EXPECT_EQ(world, WorldText());
    std::ofstream(out) << world;
}

} // namespace

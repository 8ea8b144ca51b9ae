// The world a process starts with: the built-in default, or the file named by
// SENSORSIM_SCENARIO. Each case runs in a process of its own (a death test)
// that sets the variable before its first use of the simulator.
#include <cstdlib>

#include "sim_test_util.h"

namespace {

using namespace simtest;

TEST(Startup, TheNamedScenarioFileOrElseTheDefaultIsTheWorld) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    std::string const named = std::string(TEST_SOURCE_DIR) + "/sim/scenarios/monitor_held_elsewhere.json";
    std::string const bad = std::string(TEST_SOURCE_DIR) + "/sim/README.md";
    for (std::string const& scenario : {std::string(), named, bad}) {
        SCOPED_TRACE(scenario);
        std::string const expected = scenario == named ? ReadFile(named) : ScenarioText("default.json");
        // A file that is no scenario is reported once, with its name; nothing else is.
        std::string const report = scenario == bad ? "^[^\n]*" + bad + "[^\n]*\n$" : "^$";
        EXPECT_EXIT(
            {
                scenario.empty() ? unsetenv("SENSORSIM_SCENARIO")
                                 : setenv("SENSORSIM_SCENARIO", scenario.c_str(), 1);
                // Several first uses: the scenario is read (and reported) once.
                std::string const started = WorldText();
                SimClearJournal();
                bool const same = started == WorldText() && SimLoadScenario(expected.c_str()) == 0 &&
                                  WorldText() == started;
                std::exit(same ? 0 : 1);
            },
            ::testing::ExitedWithCode(0), report);
    }
}

} // namespace

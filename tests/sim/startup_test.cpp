// The world a process starts with: the built-in default, or the file named by
// SENSORSIM_SCENARIO. Each case runs in a child process, which writes the
// world it found to a file for the parent to compare.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "sim_test_util.h"

extern char** environ;

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
    std::vector<std::string> env;
    for (char** e = environ; *e != nullptr; ++e)
        if (std::string(*e).rfind("SENSORSIM_SCENARIO=", 0) != 0) env.push_back(*e);
    env.push_back(std::string(kOutput) + "=" + out);
    if (!scenario.empty()) env.push_back("SENSORSIM_SCENARIO=" + scenario);
    std::vector<char*> envp;
    for (auto& e : env)
        envp.push_back(&e[0]);
    envp.push_back(nullptr);
    std::string self = "/proc/self/exe";
    std::string filter = "--gtest_filter=StartupChild.*";
    char* argv[] = {&self[0], &filter[0], nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 2, err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    pid_t pid = 0;
    EXPECT_EQ(0, posix_spawn(&pid, "/proc/self/exe", &actions, nullptr, argv, envp.data()));
    posix_spawn_file_actions_destroy(&actions);
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

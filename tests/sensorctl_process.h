// Runs the built sensorctl as a user does, with a shell, and collects what it printed.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

struct SensorctlRun {
    int exitCode = -1;
    std::vector<std::string> lines; // standard output
    std::string errors;             // standard error
};

// `arguments` and `environment` are already quoted for the shell; `input` is
// the standard input. Files are named by the process and the test, so tests
// running side by side, from any build, keep them apart.
inline SensorctlRun RunSensorctl(std::string const& arguments, std::string const& environment = "",
                                 std::string const& input = "") {
    std::string const base = ::testing::TempDir() + "sensorctl_" + std::to_string(getpid()) + "_" +
                             ::testing::UnitTest::GetInstance()->current_test_info()->name();
    std::ofstream(base + ".in") << input;
    int const status = std::system(("env " + environment + " " TEST_BINARY_DIR "/sensorctl " + arguments +
                                    " < " + base + ".in > " + base + ".out 2> " + base + ".err")
                                       .c_str());
    SensorctlRun run;
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    std::ifstream out(base + ".out");
    for (std::string line; std::getline(out, line);)
        run.lines.push_back(line);
    std::ostringstream errors;
    errors << std::ifstream(base + ".err").rdbuf();
    run.errors = errors.str();
    return run;
}

#include "support.h"

#include <dirent.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <regex>
#include <sstream>

namespace linuxsettest {

namespace {

std::vector<std::string> ReadLines(std::string const& path) {
    std::vector<std::string> lines;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    return lines;
}

} // namespace

Outcome Sensorctl(std::string const& environment, std::string const& arguments, std::string const& script) {
    // Named by the test, so tests running side by side keep their files apart.
    std::string const base = ::testing::TempDir() + "linuxset_" +
                             ::testing::UnitTest::GetInstance()->current_test_info()->name() + "_" +
                             std::to_string(getpid());
    std::remove((base + ".log").c_str());
    std::ofstream(base + ".in") << script;
    std::string const command =
        "env DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nonexistent/bus LORVANT_LOG_FILE=" + base + ".log " +
        environment + " " + TEST_BINARY_DIR + "/sensorctl " + arguments + " < " + base + ".in > " + base +
        ".out 2> " + base + ".err";
    int const status = std::system(command.c_str());
    Outcome run;
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    run.lines = ReadLines(base + ".out");
    std::ostringstream errors;
    errors << std::ifstream(base + ".err").rdbuf();
    run.errors = errors.str();
    std::regex const stamp(R"(^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} (.*)$)");
    for (std::string const& line : ReadLines(base + ".log")) {
        std::smatch match;
        run.log.push_back(std::regex_match(line, match, stamp) ? match[1].str() : "no time stamp: " + line);
    }
    return run;
}

std::vector<std::string> UsbNames() {
    std::vector<std::string> names;
    std::string const bus = "/sys/bus/usb/devices/";
    DIR* folder = opendir(bus.c_str());
    if (folder == nullptr) return names;
    while (dirent* entry = readdir(folder)) {
        std::string const device = entry->d_name;
        if (device[0] == '.' || device.find(':') != std::string::npos) continue;
        std::string product, vendorID, productID;
        std::getline(std::ifstream(bus + device + "/product"), product);
        std::getline(std::ifstream(bus + device + "/idVendor"), vendorID);
        std::getline(std::ifstream(bus + device + "/idProduct"), productID);
        names.push_back(!product.empty() ? product : vendorID + ":" + productID);
    }
    closedir(folder);
    return names;
}

} // namespace linuxsettest

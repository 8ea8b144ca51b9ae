// Choosing the device set at run time: the same built library drives the
// simulated or the Linux set, by sensorctl --backend or, for any host, by the
// loader's search path. Each run is a sensorctl process, which calls the
// library's exports as a host does; no colord is reachable from it.
#include <algorithm>
#include <cstdio>

#include "sensorctl_process.h"

namespace {

std::string const kLib = TEST_LIBRARY_DIR;
std::string const kSuffix = SENSORCONTROL_LIBRARY_SUFFIX;

// Standard output and error, then (after "--") the log without time stamps.
SensorctlRun Sensorctl(std::string const& environment, std::string const& arguments) {
    std::string const log = ::testing::TempDir() + "choose_set_" + std::to_string(getpid()) + ".log";
    std::remove(log.c_str());
    SensorctlRun run =
        RunSensorctl(arguments, "DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nonexistent LORVANT_LOG_FILE=" + log +
                                    " " + environment);
    std::istringstream errors(run.errors);
    std::ifstream in(log);
    for (std::string line; std::getline(errors, line);)
        run.lines.push_back(line);
    run.lines.push_back("--");
    for (std::string line; std::getline(in, line);)
        run.lines.push_back(line.substr(std::min<size_t>(24, line.size()))); // "YYYY-MM-DD hh:mm:ss.mmm "
    return run;
}

std::string const kRequests = "'GET /Sensors?connected' 'POST /Monitors/LMN27A/41A00017/Sensor'";
std::string const kUri = "\turi:/sensorbridge.tovelworks.net/";

// No instrument without colord, no monitor at all, and the log as in the simulated set.
std::vector<std::string> const kLinuxSet = {
    R"(200 {"error":null,"value":[]})",
    R"(500 {"error":{"code":2147483655,"message":"Unsupported.","name":"DvError","reason":"Get HID handle."},)"
    R"("value":null})",
    "--",
    "[Mirel] level 2: statusCode:200\tmethod:GET" + kUri + "Sensors\tmsg:Success",
    "[Mirel] level 5: statusCode:500\tmethod:POST" + kUri +
        "Monitors/LMN27A/41A00017/Sensor\terr:DvError\tmsg:Unsupported.\tcode:80000007",
};

TEST(ChooseSet, BackendLinuxOrTheLoaderSearchPathDriveTheLinuxSet) {
    EXPECT_EQ(kLinuxSet, Sensorctl("", "--backend linux " + kRequests).lines);
    // Any host: the library's run path is a RUNPATH, which LD_LIBRARY_PATH overrides.
    EXPECT_EQ(kLinuxSet, Sensorctl("LD_LIBRARY_PATH=" + kLib + "/linux", kRequests).lines);
}

TEST(ChooseSet, BackendSimStillGivesTheDefaultWorld) {
    SensorctlRun const byDefault = Sensorctl("", kRequests);
    ASSERT_EQ(5u, byDefault.lines.size());
    EXPECT_EQ(R"(200 {"error":null,"value":[{"deviceID":8,"individualID":"00000000a1b2c3d4"},)"
              R"({"deviceID":11,"individualID":"00000000a1b2c3e5"}]})",
              byDefault.lines[0]);
    EXPECT_EQ(0u, byDefault.lines[1].rfind(R"(200 {"error":null,"value":")", 0)) << byDefault.lines[1];
    EXPECT_EQ(byDefault.lines[3], kLinuxSet[3]);
    // The set named wins over the loader's search path.
    SensorctlRun const named = Sensorctl("LD_LIBRARY_PATH=" + kLib + "/linux", "--backend sim " + kRequests);
    EXPECT_EQ(byDefault.lines[0], named.lines.at(0));
}

// Installed, the library is in <libdir> and the sets in <libdir>/sensorcontrol/<set>.
TEST(ChooseSet, FindsTheSetsOfAnInstalledTree) {
    char folder[] = "/tmp/sensorcontrol-installed-XXXXXX";
    ASSERT_NE(nullptr, mkdtemp(folder));
    std::string const sets = std::string(folder) + "/sensorcontrol";
    ASSERT_EQ(0,
              std::system(("mkdir -p " + sets + "/sim " + sets + "/linux && ln -s " + kLib + "/lib*" +
                           kSuffix + " " + sets + "/sim/ && ln -s " + kLib + "/linux/lib*" + kSuffix + " " +
                           sets + "/linux/ && ln -s " + kLib + "/libsensorcontrol" + kSuffix + " " + folder)
                              .c_str()));
    std::string const library = "--library " + std::string(folder) + "/libsensorcontrol" + kSuffix;
    EXPECT_EQ(kLinuxSet, Sensorctl("", library + " --backend linux " + kRequests).lines);
    EXPECT_EQ(0u, Sensorctl("", library + " --backend sim " + kRequests)
                      .lines.at(0)
                      .find(R"(200 {"error":null,"value":[{"deviceID":8,)"));
    ASSERT_EQ(0, std::system(("rm -r " + sets + "/linux").c_str()));
    SensorctlRun const missing = Sensorctl("", library + " --backend linux 'GET /Sensors'");
    EXPECT_EQ(1, missing.exitCode);
    EXPECT_EQ("sensorctl: no linux device set beside " + library.substr(10), missing.lines.at(0));
    std::system(("rm -r " + std::string(folder)).c_str());
}

} // namespace

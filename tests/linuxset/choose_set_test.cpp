// Choosing the device set at run time: the same built library drives the
// simulated or the Linux set, by sensorctl --backend or, for any host, by the
// loader's search path naming the set's folder. Each run is a sensorctl
// process, which calls the library's exports the way a host does.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "quilljson/parser.h"
#include "quilljson/value.h"
#include "support.h"

namespace {

std::string const kLib = TEST_LIBRARY_DIR;
std::string const kSuffix = SENSORCONTROL_LIBRARY_SUFFIX;

using namespace linuxsettest;

std::string const kMonitorOpen = "'POST /Monitors/LMN27A/41A00017/Sensor'";
std::string const kUri = "uri:/sensorbridge.tovelworks.net/";

// What the Linux set answers with no colord on the bus: no sensor, no monitor
// (its monitor control cannot reach any), and the serial USB devices mapped
// by name from the real bus.
void ExpectLinuxSet(Outcome const& run) {
    ASSERT_EQ(0, run.exitCode) << run.errors;
    ASSERT_EQ(4u, run.lines.size()) << run.errors;
    EXPECT_EQ(R"(200 {"error":null,"value":[]})", run.lines[0]);
    EXPECT_EQ(R"(500 {"error":{"code":2147483655,"message":"Unsupported.","name":"DvError",)"
              R"("reason":"Get HID handle."},"value":null})",
              run.lines[1]);
    // Every device on the bus is mapped by name, so each is listed, with the
    // id of its name (the last one given, for names that occur twice).
    std::vector<std::string> const names = UsbNames();
    std::vector<int64_t> expected;
    for (std::string const& name : names)
        expected.push_back(std::find(names.rbegin(), names.rend(), name).base() - names.begin());
    std::vector<int64_t> listed;
    quilljson::Value response;
    ASSERT_TRUE(run.lines[3].rfind("200 ", 0) == 0 &&
                quilljson::Parser().parse(&response, run.lines[3].substr(4)))
        << run.lines[3];
    for (size_t i = 0; i < response["value"].size(); ++i)
        listed.push_back(response["value"][static_cast<unsigned long>(i)]["deviceID"].asInteger());
    std::sort(expected.begin(), expected.end());
    std::sort(listed.begin(), listed.end());
    EXPECT_EQ(expected, listed);
    EXPECT_EQ((std::vector<std::string>{
                  "[Mirel] level 2: statusCode:200\tmethod:GET\t" + kUri + "Sensors\tmsg:Success",
                  "[Mirel] level 5: statusCode:500\tmethod:POST\t" + kUri +
                      "Monitors/LMN27A/41A00017/Sensor\terr:DvError\tmsg:Unsupported.\tcode:80000007",
                  "[Mirel] level 2: statusCode:200\tmethod:PUT\t" + kUri + "Sensors\tmsg:Success",
                  "[Mirel] level 2: statusCode:200\tmethod:GET\t" + kUri + "Sensors\tmsg:Success",
              }),
              run.log);
}

std::string LinuxRequests() {
    std::string mappings;
    std::vector<std::string> const names = UsbNames();
    for (size_t i = 0; i < names.size(); ++i)
        mappings += std::string(i > 0 ? "," : "") + "\"" + names[i] + "\":" + std::to_string(i + 1);
    return "'GET /Sensors?connected' " + kMonitorOpen + " 'PUT /Sensors {\"serialMappings\":{" + mappings +
           "}}' 'GET /Sensors?serialConnected'";
}

TEST(ChooseSet, BackendLinuxDrivesTheLinuxSet) {
    ExpectLinuxSet(Sensorctl("", "--backend linux " + LinuxRequests()));
}

// Any host: the library's run path is a RUNPATH, which the loader's search
// path overrides, and the set's libhalvern names its own folder.
TEST(ChooseSet, TheLoaderSearchPathChoosesTheSetForAnyHost) {
    ExpectLinuxSet(Sensorctl("LD_LIBRARY_PATH=" + kLib + "/linux", LinuxRequests()));
}

TEST(ChooseSet, BackendSimStillGivesTheDefaultWorld) {
    std::string const requests = "'GET /Sensors?connected' " + kMonitorOpen + " 'GET /Sensors'";
    Outcome const byDefault = Sensorctl("", requests);
    ASSERT_EQ(0, byDefault.exitCode) << byDefault.errors;
    ASSERT_EQ(3u, byDefault.lines.size()) << byDefault.errors;
    EXPECT_EQ(R"(200 {"error":null,"value":[{"deviceID":8,"individualID":"00000000a1b2c3d4"},)"
              R"({"deviceID":11,"individualID":"00000000a1b2c3e5"}]})",
              byDefault.lines[0]);
    EXPECT_EQ(0u, byDefault.lines[1].rfind(R"(200 {"error":null,"value":")", 0)) << byDefault.lines[1];
    // The set named wins over the loader's search path.
    Outcome const sim = Sensorctl("LD_LIBRARY_PATH=" + kLib + "/linux", "--backend sim " + requests);
    EXPECT_EQ(byDefault.lines[0], sim.lines.at(0));
    EXPECT_EQ(byDefault.lines[1].substr(0, 24), sim.lines.at(1).substr(0, 24));
    // The same request with the same outcome logs the same line in either set.
    Outcome const onLinux = Sensorctl("", "--backend linux 'GET /Sensors'");
    EXPECT_EQ(byDefault.log.at(2), onLinux.log.at(0));
}

// Installed, the library sits in <libdir> and the sets in
// <libdir>/sensorcontrol/<set>; here as links to the built files.
TEST(ChooseSet, FindsTheSetsOfAnInstalledTree) {
    char folder[] = "/tmp/sensorcontrol-installed-XXXXXX";
    ASSERT_NE(nullptr, mkdtemp(folder));
    std::string const libdir = std::string(folder) + "/lib";
    std::string const link =
        "mkdir -p " + libdir + "/sensorcontrol/sim " + libdir + "/sensorcontrol/linux && ln -s " + kLib +
        "/libsensorcontrol" + kSuffix + " " + libdir + "/ && ln -s " + kLib + "/lib*" + kSuffix + " " +
        libdir + "/sensorcontrol/sim/ && rm " + libdir + "/sensorcontrol/sim/libsensorcontrol" + kSuffix +
        " && ln -s " + kLib + "/linux/lib*" + kSuffix + " " + libdir + "/sensorcontrol/linux/";
    ASSERT_EQ(0, std::system(link.c_str()));
    std::string const library = "--library " + libdir + "/libsensorcontrol" + kSuffix;
    ExpectLinuxSet(Sensorctl("", library + " --backend linux " + LinuxRequests()));
    Outcome const sim = Sensorctl("", library + " --backend sim 'GET /Sensors?connected'");
    ASSERT_EQ(1u, sim.lines.size()) << sim.errors;
    EXPECT_NE(std::string::npos, sim.lines[0].find(R"({"deviceID":8,)")) << sim.lines[0];

    // A set that is not there is named, and nothing is run.
    ASSERT_EQ(0, std::system(("rm -r " + libdir + "/sensorcontrol/linux").c_str()));
    Outcome const missing = Sensorctl("", library + " --backend linux 'GET /Sensors'");
    EXPECT_EQ(1, missing.exitCode);
    EXPECT_TRUE(missing.lines.empty());
    EXPECT_NE(std::string::npos, missing.errors.find("no linux device set beside " + libdir))
        << missing.errors;
    std::system(("rm -r " + std::string(folder)).c_str());
}

} // namespace

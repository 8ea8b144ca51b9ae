// An older libpallast without the functions that are looked up by name. The
// exports directory is read once per process, so the checks run in a child
// process whose exports directory holds the legacy library beside the other
// stand-ins.
#include <dirent.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "host/sensor_test_util.h"

namespace {

char const* const kChildFlag = "SENSOR_LEGACY_CHILD";

// A fresh folder with links to every stand-in, libpallast being the legacy one.
std::string LegacyExportsFolder() {
    char folder[] = "/tmp/sensor-legacy-XXXXXX";
    if (mkdtemp(folder) == nullptr) return std::string();
    std::string const libraries = TEST_LIBRARY_DIR;
    std::string const pallast = std::string("libpallast") + SENSORCONTROL_LIBRARY_SUFFIX;
    DIR* dir = opendir(libraries.c_str());
    if (dir == nullptr) return std::string();
    while (dirent* entry = readdir(dir)) {
        std::string const name = entry->d_name;
        if (name == "." || name == ".." || name == "legacy") continue;
        std::string const target = name == pallast ? libraries + "/legacy/" + name : libraries + "/" + name;
        if (symlink(target.c_str(), (std::string(folder) + "/" + name).c_str()) != 0) return std::string();
    }
    closedir(dir);
    return folder;
}

TEST(SensorLegacyLibrary, RunsTheChecksWithTheLegacyLibrary) {
    std::string const folder = LegacyExportsFolder();
    ASSERT_FALSE(folder.empty());
    pid_t const pid = fork();
    if (pid == 0) {
        setenv("HALVERN_EXPORTS_PATH", folder.c_str(), 1);
        setenv(kChildFlag, "1", 1);
        execl("/proc/self/exe", "host_tests", "--gtest_filter=SensorLegacyChild.*",
              static_cast<char*>(nullptr));
        _exit(127);
    }
    int status = 0;
    ASSERT_EQ(pid, waitpid(pid, &status, 0));
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "see the child's output above";
    std::system(("rm -rf " + folder).c_str());
}

class SensorLegacyChild : public host::HostTest {
protected:
    void SetUp() override {
        if (std::getenv(kChildFlag) == nullptr) GTEST_SKIP() << "runs in the child process only";
        host::HostTest::SetUp();
    }
};

// The description leaves the target marker out; calls by name answer 404.
TEST_F(SensorLegacyChild, OlderLibraryLacksTheFunctionsLookedUpByName) {
    std::string id = host::OpenByDeviceID(8);
    host::Response r = host::Call(::Sensor, "GET", host::IdParams(id));
    EXPECT_FALSE(r.value().contains("hasTargetMarker")) << r.text;
    EXPECT_TRUE(r.value().contains("hasArm")) << r.text;
    struct {
        host::Endpoint endpoint;
        char const *method, *query, *body;
    } const cases[] = {
        {::SensorRawData, "GET", "", ""},
        {::SensorExteriorLight, "GET", R"({"supports":1})", ""},
        {::SensorExteriorLight, "PUT", "", R"({"state":1})"},
        {::SensorTargetMarker, "GET", R"({"supports":1})", ""},
        {::SensorParameterDescription, "GET", "", ""},
        {::SensorIFSTempCorrectParam, "POST", "", ""},
        {::SensorIFSBrightCorrectParamUpdate, "GET", R"({"supports":1})", ""},
        {::SensorDeviceOption, "GET", "", ""},
    };
    for (auto const& c : cases) {
        r = host::Call(c.endpoint, c.method, host::IdParams(id), c.query, c.body);
        EXPECT_EQ(404u, r.status) << r.text;
        EXPECT_EQ("FunctionNotFoundError", r.errorName()) << r.text;
        EXPECT_EQ("libpallast does not have a requested function.", r.errorMessage()) << r.text;
    }
    EXPECT_EQ(200u, host::Call(::SensorXYZ, "GET", host::IdParams(id)).status) << "linked functions work";
}

} // namespace

// An older libpallast without the functions that are looked up by name. The
// exports directory is read once per process, so the checks run in a process
// of their own (a death test) whose exports directory holds the legacy library
// beside the other stand-ins.
#include <dirent.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "host/sensor_test_util.h"

namespace {

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

// The description leaves the target marker out; calls by name answer 404.
void CheckTheLegacyLibrary() {
    std::string const folder = LegacyExportsFolder();
    ASSERT_FALSE(folder.empty());
    setenv("HALVERN_EXPORTS_PATH", folder.c_str(), 1);
    host::LoadScenarioFile("default.json");
    ::Setup();
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
    ::TearDown();
    std::system(("rm -rf " + folder).c_str());
}

TEST(SensorLegacyLibrary, OlderLibraryLacksTheFunctionsLookedUpByName) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            CheckTheLegacyLibrary();
            std::exit(::testing::Test::HasFailure() ? 1 : 0);
        },
        ::testing::ExitedWithCode(0), "");
}

} // namespace

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "share/lib/libcorvaneLoader.h"
#include "share/lib/libdvcLoader.h"
#include "share/lib/libpallastLoader.h"
#include "share/lib/libquorSensorLoader.h"
#include "share/lib/torvikLoader.h"
#include "support.h"

namespace {

std::string MakeTempDir() {
    char pattern[] = "/tmp/loader_test.XXXXXX";
    char* dir = mkdtemp(pattern);
    return dir != nullptr ? dir : "";
}

// What a call through the loader answers, as "status name message".
template <typename Loader> std::string Miss() {
    try {
        Loader::loader().template execThrows<int>("MDSomethingMissing", 1);
        return "no error";
    } catch (BridgeResultError const& e) {
        return std::to_string(e.status) + " " + e.error.name + " " + e.error.message;
    }
}

class Plain : public tovel::Bridge {
public:
    BridgeResult Get(BridgeData const&) override { return BridgeResultOK(quilljson::Value("fine")); }
};

} // namespace

TEST(Loaders, MissingLibrariesAnswer404WithTheirMessage) {
    EXPECT_ISOLATED([] {
        std::string const exports = MakeTempDir();
        std::string const logFile = exports + ".log";
        setenv("HALVERN_EXPORTS_PATH", exports.c_str(), 1);
        setenv("LORVANT_LOG_FILE", logFile.c_str(), 1);
        std::pair<char const*, std::string> const misses[] = {
            {"libquorSensor", Miss<tovel::libquorSensorLoader>()},
            {"torvik", Miss<tovel::torvikLoader>()},
            {"libdvc", Miss<tovel::libdvcLoader>()},
            {"libpallast", Miss<tovel::libpallastLoader>()},
            {"libcorvane", Miss<tovel::libcorvaneLoader>()}};
        for (auto const& [name, answer] : misses)
            EXPECT_EQ("404 FunctionNotFoundError " + std::string(name) +
                          " does not have a requested function.",
                      answer);
        EXPECT_FALSE(tovel::torvikLoader::loader().isOpen());

        // Without the logging library a request behaves the same and nothing is logged.
        Plain endpoint;
        Fetched const f = Request(endpoint, "");
        EXPECT_EQ(200u, f.status);
        EXPECT_EQ(R"({"error":null,"value":"fine"})", f.text);
        EXPECT_FALSE(std::ifstream(logFile).good());
        rmdir(exports.c_str());
    });
}

TEST(Loaders, OpenTheLibraryFromTheExportsDirectory) {
    EXPECT_ISOLATED([] {
        // Any library serves under the loader's file name.
        std::string const exports = MakeTempDir();
        std::string const file = exports + "/libpallast" SENSORCONTROL_LIBRARY_SUFFIX;
        ASSERT_EQ(0, symlink(TEST_LIBRARY_DIR "/libhalvern" SENSORCONTROL_LIBRARY_SUFFIX, file.c_str()));
        setenv("HALVERN_EXPORTS_PATH", (exports + "/").c_str(), 1);

        tovel::libpallastLoader& loader = tovel::libpallastLoader::loader();
        EXPECT_EQ(file, loader.path().string());
        EXPECT_EQ(&loader, &tovel::libpallastLoader::loader());
        char const* (*function)() = nullptr;
        EXPECT_EQ(std::string("x86_64"), loader.execAs<decltype(function)>("Plg_GetArchitecture"));
        unlink(file.c_str());
        rmdir(exports.c_str());
    });
}

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

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
        std::string failures;
        for (auto const& [name, answer] : misses)
            failures += Mismatch(name,
                                 "404 FunctionNotFoundError " + std::string(name) +
                                     " does not have a requested function.",
                                 answer);
        failures += Mismatch("loader open", false, tovel::torvikLoader::loader().isOpen());

        // Without the logging library a request behaves the same and nothing is logged.
        Plain endpoint;
        Fetched const f = Request(endpoint, "");
        failures += Mismatch("status", 200u, f.status);
        failures += Mismatch("text", std::string(R"({"error":null,"value":"fine"})"), f.text);
        std::ifstream log(logFile);
        failures += Mismatch("log file exists", false, log.good());
        rmdir(exports.c_str());
        return failures;
    });
}

TEST(Loaders, OpenTheLibraryFromTheExportsDirectory) {
    EXPECT_ISOLATED([] {
        // Any library serves under the loader's file name.
        std::string const exports = MakeTempDir();
        std::string const file = exports + "/libpallast" SENSORCONTROL_LIBRARY_SUFFIX;
        if (symlink(TEST_LIBRARY_DIR "/libhalvern" SENSORCONTROL_LIBRARY_SUFFIX, file.c_str()) != 0)
            return std::string("symlink failed");
        setenv("HALVERN_EXPORTS_PATH", (exports + "/").c_str(), 1);

        tovel::libpallastLoader& loader = tovel::libpallastLoader::loader();
        std::string failures = Mismatch("path", file, loader.path().string());
        failures += Mismatch("same instance", &loader, &tovel::libpallastLoader::loader());
        char const* (*function)() = nullptr;
        std::string const architecture = loader.execAs<decltype(function)>("Plg_GetArchitecture");
        failures += Mismatch("call", std::string("x86_64"), architecture);
        unlink(file.c_str());
        rmdir(exports.c_str());
        return failures;
    });
}

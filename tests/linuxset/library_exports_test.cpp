// The Linux set's libraries, opened from their folder as the product opens them.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>
#include <string>

namespace {

void* Open(std::string const& word) {
    return dlopen((std::string(TEST_LIBRARY_DIR) + "/linux/" + word + SENSORCONTROL_LIBRARY_SUFFIX).c_str(),
                  RTLD_NOW | RTLD_LOCAL);
}

// A function the product looks up and does not find ends its request with 404
// "FunctionNotFoundError", which would hide what the set really answers.
TEST(LinuxSetLibraries, ExportEveryFunctionTheirHeaderDeclares) {
    for (auto const& [word, header] : {std::pair{"libhalvern", "halvern.h"},
                                       {"liblorvant2", "lorvant.h"},
                                       {"libdvc", "dvc.h"},
                                       {"libquorSensor", "quorsensor.h"},
                                       {"libcorvane", "corvane.h"},
                                       {"libtorvik", "torvik.h"}}) {
        void* library = Open(word);
        ASSERT_NE(nullptr, library) << dlerror();
        std::stringstream text;
        text << std::ifstream(std::string(TEST_SOURCE_DIR) + "/include/devices/" + header).rdbuf();
        std::string const source = text.str();
        std::regex const declaration(R"(DEVICE_API\s+[^;(]*?\b(\w+)\s*\()");
        int declared = 0;
        for (std::sregex_iterator it(source.begin(), source.end(), declaration), end; it != end;
             ++it, ++declared)
            EXPECT_NE(nullptr, dlsym(library, (*it)[1].str().c_str())) << word << " lacks " << (*it)[1];
        EXPECT_GT(declared, 1) << header;
        dlclose(library);
    }
}

} // namespace

// The legacy libpallast: same world, fewer functions.
#include <dlfcn.h>

#include "devices/pallast.h"
#include "sim_test_util.h"

namespace {

using namespace simtest;

class Legacy : public SimTest {};

TEST_F(Legacy, SeesTheSensorsOpenedThroughTheLinkedLibrary) {
    std::string const path =
        std::string(TEST_LIBRARY_DIR) + "/legacy/libpallast" + SENSORCONTROL_LIBRARY_SUFFIX;
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(nullptr, library) << dlerror();
    auto getName = reinterpret_cast<char const* (*)(void*)>(dlsym(library, "MDGetName"));
    auto close = reinterpret_cast<DvError (*)(void**)>(dlsym(library, "MDClose"));
    ASSERT_NE(nullptr, getName);
    ASSERT_NE(nullptr, close);
    EXPECT_NE(reinterpret_cast<void*>(getName), reinterpret_cast<void*>(&MDGetName)); // really another copy

    void* handle = nullptr;
    ASSERT_EQ(0, MDOpen(8, &handle).code);
    EXPECT_STREQ("Lumetra Spectro 8", getName(handle));
    void* const opened = handle;
    ASSERT_EQ(0, close(&handle).code);
    EXPECT_EQ(kNotRegistered, MDCalibrate(opened).code); // closed for the linked library too

    for (char const* name :
         {"MDHasTargetMarker", "MDHasExteriorLight", "MDGetExteriorLightingState",
          "MDSetExteriorLightingState", "MDGetTargetMarker", "MDSetTargetMarker", "MDCalcIFSTempCorrectParam",
          "MDGetIFSBrightCorrectParamUpdateEnabled", "MDSetIFSBrightCorrectParamUpdateEnabled",
          "MDGetDeviceOptionValue", "MDSetDeviceOptionValue", "MDGetParameterDescription",
          "MDSetParameterDescription", "MDMeasureRaw", "MDEnumCorrelationMatrix", "MDApplyCorrelationMatrix",
          "MDReleaseCorrelationMatrix"}) {
        EXPECT_EQ(nullptr, dlsym(library, name)) << name;
        EXPECT_NE(nullptr, dlsym(RTLD_DEFAULT, name)) << name;
    }
    EXPECT_NE(nullptr, dlsym(library, "MDMeasureXYZ2"));
    dlclose(library);
    // The journal, written partly by the unloaded library, is still readable.
    std::vector<std::string> const calls = JournalFunctions();
    ASSERT_EQ(4u, calls.size()) << Fetch(SimGetJournal);
    EXPECT_EQ("MDClose", calls[2]);
}

} // namespace

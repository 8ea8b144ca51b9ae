// The Linux set's libraries, opened from their folder the way the product
// opens them, against the C interface in include/devices.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "devices/corvane.h"
#include "devices/dvc.h"
#include "devices/quorsensor.h"

namespace {

std::string const kSetFolder = std::string(TEST_LIBRARY_DIR) + "/linux/";

// The functions a header declares with DEVICE_API, in order.
std::vector<std::string> DeclaredFunctions(std::string const& header) {
    std::ifstream file(std::string(TEST_SOURCE_DIR) + "/include/devices/" + header);
    std::stringstream text;
    text << file.rdbuf();
    std::string const source = text.str();
    std::regex const declaration(R"(DEVICE_API\s+[^;(]*?\b(\w+)\s*\()");
    std::vector<std::string> names;
    for (std::sregex_iterator it(source.begin(), source.end(), declaration), end; it != end; ++it)
        names.push_back((*it)[1]);
    return names;
}

class SetLibrary {
public:
    explicit SetLibrary(std::string const& word)
        : handle_(dlopen((kSetFolder + word + SENSORCONTROL_LIBRARY_SUFFIX).c_str(), RTLD_NOW | RTLD_LOCAL)) {
    }
    ~SetLibrary() {
        if (handle_ != nullptr) dlclose(handle_);
    }
    bool loaded() const { return handle_ != nullptr; }
    template <typename F> F* get(char const* name) const {
        return reinterpret_cast<F*>(dlsym(handle_, name));
    }

private:
    void* handle_;
};

constexpr int32_t kNotRegistered = static_cast<int32_t>(0x80000005u);
constexpr int32_t kUnsupported = static_cast<int32_t>(0x80000007u);
constexpr int32_t kNoMoreData = static_cast<int32_t>(0x8000000Bu);

// A function the product looks up and does not find ends its request with 404
// "FunctionNotFoundError", which would hide what the set really answers.
TEST(LinuxSetLibraries, ExportEveryFunctionTheirHeaderDeclares) {
    struct Pair {
        char const* library;
        char const* header;
    };
    for (Pair const& pair : {Pair{"libhalvern", "halvern.h"}, Pair{"liblorvant2", "lorvant.h"},
                             Pair{"libdvc", "dvc.h"}, Pair{"libquorSensor", "quorsensor.h"},
                             Pair{"libcorvane", "corvane.h"}, Pair{"libtorvik", "torvik.h"}}) {
        SetLibrary library(pair.library);
        ASSERT_TRUE(library.loaded()) << pair.library << ": " << dlerror();
        std::vector<std::string> const names = DeclaredFunctions(pair.header);
        EXPECT_FALSE(names.empty()) << pair.header;
        for (std::string const& name : names)
            EXPECT_NE(nullptr, library.get<void>(name.c_str())) << pair.library << " lacks " << name;
    }
}

// No monitor is reachable: the monitor list is empty and a named monitor gets
// no HID handle, so no built-in sensor can be opened or locked.
TEST(LinuxSetLibraries, MonitorControlKnowsNoMonitor) {
    SetLibrary dvc("libdvc");
    ASSERT_TRUE(dvc.loaded());
    char product[9] = "keep";
    char serial[17] = "keep";
    EXPECT_EQ(kNoMoreData,
              dvc.get<decltype(DvCtrlGetSerialProduct)>("DvCtrlGetSerialProduct")(0, &product, &serial).code);
    EXPECT_STREQ("keep", product);
    void* hid = nullptr;
    EXPECT_EQ(kUnsupported, dvc.get<decltype(DvCtrlGetHIDHandle)>("DvCtrlGetHIDHandle")("P", "S", &hid).code);
    EXPECT_EQ(nullptr, hid);
    EXPECT_EQ(kUnsupported, dvc.get<decltype(DvCtrlLockMonitor)>("DvCtrlLockMonitor")("P", "S").code);
    EXPECT_EQ(0, dvc.get<decltype(DvCtrlSupportedHZEPriority)>("DvCtrlSupportedHZEPriority")("S", "P"));
}

// Both databases are empty, and nothing can be added that would then be lost.
TEST(LinuxSetLibraries, CorrelationDatabasesAreEmptyAndRefuseEntries) {
    SetLibrary corvane("libcorvane");
    ASSERT_TRUE(corvane.loaded());
    MDCorrelationInfo info{};
    uint64_t id = 7;
    EXPECT_EQ(
        kNoMoreData,
        corvane.get<decltype(MDEnumCorrelationInfo)>("MDEnumCorrelationInfo")(8, "S", 0, &info, &id).code);
    EXPECT_EQ(7u, id);
    CSSG2_Date date{};
    EXPECT_EQ(kNotRegistered,
              corvane.get<decltype(MDGetCorrelationDataDate)>("MDGetCorrelationDataDate")(1, &date).code);
    MDCorrelationMatrixInfo matrixInfo{};
    unsigned long matrixID = 7;
    char product[] = "P";
    EXPECT_EQ(kNoMoreData, corvane
                               .get<decltype(MDEnumCorrelationMatrixInfo)>("MDEnumCorrelationMatrixInfo")(
                                   8, product, 0, 0, &matrixInfo, &matrixID)
                               .code);
    double matrix[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    EXPECT_EQ(kUnsupported, corvane
                                .get<decltype(MDAddCorrelationMatrix)>("MDAddCorrelationMatrix")(
                                    8, "S", 9, "R", product, product, 0, 0, 0, matrix, nullptr, &matrixID)
                                .code);
    EXPECT_EQ(7u, matrixID);
}

TEST(LinuxSetLibraries, BuiltInSensorCallsAreUnsupported) {
    SetLibrary quor("libquorSensor");
    ASSERT_TRUE(quor.loaded());
    double r = -1, g = -1, b = -1;
    EXPECT_EQ(kUnsupported,
              quor.get<decltype(CSSG2H_MeasureRGB)>("CSSG2H_MeasureRGB")(nullptr, &r, &g, &b).code);
    EXPECT_EQ(-1, r);
    EXPECT_EQ(0, quor.get<decltype(CSSG2H_SupportedXYZCorrectionMatrix8DXT)>(
                     "CSSG2H_SupportedXYZCorrectionMatrix8DXT")(nullptr));
}

} // namespace

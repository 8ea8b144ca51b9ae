// The journal of device calls and injected results, also of the legacy
// libpallast: same world, fewer functions.
#include <dlfcn.h>

#include <set>
#include <thread>

#include "devices/dvc.h"
#include "devices/pallast.h"
#include "sim_test_util.h"

namespace {

using namespace simtest;

class Journal : public SimTest {};

Value Handle(void* h) {
    return Value(static_cast<long>(reinterpret_cast<uintptr_t>(h)));
}

TEST_F(Journal, RecordsInputArgumentsInOrder) {
    void* handle = nullptr;
    ASSERT_EQ(0, MDOpenWithIndividualID(0xA1B2C3D4u, &handle).code);
    EXPECT_EQ(Array({Value(0xA1B2C3D4L)}), LastArgs()); // the out-parameter is left out

    uint32_t size = 7;
    MDGetExCorrectionName(handle, 2, nullptr, &size);
    EXPECT_EQ(Array({Handle(handle), Value(2), Value(7)}), LastArgs()); // the in/out size as given

    void* hid = nullptr;
    DvCtrlGetHIDHandle(nullptr, "LMN27A", &hid);
    EXPECT_EQ(Array({Value(), Value("LMN27A")}), LastArgs()); // a null text as null

    Value const journal = ::simtest::Journal();
    ASSERT_EQ(3u, journal.size());
    EXPECT_EQ(Value("MDOpenWithIndividualID"), journal[0]["function"]);
    EXPECT_EQ(2u, journal[0].size());
    SimClearJournal();
    EXPECT_EQ(0u, ::simtest::Journal().size());
}

TEST_F(Journal, InjectedResultReplacesTheWork) {
    void* handle = nullptr;
    ASSERT_EQ(0, MDOpen(8, &handle).code);
    SimClearJournal();
    SimInjectResult("MDSetMode", kInvalidArgument);
    SimInjectResult("MDOpen", 2);
    EXPECT_EQ(kInvalidArgument, MDSetMode(handle, 5, 1).code);
    EXPECT_EQ(Value(0), World()["devices"][0]["mode"]);
    EXPECT_EQ(Value("MDSetMode"), ::simtest::Journal()[0]["function"]); // still journaled

    void* other = nullptr;
    EXPECT_EQ(2, MDOpen(8, &other).code); // a positive note, still without the work
    EXPECT_EQ(nullptr, other);

    // Functions that do not return a DvError ignore injections.
    SimInjectResult("MDGetDeviceID", kInvalidArgument);
    SimInjectResult("DvCtrlGetPanelRevision", kInvalidArgument);
    EXPECT_EQ(8u, MDGetDeviceID(handle));
    EXPECT_EQ(1, DvCtrlGetPanelRevision("52B00042", "LMN32B"));

    SimClearInjections();
    EXPECT_EQ(0, MDSetMode(handle, 5, 1).code);
    EXPECT_EQ(Value(5), World()["devices"][0]["mode"]);
}

// Measurements of two sensors and other calls, recorded apart, read back in
// the order they were made.
TEST_F(Journal, KeepsOnlyTheLatestCallsInTheirOrder) {
    void* sensors[2] = {nullptr, nullptr};
    ASSERT_EQ(0, MDOpen(8, &sensors[0]).code);
    ASSERT_EQ(0, MDOpen(11, &sensors[1]).code);
    colour raw{}, measured{};
    auto const call = [&](int i) {
        if (i % 3 == 1)
            MDGetNameFromDeviceID(static_cast<MDDeviceID>(i));
        else
            MDMeasureXYZ2(sensors[i % 3 / 2], &raw, &measured);
    };
    for (int i = 0; i < 10005; ++i)
        call(i);
    Value const journal = ::simtest::Journal();
    ASSERT_EQ(10000u, journal.size());
    for (int i = 5; i < 10005; i += 1666) {
        Value const& entry = journal[static_cast<unsigned long>(i - 5)];
        EXPECT_EQ(Value(i % 3 == 1 ? "MDGetNameFromDeviceID" : "MDMeasureXYZ2"), entry["function"]) << i;
        EXPECT_EQ(i % 3 == 1 ? Value(i) : Handle(sensors[i % 3 / 2]), entry["args"][0]) << i;
    }
}

// Two threads, each measuring its own sensor (a lane each) and making calls
// that change the world (another lane): every call is recorded, each thread
// finds its calls in the order it made them, and a call made after both
// finished comes last. Opens and monitor locks made meanwhile stay apart.
TEST_F(Journal, ConcurrentThreadsFindTheirCallsInTheirOrder) {
    void* sensors[2] = {nullptr, nullptr};
    ASSERT_EQ(0, MDOpen(8, &sensors[0]).code);
    ASSERT_EQ(0, MDOpen(11, &sensors[1]).code);
    SimClearJournal();
    int const calls = 1000, opens = 200;
    std::vector<std::vector<void*>> opened(2);
    std::vector<std::thread> threads;
    for (int t = 0; t < 2; ++t)
        threads.emplace_back([t, &sensors, &opened] {
            colour raw{}, measured{};
            for (int i = 0; i < calls; ++i) {
                MDMeasureXYZ2(sensors[t], &raw, &measured);
                MDGetNameFromDeviceID(static_cast<MDDeviceID>(10000 * (t + 1) + i));
                if (i >= opens) continue;
                void* handle = nullptr;
                if (MDOpen(t == 0 ? 8 : 11, &handle).code == 0) opened[t].push_back(handle);
                DvCtrlLockMonitor("LMN27A", "41A00017");
                DvCtrlUnlockMonitor("41A00017", "LMN27A");
            }
        });
    for (auto& thread : threads)
        thread.join();
    MDGetNameFromDeviceID(1);
    std::set<void*> unique(opened[0].begin(), opened[0].end());
    unique.insert(opened[1].begin(), opened[1].end());
    EXPECT_EQ(static_cast<size_t>(2 * opens), unique.size());
    EXPECT_EQ(Value(0), World()["monitors"][0]["lockCount"]);

    Value const journal = ::simtest::Journal();
    ASSERT_EQ(static_cast<unsigned long>(4 * calls + 6 * opens + 1), journal.size());
    EXPECT_EQ(Value(1), journal[journal.size() - 1]["args"][0]);
    for (int t = 0; t < 2; ++t) {
        std::vector<std::string> seen;
        for (unsigned long i = 0; i + 1 < journal.size(); ++i) {
            Value const& entry = journal[i];
            bool const measure = entry["function"] == Value("MDMeasureXYZ2");
            if (measure ? entry["args"][0] == Handle(sensors[t])
                        : entry["args"][0].asInteger() / 10000 == t + 1)
                seen.push_back(measure ? "m" : std::to_string(entry["args"][0].asInteger() % 10000));
        }
        ASSERT_EQ(static_cast<size_t>(2 * calls), seen.size()) << t;
        for (int i = 0; i < calls; ++i) {
            EXPECT_EQ("m", seen[2 * i]) << t << " " << i;
            EXPECT_EQ(std::to_string(i), seen[2 * i + 1]) << t << " " << i;
        }
    }
}

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

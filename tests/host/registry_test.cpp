// The sensor registry as a host meets it: opening by each route, resolving ids
// in requests, the handle-management exports and concurrent use.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <set>
#include <thread>

#include "host/host.h"
#include "host/log_file.h"
#include "quilljson/serializer.h"

namespace {

using host::Call;
using host::IdParams;
using Lines = std::vector<hostlog::Line>;

constexpr int32_t kNotRegistered = static_cast<int32_t>(0x80000005u);
char const kLMN27A[] = R"({"product":"LMN27A","serial":"41A00017"})";

std::vector<std::string> OpenIDs() {
    host::Response const listed = Call(::Sensors, "GET");
    std::vector<std::string> ids;
    for (auto const& id : listed.value().arrayRef())
        ids.push_back(id.toString(""));
    return ids;
}

std::string Args(std::string const& function) {
    return quilljson::Serializer::toText(host::FirstCall(function)["args"]);
}

void* HandleOf(std::string const& id) {
    void* handle = nullptr;
    EXPECT_TRUE(SensorControlGetHandleForID(id.c_str(), &handle)) << id;
    return handle;
}

// What was logged besides the result line of each request.
Lines Sentences(hostlog::Tail& log) {
    Lines sentences;
    for (auto const& line : log.lines())
        if (line.message.rfind("statusCode:", 0) != 0) sentences.push_back(line);
    return sentences;
}

class Registry : public host::HostTest {};

} // namespace

TEST_F(Registry, EachRouteOpensUnderAFreshIDListedInIDOrder) {
    host::Response const r = Call(::IndividualID, "POST", R"({"individualID":"00000000a1b2c3e5"})");
    std::vector<std::string> ids{host::OpenByDeviceID(8), r.value().toString(""),
                                 host::OpenMonitorSensor("LMN27A", "41A00017"), host::OpenByDeviceID(8)};
    EXPECT_EQ("[8]", Args("MDOpen"));
    EXPECT_EQ("[2712847333]", Args("MDOpenWithIndividualID"));
    EXPECT_EQ(R"(["41A00017","LMN27A"])", Args("DvCtrlGetHIDHandle")); // serial first
    EXPECT_EQ("[4097]", Args("MDOpenWithHIDHandle"));

    std::sort(ids.begin(), ids.end());
    EXPECT_EQ(4u, std::set<std::string>(ids.begin(), ids.end()).size());
    EXPECT_EQ(ids, OpenIDs());
}

TEST_F(Registry, RefusedAndFailedOpensRegisterNothing) {
    std::string const invalid =
        R"({"error":{"message":"URI is invalid.","name":"BadRequestError"},"value":null})";
    EXPECT_EQ(invalid, Call(::DeviceID, "POST").text);
    EXPECT_EQ(invalid, Call(::IndividualID, "POST", R"({"individualID":""})").text);
    EXPECT_EQ(invalid, Call(::Monitors, "POST", R"({"product":"LMN27A"})").text);
    EXPECT_EQ(0u, host::Journal().size());

    SimInjectResult("MDOpen", static_cast<int32_t>(0x80010002u));
    EXPECT_EQ(R"({"error":{"code":2147549186,"message":"Sensor connection error.","name":"DvError",)"
              R"("reason":"Open sensor."},"value":null})",
              Call(::DeviceID, "POST", R"({"deviceID":"8"})").text);
    SimInjectResult("MDOpenWithIndividualID", -1);
    EXPECT_EQ("Open sensor with individual id.",
              Call(::IndividualID, "POST", R"({"individualID":"a1b2c3d4"})").error()["reason"].toString(""));
    SimInjectResult("MDOpenWithHIDHandle", -1);
    EXPECT_EQ("Open sensor with HID handle.",
              Call(::Monitors, "POST", kLMN27A).error()["reason"].toString(""));
    host::ClearJournal();
    SimInjectResult("DvCtrlGetHIDHandle", -1);
    EXPECT_EQ("Get HID handle.", Call(::Monitors, "POST", kLMN27A).error()["reason"].toString(""));
    EXPECT_EQ(0u, host::CallCount("MDOpenWithHIDHandle"));

    EXPECT_EQ(std::vector<std::string>(), OpenIDs());
}

TEST_F(Registry, RequestsLookupsAndRemoval) {
    std::string const usbID = host::OpenByDeviceID(8);
    void* const usb = HandleOf(usbID);
    std::string const builtinID = host::OpenMonitorSensor("LMN27A", "41A00017");
    void* const builtin = HandleOf(builtinID);

    EXPECT_EQ(400u, Call(::Sensor, "GET", R"({"id":8})").status); // only a text names a sensor

    void* found = &found;
    EXPECT_FALSE(SensorControlGetHandleForID(nullptr, &found));
    EXPECT_EQ(&found, found);
    EXPECT_FALSE(SensorControlGetHandleForID("f00", &found));
    EXPECT_EQ(nullptr, found);

    EXPECT_EQ(0, MirelGetHandleForHIDHandle(4097, &found));
    EXPECT_EQ(builtin, found);
    EXPECT_EQ(0, MirelGetHandleForDeviceID(8, &found));
    EXPECT_EQ(usb, found);
    EXPECT_EQ(0, MirelGetHandleForDeviceID(305, &found));
    EXPECT_EQ(builtin, found);
    for (int32_t result : {MirelGetHandleForHIDHandle(4098, &found), MirelGetHandleForHIDHandle(0, &found),
                           MirelGetHandleForDeviceID(11, &found), MirelGetHandleForDeviceID(0, &found)})
        EXPECT_EQ(kNotRegistered, result);

    // Removal forgets the id; the device stays open for whoever removed it.
    host::ClearJournal();
    EXPECT_EQ(0, MirelRemoveSensor(usb));
    EXPECT_EQ(kNotRegistered, MirelRemoveSensor(usb));
    EXPECT_EQ(kNotRegistered, MirelRemoveSensor(nullptr));
    EXPECT_EQ(std::vector<std::string>{builtinID}, OpenIDs());
    EXPECT_EQ(0u, host::CallCount("MDClose"));
}

TEST_F(Registry, MonitorUpdateTakesTheSensorAwayAndGivesItBackUnderItsID) {
    std::string const id = host::OpenMonitorSensor("LMN27A", "41A00017");
    std::string const other = host::OpenMonitorSensor("LMN32B", "52B00042");
    hostlog::Tail log;
    host::ClearJournal();

    // The entry holds the names in the order the opening request passed them.
    EXPECT_EQ(0, MirelPreUpdateBuiltInSensorHandle("LMN27A", "41A00017"));
    EXPECT_EQ(0u, host::CallCount("MDClose"));
    EXPECT_EQ(0, MirelPreUpdateBuiltInSensorHandle("41A00017", "LMN27A"));
    EXPECT_EQ(1u, host::CallCount("MDClose"));
    EXPECT_EQ(404u, Call(::Sensor, "GET", IdParams(id)).status);
    EXPECT_EQ(200u, Call(::Sensor, "GET", IdParams(other)).status);
    void* found = nullptr;
    EXPECT_EQ(kNotRegistered, MirelGetHandleForHIDHandle(4097, &found));
    EXPECT_EQ(2u, OpenIDs().size());

    SimInjectResult("MDOpenWithHIDHandle", -1);
    EXPECT_EQ(0, MirelUpdateBuiltInSensorHandle("41A00017", "LMN27A"));
    EXPECT_EQ(404u, Call(::Sensor, "GET", IdParams(id)).status);
    SimClearInjections();
    EXPECT_EQ(0, MirelUpdateBuiltInSensorHandle("41A00017", "LMN27A"));
    EXPECT_EQ(200u, Call(::Sensor, "GET", IdParams(id)).status);
    EXPECT_EQ(0, MirelGetHandleForHIDHandle(4097, &found));
    EXPECT_EQ(HandleOf(id), found);

    SimInjectResult("MDClose", -1);
    EXPECT_EQ(0, MirelPreUpdateBuiltInSensorHandle("41A00017", "LMN27A"));
    EXPECT_EQ(200u, Call(::Sensor, "GET", IdParams(id)).status);
    EXPECT_EQ(Lines({{3, "Close sensor on pre update built-in sensor handle."},
                     {5, "Failed to open sensor on update built-in sensor handle."},
                     {3, "Reopen sensor on update built-in sensor handle."},
                     {5, "Failed to close sensor on pre update built-in sensor handle."}}),
              Sentences(log));

    // The monitor library's own refusal comes back unchanged.
    SimInjectResult("DvCtrlGetHIDHandle", static_cast<int32_t>(0x80010001u));
    EXPECT_EQ(static_cast<int32_t>(0x80010001u), MirelUpdateBuiltInSensorHandle("41A00017", "LMN27A"));
}

TEST_F(Registry, HostLockHoldsRequestsOff) {
    ASSERT_EQ(0, MirelLockSensors());
    std::atomic<bool> done{false};
    std::thread opener([&] {
        host::OpenByDeviceID(8);
        done = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_FALSE(done);
    EXPECT_EQ(0, MirelLockSensors()); // the same thread may take it again
    EXPECT_EQ(0, MirelUnlockSensors());
    EXPECT_EQ(0, MirelUnlockSensors());
    opener.join();
    EXPECT_EQ(1u, OpenIDs().size());
}

TEST_F(Registry, ConcurrentOpeningListingAndClosing) {
    constexpr int kThreads = 4, kRounds = 30;
    std::vector<std::vector<std::string>> kept(kThreads), closed(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            for (int round = 0; round < kRounds; ++round) {
                std::string const id = round % 2 == 0 ? host::OpenByDeviceID(t % 2 == 0 ? 8 : 11)
                                                      : host::OpenMonitorSensor("LMN32B", "52B00042");
                Call(::Sensors, "GET");
                Call(::SensorsName, "GET");
                bool const close = round % 3 == 0;
                if (close) {
                    EXPECT_EQ(200u, Call(::Sensor, "DELETE", IdParams(id)).status);
                }
                (close ? closed : kept)[t].push_back(id);
            }
        });
    for (auto& thread : threads)
        thread.join();

    std::set<std::string> all, open;
    for (int t = 0; t < kThreads; ++t) {
        all.insert(closed[t].begin(), closed[t].end());
        open.insert(kept[t].begin(), kept[t].end());
    }
    all.insert(open.begin(), open.end());
    EXPECT_EQ(size_t(kThreads * kRounds), all.size());
    EXPECT_EQ(std::vector<std::string>(open.begin(), open.end()), OpenIDs());
}

// A request to a built-in sensor holds its monitor for the device calls, and
// goes on without the hold when it cannot have it.
#include <algorithm>

#include "host/host.h"
#include "quilljson/serializer.h"

namespace {

using host::Call;

// Monitor and built-in sensor calls with their arguments, in call order.
std::vector<std::string> MonitorCalls() {
    std::vector<std::string> calls;
    quilljson::Value const journal = host::Journal();
    for (auto const& call : journal.arrayRef()) {
        std::string const name = call["function"].toString("");
        if (name.rfind("DvCtrl", 0) == 0 || name.rfind("CSSG2H_", 0) == 0)
            calls.push_back(name + quilljson::Serializer::toText(call["args"]));
    }
    return calls;
}

std::vector<std::string> LastTwo(std::vector<std::string> const& calls) {
    return std::vector<std::string>(calls.end() - std::min<size_t>(2, calls.size()), calls.end());
}

class MonitorLock : public host::HostTest {};

} // namespace

TEST_F(MonitorLock, HeldAroundTheDeviceCallsOfTheRightMonitor) {
    std::string const id = host::OpenMonitorSensor("LMN32B", "52B00042");
    host::ClearJournal();
    EXPECT_EQ(200u, Call(::SensorAmbrelSense, "GET", host::IdParams(id)).status);
    EXPECT_EQ(std::vector<std::string>({
                  R"(DvCtrlGetSerialProduct[0])",
                  R"(DvCtrlGetHIDHandle["LMN27A","41A00017"])",
                  R"(DvCtrlGetSerialProduct[1])",
                  R"(DvCtrlGetHIDHandle["LMN32B","52B00042"])",
                  R"(DvCtrlLockMonitor["LMN32B","52B00042"])",
                  R"(CSSG2H_GetHumanDetectOnOff[4098])",
                  R"(DvCtrlUnlockMonitor["LMN32B","52B00042"])",
              }),
              MonitorCalls());
    EXPECT_EQ(0, host::World()["monitors"][1]["lockCount"].getInteger());
}

TEST_F(MonitorLock, WithoutTheHoldTheRequestGoesOnUnlocked) {
    std::string const id = host::OpenMonitorSensor("LMN27A", "41A00017");
    std::string const set = R"(CSSG2H_SetHumanDetectOnOff[4097,1])";
    auto const put = [&] { return Call(::SensorAmbrelSense, "PUT", host::IdParams(id), "", "true").text; };

    // Refused lock.
    host::ClearJournal();
    SimInjectResult("DvCtrlLockMonitor", static_cast<int32_t>(0x8001000Au));
    EXPECT_EQ(R"({"error":null,"value":null})", put());
    EXPECT_EQ(std::vector<std::string>({R"(DvCtrlLockMonitor["LMN27A","41A00017"])", set}),
              LastTwo(MonitorCalls()));

    // A monitor list that ends at once, even with a note, names no monitor to lock.
    SimClearInjections();
    host::ClearJournal();
    SimInjectResult("DvCtrlGetSerialProduct", 1);
    EXPECT_EQ(R"({"error":null,"value":null})", put());
    EXPECT_EQ(std::vector<std::string>({"DvCtrlGetSerialProduct[0]", set}), MonitorCalls());

    // Another party holds the monitor: the lock step passes silently and the
    // device call answers for itself.
    quilljson::Value world = host::World();
    world["monitors"][0]["heldByOther"] = true;
    host::LoadScenario(quilljson::Serializer::toText(world));
    SimClearInjections();
    host::ClearJournal();
    EXPECT_EQ(
        R"({"error":{"code":2147549194,"message":"Monitor critical section is owned.","name":"DvError",)"
        R"("reason":"Set human detect on off."},"value":null})",
        put());
    EXPECT_EQ(std::vector<std::string>({R"(DvCtrlLockMonitor["LMN27A","41A00017"])", set}),
              LastTwo(MonitorCalls()));
}

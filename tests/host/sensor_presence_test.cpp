// Presence sensing of a monitor's built-in sensor.
#include "host/sensor_test_util.h"

namespace {

using quilljson::Value;
using namespace sensortest;

class SensorPresence : public host::HostTest {
protected:
    void SetUp() override {
        host::HostTest::SetUp();
        id = host::OpenMonitorSensor("VX2710", "41A00017");
        host::ClearJournal();
    }
    host::Response put(host::Endpoint e, std::string const& body) {
        return host::Call(e, "PUT", host::IdParams(id), "", body);
    }
    std::string id;
};

TEST_F(SensorPresence, OnOffTakesBooleansAndNumbersAndAnswersANumber) {
    struct {
        char const* body;
        int64_t on;
    } const cases[] = {{"true", 1}, {"false", 0}, {"1", 1}, {"0", 0}, {"0.5", 1}, {"0.0", 0}, {"-3", 1}};
    for (auto const& c : cases) {
        SCOPED_TRACE(c.body);
        ExpectOK(put(::SensorAmbrelSense, c.body), Value());
        ExpectOK(host::Call(::SensorAmbrelSense, "GET", host::IdParams(id)), Value(c.on));
    }
    host::ClearJournal();
    ExpectBadRequest(put(::SensorAmbrelSense, "\"true\""), "data must be number or boolean.");
    ExpectBadRequest(put(::SensorAmbrelSense, ""), "data must be number or boolean.");
    EXPECT_FALSE(Called("CSSG2H_SetHumanDetectOnOff") || Called("DvCtrlLockMonitor")) << JournalText();
}

TEST_F(SensorPresence, LevelTakesNumbersOnlyRoundedHalfAwayFromZero) {
    ExpectOK(put(::SensorAmbrelSenseLevel, "2.5"), Value());
    ExpectOK(host::Call(::SensorAmbrelSenseLevel, "GET", host::IdParams(id)), Value(3));
    ExpectOK(put(::SensorAmbrelSenseLevel, "-1.5"), Value());
    ExpectOK(host::Call(::SensorAmbrelSenseLevel, "GET", host::IdParams(id)), Value(-2));
    host::ClearJournal();
    ExpectBadRequest(put(::SensorAmbrelSenseLevel, "true"), "data must be number.");
    EXPECT_FALSE(Called("DvCtrlLockMonitor"));
}

TEST_F(SensorPresence, HIDHandleIsCheckedBeforeTheData) {
    std::string usb = host::OpenByDeviceID(8);
    for (host::Endpoint e : {::SensorAmbrelSense, ::SensorAmbrelSenseLevel}) {
        ExpectDvError(host::Call(e, "PUT", host::IdParams(usb), "", "\"bad\""), kFailed, "Get HID handle.");
        ExpectDvError(host::Call(e, "GET", host::IdParams(usb)), kFailed, "Get HID handle.");
    }
}

TEST_F(SensorPresence, DeviceFailureReleasesTheMonitorAndChangesNothing) {
    ExpectOK(put(::SensorAmbrelSense, "true"), Value());
    SimInjectResult("CSSG2H_SetHumanDetectOnOff", static_cast<int32_t>(0x8001000A));
    host::ClearJournal();
    ExpectDvError(put(::SensorAmbrelSense, "false"), 0x8001000A, "Set human detect on off.");
    EXPECT_TRUE(Called("DvCtrlUnlockMonitor")) << JournalText();
    SimClearInjections();
    ExpectOK(host::Call(::SensorAmbrelSense, "GET", host::IdParams(id)), Value(1));

    SimInjectResult("CSSG2H_GetHumanDetectMode", kInvalidArgument);
    ExpectDvError(host::Call(::SensorAmbrelSenseLevel, "GET", host::IdParams(id)), 0x80000001,
                  "Get human detect mode.");
}

} // namespace

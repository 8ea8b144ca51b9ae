// Presence sensing of a monitor's built-in sensor.
#include "host/sensor_test_util.h"

namespace {

using namespace sensortest;

class SensorPresence : public SensorTest {
protected:
    std::string open() override { return host::OpenMonitorSensor("LMN27A", "41A00017"); }
};

TEST_F(SensorPresence, OnOffTakesBooleansAndNumbersAndAnswersANumber) {
    struct {
        char const* body;
        int64_t on;
    } const cases[] = {{"true", 1}, {"false", 0}, {"1", 1}, {"0", 0}, {"0.5", 1}, {"0.0", 0}, {"-3", 1}};
    for (auto const& c : cases) {
        SCOPED_TRACE(c.body);
        ExpectOK(put(::SensorAmbrelSense, c.body), Value());
        ExpectOK(get(::SensorAmbrelSense), Value(c.on));
    }
    EXPECT_EQ(Value(4097), Arg("CSSG2H_SetHumanDetectOnOff", 0)) << "the HID handle";
    host::ClearJournal();
    ExpectBadRequest(put(::SensorAmbrelSense, "\"true\""), "data must be number or boolean.");
    ExpectBadRequest(put(::SensorAmbrelSense, ""), "data must be number or boolean.");
    EXPECT_FALSE(Called("CSSG2H_SetHumanDetectOnOff") || Called("DvCtrlLockMonitor")) << JournalText();
}

TEST_F(SensorPresence, LevelTakesNumbersOnlyRoundedHalfAwayFromZero) {
    ExpectOK(put(::SensorAmbrelSenseLevel, "2.5"), Value());
    ExpectOK(get(::SensorAmbrelSenseLevel), Value(3));
    ExpectOK(put(::SensorAmbrelSenseLevel, "-1.5"), Value());
    ExpectOK(get(::SensorAmbrelSenseLevel), Value(-2));
    host::ClearJournal();
    ExpectBadRequest(put(::SensorAmbrelSenseLevel, "true"), "data must be number.");
    EXPECT_FALSE(Called("DvCtrlLockMonitor"));
}

// A sensor not built into a monitor fails at its HID handle, before the data
// is looked at and before any built-in-sensor function is looked up.
TEST_F(SensorPresence, BuiltinEndpointsNeedTheHIDHandleFirst) {
    std::string usb = host::OpenByDeviceID(8);
    host::ClearJournal();
    for (host::Endpoint e : {::SensorAmbrelSense, ::SensorAmbrelSenseLevel}) {
        ExpectDvError(host::Call(e, "PUT", host::IdParams(usb), "", "\"bad\""), kFailed, "Get HID handle.");
        ExpectDvError(host::Call(e, "GET", host::IdParams(usb)), kFailed, "Get HID handle.");
    }
    for (host::Endpoint e :
         {::SensorRGB, ::SensorIR, ::SensorXYZWithoutCorrelation, ::SensorCorrelationDescription,
          ::SensorCorrelationData, ::SensorCorrelationMatrixData})
        ExpectDvError(host::Call(e, "GET", host::IdParams(usb)), kFailed, "Get HID handle.");
    EXPECT_EQ(std::vector<std::string>(10, "MDGetHIDHandle"), Functions());
}

} // namespace

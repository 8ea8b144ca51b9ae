// Measurements of a stand-alone device and of a monitor's built-in sensor.
#include <algorithm>

#include "host/sensor_test_util.h"

namespace {

using namespace sensortest;

using SensorMeasurement = SensorTest;

TEST_F(SensorMeasurement, DeviceAnswersXYZRawXYZAndThreeRawValues) {
    ExpectOK(get(::SensorXYZ), Json(R"({"XYZ":{"X":95.0429,"Y":100.0137,"Z":108.8812},
                                       "rawXYZ":{"X":0.950429,"Y":1.000137,"Z":1.088812}})"));
    ExpectOK(get(::SensorRawData), Json(R"({"rawData":[0.3127,0.329,0.2481]})"));

    // The mode and the correction set through the endpoints reach the reading.
    ExpectOK(put(::SensorMode, R"({"mode":2,"observerKey":1})"), Value());
    ExpectOK(put(::SensorCorrection, R"({"type":"paperWhite","observerKey":1})"), Value());
    host::Response r = get(::SensorXYZ);
    EXPECT_NEAR(100.0137 * 1.02 * 0.997, r.value()["XYZ"]["Y"].getDouble(), 1e-9) << r.text;
    EXPECT_EQ(Value(1.000137), r.value()["rawXYZ"]["Y"]) << r.text;
}

TEST_F(SensorMeasurement, BuiltinReadingsAreTakenUnderTheMonitorLock) {
    id = host::OpenMonitorSensor("LMN27A", "41A00017");
    struct {
        host::Endpoint endpoint;
        char const* function;
        char const* value;
    } const cases[] = {
        {::SensorRGB, "CSSG2H_MeasureRGB", R"({"RGB":{"R":812.5,"G":904.25,"B":655.75}})"},
        {::SensorIR, "CSSG2H_GetIRValue", R"({"IR":42.5})"},
        {::SensorXYZWithoutCorrelation, "CSSG2H_MeasureNotCorrelatedXYZCount",
         R"({"XYZ":{"X":1520.5,"Y":1610.25,"Z":1733.75}})"},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.function);
        host::ClearJournal();
        ExpectOK(get(c.endpoint), Json(c.value));
        EXPECT_EQ(Value(4097), Arg(c.function, 0)) << "the HID handle, not the device handle";
        auto calls = Functions();
        auto lock = std::find(calls.begin(), calls.end(), "DvCtrlLockMonitor");
        auto call = std::find(calls.begin(), calls.end(), c.function);
        auto unlock = std::find(calls.begin(), calls.end(), "DvCtrlUnlockMonitor");
        EXPECT_TRUE(lock < call && call < unlock && unlock != calls.end()) << JournalText();
        EXPECT_EQ(Value(0), host::World()["monitors"][0]["lockCount"]);
    }
}

} // namespace

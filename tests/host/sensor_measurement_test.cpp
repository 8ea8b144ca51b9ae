// Measurements of a stand-alone device and of a monitor's built-in sensor.
#include <algorithm>

#include "host/sensor_test_util.h"

namespace {

using quilljson::Value;
using namespace sensortest;

class SensorMeasurement : public host::HostTest {};

bool HasXYZ(Value const& v) { return v.size() == 3 && v["X"].isDouble() && v["Y"].isDouble() && v["Z"].isDouble(); }

TEST_F(SensorMeasurement, DeviceAnswersXYZAndRawData) {
    std::string id = host::OpenByDeviceID(8);
    host::Response xyz = host::Call(::SensorXYZ, "GET", host::IdParams(id));
    ASSERT_EQ(200u, xyz.status) << xyz.text;
    EXPECT_EQ(2u, xyz.value().size());
    EXPECT_TRUE(HasXYZ(xyz.value()["XYZ"])) << xyz.text;
    EXPECT_TRUE(HasXYZ(xyz.value()["rawXYZ"])) << xyz.text;

    host::Response raw = host::Call(::SensorRawData, "GET", host::IdParams(id));
    ASSERT_EQ(200u, raw.status) << raw.text;
    Value const& values = raw.value()["rawData"];
    ASSERT_EQ(3u, values.size()) << raw.text;
    for (auto const& v : values.arrayRef())
        EXPECT_TRUE(v.isDouble()) << raw.text;

    SimInjectResult("MDMeasureXYZ2", static_cast<int32_t>(0x80010003));
    ExpectDvError(host::Call(::SensorXYZ, "GET", host::IdParams(id)), 0x80010003, "Measure XYZ.");
    SimInjectResult("MDMeasureRaw", static_cast<int32_t>(0x80010003));
    ExpectDvError(host::Call(::SensorRawData, "GET", host::IdParams(id)), 0x80010003, "Measure raw data.");
}

TEST_F(SensorMeasurement, BuiltinReadingsAreTakenUnderTheMonitorLock) {
    std::string id = host::OpenMonitorSensor("VX2710", "41A00017");
    struct {
        host::Endpoint endpoint;
        char const* function;
        char const* key;
        std::vector<char const*> members;
    } const cases[] = {
        {::SensorRGB, "CSSG2H_MeasureRGB", "RGB", {"R", "G", "B"}},
        {::SensorIR, "CSSG2H_GetIRValue", "IR", {}},
        {::SensorXYZWithoutCorrelation, "CSSG2H_MeasureNotCorrelatedXYZCount", "XYZ", {"X", "Y", "Z"}},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.function);
        host::ClearJournal();
        host::Response r = host::Call(c.endpoint, "GET", host::IdParams(id));
        ASSERT_EQ(200u, r.status) << r.text;
        ASSERT_EQ(1u, r.value().size()) << r.text;
        Value const& reading = r.value()[c.key];
        if (c.members.empty()) {
            EXPECT_TRUE(reading.isDouble()) << r.text;
        }
        for (char const* m : c.members)
            EXPECT_TRUE(reading[m].isDouble()) << r.text;
        EXPECT_EQ(c.members.size(), reading.size());

        auto calls = Functions();
        auto lock = std::find(calls.begin(), calls.end(), "DvCtrlLockMonitor");
        auto call = std::find(calls.begin(), calls.end(), c.function);
        auto unlock = std::find(calls.begin(), calls.end(), "DvCtrlUnlockMonitor");
        EXPECT_TRUE(lock < call && call < unlock && unlock != calls.end()) << JournalText();
    }
}

TEST_F(SensorMeasurement, FailedBuiltinReadingReleasesTheMonitor) {
    std::string id = host::OpenMonitorSensor("VX3220", "52B00042");
    SimInjectResult("CSSG2H_MeasureRGB", static_cast<int32_t>(0x80010002));
    ExpectDvError(host::Call(::SensorRGB, "GET", host::IdParams(id)), 0x80010002, "Measure RGB.");
    EXPECT_TRUE(Called("DvCtrlUnlockMonitor"));
    SimClearInjections();
    EXPECT_EQ(200u, host::Call(::SensorRGB, "GET", host::IdParams(id)).status);
}

TEST_F(SensorMeasurement, StandaloneDeviceHasNoBuiltinReadings) {
    std::string id = host::OpenByDeviceID(8);
    for (host::Endpoint endpoint : {::SensorRGB, ::SensorIR, ::SensorXYZWithoutCorrelation})
        ExpectDvError(host::Call(endpoint, "GET", host::IdParams(id)), kFailed, "Get HID handle.");
    for (auto const& name : Functions())
        EXPECT_NE(0u, name.rfind("CSSG2H_", 0)) << name;
}

} // namespace

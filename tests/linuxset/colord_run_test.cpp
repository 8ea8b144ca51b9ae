// sensorctl --backend linux against a colord of the test's own with its dummy
// sensor: a stand-alone instrument opens and measures through the chosen set,
// and what only monitors' built-in sensors have answers a clear error.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "private_colord.h"
#include "support.h"

namespace {

using linuxsettest::Outcome;
using linuxsettest::Sensorctl;

TEST(ColordRun, BackendLinuxOpensAndMeasuresColordsSensor) {
    testing_colord::PrivateColord colord;
    ASSERT_EQ("", colord.failure()) << "the private bus and colord are needed for this test";
    std::string const script = "GET /Sensors?connected -> $device [0].deviceID\n"
                               "POST /Sensors/$device -> $s\n"
                               "GET /Sensors/$s/XYZ\n"
                               "GET /Sensors/$s/RGB\n"
                               "GET /Sensors/$s/AmbrelSense\n"
                               "GET /Sensors/$s/Correlation/Database?available\n"
                               "GET /Sensors/$s/CorrelationMatrix/Database?available\n"
                               "DELETE /Sensors\n";
    Outcome const run =
        Sensorctl("DBUS_SYSTEM_BUS_ADDRESS=" + colord.busAddress(), "--backend linux -f -", script);
    ASSERT_EQ(0, run.exitCode) << run.errors;
    ASSERT_EQ(8u, run.lines.size()) << run.errors << colord.colordLog();
    EXPECT_EQ(0u, run.lines[0].rfind(R"(200 {"error":null,"value":[{"deviceID":)", 0)) << run.lines[0];
    EXPECT_EQ(0u, run.lines[1].rfind(R"(200 {"error":null,"value":")", 0)) << run.lines[1];
    EXPECT_EQ(0u, run.lines[2].rfind(R"(200 {"error":null,"value":{)", 0)) << run.lines[2];
    // A stand-alone sensor has no monitor: no HID handle, so no built-in
    // reading, no presence sensing and no correlation database.
    std::string const noMonitor =
        R"(500 {"error":{"code":2147483648,"message":"Failed.","name":"DvError","reason":"Get HID handle."},)"
        R"("value":null})";
    for (size_t i = 3; i < 7; ++i)
        EXPECT_EQ(noMonitor, run.lines[i]) << i;
    EXPECT_EQ(R"(200 {"error":null,"value":null})", run.lines[7]);
    EXPECT_EQ(8u, run.log.size());
}

} // namespace

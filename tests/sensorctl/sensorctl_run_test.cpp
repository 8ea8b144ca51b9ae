// Runs the built sensorctl against the built library and the simulated world.
#include "sensorctl_process.h"

namespace {

bool StartsWith(std::string const& text, std::string const& prefix) {
    return text.rfind(prefix, 0) == 0;
}

TEST(SensorctlRun, AScriptOpensASensorAndUsesItsIdInLaterRequests) {
    std::string const script = "# list, open, describe\n"
                               "GET /Sensors?connected\n"
                               "POST /Sensors/8 -> $spectro\n"
                               "GET /Sensors/$spectro\n"
                               "GET /Sensors/$spectro?connection\n"
                               "GET /Sensors/no-such-sensor\n";
    SensorctlRun run = RunSensorctl("-f -", "", script);
    EXPECT_EQ(0, run.exitCode) << run.errors; // error statuses fail the run only with --fail
    ASSERT_EQ(5u, run.lines.size()) << run.errors;
    EXPECT_TRUE(StartsWith(run.lines[0], R"(200 {"error":null,"value":[{"deviceID":8,)")) << run.lines[0];
    EXPECT_TRUE(StartsWith(run.lines[1], R"(200 {"error":null,"value":")")) << run.lines[1];
    EXPECT_TRUE(StartsWith(run.lines[2], "200 ")) << run.lines[2];
    EXPECT_NE(std::string::npos, run.lines[2].find(R"("name":"Lumetra Spectro 8")")) << run.lines[2];
    EXPECT_EQ(R"(200 {"error":null,"value":true})", run.lines[3]);
    EXPECT_EQ(R"(404 {"error":{"message":"Not found.","name":"Error"},"value":null})", run.lines[4]);
    EXPECT_EQ(3, RunSensorctl("--fail -f -", "", script).exitCode);
}

TEST(SensorctlRun, RequestsThatCannotBeUnderstoodNeverReachTheLibrary) {
    // A library that cannot be loaded would exit 1: exit 2 shows it was never tried.
    for (char const* request : {"'GET /Sensors'  'GET /Sensor/x'", "'PATCH /Sensors'", "'GET /Sensors/$x'",
                                "'POST /Sensors/8 -> spectro'", "'GET /Sensors?=1'"}) {
        SensorctlRun run = RunSensorctl(std::string("--library /nonexistent/libsensorcontrol.so ") + request);
        EXPECT_EQ(2, run.exitCode) << request;
        EXPECT_TRUE(run.lines.empty()) << request;
        EXPECT_TRUE(StartsWith(run.errors, "sensorctl: argument ")) << run.errors;
    }
    SensorctlRun const unknown = RunSensorctl("'GET /Sensors/x/Nope'");
    EXPECT_EQ(2, unknown.exitCode);
    EXPECT_NE(std::string::npos, unknown.errors.find("no resource matches GET /Sensors/x/Nope"))
        << unknown.errors;
    EXPECT_EQ(1, RunSensorctl("--library /nonexistent/libsensorcontrol.so 'GET /Sensors'").exitCode);
    SensorctlRun const help = RunSensorctl("--help");
    EXPECT_EQ(0, help.exitCode);
    EXPECT_GT(help.lines.size(), 34u); // the usage and the resource table
}

TEST(SensorctlRun, TheDemoWalksTheDefaultWorldWithoutAnErrorStatus) {
    SensorctlRun run = RunSensorctl("demo");
    EXPECT_EQ(0, run.exitCode) << run.errors;
    ASSERT_FALSE(run.lines.empty());
    size_t requests = 0;
    for (size_t i = 0; i < run.lines.size(); ++i) {
        if (!StartsWith(run.lines[i], "> ")) continue;
        ++requests;
        ASSERT_LT(i + 1, run.lines.size());
        EXPECT_TRUE(StartsWith(run.lines[i + 1], "200 ")) << run.lines[i] << "\n" << run.lines[i + 1];
    }
    EXPECT_GT(requests, 30u);
    EXPECT_EQ(R"(200 {"error":null,"value":[]})", run.lines.back()); // all closed at the end
}

} // namespace

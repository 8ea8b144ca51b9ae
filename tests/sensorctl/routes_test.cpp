// The resource table: every export reachable, overlapping paths resolved
// as documented, and the argument texts an export receives.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <string>

#include "routes.h"

namespace sensorctl {
namespace {

// The public header declares each endpoint export as "SENSORCONTROL_ENDPOINT(<Name>);".
TEST(Routes, EveryEndpointExportOfTheHeaderHasExactlyOneRow) {
    std::ifstream file(TEST_SOURCE_DIR "/include/sensorcontrol/sensorcontrol.h");
    std::string const header((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    std::map<std::string, int> rows;
    for (Route const& route : Routes())
        if (route.kind != RouteKind::Gateway) ++rows[route.exportName];
    EXPECT_EQ(34u, rows.size());
    for (auto const& [name, count] : rows) {
        EXPECT_NE(std::string::npos, header.find("SENSORCONTROL_ENDPOINT(" + name + ");"))
            << name << " is not in the header";
        EXPECT_EQ(1, count) << name;
    }
}

struct Case {
    char const* request; // method and path
    char const* exportName;
    char const* parameters; // as passed to the export
};

std::string RouteOf(Case const& c, std::string* parameters) {
    std::string text = c.request;
    size_t space = text.find(' ');
    Method method = Method::Get;
    EXPECT_TRUE(ParseMethod(text.substr(0, space), &method)) << c.request;
    RouteMatch match = MatchRoute(method, text.substr(space + 1));
    if (match.route == nullptr) return "(none)";
    *parameters = MakeCallTexts(method, match.parameters, {}, "").parameters;
    return match.route->exportName;
}

TEST(Routes, OverlappingPathsGoWhereTheHelpSays) {
    Case const cases[] = {
        {"GET /Sensors", "Sensors", ""},
        {"DELETE Sensors", "Sensors", ""}, // the leading '/' is optional
        {"GET /Sensors/Name", "SensorsName", ""},
        {"POST /Sensors/Name", "SensorsName", ""}, // not a device named "Name"
        {"POST /Sensors/Individual/00000000a1b2c3d4", "IndividualID",
         R"({"individualID":"00000000a1b2c3d4"})"},
        {"POST /Sensors/8", "DeviceID", R"({"deviceID":"8"})"},
        {"GET /Sensors/8", "Sensor", R"({"id":"8"})"},
        {"PUT /Sensors/ab-12", "Sensor", R"({"id":"ab-12"})"},
        {"GET /Sensors/x/AmbrelSense", "SensorAmbrelSense", R"({"id":"x"})"},
        {"DELETE /Sensors/x/Correlation/9Points", "SensorCorrelation9Points", R"({"id":"x"})"},
        {"GET /Sensors/x/CorrelationMatrix/Database", "SensorCorrelationMatrixDatabase", R"({"id":"x"})"},
        {"POST /Sensors/x/XYZ", "SensorXYZ", R"({"id":"x"})"}, // the library answers 405
        {"GET /Sensors//XYZ", "SensorXYZ", R"({"id":""})"},    // empty id: the library answers 400
        {"POST /Monitors/LMN27A/41A00017/Sensor", "Monitors", R"({"product":"LMN27A","serial":"41A00017"})"},
        {"PUT /Pallast/ControlPanel", "PallastControlPanel", ""},
        {"GET /sensors", "(none)", ""},
        {"GET /Sensor/x", "(none)", ""},
        {"GET /Sensors/x/Bogus", "(none)", ""},
        {"GET /Sensors/x/XYZ/More", "(none)", ""},
        {"POST /Monitors/LMN27A/Sensor", "(none)", ""},
    };
    for (Case const& c : cases) {
        std::string parameters;
        EXPECT_EQ(c.exportName, RouteOf(c, &parameters)) << c.request;
        EXPECT_EQ(c.parameters, parameters) << c.request;
    }
}

TEST(Routes, CallTextsCarryMethodQueryAndBodyAsTheLibraryReadsThem) {
    CallTexts texts = MakeCallTexts(Method::Delete, {{"id", R"(a"b\c)"}},
                                    {{"connected", std::nullopt}, {"deviceIDs", std::string("8,11")}},
                                    R"( {"mode":1} trailing)");
    EXPECT_EQ(R"({"method":"DELETE"})", texts.request);
    EXPECT_EQ(R"({"id":"a\"b\\c"})", texts.parameters);
    EXPECT_EQ(R"({"connected":true,"deviceIDs":"8,11"})", texts.query);
    EXPECT_EQ(R"( {"mode":1} trailing)", texts.data);

    CallTexts bare = MakeCallTexts(Method::Get, {}, {}, "");
    EXPECT_EQ("", bare.parameters);
    EXPECT_EQ("", bare.query);
    EXPECT_EQ("", bare.data);
}

} // namespace
} // namespace sensorctl

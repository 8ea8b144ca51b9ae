// The product on the Linux set, driving colord's dummy sensor as a host would.
#include <cstdio>

#include "colord_host.h"

namespace colordtest {
namespace {

constexpr uint32_t kUnsupported = 0x80000007;

std::string Hex16(uint64_t v) {
    char text[17];
    std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(v));
    return text;
}

TEST_F(ColordTest, ListsOpensDescribesAndClosesWhatColordReports) {
    BusSensor const bus = DummyBusSensor();
    ASSERT_FALSE(bus.kind.empty());

    Response list = product->call("Sensors", "GET", "", "{\"connected\":true}");
    ASSERT_EQ(200u, list.status) << list.text;
    ASSERT_EQ(1u, list.value().size()) << list.text;
    // The ids follow the documented hash of what colord reports, so they are
    // the same on every run and machine for the same instrument.
    uint32_t deviceID = 2166136261u;
    for (unsigned char c : "colord:" + bus.kind)
        deviceID = (deviceID ^ c) * 16777619u;
    deviceID |= 0x80000000u;
    uint64_t individualID = 14695981039346656037ull;
    for (unsigned char c : bus.kind + "/" + bus.serial)
        individualID = (individualID ^ c) * 1099511628211ull;
    EXPECT_EQ(Json("[{\"deviceID\":" + std::to_string(deviceID) + ",\"individualID\":\"" +
                   Hex16(individualID) + "\"}]"),
              list.value());

    std::string const name = bus.vendor + " " + bus.model;
    Response names =
        product->call("SensorsName", "GET", "", "{\"deviceIDs\":\"" + std::to_string(deviceID) + ",7\"}");
    EXPECT_EQ(Json("[\"" + name + "\",\"\"]"), names.value()) << names.text;

    Response byIndividual =
        product->call("IndividualID", "POST", "{\"individualID\":\"" + Hex16(individualID) + "\"}");
    ASSERT_EQ(200u, byIndividual.status) << byIndividual.text;
    std::string const id = byIndividual.value().toString("");

    // The dummy sensor has the display caps, ambient, printer and spot, and no spectral cap.
    Response described = on(id, "Sensor");
    EXPECT_EQ(Json("{\"deviceID\":" + std::to_string(deviceID) + ",\"name\":\"" + name + "\",\"serial\":\"" +
                   bus.serial +
                   "\",\"needsCalibration\":false,\"supportsAmbient\":true,\"supportsReflectance\":true,"
                   "\"hasArm\":false,\"hasMultipleSensorPosition\":false,\"hasTargetMarker\":false}"),
              described.value())
        << described.text;
    EXPECT_EQ(Json("true"), on(id, "Sensor", "GET", R"({"connection":true})").value());

    // A second open of the same instrument is a handle of its own.
    std::string const second = openFirst();
    EXPECT_NE(id, second);
    EXPECT_EQ(200u, on(id, "Sensor", "DELETE").status);
    EXPECT_EQ(404u, on(id, "Sensor").status);
    EXPECT_EQ(200u, on(second, "SensorXYZ").status);

    ExpectDvError(product->call("DeviceID", "POST", "{\"deviceID\":\"12345\"}"), 0x80010002, "Open sensor.");
}

TEST_F(ColordTest, ModesPickTheCapColordReadsWith) {
    std::string const id = openFirst();
    EXPECT_EQ(Json("{\"ambient\":true,\"reflectance\":true}"),
              on(id, "SensorMode", "GET", "{\"supports\":true}").value());

    Response display = on(id, "SensorXYZ");
    ASSERT_EQ(200u, display.status) << display.text;
    // Without a correction the measured colour is colord's reading as it comes.
    EXPECT_EQ(display.value()["rawXYZ"], display.value()["XYZ"]) << display.text;
    EXPECT_GT(display.value()["rawXYZ"]["Y"].getDouble(), 0.0) << display.text;

    for (int mode : {10, 1, 11, 12}) { // ambient, crt, printer, spot
        SCOPED_TRACE(mode);
        Response set =
            on(id, "SensorMode", "PUT", "", "{\"mode\":" + std::to_string(mode) + ",\"observerKey\":0}");
        EXPECT_EQ(200u, set.status) << set.text;
        Response reading = on(id, "SensorXYZ");
        EXPECT_EQ(200u, reading.status) << reading.text;
    }

    // A cap the dummy lacks (led), a mode outside the table, an observer colord does not measure.
    for (char const* body :
         {R"({"mode":3,"observerKey":0})", R"({"mode":99,"observerKey":0})", R"({"mode":0,"observerKey":1})"})
        ExpectDvError(on(id, "SensorMode", "PUT", "", body), kUnsupported, "Set sensor mode.");
}

TEST_F(ColordTest, WhatColordHasNoNotionOfAnswersUnsupportedOrEmpty) {
    std::string const id = openFirst();
    ExpectDvError(on(id, "SensorArm", "PUT", "", "true"), kUnsupported, "Open sensor arm.");
    ExpectDvError(on(id, "SensorRawData"), kUnsupported, "Measure raw data.");
    ExpectDvError(on(id, "SensorCorrection", "PUT", "", "{\"type\":\"paperWhite\",\"observerKey\":1}"),
                  kUnsupported, "Apply paper white correction.");
    ExpectDvError(on(id, "SensorPosition"), kUnsupported, "Get sensor position.");
    // The dummy has no calibration caps: nothing to calibrate it with.
    ExpectDvError(on(id, "SensorCalibration", "PUT"), kUnsupported, "Calibrate sensor.");
    EXPECT_EQ(Json("false"), on(id, "SensorCalibration", "GET", "{\"needs\":true}").value());
    EXPECT_EQ(Json("[]"), on(id, "SensorCorrelation", "GET", "{\"available\":true}").value());
    ExpectDvError(product->call("PallastControlPanel", "PUT"), kUnsupported, "Open Pallast Control Panel.");
}

} // namespace
} // namespace colordtest

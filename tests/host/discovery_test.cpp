// Finding sensors: connected devices, names, serial adapters behind the host's
// mappings, library set-up, the control panel and closing every sensor.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "host/host.h"
#include "quilljson/serializer.h"

namespace {

using host::Call;
using quilljson::Serializer;

constexpr int32_t kNoMoreData = static_cast<int32_t>(0x8000000Bu);

std::string Value(host::Response const& r) {
    EXPECT_EQ(200u, r.status) << r.text;
    return Serializer::toText(r.value());
}

std::string SerialConnected() {
    return Value(Call(::Sensors, "GET", "", R"({"serialConnected":1})"));
}

void Map(std::string const& mappings) {
    EXPECT_EQ(R"({"error":null,"value":null})",
              Call(::Sensors, "PUT", "", "", R"({"serialMappings":)" + mappings + "}").text);
}

class Discovery : public host::HostTest {};

} // namespace

TEST_F(Discovery, ConnectedDevicesWhenTheKeyIsPresent) {
    std::string const connected =
        R"([{"deviceID":8,"individualID":"00000000a1b2c3d4"},{"deviceID":11,"individualID":"00000000a1b2c3e5"}])";
    EXPECT_EQ(connected, Value(Call(::Sensors, "GET", "", R"({"connected":false})")));
    EXPECT_EQ(connected, Value(Call(::Sensors, "GET", "", R"({"serialConnected":1,"connected":null})")));
    EXPECT_EQ(6u, host::CallCount("MDEnumConnectedDevices")); // twice up to the first gap
    EXPECT_EQ(0u, host::CallCount("TvkCreateUSBDeviceSnapshot"));

    // Enumeration ends at the first index without a device, even when a later one has one.
    host::LoadScenario(
        R"({"devices":[{"deviceID":3,"individualID":"3"},{"deviceID":4,"enumerationFails":true},)"
        R"({"deviceID":5,"individualID":"5"}]})");
    host::ClearJournal();
    EXPECT_EQ(R"([{"deviceID":3,"individualID":"0000000000000003"}])",
              Value(Call(::Sensors, "GET", "", R"({"connected":1})")));
    EXPECT_EQ(2u, host::CallCount("MDEnumConnectedDevices"));

    // Otherwise the open sensors, also for a query that is no object.
    EXPECT_EQ("[]", Value(Call(::Sensors, "GET", "", R"(["connected"])")));
}

TEST_F(Discovery, NamesByDeviceIDOrOfTheOpenSensors) {
    EXPECT_EQ(R"(["Lumetra Colori 11","Lumetra Colori 19","","Lumetra Spectro 8"])",
              Value(Call(::SensorsName, "GET", "", R"({"deviceIDs":"11,19,,x,8"})")));
    EXPECT_EQ(4u, host::CallCount("MDGetNameFromDeviceID"));
    EXPECT_EQ("[11]", Serializer::toText(host::FirstCall("MDGetNameFromDeviceID")["args"]));

    EXPECT_EQ("[]", Value(Call(::SensorsName, "GET")));
    std::string const usb = host::OpenByDeviceID(8);
    std::string const builtin = host::OpenMonitorSensor("LMN27A", "41A00017");
    EXPECT_EQ(usb < builtin ? R"(["Lumetra Spectro 8","Quorra QS3"])"
                            : R"(["Quorra QS3","Lumetra Spectro 8"])",
              Value(Call(::SensorsName, "GET")));
}

TEST_F(Discovery, SerialAdaptersFollowTheHostsMappings) {
    int32_t id = -1;
    EXPECT_EQ("[]", SerialConnected());
    EXPECT_EQ(kNoMoreData, MirelEnumConnectedSerialSensors(0, &id));
    EXPECT_EQ(0u, host::CallCount("TvkCreateUSBDeviceSnapshot")); // nothing mapped, nothing to look for

    Map(R"({"usbserial-LX21A":"0x15","Orbin USB Hub":3.6,"Quorra Monitor Hub":"12abc","Elsewhere":true})");
    EXPECT_EQ(R"([{"deviceID":4},{"deviceID":21},{"deviceID":0}])", SerialConnected()); // bus order
    EXPECT_EQ(1u, host::CallCount("TvkReleaseSnapshot"));

    EXPECT_EQ(1, MirelEnumConnectedSerialSensors(0, &id));
    EXPECT_EQ(4, id);
    EXPECT_EQ(1, MirelEnumConnectedSerialSensors(1, nullptr));
    EXPECT_EQ(1, MirelEnumConnectedSerialSensors(2, &id)); // the last one still answers "more data"
    EXPECT_EQ(0, id);
    id = -1;
    EXPECT_EQ(kNoMoreData, MirelEnumConnectedSerialSensors(3, &id));
    EXPECT_EQ(-1, id);

    Map(R"({"usbserial-LX21A":true,"Orbin USB Hub":"017","Quorra Monitor Hub":4294967317})");
    EXPECT_EQ(R"([{"deviceID":15},{"deviceID":1},{"deviceID":21}])", SerialConnected());
    Map(R"("none")");
    EXPECT_EQ("[]", SerialConnected());

    // A bus that cannot be read lists nothing.
    Map(R"({"usbserial-LX21A":21})");
    quilljson::Value world = host::World();
    world["usb"]["snapshotFails"] = true;
    host::LoadScenario(Serializer::toText(world));
    EXPECT_EQ("[]", SerialConnected());
}

// Run in a process of its own whose exports directory lacks the USB library.
TEST(DiscoveryWithoutUSBLibrary, SerialRefreshFailsWithoutEscaping) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            char folder[] = "/tmp/sensorcontrol-exports.XXXXXX";
            if (mkdtemp(folder) == nullptr) std::exit(2);
            setenv("HALVERN_EXPORTS_PATH", folder, 1);
            host::LoadScenarioFile("default.json");
            ::Setup();
            Call(::Sensors, "PUT", "", "", R"({"serialMappings":{"usbserial-LX21A":21}})");
            host::Response const r = Call(::Sensors, "GET", "", R"({"serialConnected":1})");
            int32_t id = -1;
            int32_t const enumerated = MirelEnumConnectedSerialSensors(0, &id);
            rmdir(folder);
            std::fprintf(stderr, "%u %s %08x %d\n", r.status, r.errorMessage().c_str(),
                         static_cast<uint32_t>(enumerated), id);
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "404 torvik does not have a requested function\\. 80000000 -1");
}

TEST_F(Discovery, LibrarySetUpAndControlPanel) {
    EXPECT_EQ("null", Value(Call(::Sensors, "PUT", "", "", R"({"libraryPath":"/opt/lumetra"})")));
    EXPECT_EQ("/opt/lumetra", host::World()["libraryPath"].toString(""));
    host::ClearJournal();
    EXPECT_EQ("null", Value(Call(::Sensors, "PUT", "", "", "plain words")));
    EXPECT_EQ(0u, host::Journal().size());
    SimInjectResult("MDInitDeviceLibrariesDirectoryPath", static_cast<int32_t>(0x80000010u));
    EXPECT_EQ(R"({"error":{"code":2147483664,"message":"Dll is not found.","name":"DvError",)"
              R"("reason":"Init device libraries directory path."},"value":null})",
              Call(::Sensors, "PUT", "", "", R"({"libraryPath":"/opt/lumetra"})").text);

    EXPECT_EQ("null", Value(Call(::PallastControlPanel, "PUT")));
    EXPECT_EQ(1, host::World()["controlPanelOpened"].getInteger());
    EXPECT_EQ(405u, Call(::PallastControlPanel, "GET").status);
    SimInjectResult("MDOpenPallastControlPanel", static_cast<int32_t>(0x80000007u));
    EXPECT_EQ("Open Pallast Control Panel.",
              Call(::PallastControlPanel, "PUT").error()["reason"].toString(""));
}

// Sensors DELETE and TearDown close every sensor; uncollected responses stay.
TEST_F(Discovery, DeleteAndTearDownCloseEverySensor) {
    for (bool tearDown : {false, true}) {
        SCOPED_TRACE(tearDown);
        std::string const usb = host::OpenByDeviceID(8);
        host::OpenMonitorSensor("LMN27A", "41A00017");
        uint32_t const pending = ::SensorXYZ("", host::IdParams(usb).c_str(), "", "");
        host::ClearJournal();
        if (tearDown)
            ::TearDown();
        else
            EXPECT_EQ("null", Value(Call(::Sensors, "DELETE")));
        EXPECT_EQ(2u, host::CallCount("MDClose"));
        EXPECT_EQ("[]", Value(Call(::Sensors, "GET")));
        void* handle = &handle;
        EXPECT_FALSE(SensorControlGetHandleForID(usb.c_str(), &handle));
        EXPECT_EQ(nullptr, handle);
        uint32_t length = 0;
        EXPECT_EQ(200u, BridgeHelperGetResponse(pending, nullptr, &length));
    }
}

// colord going away, or never there, and two host threads on one sensor.
#include <dlfcn.h>

#include <cstdlib>
#include <thread>
#include <vector>

#include "colord_host.h"

namespace colordtest {
namespace {

constexpr uint32_t kNotRegistered = 0x80000005;
constexpr uint32_t kSensorConnection = 0x80010002;

TEST_F(ColordTest, ColordStoppedMidwayAnswersAsClosedWithoutHangingAndComesBack) {
    std::string const id = openFirst();
    ASSERT_EQ(200u, on(id, "SensorXYZ").status);

    colord->stopColord(); // the sensor leaves the bus with it, as when it is unplugged
    ExpectDvError(on(id, "SensorXYZ"), kNotRegistered, "Measure XYZ.");
    EXPECT_EQ(Json("false"), on(id, "Sensor", "GET", R"({"connection":true})").value());
    ExpectDvError(on(id, "SensorMode", "PUT", "", "{\"mode\":0,\"observerKey\":0}"), kNotRegistered,
                  "Set sensor mode.");
    EXPECT_EQ(Json("[]"), product->call("Sensors", "GET", "", "{\"connected\":true}").value());
    ExpectDvError(product->call("DeviceID", "POST", "{\"deviceID\":\"2378360074\"}"), kSensorConnection,
                  "Open sensor.");

    ASSERT_TRUE(colord->startColord()) << colord->failure();
    // The old handle stays closed; the sensor opens afresh on the same connection.
    ExpectDvError(on(id, "SensorXYZ"), kNotRegistered, "Measure XYZ.");
    std::string const reopened = openFirst();
    EXPECT_EQ(200u, on(reopened, "SensorXYZ").status);
}

TEST(ColordAbsent, NoColordOnTheBusAndNoBusAtAllListNothingAndRefuseToOpen) {
    testing_colord::PrivateColord bus;
    ASSERT_EQ("", bus.failure());
    bus.stopColord();
    for (bool busUp : {true, false}) {
        SCOPED_TRACE(busUp ? "bus without colord" : "no bus");
        if (!busUp)
            setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + bus.folder() + "/no-such-socket").c_str(), 1);
        Product product;
        EXPECT_EQ(Json("[]"), product.call("Sensors", "GET", "", "{\"connected\":true}").value());
        ExpectDvError(product.call("DeviceID", "POST", "{\"deviceID\":\"2378360074\"}"), kSensorConnection,
                      "Open sensor.");
        ExpectDvError(product.call("IndividualID", "POST", "{\"individualID\":\"e5eec4cf379cdcda\"}"),
                      kSensorConnection, "Open sensor with individual id.");
    }
}

TEST_F(ColordTest, ClosedHandleAnswersNotRegisteredEverywhere) {
// The Linux set's function of that name, as the product calls it.
#define LINUX_MD(name) reinterpret_cast<decltype(&name)>(product->pallast(#name))
    auto enumerate = LINUX_MD(MDEnumConnectedDevices);
    auto open = LINUX_MD(MDOpenWithIndividualID);
    auto close = LINUX_MD(MDClose);
    MDDeviceID deviceID = 0;
    uint64_t individualID = 0;
    ASSERT_EQ(0, enumerate(0, &deviceID, &individualID));
    EXPECT_EQ(-1, enumerate(1, &deviceID, &individualID));
    void* handle = nullptr;
    ASSERT_EQ(0, open(individualID, &handle).code);
    void* const stale = handle;
    ASSERT_EQ(0, close(&handle).code);
    EXPECT_EQ(nullptr, handle);
    EXPECT_EQ(static_cast<int32_t>(kNotRegistered), close(&handle).code);

    colour raw, measured;
    uint32_t index = 0;
    EXPECT_EQ(static_cast<int32_t>(kNotRegistered), LINUX_MD(MDMeasureXYZ2)(stale, &raw, &measured).code);
    EXPECT_EQ(static_cast<int32_t>(kNotRegistered), LINUX_MD(MDSetMode)(stale, 0, 0).code);
    EXPECT_EQ(static_cast<int32_t>(kNotRegistered), LINUX_MD(MDGetExCorrectionIndex)(stale, &index).code);
    EXPECT_EQ(static_cast<int32_t>(kNotRegistered), LINUX_MD(MDTakeOutArm)(stale).code);
    EXPECT_EQ(0u, LINUX_MD(MDGetExCorrectionCount)(stale));
    EXPECT_EQ(nullptr, LINUX_MD(MDGetName)(stale));
    EXPECT_EQ(0, LINUX_MD(MDIsValidConnection)(stale));
}

TEST_F(ColordTest, ConcurrentHostThreadsMeasuringOneSensorAreServedInTurn) {
    std::string const id = openFirst();
    std::string const other = openFirst(); // a second handle on the same instrument
    std::vector<Response> answers(4);
    std::vector<std::thread> threads;
    for (size_t i = 0; i < answers.size(); ++i)
        threads.emplace_back(
            [&, i] { answers[i] = product->sensorCall("SensorXYZ", i % 2 ? id : other, "GET"); });
    for (auto& t : threads)
        t.join();
    // colord refuses a second Lock or a reading while one runs; none of that reaches the host.
    for (auto const& r : answers)
        EXPECT_EQ(200u, r.status) << r.text;
}

} // namespace
} // namespace colordtest

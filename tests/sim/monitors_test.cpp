// libdvc and libquorSensor: monitor names in either order, the lock, and the
// data sets of the built-in sensors.
#include <cstring>

#include "devices/dvc.h"
#include "devices/quorsensor.h"
#include "sim_test_util.h"

namespace {

using namespace simtest;

void* const kMonitor1 = reinterpret_cast<void*>(4097); // VX2710, first generation, no SetColorSensorDataIndex
void* const kMonitor2 = reinterpret_cast<void*>(4098); // VX3220, second generation

class Monitors : public SimTest {};

TEST_F(Monitors, ListEndsWithNonZeroCode) {
    char product[9], serial[17];
    ASSERT_EQ(0, DvCtrlGetSerialProduct(1, &product, &serial).code);
    EXPECT_STREQ("VX3220", product);
    EXPECT_STREQ("52B00042", serial);
    EXPECT_NE(0, DvCtrlGetSerialProduct(2, &product, &serial).code);
}

TEST_F(Monitors, NamesAreAcceptedInEitherOrder) {
    for (bool swapped : {false, true}) {
        SCOPED_TRACE(swapped);
        char const* a = swapped ? "41A00017" : "VX2710";
        char const* b = swapped ? "VX2710" : "41A00017";
        void* hid = nullptr;
        ASSERT_EQ(0, DvCtrlGetHIDHandle(a, b, &hid).code);
        EXPECT_EQ(kMonitor1, hid);
        EXPECT_EQ(1, DvCtrlSupportedHZEPriority(a, b));
        DvCtrlHZEPriority priority = 0;
        ASSERT_EQ(0, DvCtrlGetHZEPriority(a, b, &priority).code);
        EXPECT_EQ(2u, priority);
        EXPECT_EQ(3, DvCtrlGetPanelRevision(a, b));
        EXPECT_EQ(0, DvCtrlLockMonitor(a, b).code);
        EXPECT_EQ(0, DvCtrlUnlockMonitor(b, a).code);
    }
    void* hid = nullptr;
    EXPECT_EQ(kMonitorConnection, DvCtrlGetHIDHandle("VX2710", "52B00042", &hid).code);
    EXPECT_EQ(kMonitorConnection, DvCtrlGetHIDHandle(nullptr, "VX2710", &hid).code);
    EXPECT_EQ(0, DvCtrlGetPanelRevision("VX2710", "VX2710"));
    DvCtrlHZEPriority priority = 0;
    EXPECT_EQ(kUnsupported, DvCtrlGetHZEPriority("VX3220", "52B00042", &priority).code);
}

TEST_F(Monitors, LocksAreCountedAndAnotherPartysLockRefuses) {
    ASSERT_EQ(0, DvCtrlLockMonitor("VX3220", "52B00042").code);
    ASSERT_EQ(0, DvCtrlLockMonitor("52B00042", "VX3220").code);
    EXPECT_EQ(Value(2), World()["monitors"][1]["lockCount"]);
    EXPECT_EQ(0, DvCtrlUnlockMonitor("VX3220", "52B00042").code);
    EXPECT_EQ(0, DvCtrlUnlockMonitor("VX3220", "52B00042").code);
    EXPECT_LT(DvCtrlUnlockMonitor("VX3220", "52B00042").code, 0);

    ASSERT_EQ(0, SimLoadScenario(ScenarioText("monitor_held_elsewhere.json").c_str()));
    EXPECT_EQ(kMonitorOwned, DvCtrlLockMonitor("VX2710", "41A00017").code);
    double r = 0, g = 0, b = 0;
    EXPECT_EQ(kMonitorOwned, CSSG2H_MeasureRGB(kMonitor1, &r, &g, &b).code);
    EXPECT_EQ(Value(0), World()["monitors"][0]["lockCount"]);
}

TEST_F(Monitors, ReadingsAndPresenceSettingsReadBack) {
    double r = 0, g = 0, b = 0;
    ASSERT_EQ(0, CSSG2H_MeasureRGB(kMonitor2, &r, &g, &b).code);
    EXPECT_EQ(1180.25, g);
    double ir = 0, second = 0;
    ASSERT_EQ(0, CSSG2H_GetIRValue(kMonitor2, &ir, &second).code);
    EXPECT_EQ(38.25, ir);
    EXPECT_EQ(kMonitorConnection, CSSG2H_GetIRValue(reinterpret_cast<void*>(5), &ir, &second).code);

    ASSERT_EQ(0, CSSG2H_SetHumanDetectOnOff(kMonitor2, 1).code);
    ASSERT_EQ(0, CSSG2H_SetHumanDetectMode(kMonitor2, 3).code);
    signed char on = 0;
    CSSG2_HUMANDETECT_MODE mode = 0;
    ASSERT_EQ(0, CSSG2H_GetHumanDetectOnOff(kMonitor2, &on).code);
    ASSERT_EQ(0, CSSG2H_GetHumanDetectMode(kMonitor2, &mode).code);
    EXPECT_EQ(1, on);
    EXPECT_EQ(3, mode);
}

// The description of the selected set, as the serial text.
std::string Description(void* hid) {
    CSSG2_Date date{};
    int device = 0;
    char serial[33];
    EXPECT_EQ(0, CSSG2H_GetCriterionSensorDescription(hid, &date, &device, serial).code);
    return serial;
}

TEST_F(Monitors, DataIndexSelectsCurrentOrFactoryUntilChanged) {
    EXPECT_EQ("LC11-88210", Description(kMonitor2));
    ASSERT_EQ(0, CSSG2H_SetColorSensorDataIndex(kMonitor2, 0, 0).code);
    EXPECT_EQ("LS8-10001", Description(kMonitor2));
    EXPECT_EQ("LS8-10001", Description(kMonitor2));
    EXPECT_EQ(Value("factory"), World()["monitors"][1]["selectedDataSet"]);
    ASSERT_EQ(0, CSSG2H_SetColorSensorDataIndex2(kMonitor2, 1, 0).code);
    EXPECT_EQ("LC11-88210", Description(kMonitor2));
    EXPECT_EQ(kInvalidArgument, CSSG2H_SetColorSensorDataIndex(kMonitor2, 1, 0).code);

    // Monitor 1 lacks the first form; the second one still works.
    EXPECT_LT(CSSG2H_SetColorSensorDataIndex(kMonitor1, 0, 0).code, 0);
    EXPECT_EQ(Value("current"), World()["monitors"][0]["selectedDataSet"]);
    EXPECT_EQ(0, CSSG2H_SetColorSensorDataIndex2(kMonitor1, 0, 1).code);
    EXPECT_EQ(Value("factory"), World()["monitors"][0]["selectedDataSet"]);
}

TEST_F(Monitors, PriorityIndexSelectsTheVariantWhereHeld) {
    ASSERT_EQ(0, SimLoadScenario(ScenarioText("priority_pages.json").c_str()));
    void* hid = reinterpret_cast<void*>(4105);
    struct {
        int page, index;
        char const* serial;
    } const cases[] = {
        {1, 0, "LS8-20419"}, {1, 1, "LS8-20419-HZE"}, {0, 1, "LS8-10001-HZE"}, {0, 0, "LS8-10001"}};
    for (auto const& c : cases) {
        ASSERT_EQ(0, CSSG2H_SetColorSensorDataIndex2(hid, c.page, c.index).code);
        EXPECT_EQ(c.serial, Description(hid));
    }
    // Luminance levels live in the selected set, per mode and index.
    ASSERT_EQ(0, CSSG2H_SetColorSensorDataIndex2(hid, 1, 1).code);
    double brightness = 0;
    uint16_t dimmer = 0;
    ASSERT_EQ(0, CSSG2H_GetLuminanceLevelCorrectionParams(hid, 0, 1, &brightness, &dimmer).code);
    EXPECT_EQ(140.5, brightness);
    EXPECT_EQ(210, dimmer);
    ASSERT_EQ(0, CSSG2H_GetLuminanceLevelCorrectionParams(hid, 0, 0, &brightness, &dimmer).code);
    EXPECT_EQ(0.0, brightness);
}

TEST_F(Monitors, WritesGoToTheSelectedSetOnly) {
    CSSG2_Date date{2025, 3, 4, 5, 6};
    char serial[33] = "NEW-REFERENCE";
    ASSERT_EQ(0, CSSG2H_SetColorSensorDataIndex(kMonitor2, 0, 0).code);
    ASSERT_EQ(0, CSSG2H_SetCriterionSensorDescription(kMonitor2, date, 8, serial).code);
    double matrix[9] = {2, 0, 0, 0, 2, 0, 0, 0, 2};
    ASSERT_EQ(0, CSSG2H_SetXYZCorrectionMatrix(kMonitor2, matrix).code);
    Value const sets = World()["monitors"][1]["dataSets"];
    EXPECT_EQ(Value("NEW-REFERENCE"), sets["factory"]["description"]["serial"]);
    EXPECT_EQ(Value("LC11-88210"), sets["current"]["description"]["serial"]);
    EXPECT_EQ(2.0, sets["factory"]["matrix3x3"][1][1].asDouble());
    EXPECT_EQ(0.987, sets["current"]["matrix3x3"][1][1].asDouble());

    ASSERT_EQ(0, CSSG2H_SetColorSensorDataIndex(kMonitor2, 3, 0).code);
    ASSERT_EQ(0, CSSG2H_SetCriterionSensorDescription(kMonitor2, CSSG2_Date{}, 0, serial).code);
    std::memset(serial, 0, sizeof serial);
    ASSERT_EQ(0, CSSG2H_SetCriterionSensorDescription(kMonitor2, CSSG2_Date{}, 0, serial).code);
    EXPECT_TRUE(World()["monitors"][1]["dataSets"]["current"]["description"].isNull());
}

TEST_F(Monitors, CorrelationRecordsBelongToOneSensorGeneration) {
    R2XC_RefParam reference{};
    ASSERT_EQ(0, CSSG2H_R2XCGetRefParam(kMonitor1, &reference).code);
    EXPECT_EQ(180, reference.dimmerOut);
    EXPECT_EQ(kUnsupported, CSSG2H_R2XCGetRefParam(kMonitor2, &reference).code);

    double brightness = 0, temperature = 0;
    CSSG2_COLORSENSOR_COEFFICIENTTYPE type = 0;
    KMCAL_CALDATA_USERPROOF calibration{};
    KMCAL_MEASDATA_USERPROOF measurement{};
    EXPECT_EQ(kUnsupported, CSSG2H_GetColorSensorCalibData(kMonitor1, &brightness, &temperature, &type,
                                                           &calibration, &measurement)
                                .code);
    ASSERT_EQ(0, CSSG2H_GetColorSensorCalibData(kMonitor2, &brightness, &temperature, &type, &calibration,
                                                &measurement)
                     .code);
    EXPECT_EQ(120.5, brightness);
    EXPECT_EQ(95.04, measurement.referenceWhite.X);
    EXPECT_EQ(0.0, measurement.referenceBlack.X);

    // Written parts read back from the same set.
    reference.dimmerOut = 99;
    ASSERT_EQ(0, CSSG2H_R2XCSetRefParam(kMonitor1, reference).code);
    R2XC_RefParam back{};
    ASSERT_EQ(0, CSSG2H_R2XCGetRefParam(kMonitor1, &back).code);
    EXPECT_EQ(99, back.dimmerOut);
    EXPECT_EQ(Value(99),
              World()["monitors"][0]["dataSets"]["current"]["correlation"]["reference"]["dimmerOut"]);
}

TEST_F(Monitors, MatrixFormsFollowTheMonitorsSupport) {
    double m8[8][3] = {};
    EXPECT_EQ(1, CSSG2H_SupportedXYZCorrectionMatrix8DXT(kMonitor1));
    ASSERT_EQ(0, CSSG2H_GetXYZCorrectionMatrix8DXT(kMonitor1, m8).code);
    EXPECT_EQ(0.991, m8[2][1]);
    EXPECT_EQ(0, CSSG2H_SupportedXYZCorrectionMatrix8DXT(kMonitor2));
    EXPECT_EQ(kUnsupported, CSSG2H_GetXYZCorrectionMatrix8DXT(kMonitor2, m8).code);
    EXPECT_EQ(0, CSSG2H_SupportedLuminanceLevelCorrectionParams(kMonitor1));
    double brightness = 0;
    uint16_t dimmer = 0;
    EXPECT_EQ(kUnsupported,
              CSSG2H_GetLuminanceLevelCorrectionParams(kMonitor1, 0, 0, &brightness, &dimmer).code);
}

} // namespace

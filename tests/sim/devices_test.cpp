// libpallast over the default world: discovery, handles, measurement and settings.
#include <cstring>
#include <set>

#include "devices/pallast.h"
#include "sim_test_util.h"

namespace {

using namespace simtest;

class Devices : public SimTest {
protected:
    void* Open(MDDeviceID id) {
        void* handle = nullptr;
        EXPECT_EQ(0, MDOpen(id, &handle).code);
        return handle;
    }
};

TEST_F(Devices, EnumerationListsUsbDevicesOnlyAndEndsNegative) {
    MDDeviceID id = 0;
    uint64_t individual = 0;
    ASSERT_EQ(0, MDEnumConnectedDevices(0, &id, &individual));
    EXPECT_EQ(8u, id);
    EXPECT_EQ(0xA1B2C3D4u, individual);
    ASSERT_EQ(0, MDEnumConnectedDevices(1, &id, &individual));
    EXPECT_EQ(11u, id);
    EXPECT_LT(MDEnumConnectedDevices(2, &id, &individual), 0); // the serial sensor is not on USB
    void* serial = Open(21);
    EXPECT_STREQ("Lumetra Serial 21", MDGetName(serial));
}

TEST_F(Devices, OpeningGivesFreshHandlesAndClosingForgetsThem) {
    std::set<void*> handles;
    for (int i = 0; i < 4; ++i)
        handles.insert(Open(8));
    void* byIndividual = nullptr;
    ASSERT_EQ(0, MDOpenWithIndividualID(0xA1B2C3E5u, &byIndividual).code);
    handles.insert(byIndividual);
    void* builtin = nullptr;
    ASSERT_EQ(0, MDOpenWithHIDHandle(reinterpret_cast<void*>(4098), &builtin).code);
    handles.insert(builtin);
    EXPECT_EQ(6u, handles.size());
    EXPECT_EQ(0u, handles.count(nullptr));

    EXPECT_EQ(11u, MDGetDeviceID(byIndividual));
    EXPECT_EQ(0x150u, MDGetDeviceID(builtin));
    EXPECT_STREQ("QS5-52B00042", MDGetSerialNumber(builtin));
    EXPECT_EQ(reinterpret_cast<void*>(4098), MDGetHIDHandle(builtin));
    EXPECT_EQ(nullptr, MDGetHIDHandle(byIndividual));

    void* closed = builtin;
    ASSERT_EQ(0, MDClose(&closed).code);
    EXPECT_EQ(nullptr, closed);
    EXPECT_EQ(kNotRegistered, MDClose(&builtin).code);
    EXPECT_EQ(kNotRegistered, MDCalibrate(builtin).code);
    EXPECT_EQ(0u, MDGetDeviceID(builtin));
    EXPECT_EQ(nullptr, MDGetName(builtin));
    EXPECT_EQ(nullptr, MDGetHIDHandle(builtin));
}

TEST_F(Devices, UnknownDevicesFailToOpen) {
    void* handle = nullptr;
    EXPECT_EQ(kSensorConnection, MDOpen(99, &handle).code);
    EXPECT_EQ(kSensorConnection, MDOpenWithIndividualID(0x1234, &handle).code);
    EXPECT_EQ(kMonitorConnection, MDOpenWithHIDHandle(reinterpret_cast<void*>(1), &handle).code);
    EXPECT_EQ(nullptr, handle);
    EXPECT_STREQ("Lumetra Colori 19", MDGetNameFromDeviceID(19));
    EXPECT_STREQ("Quorra QS3", MDGetNameFromDeviceID(0x131));
    EXPECT_EQ(nullptr, MDGetNameFromDeviceID(99));
}

TEST_F(Devices, HandleOutlivesAReloadWhileItsDeviceRemains) {
    void* spectro = Open(8);
    void* colori = Open(11);
    LoadEdited([](Value& world) { world["devices"] = Array({world["devices"][0]}); });
    EXPECT_STREQ("Lumetra Spectro 8", MDGetName(spectro));
    EXPECT_EQ(kNotRegistered, MDCalibrate(colori).code);
}

TEST_F(Devices, MeasurementFollowsModeCorrectionAndMatrix) {
    void* handle = Open(8);
    colour raw{}, measured{};
    ASSERT_EQ(0, MDMeasureXYZ2(handle, &raw, &measured).code);
    EXPECT_DOUBLE_EQ(100.0137, measured.Y);
    EXPECT_DOUBLE_EQ(1.000137, raw.Y);
    EXPECT_NEAR(measured.X / (measured.X + measured.Y + measured.Z), measured.x, 1e-12);

    ASSERT_EQ(0, MDSetMode(handle, 2, 1).code);
    ASSERT_EQ(0, MDApplyPaperWhiteCorrection(handle, 1).code);
    ASSERT_EQ(0, MDMeasureXYZ2(handle, &raw, &measured).code);
    EXPECT_DOUBLE_EQ(100.0137 * 1.02 * 0.997, measured.Y);
    EXPECT_DOUBLE_EQ(1.000137, raw.Y);

    ASSERT_EQ(0, MDReleaseCorrection(handle).code);
    ASSERT_EQ(0, MDSetMode(handle, 0, 1).code);
    ASSERT_EQ(0, MDApplyCorrelationCorrection(handle, 12).code);
    ASSERT_EQ(0, MDApplyCorrelationMatrix(handle, 4).code);
    ASSERT_EQ(0, MDMeasureXYZ2(handle, &raw, &measured).code);
    double const X = 95.0429 * 0.99, Y = 100.0137 * 0.99, Z = 108.8812 * 0.99;
    EXPECT_DOUBLE_EQ(1.02 * X + 0.01 * Y, measured.X);
    EXPECT_DOUBLE_EQ(0.98 * Y + 0.01 * Z, measured.Y);
    EXPECT_DOUBLE_EQ(0.005 * X + 1.01 * Z, measured.Z);

    MDMeasurementData data{};
    ASSERT_EQ(0, MDMeasureRaw(handle, &data).code);
    EXPECT_DOUBLE_EQ(0.329, data.value[1]);
    EXPECT_EQ(0.0, data.value[3]);
}

TEST_F(Devices, SettingsReadBackAndShowInTheWorld) {
    void* handle = Open(8);
    ASSERT_EQ(0, MDCalibrate(handle).code);
    EXPECT_EQ(0, MDIsCalibrationNecessary(handle));
    ASSERT_EQ(0, MDTakeOutArm(handle).code);
    ASSERT_EQ(0, MDSetTargetMarker(handle, 2).code);
    ASSERT_EQ(0, MDSetExteriorLightingState(handle, 0).code);
    ASSERT_EQ(0, MDSetIFSBrightCorrectParamUpdateEnabled(handle, 1).code);
    ASSERT_EQ(0, MDSetDeviceOptionValue(handle, "OPT_CALMODE", 3).code);
    ASSERT_EQ(0, MDSetExCorrectionIndex(handle, 2).code);

    MDTargetMarkerStatus marker = 0;
    ASSERT_EQ(0, MDGetTargetMarker(handle, &marker).code);
    EXPECT_EQ(2, marker);
    int64_t option = 0;
    ASSERT_EQ(0, MDGetDeviceOptionValue(handle, "OPT_CALMODE", &option).code);
    EXPECT_EQ(3, option);
    EXPECT_EQ(kUnsupported, MDGetDeviceOptionValue(handle, "OPT_CALIBRATIONSET", &option).code);
    uint32_t index = 0;
    ASSERT_EQ(0, MDGetExCorrectionIndex(handle, &index).code);
    EXPECT_EQ(2u, index);
    EXPECT_EQ(kOutOfRange, MDSetExCorrectionIndex(handle, 3).code);

    Value const device = World()["devices"][0];
    EXPECT_EQ(Value(false), device["capabilities"]["needsCalibration"]);
    EXPECT_EQ(Value(true), device["armOut"]);
    EXPECT_EQ(Value(2), device["targetMarker"]);
    EXPECT_EQ(Value(0), device["exteriorLightingState"]);
    EXPECT_EQ(Value(true), device["ifsBrightCorrectParamUpdateEnabled"]);
    EXPECT_EQ(Value(2), device["exCorrections"]["index"]);
}

TEST_F(Devices, MissingCapabilitiesAnswerUnsupported) {
    void* handle = Open(11);
    EXPECT_EQ(0, MDHasArm(handle));
    EXPECT_EQ(kUnsupported, MDTakeOutArm(handle).code);
    MDTargetMarkerStatus marker = 0;
    EXPECT_EQ(kUnsupported, MDGetTargetMarker(handle, &marker).code);
    MDExteriorLightingState light = 0;
    EXPECT_EQ(kUnsupported, MDGetExteriorLightingState(handle, &light).code);
    signed char enabled = 0;
    EXPECT_EQ(kUnsupported, MDGetIFSBrightCorrectParamUpdateEnabled(handle, &enabled).code);
    int64_t count = -1;
    ASSERT_EQ(0, MDSpectralRadianceFixedData(handle, &count, &count, &count, &count).code);
    EXPECT_EQ(0, count);
}

TEST_F(Devices, ExCorrectionNameReportsSizeThenCopies) {
    void* handle = Open(8);
    ASSERT_EQ(3u, MDGetExCorrectionCount(handle));
    uint32_t size = 0;
    ASSERT_EQ(0, MDGetExCorrectionName(handle, 1, nullptr, &size).code);
    EXPECT_EQ(sizeof("Standard LED"), size);
    char buffer[256];
    std::memset(buffer, 'x', sizeof buffer);
    ASSERT_EQ(0, MDGetExCorrectionName(handle, 1, buffer, &size).code);
    EXPECT_STREQ("Standard LED", buffer);
    size = 4;
    EXPECT_EQ(kInvalidBufferSize, MDGetExCorrectionName(handle, 1, buffer, &size).code);
    EXPECT_EQ(kOutOfRange, MDGetExCorrectionName(handle, 3, nullptr, &size).code);
}

TEST_F(Devices, ParameterDescriptionKeepsItsSerialField) {
    void* handle = Open(8);
    MDParameterDescription d{};
    ASSERT_EQ(0, MDGetParameterDescription(handle, &d).code);
    EXPECT_EQ(2024, d.year);
    EXPECT_EQ(11u, d.referenceDeviceID);
    EXPECT_STREQ("LC11-88210", d.referenceSerial);

    // An erased serial field reads as 0xFF bytes after the text.
    LoadEdited([](Value& world) {
        world["devices"][0]["parameterDescription"]["referenceSerial"] = "";
        world["devices"][0]["parameterDescription"]["serialPadding"] = 255;
    });
    ASSERT_EQ(0, MDGetParameterDescription(handle, &d).code);
    for (char c : d.referenceSerial)
        EXPECT_EQ('\xff', c);

    // A full 32-byte serial has no terminator and is kept whole.
    std::memset(d.referenceSerial, 'A', sizeof d.referenceSerial);
    ASSERT_EQ(0, MDSetParameterDescription(handle, d).code);
    MDParameterDescription back{};
    ASSERT_EQ(0, MDGetParameterDescription(handle, &back).code);
    EXPECT_EQ(0, std::memcmp(d.referenceSerial, back.referenceSerial, 32));
}

TEST_F(Devices, StoredCorrelationsAreListedAndApplied) {
    void* handle = Open(8);
    int32_t reference = 0;
    char referenceSerial[33], product[33], serial[17];
    uint64_t id = 0;
    ASSERT_EQ(0,
              MDEnumCorrelationCorrection(handle, 0, &reference, referenceSerial, product, serial, &id).code);
    EXPECT_EQ(12u, id);
    EXPECT_STREQ("VX2710", product);
    EXPECT_EQ(kNoMoreData,
              MDEnumCorrelationCorrection(handle, 1, &reference, referenceSerial, product, serial, &id).code);
    EXPECT_EQ(kNotRegistered, MDApplyCorrelationCorrection(handle, 13).code);
    colour white{};
    white.x = 0.3127;
    white.y = 0.329;
    white.Y = 120.5;
    ASSERT_EQ(0, MDApplyCorrelationCorrectionWithRecalcLuminanceLevelCorrection(handle, 12, white).code);
    EXPECT_EQ(Value(120.5), World()["devices"][0]["targetWhite"]["Y"]);

    // The monitor text matches a stored matrix by product or by serial.
    MDDeviceID matrixReference = 0;
    for (char const* monitor : {"VX2710", "41A00017"}) {
        ASSERT_EQ(
            0, MDEnumCorrelationMatrix(handle, monitor, 3, 0, &matrixReference, referenceSerial, &id).code);
        EXPECT_EQ(4u, id);
    }
    EXPECT_EQ(kNoMoreData,
              MDEnumCorrelationMatrix(handle, "VX2710", 2, 0, &matrixReference, referenceSerial, &id).code);
    EXPECT_EQ(kNotRegistered, MDApplyCorrelationMatrix(handle, 5).code);
}

TEST_F(Devices, CompatibilityProcessIsRecordedWhereSupported) {
    EXPECT_EQ(0, MDSupports32bitCompatibilityProcess());
    EXPECT_EQ(kUnsupported, MDLaunch32bitCompatibilityProcess("/r/vostrand", "App").code);
    ASSERT_EQ(0, SimLoadScenario(ScenarioText("compatibility_process.json").c_str()));
    EXPECT_EQ(1, MDSupports32bitCompatibilityProcess());
    ASSERT_EQ(0, MDLaunch32bitCompatibilityProcess("/r/vostrand", "App").code);
    Value process = World()["compatibilityProcess"];
    EXPECT_EQ(Value(true), process["running"]);
    EXPECT_EQ(Value("/r/vostrand"), process["launched"][0]["path"]);
    EXPECT_EQ(Value("App"), process["launched"][0]["application"]);
    ASSERT_EQ(0, MDQuit32bitCompatibilityProcess().code);
    EXPECT_EQ(Value(false), World()["compatibilityProcess"]["running"]);
}

} // namespace

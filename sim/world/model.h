// The simulated device world: plain data, read and written by the stand-ins
// under the world lock (see world.h) and converted to and from scenario JSON
// by scenario.cpp. Field names follow the scenario keys (sim/README.md).
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "devices/records.h"

namespace sim {

struct XYZ {
    double X = 0, Y = 0, Z = 0;
};

struct TargetWhite {
    double x = 0, y = 0, Y = 0;
};

struct Capabilities {
    bool validConnection = true;
    bool needsCalibration = false;
    bool ambient = true;
    bool reflectance = false;
    bool arm = false;
    bool multiplePositions = false;
    bool targetMarker = false;
    bool exteriorLight = false;
    bool ifs = false; // IFS temperature / brightness correction parameters
};

struct Spectrum {
    int64_t min = 0, max = 0, bandWidth = 0, count = 0;
};

struct ParameterDescription {
    CSSG2_Date date{};
    uint32_t referenceDeviceID = 0;
    std::string referenceSerial; // at most 32 bytes
    uint8_t serialPadding = 0;   // fills the 32-byte field after the text
};

struct StoredCorrelationCorrection {
    uint64_t id = 0;
    int32_t referenceDeviceID = 0;
    std::string referenceSerial;
    std::string monitorProduct;
    std::string monitorSerial;
};

struct StoredCorrelationMatrix {
    uint64_t id = 0;
    uint32_t referenceDeviceID = 0;
    std::string referenceSerial;
    std::string monitorProduct;
    std::string monitorSerial;
    uint16_t panelRevision = 0;
    double matrix[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
};

// A measurement device: a stand-alone one, or the sensor built into a monitor.
struct Device {
    uint32_t deviceID = 0;
    uint64_t individualID = 0;
    std::string name;
    std::string serial;
    bool usb = true;               // listed by MDEnumConnectedDevices
    bool enumerationFails = false; // its index answers "no device" though it is on the bus
    Capabilities capabilities;
    Spectrum spectrum;

    int32_t mode = 0;
    int32_t observerKey = 0;
    bool armOut = false;
    int32_t position = 1;
    int32_t exteriorLightingState = 0;
    int32_t targetMarker = 0;
    bool ifsTempCorrectParamCalculated = false;
    bool ifsBrightCorrectParamUpdateEnabled = false;
    std::map<std::string, int64_t> options;
    std::optional<ParameterDescription> parameterDescription;

    // "none", "plain", "emission", "paperWhite", "10degFor2deg", "plainFor2deg"
    std::string correction = "none";
    int32_t correctionObserverKey = 0;
    std::string correctionProduct;
    uint16_t correctionPanelRevision = 0;

    std::vector<std::string> exCorrections;
    uint32_t exCorrectionIndex = 0;

    XYZ XYZReading{95.047, 100.0, 108.883};
    XYZ rawXYZReading{0.95047, 1.0, 1.08883};
    std::vector<double> rawData{0.125, 0.25, 0.5};

    std::vector<StoredCorrelationCorrection> correlationCorrections;
    std::optional<uint64_t> appliedCorrelationCorrection;
    std::optional<TargetWhite> targetWhite; // of the last recalculating apply
    bool ninePointsCorrection = false;
    std::vector<StoredCorrelationMatrix> correlationMatrices;
    std::optional<uint64_t> appliedCorrelationMatrix;
};

struct LuminanceLevel {
    int32_t mode = 0;
    uint32_t index = 0;
    double brightness = 0;
    uint16_t dimmerOut = 0;
};

// One stored data set of a built-in sensor (current or factory page).
struct DataSet {
    CSSG2_Date descriptionDate{};
    int32_t descriptionDeviceID = 0;
    std::string descriptionSerial; // at most 32 characters
    MDIFSv3CorrelationData ifsv3{};
    MDCSSG2CalibrationData calibration{};
    MDCSSG2CorrectionData correction{};
    std::vector<LuminanceLevel> luminanceLevels;
    double matrix3x3[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    double matrix8x3[8][3] = {};
};

// Names of the data sets a built-in sensor holds; the priority variants are
// addressed by CSSG2H_SetColorSensorDataIndex2 with index 1.
enum class Page { Current, Factory, CurrentPriority, FactoryPriority };
char const* pageName(Page page);
bool pageFromName(std::string const& name, Page* page);

struct Monitor {
    std::string product; // at most 8 characters
    std::string serial;  // at most 16 characters
    uint64_t hidHandle = 0;
    uint16_t panelRevision = 0;
    bool hzePrioritySupported = false;
    uint32_t hzePriority = 0;
    bool dataIndexSupported = true; // CSSG2H_SetColorSensorDataIndex
    bool heldByOther = false;
    int32_t lockCount = 0; // locks held by this process

    Device sensor; // deviceID 0x130/0x131: first generation records
    XYZ rgb{812.5, 904.25, 655.75};
    double ir = 42.5;
    double irSecond = 7.25;
    XYZ uncorrelatedXYZ{1520.5, 1610.25, 1733.75};
    bool humanDetectOn = false;
    int32_t humanDetectMode = 0;
    bool luminanceLevelSupported = false;
    bool matrix8x3Supported = false;
    std::map<Page, DataSet> dataSets; // Current and Factory always present
    Page selected = Page::Current;

    bool firstGeneration() const { return (sensor.deviceID | 1u) == 0x131u; }
};

// What both databases keep of an entry: its id, the sensor and the reference
// sensor it was made with, the monitor and the date.
struct DatabaseEntry {
    uint64_t id = 0;
    uint32_t deviceID = 0;
    std::string serial;
    uint32_t referenceDeviceID = 0;
    std::string referenceSerial;
    std::string monitorProduct;
    std::string monitorSerial;
    uint16_t panelRevision = 0;
    std::optional<CSSG2_Date> date;
};

struct CorrelationEntry : DatabaseEntry {
    bool firstGeneration = false; // which record below is held
    MDIFSv3CorrelationData ifsv3{};
    MDCSSG2CorrelationDataEx cssg2{};
};

struct MatrixEntry : DatabaseEntry {
    int32_t dataPage = 0;
    uint64_t correlationID = 0;
    double matrix[9] = {};
};

struct CompatibilityProcess {
    bool supported = false;
    int32_t launchResult = 0;
    int32_t quitResult = 0;
    bool running = false;
    struct Launch {
        std::string path, application;
    };
    std::vector<Launch> launched;
};

struct World {
    std::string libraryPath; // last MDInitDeviceLibrariesDirectoryPath
    int32_t controlPanelOpened = 0;
    CompatibilityProcess compatibility;
    std::vector<Device> devices;
    std::map<uint32_t, std::string> modelNames; // names of models not present
    std::vector<Monitor> monitors;
    std::vector<std::string> usbDevices;
    bool usbSnapshotFails = false;
    std::vector<CorrelationEntry> correlationDatabase;
    std::vector<MatrixEntry> matrixDatabase;
};

} // namespace sim

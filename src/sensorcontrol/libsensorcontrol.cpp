// The exported surface: set-up, tear-down and one function per resource.
#include "sensorcontrol/sensorcontrol.h"

#include "devices/halvern.h"
#include "devices/pallast.h"
#include "sensorcontrol/MirelLogger.h"
#include "sensorcontrol/bridge/SensorAmbrelSenseControl.h"
#include "sensorcontrol/bridge/SensorControl.h"
#include "sensorcontrol/bridge/SensorCorrelationControl.h"
#include "sensorcontrol/bridge/Sensors.h"
#include "sensorcontrol/device/SensorCache.h"
#include "share/bridge.h"
#include "tvl/fs/path.h"
#include "tvl/threading/mutex_locker.h"

namespace {

// The library's bundle identifier: the folder under the host's registry path
// that holds the compatibility helper.
char const* const kBundleIdentifier = "net.tovelworks.framework.sensorcontrol";

std::string text(char const* s) {
    return s != nullptr ? s : "";
}

} // namespace

extern "C" {

void Setup(void) {
    try {
        MDInitDeviceLibrariesDirectoryPath(text(Plg_GetRegistryExportsPath()).c_str());
        if (MDSupports32bitCompatibilityProcess()) {
            fs::Path path(text(Plg_GetRegistryPath()));
            path.appendPathComponent(kBundleIdentifier);
            path.appendPathComponent(text(Plg_GetArchitecture()));
            path.appendPathComponent("vostrand");
            std::string const application = text(Plg_GetApplicationName());
            DvError const result =
                MDLaunch32bitCompatibilityProcess(path.string().c_str(), application.c_str());
            if (result.code < 0)
                tovel::MirelLogger::Instance().log(tovel::LorvantLevelError, "Failed to launch vostrand.");
            else
                tovel::MirelLogger::Instance().log(tovel::LorvantLevelInfo, "Launch vostrand.");
        }
    } catch (...) {
        // Set-up reports nothing to the host.
    }
}

void TearDown(void) {
    try {
        tovel::device::SensorCache& cache = tovel::device::SensorCache::Instance();
        {
            threading::MutexLocker lock(cache.mutex());
            cache.clear();
        }
        if (MDSupports32bitCompatibilityProcess()) {
            DvError const result = MDQuit32bitCompatibilityProcess();
            if (result.code >= 0)
                tovel::MirelLogger::Instance().log(tovel::LorvantLevelInfo, "Quit vostrand.");
        }
    } catch (...) {
    }
}

#define SENSORCONTROL_ENDPOINT_EXPORT(Name)                                                                  \
    uint32_t Name(char const* request, char const* parameters, char const* query, char const* data) {        \
        return tovel::RunEndpoint<tovel::bridge::Name>(request, parameters, query, data);                    \
    }

SENSORCONTROL_ENDPOINT_EXPORT(Sensors)
SENSORCONTROL_ENDPOINT_EXPORT(SensorsName)
SENSORCONTROL_ENDPOINT_EXPORT(DeviceID)
SENSORCONTROL_ENDPOINT_EXPORT(IndividualID)
SENSORCONTROL_ENDPOINT_EXPORT(Monitors)
SENSORCONTROL_ENDPOINT_EXPORT(PallastControlPanel)
SENSORCONTROL_ENDPOINT_EXPORT(Sensor)
SENSORCONTROL_ENDPOINT_EXPORT(SensorMode)
SENSORCONTROL_ENDPOINT_EXPORT(SensorCalibration)
SENSORCONTROL_ENDPOINT_EXPORT(SensorXYZ)
SENSORCONTROL_ENDPOINT_EXPORT(SensorRawData)
SENSORCONTROL_ENDPOINT_EXPORT(SensorRGB)
SENSORCONTROL_ENDPOINT_EXPORT(SensorIR)
SENSORCONTROL_ENDPOINT_EXPORT(SensorXYZWithoutCorrelation)
SENSORCONTROL_ENDPOINT_EXPORT(SensorArm)
SENSORCONTROL_ENDPOINT_EXPORT(SensorPosition)
SENSORCONTROL_ENDPOINT_EXPORT(SensorExteriorLight)
SENSORCONTROL_ENDPOINT_EXPORT(SensorParameterDescription)
SENSORCONTROL_ENDPOINT_EXPORT(SensorTargetMarker)
SENSORCONTROL_ENDPOINT_EXPORT(SensorIFSTempCorrectParam)
SENSORCONTROL_ENDPOINT_EXPORT(SensorIFSBrightCorrectParamUpdate)
SENSORCONTROL_ENDPOINT_EXPORT(SensorDeviceOption)
SENSORCONTROL_ENDPOINT_EXPORT(SensorCorrection)
SENSORCONTROL_ENDPOINT_EXPORT(SensorExCorrection)
SENSORCONTROL_ENDPOINT_EXPORT(SensorAmbrelSense)
SENSORCONTROL_ENDPOINT_EXPORT(SensorAmbrelSenseLevel)
SENSORCONTROL_ENDPOINT_EXPORT(SensorCorrelation)
SENSORCONTROL_ENDPOINT_EXPORT(SensorCorrelation9Points)
SENSORCONTROL_ENDPOINT_EXPORT(SensorCorrelationDescription)
SENSORCONTROL_ENDPOINT_EXPORT(SensorCorrelationData)
SENSORCONTROL_ENDPOINT_EXPORT(SensorCorrelationDatabase)
SENSORCONTROL_ENDPOINT_EXPORT(SensorCorrelationMatrix)
SENSORCONTROL_ENDPOINT_EXPORT(SensorCorrelationMatrixData)
SENSORCONTROL_ENDPOINT_EXPORT(SensorCorrelationMatrixDatabase)

#undef SENSORCONTROL_ENDPOINT_EXPORT

} // extern "C"

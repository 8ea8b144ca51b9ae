// Endpoints acting on one open sensor: information, mode, calibration,
// measurement, mechanics and settings, corrections.
#pragma once

#include "share/bridge.h"

namespace tovel {
namespace bridge {

// information, mode, calibration
class Sensor : public Bridge {};
class SensorMode : public Bridge {};
class SensorCalibration : public Bridge {};

// measurement
class SensorXYZ : public Bridge {};
class SensorRawData : public Bridge {};
class SensorRGB : public Bridge {};
class SensorIR : public Bridge {};
class SensorXYZWithoutCorrelation : public Bridge {};

// mechanics and settings
class SensorArm : public Bridge {};
class SensorPosition : public Bridge {};
class SensorExteriorLight : public Bridge {};
class SensorParameterDescription : public Bridge {};
class SensorTargetMarker : public Bridge {};
class SensorIFSTempCorrectParam : public Bridge {};
class SensorIFSBrightCorrectParamUpdate : public Bridge {};
class SensorDeviceOption : public Bridge {};

// corrections
class SensorCorrection : public Bridge {};
class SensorExCorrection : public Bridge {};

} // namespace bridge
} // namespace tovel

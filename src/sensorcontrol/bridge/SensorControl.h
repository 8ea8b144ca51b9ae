// Endpoints acting on one open sensor: information, mode, calibration,
// measurement, mechanics and settings, corrections.
#pragma once

#include "share/bridge.h"

namespace tovel {
namespace bridge {

// information, mode, calibration
class Sensor : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
    BridgeResult Delete(BridgeData const& data) override;
};
class SensorMode : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
    BridgeResult Put(BridgeData const& data) override;
};
class SensorCalibration : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
    BridgeResult Put(BridgeData const& data) override;
};

// measurement
class SensorXYZ : public Bridge {};
class SensorRawData : public Bridge {};
class SensorRGB : public Bridge {};
class SensorIR : public Bridge {};
class SensorXYZWithoutCorrelation : public Bridge {};

// mechanics and settings
class SensorArm : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
    BridgeResult Put(BridgeData const& data) override;
};
class SensorPosition : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
};
class SensorExteriorLight : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
    BridgeResult Put(BridgeData const& data) override;
};
class SensorParameterDescription : public Bridge {};
class SensorTargetMarker : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
    BridgeResult Put(BridgeData const& data) override;
};
class SensorIFSTempCorrectParam : public Bridge {};
class SensorIFSBrightCorrectParamUpdate : public Bridge {};
class SensorDeviceOption : public Bridge {};

// corrections
class SensorCorrection : public Bridge {
public:
    BridgeResult Put(BridgeData const& data) override;
    BridgeResult Delete(BridgeData const& data) override;
};
class SensorExCorrection : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
    BridgeResult Put(BridgeData const& data) override;
};

} // namespace bridge
} // namespace tovel

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
class SensorXYZ : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
};
class SensorRawData : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
};
class SensorRGB : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
};
class SensorIR : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
};
class SensorXYZWithoutCorrelation : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
};

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
class SensorParameterDescription : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
    BridgeResult Put(BridgeData const& data) override;
};
class SensorTargetMarker : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
    BridgeResult Put(BridgeData const& data) override;
};
class SensorIFSTempCorrectParam : public Bridge {
public:
    BridgeResult Post(BridgeData const& data) override;
};
class SensorIFSBrightCorrectParamUpdate : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
    BridgeResult Put(BridgeData const& data) override;
};
class SensorDeviceOption : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
    BridgeResult Put(BridgeData const& data) override;
};

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

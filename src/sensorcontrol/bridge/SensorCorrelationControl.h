// Correlation of a monitor's built-in sensor with a reference sensor.
#pragma once

#include "share/bridge.h"

namespace tovel {
namespace bridge {

// Stored correlation corrections: list, apply, release (or clear the nine-point one).
class SensorCorrelation : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
    BridgeResult Put(BridgeData const& data) override;
    BridgeResult Delete(BridgeData const& data) override;
};
class SensorCorrelation9Points : public Bridge {
public:
    BridgeResult Delete(BridgeData const& data) override;
};
// The reference-sensor description held in the monitor.
class SensorCorrelationDescription : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
    BridgeResult Put(BridgeData const& data) override;
    BridgeResult Delete(BridgeData const& data) override;
};
// The correlation data held in the monitor.
class SensorCorrelationData : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
    BridgeResult Put(BridgeData const& data) override;
};
// The correlation database of the correction library.
class SensorCorrelationDatabase : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
    BridgeResult Post(BridgeData const& data) override;
};
// Correlation matrices stored for a sensor and monitor: list, apply, release.
class SensorCorrelationMatrix : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
    BridgeResult Put(BridgeData const& data) override;
    BridgeResult Delete(BridgeData const& data) override;
};
// The XYZ correction matrix held in the monitor.
class SensorCorrelationMatrixData : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
    BridgeResult Put(BridgeData const& data) override;
};
// Correlation matrices in the correlation database.
class SensorCorrelationMatrixDatabase : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
    BridgeResult Post(BridgeData const& data) override;
};

} // namespace bridge
} // namespace tovel

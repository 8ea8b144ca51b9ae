// Presence sensing of a monitor's built-in sensor.
#pragma once

#include "share/bridge.h"

namespace tovel {
namespace bridge {

class SensorAmbrelSense : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
    BridgeResult Put(BridgeData const& data) override;
};
class SensorAmbrelSenseLevel : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
    BridgeResult Put(BridgeData const& data) override;
};

} // namespace bridge
} // namespace tovel

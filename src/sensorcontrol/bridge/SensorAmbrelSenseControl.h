// Presence sensing of a monitor's built-in sensor.
#pragma once

#include "share/bridge.h"

namespace tovel {
namespace bridge {

class SensorAmbrelSense : public Bridge {};
class SensorAmbrelSenseLevel : public Bridge {};

} // namespace bridge
} // namespace tovel

// Discovery and opening: list, name and open sensors; library set-up.
#pragma once

#include "share/bridge.h"

namespace tovel {
namespace bridge {

class Sensors : public Bridge {};
class SensorsName : public Bridge {};
class DeviceID : public Bridge {};
class IndividualID : public Bridge {};
class Monitors : public Bridge {};
class PallastControlPanel : public Bridge {};

} // namespace bridge
} // namespace tovel

// Discovery and opening: list, name and open sensors; library set-up.
#pragma once

#include "share/bridge.h"

namespace tovel {
namespace bridge {

// Open sensors, connected devices and serial adapters (Get); device library
// directory and serial mappings (Put); closing every sensor (Delete).
class Sensors : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
    BridgeResult Put(BridgeData const& data) override;
    BridgeResult Delete(BridgeData const& data) override;
};

// Names of devices by id, or of every open sensor.
class SensorsName : public Bridge {
public:
    BridgeResult Get(BridgeData const& data) override;
};

// Opens a sensor by its device id.
class DeviceID : public Bridge {
public:
    BridgeResult Post(BridgeData const& data) override;
};

// Opens a sensor by its individual id (16 hexadecimal digits).
class IndividualID : public Bridge {
public:
    BridgeResult Post(BridgeData const& data) override;
};

// Opens the sensor built into a monitor named by serial and product.
class Monitors : public Bridge {
public:
    BridgeResult Post(BridgeData const& data) override;
};

// Asks the measurement-device library to show its control panel.
class PallastControlPanel : public Bridge {
public:
    BridgeResult Put(BridgeData const& data) override;
};

} // namespace bridge
} // namespace tovel

// Which of the host-mapped USB serial adapters are plugged in now.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "devices/device_api.h"
#include "quilljson/value.h"
#include "tvl/threading/mutex_posix.h"

namespace tovel {
namespace device {

class SerialUSBConnection {
public:
    static SerialUSBConnection& Instance();

    // Rebuilds the connected list from the USB bus (not enumerated without mappings).
    void update();
    // Replaces the mappings USB device name → device id from a JSON object.
    void setDeviceIDMappings(quilljson::Value const& mappings);
    // [{"deviceID": id}, ...] in list order.
    quilljson::Value connectedDeviceIDs() const;
    // 1 "Exists more data." (writing the id when out is not null) or 0x8000000B past the end.
    DvError enumerate(unsigned long index, MDDeviceID* out) const;

    bool empty() const { return connected_.empty(); }
    size_t size() const { return connected_.size(); }
    MDDeviceID operator[](unsigned long index) const;
    threading::Mutex& mutex() const { return mutex_; }

private:
    SerialUSBConnection() = default;

    std::map<std::string, MDDeviceID> mappings_;
    std::vector<MDDeviceID> connected_;
    mutable threading::Mutex mutex_;
};

} // namespace device
} // namespace tovel

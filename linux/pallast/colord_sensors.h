// colord's sensors as this library sees them: what colord reports, and the ids made from it.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "colord_errors.h"

namespace pallast {

struct SensorInfo {
    std::string objectPath; // as GetSensors answered it; never built by hand
    std::string sensorId, kind, vendor, model, serial;
    std::set<std::string> caps;
    uint32_t deviceID = 0;
    uint64_t individualID = 0;

    bool has(std::string const& cap) const { return caps.count(cap) != 0; }
    // colord's vendor and model, joined by a space.
    std::string name() const;
};

// colord's sensors in the order GetSensors lists them. Without colord (or
// without a bus) the list is empty and code tells why.
std::vector<SensorInfo> listSensors(int32_t* code = nullptr);

// The properties of one sensor object; false with *code set when it is gone.
bool readSensor(std::string const& objectPath, SensorInfo* info, int32_t* code, CallSite site);

} // namespace pallast

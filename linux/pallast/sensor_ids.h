// Device ids and individual ids made from what colord reports (see linux/README.md).
#pragma once

#include <cstdint>
#include <string>

namespace pallast {

// The model: FNV-1a (32 bits) of "colord:" + Kind, with the top bit set so that
// no colord model takes one of the small ids the product treats specially.
uint32_t deviceIDFor(std::string const& kind);

// The instrument: FNV-1a (64 bits) of Kind + "/" + Serial, or of Kind + "/" +
// SensorId when colord reports no serial; never 0 (0 means "cannot be opened
// by individual id").
uint64_t individualIDFor(std::string const& kind, std::string const& serial, std::string const& sensorId);

} // namespace pallast

#include "sensor_ids.h"

namespace pallast {

namespace {

uint32_t fnv1a32(std::string const& text) {
    uint32_t hash = 2166136261u;
    for (unsigned char c : text) {
        hash ^= c;
        hash *= 16777619u;
    }
    return hash;
}

uint64_t fnv1a64(std::string const& text) {
    uint64_t hash = 14695981039346656037ull;
    for (unsigned char c : text) {
        hash ^= c;
        hash *= 1099511628211ull;
    }
    return hash;
}

} // namespace

uint32_t deviceIDFor(std::string const& kind) {
    return fnv1a32("colord:" + kind) | 0x80000000u;
}

uint64_t individualIDFor(std::string const& kind, std::string const& serial, std::string const& sensorId) {
    uint64_t const id = fnv1a64(kind + "/" + (serial.empty() ? sensorId : serial));
    return id != 0 ? id : 1;
}

} // namespace pallast

#include "sensor_ids.h"

namespace pallast {

namespace {

// FNV-1a: the same text gives the same id on every machine and in every run.
template <typename Hash> Hash fnv1a(std::string const& text, Hash basis, Hash prime) {
    Hash hash = basis;
    for (unsigned char c : text) {
        hash ^= c;
        hash *= prime;
    }
    return hash;
}

uint32_t fnv1a32(std::string const& text) {
    return fnv1a<uint32_t>(text, 2166136261u, 16777619u);
}

uint64_t fnv1a64(std::string const& text) {
    return fnv1a<uint64_t>(text, 14695981039346656037ull, 1099511628211ull);
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

// Small pieces shared by the per-sensor endpoints: query tests, capability
// answers and the integer conversions of request values.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "quilljson/value.h"
#include "share/bridge.h"

namespace tovel {
namespace bridge {
namespace detail {

// A query key counts when present, whatever its value.
inline bool HasQuery(BridgeData const& data, char const* key) {
    return data.query.contains(key);
}

// The answer to a "supports" query: the device's capability as a boolean.
inline BridgeResultOK Capability(signed char has) {
    return BridgeResultOK(quilljson::Value(has != 0));
}

// The JSON library's integer conversion (reals rounded half away from zero),
// low 32 bits kept.
inline int32_t Low32(quilljson::Value const& v) {
    return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(v.asInteger())));
}

// A number as an unsigned T: an integer outside T's range, or a real whose
// rounded value lies outside it, gives 0; other kinds give 0 too.
template <typename T> T UnsignedOrZero(quilljson::Value const& v) {
    constexpr uint64_t max = std::numeric_limits<T>::max();
    if (v.isInteger()) {
        int64_t const i = v.getInteger();
        return i < 0 || static_cast<uint64_t>(i) > max ? T(0) : static_cast<T>(i);
    }
    if (v.isDouble()) {
        double const d = std::round(v.getDouble());
        return d >= 0.0 && d <= static_cast<double>(max) ? static_cast<T>(d) : T(0);
    }
    return T(0);
}

// A C text of the device library, the empty text for null.
inline std::string Text(char const* s) {
    return s != nullptr ? std::string(s) : std::string();
}

// A string parameter of a request: its text, or the empty text when it is
// missing or of another type (a number is not read as its digits).
inline std::string StringOrEmpty(quilljson::Value const& v) {
    return v.isString() ? v.stringRef() : std::string();
}

} // namespace detail
} // namespace bridge
} // namespace tovel

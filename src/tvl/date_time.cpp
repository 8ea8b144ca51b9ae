#include "tvl/date_time.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "quilljson/value.h"
#include "tvl/string_utils.h"

namespace tovel {

namespace {

// The integer at [position, position + width) when the text reaches that far.
int32_t piece(std::string const& text, std::string::size_type position, std::string::size_type width,
              int32_t fallback) {
    if (text.size() < position + width) return fallback;
    return string::to<int>(text.substr(position, width));
}

bool fitsInt32(long long v) {
    return v >= std::numeric_limits<int32_t>::min() && v <= std::numeric_limits<int32_t>::max();
}

} // namespace

DateTime DateTime::fromString(std::string const& text) {
    DateTime dt;
    dt.year = piece(text, 0, 4, 2000);
    dt.month = piece(text, 5, 2, 1);
    dt.day = piece(text, 8, 2, 1);
    dt.hour = piece(text, 11, 2, 0);
    dt.minute = piece(text, 14, 2, 0);
    dt.second = piece(text, 17, 2, 0);
    dt.msec = 0;
    return dt;
}

std::string DateTime::toString() const {
    char buffer[96];
    int const n = std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d %02d:%02d:%02d",
                                static_cast<int>(year), static_cast<int>(month), static_cast<int>(day),
                                static_cast<int>(hour), static_cast<int>(minute), static_cast<int>(second));
    return std::string(buffer, n > 0 ? static_cast<size_t>(n) : 0);
}

int32_t JsonToInt32(quilljson::Value const& value) {
    switch (value.type()) {
    case quilljson::Value::Boolean:
        return value.getBool() ? 1 : 0;
    case quilljson::Value::Integer: {
        int64_t const v = value.getInteger();
        return fitsInt32(v) ? static_cast<int32_t>(v) : 0;
    }
    case quilljson::Value::Float: {
        double const r = std::round(value.getDouble());
        // NaN fails both comparisons.
        if (r >= -2147483648.0 && r <= 2147483647.0) return static_cast<int32_t>(r);
        return 0;
    }
    case quilljson::Value::String: {
        std::string const& text = value.stringRef();
        char const* begin = text.c_str();
        char* end = nullptr;
        errno = 0;
        long long const v = std::strtoll(begin, &end, 0);
        if (end != begin + text.size() || errno == ERANGE || !fitsInt32(v)) return 0;
        return static_cast<int32_t>(v);
    }
    default:
        return 0;
    }
}

} // namespace tovel

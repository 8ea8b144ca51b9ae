// Calendar date and time: seven plain fields, no range checks, no normalisation.
#pragma once

#include <cstdint>
#include <string>

namespace quilljson {
class Value;
}

namespace tovel {

class DateTime {
public:
    DateTime() = default;
    DateTime(int32_t year, int32_t month, int32_t day, int32_t hour = 0, int32_t minute = 0,
             int32_t second = 0, int32_t msec = 0)
        : year(year), month(month), day(day), hour(hour), minute(minute), second(second), msec(msec) {}
    virtual ~DateTime() = default;

    // Reads "YYYY-MM-DD hh:mm:ss" by fixed positions; separators are not checked.
    static DateTime fromString(std::string const& text);
    // "YYYY-MM-DD hh:mm:ss", each field zero-padded to its minimum width.
    std::string toString() const;

    int32_t year = 2000;
    int32_t month = 1;
    int32_t day = 1;
    int32_t hour = 0;
    int32_t minute = 0;
    int32_t second = 0;
    int32_t msec = 0;
};

// The lenient 32-bit integer reading of every integer the library reads from
// JSON records: booleans 0/1, integers that fit, reals rounded half away from
// zero when in range, strings read by strtoll base 0 when wholly consumed and
// in range; 0 otherwise.
int32_t JsonToInt32(quilljson::Value const& value);

} // namespace tovel

// Dates, lenient number readings, measured colours and arrays of doubles.
#include "share/json_utils.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace tovel {

using quilljson::Value;

// ---- dates ----

Value ToJson(DateTime const& dt, bool withDateString, bool withSecond, bool withMsec) {
    Value json = Value::object();
    json["year"] = dt.year;
    json["month"] = dt.month;
    json["day"] = dt.day;
    json["hour"] = dt.hour;
    json["minute"] = dt.minute;
    if (withSecond) json["second"] = dt.second;
    if (withMsec) json["msec"] = dt.msec;
    if (withDateString) json["dateString"] = dt.toString();
    return json;
}

DateTime DateTimeFromJson(Value const& value) {
    if (value.isString()) return DateTime::fromString(value.toString(""));
    return DateTime(JsonToInt32(value["year"]), JsonToInt32(value["month"]), JsonToInt32(value["day"]),
                    JsonToInt32(value["hour"]), JsonToInt32(value["minute"]), JsonToInt32(value["second"]),
                    0);
}

DateTime DateTimeFromCSSG2Date(CSSG2_Date const& date) {
    return DateTime(date.year, date.month, date.day, date.hour, date.minute, 0, 0);
}

CSSG2_Date CSSG2DateFromDateTime(DateTime const& dt) {
    CSSG2_Date date;
    date.year = static_cast<uint16_t>(dt.year);
    date.month = static_cast<uint8_t>(dt.month);
    date.day = static_cast<uint8_t>(dt.day);
    date.hour = static_cast<uint8_t>(dt.hour);
    date.minute = static_cast<uint8_t>(dt.minute);
    return date;
}

// ---- lenient readings ----

namespace {

constexpr double kTwoTo63 = 9223372036854775808.0;
constexpr double kTwoTo64 = 18446744073709551616.0;

// The whole text as a number: strtoll with the given base, then (when
// allowReal) strtod through the JSON library's reader.
bool WholeInteger(std::string const& text, int base, long long* out) {
    char const* begin = text.c_str();
    char* end = nullptr;
    errno = 0;
    long long const v = std::strtoll(begin, &end, base);
    if (end != begin + text.size() || errno == ERANGE) return false;
    *out = v;
    return true;
}

bool WholeReal(std::string const& text, double* out) {
    bool ok = false;
    double const d = quilljson::Double::strToDouble(text.c_str(), &ok);
    if (!ok) return false;
    *out = d;
    return true;
}

uint64_t TruncatedUnsigned(double d) {
    // NaN fails the test.
    return d >= 0.0 && d < kTwoTo64 ? static_cast<uint64_t>(d) : 0;
}

int64_t TruncatedSigned(double d) {
    return d >= -kTwoTo63 && d < kTwoTo63 ? static_cast<int64_t>(d) : 0;
}

} // namespace

double JsonToDouble(Value const& value) {
    return value.asDouble();
}

uint16_t JsonToUInt16(Value const& value) {
    switch (value.type()) {
    case Value::Boolean:
        return value.getBool() ? 1 : 0;
    case Value::Integer: {
        int64_t const i = value.getInteger();
        return i < 65536 ? static_cast<uint16_t>(i) : 0;
    }
    case Value::Float: {
        double const r = std::round(value.getDouble());
        return r >= 0.0 && r <= 65535.0 ? static_cast<uint16_t>(r) : 0;
    }
    default: {
        int32_t const i = JsonToInt32(value);
        return i >= 0 && i <= 65535 ? static_cast<uint16_t>(i) : 0;
    }
    }
}

uint64_t JsonToUInt64(Value const& value) {
    switch (value.type()) {
    case Value::Boolean:
        return value.getBool() ? 1 : 0;
    case Value::Integer:
        return static_cast<uint64_t>(value.getInteger());
    case Value::Float: {
        double const r = std::round(value.getDouble());
        return r >= 0.0 && r <= kTwoTo63 ? static_cast<uint64_t>(r) : 0;
    }
    case Value::String: {
        long long v = 0;
        return WholeInteger(value.stringRef(), 0, &v) ? static_cast<uint64_t>(v) : 0;
    }
    default:
        return 0;
    }
}

uint64_t JsonToUInt64Truncating(Value const& value) {
    switch (value.type()) {
    case Value::Boolean:
        return value.getBool() ? 1 : 0;
    case Value::Integer: {
        int64_t const i = value.getInteger();
        return i < 0 ? 0 : static_cast<uint64_t>(i);
    }
    case Value::Float:
        return TruncatedUnsigned(value.getDouble());
    case Value::String: {
        long long i = 0;
        if (WholeInteger(value.stringRef(), 10, &i)) return i < 0 ? 0 : static_cast<uint64_t>(i);
        double d = 0.0;
        return WholeReal(value.stringRef(), &d) ? TruncatedUnsigned(d) : 0;
    }
    default:
        return 0;
    }
}

int64_t JsonToInt64Truncating(Value const& value) {
    switch (value.type()) {
    case Value::Boolean:
        return value.getBool() ? 1 : 0;
    case Value::Integer:
        return value.getInteger();
    case Value::Float:
        return TruncatedSigned(value.getDouble());
    case Value::String: {
        long long i = 0;
        if (WholeInteger(value.stringRef(), 10, &i)) return i;
        double d = 0.0;
        return WholeReal(value.stringRef(), &d) ? TruncatedSigned(d) : 0;
    }
    default:
        return 0;
    }
}

// ---- measured colours ----

namespace {

// The colour members by their letters; the letters not listed map to null.
struct ComponentTable {
    double colour::*member[256];
    constexpr ComponentTable() : member() {
        struct Letter {
            char letter;
            double colour::*member;
        } const letters[] = {{'X', &colour::X}, {'Y', &colour::Y}, {'Z', &colour::Z}, {'x', &colour::x},
                             {'y', &colour::y}, {'L', &colour::L}, {'a', &colour::a}, {'b', &colour::b},
                             {'C', &colour::C}, {'h', &colour::h}, {'T', &colour::T}, {'R', &colour::R},
                             {'G', &colour::G}, {'B', &colour::B}, {'M', &colour::M}, {'K', &colour::K}};
        for (Letter const& l : letters)
            member[static_cast<unsigned char>(l.letter)] = l.member;
    }
};
constexpr ComponentTable kComponents;

} // namespace

Value ToJson(colour const& c, std::string const& components) {
    Value json = Value::object();
    for (char const letter : components)
        if (double colour::*const member = kComponents.member[static_cast<unsigned char>(letter)])
            json.setMemberInOrder(std::string(1, letter), c.*member);
    return json;
}

// ---- arrays ----

Value ToJson(double const* values, unsigned long count) {
    Value json = Value::array();
    for (unsigned long i = 0; i < count; ++i)
        json.append(Value(values[i]));
    return json;
}

Value ToJson(double const (*matrix)[3]) {
    Value json = Value::array();
    for (int r = 0; r < 3; ++r)
        json.append(ToJson(matrix[r], 3));
    return json;
}

void ApplyFromJson(Value const& json, double* out, unsigned long count) {
    if (!json.isArray()) return;
    Value::ArrayType const& elements = json.arrayRef();
    for (unsigned long i = 0; i < count && i < elements.size(); ++i)
        out[i] = JsonToDouble(elements[i]);
}

void ApplyFromJson(Value const& json, double (*out)[3][3]) {
    for (int r = 0; r < 3; ++r)
        ApplyFromJson(json[r], (*out)[r], 3);
}

} // namespace tovel

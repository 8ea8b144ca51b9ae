// Number text shared by Value::toString and the serializer (internal header).
#pragma once

#include <charconv>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace quilljson {
namespace detail {

// Longest outputs: "-9223372036854775808" (20) and "-2.2250738585072014e-308" (24).
constexpr int kNumberTextMax = 32;

// Writes v as "%lld" would and returns the end. Two digits per step from a pair table.
inline char* writeInteger(char* out, int64_t v) noexcept {
    static char const kPairs[] =
        "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
        "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
        "8081828384858687888990919293949596979899";
    uint64_t u = static_cast<uint64_t>(v);
    if (v < 0) {
        *out++ = '-';
        u = 0 - u; // also right for INT64_MIN
    }
    char buf[24];
    char* p = buf + sizeof buf;
    while (u >= 100) {
        unsigned const pair = static_cast<unsigned>(u % 100) * 2;
        u /= 100;
        *--p = kPairs[pair + 1];
        *--p = kPairs[pair];
    }
    if (u >= 10) {
        *--p = kPairs[u * 2 + 1];
        *--p = kPairs[u * 2];
    } else {
        *--p = static_cast<char>('0' + u);
    }
    size_t const n = static_cast<size_t>(buf + sizeof buf - p);
    std::memcpy(out, p, n);
    return out + n;
}

// Writes a finite, non-zero double as "%.17g" with '.' as the decimal point and
// returns the end. std::to_chars with a precision is defined as printf in the C
// locale, so no locale lookup is needed on that path.
inline char* writeDouble(char* out, double d) noexcept {
#if defined(__cpp_lib_to_chars)
    return std::to_chars(out, out + kNumberTextMax, d, std::chars_format::general, 17).ptr;
#else
    char buf[128] = {};
    int n = std::snprintf(buf, sizeof buf - 1, "%.17g", d);
    if (n < 0) n = 0;
    char const point = *std::localeconv()->decimal_point;
    for (int i = 0; i < n; ++i)
        *out++ = buf[i] == point ? '.' : buf[i];
    return out;
#endif
}

} // namespace detail
} // namespace quilljson

// Number text shared by Value::toString and the serializer (internal header).
#pragma once

#include <charconv>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "pow5_table.h"

namespace quilljson {
namespace detail {

// Longest outputs: "-9223372036854775808" (20) and "-2.2250738585072014e-308" (24).
constexpr int kNumberTextMax = 32;

inline char const* digitPairs() {
    static char const kPairs[] =
        "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
        "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
        "8081828384858687888990919293949596979899";
    return kPairs;
}

// Writes the digits of u backwards, two at a time, ending at end.
template <typename U> inline void writeDigitsBackwards(char* end, U u) noexcept {
    char const* pairs = digitPairs();
    while (u >= 100) {
        unsigned const pair = static_cast<unsigned>(u % 100) * 2;
        u /= 100;
        end -= 2;
        std::memcpy(end, pairs + pair, 2);
    }
    if (u >= 10)
        std::memcpy(end - 2, pairs + u * 2, 2);
    else
        end[-1] = static_cast<char>('0' + u);
}

// Writes v as "%lld" would and returns the end. The length is counted first
// so the digits go straight to their place; 32-bit arithmetic when it fits.
inline char* writeInteger(char* out, int64_t v) noexcept {
    uint64_t u = static_cast<uint64_t>(v);
    if (v < 0) {
        *out++ = '-';
        u = 0 - u; // also right for INT64_MIN
    }
    int n = 1;
    for (uint64_t rest = u;; rest /= 10000, n += 4) {
        if (rest < 10) break;
        if (rest < 100) {
            n += 1;
            break;
        }
        if (rest < 1000) {
            n += 2;
            break;
        }
        if (rest < 10000) {
            n += 3;
            break;
        }
    }
    if (u <= 0xFFFFFFFFu)
        writeDigitsBackwards(out + n, static_cast<uint32_t>(u));
    else
        writeDigitsBackwards(out + n, u);
    return out + n;
}

// The 17 significant digits of a positive normal double d = m * 2^e2 as
// N * 10^(k - 16), N in [10^16, 10^17), rounded to nearest like printf.
// Computed as m * 5^q * 2^(e2 + q) with q = 16 - k and a 128-bit 5^q from the
// power table: the product's error is far below the last bit kept, so the
// rounding is exact unless the dropped fraction is within a hair of 0, 1/2
// or 1; those rare cases (and exact halfway ones) return false.
inline bool seventeenDigits(uint64_t m, int e2, uint64_t& digits, int& k) noexcept {
    constexpr uint64_t kLow = 10000000000000000ULL; // 10^16
    constexpr uint64_t kHigh = kLow * 10;
    k = static_cast<int>(((static_cast<int64_t>(e2) + 52) * 78913) >> 18); // floor(log10(d)), or one below
    for (int attempt = 0; attempt < 2; ++attempt) {
        int const q = 16 - k;
        if (q < kPow5Min || q > kPow5Max) return false;
        size_t const index = 2 * static_cast<size_t>(q - kPow5Min);
        unsigned __int128 const high = static_cast<unsigned __int128>(m) * kPow5[index];
        unsigned __int128 const low = static_cast<unsigned __int128>(m) * kPow5[index + 1];
        // 192-bit product p2:p1:p0
        uint64_t const p0 = static_cast<uint64_t>(low);
        unsigned __int128 const mid = (high & ~uint64_t(0)) + (low >> 64);
        uint64_t const p1 = static_cast<uint64_t>(mid);
        uint64_t const p2 = static_cast<uint64_t>((high >> 64) + (mid >> 64));
        // 5^q = T * 2^(floor(log2 5^q) - 127)
        int const shift = -((((152170 * static_cast<int64_t>(q)) >> 16) - 127) + e2 + q);
        int const t = shift - 64; // bits of p2:p1 below the integer part
        if (t <= 0 || t >= 64) return false;
        if ((p2 >> t) != 0) { // 2^64 or more: k was too small
            ++k;
            continue;
        }
        uint64_t const n = (p2 << (64 - t)) | (p1 >> t);
        uint64_t const fraction = (p1 << (64 - t)) | (p0 >> t); // top 64 bits of what is dropped
        if (n < kLow) {
            --k;
            continue;
        }
        if (n >= kHigh) {
            ++k;
            continue;
        }
        constexpr uint64_t kMargin = 1u << 12;
        constexpr uint64_t kHalf = uint64_t(1) << 63;
        if (fraction < kMargin || fraction > ~uint64_t(0) - kMargin ||
            (fraction > kHalf - kMargin && fraction < kHalf + kMargin))
            return false;
        digits = n + (fraction > kHalf ? 1 : 0);
        if (digits == kHigh) {
            digits = kLow;
            ++k;
        }
        return true;
    }
    return false;
}

// The eight decimal digits of v < 10^8 as byte values 0..9, the first digit in
// the lowest byte: two 4-digit halves, then pairs, then digits, each step one
// multiply-shift on all lanes at once (exact for the ranges involved), so the
// two halves of a 17-digit number convert independently of each other instead
// of in one chain of 64-bit divisions.
inline uint64_t eightDigitBytes(uint32_t v) noexcept {
    uint64_t x = (v / 10000) | (static_cast<uint64_t>(v % 10000) << 32);
    uint64_t q = ((x * 10486) >> 20) & 0x0000007F0000007FULL; // lane / 100
    x = q | ((x - q * 100) << 16);
    q = ((x * 103) >> 10) & 0x000F000F000F000FULL; // lane / 10
    return q | ((x - q * 10) << 8);
}

inline void storeDigitBytes(char* out, uint64_t digits) noexcept {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    digits = __builtin_bswap64(digits);
#endif
    digits |= 0x3030303030303030ULL;
    std::memcpy(out, &digits, 8);
}

// Index (0..7) of the last non-zero digit of eightDigitBytes' result, which must
// not be 0.
inline int lastNonZeroDigit(uint64_t digits) noexcept {
    return (63 - __builtin_clzll(digits)) >> 3;
}

// Lays out 17 digits as "%.17g" does: fixed notation for exponents -4..16,
// else d.ddde+XX; trailing zeros of the fraction and a bare point dropped.
inline char* layoutSeventeen(char* out, uint64_t n, int k) noexcept {
    constexpr uint64_t kLow = 10000000000000000ULL; // 10^16
    char d[17];
    uint64_t const lead = n / kLow;
    uint64_t const rest = n - lead * kLow;
    uint32_t const upper = static_cast<uint32_t>(rest / 100000000);
    uint32_t const lower = static_cast<uint32_t>(rest - uint64_t(upper) * 100000000);
    uint64_t const upperDigits = eightDigitBytes(upper);
    uint64_t const lowerDigits = eightDigitBytes(lower);
    d[0] = static_cast<char>('0' + lead);
    storeDigitBytes(d + 1, upperDigits);
    storeDigitBytes(d + 9, lowerDigits);
    int const last = lowerDigits   ? 9 + lastNonZeroDigit(lowerDigits)
                     : upperDigits ? 1 + lastNonZeroDigit(upperDigits)
                                   : 0; // the last digit that is kept
    if (k >= -4 && k < 17) {
        if (k < 0) {
            std::memcpy(out, "0.0000", static_cast<size_t>(1 - k));
            out += 1 - k;
            std::memcpy(out, d, static_cast<size_t>(last + 1));
            return out + last + 1;
        }
        std::memcpy(out, d, static_cast<size_t>(k + 1));
        out += k + 1;
        if (last > k) {
            *out++ = '.';
            std::memcpy(out, d + k + 1, static_cast<size_t>(last - k));
            out += last - k;
        }
        return out;
    }
    *out++ = d[0];
    if (last > 0) {
        *out++ = '.';
        std::memcpy(out, d + 1, static_cast<size_t>(last));
        out += last;
    }
    *out++ = 'e';
    *out++ = k < 0 ? '-' : '+';
    unsigned const x = static_cast<unsigned>(k < 0 ? -k : k);
    if (x >= 100) *out++ = static_cast<char>('0' + x / 100);
    std::memcpy(out, digitPairs() + (x % 100) * 2, 2);
    return out + 2;
}

// Writes a finite, non-zero double as "%.17g" with '.' as the decimal point and
// returns the end. Normal doubles take the exact fast path above; the rest,
// and its undecided cases, std::to_chars with a precision, which is defined as
// printf in the C locale (so no locale lookup is needed on either path).
inline char* writeDouble(char* out, double d) noexcept {
    uint64_t bits;
    std::memcpy(&bits, &d, sizeof bits);
    int const biased = static_cast<int>((bits >> 52) & 0x7FF);
    if (biased != 0) {
        uint64_t const m = (bits & ((uint64_t(1) << 52) - 1)) | (uint64_t(1) << 52);
        uint64_t n;
        int k;
        if (seventeenDigits(m, biased - 1075, n, k)) {
            if (bits >> 63) *out++ = '-';
            return layoutSeventeen(out, n, k);
        }
    }
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

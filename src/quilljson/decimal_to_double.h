// Correctly rounded conversion of w * 10^q to a double (internal header).
//
// The parser collects up to 19 significant digits of a number into w while it
// scans the text; this turns them into the double strtod would give, without
// reading the text again. Small cases are one exact multiplication or division
// (both operands exact, so the single rounding is the correct one); the rest
// use the Eisel-Lemire method: multiply the normalised w by a 128-bit
// approximation of 5^q and round the top bits, which is exact for w < 10^19.
#pragma once

#include <cstdint>
#include <cstring>

#include "pow5_table.h"

namespace quilljson {
namespace detail {

// Sets d and returns true, or returns false when the result would overflow to
// infinity or underflow to zero (the caller then asks strtod). w must not be 0.
inline bool decimalToDouble(uint64_t w, int64_t q, bool negative, double& d) noexcept {
    static constexpr double kPow10[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                        1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                        1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    if (q >= -22 && q <= 22 && w <= (uint64_t(1) << 53)) {
        d = static_cast<double>(w);
        d = q < 0 ? d / kPow10[-q] : d * kPow10[q];
        if (negative) d = -d;
        return true;
    }
    if (q < kPow5Min || q > kPow5Max) return false;

    int const lz = __builtin_clzll(w);
    w <<= lz;
    size_t const index = 2 * static_cast<size_t>(q - kPow5Min);
    unsigned __int128 const first = static_cast<unsigned __int128>(w) * kPow5[index];
    uint64_t high = static_cast<uint64_t>(first >> 64);
    uint64_t low = static_cast<uint64_t>(first);
    // 52 mantissa bits + 3: when the bits below them are all ones the
    // truncated power may matter, so add the next 64 bits of it.
    constexpr uint64_t kMask = ~uint64_t(0) >> 55;
    if ((high & kMask) == kMask) {
        uint64_t const second =
            static_cast<uint64_t>((static_cast<unsigned __int128>(w) * kPow5[index + 1]) >> 64);
        low += second;
        if (second > low) ++high;
    }
    int const upper = static_cast<int>(high >> 63);
    int const shift = upper + 64 - 52 - 3;
    uint64_t mantissa = high >> shift;
    // floor(log2(10^q)) + 63, plus the bias.
    int64_t power2 = (((152170 + 65536) * q) >> 16) + 63 + upper - lz + 1023;

    if (power2 <= 0) { // subnormal, or just below the smallest normal before rounding
        if (-power2 + 1 >= 64) return false;
        mantissa >>= -power2 + 1;
        mantissa += mantissa & 1;
        mantissa >>= 1;
        power2 = mantissa < (uint64_t(1) << 52) ? 0 : 1;
    } else {
        // An exact halfway case rounds to even (only possible for small q).
        if (low <= 1 && q >= -4 && q <= 23 && (mantissa & 3) == 1 && (mantissa << shift) == high)
            mantissa &= ~uint64_t(1);
        mantissa += mantissa & 1;
        mantissa >>= 1;
        if (mantissa >= (uint64_t(2) << 52)) {
            mantissa = uint64_t(1) << 52;
            ++power2;
        }
        mantissa &= ~(uint64_t(1) << 52);
        if (power2 >= 0x7FF) return false;
    }
    if (mantissa == 0 && power2 == 0) return false;
    uint64_t const bits =
        mantissa | (static_cast<uint64_t>(power2) << 52) | (negative ? uint64_t(1) << 63 : 0);
    std::memcpy(&d, &bits, sizeof d);
    return true;
}

} // namespace detail
} // namespace quilljson

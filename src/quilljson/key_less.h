// The order of object members: byte-wise, exactly as std::less<std::string>
// orders them, with the first 16 bytes compared in registers instead of a
// call to memcmp. Building a map whose keys arrive out of order compares a
// key with several others, and most keys differ within their first 16 bytes.
#pragma once

#include <cstring>
#include <string>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// A std::string can be read 16 bytes at a time from data(), whatever its
// length: libstdc++ (its C++11 string; the old reference-counted one keeps
// short texts in blocks just their size) keeps a text shorter than 16 bytes
// in a 16-byte buffer inside the string object and a longer one in a heap
// block of at least 17 bytes, and libc++'s short buffer is 23 bytes. The
// bytes past the text may be unwritten, which only MemorySanitizer would
// object to; their bits are masked off. AddressSanitizer with libc++ may
// mark the unused capacity of a long string as unreadable, so that build
// compares byte by byte.
#if defined(__SSE2__) && ((defined(__GLIBCXX__) && _GLIBCXX_USE_CXX11_ABI) || defined(_LIBCPP_VERSION))
#if defined(__has_feature)
#if __has_feature(memory_sanitizer) || (defined(_LIBCPP_VERSION) && __has_feature(address_sanitizer))
#define QUILLJSON_SHORT_STRING_LOAD 0
#endif
#endif
#ifndef QUILLJSON_SHORT_STRING_LOAD
#define QUILLJSON_SHORT_STRING_LOAD 1
#endif
#else
#define QUILLJSON_SHORT_STRING_LOAD 0
#endif

namespace quilljson {
namespace detail {

struct KeyLess {
    bool operator()(std::string const& a, std::string const& b) const noexcept {
#if QUILLJSON_SHORT_STRING_LOAD
        size_t const sizeA = a.size();
        size_t const sizeB = b.size();
        size_t const common = sizeA < sizeB ? sizeA : sizeB;
        __m128i const x = _mm_loadu_si128(reinterpret_cast<__m128i const*>(a.data()));
        __m128i const y = _mm_loadu_si128(reinterpret_cast<__m128i const*>(b.data()));
        unsigned const inText = common < 16 ? (1u << common) - 1 : 0xFFFFu;
        unsigned const differ = ~static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(x, y))) & inText;
        if (differ != 0) {
            unsigned const i = static_cast<unsigned>(__builtin_ctz(differ));
            return static_cast<unsigned char>(a[i]) < static_cast<unsigned char>(b[i]);
        }
        if (common > 16) {
            int const c = std::memcmp(a.data() + 16, b.data() + 16, common - 16);
            if (c != 0) return c < 0;
        }
        return sizeA < sizeB;
#else
        return a < b;
#endif
    }
};

} // namespace detail
} // namespace quilljson

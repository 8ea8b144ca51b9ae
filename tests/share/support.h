// Helpers of the request-framework tests.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "quilljson/parser.h"
#include "quilljson/serializer.h"
#include "share/bridge.h"

inline quilljson::Value Parse(std::string const& text) {
    quilljson::Value v;
    EXPECT_TRUE(quilljson::Parser().parse(&v, text)) << text;
    return v;
}

inline std::string Text(quilljson::Value const& v) {
    return quilljson::Serializer::toText(v);
}

// Gives the i-th double of a record of doubles the value start + step * i.
template <typename T> void FillDoubles(T* record, double start, double step = 1.0) {
    static_assert(sizeof(T) % sizeof(double) == 0, "a record of doubles");
    double* d = reinterpret_cast<double*>(record);
    for (size_t i = 0; i < sizeof(T) / sizeof(double); ++i)
        d[i] = start + step * static_cast<double>(i);
}

// Runs the check (a function) in a fresh process (a death test: the test binary
// started again for this one test), so that process-wide state (promise
// counter, singletons, settings read once) starts from scratch.
#define EXPECT_ISOLATED(...)                                                                                 \
    do {                                                                                                     \
        ::testing::GTEST_FLAG(death_test_style) = "threadsafe";                                              \
        EXPECT_EXIT(                                                                                         \
            {                                                                                                \
                (__VA_ARGS__)();                                                                             \
                std::fflush(nullptr);                                                                        \
                _exit(::testing::Test::HasFailure() ? 1 : 0);                                                \
            },                                                                                               \
            ::testing::ExitedWithCode(0), "");                                                               \
    } while (false)

struct Fetched {
    uint32_t id = 0;
    uint32_t status = 0;
    std::string text;
};

// Runs the endpoint as an export does, then fetches the response the way a host does.
inline Fetched Request(BridgeTemplate& endpoint, char const* request, char const* parameters = "",
                       char const* query = "", char const* data = "") {
    Fetched f;
    f.id = tovel::RunEndpointGuarded(endpoint, request, parameters, query, data);
    uint32_t length = 0;
    uint32_t const first = BridgeHelperGetResponse(f.id, nullptr, &length);
    if (length == 0) return f;
    std::string buffer(length, '\x7f');
    f.status = BridgeHelperGetResponse(f.id, &buffer[0], &length);
    EXPECT_EQ(first, f.status);
    EXPECT_EQ(buffer.back(), '\0');
    f.text = buffer.c_str();
    return f;
}

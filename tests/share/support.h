// Helpers of the request-framework tests.
//
// Runs a check in a fresh process: the test binary is started again for this
// one test, so process-wide state (promise counter, singletons, settings read
// once) starts from scratch. The check returns "" on success, else what failed.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <sstream>
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

inline void RunIsolatedCheck(std::function<std::string()> const& check) {
    std::string const failure = check();
    if (!failure.empty()) std::fprintf(stderr, "%s\n", failure.c_str());
    std::fflush(stderr);
    _exit(failure.empty() ? 0 : 1);
}

#define EXPECT_ISOLATED(...)                                                                                 \
    do {                                                                                                     \
        ::testing::GTEST_FLAG(death_test_style) = "threadsafe";                                              \
        EXPECT_EXIT(RunIsolatedCheck(__VA_ARGS__), ::testing::ExitedWithCode(0), "");                        \
    } while (false)

// "expected X, got Y" when they differ.
template <typename A, typename B> std::string Mismatch(char const* what, A const& expected, B const& actual) {
    if (expected == actual) return "";
    std::ostringstream s;
    s << what << ": expected " << expected << ", got " << actual << "\n";
    return s.str();
}

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

// Checks shared by the per-sensor endpoint tests.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/host.h"
#include "quilljson/serializer.h"

namespace sensortest {

// The envelope of a failed device call: 500 "DvError", the code as its
// unsigned reading and the action text.
inline void ExpectDvError(host::Response const& r, uint32_t code, std::string const& reason) {
    EXPECT_EQ(500u, r.status) << r.text;
    EXPECT_EQ("DvError", r.errorName()) << r.text;
    EXPECT_EQ(quilljson::Value(static_cast<int64_t>(code)), r.error()["code"]) << r.text;
    EXPECT_EQ(reason, r.error()["reason"].toString("")) << r.text;
    EXPECT_TRUE(r.value().isNull()) << r.text;
}

inline void ExpectBadRequest(host::Response const& r, std::string const& message) {
    EXPECT_EQ(400u, r.status) << r.text;
    EXPECT_EQ("BadRequestError", r.errorName()) << r.text;
    EXPECT_EQ(message, r.errorMessage()) << r.text;
}

inline void ExpectOK(host::Response const& r, quilljson::Value const& value) {
    EXPECT_EQ(200u, r.status) << r.text;
    EXPECT_EQ(value, r.value()) << r.text;
    EXPECT_TRUE(r.error().isNull()) << r.text;
}

// The journal as text, for failure messages.
inline std::string JournalText() { return quilljson::Serializer::toText(host::Journal()); }

inline std::vector<std::string> Functions() { return host::JournalFunctions(); }
using host::FirstCall;

inline bool Called(std::string const& function) { return !FirstCall(function).isNull(); }

// The argument at index of the first call of function (null when not called).
inline quilljson::Value Arg(std::string const& function, unsigned long index) {
    return FirstCall(function)["args"][index];
}

// {key: value}
inline quilljson::Value Object(std::string const& key, quilljson::Value const& value) {
    quilljson::Value v = quilljson::Value::object();
    v[key] = value;
    return v;
}

constexpr uint32_t kFailed = 0x80000000;
constexpr int32_t kInvalidArgument = static_cast<int32_t>(0x80000001);

} // namespace sensortest

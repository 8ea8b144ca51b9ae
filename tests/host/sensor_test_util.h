// Checks shared by the per-sensor endpoint tests.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/host.h"
#include "quilljson/parser.h"
#include "quilljson/serializer.h"

namespace sensortest {

using quilljson::Value;

inline Value Json(std::string const& text) {
    Value v;
    EXPECT_TRUE(quilljson::Parser().parse(&v, text)) << text;
    return v;
}

// The envelope of a failed device call: 500 and exactly {"code": the unsigned
// reading, "message", "name": "DvError", "reason": the action text}.
inline void ExpectDvError(host::Response const& r, uint32_t code, std::string const& reason) {
    EXPECT_EQ(500u, r.status) << r.text;
    EXPECT_EQ("DvError", r.errorName()) << r.text;
    EXPECT_EQ(Value(static_cast<int64_t>(code)), r.error()["code"]) << r.text;
    EXPECT_EQ(Value(reason), r.error()["reason"]) << r.text;
    EXPECT_EQ(4u, r.error().size()) << r.text;
    EXPECT_TRUE(r.value().isNull()) << r.text;
}

inline void ExpectBadRequest(host::Response const& r, std::string const& message) {
    EXPECT_EQ(400u, r.status) << r.text;
    EXPECT_EQ("BadRequestError", r.errorName()) << r.text;
    EXPECT_EQ(message, r.errorMessage()) << r.text;
}

inline void ExpectOK(host::Response const& r, Value const& value) {
    EXPECT_EQ(200u, r.status) << r.text;
    EXPECT_EQ(value, r.value()) << r.text;
    EXPECT_TRUE(r.error().isNull()) << r.text;
}

constexpr auto Functions = &host::JournalFunctions; // names of the device calls, in order
inline std::string JournalText() {
    return quilljson::Serializer::toText(host::Journal());
}
using host::FirstCall;
// The argument at index of the first call of function (null when not called).
inline Value Arg(std::string const& function, unsigned long index) {
    return FirstCall(function)["args"][index];
}
inline bool Called(std::string const& function) {
    return !FirstCall(function).isNull();
}

// Loads the default world changed by edit (before any sensor is opened).
template <typename Edit> void LoadEditedWorld(Edit edit) {
    Value world = host::World();
    edit(world);
    host::LoadScenario(quilljson::Serializer::toText(world));
}

constexpr uint32_t kFailed = 0x80000000;

} // namespace sensortest

#include <gtest/gtest.h>

#include "share/bridge_result.h"
#include "share/error_check.h"

using quilljson::Value;
using tovel::BridgeCheckDvError;
using tovel::dverror_string;
using tovel::MakeDvError;

namespace {

DvError Code(uint32_t code) {
    return MakeDvError(static_cast<int32_t>(code));
}

} // namespace

TEST(DvErrorString, TableEdges) {
    struct Case {
        uint32_t code;
        char const* message;
    } const cases[] = {
        {0, "OK."},
        {4, "OK but data is not corrected."},
        {5, "Undefined error."},
        {0x80000000, "Failed."},
        {0x80000006, "Unknown."},
        {0x8000000E, "Long proc lock is wait."},
        {0x8000001F, "Rejected by critical section."},
        {0x80000020, "Undefined error."},
        {0x80010000, "Undefined error."},
        {0x80010001, "Monitor connection error."},
        {0x80010007, "Siggenerator error."},
        {0x8001000A, "Monitor critical section is owned."},
        {0x8001000B, "Undefined error."},
        {0xffffffff, "Undefined error."},
    };
    for (auto const& c : cases)
        EXPECT_EQ(dverror_string(Code(c.code)), c.message) << std::hex << c.code;
}

// Successes, notes and "Unknown." pass; any other failure throws its code (the
// unsigned reading), without a reason when none is given (the envelope test
// has one).
TEST(BridgeCheckDvError, PassesNotesAndUnknownThrowsTheRest) {
    for (uint32_t code : {0u, 1u, 4u, 5u, 0x7fffffffu, 0x80000006u})
        EXPECT_NO_THROW(BridgeCheckDvError(Code(code), "Measure XYZ.")) << std::hex << code;
    try {
        BridgeCheckDvError(Code(0xffffffff), "");
        ADD_FAILURE() << "no throw";
    } catch (BridgeResultError const& e) {
        EXPECT_EQ(e.status, 500u);
        EXPECT_EQ(e.error.name + " " + e.error.message, "DvError Undefined error.");
        EXPECT_EQ(Value(4294967295L), e.error.value["code"]);
        EXPECT_TRUE(e.error.value.size() == 1 && e.value.isNull());
    }
}

TEST(BridgeError, EmptyOnlyWithoutTextsAndWithAnEmptyDetail) {
    Value object, array;
    object["a"] = 1;
    array.append(Value());
    for (Value const& detail : {Value(), Value(0), Value(true), Value(""), Value::array(), Value::object()}) {
        BridgeError e;
        e.value = detail;
        EXPECT_TRUE(e.empty()) << e.value.toString("container");
    }
    for (Value const& detail : {Value("x"), object, array}) {
        BridgeError e;
        e.value = detail;
        EXPECT_FALSE(e.empty()) << e.value.toString("container");
    }
    EXPECT_FALSE(BridgeError("", "m").empty());
    EXPECT_FALSE(BridgeError("n", "").empty());
}

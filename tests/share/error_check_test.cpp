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
        {0x7fffffff, "Undefined error."},
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
        {0x80020001, "Undefined error."},
        {0xffffffff, "Undefined error."},
    };
    for (auto const& c : cases)
        EXPECT_EQ(dverror_string(Code(c.code)), c.message) << std::hex << c.code;
}

TEST(BridgeCheckDvError, PassesSuccessesNotesAndUnknown) {
    for (uint32_t code : {0u, 1u, 4u, 5u, 0x7fffffffu, 0x80000006u})
        EXPECT_NO_THROW(BridgeCheckDvError(Code(code), "Measure XYZ.")) << std::hex << code;
}

TEST(BridgeCheckDvError, ThrowsTheUnsignedCodeAndTheReason) {
    struct Case {
        uint32_t code;
        char const* reason;
        Value detail;
    } cases[] = {{0x80000005, "Open sensor.", Value()}, {0xffffffff, "", Value()}};
    cases[0].detail["code"] = 2147483653L;
    cases[0].detail["reason"] = "Open sensor.";
    cases[1].detail["code"] = 4294967295L;
    for (auto const& c : cases) {
        try {
            BridgeCheckDvError(Code(c.code), c.reason);
            ADD_FAILURE() << "no throw";
        } catch (BridgeResultError const& e) {
            EXPECT_EQ(e.status, 500u);
            EXPECT_EQ(e.error.name, "DvError");
            EXPECT_EQ(e.error.message, dverror_string(Code(c.code)));
            EXPECT_TRUE(e.error.value == c.detail) << c.reason;
            EXPECT_TRUE(e.value.isNull());
        }
    }
}

TEST(BridgeError, EmptyOnlyWithoutTextsAndWithAnEmptyDetail) {
    auto withDetail = [](Value const& v) {
        BridgeError e;
        e.value = v;
        return e.empty();
    };
    Value object;
    object["a"] = 1;
    EXPECT_TRUE(withDetail(Value()));
    EXPECT_TRUE(withDetail(Value(0)));
    EXPECT_TRUE(withDetail(Value(2.5)));
    EXPECT_TRUE(withDetail(Value(true)));
    EXPECT_TRUE(withDetail(Value("")));
    EXPECT_TRUE(withDetail(Value::array()));
    EXPECT_TRUE(withDetail(Value::object()));
    EXPECT_FALSE(withDetail(Value("x")));
    EXPECT_FALSE(withDetail(object));
    Value array;
    array.append(Value());
    EXPECT_FALSE(withDetail(array));
    EXPECT_FALSE(BridgeError("", "m").empty());
    EXPECT_FALSE(BridgeError("n", "").empty());
}

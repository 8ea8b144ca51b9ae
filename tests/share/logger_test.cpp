#include <gtest/gtest.h>

#include "share/bridge_result.h"
#include "share/logger_base.h"

using quilljson::Value;
using tovel::LoggerBase;
using tovel::LorvantLevel;

namespace {

std::string Line(BridgeResult const& result, LorvantLevel* level) {
    return LoggerBase::resultLine("/host/Sensors/7/XYZ", "PUT", result, level);
}

BridgeResult WithStatus(uint32_t status) {
    BridgeResult r;
    r.status = status;
    r.error = BridgeError("Error", "Not found.");
    return r;
}

} // namespace

TEST(ResultLine, SuccessIsTheRange200To299AndAnErrorCodeIsHex) {
    LorvantLevel level = tovel::LorvantLevelInfo;
    EXPECT_EQ(Line(WithStatus(299), &level),
              "statusCode:299\tmethod:PUT\turi:/host/Sensors/7/XYZ\tmsg:Success");
    EXPECT_EQ(level, 2);
    for (uint32_t status : {199u, 300u, 0u, 404u}) {
        level = tovel::LorvantLevelInfo;
        EXPECT_EQ(Line(WithStatus(status), &level),
                  "statusCode:" + std::to_string(status) +
                      "\tmethod:PUT\turi:/host/Sensors/7/XYZ\terr:Error\tmsg:Not found.");
        EXPECT_EQ(level, 5);
    }
    // A detail's code in hex when it is a number (80000001 is checked in the exports' lines).
    struct Case {
        Value code;
        char const* suffix;
    } const cases[] = {
        {Value(10.5), "\tcode:0000000b"},
        {Value(-1), "\tcode:ffffffffffffffff"},
        {Value(0x123456789L), "\tcode:123456789"},
        {Value("12"), ""},
        {Value(true), ""},
    };
    for (auto const& c : cases) {
        BridgeResult r = WithStatus(500);
        r.error.value["code"] = c.code;
        EXPECT_EQ(Line(r, &level),
                  "statusCode:500\tmethod:PUT\turi:/host/Sensors/7/XYZ\terr:Error\tmsg:Not found." +
                      std::string(c.suffix));
    }
}

#include <gtest/gtest.h>

#include "quilljson/value.h"
#include "tvl/date_time.h"

using quilljson::Value;
using tovel::DateTime;

namespace {

std::string Fields(DateTime const& d) {
    char text[128];
    snprintf(text, sizeof text, "%d %d %d %d %d %d %d", d.year, d.month, d.day, d.hour, d.minute, d.second,
             d.msec);
    return text;
}

} // namespace

TEST(DateTime, ReadsFixedPositionsWithDefaults) {
    EXPECT_EQ(Fields(DateTime::fromString("")), "2000 1 1 0 0 0 0");
    EXPECT_EQ(Fields(DateTime::fromString("2024-05-07")), "2024 5 7 0 0 0 0");
    EXPECT_EQ(Fields(DateTime::fromString("2024/05/07 10:11:12")), "2024 5 7 10 11 12 0");
    // Month from the piece "5-", day missing because the text is shorter than ten.
    EXPECT_EQ(Fields(DateTime::fromString("2024-5-7")), "2024 5 1 0 0 0 0");
    EXPECT_EQ(Fields(DateTime::fromString("abcd-xx-07 1")), "0 0 7 0 0 0 0");
    EXPECT_EQ(Fields(DateTime::fromString("2023-12-31 23:59:58.999")), "2023 12 31 23 59 58 0");
}

TEST(DateTime, WritesMinimumWidths) {
    EXPECT_EQ(DateTime(2024, 5, 7, 9, 8, 7, 999).toString(), "2024-05-07 09:08:07");
    EXPECT_EQ(DateTime(12345, 1, 2).toString(), "12345-01-02 00:00:00");
    EXPECT_EQ(DateTime(7, 10, 11, 12, 13, 14).toString(), "0007-10-11 12:13:14");
    EXPECT_EQ(DateTime().toString(), "2000-01-01 00:00:00");
    DateTime const back = DateTime::fromString(DateTime(1999, 12, 31, 23, 59, 59).toString());
    EXPECT_EQ(Fields(back), "1999 12 31 23 59 59 0");
}

TEST(JsonToInt32, ReadsEveryKindLeniently) {
    struct Case {
        Value value;
        int32_t expected;
    } const cases[] = {
        {Value(true), 1},
        {Value(2147483647L), 2147483647},
        {Value(-2147483648L), -2147483647 - 1},
        {Value(2147483648L), 0},
        {Value(-2147483649L), 0},
        {Value(5.5), 6},
        {Value(-5.5), -6},
        {Value(2147483647.4), 2147483647},
        {Value(2147483647.5), 0},
        {Value(-2147483648.4), -2147483647 - 1},
        {Value(1e300), 0},
        {Value("2024"), 2024},
        {Value("0x1F"), 31},
        {Value("017"), 15},
        {Value(" -12"), -12},
        {Value("12 "), 0},
        {Value("12abc"), 0},
        {Value("4294967296"), 0},
        {Value("99999999999999999999"), 0},
        {Value(""), 0},
        {Value(), 0},
    };
    for (auto const& c : cases)
        EXPECT_EQ(tovel::JsonToInt32(c.value), c.expected)
            << "kind " << c.value.type() << " " << c.value.toString("?");
}

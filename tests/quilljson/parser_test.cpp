#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <stdexcept>

#include "quilljson/parser.h"
#include "quilljson/serializer.h"
#include "recorder.h"

using quilljson::ParseOption;
using quilljson::Parser;
using quilljson::Value;

namespace {

struct Case {
    std::string text;
    uint32_t flags;
    bool ok;
    char const* message; // error message ("" on success)
    char const* result;  // compact text of the target afterwards
};

void run(std::vector<Case> const& cases) {
    for (auto const& c : cases) {
        Value v;
        Parser parser;
        std::string error = "stale";
        bool const ok = parser.parse(&v, nullptr, c.text.data(), c.text.data() + c.text.size(),
                                     ParseOption(c.flags), &error);
        EXPECT_EQ(ok, c.ok) << c.text;
        EXPECT_EQ(parser.error(), c.message) << c.text;
        EXPECT_EQ(error, c.message) << c.text;
        EXPECT_EQ(quilljson::Serializer::toText(v), c.result) << c.text;
        // A check-only parse agrees on the outcome.
        EXPECT_EQ(Parser().parse(nullptr, nullptr, c.text.data(), c.text.data() + c.text.size(),
                                 ParseOption(c.flags)),
                  c.ok)
            << c.text;
    }
}

Value parsed(std::string const& text) {
    Value v;
    Parser parser;
    EXPECT_TRUE(parser.parse(&v, text)) << text << ": " << parser.error();
    return v;
}

} // namespace

TEST(Parser, DocumentLevel) {
    run({
        {"", 0, false, "Unexpected character exists while parsing.", "null"},
        {" \t\r\n", 0, false, "Unexpected character exists while parsing.", "null"},
        {"  7  ", 0, true, "", "7"},
        {"\xEF\xBB\xBF[]", 0, true, "", "[]"},
        {"\xEF[]", 0, true, "", "[]"},
        {"\xBB[]", 0, false, "Unexpected character exists while parsing.", "null"},
        {"[1,2]x", 0, false, "Gabage string exists after json string.", "[1,2]"},
        {"[1,2]x", ParseOption::IgnoreRest, true, "", "[1,2]"},
        {std::string("[1] \0garbage", 12), 0, true, "", "[1]"},
        {"1 2", 0, false, "Gabage string exists after json string.", "1"},
        {"[true,false,null]", 0, true, "", "[true,false,null]"},
        {"tru", 0, false, "Invalid boolean type string exists.", "null"},
        {"fals", 0, false, "Invalid boolean type string exists.", "null"},
        {"nul", 0, false, "Invalid null type string exists.", "null"},
        {"[truex]", 0, false, "Unexpected string exists while parsing array.", "[true]"},
    });
}

TEST(Parser, ContainerLeniencyAndErrors) {
    run({
        {"[1,]", 0, false, "Unexpected comma exists while parsing array.", "[1]"},
        {"[1,]", ParseOption::TrailingComma, true, "", "[1]"},
        {"[,]", ParseOption::TrailingComma, false, "Unexpected character exists while parsing.", "[]"},
        {R"({"a":1,})", 0, false, "Unexpected comma exists while parsing object.", R"({"a":1})"},
        {R"({"a":1,})", ParseOption::TrailingComma, true, "", R"({"a":1})"},
        // The text may end inside the top-level container, right after its opening or a comma.
        {"[1,", 0, true, "", "[1]"},
        {"[", 0, true, "", "[]"},
        {"{", 0, true, "", "{}"},
        {R"({"a":1,)", 0, true, "", R"({"a":1})"},
        {"[1", 0, false, "Unexpected string exists while parsing array.", "[1]"},
        {"[1,[2,", 0, false, "Unexpected string exists while parsing array.", "[1,[2]]"},
        {R"({"a":{)", 0, false, "Unexpected string exists while parsing object.", R"({"a":{}})"},
        {"[1, ", 0, false, "Unexpected character exists while parsing.", "[1]"},
        // Stray bytes where a member should start are skipped.
        {R"({x "a":1})", 0, true, "", R"({"a":1})"},
        {R"({"a":1,x})", 0, false, "Unexpected comma exists while parsing object.", R"({"a":1})"},
        {R"({"a":1,"a":2,"b":3,"a":4})", 0, true, "", R"({"a":1,"b":3})"},
        {R"({"a\u0062":{"\u0063":"\u0064"},"ab":1,"\u0061":"\t"})", 0, true, "",
         R"({"a":"\t","ab":{"c":"d"}})"},
        {R"({"a" 1})", 0, false, "Unexpected string exists while parsing object.", "{}"},
        {R"({"a":})", 0, false, "Unexpected character exists while parsing.", "{}"},
        {R"({"a":1 "b":2})", 0, false, "Unexpected string exists while parsing object.", R"({"a":1})"},
        {"[1,x]", 0, false, "Unexpected character exists while parsing.", "[1]"},
        // After a failure the target holds what was complete.
        {R"({"a":1,"b":[1,2,x]})", 0, false, "Unexpected character exists while parsing.", R"({"a":1})"},
        {R"([1,{"a":2},{"b":tru}])", 0, false, "Invalid boolean type string exists.", R"([1,{"a":2}])"},
    });
}

TEST(Parser, Numbers) {
    run({
        {"01", 0, false, "Unexpected '0' character is found while parsing number.", "null"},
        {"-", 0, false, "Digit is not found while parsing number.", "null"},
        {"1.", 0, false, "Digit is not found after the decimal point while parsing number.", "null"},
        {"1e", 0, false, "Digit is not found after exponent keyword while parsing number.", "null"},
        {"1e+", 0, false, "Digit is not found after exponent keyword while parsing number.", "null"},
        {"-0", 0, true, "", "0"},
        {"1.0", 0, true, "", "1"},
        {"1.5e0", 0, true, "", "1.5"},
        {"1E+2", 0, true, "", "100"},
        // The exponent's value wraps in 32 bits: a multiple of 2^32 counts as zero.
        {"[1e4294967296,1.5e-8589934592]", 0, true, "", "[1,1.5]"},
        {"-2.5e-3", 0, true, "", "-0.0025000000000000001"},
        {"1e400", 0, true, "", ""}, // stored as infinity, which does not serialize
        {"1e-400", 0, true, "", "0.0"},
        {"[9223372036854775807,-9223372036854775807]", 0, true, "",
         "[9223372036854775807,-9223372036854775807]"},
    });
    for (char const* integer : {"1e0", "1e-00", "-0", "1e4294967296"})
        EXPECT_TRUE(parsed(integer).isInteger()) << integer;
    EXPECT_TRUE(parsed("1.0").isDouble());
    EXPECT_TRUE(parsed("-9223372036854775808").isDouble()); // 8 above 7 at the bound
    EXPECT_EQ(parsed("9223372036854775808").getDouble(), 9223372036854775808.0);
    // Past the bound a digit up to 7 is still multiplied in and the magnitude wraps.
    EXPECT_EQ(parsed("92233720368547758070").getInteger(), -10);
    EXPECT_EQ(parsed("1e400").getDouble(), INFINITY);
}

TEST(Parser, Strings) {
    run({
        {R"("a\x")", 0, false, "Unexpected escape character is found while parsing string.", "null"},
        {"\"a\\", 0, false, "Unexpected escape character is found while parsing string.", "null"},
        {R"("abc)", 0, false, "Expected string ending character '\"' is not found.", "null"},
        {R"("\u12")", 0, false, "Invalid unicode hex string is found while parsing string.", "null"},
        {R"("\uD83D")", 0, false, "Invalid unicode surrogate pair is found while parsing string.", "null"},
        {R"("\uD83D\n")", 0, false, "Invalid unicode surrogate pair is found while parsing string.", "null"},
        {R"("\uD83D\u0041")", 0, false, "Invalid unicode surrogate pair is found while parsing string.",
         "null"},
        {R"("\uD83D\uZZZZ")", 0, false, "Invalid unicode hex string is found while parsing string.", "null"},
        {R"(["ok","\uDE00"])", 0, false, "", R"(["ok"])"}, // a lone low surrogate fails silently
        {R"({"\uDC00":1})", 0, false, "", "{}"},
    });
    EXPECT_EQ(parsed(R"("\uD83D\uDE00")").stringRef(), "\xF0\x9F\x98\x80");
    EXPECT_EQ(parsed(R"("\udbff\udfff")").stringRef(), "\xF4\x8F\xBF\xBF");
    EXPECT_EQ(parsed(R"("\u00e9\u20AC\u0041")").stringRef(), "\xC3\xA9\xE2\x82\xAC"
                                                             "A");
    EXPECT_EQ(parsed(R"("a\u0000b")").stringRef(), std::string("a\0b", 3));
    EXPECT_EQ(parsed(R"("\"\\\/\b\f\n\r\t")").stringRef(), "\"\\/\b\f\n\r\t");
    // Raw control bytes and invalid UTF-8 are taken as they are.
    EXPECT_EQ(parsed(std::string("\"\x01\t\xFF\0\"", 6)).stringRef(), std::string("\x01\t\xFF\0", 4));
    EXPECT_EQ(parsed(R"({"k\n":"v"})").objectRef().begin()->first, "k\n");
}

TEST(Parser, ExistingTargetContent) {
    Value obj;
    obj["a"] = 1;
    obj["b"] = 5;
    Value sharer = obj;
    EXPECT_TRUE(Parser().parse(&obj, R"({"b":2,"c":3})"));
    // Members stay, new ones are inserted (insert does not copy a shared object).
    EXPECT_EQ(quilljson::Serializer::toText(sharer), R"({"a":1,"b":5,"c":3})");

    Value arr;
    arr[0] = 1;
    Value arrSharer = arr;
    EXPECT_TRUE(Parser().parse(&arr, "[2]"));
    EXPECT_EQ(quilljson::Serializer::toText(arr), "[1,2]");
    EXPECT_EQ(quilljson::Serializer::toText(arrSharer), "[1]");

    Value str = "old";
    std::string const* storage = &str.stringRef();
    EXPECT_TRUE(Parser().parse(&str, R"("new")"));
    EXPECT_EQ(&str.stringRef(), storage);
    EXPECT_EQ(str.stringRef(), "new");

    EXPECT_TRUE(Parser().parse(&obj, "[]"));
    EXPECT_TRUE(obj.isArray());
}

TEST(Parser, HandlerModes) {
    std::string const text = R"({"b":[2,3.5,"s",true,null,[]],"a":{}} )";
    Recorder all;
    EXPECT_TRUE(Parser().parse(nullptr, &all, text.data(), text.data() + text.size()));
    EXPECT_EQ(all.log, "{ k:b [ i2 d3.5 s:s true null [ ]0 ]6 k:a { }0 }2");

    Recorder keys;
    Value v;
    EXPECT_TRUE(Parser().parse(&v, &keys, text.data(), text.data() + text.size()));
    EXPECT_EQ(keys.log, "k:b ]0 ]6 k:a }0 }2");
    EXPECT_EQ(quilljson::Serializer::toText(v), R"({"a":{},"b":[2,3.5,"s",true,null,[]]})");

    Recorder escaped; // decoded text reaches the handler
    std::string const esc = R"({"k\t":"v\u00e9"})";
    EXPECT_TRUE(Parser().parse(nullptr, &escaped, esc.data(), esc.data() + esc.size()));
    EXPECT_EQ(escaped.log, "{ k:k\t s:v\xC3\xA9 }1");

    for (bool build : {false, true})
        for (int at : {0, 1, 3, 5}) { // any event, in both handler modes, cancels
            Recorder cancel;
            cancel.cancelAt = at;
            Value partial;
            Parser parser;
            EXPECT_FALSE(
                parser.parse(build ? &partial : nullptr, &cancel, text.data(), text.data() + text.size()));
            EXPECT_EQ(parser.error(), "SAX handler cancels parsing.");
        }
}

// Reals must come out exactly as strtod reads the same text, whatever digits
// and exponent they have (the parser converts most without strtod).
TEST(Parser, RealsMatchStrtod) {
    std::mt19937_64 rng(2024);
    auto check = [](std::string const& text) {
        Value v;
        ASSERT_TRUE(Parser().parse(&v, text)) << text;
        if (v.isInteger()) return;
        double const expected = std::strtod(text.c_str(), nullptr);
        double const got = v.getDouble();
        ASSERT_EQ(std::memcmp(&got, &expected, sizeof got), 0) << text << " " << got << " " << expected;
    };
    char buf[64];
    for (int i = 0; i < 200000; ++i) {
        uint64_t bits = rng();
        double d;
        std::memcpy(&d, &bits, sizeof d);
        if (!std::isfinite(d)) continue;
        std::snprintf(buf, sizeof buf, "%.*e", static_cast<int>(rng() % 20), d);
        check(buf);
        std::snprintf(buf, sizeof buf, "%.17g", d / 1e300 * (rng() % 2 ? 1e300 : 1e-20));
        check(buf);
        // Random digit strings, long ones included.
        std::string text = rng() % 2 ? "-" : "";
        int const intDigits = 1 + static_cast<int>(rng() % 22);
        text += static_cast<char>('1' + rng() % 9);
        for (int k = 1; k < intDigits; ++k)
            text += static_cast<char>('0' + rng() % 10);
        if (rng() % 4) {
            text += '.';
            int const zeros = rng() % 3 ? 0 : static_cast<int>(rng() % 30);
            text.append(static_cast<size_t>(zeros), '0');
            for (int k = 1 + static_cast<int>(rng() % 25); k > 0; --k)
                text += static_cast<char>('0' + rng() % 10);
        }
        if (rng() % 2) text += "e" + std::to_string(static_cast<int>(rng() % 700) - 350);
        check(text);
    }
    for (char const* text : {"2.2250738585072011e-308", "2.4703282292062327e-324", "2.4703282292062328e-324",
                             "1.7976931348623158e308", "9007199254740993.0", "9007199254740992.5", "1e23",
                             "179769313486231580793728971405301e276"})
        check(text);
}

// A handler may parse another text, or throw, in the middle of a parse.
TEST(Parser, ReentrantAndThrowingHandlers) {
    struct Nested : Recorder {
        std::string inner;
        bool onObjectKey(std::string const& k) override {
            Value v;
            Parser().parse(&v, R"([1,{"x":[2]}])");
            inner = quilljson::Serializer::toText(v);
            return Recorder::onObjectKey(k);
        }
    } nested;
    Value outer;
    std::string const text = R"({"a":[1,2],"b":{"c":3}})";
    EXPECT_TRUE(Parser().parse(&outer, &nested, text.data(), text.data() + text.size()));
    EXPECT_EQ(nested.inner, R"([1,{"x":[2]}])");
    EXPECT_EQ(quilljson::Serializer::toText(outer), R"({"a":[1,2],"b":{"c":3}})");

    struct Throwing : Recorder {
        bool onArrayEnd(uint64_t) override { throw std::runtime_error("stop"); }
    } throwing;
    Value partial;
    EXPECT_THROW(Parser().parse(&partial, &throwing, text.data(), text.data() + text.size()),
                 std::runtime_error);
    Value again;
    EXPECT_TRUE(Parser().parse(&again, text));
    EXPECT_EQ(again, outer);
}

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "quilljson/parser.h"
#include "quilljson/serializer.h"

using quilljson::SerializeOption;
using quilljson::Serializer;
using quilljson::Value;

namespace {

std::string pretty(Value const& v, uint32_t flags) {
    std::string out;
    EXPECT_TRUE(Serializer::serialize(out, v, SerializeOption(flags)));
    return out;
}

Value parsed(std::string const& text) {
    Value v;
    EXPECT_TRUE(quilljson::Parser().parse(&v, text)) << text;
    return v;
}

} // namespace

TEST(Serializer, EscapeTable) {
    std::string const named = "\b\t\n\f\r\"\\", letters = "btnfr\"\\";
    std::string all, expected = "\"";
    for (int c = 0; c < 256; ++c) {
        all += static_cast<char>(c);
        size_t const k = c == 0 ? std::string::npos : named.find(static_cast<char>(c));
        char buf[8] = {static_cast<char>(c)};
        if (k != std::string::npos)
            expected += std::string("\\") + letters[k];
        else if (c < 0x20 || c == 0x7F)
            expected += (std::snprintf(buf, sizeof buf, "\\u%04x", c), buf);
        else
            expected += buf;
    }
    EXPECT_EQ(Serializer::toText(Value(all)), expected + "\"");
    EXPECT_EQ(Serializer::toText(Value("\x01/\xC3\xA9")), "\"\\u0001/\xC3\xA9\"");
}

TEST(Serializer, CompactAndPrettyForms) {
    Value v = parsed(R"({"b":[1,2.5,{}],"a":{"x":[]},"c":"s","d":null,"e":true})");
    EXPECT_EQ(Serializer::toText(v), R"({"a":{"x":[]},"b":[1,2.5,{}],"c":"s","d":null,"e":true})");

    std::string const twoSpaces = "{\n"
                                  "  \"a\": {\n"
                                  "    \"x\": []\n"
                                  "  },\n"
                                  "  \"b\": [\n"
                                  "    1,\n"
                                  "    2.5,\n"
                                  "    {}\n"
                                  "  ],\n"
                                  "  \"c\": \"s\",\n"
                                  "  \"d\": null,\n"
                                  "  \"e\": true\n"
                                  "}";
    EXPECT_EQ(pretty(v, 0x80), twoSpaces);
    EXPECT_EQ(pretty(v, 0x83), twoSpaces);

    Value small = parsed(R"({"a":[1]})");
    EXPECT_EQ(pretty(small, 0x81), "{\n    \"a\": [\n        1\n    ]\n}");
    EXPECT_EQ(pretty(small, 0x82), "{\n\t\"a\": [\n\t\t1\n\t]\n}");
    EXPECT_EQ(pretty(small, 0x86), "{\r\n\t\"a\": [\r\n\t\t1\r\n\t]\r\n}");
    EXPECT_EQ(pretty(small, 0x07), R"({"a":[1]})"); // layout bits without 0x80 do nothing
    EXPECT_EQ(pretty(Value::object(), 0x80), "{}");
    EXPECT_EQ(pretty(Value(3), 0x80), "3");
}

TEST(Serializer, NumbersAndAppending) {
    std::string out = "prefix:";
    Value v = parsed("[2.0,0.0,-0.0,1e300,-9223372036854775808,1e0]");
    EXPECT_TRUE(Serializer::serialize(out, v));
    EXPECT_EQ(out, "prefix:[2,0.0,0.0,1.0000000000000001e+300,-9.2233720368547758e+18,1]");
}

TEST(Serializer, NonFiniteDoubleFailsKeepingTheTextSoFar) {
    Value v;
    v[0] = 1;
    v[1] = std::nan("");
    v[2] = 3;
    std::string out, error = "stale";
    EXPECT_FALSE(Serializer::serialize(out, v, SerializeOption(), &error));
    EXPECT_EQ(out, "[1,");
    EXPECT_EQ(error, "Floating point is nan or inf.");
    EXPECT_EQ(Serializer::toText(Value(-INFINITY)), "");
    EXPECT_TRUE(Serializer::serialize(out, Value(1), SerializeOption(), &error));
    EXPECT_EQ(error, "");
}

// Any byte string comes back unchanged through the serializer and the parser,
// whatever the position of the bytes that need escapes.
TEST(Serializer, StringsRoundTrip) {
    std::mt19937 rng(7);
    char const alphabet[] = {'a',    'Z',    ' ',    '/',    '"',    '\\', '\x01',
                             '\x1f', '\x7f', '\x80', '\xc3', '\xff', '\0'};
    for (int i = 0; i < 20000; ++i) {
        std::string s;
        size_t const length = rng() % 70;
        bool const plain = rng() % 2;
        for (size_t k = 0; k < length; ++k)
            s += plain && rng() % 16 ? 'x' : alphabet[rng() % sizeof alphabet];
        Value back;
        ASSERT_TRUE(quilljson::Parser().parse(&back, Serializer::toText(Value(s))));
        ASSERT_EQ(back.stringRef(), s);
    }
}

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>

#include "quilljson/serializer.h"
#include "quilljson/value.h"

using quilljson::Double;
using quilljson::Value;

namespace {

std::string text(Value const& v) {
    return quilljson::Serializer::toText(v);
}

std::string doubleText(double d) {
    std::string out;
    Double(d).toString(out);
    return out;
}

} // namespace

TEST(Value, CopiesShareUntilWrittenThroughAnAccessor) {
    Value b;
    b["k"] = 1;
    b["list"][0] = "x";
    Value a = b;
    EXPECT_EQ(b.useCount(), 2u);

    a["k"] = 2; // a takes a private copy, one level deep
    EXPECT_EQ(text(b), R"({"k":1,"list":["x"]})");
    EXPECT_EQ(text(a), R"({"k":2,"list":["x"]})");
    EXPECT_EQ(b.useCount(), 1u);
    EXPECT_EQ(b["list"].useCount(), 2u); // the nested array is now shared by both copies

    a["list"][1] = "y"; // and is copied when written through a
    EXPECT_EQ(text(b["list"]), R"(["x"])");
    EXPECT_EQ(text(a["list"]), R"(["x","y"])");
}

TEST(Value, InsertWritesThroughSharingAndKeepsExistingMembers) {
    Value b = Value::object();
    Value a = b;
    a.insert("k", 1);
    EXPECT_EQ(text(b), R"({"k":1})"); // no copy on write for insert
    a.insert("k", 2);
    EXPECT_EQ(text(a), R"({"k":1})");
    a.insert("self", a);
    EXPECT_FALSE(a.contains("self"));

    Value n = 5;
    n.insert("x", true); // a non-object becomes an object first
    EXPECT_EQ(text(n), R"({"x":true})");
}

// Keys out of order, present keys and a shared object must all end as with
// operator[], not only keys that come in order.
TEST(Value, SetMemberInOrderActsAsAssignmentForAnyKey) {
    Value n = 5; // a non-object becomes an object first
    n.setMemberInOrder("b", 1);
    n.setMemberInOrder("d", 2);
    n.setMemberInOrder("a", 3);
    n.setMemberInOrder("d", 4);
    n.setMemberInOrder("b", 5);
    Value shared = n;
    n.setMemberInOrder("e", "x");
    n.setMemberInOrder("c", 6);
    EXPECT_EQ(text(n), R"({"a":3,"b":5,"c":6,"d":4,"e":"x"})");
    EXPECT_EQ(text(shared), R"({"a":3,"b":5,"d":4})");
}

TEST(Value, StringAssignmentReusesOnlyAnUnsharedString) {
    Value a = "one";
    Value b = a;
    a = "two"; // shared: a takes a fresh string
    EXPECT_EQ(b.stringRef(), "one");
    EXPECT_EQ(a.stringRef(), "two");
    EXPECT_EQ(a.useCount(), 1u);
    std::string const* storage = &a.stringRef();
    a = "three";
    EXPECT_EQ(&a.stringRef(), storage);
    a = 0; // a number, not a null text pointer
    EXPECT_TRUE(a.isInteger());
    a = "text"; // and back
    EXPECT_TRUE(a.isString());
}

TEST(Value, LookupsByConstAndMutableAccess) {
    Value const i = 7;
    EXPECT_EQ(&i["x"], &Value::s_null());
    EXPECT_EQ(&i[3], &Value::s_null());

    Value m = 7;
    m["x"];
    EXPECT_EQ(text(m), R"({"x":null})");

    Value arr = Value::array();
    arr[3];
    EXPECT_EQ(text(arr), "[null,null,null,null]");

    Value nested;
    nested["a"] = 1;
    nested = nested["a"]; // assigning a member of itself
    EXPECT_EQ(nested.getInteger(), 1);
}

TEST(Value, Equality) {
    EXPECT_NE(Value(1), Value(1.0));
    EXPECT_EQ(Value(0.0), Value(-0.0));
    EXPECT_NE(Value(), Value(false));
    EXPECT_NE(Value(std::string("a\0b", 3)), Value(std::string("a\0c", 3)));
    Value a, b, c;
    a["x"][0] = 1;
    b["x"][0] = 1;
    c["y"][0] = 1;
    EXPECT_EQ(a, b);
    EXPECT_NE(a, c);
    b["x"][1] = 2;
    EXPECT_NE(a, b);
    Value holdsNan;
    holdsNan["n"] = std::nan("");
    Value const same = holdsNan;
    EXPECT_NE(holdsNan, same); // members are compared, not identities: NaN is never equal
}

TEST(Value, ScalarTextAndLenientConversions) {
    EXPECT_EQ(Value(true).toString("-") + Value(-5).toString("-") + Value("s").toString("-"), "true-5s");
    EXPECT_EQ(Value(std::numeric_limits<int64_t>::min()).toString(""), "-9223372036854775808");
    EXPECT_EQ(Value::object().toString("fb") + Value().toString("fb"), "fbfb");
    // Reals as the serializer writes them, and text even where it refuses them.
    EXPECT_EQ(Value(-0.0).toString("") + " " + Value(-1.5e-7).toString("") + " " +
                  Value(std::nan("")).toString("") + Value(-INFINITY).toString(""),
              "0.0 -1.4999999999999999e-07 nan-inf");

    EXPECT_TRUE(Value("true").asBool());
    EXPECT_FALSE(Value("True").asBool());
    EXPECT_EQ(Value(-2.5).asInteger(), -3);
    EXPECT_EQ(Value(1e19).asInteger(), 0);
    EXPECT_EQ(Value(std::nan("")).asInteger(), 0);
    EXPECT_EQ(Value("-42").asInteger(), -42);
    EXPECT_EQ(Value("42x").asInteger() + Value("99999999999999999999").asInteger(), 0);
    EXPECT_EQ(Value("1.5").asDouble(), 1.5);
    EXPECT_EQ(Value("1.5x").asDouble(), 0.0);
    EXPECT_EQ(Value("1e999").asDouble(), INFINITY); // out of range is still a whole number
}

// The fast double formatting must give exactly what "%.17g" gives.
TEST(Double, TextMatchesPrintfOnRandomDoubles) {
    std::mt19937_64 rng(12345);
    std::uniform_real_distribution<double> ordinary(-1e6, 1e6);
    auto check = [](double d) {
        if (!std::isfinite(d) || d == 0.0) return;
        char expected[128];
        std::snprintf(expected, sizeof expected, "%.17g", d);
        ASSERT_EQ(doubleText(d), expected) << std::hexfloat << d;
    };
    // Exact halfway cases at the 17th digit: quarters just above 2^50.
    for (double d = 1125899906842624.25; d < 1125899906842640.0; d += 0.25)
        check(d);
    for (int i = 0; i < 300000; ++i) {
        uint64_t bits = rng();
        double d;
        std::memcpy(&d, &bits, sizeof d);
        check(d);
        check(ordinary(rng));
        check(static_cast<double>(static_cast<int64_t>(rng() >> (rng() % 64))));
    }
    // The digits are made in a leading one and two halves of eight: the last
    // non-zero digit in every place, and zeros between the halves.
    for (int place = 0; place <= 16; ++place) {
        check(1.0 + std::pow(10.0, -place));
        check(std::pow(10.0, place) * 3.0 + 7.0);
        check(std::ldexp(std::pow(10.0, place), -30));
    }
    for (double d : {2.2250738585072014e-308, 1.7976931348623157e308, 5e-324, 1e23, 9007199254740993.0,
                     1125899906842624.75, 562949953421312.125, 0.3, 2.5e-7, 1e16, 99999999999999999.0,
                     9.9999999999999995e-5, 1e-4, 1e17, 8.5})
        check(d);
}

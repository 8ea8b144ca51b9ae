// Values nested a million levels deep are parsed, copied, compared, written and
// freed on a thread with a 512 KiB stack: nothing may recurse on the depth.
#include <gtest/gtest.h>

#include "quilljson/parser.h"
#include "quilljson/serializer.h"
#include "small_stack.h"

using quilljson::Parser;
using quilljson::SerializeOption;
using quilljson::Serializer;
using quilljson::Value;

namespace {

constexpr size_t kDepth = 1000000;

std::string nestedArrays(size_t depth, char const* inner) {
    return std::string(depth, '[') + inner + std::string(depth, ']');
}

std::string nestedObjects(size_t depth) {
    std::string text;
    for (size_t i = 0; i < depth; ++i)
        text += "{\"a\":";
    text += "1";
    text.append(depth, '}');
    return text;
}

} // namespace

// Parsed, copied, compared with an equal and an unequal value, written back.
TEST(Deep, MillionLevelArraysAndObjects) {
    std::string const arrays = nestedArrays(kDepth, ""), objects = nestedObjects(kDepth);
    std::string otherObjects = objects;
    otherObjects[objects.size() - kDepth - 1] = '2';
    for (auto const& texts :
         {std::make_pair(arrays, nestedArrays(kDepth, "1")), std::make_pair(objects, otherObjects)}) {
        bool parsed = false, shared = false, equal = false, unequal = false, written = false;
        RunOnSmallStack([&] {
            Value v, again, other;
            parsed = Parser().parse(&v, texts.first) && Parser().parse(&again, texts.first) &&
                     Parser().parse(&other, texts.second);
            Value const copy = v;
            shared = copy.useCount() == 2;
            equal = copy == again;
            unequal = v != other;
            std::string out;
            written = Serializer::serialize(out, v) && out == texts.first;
        });
        EXPECT_TRUE(parsed && shared && equal && unequal && written)
            << texts.first.substr(0, 8) << ": " << parsed << shared << equal << unequal << written;
    }
}

// Pretty text grows with the square of the depth (every line is indented), so
// it is checked at a depth that still gives a text of about 100 MB.
TEST(Deep, PrettyPrintingDeepValues) {
    bool arrays = false, objects = false;
    RunOnSmallStack([&] {
        for (std::string const& text : {nestedArrays(10000, "[1]"), nestedObjects(7000)}) {
            Value v, back;
            Parser().parse(&v, text);
            std::string out;
            bool const ok = Serializer::serialize(out, v, SerializeOption(0x82)) &&
                            Parser().parse(&back, out) && back == v && Serializer::toText(back) == text;
            (text[0] == '[' ? arrays : objects) = ok;
        }
    });
    EXPECT_TRUE(arrays);
    EXPECT_TRUE(objects);
}

TEST(Deep, BuiltThroughAccessorsAndFreed) {
    bool ok = false;
    RunOnSmallStack([&] {
        Value root;
        Value* cursor = &root;
        for (size_t i = 0; i < kDepth; ++i)
            cursor = &(*cursor)["a"];
        *cursor = 1;
        Value copy = root;
        copy["b"] = 2; // private top level, deeper levels shared
        ok = copy["a"].useCount() == 2 && copy != root;
        root = Value(); // frees nothing yet: copy still holds the chain
        ok = ok && copy["a"].useCount() == 1;
    });
    EXPECT_TRUE(ok);
}

// Values nested a million levels deep are parsed, copied, compared, written and
// freed on a thread with a 512 KiB stack: nothing may recurse on the depth.
#include <gtest/gtest.h>

#include <pthread.h>

#include <functional>

#include "quilljson/parser.h"
#include "quilljson/serializer.h"

using quilljson::Parser;
using quilljson::SerializeOption;
using quilljson::Serializer;
using quilljson::Value;

namespace {

constexpr size_t kDepth = 1000000;

// Runs fn on a thread whose stack is 512 KiB.
void onSmallStack(std::function<void()> fn) {
    pthread_attr_t attr;
    ASSERT_EQ(pthread_attr_init(&attr), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attr, 512 * 1024), 0);
    pthread_t thread;
    auto body = [](void* arg) -> void* {
        (*static_cast<std::function<void()>*>(arg))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attr, body, &fn), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attr);
}

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

struct Outcome {
    bool parsed = false, parsedAgain = false, parsedOther = false, equal = false, unequal = false;
    bool compactSame = false, prettyRoundTrip = false;
    uint32_t copyCount = 0;
};

void exercise(std::string const& text, std::string const& other, Outcome& r) {
    Value v;
    r.parsed = Parser().parse(&v, text);
    Value copy = v;
    r.copyCount = copy.useCount();
    Value again, different;
    r.parsedAgain = Parser().parse(&again, text);
    r.parsedOther = Parser().parse(&different, other);
    r.equal = copy == again;
    r.unequal = v != different;
    std::string out;
    r.compactSame = Serializer::serialize(out, v) && out == text;
}

} // namespace

TEST(Deep, MillionLevelArrays) {
    Outcome r;
    std::string const text = nestedArrays(kDepth, "");
    std::string const other = nestedArrays(kDepth, "1");
    onSmallStack([&] { exercise(text, other, r); });
    EXPECT_TRUE(r.parsed && r.parsedAgain && r.parsedOther);
    EXPECT_EQ(r.copyCount, 2u);
    EXPECT_TRUE(r.equal);
    EXPECT_TRUE(r.unequal);
    EXPECT_TRUE(r.compactSame);
}

TEST(Deep, MillionLevelObjects) {
    Outcome r;
    std::string const text = nestedObjects(kDepth);
    std::string other = text;
    other[other.size() - kDepth - 1] = '2';
    onSmallStack([&] { exercise(text, other, r); });
    EXPECT_TRUE(r.parsed && r.parsedAgain && r.parsedOther);
    EXPECT_TRUE(r.equal);
    EXPECT_TRUE(r.unequal);
    EXPECT_TRUE(r.compactSame);
}

// Pretty text grows with the square of the depth (every line is indented), so
// it is checked at a depth that still gives a text of about 100 MB.
TEST(Deep, PrettyPrintingDeepValues) {
    bool arrays = false, objects = false;
    onSmallStack([&] {
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
    onSmallStack([&] {
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

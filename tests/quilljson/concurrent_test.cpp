// Values are not shared between threads, but many threads parse at once and a
// value made on one thread may be freed on another (a response built by a
// worker and dropped by the host's thread). The blocks of a value come from
// an allocator chosen on the first use by whichever thread gets there first.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "quilljson/parser.h"
#include "quilljson/serializer.h"

using quilljson::Value;

namespace {

std::string document(int seed) {
    std::string text = "{\"id\":" + std::to_string(seed) + ",\"items\":[";
    for (int i = 0; i < 200; ++i)
        text += (i ? "," : "") + std::string("{\"name\":\"item number ") + std::to_string(i) +
                " of a long enough text\",\"x\":" + std::to_string(i * 0.25) + ",\"k\":[1,2,\"z\"]}";
    return text + "]}";
}

} // namespace

TEST(ConcurrentValues, ThreadsParseAtOnceAndFreeEachOthersValues) {
    constexpr int kThreads = 4, kRounds = 30;
    std::vector<std::vector<Value>> made(kThreads);
    std::vector<std::string> failures(kThreads), expected(kThreads);
    for (int t = 0; t < kThreads; ++t) {
        Value v;
        ASSERT_TRUE(quilljson::Parser().parse(&v, document(t)));
        expected[t] = quilljson::Serializer::toText(v);
    }
    {
        std::vector<std::thread> threads;
        for (int t = 0; t < kThreads; ++t)
            threads.emplace_back([t, &made, &failures, &expected] {
                std::string const text = document(t);
                for (int round = 0; round < kRounds; ++round) {
                    Value v;
                    quilljson::Parser parser;
                    if (!parser.parse(&v, text) || quilljson::Serializer::toText(v) != expected[t]) {
                        failures[t] = "round " + std::to_string(round) + ": " + parser.error();
                        return;
                    }
                    made[t].push_back(v);
                }
            });
        for (auto& thread : threads)
            thread.join();
    }
    for (int t = 0; t < kThreads; ++t)
        EXPECT_EQ(failures[t], "");
    // Every value outlives the thread that made it; each is freed by the
    // next thread along.
    std::vector<std::thread> freers;
    for (int t = 0; t < kThreads; ++t)
        freers.emplace_back([&made, t] {
            auto& values = made[(t + 1) % kThreads];
            EXPECT_EQ(values.size(), size_t(kRounds));
            if (!values.empty()) {
                Value const& first = values.front();
                EXPECT_EQ(first["items"][199]["k"][2].stringRef(), "z");
            }
            values.clear();
        });
    for (auto& thread : freers)
        thread.join();
}

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <thread>
#include <vector>

#include "share/bridge.h"
#include "support.h"

namespace {

class Answer : public tovel::Bridge {
public:
    BridgeResult Post(BridgeData const& d) override { return BridgeResultOK(d.data); }
};

} // namespace

TEST(ResponseStore, FirstIdAfterLoadIsOneAndIdsFollow) {
    EXPECT_ISOLATED([] {
        Answer endpoint;
        EXPECT_EQ(1u, Request(endpoint, "").id);
        EXPECT_EQ(2u, Request(endpoint, "").id);
        EXPECT_EQ(3u, BridgeHelperCreatePromiseID());
    });
}

TEST(ResponseStore, FetchProtocol) {
    Answer endpoint;
    uint32_t const id = tovel::RunEndpointGuarded(endpoint, R"({"method":"POST"})", "", "", R"("hello")");
    std::string const text = R"({"error":null,"value":"hello"})";
    uint32_t const n = static_cast<uint32_t>(text.size());

    EXPECT_EQ(BridgeHelperGetResponse(id, nullptr, nullptr), 500u);
    uint32_t length = 0;
    for (int i = 0; i < 2; ++i) { // a length query keeps the entry
        length = 0;
        EXPECT_EQ(BridgeHelperGetResponse(id, nullptr, &length), 200u);
        EXPECT_EQ(length, n + 1);
    }
    uint32_t untouched = 12345;
    EXPECT_EQ(BridgeHelperGetResponse(id + 1000, nullptr, &untouched), 500u);
    EXPECT_EQ(untouched, 12345u);

    // A buffer of exactly n bytes gets the text without its terminating zero.
    std::string buffer(n + 4, '#');
    length = n;
    EXPECT_EQ(BridgeHelperGetResponse(id, &buffer[0], &length), 200u);
    EXPECT_EQ(buffer, text + "####");
    EXPECT_EQ(BridgeHelperGetResponse(id, &buffer[0], &length), 500u);
    EXPECT_EQ(BridgeHelperGetResponse(id, nullptr, &length), 500u);
}

TEST(ResponseStore, ShortBufferGetsACutTextAndTheEntryIsGone) {
    BridgeHelperSetResponse(4000000000u, 404, "abcdef");
    BridgeHelperSetResponse(4000000000u, 201, "uvwxyz"); // replaces
    std::string buffer(8, '#');
    uint32_t length = 3;
    EXPECT_EQ(BridgeHelperGetResponse(4000000000u, &buffer[0], &length), 201u);
    EXPECT_EQ(buffer, std::string("uvw#####"));
    EXPECT_EQ(length, 3u);
    EXPECT_EQ(BridgeHelperGetResponse(4000000000u, nullptr, &length), 500u);

    BridgeHelperSetResponse(4000000001u, 200, "ab");
    length = 6;
    EXPECT_EQ(BridgeHelperGetResponse(4000000001u, &buffer[0], &length), 200u);
    EXPECT_EQ(buffer, std::string("ab\0\0\0\0##", 8)); // zeroed over the given length
}

namespace {

// Runs a POST of `body` without fetching its response.
uint32_t Store(char const* body) {
    Answer endpoint;
    return tovel::RunEndpointGuarded(endpoint, R"({"method":"POST"})", "", "", body);
}

std::string Text(uint32_t id, uint32_t* status) {
    uint32_t length = 0;
    *status = BridgeHelperGetResponse(id, nullptr, &length);
    if (*status == 500) return std::string();
    std::string buffer(length, '\0');
    EXPECT_EQ(*status, BridgeHelperGetResponse(id, &buffer[0], &length));
    return buffer.c_str();
}

} // namespace

// Responses are kept near the thread that made them; any thread still finds
// them, and a set under an id replaces the entry wherever it was made. Every
// request meanwhile gets an id of its own, in order, and its own answer.
TEST(ResponseStore, ConcurrentFetchesAndReplacesOfResponsesMadeOnOtherThreads) {
    int const threads = 4, perThread = 200;
    std::vector<std::vector<uint32_t>> ids(threads);
    std::vector<std::thread> makers;
    for (int t = 0; t < threads; ++t)
        makers.emplace_back([t, &ids] {
            for (int i = 0; i < perThread; ++i)
                ids[t].push_back(Store(std::to_string(t * 1000 + i).c_str()));
        });
    for (auto& m : makers)
        m.join();

    std::vector<int> wrong(threads, 0);
    std::vector<std::vector<uint32_t>> own(threads);
    std::vector<std::thread> fetchers;
    for (int t = 0; t < threads; ++t)
        fetchers.emplace_back([t, &ids, &own, &wrong] {
            int const maker = (t + 1) % threads;
            Answer endpoint;
            for (int i = 0; i < perThread; ++i) {
                uint32_t const id = ids[maker][i];
                uint32_t status = 0;
                if (i % 2 == 1) BridgeHelperSetResponse(id, 201, "\"again\"");
                std::string const expected =
                    i % 2 == 1 ? "\"again\""
                               : R"({"error":null,"value":)" + std::to_string(maker * 1000 + i) + "}";
                if (Text(id, &status) != expected || status != (i % 2 == 1 ? 201u : 200u)) ++wrong[t];
                if (Text(id, &status) != "" || status != 500) ++wrong[t]; // no second copy anywhere
                std::string const body = std::to_string(100000 * (t + 1) + i);
                Fetched const f = Request(endpoint, R"({"method":"post"})", "", "", body.c_str());
                if (f.status != 200 || f.text != R"({"error":null,"value":)" + body + "}") ++wrong[t];
                own[t].push_back(f.id);
            }
        });
    for (auto& f : fetchers)
        f.join();
    std::set<uint32_t> all;
    for (int t = 0; t < threads; ++t) {
        EXPECT_EQ(wrong[t], 0) << t;
        EXPECT_TRUE(std::is_sorted(own[t].begin(), own[t].end()));
        all.insert(ids[t].begin(), ids[t].end());
        all.insert(own[t].begin(), own[t].end());
    }
    EXPECT_EQ(all.size(), static_cast<size_t>(2 * threads * perThread));
    uint32_t status = 0;
    for (uint32_t id : all)
        EXPECT_EQ("", Text(id, &status)) << "left behind: " << id;
}

// After 2^32 promises the ids come round again; a response never fetched is
// replaced by the request that takes its id next, before and after the wrap
// itself has been passed.
TEST(ResponseStore, AnIdTakenAgainAfterTheCounterWrapsReplacesTheUnfetchedResponse) {
    EXPECT_ISOLATED([] {
        uint64_t const round = uint64_t(1) << 32;
        tovel::SetPromisesTaken(6);
        EXPECT_EQ(7u, Store("-1"));
        tovel::SetPromisesTaken(6); // the same id again, from the same thread
        EXPECT_EQ(7u, Store("1"));
        uint32_t length = 0;
        EXPECT_EQ(200u, BridgeHelperGetResponse(7, nullptr, &length));
        EXPECT_EQ(std::string(R"({"error":null,"value":1})").size() + 1, length);
        std::thread([] { EXPECT_EQ(8u, Store("2")); }).join();
        BridgeHelperSetResponse(9, 202, "3");

        tovel::SetPromisesTaken(round + 6); // the wrap skipped: id 0 never taken
        EXPECT_EQ(7u, Store("4"));
        tovel::SetPromisesTaken(round - 1);
        EXPECT_EQ(0u, Store("0"));
        tovel::SetPromisesTaken(round + 7);
        std::thread([] { EXPECT_EQ(8u, Store("5")); }).join();
        EXPECT_EQ(9u, Store("6"));

        uint32_t status = 0;
        for (uint32_t id : {0u, 7u, 8u, 9u}) {
            std::string const value = std::to_string(id == 0 ? 0 : id - 3);
            EXPECT_EQ(R"({"error":null,"value":)" + value + "}", Text(id, &status)) << id;
            EXPECT_EQ(200u, status);
            EXPECT_EQ("", Text(id, &status)) << id;
            EXPECT_EQ(500u, status);
        }
    });
}

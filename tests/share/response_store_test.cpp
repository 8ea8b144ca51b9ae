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

TEST(ResponseStore, ConcurrentRequestsGetTheirOwnIdsAndAnswers) {
    int const threads = 8, perThread = 300;
    std::vector<std::vector<uint32_t>> ids(threads);
    std::vector<int> wrong(threads, 0);
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t) {
        workers.emplace_back([t, &ids, &wrong] {
            Answer endpoint;
            for (int i = 0; i < perThread; ++i) {
                std::string const body = std::to_string(t * 100000 + i);
                Fetched const f = Request(endpoint, R"({"method":"post"})", "", "", body.c_str());
                ids[t].push_back(f.id);
                if (f.status != 200 || f.text != R"({"error":null,"value":)" + body + "}") ++wrong[t];
            }
        });
    }
    for (auto& w : workers)
        w.join();
    std::set<uint32_t> all;
    for (int t = 0; t < threads; ++t) {
        EXPECT_EQ(wrong[t], 0);
        EXPECT_TRUE(std::is_sorted(ids[t].begin(), ids[t].end()));
        all.insert(ids[t].begin(), ids[t].end());
    }
    EXPECT_EQ(all.size(), static_cast<size_t>(threads * perThread));
    uint32_t length = 0;
    for (uint32_t id : all)
        EXPECT_EQ(BridgeHelperGetResponse(id, nullptr, &length), 500u) << "left behind: " << id;
}

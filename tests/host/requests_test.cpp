// Requests as a host sends them, whatever the texts hold and however many
// threads send them.
#include <pthread.h>

#include <set>
#include <thread>

#include "host/host.h"

namespace {

// What an export answers, fetched with the two-step protocol.
struct Answer {
    uint32_t status = 0;
    std::string text;
};

Answer Fetch(uint32_t id) {
    Answer a;
    uint32_t length = 0;
    a.status = BridgeHelperGetResponse(id, nullptr, &length);
    std::string buffer(length, '\0');
    if (length > 0) BridgeHelperGetResponse(id, &buffer[0], &length);
    a.text = buffer.c_str();
    return a;
}

struct Texts {
    std::string request, parameters, query, data;
    Answer answer;
};

void* Send(void* argument) {
    auto* t = static_cast<Texts*>(argument);
    t->answer =
        Fetch(::SensorXYZ(t->request.c_str(), t->parameters.c_str(), t->query.c_str(), t->data.c_str()));
    return nullptr;
}

// Sends on a thread whose stack is as small as a host's worker threads.
Answer SendOnSmallStack(Texts texts) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 512 * 1024);
    pthread_t thread;
    EXPECT_EQ(0, pthread_create(&thread, &attributes, Send, &texts));
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    return texts.answer;
}

char const kUriInvalid[] = R"({"error":{"message":"URI is invalid.","name":"BadRequestError"},"value":null})";

} // namespace

TEST(Requests, MethodsAnEndpointLacksAnswer405) {
    for (std::string method : {"PUT", "POST", "DELETE", "put", "Delete"}) {
        host::Response const r = host::Call(::SensorXYZ, method, host::IdParams("anything"));
        EXPECT_EQ(405u, r.status);
        for (char& c : method)
            c = static_cast<char>(toupper(c));
        EXPECT_EQ(R"({"error":{"message":")" + method +
                      R"( method is not allowed.","name":"MethodError"},"value":null})",
                  r.text);
    }
    // Unknown words are served as GET.
    host::Response const r = host::Call(::SensorXYZ, "patch");
    EXPECT_EQ(400u, r.status);
    EXPECT_EQ(kUriInvalid, r.text);
}

TEST(Requests, NoTextBreaksARequest) {
    size_t const depth = 1000000;
    std::string const nested = std::string(depth, '[') + std::string(depth, ']');
    std::string const unclosed = std::string(depth, '{') + "\"";
    std::string const objects = [depth] {
        std::string s;
        for (size_t i = 0; i < depth / 10; ++i)
            s += "{\"method\":";
        return s + "1" + std::string(depth / 10, '}');
    }();
    std::string const junk = std::string(4 << 20, '\x9f') + "\x01\"\\u";
    std::string const huge = "\"" + std::string(8 << 20, 'q') + "\"";

    // Whatever stands in the four texts, the request fails as one without an id.
    for (std::string const* text : {&nested, &unclosed, &objects, &junk, &huge}) {
        for (int field = 0; field < 4; ++field) {
            Texts texts;
            std::string* fields[] = {&texts.request, &texts.parameters, &texts.query, &texts.data};
            *fields[field] = *text;
            Answer const a = SendOnSmallStack(texts);
            EXPECT_EQ(400u, a.status) << "field " << field << " text of " << text->size();
            EXPECT_EQ(kUriInvalid, a.text) << "field " << field << " text of " << text->size();
        }
    }
}

TEST(Requests, ConcurrentHostThreads) {
    int const threads = 8, perThread = 200;
    std::vector<std::vector<uint32_t>> ids(threads);
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t)
        workers.emplace_back([t, &ids] {
            for (int i = 0; i < perThread; ++i) {
                bool const put = (i % 2) != 0;
                uint32_t const id = ::SensorXYZ(put ? R"({"method":"put"})" : "", "{}", "", "");
                ids[t].push_back(id);
                Answer const a = Fetch(id);
                EXPECT_EQ(put ? 405u : 400u, a.status) << a.text;
            }
        });
    for (auto& w : workers)
        w.join();
    std::set<uint32_t> all;
    for (auto const& list : ids)
        all.insert(list.begin(), list.end());
    EXPECT_EQ(static_cast<size_t>(threads * perThread), all.size());
    uint32_t length = 99;
    for (uint32_t id : all)
        ASSERT_EQ(500u, BridgeHelperGetResponse(id, nullptr, &length)) << "still stored: " << id;
    EXPECT_EQ(99u, length);
}

// Requests as a host sends them, whatever the texts hold.
#include "host/host.h"
#include "small_stack.h"

namespace {

// What an export answers.
struct Answer {
    uint32_t status = 0;
    std::string text;
};

// Sends text as one of the four texts of a request, on a host-sized stack, and
// fetches the answer with the two-step protocol.
Answer SendAsField(std::string const& text, int field) {
    std::string texts[4];
    texts[field] = text;
    Answer a;
    RunOnSmallStack([&] {
        uint32_t const id =
            ::SensorXYZ(texts[0].c_str(), texts[1].c_str(), texts[2].c_str(), texts[3].c_str());
        uint32_t length = 0;
        a.status = BridgeHelperGetResponse(id, nullptr, &length);
        std::string buffer(length, '\0');
        if (length > 0) BridgeHelperGetResponse(id, &buffer[0], &length);
        a.text = buffer.c_str();
    });
    return a;
}

char const kUriInvalid[] = R"({"error":{"message":"URI is invalid.","name":"BadRequestError"},"value":null})";

} // namespace

TEST(Requests, NoTextBreaksARequest) {
    constexpr size_t depth = 1000000;
    std::string const nested = std::string(depth, '[') + std::string(depth, ']');
    std::string const unclosed = std::string(depth, '{') + "\"";
    std::string const objects = [] {
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
            Answer const a = SendAsField(*text, field);
            EXPECT_EQ(400u, a.status) << "field " << field << " text of " << text->size();
            EXPECT_EQ(kUriInvalid, a.text) << "field " << field << " text of " << text->size();
        }
    }
}

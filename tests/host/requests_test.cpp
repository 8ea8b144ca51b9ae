// Requests as a host sends them, whatever the texts hold.
#include <filesystem>
#include <fstream>
#include <sstream>

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

// Every file of the conformance corpus, in each of the four texts: path
// parameters with an "id" name a sensor that is not open.
TEST(Requests, CorpusTextsInEveryField) {
    int files = 0;
    for (auto const& entry :
         std::filesystem::directory_iterator(std::string(TEST_DATA_DIR) + "/json-corpus")) {
        if (entry.path().extension() != ".json") continue;
        std::ifstream in(entry.path(), std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        ++files;
        for (int field = 0; field < 4; ++field) {
            Answer const a = SendAsField(text.str(), field);
            if (field == 1 && a.status == 404u) continue;
            EXPECT_EQ(kUriInvalid, a.text) << entry.path().filename() << " in field " << field;
        }
    }
    EXPECT_GT(files, 300);
}

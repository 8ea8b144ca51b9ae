// The JSON parser in its four modes. The first byte picks the mode (bits 0-1:
// value, value and handler, handler, neither) and the options (bits 2-3); the
// rest is the text. Every mode must agree with the checking-only mode on
// whether the text is JSON, and a value built must survive writing and
// reading back.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "quilljson/parser.h"
#include "quilljson/serializer.h"

namespace {

// Counts events and accepts them all (the value-building mode reports only
// keys and ends, so nesting is not checked here).
class Events : public quilljson::AbstractParseHandler {
public:
    bool onNull() override { return ++count_ > 0; }
    bool onBool(bool) override { return ++count_ > 0; }
    bool onInteger(int64_t) override { return ++count_ > 0; }
    bool onDouble(double) override { return ++count_ > 0; }
    bool onString(std::string const&) override { return ++count_ > 0; }
    bool onArrayBegin() override { return ++count_ > 0; }
    bool onArrayEnd(uint64_t) override { return ++count_ > 0; }
    bool onObjectBegin() override { return ++count_ > 0; }
    bool onObjectKey(std::string const&) override { return ++count_ > 0; }
    bool onObjectEnd(uint64_t) override { return ++count_ > 0; }

private:
    uint64_t count_ = 0;
};

[[noreturn]] void Fail(char const* what) {
    std::fprintf(stderr, "parser_fuzz: %s\n", what);
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
    if (size == 0) return 0;
    int const mode = data[0] & 0x03;
    quilljson::ParseOption const option((data[0] >> 2) & 0x03);
    char const* begin = reinterpret_cast<char const*>(data + 1);
    char const* end = reinterpret_cast<char const*>(data + size);

    quilljson::Value value;
    Events events;
    quilljson::Parser parser;
    bool const ok = parser.parse(mode < 2 ? &value : nullptr, mode == 1 || mode == 2 ? &events : nullptr,
                                 begin, end, option);
    bool const checked = quilljson::Parser().parse(nullptr, nullptr, begin, end, option);
    // A handler that always answers true cannot make a parse fail.
    if (ok != checked) Fail("the modes disagree on whether the text is JSON");
    if (!ok || mode >= 2) return 0;

    std::string text;
    if (!quilljson::Serializer::serialize(text, value)) return 0; // a non-finite number: not JSON text
    quilljson::Value again;
    if (!quilljson::Parser().parse(&again, text)) Fail("written text does not parse");
    std::string textAgain;
    quilljson::Serializer::serialize(textAgain, again);
    // The one text that may change: an integer that wrapped to the smallest
    // int64 is written as "-9223372036854775808", whose magnitude overflows
    // when read, so it comes back as a real (once; that text is then stable).
    if (text != textAgain && text.find("-9223372036854775808") == std::string::npos)
        Fail("written text changes when read back and written again");
    return 0;
}

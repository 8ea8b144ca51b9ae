// quilljson::Parser: reads JSON text into a value, or reports it to a handler.
#pragma once

#include <cstdint>
#include <string>

#include "value.h"

namespace quilljson {

// Flag word (first byte tested): 0x01 accept a trailing comma before ']' or
// '}'; 0x02 do not check the text after the top-level value.
struct ParseOption {
    uint32_t flags = 0;
    ParseOption() = default;
    explicit ParseOption(uint32_t f) : flags(f) {}
    static constexpr uint32_t TrailingComma = 0x01;
    static constexpr uint32_t IgnoreRest = 0x02;
};

// Event interface; returning false from any event cancels the parse.
class AbstractParseHandler {
public:
    virtual ~AbstractParseHandler() = default;
    virtual bool onNull() = 0;
    virtual bool onBool(bool value) = 0;
    virtual bool onInteger(int64_t value) = 0;
    virtual bool onDouble(double value) = 0;
    virtual bool onString(std::string const& value) = 0;
    virtual bool onArrayBegin() = 0;
    virtual bool onArrayEnd(uint64_t count) = 0;
    virtual bool onObjectBegin() = 0;
    virtual bool onObjectKey(std::string const& key) = 0;
    virtual bool onObjectEnd(uint64_t count) = 0;
};

struct CodePoint {
    uint32_t value;
    void toUtf8(std::string& out) const;
};

class Parser {
public:
    // Modes: out only builds a value; out and handler build a value and give
    // the handler only onObjectKey, onObjectEnd and onArrayEnd; handler only
    // reports every event; neither only checks. Nesting depth is limited only
    // by memory: the parser keeps its own stack.
    bool parse(Value* out, AbstractParseHandler* handler, char const* begin, char const* end,
               ParseOption const& option = ParseOption(), std::string* error = nullptr);
    bool parse(Value* out, std::string const& text, ParseOption const& option = ParseOption(),
               std::string* error = nullptr) {
        return parse(out, nullptr, text.data(), text.data() + text.size(), option, error);
    }
    // The message of the last error; empty after a success (and after the
    // silent failure on a lone low surrogate).
    std::string const& error() const { return error_; }

private:
    template <int kMode> class Run; // one parse, specialised per mode (parser.cpp)

    std::string error_;
};

} // namespace quilljson

// quilljson::Serializer: writes a value as JSON text.
#pragma once

#include <cstdint>
#include <string>

#include "value.h"

namespace quilljson {

// Flag word: 0x80 pretty; 0x03 indentation unit when pretty (1 four spaces,
// 2 one tab, 0 or 3 two spaces); 0x04 "\r\n" line breaks when pretty.
struct SerializeOption {
    uint32_t flags = 0;
    SerializeOption() = default;
    explicit SerializeOption(uint32_t f) : flags(f) {}
    static constexpr uint32_t Pretty = 0x80;
    static constexpr uint32_t IndentMask = 0x03;
    static constexpr uint32_t CRLF = 0x04;
};

class Serializer {
public:
    // Appends the text of value to out. Fails only on a non-finite double
    // ("Floating point is nan or inf."), leaving what was written so far.
    static bool serialize(std::string& out, Value const& value,
                          SerializeOption const& option = SerializeOption(), std::string* error = nullptr);
    // Compact text of a value, empty on failure.
    static std::string toText(Value const& value);
};

} // namespace quilljson

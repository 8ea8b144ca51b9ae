// Script variables: "$name" or "${name}" in path parameters, query values and
// bodies is replaced by the text an earlier "-> $name" stored; "$$" is a
// literal '$', and a '$' not followed by a name stays as it is.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "quilljson/value.h"
#include "request_line.h"

namespace sensorctl {

class Variables {
public:
    void set(std::string const& name, std::string const& text) { values_[name] = text; }
    bool has(std::string const& name) const { return values_.count(name) != 0; }

    // Replaces every reference; false (naming the variable in *error) when
    // one is not defined.
    bool expand(std::string_view text, std::string* out, std::string* error) const;

private:
    std::map<std::string, std::string> values_;
};

// The text a binding stores from a response value: the selected member; a
// string as its text, any other kind as compact JSON. False when the
// selection finds nothing or null.
bool CaptureText(quilljson::Value const& value, std::vector<SelectorStep> const& steps, std::string* text);

} // namespace sensorctl

#include "variables.h"

#include <cctype>

#include "quilljson/serializer.h"

namespace sensorctl {

namespace {

bool IsNameStart(char c) {
    return std::isalpha(static_cast<unsigned char>(c)) || c == '_';
}
bool IsNameChar(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}

} // namespace

bool Variables::expand(std::string_view text, std::string* out, std::string* error) const {
    out->clear();
    for (size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (c != '$' || i + 1 == text.size()) {
            *out += c;
            continue;
        }
        char next = text[i + 1];
        if (next == '$') {
            *out += '$';
            ++i;
            continue;
        }
        size_t begin = i + 1, end = begin;
        bool braced = next == '{';
        if (braced) ++begin, ++end;
        if (end < text.size() && IsNameStart(text[end]))
            while (end < text.size() && IsNameChar(text[end]))
                ++end;
        if (end == begin || (braced && (end == text.size() || text[end] != '}'))) {
            *out += c; // not a reference
            continue;
        }
        std::string name(text.substr(begin, end - begin));
        auto found = values_.find(name);
        if (found == values_.end()) {
            *error = "variable $" + name + " is not set by an earlier request";
            return false;
        }
        *out += found->second;
        i = braced ? end : end - 1;
    }
    return true;
}

bool CaptureText(quilljson::Value const& value, std::vector<SelectorStep> const& steps, std::string* text) {
    quilljson::Value const* at = &value;
    for (SelectorStep const& step : steps) {
        if (auto const* key = std::get_if<std::string>(&step))
            at = &(*at)[*key];
        else
            at = &(*at)[static_cast<unsigned long>(std::get<size_t>(step))];
    }
    if (at->isNull()) return false;
    *text = at->isString() ? at->stringRef() : quilljson::Serializer::toText(*at);
    return true;
}

} // namespace sensorctl

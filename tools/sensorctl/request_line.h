// One request as sensorctl reads it:
//
//   METHOD /Resource/path[?key&key=value...] [BODY] [-> $name [SELECTOR]]
//
// The body is the rest of the line, passed on as text. A trailing
// "-> $name" stores a piece of the response's "value" in a variable.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace sensorctl {

enum class Method { Get, Post, Put, Delete };

char const* MethodName(Method method); // "GET", "POST", "PUT", "DELETE"
// Case-insensitive; false for any other word.
bool ParseMethod(std::string_view word, Method* method);

struct QueryItem {
    std::string key;
    std::optional<std::string> value; // none for a bare key
};

// A path into a JSON value: ".key" and "[index]" steps, applied in order.
using SelectorStep = std::variant<std::string, size_t>;

struct Binding {
    std::string name; // without '$'; empty when the line stores nothing
    std::string selector;
    std::vector<SelectorStep> steps;
};

struct RequestLine {
    Method method = Method::Get;
    std::string path; // as written, before '?'
    std::vector<QueryItem> query;
    std::string body; // empty when absent
    Binding binding;
};

// Parses one line (not a comment or blank). On failure returns false and
// sets *error to a sentence that names what is wrong.
bool ParseRequestLine(std::string_view line, RequestLine* request, std::string* error);

// Parses the text after '?': items joined by '&', "key" or "key=value".
bool ParseQuery(std::string_view text, std::vector<QueryItem>* query, std::string* error);

// Parses a selector such as ".referenceSensor.serial" or "[0].id".
bool ParseSelector(std::string_view text, std::vector<SelectorStep>* steps, std::string* error);

// True for lines the runner skips: blank, or starting with '#'.
bool IsCommentOrBlank(std::string_view line);

} // namespace sensorctl

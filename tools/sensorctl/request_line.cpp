#include "request_line.h"

#include <cctype>

namespace sensorctl {

namespace {

bool IsSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

std::string_view Trim(std::string_view text) {
    while (!text.empty() && IsSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

// Splits off the first whitespace-delimited word.
std::string_view TakeWord(std::string_view* text) {
    size_t end = 0;
    while (end < text->size() && !IsSpace((*text)[end]))
        ++end;
    std::string_view word = text->substr(0, end);
    text->remove_prefix(end);
    while (!text->empty() && IsSpace(text->front()))
        text->remove_prefix(1);
    return word;
}

bool IsNameStart(char c) {
    return std::isalpha(static_cast<unsigned char>(c)) || c == '_';
}
bool IsNameChar(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}

// Where the "-> $name [selector]" part of rest begins, or npos. A body may
// contain "->" itself; only a last "->" that starts the rest or follows
// whitespace and is followed by '$' counts.
size_t FindBinding(std::string_view rest) {
    if (rest.substr(0, 2) == "->") return 0;
    for (size_t at = rest.rfind("->"); at != std::string_view::npos && at > 0;
         at = rest.rfind("->", at - 1)) {
        if (!IsSpace(rest[at - 1])) continue;
        std::string_view after = Trim(rest.substr(at + 2));
        if (!after.empty() && after.front() == '$') return at;
        return std::string_view::npos;
    }
    return std::string_view::npos;
}

bool ParseBinding(std::string_view text, Binding* binding, std::string* error) {
    text = Trim(text.substr(2)); // after "->"
    if (text.empty() || text.front() != '$' || text.size() < 2 || !IsNameStart(text[1])) {
        *error = "expected '-> $name' after the request";
        return false;
    }
    size_t end = 1;
    while (end < text.size() && IsNameChar(text[end]))
        ++end;
    binding->name = std::string(text.substr(1, end - 1));
    text = text.substr(end);
    if (!text.empty() && !IsSpace(text.front())) {
        *error = "variable names are letters, digits and '_'";
        return false;
    }
    text = Trim(text);
    binding->selector = std::string(text);
    return ParseSelector(text, &binding->steps, error);
}

} // namespace

bool ParseQuery(std::string_view text, std::vector<QueryItem>* query, std::string* error) {
    while (!text.empty()) {
        size_t amp = text.find('&');
        std::string_view piece = text.substr(0, amp);
        text = amp == std::string_view::npos ? std::string_view() : text.substr(amp + 1);
        if (piece.empty()) continue;
        QueryItem item;
        size_t eq = piece.find('=');
        item.key = std::string(piece.substr(0, eq));
        if (eq != std::string_view::npos) item.value = std::string(piece.substr(eq + 1));
        if (item.key.empty()) {
            *error = "query item '" + std::string(piece) + "' has no key";
            return false;
        }
        query->push_back(std::move(item));
    }
    return true;
}

char const* MethodName(Method method) {
    switch (method) {
    case Method::Get:
        return "GET";
    case Method::Post:
        return "POST";
    case Method::Put:
        return "PUT";
    case Method::Delete:
        return "DELETE";
    }
    return "GET";
}

bool ParseMethod(std::string_view word, Method* method) {
    std::string upper;
    for (char c : word)
        upper += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    for (Method m : {Method::Get, Method::Post, Method::Put, Method::Delete}) {
        if (upper == MethodName(m)) {
            *method = m;
            return true;
        }
    }
    return false;
}

bool IsCommentOrBlank(std::string_view line) {
    line = Trim(line);
    return line.empty() || line.front() == '#';
}

bool ParseSelector(std::string_view text, std::vector<SelectorStep>* steps, std::string* error) {
    steps->clear();
    bool first = true;
    while (!text.empty()) {
        if (text.front() == '[') {
            size_t close = text.find(']');
            std::string_view digits = text.substr(1, close == std::string_view::npos ? 0 : close - 1);
            bool ok = close != std::string_view::npos && !digits.empty() && digits.size() < 10;
            for (char c : digits)
                ok = ok && std::isdigit(static_cast<unsigned char>(c));
            if (!ok) {
                *error = "selector '" + std::string(text) + "': expected [index]";
                return false;
            }
            steps->emplace_back(static_cast<size_t>(std::stoul(std::string(digits))));
            text.remove_prefix(close + 1);
        } else {
            // ".key", or a leading "key" without the dot.
            if (text.front() == '.')
                text.remove_prefix(1);
            else if (!first) {
                *error = "selector '" + std::string(text) + "': expected .key or [index]";
                return false;
            }
            size_t end = 0;
            while (end < text.size() && text[end] != '.' && text[end] != '[' && !IsSpace(text[end]))
                ++end;
            if (end == 0 || (end < text.size() && IsSpace(text[end]))) {
                *error = "selector has an empty key or a space";
                return false;
            }
            steps->emplace_back(std::string(text.substr(0, end)));
            text.remove_prefix(end);
        }
        first = false;
    }
    return true;
}

bool ParseRequestLine(std::string_view line, RequestLine* request, std::string* error) {
    *request = RequestLine();
    std::string_view rest = Trim(line);
    std::string_view method = TakeWord(&rest);
    if (method.empty()) {
        *error = "empty request";
        return false;
    }
    if (!ParseMethod(method, &request->method)) {
        *error = "unknown method '" + std::string(method) + "' (use GET, POST, PUT or DELETE)";
        return false;
    }
    std::string_view target = TakeWord(&rest);
    if (target.empty() || target.substr(0, 2) == "->") {
        *error = "the request has no resource path";
        return false;
    }
    size_t question = target.find('?');
    request->path = std::string(target.substr(0, question));
    if (question != std::string_view::npos &&
        !ParseQuery(target.substr(question + 1), &request->query, error))
        return false;

    size_t binding = FindBinding(rest);
    if (binding != std::string_view::npos) {
        if (!ParseBinding(rest.substr(binding), &request->binding, error)) return false;
        rest = rest.substr(0, binding);
    }
    request->body = std::string(Trim(rest));
    return true;
}

} // namespace sensorctl

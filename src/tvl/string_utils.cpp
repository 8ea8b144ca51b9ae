#include "tvl/string_utils.h"

#include <iomanip>
#include <locale>
#include <sstream>

namespace string {

namespace {

template <typename T> T extract(std::string const& text) {
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    T value = 0;
    stream >> value;
    return value;
}

std::string hexText(unsigned long value, unsigned long width) {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << std::hex << std::nouppercase << std::setfill('0') << std::setw(static_cast<int>(width))
           << value;
    return stream.str();
}

} // namespace

void split(std::vector<std::string>& out, std::string const& text, std::string const& delimiter) {
    if (delimiter.empty()) {
        if (!text.empty()) out.push_back(text);
        return;
    }
    std::string::size_type position = 0;
    for (;;) {
        std::string::size_type const hit = text.find(delimiter, position);
        if (hit == std::string::npos) break;
        if (hit > position) out.push_back(text.substr(position, hit - position));
        position = hit + delimiter.size();
    }
    if (position < text.size()) out.push_back(text.substr(position));
}

std::string& replace_all(std::string& s, std::string const& from, std::string const& to) {
    if (from == to || from.empty()) return s;
    std::string::size_type position = s.find(from);
    while (position != std::string::npos) {
        s.replace(position, from.size(), to);
        position = s.find(from, position + to.size());
    }
    return s;
}

template <> int to<int>(std::string const& text) {
    return extract<int>(text);
}
template <> unsigned int to<unsigned int>(std::string const& text) {
    return extract<unsigned int>(text);
}
template <> unsigned long to<unsigned long>(std::string const& text) {
    return extract<unsigned long>(text);
}

void* to_pointer(std::string const& text) {
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    void* pointer = nullptr;
    stream >> pointer;
    return stream.fail() ? nullptr : pointer;
}

template <> std::string hex<long>(long const& value, unsigned long width) {
    return hexText(static_cast<unsigned long>(value), width);
}

template <> std::string hex<unsigned long>(unsigned long const& value, unsigned long width) {
    return hexText(value, width);
}

} // namespace string

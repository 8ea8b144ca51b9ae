#include "tvl/fs/path.h"

#include "tvl/string_utils.h"

namespace fs {

namespace {
bool isSeparator(char c) {
    return c == '/' || c == '\\';
}
} // namespace

void Path::assign(std::string const& text) {
    path_ = text;
    if (!path_.empty() && isSeparator(path_.back())) path_.pop_back();
    // The platform separator is already '/'; the normalisation stays for other platforms.
    string::replace_all(path_, "/", "/");
}

void Path::appendPathComponent(std::string const& component) {
    std::string text = path_ + "/";
    if (!component.empty() && isSeparator(component.front()))
        text.append(component, 1, std::string::npos);
    else
        text += component;
    assign(text);
}

} // namespace fs

// A file-system path kept without a trailing separator.
#pragma once

#include <string>

namespace fs {

class Path {
public:
    Path() = default;
    explicit Path(std::string const& text) { assign(text); }
    virtual ~Path() = default;

    // Stores text without one trailing '/' or '\'.
    void assign(std::string const& text);
    // Adds "/" and the component (without its own leading separator).
    void appendPathComponent(std::string const& component);
    std::string const& string() const { return path_; }

private:
    std::string path_;
};

} // namespace fs

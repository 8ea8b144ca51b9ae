// Reads what the logging stand-in appended to the file named by
// LORVANT_LOG_FILE (set for the whole test run to a file of its own).
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace hostlog {

struct Line {
    int32_t level = 0;
    std::string message;
    bool operator==(Line const& other) const { return level == other.level && message == other.message; }
};

inline std::ostream& operator<<(std::ostream& out, Line const& line) {
    return out << "{" << line.level << ", \"" << line.message << "\"}";
}

// The lines logged by the logger "Mirel" since the last call (or construction).
class Tail {
public:
    Tail();
    std::vector<Line> lines();

private:
    std::streamoff offset_;
};

} // namespace hostlog

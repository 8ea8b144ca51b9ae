// Reads the lines the logging stand-in appends to this test run's own log file.
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

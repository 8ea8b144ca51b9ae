#include "host/log_file.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>

namespace hostlog {

namespace {

// Set before anything loads the logging stand-in: a file of this run's own,
// each line written as it is logged, so that it can be read right after.
std::string const& LogFile() {
    static std::string const path = "/tmp/host_tests_log." + std::to_string(getpid());
    static bool const set = [] {
        std::atexit([] { unlink(path.c_str()); });
        return setenv("LORVANT_LOG_FILE", path.c_str(), 1) == 0 && setenv("LORVANT_LOG_GATHER", "0", 1) == 0;
    }();
    (void)set;
    return path;
}
std::string const& kFileAtStart = LogFile();

std::streamoff EndOf(std::string const& file) {
    std::ifstream in(file, std::ios::binary | std::ios::ate);
    return in ? static_cast<std::streamoff>(in.tellg()) : 0;
}

} // namespace

Tail::Tail() : offset_(EndOf(LogFile())) {}

// A line of the stand-in reads "<date> <time> [<name>] level <n>: <message>".
std::vector<Line> Tail::lines() {
    std::vector<Line> out;
    std::ifstream in(LogFile(), std::ios::binary);
    in.seekg(offset_);
    std::string const tag = " [Mirel] level ";
    for (std::string text; std::getline(in, text);) {
        auto const at = text.find(tag);
        auto const colon = text.find(": ", at);
        if (at == std::string::npos || colon == std::string::npos) continue;
        out.push_back({std::atoi(text.c_str() + at + tag.size()), text.substr(colon + 2)});
    }
    offset_ = EndOf(LogFile());
    return out;
}

} // namespace hostlog

#include "host/log_file.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace hostlog {

namespace {

// Before anything loads the logging stand-in, give it a file of this run's own.
std::string const& LogFile() {
    static std::string const file = [] {
        char const* set = std::getenv("LORVANT_LOG_FILE");
        if (set != nullptr && set[0] != '\0') return std::string(set);
        static std::string const path = "/tmp/host_tests_log." + std::to_string(getpid());
        setenv("LORVANT_LOG_FILE", path.c_str(), 1);
        std::atexit([] { unlink(path.c_str()); });
        return path;
    }();
    return file;
}
std::string const& kFileAtStart = LogFile();

std::streamoff EndOf(std::string const& file) {
    std::ifstream in(file, std::ios::binary | std::ios::ate);
    return in ? static_cast<std::streamoff>(in.tellg()) : 0;
}

// One line of the stand-in: "<date> <time> [<name>] level <n>: <message>".
bool Parse(std::string const& text, Line* line) {
    std::string const tag = " [Mirel] level ";
    auto const at = text.find(tag);
    if (at == std::string::npos) return false;
    auto const colon = text.find(": ", at + tag.size());
    if (colon == std::string::npos) return false;
    line->level = std::atoi(text.substr(at + tag.size(), colon - at - tag.size()).c_str());
    line->message = text.substr(colon + 2);
    return true;
}

} // namespace

Tail::Tail() : offset_(EndOf(LogFile())) {}

std::vector<Line> Tail::lines() {
    std::vector<Line> out;
    std::ifstream in(LogFile(), std::ios::binary);
    if (!in) return out;
    in.seekg(offset_);
    std::string text;
    while (std::getline(in, text)) {
        Line line;
        if (Parse(text, &line)) out.push_back(line);
    }
    offset_ = EndOf(LogFile());
    return out;
}

} // namespace hostlog

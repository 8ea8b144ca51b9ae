#include "scenario.h"

#include <limits.h>
#include <stdlib.h>

#include <fstream>
#include <sstream>

namespace sensorctl {

namespace {

bool ReadFile(std::string const& path, std::string* text) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return false;
    std::ostringstream s;
    s << in.rdbuf();
    *text = s.str();
    return true;
}

} // namespace

bool Scenario::prepare(std::ostream& err) {
    if (path_.empty()) return true;
    if (!ReadFile(path_, &text_)) {
        err << "sensorctl: cannot read scenario " << path_ << "\n";
        return false;
    }
    char absolute[PATH_MAX];
    setenv("SENSORSIM_SCENARIO", realpath(path_.c_str(), absolute) ? absolute : path_.c_str(), 1);
    return true;
}

bool Scenario::apply(HostLibrary& library, std::ostream& err) {
    if (path_.empty()) return true;
    int32_t result = 0;
    if (!library.loadScenario(text_, &result)) {
        err << "sensorctl: warning: the back-end has no simulator; --scenario has no effect\n";
        return true;
    }
    if (result < 0) {
        err << "sensorctl: the simulator rejected scenario " << path_ << " (" << result << ")\n";
        return false;
    }
    return true;
}

} // namespace sensorctl

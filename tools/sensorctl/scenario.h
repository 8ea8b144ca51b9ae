// A scenario file for the simulator, given with --scenario.
#pragma once

#include <ostream>
#include <string>
#include <utility>

#include "host_library.h"

namespace sensorctl {

// Loads the scenario file into the simulator: through SENSORSIM_SCENARIO for
// a simulator that reads it when it starts, and directly once it is loaded.
class Scenario {
public:
    explicit Scenario(std::string path) : path_(std::move(path)) {}

    // Before the library is loaded: reads the file and sets the variable.
    bool prepare(std::ostream& err);
    // After loading, before Setup.
    bool apply(HostLibrary& library, std::ostream& err);

private:
    std::string path_;
    std::string text_;
};

} // namespace sensorctl

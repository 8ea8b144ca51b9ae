// `sensorctl serve [options]`: loads the library and serves it over HTTP until
// interrupted. See usage.cpp for the options.
#pragma once

namespace sensorctl {

// argv[first] is the first argument after "serve". Returns the exit code.
int RunServe(int argc, char** argv, int first);

} // namespace sensorctl

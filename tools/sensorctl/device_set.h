// Chooses the device set the library drives, without changing the library.
//
// A set is a folder of device libraries (libhalvern, libpallast, libdvc, ...).
// The library needs libhalvern and libpallast by their file names and opens the
// others from the folder libhalvern names, by default libhalvern's own. The
// dynamic loader satisfies a needed library with one already loaded under that
// name, so loading the set's libhalvern and libpallast by absolute path before
// the library makes the whole process use that set.
#pragma once

#include <string>

namespace sensorctl {

// The folder of the set "sim" or "linux" for the library at libraryPath: in an
// installed tree <library folder>/sensorcontrol/<set>; in the build tree
// <library folder>/linux for the Linux set and the library's own folder for the
// simulated one. Empty when none of them holds a libhalvern.
std::string FindDeviceSet(std::string const& libraryPath, std::string const& set);

// Loads the set's libhalvern and libpallast; to take effect it must run before
// the library is loaded. On failure says why in error.
bool PreloadDeviceSet(std::string const& folder, std::string* error);

} // namespace sensorctl

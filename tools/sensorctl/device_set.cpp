#include "device_set.h"

#include <dlfcn.h>
#include <unistd.h>

#ifndef SENSORCONTROL_LIBRARY_SUFFIX
#define SENSORCONTROL_LIBRARY_SUFFIX ".so"
#endif

namespace sensorctl {

namespace {

std::string FolderOf(std::string const& path) {
    size_t const slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string LibraryFile(std::string const& folder, char const* word) {
    return folder + "/" + word + SENSORCONTROL_LIBRARY_SUFFIX;
}

} // namespace

std::string FindDeviceSet(std::string const& libraryPath, std::string const& set) {
    std::string const folder = FolderOf(libraryPath);
    std::string const candidates[] = {folder + "/sensorcontrol/" + set,
                                      set == "sim" ? folder : folder + "/" + set};
    for (std::string const& candidate : candidates)
        if (access(LibraryFile(candidate, "libhalvern").c_str(), R_OK) == 0) return candidate;
    return "";
}

bool PreloadDeviceSet(std::string const& folder, std::string* error) {
    // Global, like the library itself, so that the simulator's control
    // functions (a dependency of the simulated libpallast) can be found.
    for (char const* word : {"libhalvern", "libpallast"}) {
        std::string const file = LibraryFile(folder, word);
        if (dlopen(file.c_str(), RTLD_NOW | RTLD_GLOBAL) == nullptr) {
            char const* reason = dlerror();
            *error = "cannot load " + file + ": " + (reason != nullptr ? reason : "unknown error");
            return false;
        }
    }
    return true;
}

} // namespace sensorctl

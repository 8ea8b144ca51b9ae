// Stand-in for the host's plug-in support library, shared by every device set.
// Each text comes from an environment variable when set, else from a default,
// read once per process; the default exports directory is the folder that holds
// this library, so a set's libhalvern points the product at that set's libraries.
#include <dlfcn.h>

#include <cstdlib>
#include <string>

#include "devices/halvern.h"

namespace {

std::string ownFolder() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&Plg_GetRegistryExportsPath), &info) == 0 || info.dli_fname == nullptr)
        return ".";
    std::string path = info.dli_fname;
    auto slash = path.rfind('/');
    return slash == std::string::npos ? std::string(".") : path.substr(0, slash);
}

std::string fromEnvironment(char const* variable, std::string const& fallback) {
    char const* value = std::getenv(variable);
    return value != nullptr ? value : fallback;
}

} // namespace

extern "C" {

char const* Plg_GetRegistryExportsPath(void) {
    static std::string const text = fromEnvironment("HALVERN_EXPORTS_PATH", ownFolder());
    return text.c_str();
}

char const* Plg_GetRegistryPath(void) {
    static std::string const text = fromEnvironment("HALVERN_REGISTRY_PATH", ownFolder() + "/registry");
    return text.c_str();
}

char const* Plg_GetArchitecture(void) {
    static std::string const text = fromEnvironment("HALVERN_ARCHITECTURE", "x86_64");
    return text.c_str();
}

char const* Plg_GetApplicationName(void) {
    static std::string const text = fromEnvironment("HALVERN_APPLICATION_NAME", "Sensor Workbench");
    return text.c_str();
}

} // extern "C"

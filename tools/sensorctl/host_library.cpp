#include "host_library.h"

#include <dlfcn.h>
#include <limits.h>
#include <stdlib.h>
#include <unistd.h>

#include <vector>

#ifndef SENSORCONTROL_LIBRARY_SUFFIX
#define SENSORCONTROL_LIBRARY_SUFFIX ".so"
#endif
#ifndef SENSORCONTROL_LIBRARY_FILE
#define SENSORCONTROL_LIBRARY_FILE "libsensorcontrol" SENSORCONTROL_LIBRARY_SUFFIX
#endif

namespace sensorctl {

namespace {

std::string Folder(std::string const& path) {
    size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

} // namespace

std::string DefaultLibraryPath(char const* argv0) {
    std::string executable;
    char buffer[PATH_MAX];
    ssize_t n = readlink("/proc/self/exe", buffer, sizeof buffer - 1);
    if (n > 0) {
        executable.assign(buffer, static_cast<size_t>(n));
    } else if (argv0 != nullptr && realpath(argv0, buffer) != nullptr) {
        executable = buffer;
    } else if (argv0 != nullptr) {
        executable = argv0;
    }
    std::string const folder = Folder(executable);
#ifdef SENSORCTL_INSTALLED_LIBRARY_DIR
    // Installed with a library folder other than lib (lib/x86_64-linux-gnu
    // under /usr on Debian); a build tree keeps everything in ../lib.
    std::string const installed = folder + "/" SENSORCTL_INSTALLED_LIBRARY_DIR "/" SENSORCONTROL_LIBRARY_FILE;
    if (access(installed.c_str(), F_OK) == 0) return installed;
#endif
    return folder + "/../lib/" SENSORCONTROL_LIBRARY_FILE;
}

HostLibrary::~HostLibrary() {
    // The library stays loaded until the process ends: its device-library
    // loaders close their libraries at exit, and unloading it before then
    // lets that last close unmap the library while its code still runs.
    if (setUp_) tearDown_();
}

bool HostLibrary::load(std::string const& path, std::string* error) {
    // Global, so that the simulator's control functions (in a library the
    // back-end depends on) can be found in the process afterwards.
    handle_ = dlopen(path.c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (handle_ == nullptr) {
        char const* reason = dlerror();
        *error = "cannot load " + path + ": " + (reason ? reason : "unknown error");
        return false;
    }
    path_ = path;
    setup_ = reinterpret_cast<void (*)()>(symbol("Setup"));
    tearDown_ = reinterpret_cast<void (*)()>(symbol("TearDown"));
    getResponse_ =
        reinterpret_cast<uint32_t (*)(uint32_t, char*, uint32_t*)>(symbol("BridgeHelperGetResponse"));
    if (setup_ == nullptr || tearDown_ == nullptr || getResponse_ == nullptr) {
        *error = path + " lacks Setup, TearDown or BridgeHelperGetResponse";
        return false;
    }
    return true;
}

bool HostLibrary::hasExport(std::string const& name) const {
    return symbol(name.c_str()) != nullptr;
}

void HostLibrary::setup() {
    setup_();
    setUp_ = true;
}

HostLibrary::Endpoint HostLibrary::endpoint(std::string const& exportName) const {
    return reinterpret_cast<Endpoint>(symbol(exportName.c_str()));
}

Response HostLibrary::call(std::string const& exportName, CallTexts const& texts) {
    return call(endpoint(exportName), texts);
}

Response HostLibrary::call(Endpoint endpoint, CallTexts const& texts) {
    uint32_t id =
        endpoint(texts.request.c_str(), texts.parameters.c_str(), texts.query.c_str(), texts.data.c_str());
    Response response;
    uint32_t length = 0;
    response.status = getResponse_(id, nullptr, &length);
    if (length == 0) {
        response.stored = false;
        return response;
    }
    std::vector<char> buffer(length, '\0');
    response.status = getResponse_(id, buffer.data(), &length);
    response.text.assign(buffer.data()); // the buffer ends in the zero the length counted
    return response;
}

void* HostLibrary::symbol(char const* name) const {
    return handle_ != nullptr ? dlsym(handle_, name) : nullptr;
}

void* HostLibrary::simulatorSymbol(char const* name) const {
    if (void* found = dlsym(RTLD_DEFAULT, name)) return found;
    if (void* found = symbol(name)) return found;
    // Loaded privately by one of the device libraries: reach it by name
    // without loading it anew.
    std::string const names[] = {Folder(path_) + "/libsensorsim" SENSORCONTROL_LIBRARY_SUFFIX,
                                 "libsensorsim" SENSORCONTROL_LIBRARY_SUFFIX};
    for (std::string const& file : names) {
        if (void* loaded = dlopen(file.c_str(), RTLD_LAZY | RTLD_NOLOAD)) {
            void* found = dlsym(loaded, name);
            dlclose(loaded); // drops only the reference RTLD_NOLOAD added
            if (found != nullptr) return found;
        }
    }
    return nullptr;
}

bool HostLibrary::loadScenario(std::string const& json, int32_t* result) {
    auto load = reinterpret_cast<int32_t (*)(char const*)>(simulatorSymbol("SimLoadScenario"));
    if (load == nullptr) return false;
    *result = load(json.c_str());
    return true;
}

bool HostLibrary::journal(std::string* json) {
    auto get = reinterpret_cast<uint32_t (*)(char*, uint32_t)>(simulatorSymbol("SimGetJournal"));
    if (get == nullptr) return false;
    uint32_t length = get(nullptr, 0);
    std::vector<char> buffer(length + 1, '\0');
    get(buffer.data(), length);
    json->assign(buffer.data());
    return true;
}

void HostLibrary::clearJournal() {
    if (auto clear = reinterpret_cast<void (*)()>(simulatorSymbol("SimClearJournal"))) clear();
}

} // namespace sensorctl

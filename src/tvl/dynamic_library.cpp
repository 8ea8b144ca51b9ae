#include "tvl/dynamic_library.h"

#include <dlfcn.h>

#include "share/bridge_result.h"

namespace tovel {

DynamicLibrary::~DynamicLibrary() {
    if (handle_ != nullptr) dlclose(handle_);
}

bool DynamicLibrary::load(fs::Path const& path) {
    if (handle_ != nullptr) return true;
    void* handle = dlopen(path.string().c_str(), RTLD_LAZY);
    if (handle == nullptr) return false;
    handle_ = handle;
    path_ = path;
    return true;
}

void DynamicLibrary::release() {
    if (handle_ != nullptr) dlclose(handle_);
    handle_ = nullptr;
}

void* DynamicLibrary::symbol(std::string const& name) const {
    if (handle_ == nullptr) return nullptr;
    return dlsym(handle_, name.c_str());
}

void DynamicLibrary::throw_missing() const {
    throw BridgeResultError(404, "FunctionNotFoundError", "A library does not have a requested function.");
}

} // namespace tovel

#include "share/lib/LibraryLoader.h"

#include <mutex>

#include "devices/halvern.h"
#include "share/bridge_result.h"

namespace tovel {

void LibraryLoader::throw_function_not_found_error() const {
    throw BridgeResultError(404, "FunctionNotFoundError", message_);
}

void LibraryLoader::ensureLoaded() {
    // Serialises first loads, so a thread never sees a half-set handle.
    static std::mutex loading;
    std::lock_guard<std::mutex> lock(loading);
    if (isOpen()) return;
    char const* exports = Plg_GetRegistryExportsPath();
    fs::Path path(exports != nullptr ? exports : "");
    path.appendPathComponent(std::string(word_) + SENSORCONTROL_LIBRARY_SUFFIX);
    load(path);
}

} // namespace tovel

#include "log.h"

#include <dlfcn.h>

#include <cstdio>
#include <mutex>

#include "devices/lorvant.h"

namespace pallast {

namespace {

std::mutex logMutex;
std::string libraryFolder;

using GetLogger = void* (*)();
using Log = void (*)(void*, char const*, int32_t, char const*);

constexpr int32_t kErrorLevel = 5;

} // namespace

void setLibraryFolder(std::string const& folder) {
    std::lock_guard<std::mutex> guard(logMutex);
    libraryFolder = folder;
}

void logError(std::string const& message) {
    std::lock_guard<std::mutex> guard(logMutex);
    if (!libraryFolder.empty()) {
        // Opened for each line: errors are rare, and the handle is reference-counted.
        void* library = dlopen((libraryFolder + "/liblorvant2.so").c_str(), RTLD_LAZY | RTLD_LOCAL);
        if (library != nullptr) {
            auto getLogger = reinterpret_cast<GetLogger>(dlsym(library, "lorvant_get_logger"));
            auto log = reinterpret_cast<Log>(dlsym(library, "lorvant_log"));
            if (getLogger != nullptr && log != nullptr) {
                log(getLogger(), "libpallast", kErrorLevel, message.c_str());
                dlclose(library);
                return;
            }
            dlclose(library);
        }
    }
    std::fprintf(stderr, "libpallast: %s\n", message.c_str());
}

} // namespace pallast

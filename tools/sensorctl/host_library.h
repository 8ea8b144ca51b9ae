// Loads libsensorcontrol and calls it the way a host application does:
// dlopen, Setup, one export call per request, the two-step response fetch,
// TearDown. Also reaches the simulator's control functions when the loaded
// back-end has them (a real one does not).
#pragma once

#include <cstdint>
#include <string>

#include "routes.h"

namespace sensorctl {

struct Response {
    uint32_t status = 0;
    std::string text;
    bool stored = true; // false when the library kept no response for the promise id
};

class HostLibrary {
public:
    HostLibrary() = default;
    HostLibrary(HostLibrary const&) = delete;
    HostLibrary& operator=(HostLibrary const&) = delete;
    ~HostLibrary(); // calls TearDown when Setup ran; the library stays loaded

    // Loads the library and finds Setup, TearDown and BridgeHelperGetResponse.
    bool load(std::string const& path, std::string* error);
    bool hasExport(std::string const& name) const;
    void setup();

    using Endpoint = uint32_t (*)(char const*, char const*, char const*, char const*);
    Endpoint endpoint(std::string const& exportName) const; // null when not exported

    // Calls the export and fetches its response; the export must exist.
    // Safe from several threads at once: the library is.
    Response call(std::string const& exportName, CallTexts const& texts);
    Response call(Endpoint endpoint, CallTexts const& texts);

    // Simulator control, looked up in the process; false when absent.
    bool loadScenario(std::string const& json, int32_t* result);
    bool journal(std::string* json);
    void clearJournal();

private:
    void* symbol(char const* name) const;
    void* simulatorSymbol(char const* name) const;

    void* handle_ = nullptr;
    std::string path_;
    void (*setup_)() = nullptr;
    void (*tearDown_)() = nullptr;
    uint32_t (*getResponse_)(uint32_t, char*, uint32_t*) = nullptr;
    bool setUp_ = false;
};

// libsensorcontrol (by its soname) in the installed library folder relative
// to this executable's folder when it is there, else in ../lib beside it (the
// build tree); argv0 is the fallback where /proc/self/exe is not available.
std::string DefaultLibraryPath(char const* argv0);

} // namespace sensorctl

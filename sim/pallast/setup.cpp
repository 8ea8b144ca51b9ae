// libpallast: set-up, the 32-bit compatibility process and the control panel.
#include "devices/pallast.h"
#include "world/world.h"

extern "C" {

DvError MDInitDeviceLibrariesDirectoryPath(char const* path) {
    sim::Call call("MDInitDeviceLibrariesDirectoryPath");
    call.text(path);
    DvError r;
    if (call.injected(&r)) return r;
    if (path == nullptr) return sim::result(sim::code::kInvalidArgument);
    call.world().libraryPath = path;
    return sim::ok();
}

signed char MDSupports32bitCompatibilityProcess(void) {
    sim::Call call("MDSupports32bitCompatibilityProcess");
    return call.world().compatibility.supported ? 1 : 0;
}

DvError MDLaunch32bitCompatibilityProcess(char const* processPath, char const* applicationName) {
    sim::Call call("MDLaunch32bitCompatibilityProcess");
    call.text(processPath).text(applicationName);
    DvError r;
    if (call.injected(&r)) return r;
    sim::CompatibilityProcess& process = call.world().compatibility;
    if (!process.supported) return sim::result(sim::code::kUnsupported);
    process.launched.push_back(
        {processPath != nullptr ? processPath : "", applicationName != nullptr ? applicationName : ""});
    if (process.launchResult >= 0) process.running = true;
    return sim::result(process.launchResult);
}

DvError MDQuit32bitCompatibilityProcess(void) {
    sim::Call call("MDQuit32bitCompatibilityProcess");
    DvError r;
    if (call.injected(&r)) return r;
    sim::CompatibilityProcess& process = call.world().compatibility;
    if (!process.supported) return sim::result(sim::code::kUnsupported);
    if (process.quitResult >= 0) process.running = false;
    return sim::result(process.quitResult);
}

DvError MDOpenPallastControlPanel(void) {
    sim::Call call("MDOpenPallastControlPanel");
    DvError r;
    if (call.injected(&r)) return r;
    ++call.world().controlPanelOpened;
    return sim::ok();
}

} // extern "C"

// libpallast: set-up, the compatibility process and the control panel, none of
// which exists on Linux beyond the folder of the device libraries.
#include "codes.h"
#include "devices/pallast.h"
#include "log.h"

using namespace pallast;

extern "C" {

DvError MDInitDeviceLibrariesDirectoryPath(char const* path) {
    if (path == nullptr) return result(code::kInvalidArgument);
    setLibraryFolder(path);
    return result(code::kOK);
}

signed char MDSupports32bitCompatibilityProcess(void) {
    return 0;
}

DvError MDLaunch32bitCompatibilityProcess(char const*, char const*) {
    return result(code::kUnsupported);
}

DvError MDQuit32bitCompatibilityProcess(void) {
    return result(code::kUnsupported);
}

DvError MDOpenPallastControlPanel(void) {
    return result(code::kUnsupported);
}

} // extern "C"

// libdvc of the Linux set. Monitor control goes through the maker's own
// channel to the monitor, which Linux does not offer, so this library knows
// no monitor: the list is empty and every call about a named monitor answers
// unsupported rather than pretending the monitor is absent.
#include "devices/dvc.h"
#include "codes.h"

namespace {
DvError const kUnsupported = pallast::result(pallast::code::kUnsupported);
DvError const kNoMoreData = pallast::result(pallast::code::kNoMoreData);
} // namespace

extern "C" {

DvError DvCtrlGetSerialProduct(unsigned long, char (*)[9], char (*)[17]) {
    return kNoMoreData;
}

DvError DvCtrlGetHIDHandle(char const*, char const*, void**) {
    return kUnsupported;
}

DvError DvCtrlLockMonitor(char const*, char const*) {
    return kUnsupported;
}

DvError DvCtrlUnlockMonitor(char const*, char const*) {
    return kUnsupported;
}

signed char DvCtrlSupportedHZEPriority(char const*, char const*) {
    return 0;
}

DvError DvCtrlGetHZEPriority(char const*, char const*, DvCtrlHZEPriority*) {
    return kUnsupported;
}

uint16_t DvCtrlGetPanelRevision(char const*, char const*) {
    return 0;
}

} // extern "C"

// libdvc: the monitor list, HID handles, the monitor lock, HZE priority and
// panel revision. Every lookup by two texts takes product and serial in either
// order, as the product passes them both ways.
#include "devices/dvc.h"
#include "world/world.h"

extern "C" {

DvError DvCtrlGetSerialProduct(unsigned long index, char (*product)[9], char (*serial)[17]) {
    sim::Call call("DvCtrlGetSerialProduct");
    call.unum(index);
    DvError r;
    if (call.injected(&r)) return r;
    auto const& monitors = call.world().monitors;
    if (index >= monitors.size()) return sim::result(sim::code::kNoMoreData);
    if (product == nullptr || serial == nullptr) return sim::result(sim::code::kInvalidBuffer);
    sim::copyText(*product, sizeof *product, monitors[index].product);
    sim::copyText(*serial, sizeof *serial, monitors[index].serial);
    return sim::ok();
}

DvError DvCtrlGetHIDHandle(char const* first, char const* second, void** hidHandle) {
    sim::Call call("DvCtrlGetHIDHandle");
    call.text(first).text(second);
    DvError r;
    if (call.injected(&r)) return r;
    if (hidHandle == nullptr) return sim::result(sim::code::kInvalidArgument);
    sim::Monitor* monitor = call.monitorByNames(first, second);
    if (monitor == nullptr) return sim::result(sim::code::kMonitorConnection);
    *hidHandle = sim::hidPointer(monitor->hidHandle);
    return sim::ok();
}

// Locks taken by this process are counted; another party's lock refuses.
DvError DvCtrlLockMonitor(char const* product, char const* serial) {
    sim::Call call("DvCtrlLockMonitor");
    call.text(product).text(serial);
    DvError r;
    if (call.injected(&r)) return r;
    sim::Monitor* monitor = call.monitorByNames(product, serial);
    if (monitor == nullptr) return sim::result(sim::code::kMonitorConnection);
    if (monitor->heldByOther) return sim::result(sim::code::kMonitorOwned);
    ++monitor->lockCount;
    return sim::ok();
}

DvError DvCtrlUnlockMonitor(char const* product, char const* serial) {
    sim::Call call("DvCtrlUnlockMonitor");
    call.text(product).text(serial);
    DvError r;
    if (call.injected(&r)) return r;
    sim::Monitor* monitor = call.monitorByNames(product, serial);
    if (monitor == nullptr) return sim::result(sim::code::kMonitorConnection);
    if (monitor->lockCount == 0) return sim::result(sim::code::kInvalidPrecondition);
    --monitor->lockCount;
    return sim::ok();
}

signed char DvCtrlSupportedHZEPriority(char const* serial, char const* product) {
    sim::Call call("DvCtrlSupportedHZEPriority");
    call.text(serial).text(product);
    sim::Monitor* monitor = call.monitorByNames(serial, product);
    return monitor != nullptr && monitor->hzePrioritySupported ? 1 : 0;
}

DvError DvCtrlGetHZEPriority(char const* serial, char const* product, DvCtrlHZEPriority* priority) {
    sim::Call call("DvCtrlGetHZEPriority");
    call.text(serial).text(product);
    DvError r;
    if (call.injected(&r)) return r;
    sim::Monitor* monitor = call.monitorByNames(serial, product);
    if (monitor == nullptr) return sim::result(sim::code::kMonitorConnection);
    if (!monitor->hzePrioritySupported) return sim::result(sim::code::kUnsupported);
    if (priority == nullptr) return sim::result(sim::code::kInvalidBuffer);
    *priority = monitor->hzePriority;
    return sim::ok();
}

uint16_t DvCtrlGetPanelRevision(char const* serial, char const* product) {
    sim::Call call("DvCtrlGetPanelRevision");
    call.text(serial).text(product);
    sim::Monitor* monitor = call.monitorByNames(serial, product);
    return monitor != nullptr ? monitor->panelRevision : 0;
}

} // extern "C"

// libtorvik: a snapshot of the USB device names at the time it is taken.
#include <string>
#include <vector>

#include "devices/torvik.h"
#include "world/world.h"

struct TvkUSB {
    std::string name;
};

struct TvkSnapshot {
    std::vector<TvkUSB> devices;
};

extern "C" {

TvkSnapshot* TvkCreateUSBDeviceSnapshot(void) {
    sim::Call call("TvkCreateUSBDeviceSnapshot");
    if (call.world().usbSnapshotFails) return nullptr;
    auto* snapshot = new TvkSnapshot();
    for (auto const& name : call.world().usbDevices)
        snapshot->devices.push_back(TvkUSB{name});
    return snapshot;
}

TvkUSB* TvkEnumUSBDevice(TvkSnapshot* snapshot, uint32_t index) {
    sim::Call call("TvkEnumUSBDevice");
    call.handle(snapshot).num(index);
    if (snapshot == nullptr || index >= snapshot->devices.size()) return nullptr;
    return &snapshot->devices[index];
}

char const* TvkGetUSBDeviceName(TvkUSB* device) {
    sim::Call call("TvkGetUSBDeviceName");
    call.handle(device);
    return device != nullptr ? device->name.c_str() : nullptr;
}

void TvkReleaseSnapshot(TvkSnapshot* snapshot) {
    sim::Call call("TvkReleaseSnapshot");
    call.handle(snapshot);
    delete snapshot;
}

} // extern "C"

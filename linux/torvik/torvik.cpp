// libtorvik of the Linux set: the USB devices on the bus, through libudev.
//
// A device's name is its USB product string, as the device reports it (what
// lsusb -v shows as iProduct); a device without one is named by its ids,
// "vvvv:pppp" in lower-case hexadecimal, so every device has a stable name a
// host can map. Only whole devices are listed, not their interfaces, in the
// order of their sysfs paths. The snapshot copies the names, so it stays valid
// while it is enumerated whatever happens on the bus meanwhile.
#include <libudev.h>

#include <memory>
#include <string>
#include <vector>

#include "devices/torvik.h"

struct TvkUSB {
    std::string name;
};

struct TvkSnapshot {
    std::vector<TvkUSB> devices;
};

namespace {

template <typename T, T* (*Unref)(T*)> struct Unreferencing {
    void operator()(T* object) const { Unref(object); }
};
using Udev = std::unique_ptr<udev, Unreferencing<udev, udev_unref>>;
using Enumeration = std::unique_ptr<udev_enumerate, Unreferencing<udev_enumerate, udev_enumerate_unref>>;
using Device = std::unique_ptr<udev_device, Unreferencing<udev_device, udev_device_unref>>;

std::string NameOf(udev_device* device) {
    char const* product = udev_device_get_sysattr_value(device, "product");
    if (product != nullptr && *product != '\0') return product;
    char const* vendorID = udev_device_get_sysattr_value(device, "idVendor");
    char const* productID = udev_device_get_sysattr_value(device, "idProduct");
    return std::string(vendorID != nullptr ? vendorID : "") + ":" + (productID != nullptr ? productID : "");
}

bool IsWholeDevice(udev_device* device) {
    char const* type = udev_device_get_devtype(device);
    return type != nullptr && std::string(type) == "usb_device";
}

} // namespace

extern "C" {

TvkSnapshot* TvkCreateUSBDeviceSnapshot(void) {
    Udev context(udev_new());
    if (!context) return nullptr;
    Enumeration enumeration(udev_enumerate_new(context.get()));
    if (!enumeration || udev_enumerate_add_match_subsystem(enumeration.get(), "usb") < 0 ||
        udev_enumerate_scan_devices(enumeration.get()) < 0)
        return nullptr;
    auto snapshot = std::make_unique<TvkSnapshot>();
    udev_list_entry* entry = nullptr;
    udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(enumeration.get())) {
        // A device unplugged since the scan is simply not listed.
        Device device(udev_device_new_from_syspath(context.get(), udev_list_entry_get_name(entry)));
        if (device && IsWholeDevice(device.get())) snapshot->devices.push_back(TvkUSB{NameOf(device.get())});
    }
    return snapshot.release();
}

TvkUSB* TvkEnumUSBDevice(TvkSnapshot* snapshot, uint32_t index) {
    if (snapshot == nullptr || index >= snapshot->devices.size()) return nullptr;
    return &snapshot->devices[index];
}

char const* TvkGetUSBDeviceName(TvkUSB* device) {
    return device != nullptr ? device->name.c_str() : nullptr;
}

void TvkReleaseSnapshot(TvkSnapshot* snapshot) {
    delete snapshot;
}

} // extern "C"

// libtorvik of the Linux set against the machine's own USB bus, as sysfs
// shows it. (A bus built in a scratch folder cannot stand in: libudev refuses
// any device that is not on a real sysfs.)
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "devices/torvik.h"
#include "support.h"

namespace {

struct Torvik {
    Torvik()
        : handle(dlopen(
              (std::string(TEST_LIBRARY_DIR) + "/linux/libtorvik" SENSORCONTROL_LIBRARY_SUFFIX).c_str(),
              RTLD_NOW | RTLD_LOCAL)) {
        if (handle == nullptr) return;
        create = reinterpret_cast<decltype(create)>(dlsym(handle, "TvkCreateUSBDeviceSnapshot"));
        enumerate = reinterpret_cast<decltype(enumerate)>(dlsym(handle, "TvkEnumUSBDevice"));
        name = reinterpret_cast<decltype(name)>(dlsym(handle, "TvkGetUSBDeviceName"));
        release = reinterpret_cast<decltype(release)>(dlsym(handle, "TvkReleaseSnapshot"));
    }
    ~Torvik() {
        if (handle != nullptr) dlclose(handle);
    }
    // Walks the snapshot the way the product does: up to the first null.
    std::vector<TvkUSB*> devices(TvkSnapshot* snapshot) const {
        std::vector<TvkUSB*> found;
        for (uint32_t i = 0; TvkUSB* device = enumerate(snapshot, i); ++i)
            found.push_back(device);
        return found;
    }

    void* handle;
    decltype(&TvkCreateUSBDeviceSnapshot) create = nullptr;
    decltype(&TvkEnumUSBDevice) enumerate = nullptr;
    decltype(&TvkGetUSBDeviceName) name = nullptr;
    decltype(&TvkReleaseSnapshot) release = nullptr;
};

TEST(UsbSnapshot, NamesTheDevicesSysfsShows) {
    Torvik torvik;
    ASSERT_NE(nullptr, torvik.handle) << dlerror();
    TvkSnapshot* snapshot = torvik.create();
    ASSERT_NE(nullptr, snapshot); // an empty bus is an empty snapshot, not a failure
    std::vector<std::string> names;
    for (TvkUSB* device : torvik.devices(snapshot))
        names.push_back(torvik.name(device));
    std::sort(names.begin(), names.end());
    std::vector<std::string> shown = linuxsettest::UsbNames();
    std::sort(shown.begin(), shown.end());
    EXPECT_EQ(shown, names);
    EXPECT_EQ(nullptr, torvik.enumerate(snapshot, static_cast<uint32_t>(names.size()) + 5));
    EXPECT_EQ(nullptr, torvik.enumerate(nullptr, 0));
    EXPECT_EQ(nullptr, torvik.name(nullptr));
    torvik.release(snapshot);
    torvik.release(nullptr);
}

// The product reads one device's name after asking for the next ones, and
// another host thread may take and drop a snapshot meanwhile.
TEST(UsbSnapshot, StaysValidWhileEnumerated) {
    Torvik torvik;
    ASSERT_NE(nullptr, torvik.handle) << dlerror();
    TvkSnapshot* first = torvik.create();
    ASSERT_NE(nullptr, first);
    std::vector<TvkUSB*> const devices = torvik.devices(first);
    std::vector<char const*> texts;
    std::vector<std::string> copies;
    for (TvkUSB* device : devices) {
        texts.push_back(torvik.name(device));
        copies.push_back(texts.back());
    }
    TvkSnapshot* second = torvik.create();
    ASSERT_NE(nullptr, second);
    EXPECT_EQ(devices.size(), torvik.devices(second).size());
    torvik.release(second);
    for (size_t i = 0; i < devices.size(); ++i) {
        EXPECT_EQ(devices[i], torvik.enumerate(first, static_cast<uint32_t>(i)));
        EXPECT_EQ(texts[i], torvik.name(devices[i])); // the same text, still readable
        EXPECT_EQ(copies[i], texts[i]);
    }
    torvik.release(first);
}

} // namespace

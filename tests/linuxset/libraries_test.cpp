// The Linux set's libraries, opened from their folder as the product opens
// them; libtorvik against this machine's USB bus as sysfs shows it. (A bus
// built in a scratch folder cannot stand in: libudev refuses devices that are
// not on a real sysfs.)
#include <dirent.h>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "devices/torvik.h"

namespace {

void* Open(std::string const& word) {
    return dlopen((std::string(TEST_LIBRARY_DIR) + "/linux/" + word + SENSORCONTROL_LIBRARY_SUFFIX).c_str(),
                  RTLD_NOW | RTLD_LOCAL);
}

// A function the product looks up and does not find ends its request with 404
// "FunctionNotFoundError", which would hide what the set really answers.
TEST(LinuxSetLibraries, ExportEveryFunctionTheirHeaderDeclares) {
    for (auto const& [word, header] : {std::pair{"libhalvern", "halvern.h"},
                                       {"liblorvant2", "lorvant.h"},
                                       {"libdvc", "dvc.h"},
                                       {"libquorSensor", "quorsensor.h"},
                                       {"libcorvane", "corvane.h"},
                                       {"libtorvik", "torvik.h"}}) {
        void* library = Open(word);
        ASSERT_NE(nullptr, library) << dlerror();
        std::stringstream text;
        text << std::ifstream(std::string(TEST_SOURCE_DIR) + "/include/devices/" + header).rdbuf();
        std::string const source = text.str();
        std::regex const declaration(R"(DEVICE_API\s+[^;(]*?\b(\w+)\s*\()");
        int declared = 0;
        for (std::sregex_iterator it(source.begin(), source.end(), declaration), end; it != end;
             ++it, ++declared)
            EXPECT_NE(nullptr, dlsym(library, (*it)[1].str().c_str())) << word << " lacks " << (*it)[1];
        EXPECT_GT(declared, 1) << header;
        dlclose(library);
    }
}

// Whole devices ("1-1.2", "usb1"), not interfaces ("1-1.2:1.0"): the product
// string, else "vendor:product" ids. None on a machine without a USB bus.
std::vector<std::string> NamesSysfsShows() {
    std::vector<std::string> names;
    std::string const bus = "/sys/bus/usb/devices/";
    DIR* folder = opendir(bus.c_str());
    for (dirent* entry; folder != nullptr && (entry = readdir(folder)) != nullptr;) {
        std::string const device = entry->d_name;
        if (device[0] == '.' || device.find(':') != std::string::npos) continue;
        std::string product, vendorID, productID;
        std::getline(std::ifstream(bus + device + "/product"), product);
        std::getline(std::ifstream(bus + device + "/idVendor"), vendorID);
        std::getline(std::ifstream(bus + device + "/idProduct"), productID);
        names.push_back(!product.empty() ? product : vendorID + ":" + productID);
    }
    if (folder != nullptr) closedir(folder);
    std::sort(names.begin(), names.end());
    return names;
}

// The product reads a device's name after asking for later ones, while
// another host thread may take and drop a snapshot of its own.
TEST(UsbSnapshot, NamesTheDevicesSysfsShowsAndStaysValidWhileEnumerated) {
    void* torvik = Open("libtorvik");
    ASSERT_NE(nullptr, torvik) << dlerror();
    auto create =
        reinterpret_cast<decltype(&TvkCreateUSBDeviceSnapshot)>(dlsym(torvik, "TvkCreateUSBDeviceSnapshot"));
    auto enumerate = reinterpret_cast<decltype(&TvkEnumUSBDevice)>(dlsym(torvik, "TvkEnumUSBDevice"));
    auto name = reinterpret_cast<decltype(&TvkGetUSBDeviceName)>(dlsym(torvik, "TvkGetUSBDeviceName"));
    auto release = reinterpret_cast<decltype(&TvkReleaseSnapshot)>(dlsym(torvik, "TvkReleaseSnapshot"));

    TvkSnapshot* snapshot = create();
    ASSERT_NE(nullptr, snapshot); // an empty bus is an empty snapshot, not a failure
    std::vector<TvkUSB*> devices;
    std::vector<char const*> texts;
    for (uint32_t i = 0; TvkUSB* device = enumerate(snapshot, i); ++i) {
        devices.push_back(device);
        texts.push_back(name(device));
    }
    std::vector<std::string> names(texts.begin(), texts.end());
    std::sort(names.begin(), names.end());
    EXPECT_EQ(NamesSysfsShows(), names);

    release(create());
    for (size_t i = 0; i < devices.size(); ++i) {
        EXPECT_EQ(devices[i], enumerate(snapshot, static_cast<uint32_t>(i)));
        EXPECT_EQ(texts[i], name(devices[i]));
    }
    EXPECT_EQ(nullptr, enumerate(nullptr, 0));
    release(snapshot);
    dlclose(torvik);
}

} // namespace

// Sensors, SensorsName, DeviceID, IndividualID, Monitors, PallastControlPanel.
#include "sensorcontrol/bridge/Sensors.h"

#include <cstdint>
#include <vector>

#include "devices/dvc.h"
#include "devices/pallast.h"
#include "sensorcontrol/device/SensorCache.h"
#include "sensorcontrol/device/SerialUSBConnection.h"
#include "share/error_check.h"
#include "share/lib/libdvcLoader.h"
#include "tvl/string_utils.h"
#include "tvl/threading/mutex_locker.h"

namespace tovel {
namespace bridge {

using quilljson::Value;

namespace {

// A text parameter: the member's scalar text, empty when it is missing or the
// holder is no object.
std::string Text(Value const& holder, char const* key) {
    return holder[key].toString("");
}

std::string Name(char const* name) {
    return name != nullptr ? std::string(name) : std::string();
}

device::SensorCache& Cache() {
    return device::SensorCache::Instance();
}

} // namespace

BridgeResult Sensors::Get(BridgeData const& data) {
    uri += "Sensors";
    // Held across the device enumeration too.
    threading::MutexLocker locker(Cache().mutex());

    if (data.query.contains("connected")) {
        Value devices = Value::array();
        MDDeviceID deviceID = 0;
        uint64_t individualID = 0;
        for (uint32_t index = 0; MDEnumConnectedDevices(index, &deviceID, &individualID) >= 0; ++index) {
            Value device = Value::object();
            device["deviceID"] = deviceID;
            device["individualID"] = string::hex(static_cast<unsigned long>(individualID), 16);
            devices.append(device);
        }
        return BridgeResultOK(devices);
    }

    if (data.query.contains("serialConnected")) {
        device::SerialUSBConnection& serial = device::SerialUSBConnection::Instance();
        serial.update();
        return BridgeResultOK(serial.connectedDeviceIDs());
    }

    Value ids = Value::array();
    for (auto const& entry : Cache().handles())
        ids.append(Value(entry.first));
    return BridgeResultOK(ids);
}

BridgeResult Sensors::Put(BridgeData const& data) {
    uri += "Sensors";
    if (data.data.contains("libraryPath")) {
        std::string const path = Text(data.data, "libraryPath");
        BridgeCheckDvError(MDInitDeviceLibrariesDirectoryPath(path.c_str()),
                           "Init device libraries directory path.");
    }
    if (data.data.contains("serialMappings"))
        device::SerialUSBConnection::Instance().setDeviceIDMappings(data.data["serialMappings"]);
    return BridgeResultOK(Value());
}

BridgeResult Sensors::Delete(BridgeData const&) {
    uri += "Sensors";
    threading::MutexLocker locker(Cache().mutex());
    Cache().clear();
    return BridgeResultOK(Value());
}

BridgeResult SensorsName::Get(BridgeData const& data) {
    uri += "Sensors/Name";
    Value names = Value::array();

    if (data.query.contains("deviceIDs")) {
        std::vector<std::string> pieces;
        string::split(pieces, Text(data.query, "deviceIDs"), ",");
        for (std::string const& piece : pieces)
            names.append(Value(Name(MDGetNameFromDeviceID(string::to<unsigned int>(piece)))));
        return BridgeResultOK(names);
    }

    threading::MutexLocker locker(Cache().mutex());
    for (auto const& entry : Cache().handles())
        names.append(Value(Name(MDGetName(entry.second.handle))));
    return BridgeResultOK(names);
}

BridgeResult DeviceID::Post(BridgeData const& data) {
    std::string const text = Text(data.parameters, "deviceID");
    uri += "Sensors/" + text;
    if (text.empty()) throw BadRequest("URI is invalid.");
    MDDeviceID const deviceID = static_cast<MDDeviceID>(string::to<unsigned long>(text));

    threading::MutexLocker locker(Cache().mutex());
    void* handle = nullptr;
    BridgeCheckDvError(MDOpen(deviceID, &handle), "Open sensor.");
    return BridgeResultOK(Value(Cache().registerHandle(handle)));
}

BridgeResult Monitors::Post(BridgeData const& data) {
    std::string const serial = Text(data.parameters, "serial");
    std::string const product = Text(data.parameters, "product");
    uri += "Monitors/" + product + "/" + serial + "/Sensor";
    if (serial.empty() || product.empty()) throw BadRequest("URI is invalid.");

    threading::MutexLocker locker(Cache().mutex());
    void* hid = nullptr;
    // Serial first: the monitor-control library finds the monitor by both names in either order.
    BridgeCheckDvError(
        TOVEL_EXEC(libdvcLoader::loader(), DvCtrlGetHIDHandle, serial.c_str(), product.c_str(), &hid),
        "Get HID handle.");
    void* handle = nullptr;
    BridgeCheckDvError(MDOpenWithHIDHandle(hid, &handle), "Open sensor with HID handle.");
    // The serial goes into the entry's product slot and the product into its
    // serial slot; the monitor-update exports match the slots in that order.
    return BridgeResultOK(Value(Cache().registerHandle(handle, serial, product)));
}

BridgeResult IndividualID::Post(BridgeData const& data) {
    std::string const text = Text(data.parameters, "individualID");
    uri += "Sensors/Individual/" + text;
    if (text.empty()) throw BadRequest("URI is invalid.");
    uint64_t const individualID = reinterpret_cast<uintptr_t>(string::to_pointer(text));

    threading::MutexLocker locker(Cache().mutex());
    void* handle = nullptr;
    BridgeCheckDvError(MDOpenWithIndividualID(individualID, &handle), "Open sensor with individual id.");
    return BridgeResultOK(Value(Cache().registerHandle(handle)));
}

BridgeResult PallastControlPanel::Put(BridgeData const&) {
    uri += "Pallast/ControlPanel";
    BridgeCheckDvError(MDOpenPallastControlPanel(), "Open Pallast Control Panel.");
    return BridgeResultOK(Value());
}

} // namespace bridge
} // namespace tovel

// libpallast: colord's sensors listed, named and opened.
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "devices/pallast.h"
#include "open_sensors.h"

using namespace pallast;

namespace {

// The list MDEnumConnectedDevices walks: read afresh at index 0, so that one
// walk sees one consistent list.
std::mutex listingMutex;
std::vector<SensorInfo>& listing() {
    static auto* sensors = new std::vector<SensorInfo>;
    return *sensors;
}

template <typename Match> DvError openFirst(void** handle, Match match) {
    if (handle == nullptr) return result(code::kInvalidArgument);
    *handle = nullptr;
    for (auto const& info : listSensors())
        if (match(info)) {
            *handle = registerSensor(info);
            return result(code::kOK);
        }
    return result(code::kSensorConnection);
}

} // namespace

extern "C" {

int32_t MDEnumConnectedDevices(uint32_t index, MDDeviceID* deviceID, uint64_t* individualID) {
    std::lock_guard<std::mutex> guard(listingMutex);
    std::vector<SensorInfo>& sensors = listing();
    if (index == 0) sensors = listSensors();
    if (index >= sensors.size()) return -1;
    if (deviceID != nullptr) *deviceID = sensors[index].deviceID;
    if (individualID != nullptr) *individualID = sensors[index].individualID;
    return 0;
}

char const* MDGetNameFromDeviceID(MDDeviceID deviceID) {
    // Names handed out stay valid for the life of the process; a name is kept
    // once per device id and never changed afterwards.
    static std::mutex namesMutex;
    static auto* names = new std::map<MDDeviceID, std::string>;
    for (auto const& info : listSensors())
        if (info.deviceID == deviceID) {
            std::lock_guard<std::mutex> guard(namesMutex);
            return names->emplace(deviceID, info.name()).first->second.c_str();
        }
    return nullptr;
}

DvError MDOpen(MDDeviceID deviceID, void** handle) {
    return openFirst(handle, [&](SensorInfo const& info) { return info.deviceID == deviceID; });
}

DvError MDOpenWithIndividualID(uint64_t individualID, void** handle) {
    if (individualID == 0) return result(code::kSensorConnection);
    return openFirst(handle, [&](SensorInfo const& info) { return info.individualID == individualID; });
}

DvError MDOpenWithHIDHandle(void*, void** handle) {
    // No Linux interface reaches the sensors built into monitors.
    if (handle != nullptr) *handle = nullptr;
    return result(code::kUnsupported);
}

DvError MDClose(void** handle) {
    if (handle == nullptr) return result(code::kInvalidArgument);
    bool const known = unregisterSensor(*handle);
    *handle = nullptr;
    return result(known ? code::kOK : code::kNotRegistered);
}

} // extern "C"

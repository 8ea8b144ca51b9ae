// Handle management for the host and its other plug-ins: lookups, removal,
// the built-in sensor around a monitor update, serial sensors, the registry lock.
// Every export reports through its result and never lets an exception out.
#include <cstdint>
#include <string>

#include "devices/dvc.h"
#include "devices/pallast.h"
#include "sensorcontrol/MirelLogger.h"
#include "sensorcontrol/device/SensorCache.h"
#include "sensorcontrol/device/SerialUSBConnection.h"
#include "sensorcontrol/sensorcontrol.h"
#include "share/lib/libdvcLoader.h"
#include "tvl/threading/mutex_locker.h"

namespace {

using tovel::device::SensorCache;

constexpr int32_t kOK = 0;
constexpr int32_t kFailed = static_cast<int32_t>(0x80000000u);
constexpr int32_t kNotRegistered = static_cast<int32_t>(0x80000005u);
constexpr int32_t kInvalidArgument = static_cast<int32_t>(0x80000001u);

// The monitor's HID handle; a negative code of the library is passed on.
int32_t MonitorHIDHandle(char const* product, char const* serial, void** hid) {
    *hid = nullptr;
    DvError const result =
        TOVEL_EXEC(tovel::libdvcLoader::loader(), DvCtrlGetHIDHandle, product, serial, hid);
    return result.code;
}

bool SameMonitor(tovel::device::SensorHandle const& entry, char const* product, char const* serial) {
    return entry.product == product && entry.serial == serial;
}

void Log(tovel::LorvantLevel level, char const* sentence) {
    tovel::MirelLogger::Instance().log(level, sentence);
}

} // namespace

extern "C" {

bool SensorControlGetHandleForID(char const* id, void** handle) {
    if (id == nullptr) return false;
    try {
        void* found = SensorCache::Instance().handle(id);
        if (handle != nullptr) *handle = found;
        return found != nullptr;
    } catch (...) {
        return false;
    }
}

int32_t MirelGetHandleForHIDHandle(uint64_t hidHandle, void** handle) {
    if (hidHandle == 0) return kNotRegistered;
    try {
        SensorCache& cache = SensorCache::Instance();
        threading::MutexLocker locker(cache.mutex());
        for (auto const& entry : cache.handles()) {
            if (reinterpret_cast<uintptr_t>(MDGetHIDHandle(entry.second.handle)) != hidHandle) continue;
            if (handle != nullptr) *handle = entry.second.handle;
            return kOK;
        }
        return kNotRegistered;
    } catch (...) {
        return kFailed;
    }
}

int32_t MirelGetHandleForDeviceID(int32_t deviceID, void** handle) {
    if (deviceID == 0) return kNotRegistered;
    try {
        SensorCache& cache = SensorCache::Instance();
        threading::MutexLocker locker(cache.mutex());
        for (auto const& entry : cache.handles()) {
            if (static_cast<int32_t>(MDGetDeviceID(entry.second.handle)) != deviceID) continue;
            if (handle != nullptr) *handle = entry.second.handle;
            return kOK;
        }
        return kNotRegistered;
    } catch (...) {
        return kFailed;
    }
}

int32_t MirelRemoveSensor(void* handle) {
    if (handle == nullptr) return kNotRegistered;
    try {
        SensorCache& cache = SensorCache::Instance();
        threading::MutexLocker locker(cache.mutex());
        std::string const id = cache.idForHandle(handle);
        if (id.empty()) return kNotRegistered;
        // The device stays open: whoever removes it from the registry owns it now.
        cache.unregisterHandle(id);
        return kOK;
    } catch (...) {
        return kFailed;
    }
}

int32_t MirelPreUpdateBuiltInSensorHandle(char const* product, char const* serial) {
    if (product == nullptr || serial == nullptr) return kInvalidArgument;
    try {
        void* hid = nullptr;
        int32_t const found = MonitorHIDHandle(product, serial, &hid);
        if (found < 0) return found;
        if (hid == nullptr) return kOK;

        SensorCache& cache = SensorCache::Instance();
        threading::MutexLocker locker(cache.mutex());
        // The entries stay, so that their ids are valid again after the update.
        for (auto& entry : cache.handles()) {
            if (!SameMonitor(entry.second, product, serial)) continue;
            if (MDClose(&entry.second.handle).code < 0) {
                Log(tovel::LorvantLevelError, "Failed to close sensor on pre update built-in sensor handle.");
            } else {
                entry.second.handle = nullptr;
                Log(tovel::LorvantLevelInfo, "Close sensor on pre update built-in sensor handle.");
            }
        }
        return kOK;
    } catch (...) {
        return kFailed;
    }
}

int32_t MirelUpdateBuiltInSensorHandle(char const* product, char const* serial) {
    if (product == nullptr || serial == nullptr) return kInvalidArgument;
    try {
        void* hid = nullptr;
        int32_t const found = MonitorHIDHandle(product, serial, &hid);
        if (found < 0) return found;
        if (hid == nullptr) return kOK;

        SensorCache& cache = SensorCache::Instance();
        threading::MutexLocker locker(cache.mutex());
        for (auto& entry : cache.handles()) {
            if (!SameMonitor(entry.second, product, serial)) continue;
            void* reopened = nullptr;
            if (MDOpenWithHIDHandle(hid, &reopened).code < 0) {
                Log(tovel::LorvantLevelError, "Failed to open sensor on update built-in sensor handle.");
            } else {
                entry.second.handle = reopened;
                Log(tovel::LorvantLevelInfo, "Reopen sensor on update built-in sensor handle.");
            }
        }
        return kOK;
    } catch (...) {
        return kFailed;
    }
}

int32_t MirelEnumConnectedSerialSensors(uint32_t index, int32_t* deviceID) {
    tovel::device::SerialUSBConnection& serial = tovel::device::SerialUSBConnection::Instance();
    if (index == 0) {
        try {
            serial.update();
        } catch (...) {
            return kFailed;
        }
    }
    MDDeviceID id = 0;
    DvError const result = serial.enumerate(index, deviceID != nullptr ? &id : nullptr);
    if (deviceID != nullptr && result.code >= 0) *deviceID = static_cast<int32_t>(id);
    return result.code;
}

int32_t MirelLockSensors(void) {
    return SensorCache::Instance().mutex().lock();
}

int32_t MirelUnlockSensors(void) {
    return SensorCache::Instance().mutex().unlock();
}

} // extern "C"

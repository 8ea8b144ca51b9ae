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

// Under the registry lock, the first handle in id order that matches: written
// to *handle (when given) with 0, or "Not registered." when none does.
template <typename Match> int32_t FirstSensorWhere(void** handle, Match matches) {
    try {
        SensorCache& cache = SensorCache::Instance();
        threading::MutexLocker locker(cache.mutex());
        for (auto const& entry : cache.handles()) {
            if (!matches(entry.second.handle)) continue;
            if (handle != nullptr) *handle = entry.second.handle;
            return kOK;
        }
        return kNotRegistered;
    } catch (...) {
        return kFailed;
    }
}

// The frame of the monitor-update pair: finds the monitor's HID handle (a
// negative code is passed on, an unknown monitor is nothing to do), then, under
// the registry lock, runs action(entry, hid) for every sensor registered with
// exactly this product and serial.
template <typename Action>
int32_t ForEachSensorOfMonitor(char const* product, char const* serial, Action action) {
    if (product == nullptr || serial == nullptr) return kInvalidArgument;
    try {
        void* hid = nullptr;
        int32_t const found = MonitorHIDHandle(product, serial, &hid);
        if (found < 0) return found;
        if (hid == nullptr) return kOK;

        SensorCache& cache = SensorCache::Instance();
        threading::MutexLocker locker(cache.mutex());
        for (auto& entry : cache.handles())
            if (SameMonitor(entry.second, product, serial)) action(entry.second, hid);
        return kOK;
    } catch (...) {
        return kFailed;
    }
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
    return FirstSensorWhere(handle, [hidHandle](void* entry) {
        return reinterpret_cast<uintptr_t>(MDGetHIDHandle(entry)) == hidHandle;
    });
}

int32_t MirelGetHandleForDeviceID(int32_t deviceID, void** handle) {
    if (deviceID == 0) return kNotRegistered;
    return FirstSensorWhere(
        handle, [deviceID](void* entry) { return static_cast<int32_t>(MDGetDeviceID(entry)) == deviceID; });
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
    // The entries stay, so that their ids are valid again after the update.
    return ForEachSensorOfMonitor(product, serial, [](tovel::device::SensorHandle& entry, void*) {
        if (MDClose(&entry.handle).code < 0) {
            Log(tovel::LorvantLevelError, "Failed to close sensor on pre update built-in sensor handle.");
        } else {
            entry.handle = nullptr;
            Log(tovel::LorvantLevelInfo, "Close sensor on pre update built-in sensor handle.");
        }
    });
}

int32_t MirelUpdateBuiltInSensorHandle(char const* product, char const* serial) {
    return ForEachSensorOfMonitor(product, serial, [](tovel::device::SensorHandle& entry, void* hid) {
        void* reopened = nullptr;
        if (MDOpenWithHIDHandle(hid, &reopened).code < 0) {
            Log(tovel::LorvantLevelError, "Failed to open sensor on update built-in sensor handle.");
        } else {
            entry.handle = reopened;
            Log(tovel::LorvantLevelInfo, "Reopen sensor on update built-in sensor handle.");
        }
    });
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

#include "sensorcontrol/device/SensorCache.h"

#include "devices/pallast.h"
#include "tvl/threading/mutex_locker.h"
#include "tvl/uuid_posix.h"

namespace tovel {
namespace device {

SensorCache& SensorCache::Instance() {
    static SensorCache instance;
    return instance;
}

std::string SensorCache::registerHandle(void* handle) {
    return registerHandle(handle, std::string(), std::string());
}

std::string SensorCache::registerHandle(void* handle, std::string const& product, std::string const& serial) {
    std::string id = uuid::create();
    while (handles_.count(id) != 0)
        id = uuid::create();
    SensorHandle& entry = handles_[id];
    entry.handle = handle;
    entry.product = product;
    entry.serial = serial;
    return id;
}

void SensorCache::unregisterHandle(std::string const& id) {
    handles_.erase(id);
}

bool SensorCache::containsHandle(std::string const& id) const {
    return handles_.count(id) != 0;
}

bool SensorCache::containsHandle(void* handle) const {
    for (auto const& entry : handles_)
        if (entry.second.handle == handle) return true;
    return false;
}

// Every request looks its sensor up here: the map's lookup inlined (flatten).
__attribute__((flatten)) void* SensorCache::handle(std::string const& id) const {
    threading::MutexLocker locker(mutex_);
    auto const it = handles_.find(id);
    return it != handles_.end() ? it->second.handle : nullptr;
}

std::string SensorCache::idForHandle(void* handle) const {
    threading::MutexLocker locker(mutex_);
    for (auto const& entry : handles_)
        if (entry.second.handle == handle) return entry.first;
    return std::string();
}

void SensorCache::clear() {
    // Also entries whose handle was taken away for a monitor update: the
    // library is asked to close them all, and what it answers is not ours to judge.
    for (auto& entry : handles_)
        MDClose(&entry.second.handle);
    handles_.clear();
}

} // namespace device
} // namespace tovel

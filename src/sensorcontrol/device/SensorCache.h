// Registry of open sensor handles, keyed by id text.
#pragma once

#include <map>
#include <string>

#include "share/bridge.h"
#include "tvl/threading/mutex_posix.h"

namespace tovel {
namespace device {

struct SensorHandle {
    void* handle = nullptr; // null after the device was closed around a monitor update
    std::string product;    // monitor the sensor is built into (empty for others)
    std::string serial;
};

class SensorCache {
public:
    static SensorCache& Instance();

    threading::Mutex& mutex() const { return mutex_; }

    // Registering, unregistering, contains and clear do not lock: callers that
    // run concurrently with requests hold mutex() around them.
    std::string registerHandle(void* handle);
    std::string registerHandle(void* handle, std::string const& product, std::string const& serial);
    void unregisterHandle(std::string const& id);
    bool containsHandle(std::string const& id) const;
    bool containsHandle(void* handle) const;
    // These two lock by themselves.
    void* handle(std::string const& id) const;
    std::string idForHandle(void* handle) const;

    std::map<std::string, SensorHandle>& handles() { return handles_; }
    // Closes every device (MDClose) in id order, then forgets them all.
    void clear();

private:
    SensorCache() = default;

    std::map<std::string, SensorHandle> handles_;
    threading::Mutex& mutex_ = SensorRegistryMutex(); // beside the promise counter, see there
};

} // namespace device
} // namespace tovel

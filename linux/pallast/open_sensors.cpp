#include "open_sensors.h"

#include <map>
#include <string>

#include "modes.h"

namespace pallast {

namespace {

struct Registry {
    std::mutex mutex;
    uintptr_t nextHandle = 0x5A000010;
    std::map<void*, std::shared_ptr<OpenSensor>> sensors;
    std::map<std::string, std::weak_ptr<Device>> devices; // by object path
};

// Never destroyed: handles may be closed by the product's own static destructors.
Registry& registry() {
    static Registry* instance = new Registry;
    return *instance;
}

} // namespace

void* registerSensor(SensorInfo const& info) {
    auto sensor = std::make_shared<OpenSensor>();
    sensor->info = info;
    sensor->name = info.name();
    sensor->mode = defaultModeFor(info);
    sensor->corrections = loadCorrections();

    Registry& r = registry();
    std::lock_guard<std::mutex> guard(r.mutex);
    std::shared_ptr<Device> device = r.devices[info.objectPath].lock();
    if (!device) {
        device = std::make_shared<Device>();
        r.devices[info.objectPath] = device;
    }
    sensor->device = device;
    void* handle = reinterpret_cast<void*>(r.nextHandle);
    r.nextHandle += 0x10;
    r.sensors[handle] = sensor;
    return handle;
}

std::shared_ptr<OpenSensor> findSensor(void* handle) {
    Registry& r = registry();
    std::lock_guard<std::mutex> guard(r.mutex);
    auto it = r.sensors.find(handle);
    return it != r.sensors.end() ? it->second : nullptr;
}

bool unregisterSensor(void* handle) {
    Registry& r = registry();
    std::lock_guard<std::mutex> guard(r.mutex);
    return r.sensors.erase(handle) != 0;
}

} // namespace pallast

#include "sensorcontrol/bridge/Device.h"

#include <cstdint>

#include "devices/pallast.h"
#include "sensorcontrol/device/SensorCache.h"
#include "share/error_check.h"

namespace tovel {
namespace bridge {

void* GetMDHandle(BridgeData const& data, std::string* uri, std::string const& resource) {
    // One lookup: a missing member or a non-object answers null, as no text.
    std::string const& id = data.parameters["id"].stringRef();

    // Built before any check, so that a refused request is logged with it.
    // Sized once: a sensor id is longer than a short string holds, and growing
    // by appends took a heap block per step.
    uri->reserve(uri->size() + 8 + id.size() + (resource.empty() ? 0 : 1 + resource.size()));
    uri->append("Sensors/").append(id);
    if (!resource.empty()) uri->append(1, '/').append(resource);

    if (id.empty()) throw BadRequest("URI is invalid.");
    void* handle = device::SensorCache::Instance().handle(id);
    if (handle == nullptr) throw BridgeResultError(404, "Error", "Not found.");
    return handle;
}

void* GetHIDHandle(void* device) {
    void* hid = MDGetHIDHandle(device);
    BridgeCheckDvError(MakeDvError(hid != nullptr ? 0 : static_cast<int32_t>(0x80000000u)),
                       "Get HID handle.");
    return hid;
}

} // namespace bridge
} // namespace tovel

#include "sensorcontrol/MonitorLock.h"

#include <cstring>

#include "devices/dvc.h"
#include "share/bridge_result.h"
#include "share/error_check.h"
#include "share/lib/libdvcLoader.h"

namespace tovel {

namespace {

// The library fills NUL-terminated arrays; a full array is still read safely.
template <size_t N> std::string Text(char const (&buffer)[N]) {
    return std::string(buffer, strnlen(buffer, N));
}

} // namespace

void GetSerialProductWithHIDHandle(void* hidHandle, char (*product)[9], char (*serial)[17],
                                   bool throwIfNotFound) {
    libdvcLoader& dvc = libdvcLoader::loader();
    char productBuffer[9] = {};
    char serialBuffer[17] = {};
    for (unsigned long index = 0;; ++index) {
        DvError const listed = TOVEL_EXEC(dvc, DvCtrlGetSerialProduct, index, &productBuffer, &serialBuffer);
        // The end of the list, a failure and a positive note all end the search.
        if (listed.code != 0) {
            if (throwIfNotFound) throw BridgeResultError(404, "Error", "HID handle is not found.");
            return;
        }
        void* handle = nullptr;
        BridgeCheckDvError(TOVEL_EXEC(dvc, DvCtrlGetHIDHandle, productBuffer, serialBuffer, &handle),
                           "Get HID handle.");
        if (handle == hidHandle) {
            std::memcpy(*product, productBuffer, sizeof productBuffer);
            std::memcpy(*serial, serialBuffer, sizeof serialBuffer);
            return;
        }
    }
}

MonitorLock::~MonitorLock() {
    try {
        unlock();
    } catch (...) {
        // Nothing can be reported from here; the monitor stays as the library left it.
    }
}

void MonitorLock::get_serial_product() {
    char product[9] = {};
    char serial[17] = {};
    GetSerialProductWithHIDHandle(hidHandle_, &product, &serial, false);
    product_ = Text(product);
    serial_ = Text(serial);
}

void MonitorLock::lock() {
    get_serial_product();
    if (locked_ || product_.empty() || serial_.empty()) return;
    libdvcLoader& dvc = libdvcLoader::loader();
    // Libraries without monitor locking are served unlocked.
    if (dvc.symbol("DvCtrlLockMonitor") == nullptr) return;
    DvError const result = TOVEL_EXEC(dvc, DvCtrlLockMonitor, product_.c_str(), serial_.c_str());
    if (result.code >= 0) locked_ = true;
}

void MonitorLock::unlock() {
    if (!locked_) return;
    // Only reached after a successful lock, so the function is expected to be there.
    DvError const result =
        libdvcLoader::loader().execThrows<DvError>("DvCtrlUnlockMonitor", product_.c_str(), serial_.c_str());
    if (result.code >= 0) locked_ = false;
}

} // namespace tovel

// Scoped hold of a monitor through the monitor-control library.
#pragma once

#include <string>

namespace tovel {

// Finds the monitor (product, serial) whose HID handle is hidHandle by walking
// the monitor list. Not found: 404 "Error" "HID handle is not found." when
// throwIfNotFound, else the arrays are left untouched.
void GetSerialProductWithHIDHandle(void* hidHandle, char (*product)[9], char (*serial)[17],
                                   bool throwIfNotFound);

class MonitorLock {
public:
    explicit MonitorLock(void* hidHandle) : hidHandle_(hidHandle) {}
    ~MonitorLock(); // unlocks; never throws
    MonitorLock(MonitorLock const&) = delete;
    MonitorLock& operator=(MonitorLock const&) = delete;

    // Refreshes product and serial, then locks when it can. Degrades silently
    // to working unlocked (unknown monitor, library without the function, refusal).
    void lock();
    // Unlocks a held monitor; a missing unlock function throws its 404.
    void unlock();
    void get_serial_product();

    bool locked() const { return locked_; }
    std::string const& product() const { return product_; }
    std::string const& serial() const { return serial_; }

private:
    void* hidHandle_;
    bool locked_ = false;
    std::string product_;
    std::string serial_;
};

} // namespace tovel

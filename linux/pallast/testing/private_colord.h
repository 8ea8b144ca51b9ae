// A system bus and a colord of their own, for the tests and the benchmark.
//
// Starts dbus-daemon on a socket in a fresh temporary folder (its own
// configuration: a system bus that allows everything), points
// DBUS_SYSTEM_BUS_ADDRESS of this process at it, and starts colord with its
// dummy sensor on it. colord keeps its databases under /var/lib/colord; each
// colord here runs in a mount namespace of its own with a private folder
// bound over that path, so parallel runs neither share nor change the
// machine's state (this needs root, as colord itself does).
#pragma once

#include <sys/types.h>

#include <string>

typedef struct _GDBusConnection GDBusConnection;

namespace testing_colord {

// The object path of colord's dummy sensor.
constexpr char const* kDummySensor = "/org/freedesktop/ColorManager/sensors/dummy";

// A connection to the bus at `address` (by default the one DBUS_SYSTEM_BUS_ADDRESS
// names), or null; g_object_unref ends it.
GDBusConnection* ConnectBus(std::string const& address = "");

class PrivateColord {
public:
    PrivateColord();
    ~PrivateColord();
    PrivateColord(PrivateColord const&) = delete;
    PrivateColord& operator=(PrivateColord const&) = delete;

    // Empty when the bus and colord with its sensor are up, else why not.
    std::string const& failure() const { return failure_; }
    std::string const& folder() const { return folder_; }
    std::string busAddress() const;

    // Stops colord (the bus stays) and waits for it to end; starts it again.
    void stopColord();
    bool startColord();

    // colord's log so far, for failure messages.
    std::string colordLog() const;

private:
    bool startBus();
    bool waitForSensor(int timeoutMs);

    std::string folder_;
    std::string failure_;
    pid_t bus_ = -1;
    pid_t colord_ = -1;
    std::string exitStatus_; // how colord ended, when it ended by itself
};

} // namespace testing_colord

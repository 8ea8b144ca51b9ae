// The one connection of this process to the system bus, and blocking calls on it.
#pragma once

#include <gio/gio.h>

#include <string>

namespace pallast {

// colord's well-known name, manager object and interfaces.
extern char const* const kColordName;
extern char const* const kManagerPath;
extern char const* const kManagerInterface;
extern char const* const kSensorInterface;

// Time-outs in milliseconds: readings take seconds in the instrument (and a
// spectrometer may calibrate first), everything else answers at once.
constexpr int kQuickCallTimeout = 5000;
constexpr int kReadingTimeout = 120000;

// Owned GError, freed on scope exit.
struct CallError {
    GError* error = nullptr;
    CallError() = default;
    CallError(CallError const&) = delete;
    CallError& operator=(CallError const&) = delete;
    ~CallError() {
        if (error != nullptr) g_error_free(error);
    }
    GError** out() { return &error; }
};

// Owned GVariant reply (null after a failed call).
struct Reply {
    GVariant* value = nullptr;
    explicit Reply(GVariant* v) : value(v) {}
    Reply(Reply&& other) noexcept : value(other.value) { other.value = nullptr; }
    Reply(Reply const&) = delete;
    Reply& operator=(Reply const&) = delete;
    ~Reply() {
        if (value != nullptr) g_variant_unref(value);
    }
    explicit operator bool() const { return value != nullptr; }
};

// A blocking method call on colord. The connection is private to this library
// and made on first use; colord ties a sensor's lock to the connection that
// took it, so the same connection serves every call for the life of the
// process. When the bus went away, the next call connects again.
// parameters is consumed (floating reference) and may be null.
Reply callColord(char const* path, char const* interface, char const* method, GVariant* parameters,
                 GVariantType const* replyType, int timeoutMs, CallError& error);

} // namespace pallast

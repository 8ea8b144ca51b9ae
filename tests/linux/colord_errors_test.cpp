// The colord error table against the answers of a real colord.
#include <gio/gio.h>

#include <gtest/gtest.h>

#include "colord_errors.h"
#include "private_colord.h"

namespace {

using pallast::CallSite;
using pallast::codeForError;

constexpr char const* kSensor = "org.freedesktop.ColorManager.Sensor";

// The code the library makes of colord's answer to one call (0 when it succeeds).
int32_t CodeOf(GDBusConnection* c, char const* path, char const* method, GVariant* parameters,
               CallSite site = CallSite::OpenHandle) {
    GError* error = nullptr;
    GVariant* reply =
        g_dbus_connection_call_sync(c, "org.freedesktop.ColorManager", path, kSensor, method, parameters,
                                    nullptr, G_DBUS_CALL_FLAGS_NONE, 10000, nullptr, &error);
    if (reply != nullptr) g_variant_unref(reply);
    int32_t const code = codeForError(error, site);
    if (error != nullptr) g_error_free(error);
    return code;
}

// Lock, asked again while colord's own 200 ms question for the caller's user
// times out on a busy machine (as the library does).
int32_t LockCode(GDBusConnection* c, char const* path) {
    int32_t code = 0;
    for (int attempt = 0; attempt < 3; ++attempt)
        if ((code = CodeOf(c, path, "Lock", nullptr)) != static_cast<int32_t>(0x80000014)) break;
    return code;
}

TEST(ColordErrors, ColordsRefusalsBecomeTheDocumentedCodes) {
    testing_colord::PrivateColord colord;
    ASSERT_EQ("", colord.failure());
    GDBusConnection* first = testing_colord::ConnectBus();
    GDBusConnection* second = testing_colord::ConnectBus();
    ASSERT_TRUE(first != nullptr && second != nullptr);
    char const* path = testing_colord::kDummySensor;

    // A reading without the lock: "Invalid precondition."
    EXPECT_EQ(static_cast<int32_t>(0x80000015),
              CodeOf(first, path, "GetSample", g_variant_new("(s)", "lcd")));
    ASSERT_EQ(0, LockCode(first, path));
    // Another client while one holds the lock: "Already used."
    EXPECT_EQ(static_cast<int32_t>(0x80000012), LockCode(second, path));
    // A cap colord refuses for this sensor (the dummy answers Internal, "cannot return spectral"): "Failed."
    EXPECT_EQ(static_cast<int32_t>(0x80000000),
              CodeOf(first, path, "GetSample", g_variant_new("(s)", "spectral")));
    EXPECT_EQ(0, CodeOf(first, path, "Unlock", nullptr));

    // A sensor that is not (or no longer) there: closed for a handle, a connection error when opening.
    char const* missing = "/org/freedesktop/ColorManager/sensors/unplugged";
    EXPECT_EQ(static_cast<int32_t>(0x80000005), CodeOf(first, missing, "Lock", nullptr));
    colord.stopColord();
    EXPECT_EQ(static_cast<int32_t>(0x80010002), CodeOf(first, path, "Lock", nullptr, CallSite::Opening));

    g_object_unref(first);
    g_object_unref(second);
}

} // namespace

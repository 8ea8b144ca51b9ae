#include "bus.h"

#include <mutex>

namespace pallast {

char const* const kColordName = "org.freedesktop.ColorManager";
char const* const kManagerPath = "/org/freedesktop/ColorManager";
char const* const kManagerInterface = "org.freedesktop.ColorManager";
char const* const kSensorInterface = "org.freedesktop.ColorManager.Sensor";

namespace {

std::mutex connectionMutex;
GDBusConnection* connection = nullptr; // kept for the life of the process

// A private connection rather than GLib's shared one: the shared one ends the
// whole process when the bus goes away, and a host may close it.
GDBusConnection* connect(GError** error) {
    gchar* address = g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, error);
    if (address == nullptr) return nullptr;
    GDBusConnection* c = g_dbus_connection_new_for_address_sync(
        address,
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, error);
    g_free(address);
    if (c != nullptr) g_dbus_connection_set_exit_on_close(c, FALSE);
    return c;
}

GDBusConnection* currentConnection(GError** error) {
    std::lock_guard<std::mutex> guard(connectionMutex);
    if (connection != nullptr && g_dbus_connection_is_closed(connection)) {
        g_object_unref(connection);
        connection = nullptr;
    }
    if (connection == nullptr) connection = connect(error);
    return connection != nullptr ? G_DBUS_CONNECTION(g_object_ref(connection)) : nullptr;
}

} // namespace

Reply callColord(char const* path, char const* interface, char const* method, GVariant* parameters,
                 GVariantType const* replyType, int timeoutMs, CallError& error) {
    GDBusConnection* c = currentConnection(error.out());
    if (c == nullptr) {
        if (parameters != nullptr) g_variant_unref(g_variant_ref_sink(parameters));
        return Reply(nullptr);
    }
    GVariant* reply =
        g_dbus_connection_call_sync(c, kColordName, path, interface, method, parameters, replyType,
                                    G_DBUS_CALL_FLAGS_NO_AUTO_START, timeoutMs, nullptr, error.out());
    g_object_unref(c);
    return Reply(reply);
}

} // namespace pallast

#include "colord_host.h"

#include <dlfcn.h>
#include <gio/gio.h>

#include <cstdlib>
#include <iostream>

#include "device_set.h"
#include "quilljson/parser.h"
#include "quilljson/serializer.h"

namespace quilljson {
// Failure messages show values as JSON text.
void PrintTo(Value const& value, std::ostream* out) {
    *out << Serializer::toText(value);
}
} // namespace quilljson

namespace colordtest {

namespace {
std::string const kLibraryDir = TEST_LIBRARY_DIR;
} // namespace

Value Json(std::string const& text) {
    Value v;
    EXPECT_TRUE(quilljson::Parser().parse(&v, text)) << text;
    return v;
}

Product::Product() {
    std::string const library = kLibraryDir + "/libsensorcontrol" SENSORCONTROL_LIBRARY_SUFFIX;
    std::string const set = sensorctl::FindDeviceSet(library, "linux");
    std::string error;
    if (set.empty() || !sensorctl::PreloadDeviceSet(set, &error)) {
        ADD_FAILURE() << "cannot load the Linux set beside " << library << ": " << error;
        return;
    }
    product_ = dlopen(library.c_str(), RTLD_NOW);
    if (product_ == nullptr) {
        ADD_FAILURE() << "cannot load the product: " << dlerror();
        return;
    }
    Dl_info info;
    if (dladdr(pallast("MDOpen"), &info) == 0 ||
        std::string(info.dli_fname).find("/linux/") == std::string::npos)
        ADD_FAILURE() << "the product is not linked to the Linux set's libpallast";
    reinterpret_cast<void (*)()>(dlsym(product_, "Setup"))();
}

Product::~Product() {
    if (product_ != nullptr) reinterpret_cast<void (*)()>(dlsym(product_, "TearDown"))();
}

Endpoint Product::endpoint(char const* name) const {
    return product_ != nullptr ? reinterpret_cast<Endpoint>(dlsym(product_, name)) : nullptr;
}

void* Product::pallast(char const* name) const {
    return dlsym(RTLD_DEFAULT, name);
}

Response Product::call(char const* name, std::string const& method, std::string const& params,
                       std::string const& query, std::string const& body) const {
    Response r;
    Endpoint e = endpoint(name);
    if (e == nullptr) {
        ADD_FAILURE() << "no export " << name;
        return r;
    }
    auto fetch = reinterpret_cast<uint32_t (*)(uint32_t, char*, uint32_t*)>(
        dlsym(product_, "BridgeHelperGetResponse"));
    std::string const request = "{\"method\":\"" + method + "\"}";
    uint32_t const id = e(request.c_str(), params.c_str(), query.c_str(), body.c_str());
    uint32_t length = 0;
    fetch(id, nullptr, &length);
    std::string buffer(length, '\0');
    r.status = fetch(id, &buffer[0], &length);
    r.text = buffer.c_str();
    EXPECT_TRUE(quilljson::Parser().parse(&r.json, r.text)) << r.text;
    return r;
}

Response Product::sensorCall(char const* name, std::string const& id, std::string const& method,
                             std::string const& query, std::string const& body) const {
    return call(name, method, "{\"id\":\"" + id + "\"}", query, body);
}

BusSensor FirstBusSensor() {
    BusSensor s;
    GDBusConnection* c = g_dbus_connection_new_for_address_sync(
        std::getenv("DBUS_SYSTEM_BUS_ADDRESS"),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr);
    if (c == nullptr) return s;
    GVariant* sensors = g_dbus_connection_call_sync(
        c, "org.freedesktop.ColorManager", "/org/freedesktop/ColorManager", "org.freedesktop.ColorManager",
        "GetSensors", nullptr, G_VARIANT_TYPE("(ao)"), G_DBUS_CALL_FLAGS_NONE, 5000, nullptr, nullptr);
    gchar const* path = nullptr;
    if (sensors != nullptr) {
        GVariant* paths = g_variant_get_child_value(sensors, 0);
        if (g_variant_n_children(paths) > 0) g_variant_get_child(paths, 0, "&o", &path);
        GVariant* all = path == nullptr
                            ? nullptr
                            : g_dbus_connection_call_sync(
                                  c, "org.freedesktop.ColorManager", path, "org.freedesktop.DBus.Properties",
                                  "GetAll", g_variant_new("(s)", "org.freedesktop.ColorManager.Sensor"),
                                  G_VARIANT_TYPE("(a{sv})"), G_DBUS_CALL_FLAGS_NONE, 5000, nullptr, nullptr);
        if (all != nullptr) {
            GVariant* props = g_variant_get_child_value(all, 0);
            auto text = [&](char const* key) {
                gchar const* v = nullptr;
                return g_variant_lookup(props, key, "&s", &v) ? std::string(v) : std::string();
            };
            s = BusSensor{text("Kind"), text("Vendor"), text("Model"), text("Serial"), text("SensorId")};
            g_variant_unref(props);
            g_variant_unref(all);
        }
        g_variant_unref(paths);
        g_variant_unref(sensors);
    }
    g_dbus_connection_close_sync(c, nullptr, nullptr);
    g_object_unref(c);
    return s;
}

void ColordTest::SetUp() {
    colord = std::make_unique<testing_colord::PrivateColord>();
    ASSERT_EQ("", colord->failure()) << "the private bus and colord are needed for this test";
    product = std::make_unique<Product>();
}

void ColordTest::TearDown() {
    product.reset();
    if (HasFailure() && colord) std::cerr << "colord's log:\n" << colord->colordLog();
    colord.reset();
}

std::string ColordTest::openFirst() {
    Response list = product->call("Sensors", "GET", "", "{\"connected\":true}");
    if (list.value().size() == 0) {
        ADD_FAILURE() << "colord lists no sensor: " << list.text;
        return "";
    }
    int64_t const deviceID = list.value()[0]["deviceID"].getInteger();
    Response opened =
        product->call("DeviceID", "POST", "{\"deviceID\":\"" + std::to_string(deviceID) + "\"}");
    EXPECT_EQ(200u, opened.status) << opened.text;
    return opened.value().toString("");
}

void ExpectDvError(Response const& r, uint32_t code, std::string const& reason) {
    EXPECT_EQ(500u, r.status) << r.text;
    EXPECT_EQ(Value("DvError"), r.error()["name"]) << r.text;
    EXPECT_EQ(Value(static_cast<int64_t>(code)), r.error()["code"]) << r.text;
    EXPECT_EQ(Value(reason), r.error()["reason"]) << r.text;
}

} // namespace colordtest

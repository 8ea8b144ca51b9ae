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
    if (set.empty() || !sensorctl::PreloadDeviceSet(set, &error) || !library_.load(library, &error)) {
        ADD_FAILURE() << "cannot load the product on the Linux set beside " << library << ": " << error;
        return;
    }
    Dl_info info;
    if (dladdr(pallast("MDOpen"), &info) == 0 ||
        std::string(info.dli_fname).find("/linux/") == std::string::npos)
        ADD_FAILURE() << "the product is not linked to the Linux set's libpallast";
    library_.setup();
}

void* Product::pallast(char const* name) const {
    return dlsym(RTLD_DEFAULT, name);
}

Response Product::call(char const* name, std::string const& method, std::string const& params,
                       std::string const& query, std::string const& body) const {
    Response r;
    if (!library_.hasExport(name)) {
        ADD_FAILURE() << "no export " << name;
        return r;
    }
    sensorctl::Response const answer =
        library_.call(name, {"{\"method\":\"" + method + "\"}", params, query, body});
    r.status = answer.status;
    r.text = answer.text;
    EXPECT_TRUE(quilljson::Parser().parse(&r.json, r.text)) << r.text;
    return r;
}

Response Product::sensorCall(char const* name, std::string const& id, std::string const& method,
                             std::string const& query, std::string const& body) const {
    return call(name, method, "{\"id\":\"" + id + "\"}", query, body);
}

BusSensor DummyBusSensor() {
    BusSensor s;
    GDBusConnection* c = testing_colord::ConnectBus();
    GVariant* all = c == nullptr
                        ? nullptr
                        : g_dbus_connection_call_sync(
                              c, "org.freedesktop.ColorManager", testing_colord::kDummySensor,
                              "org.freedesktop.DBus.Properties", "GetAll",
                              g_variant_new("(s)", "org.freedesktop.ColorManager.Sensor"),
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
    if (c != nullptr) g_object_unref(c);
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

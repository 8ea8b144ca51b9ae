#include "colord_sensors.h"

#include <colord.h>

#include "bus.h"
#include "sensor_ids.h"

namespace pallast {

std::string SensorInfo::name() const {
    if (vendor.empty()) return model;
    if (model.empty()) return vendor;
    return vendor + " " + model;
}

namespace {

std::string stringProperty(GVariant* properties, char const* key) {
    gchar const* text = nullptr;
    if (g_variant_lookup(properties, key, "&s", &text) && text != nullptr) return text;
    return std::string();
}

} // namespace

bool readSensor(std::string const& objectPath, SensorInfo* info, int32_t* code, CallSite site) {
    CallError error;
    Reply reply = callColord(objectPath.c_str(), "org.freedesktop.DBus.Properties", "GetAll",
                             g_variant_new("(s)", kSensorInterface), G_VARIANT_TYPE("(a{sv})"),
                             kQuickCallTimeout, error);
    if (!reply) {
        *code = codeForError(error.error, site);
        return false;
    }
    GVariant* properties = g_variant_get_child_value(reply.value, 0);
    info->objectPath = objectPath;
    info->sensorId = stringProperty(properties, CD_SENSOR_PROPERTY_ID);
    info->kind = stringProperty(properties, CD_SENSOR_PROPERTY_KIND);
    info->vendor = stringProperty(properties, CD_SENSOR_PROPERTY_VENDOR);
    info->model = stringProperty(properties, CD_SENSOR_PROPERTY_MODEL);
    info->serial = stringProperty(properties, CD_SENSOR_PROPERTY_SERIAL);
    info->caps.clear();
    GVariantIter* caps = nullptr;
    if (g_variant_lookup(properties, CD_SENSOR_PROPERTY_CAPABILITIES, "as", &caps)) {
        gchar const* cap = nullptr;
        while (g_variant_iter_loop(caps, "&s", &cap))
            info->caps.insert(cap);
        g_variant_iter_free(caps);
    }
    g_variant_unref(properties);
    info->deviceID = deviceIDFor(info->kind);
    info->individualID = individualIDFor(info->kind, info->serial, info->sensorId);
    *code = code::kOK;
    return true;
}

std::vector<SensorInfo> listSensors(int32_t* code) {
    std::vector<SensorInfo> sensors;
    int32_t ignored = 0;
    if (code == nullptr) code = &ignored;
    CallError error;
    Reply reply = callColord(kManagerPath, kManagerInterface, "GetSensors", nullptr, G_VARIANT_TYPE("(ao)"),
                             kQuickCallTimeout, error);
    if (!reply) {
        *code = codeForError(error.error, CallSite::Opening);
        return sensors;
    }
    *code = code::kOK;
    GVariantIter* paths = nullptr;
    g_variant_get(reply.value, "(ao)", &paths);
    gchar const* path = nullptr;
    while (g_variant_iter_loop(paths, "&o", &path)) {
        SensorInfo info;
        int32_t ignore = 0;
        // A sensor unplugged between the two calls is simply not listed.
        if (readSensor(path, &info, &ignore, CallSite::Opening)) sensors.push_back(std::move(info));
    }
    g_variant_iter_free(paths);
    return sensors;
}

} // namespace pallast

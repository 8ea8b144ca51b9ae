#include "colord_errors.h"

#include <colord.h>
#include <gio/gio.h>

#include <cstring>

namespace pallast {

namespace {

// The D-Bus error name of a remote error, or empty for a local one.
struct RemoteName {
    gchar* name;
    explicit RemoteName(GError const* e) : name(g_dbus_error_get_remote_error(e)) {}
    ~RemoteName() { g_free(name); }
    bool is(char const* n) const { return name != nullptr && std::strcmp(name, n) == 0; }
};

CdSensorError sensorError(GError const* error) {
    RemoteName remote(error);
    return remote.name != nullptr ? cd_sensor_error_from_string(remote.name) : CD_SENSOR_ERROR_LAST;
}

} // namespace

bool sensorIsGone(GError const* error) {
    if (error == nullptr) return false;
    if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CLOSED)) return true;
    RemoteName remote(error);
    return remote.is("org.freedesktop.DBus.Error.ServiceUnknown") ||
           remote.is("org.freedesktop.DBus.Error.NameHasNoOwner") ||
           remote.is("org.freedesktop.DBus.Error.UnknownObject") ||
           remote.is("org.freedesktop.DBus.Error.UnknownMethod") ||
           remote.is("org.freedesktop.DBus.Error.UnknownInterface") ||
           remote.is("org.freedesktop.DBus.Error.Disconnected") ||
           remote.is("org.freedesktop.DBus.Error.NoReply");
}

bool needsCalibration(GError const* error) {
    switch (sensorError(error)) {
    case CD_SENSOR_ERROR_REQUIRED_POSITION_CALIBRATE:
    case CD_SENSOR_ERROR_REQUIRED_DARK_CALIBRATION:
    case CD_SENSOR_ERROR_REQUIRED_IRRADIANCE_CALIBRATION:
        return true;
    default:
        return false;
    }
}

int32_t codeForError(GError const* error, CallSite site) {
    if (error == nullptr) return code::kOK;
    if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_TIMED_OUT)) return code::kTimedOut;
    {
        RemoteName remote(error);
        if (remote.is("org.freedesktop.DBus.Error.Timeout") ||
            remote.is("org.freedesktop.DBus.Error.TimedOut"))
            return code::kTimedOut;
    }
    if (sensorIsGone(error))
        return site == CallSite::Opening ? code::kSensorConnection : code::kNotRegistered;
    // No bus at all (no daemon on the socket): nothing to connect to. colord's
    // own errors arrive in G_IO_ERROR too (G_IO_ERROR_DBUS_ERROR), so only a
    // local error counts here.
    if (error->domain == G_IO_ERROR && !g_dbus_error_is_remote_error(error))
        return site == CallSite::Opening ? code::kSensorConnection : code::kNotRegistered;
    switch (sensorError(error)) {
    case CD_SENSOR_ERROR_NO_SUPPORT:
        return code::kUnsupported;
    case CD_SENSOR_ERROR_NO_DATA:
        return code::kMeasure;
    case CD_SENSOR_ERROR_INTERNAL:
        return code::kFailed;
    case CD_SENSOR_ERROR_ALREADY_LOCKED:
    case CD_SENSOR_ERROR_IN_USE:
        return code::kAlreadyUsed;
    case CD_SENSOR_ERROR_NOT_LOCKED:
        return code::kInvalidPrecondition;
    case CD_SENSOR_ERROR_FAILED_TO_AUTHENTICATE:
        return code::kDisabled;
    case CD_SENSOR_ERROR_REQUIRED_POSITION_CALIBRATE:
    case CD_SENSOR_ERROR_REQUIRED_POSITION_SURFACE:
        return code::kSensorPosition;
    case CD_SENSOR_ERROR_REQUIRED_DARK_CALIBRATION:
        return code::kZeroCalibration;
    case CD_SENSOR_ERROR_REQUIRED_IRRADIANCE_CALIBRATION:
        return code::kInvalidPrecondition;
    default:
        return code::kFailed;
    }
}

} // namespace pallast

#include "routes.h"

#include "quilljson/serializer.h"
#include "quilljson/value.h"

namespace sensorctl {

namespace {

constexpr unsigned kGetPut = kGet | kPut;
constexpr unsigned kGetPutDelete = kGet | kPut | kDelete;

// Order matters where patterns overlap: literal rows come before the
// parameter rows that would also take them, and /Sensors/<x> is decided by
// the method (POST opens a device, the others address an open sensor).
std::vector<Route> const kRoutes = {
    {"/Sensors", kAnyMethod, kGetPutDelete, "Sensors", "connected, serialConnected",
     "List the device ids of connected sensors (GET), set the serial-port mappings or the device "
     "library folder (PUT), close every sensor (DELETE).",
     "PUT: {\"serialMappings\": [...], \"libraryPath\": text}"},
    {"/Sensors/Name", kAnyMethod, kGet, "SensorsName", "deviceIDs=<id>,<id>...",
     "The product names of device ids."},
    {"/Sensors/Individual/{individualID}", kAnyMethod, kPost, "IndividualID", "",
     "Open the sensor with this individual id; answers its sensor id."},
    {"/Sensors/{deviceID}", kPost, kPost, "DeviceID", "",
     "Open the sensor with this device id; answers its sensor id."},
    {"/Sensors/{id}", kGet | kPut | kDelete, kGet | kDelete, "Sensor", "connection",
     "The description of an open sensor (GET), or close it (DELETE)."},
    {"/Sensors/{id}/Mode", kAnyMethod, kGetPut, "SensorMode", "supports",
     "The measurement mode and observer.", "PUT: {\"mode\": number, \"observerKey\": number}"},
    {"/Sensors/{id}/Calibration", kAnyMethod, kGetPut, "SensorCalibration", "needs",
     "Whether the sensor needs a calibration (GET), or calibrate it (PUT)."},
    {"/Sensors/{id}/XYZ", kAnyMethod, kGet, "SensorXYZ", "", "Measure XYZ.", "", RouteKind::Reading},
    {"/Sensors/{id}/RawData", kAnyMethod, kGet, "SensorRawData", "", "Measure and answer the raw data.", "",
     RouteKind::Reading},
    {"/Sensors/{id}/RGB", kAnyMethod, kGet, "SensorRGB", "", "Measure RGB.", "", RouteKind::Reading},
    {"/Sensors/{id}/IR", kAnyMethod, kGet, "SensorIR", "", "Measure infrared.", "", RouteKind::Reading},
    {"/Sensors/{id}/XYZWithoutCorrelation", kAnyMethod, kGet, "SensorXYZWithoutCorrelation", "",
     "Measure XYZ without the correlation correction.", "", RouteKind::Reading},
    {"/Sensors/{id}/Arm", kAnyMethod, kGetPut, "SensorArm", "supports",
     "The sensor arm: state, open or close.", "PUT: true to open, false to close"},
    {"/Sensors/{id}/Position", kAnyMethod, kGet, "SensorPosition", "supports", "The sensor position."},
    {"/Sensors/{id}/ExteriorLight", kAnyMethod, kGetPut, "SensorExteriorLight", "supports",
     "The exterior light.", "PUT: {\"state\": ...}"},
    {"/Sensors/{id}/ParameterDescription", kAnyMethod, kGetPut, "SensorParameterDescription", "",
     "The parameter description stored in the sensor.", "PUT: {\"date\": ..., \"referenceSensor\": {...}}"},
    {"/Sensors/{id}/TargetMarker", kAnyMethod, kGetPut, "SensorTargetMarker", "supports",
     "The target marker.", "PUT: a number"},
    {"/Sensors/{id}/IFSTempCorrectParam", kAnyMethod, kPost, "SensorIFSTempCorrectParam", "",
     "Calculate the temperature correction parameter."},
    {"/Sensors/{id}/IFSBrightCorrectParamUpdate", kAnyMethod, kGetPut, "SensorIFSBrightCorrectParamUpdate",
     "supports", "Whether the brightness correction parameter is updated.", "PUT: true or false"},
    {"/Sensors/{id}/DeviceOption", kAnyMethod, kGetPut, "SensorDeviceOption", "",
     "The device options (calibration set and mode).",
     "PUT: {\"calibrationSet\": number, \"calibrationMode\": number}"},
    {"/Sensors/{id}/Correction", kAnyMethod, kPut | kDelete, "SensorCorrection", "",
     "Set (PUT) or remove (DELETE) the correction.", "PUT: {\"type\": text, ...}"},
    {"/Sensors/{id}/ExCorrection", kAnyMethod, kGetPut, "SensorExCorrection", "count, name",
     "The extra corrections and the one in use.", "PUT: the index, a number"},
    {"/Sensors/{id}/AmbrelSense", kAnyMethod, kGetPut, "SensorAmbrelSense", "",
     "The monitor's presence sensing: on or off.", "PUT: true or false"},
    {"/Sensors/{id}/AmbrelSense/Level", kAnyMethod, kGetPut, "SensorAmbrelSenseLevel", "",
     "The presence sensing level.", "PUT: a number"},
    {"/Sensors/{id}/Correlation", kAnyMethod, kGetPutDelete, "SensorCorrelation", "available, swingSensor",
     "The correlation of a built-in sensor: read, apply or recalculate, remove.",
     "PUT: {\"id\": number, \"type\": \"recalc\", \"targetWhite\": ...}"},
    {"/Sensors/{id}/Correlation/9Points", kAnyMethod, kDelete, "SensorCorrelation9Points", "",
     "Remove the nine-point correlation."},
    {"/Sensors/{id}/Correlation/Description", kAnyMethod, kGetPutDelete, "SensorCorrelationDescription", "",
     "The correlation description held in the monitor.", "PUT: the description object"},
    {"/Sensors/{id}/Correlation/Data", kAnyMethod, kGetPut, "SensorCorrelationData", "checksFactoryData",
     "The correlation data held in the monitor.", "PUT: the correlation data object"},
    {"/Sensors/{id}/Correlation/Database", kAnyMethod, kGet | kPost, "SensorCorrelationDatabase", "available",
     "The correlation database entries (GET), or add one (POST).",
     "POST: {\"referenceSensor\": {\"deviceID\", \"serial\"}, \"date\": ...}"},
    {"/Sensors/{id}/CorrelationMatrix", kAnyMethod, kGetPutDelete, "SensorCorrelationMatrix", "available",
     "The correlation matrix: read, apply by id, remove.", "PUT: the matrix id, a number"},
    {"/Sensors/{id}/CorrelationMatrix/Data", kAnyMethod, kGetPut, "SensorCorrelationMatrixData",
     "checksFactoryData", "The correlation matrix data held in the monitor.", "PUT: {\"matrix\": ...}"},
    {"/Sensors/{id}/CorrelationMatrix/Database", kAnyMethod, kGet | kPost, "SensorCorrelationMatrixDatabase",
     "available", "The correlation matrix database entries (GET), or add one (POST).",
     "POST: {\"correlationID\": number, \"referenceSensor\": {...}, ...}"},
    {"/Sensors/{id}/Lease", kAnyMethod, kPut | kDelete, "", "",
     "Take or renew (PUT, renewing with the Sensor-Lease header) or release (DELETE) a lease on an open "
     "sensor; while it is leased, requests for the sensor without the lease token answer 409.",
     "PUT: {\"owner\": text, \"seconds\": number}", RouteKind::Gateway},
    {"/Monitors/{product}/{serial}/Sensor", kAnyMethod, kPost, "Monitors", "",
     "Open the built-in sensor of a monitor; answers its sensor id."},
    {"/Pallast/ControlPanel", kAnyMethod, kPut, "PallastControlPanel", "",
     "Show the measurement library's control panel."},
};

std::vector<std::string_view> Segments(std::string_view path) {
    if (!path.empty() && path.front() == '/') path.remove_prefix(1);
    std::vector<std::string_view> segments;
    for (;;) {
        size_t slash = path.find('/');
        segments.push_back(path.substr(0, slash));
        if (slash == std::string_view::npos) return segments;
        path.remove_prefix(slash + 1);
    }
}

bool IsParameter(std::string_view segment) {
    return segment.size() > 2 && segment.front() == '{' && segment.back() == '}';
}

} // namespace

unsigned MaskOf(Method method) {
    switch (method) {
    case Method::Get:
        return kGet;
    case Method::Post:
        return kPost;
    case Method::Put:
        return kPut;
    case Method::Delete:
        return kDelete;
    }
    return kGet;
}

std::string MaskText(unsigned mask) {
    std::string text;
    for (Method m : {Method::Get, Method::Post, Method::Put, Method::Delete}) {
        if (!(mask & MaskOf(m))) continue;
        if (!text.empty()) text += ' ';
        text += MethodName(m);
    }
    return text;
}

std::vector<Route> const& Routes() {
    return kRoutes;
}

RouteMatch MatchRoute(Method method, std::string_view path, bool withGatewayRows) {
    // Split once: the gateway matches every request it serves.
    static std::vector<std::vector<std::string_view>> const kPatterns = [] {
        std::vector<std::vector<std::string_view>> patterns;
        for (Route const& route : kRoutes)
            patterns.push_back(Segments(route.pattern));
        return patterns;
    }();
    std::vector<std::string_view> const segments = Segments(path);
    for (Route const& route : kRoutes) {
        if (!(route.methods & MaskOf(method))) continue;
        if (route.kind == RouteKind::Gateway && !withGatewayRows) continue;
        std::vector<std::string_view> const& pattern = kPatterns[&route - kRoutes.data()];
        if (pattern.size() != segments.size()) continue;
        bool literalsMatch = true;
        for (size_t i = 0; i < pattern.size() && literalsMatch; ++i)
            literalsMatch = IsParameter(pattern[i]) || pattern[i] == segments[i];
        if (!literalsMatch) continue;
        RouteMatch match;
        match.route = &route;
        for (size_t i = 0; i < pattern.size(); ++i)
            if (IsParameter(pattern[i]))
                match.parameters.emplace_back(pattern[i].substr(1, pattern[i].size() - 2), segments[i]);
        return match;
    }
    return RouteMatch();
}

std::vector<std::string> PatternParameters(std::string_view pattern) {
    std::vector<std::string> names;
    for (std::string_view segment : Segments(pattern))
        if (IsParameter(segment)) names.emplace_back(segment.substr(1, segment.size() - 2));
    return names;
}

CallTexts MakeCallTexts(Method method, std::vector<std::pair<std::string, std::string>> const& parameters,
                        std::vector<QueryItem> const& query, std::string const& body) {
    CallTexts texts;
    quilljson::Value request;
    request["method"] = quilljson::Value(MethodName(method));
    texts.request = quilljson::Serializer::toText(request);
    if (!parameters.empty()) {
        quilljson::Value object = quilljson::Value::object();
        for (auto const& [name, value] : parameters)
            object[name] = quilljson::Value(value);
        texts.parameters = quilljson::Serializer::toText(object);
    }
    if (!query.empty()) {
        quilljson::Value object = quilljson::Value::object();
        for (QueryItem const& item : query)
            object[item.key] = item.value ? quilljson::Value(*item.value) : quilljson::Value(true);
        texts.query = quilljson::Serializer::toText(object);
    }
    texts.data = body;
    return texts;
}

} // namespace sensorctl

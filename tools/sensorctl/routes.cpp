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
    {"/Sensors", kAnyMethod, kGetPutDelete, "Sensors", "connected, serialConnected"},
    {"/Sensors/Name", kAnyMethod, kGet, "SensorsName", "deviceIDs=<id>,<id>..."},
    {"/Sensors/Individual/{individualID}", kAnyMethod, kPost, "IndividualID", ""},
    {"/Sensors/{deviceID}", kPost, kPost, "DeviceID", ""},
    {"/Sensors/{id}", kGet | kPut | kDelete, kGet | kDelete, "Sensor", "connection"},
    {"/Sensors/{id}/Mode", kAnyMethod, kGetPut, "SensorMode", "supports"},
    {"/Sensors/{id}/Calibration", kAnyMethod, kGetPut, "SensorCalibration", "needs"},
    {"/Sensors/{id}/XYZ", kAnyMethod, kGet, "SensorXYZ", ""},
    {"/Sensors/{id}/RawData", kAnyMethod, kGet, "SensorRawData", ""},
    {"/Sensors/{id}/RGB", kAnyMethod, kGet, "SensorRGB", ""},
    {"/Sensors/{id}/IR", kAnyMethod, kGet, "SensorIR", ""},
    {"/Sensors/{id}/XYZWithoutCorrelation", kAnyMethod, kGet, "SensorXYZWithoutCorrelation", ""},
    {"/Sensors/{id}/Arm", kAnyMethod, kGetPut, "SensorArm", "supports"},
    {"/Sensors/{id}/Position", kAnyMethod, kGet, "SensorPosition", "supports"},
    {"/Sensors/{id}/ExteriorLight", kAnyMethod, kGetPut, "SensorExteriorLight", "supports"},
    {"/Sensors/{id}/ParameterDescription", kAnyMethod, kGetPut, "SensorParameterDescription", ""},
    {"/Sensors/{id}/TargetMarker", kAnyMethod, kGetPut, "SensorTargetMarker", "supports"},
    {"/Sensors/{id}/IFSTempCorrectParam", kAnyMethod, kPost, "SensorIFSTempCorrectParam", ""},
    {"/Sensors/{id}/IFSBrightCorrectParamUpdate", kAnyMethod, kGetPut, "SensorIFSBrightCorrectParamUpdate",
     "supports"},
    {"/Sensors/{id}/DeviceOption", kAnyMethod, kGetPut, "SensorDeviceOption", ""},
    {"/Sensors/{id}/Correction", kAnyMethod, kPut | kDelete, "SensorCorrection", ""},
    {"/Sensors/{id}/ExCorrection", kAnyMethod, kGetPut, "SensorExCorrection", "count, name"},
    {"/Sensors/{id}/AmbrelSense", kAnyMethod, kGetPut, "SensorAmbrelSense", ""},
    {"/Sensors/{id}/AmbrelSense/Level", kAnyMethod, kGetPut, "SensorAmbrelSenseLevel", ""},
    {"/Sensors/{id}/Correlation", kAnyMethod, kGetPutDelete, "SensorCorrelation", "available, swingSensor"},
    {"/Sensors/{id}/Correlation/9Points", kAnyMethod, kDelete, "SensorCorrelation9Points", ""},
    {"/Sensors/{id}/Correlation/Description", kAnyMethod, kGetPutDelete, "SensorCorrelationDescription", ""},
    {"/Sensors/{id}/Correlation/Data", kAnyMethod, kGetPut, "SensorCorrelationData", "checksFactoryData"},
    {"/Sensors/{id}/Correlation/Database", kAnyMethod, kGet | kPost, "SensorCorrelationDatabase",
     "available"},
    {"/Sensors/{id}/CorrelationMatrix", kAnyMethod, kGetPutDelete, "SensorCorrelationMatrix", "available"},
    {"/Sensors/{id}/CorrelationMatrix/Data", kAnyMethod, kGetPut, "SensorCorrelationMatrixData",
     "checksFactoryData"},
    {"/Sensors/{id}/CorrelationMatrix/Database", kAnyMethod, kGet | kPost, "SensorCorrelationMatrixDatabase",
     "available"},
    {"/Monitors/{product}/{serial}/Sensor", kAnyMethod, kPost, "Monitors", ""},
    {"/Pallast/ControlPanel", kAnyMethod, kPut, "PallastControlPanel", ""},
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

RouteMatch MatchRoute(Method method, std::string_view path) {
    std::vector<std::string_view> const segments = Segments(path);
    for (Route const& route : kRoutes) {
        if (!(route.methods & MaskOf(method))) continue;
        std::vector<std::string_view> const pattern = Segments(route.pattern);
        if (pattern.size() != segments.size()) continue;
        RouteMatch match;
        match.route = &route;
        for (size_t i = 0; i < pattern.size() && match.route; ++i) {
            if (IsParameter(pattern[i]))
                match.parameters.emplace_back(pattern[i].substr(1, pattern[i].size() - 2), segments[i]);
            else if (pattern[i] != segments[i])
                match.route = nullptr;
        }
        if (match.route) return match;
    }
    return RouteMatch();
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

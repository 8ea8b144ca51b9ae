#include "openapi.h"

#include <cctype>
#include <string_view>

#include "quilljson/serializer.h"
#include "routes.h"

namespace sensorctl::gateway {

namespace {

using quilljson::Value;

Value Ref(std::string const& target) {
    Value ref = Value::object();
    ref["$ref"] = Value(target);
    return ref;
}

Value Schema(char const* type) {
    Value schema = Value::object();
    schema["type"] = Value(type);
    return schema;
}

Value Envelope() {
    Value error = Schema("object");
    error["nullable"] = Value(true);
    error["description"] = Value("null on success; else the error's kind, message and any details "
                                 "(a device error adds \"code\" and \"reason\").");
    error["properties"]["name"] = Schema("string");
    error["properties"]["message"] = Schema("string");
    error["required"].append(Value("name"));
    error["required"].append(Value("message"));

    Value envelope = Schema("object");
    envelope["properties"]["error"] = error;
    Value value = Value::object();
    value["description"] = Value("the result; null on error");
    value["nullable"] = Value(true);
    envelope["properties"]["value"] = value;
    envelope["required"].append(Value("error"));
    envelope["required"].append(Value("value"));
    return envelope;
}

// Status codes and what they mean, shared by every operation.
struct StatusText {
    char const* code;
    char const* text;
};
StatusText const kLibraryStatuses[] = {
    {"200", "Success."},
    {"400", "A missing or ill-typed query key, parameter or body (\"BadRequestError\")."},
    {"404", "No such resource or open sensor (\"Error\"), or a missing device-library function "
            "(\"FunctionNotFoundError\")."},
    {"405", "The resource does not serve this method (\"MethodError\")."},
    {"500", "A device-library failure (\"DvError\") or an unexpected one (\"UnknownError\")."},
};
StatusText const kGatewayStatuses[] = {
    {"401", "No or a wrong bearer token (\"UnauthorizedError\")."},
    {"413", "The body is over the size limit (\"PayloadTooLargeError\")."},
    {"421", "The Host header does not name this server (\"HostError\")."},
    {"429", "Too many requests from this client (\"TooManyRequestsError\")."},
    {"431", "The request line and headers are over 64 KiB (\"RequestHeaderFieldsTooLargeError\")."},
    {"503", "Too many connections (\"ServiceUnavailableError\")."},
};
StatusText const kLeaseStatus = {"409", "The sensor is leased and the request did not carry its token in the "
                                        "Sensor-Lease header (\"LeaseError\")."};

Value Responses(bool forSensor) {
    Value responses = Value::object();
    for (StatusText const& status : kLibraryStatuses)
        responses[status.code] = Ref(std::string("#/components/responses/") + status.code);
    for (StatusText const& status : kGatewayStatuses)
        responses[status.code] = Ref(std::string("#/components/responses/") + status.code);
    if (forSensor)
        responses[kLeaseStatus.code] = Ref(std::string("#/components/responses/") + kLeaseStatus.code);
    return responses;
}

Value Components() {
    Value components = Value::object();
    components["schemas"]["Envelope"] = Envelope();
    Value bearer = Value::object();
    bearer["type"] = Value("http");
    bearer["scheme"] = Value("bearer");
    components["securitySchemes"]["bearer"] = bearer;
    auto add = [&](StatusText const& status) {
        Value response = Value::object();
        response["description"] = Value(status.text);
        response["content"]["application/json"]["schema"] = Ref("#/components/schemas/Envelope");
        components["responses"][status.code] = response;
    };
    for (StatusText const& status : kLibraryStatuses)
        add(status);
    for (StatusText const& status : kGatewayStatuses)
        add(status);
    add(kLeaseStatus);
    return components;
}

// "connected, serialConnected" or "deviceIDs=<id>,<id>...": a bare key is a
// flag the library tests for presence; key=... carries a text.
Value QueryParameters(std::string_view keys) {
    Value parameters = Value::array();
    while (!keys.empty()) {
        size_t const comma = keys.find(", ");
        std::string_view item = keys.substr(0, comma);
        keys = comma == std::string_view::npos ? std::string_view() : keys.substr(comma + 2);
        size_t const equals = item.find('=');
        Value parameter = Value::object();
        parameter["name"] = Value(std::string(item.substr(0, equals)));
        parameter["in"] = Value("query");
        parameter["required"] = Value(false);
        if (equals == std::string_view::npos) {
            parameter["allowEmptyValue"] = Value(true);
            parameter["description"] = Value("a flag: only its presence counts");
            parameter["schema"] = Schema("string");
        } else {
            parameter["description"] = Value(std::string(item.substr(equals + 1)));
            parameter["schema"] = Schema("string");
        }
        parameters.append(parameter);
    }
    return parameters;
}

Value PathParameter(std::string const& name, std::string const& passedAs) {
    Value parameter = Value::object();
    parameter["name"] = Value(name);
    parameter["in"] = Value("path");
    parameter["required"] = Value(true);
    parameter["schema"] = Schema("string");
    if (passedAs != name)
        parameter["description"] = Value("passed to the library as the path parameter \"" + passedAs + "\"");
    return parameter;
}

// The pattern with its parameter names left out: "/Sensors/{}/XYZ".
std::string Shape(std::string_view pattern) {
    std::string text;
    bool inside = false;
    for (char c : pattern) {
        if (c == '{') inside = true;
        if (!inside) text += c;
        if (c == '}') {
            inside = false;
            text += "{}";
        }
    }
    return text;
}

// OpenAPI counts /Sensors/{deviceID} and /Sensors/{id} as one path: rows whose
// patterns differ only in parameter names share the first row's pattern.
std::string PathKey(Route const& route) {
    std::string const shape = Shape(route.pattern);
    for (Route const& other : Routes())
        if (Shape(other.pattern) == shape) return other.pattern;
    return route.pattern;
}

std::string Lower(char const* text) {
    std::string lower = text;
    for (char& c : lower)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return lower;
}

Value Operation(Route const& route, Method method, std::string const& pathKey) {
    Value operation = Value::object();
    std::string const name = route.kind == RouteKind::Gateway ? "Lease" : route.exportName;
    operation["operationId"] = Value(name + "_" + Lower(MethodName(method)));
    operation["summary"] = Value(route.summary);
    operation["tags"].append(Value(route.kind == RouteKind::Gateway ? "gateway" : "library"));
    if (route.kind != RouteKind::Gateway)
        operation["description"] =
            Value(std::string("Served by the library's export ") + route.exportName + ".");

    Value parameters = Value::array();
    std::vector<std::string> const keyNames = PatternParameters(pathKey);
    std::vector<std::string> const rowNames = PatternParameters(route.pattern);
    for (size_t i = 0; i < keyNames.size() && i < rowNames.size(); ++i)
        parameters.append(PathParameter(keyNames[i], rowNames[i]));
    Value const queries = QueryParameters(route.queryKeys);
    for (Value const& query : queries.arrayRef())
        parameters.append(query);
    bool const forSensor = !rowNames.empty() && rowNames.front() == "id";
    if (forSensor) {
        Value lease = Value::object();
        lease["name"] = Value("Sensor-Lease");
        lease["in"] = Value("header");
        lease["required"] = Value(false);
        lease["description"] = Value("the lease token, when the sensor is leased");
        lease["schema"] = Schema("string");
        parameters.append(lease);
    }
    operation["parameters"] = parameters;

    if ((method == Method::Put || method == Method::Post) && *route.body) {
        Value body = Value::object();
        body["description"] = Value(route.body);
        body["required"] = Value(false);
        body["content"]["application/json"]["schema"] = Value::object();
        operation["requestBody"] = body;
    }
    operation["responses"] = Responses(forSensor);
    return operation;
}

} // namespace

Value OpenApi() {
    Value document = Value::object();
    document["openapi"] = Value("3.0.3");
    document["info"]["title"] = Value("sensorctl serve: the resources of libsensorcontrol over HTTP");
    document["info"]["version"] = Value("1");
    document["info"]["description"] =
        Value("Every answer is the library's envelope {\"error\", \"value\"} with the library's status. "
              "GET /events streams server-sent events: \"request\" for every request and \"reading\" for "
              "every measurement.");
    Value security = Value::object();
    security["bearer"] = Value::array();
    document["security"].append(security);
    document["components"] = Components();

    Value& paths = document["paths"];
    paths = Value::object();
    for (Route const& route : Routes()) {
        std::string const key = PathKey(route);
        for (Method method : {Method::Get, Method::Post, Method::Put, Method::Delete}) {
            // Rows that share a path take each method on the row that routes it.
            if (!(route.served & route.methods & MaskOf(method))) continue;
            paths[key][Lower(MethodName(method))] = Operation(route, method, key);
        }
    }
    return document;
}

std::string OpenApiDescription() {
    return quilljson::Serializer::toText(OpenApi());
}

} // namespace sensorctl::gateway

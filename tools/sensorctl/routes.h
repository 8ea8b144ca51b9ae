// The resource table: which export serves a resource path, and how a request
// becomes the export's four argument texts.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "request_line.h"

namespace sensorctl {

enum MethodMask : unsigned {
    kGet = 1u << 0,
    kPost = 1u << 1,
    kPut = 1u << 2,
    kDelete = 1u << 3,
    kAnyMethod = kGet | kPost | kPut | kDelete,
};
unsigned MaskOf(Method method);
std::string MaskText(unsigned mask); // "GET PUT DELETE"

enum class RouteKind {
    Endpoint, // an export of the library
    Reading,  // an export whose GET answer is a measurement (the gateway streams those)
    Gateway,  // served by `sensorctl serve` itself; the library has no export for it
};

struct Route {
    char const* pattern;    // "/Sensors/{id}/XYZ"; "{name}" is a path parameter
    unsigned methods;       // methods this row takes; the first matching row wins
    unsigned served;        // methods the export implements (the others answer 405)
    char const* exportName; // the exported function; "" for gateway rows
    char const* queryKeys;  // the query keys the export reads, for --help
    char const* summary;    // one sentence, for the HTTP description
    char const* body = "";  // what the PUT and POST bodies hold; "" when none is read
    RouteKind kind = RouteKind::Endpoint;
};

// Every row, the gateway's own included.
std::vector<Route> const& Routes();

struct RouteMatch {
    Route const* route = nullptr;                                // null when nothing matched
    std::vector<std::pair<std::string, std::string>> parameters; // name, segment as written
};

// Leading '/' optional; segments compare case-sensitively; a parameter takes
// any segment, the empty one included. Gateway rows match only when asked for.
RouteMatch MatchRoute(Method method, std::string_view path, bool withGatewayRows = false);

// The "{name}" parameters of a pattern, in order.
std::vector<std::string> PatternParameters(std::string_view pattern);

// The four argument texts of an endpoint export.
struct CallTexts {
    std::string request;    // {"method":"GET"}
    std::string parameters; // {"id":"..."}, or "" without parameters
    std::string query;      // {"key":true,"k":"v"}, or "" without query
    std::string data;       // the body as written
};

CallTexts MakeCallTexts(Method method, std::vector<std::pair<std::string, std::string>> const& parameters,
                        std::vector<QueryItem> const& query, std::string const& body);

} // namespace sensorctl

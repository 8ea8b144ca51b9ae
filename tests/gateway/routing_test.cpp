// Every resource of the route table through real HTTP: the answer is the
// library's own, byte for byte, for the same four texts. The OpenAPI
// description tells the same story: every row's methods are described, and
// everything described is routed.
#include <gtest/gtest.h>

#include <set>

#include "gateway_server.h"
#include "openapi.h"
#include "routes.h"

namespace gatewaytest {
namespace {

using sensorctl::CallTexts;
using sensorctl::MakeCallTexts;
using sensorctl::Method;
using sensorctl::MethodName;
using sensorctl::QueryItem;
using sensorctl::Route;
using sensorctl::RouteKind;

struct HttpRequest {
    Method method;
    std::string target; // path and query as sent
    std::vector<std::pair<std::string, std::string>> parameters;
    std::vector<QueryItem> query;
};

// A request for the row that can be repeated with the same answer: GET where
// the export serves it, else its first method (with no body, which the
// library rejects the same way every time). Parameters that open something
// name nothing, for the same reason.
HttpRequest RequestFor(Route const& route, std::string const& sensor) {
    HttpRequest request{Method::Get, "", {}, {}};
    for (Method m : {Method::Get, Method::Put, Method::Post, Method::Delete})
        if (route.served & sensorctl::MaskOf(m)) {
            request.method = m;
            break;
        }
    std::string path = route.pattern;
    for (std::string const& name : sensorctl::PatternParameters(route.pattern)) {
        std::string const value = name == "id" ? sensor : "nothing-" + name;
        path.replace(path.find("{" + name + "}"), name.size() + 2, value);
        request.parameters.emplace_back(name, value);
    }
    std::string const keys = route.queryKeys;
    if (!keys.empty()) {
        std::string const first = keys.substr(0, keys.find(", "));
        size_t const equals = first.find('=');
        if (equals == std::string::npos) {
            path += "?" + first;
            request.query.push_back({first, std::nullopt});
        } else {
            // Percent-encoded on the way, as an HTTP client writes it.
            path += "?" + first.substr(0, equals) + "=8%2C11";
            request.query.push_back({first.substr(0, equals), std::string("8,11")});
        }
    }
    request.target = path;
    return request;
}

httplib::Result Send(httplib::Client& client, Method method, std::string const& target) {
    httplib::Request request;
    request.method = MethodName(method);
    request.path = target;
    return client.send(request);
}

using GatewayRouting = GatewayTest;

TEST_F(GatewayRouting, EveryResourceAnswersAsTheDirectExportCall) {
    ASSERT_FALSE(sensor.empty());
    size_t checked = 0;
    for (Route const& route : sensorctl::Routes()) {
        if (route.kind == RouteKind::Gateway) continue;
        HttpRequest const request = RequestFor(route, sensor);
        SCOPED_TRACE(std::string(MethodName(request.method)) + " " + request.target);
        httplib::Result result = Send(*client, request.method, request.target);
        ASSERT_TRUE(result);
        sensorctl::Response const direct = Library().call(
            route.exportName, MakeCallTexts(request.method, request.parameters, request.query, ""));
        EXPECT_EQ(static_cast<int>(direct.status), result->status);
        EXPECT_EQ(direct.text, result->body);
        EXPECT_EQ("application/json", result->get_header_value("Content-Type"));
        ++checked;
    }
    EXPECT_EQ(34u, checked);
}

// Bodies and statuses that differ from one resource to the next reach the
// library unchanged, and its answers come back unchanged.
TEST_F(GatewayRouting, BodiesAndErrorStatusesPassThrough) {
    std::string const mode = "/Sensors/" + sensor + "/Mode";

    // Good, ill-typed and non-JSON bodies, each answered as the export answers it.
    for (std::string const body : {R"({"mode":1,"observerKey":2})", R"({"mode":"one"})", "not json"}) {
        httplib::Result put = client->Put(mode.c_str(), body, "application/json");
        ASSERT_TRUE(put);
        sensorctl::Response const direct =
            Library().call("SensorMode", MakeCallTexts(Method::Put, {{"id", sensor}}, {}, body));
        EXPECT_EQ(static_cast<int>(direct.status), put->status) << body;
        EXPECT_EQ(direct.text, put->body) << body;
    }

    struct Case {
        std::string target;
        int status;
        char const* errorName;
    } const cases[] = {
        {"/Sensors/" + sensor + "/Bogus", 404, "Error"}, // no resource: the gateway's
        {"/sensors", 404, "Error"},
        {"/Sensors?=x", 400, "BadRequestError"},
    };
    for (Case const& c : cases) {
        SCOPED_TRACE(c.target);
        httplib::Result result = client->Get(c.target.c_str());
        ASSERT_TRUE(result);
        EXPECT_EQ(c.status, result->status);
        EXPECT_NE(std::string::npos, result->body.find(std::string("\"name\":\"") + c.errorName + "\""))
            << result->body;
        EXPECT_NE(std::string::npos, result->body.find(",\"value\":null}")) << result->body;
    }
    httplib::Result patch = client->Patch(mode.c_str(), "{}", "application/json");
    EXPECT_EQ(405, patch->status);
    EXPECT_EQ(R"({"error":{"message":"PATCH method is not allowed.","name":"MethodError"},"value":null})",
              patch->body);
}

using quilljson::Value;

// "/Sensors/{id}/XYZ" -> "/Sensors/p/XYZ"
std::string Instance(std::string pattern) {
    for (size_t open; (open = pattern.find('{')) != std::string::npos;)
        pattern.replace(open, pattern.find('}', open) - open + 1, "p");
    return pattern;
}

TEST(GatewayOpenApi, DescribesExactlyWhatTheRouteTableServes) {
    Value const document = sensorctl::gateway::OpenApi();
    EXPECT_EQ("3.0.3", document["openapi"].toString(""));

    // Every described operation is one that a row serves, described as the row says.
    std::set<std::pair<sensorctl::Route const*, Method>> described;
    for (auto const& [path, item] : document["paths"].objectRef()) {
        for (auto const& [name, operation] : item.objectRef()) {
            SCOPED_TRACE(name + " " + path);
            Method method;
            ASSERT_TRUE(sensorctl::ParseMethod(name, &method));
            sensorctl::RouteMatch const match = sensorctl::MatchRoute(method, Instance(path), true);
            ASSERT_NE(nullptr, match.route);
            EXPECT_TRUE(match.route->served & match.route->methods & sensorctl::MaskOf(method));
            EXPECT_TRUE(described.emplace(match.route, method).second) << "described twice";
            EXPECT_EQ(match.route->summary, operation["summary"].toString(""));
            // Path parameters as many as the pattern has; a body where the row reads one.
            size_t pathParameters = 0;
            for (Value const& parameter : operation["parameters"].arrayRef())
                pathParameters += parameter["in"].toString("") == "path";
            EXPECT_EQ(match.parameters.size(), pathParameters);
            bool const takesBody = (method == Method::Put || method == Method::Post) && *match.route->body;
            EXPECT_EQ(takesBody, operation.contains("requestBody"));
            for (char const* status : {"200", "400", "401", "404", "413", "421", "429", "500", "503"})
                EXPECT_TRUE(operation["responses"].contains(status)) << status;
        }
    }
    // And every method a row serves is described.
    size_t operations = 0;
    for (sensorctl::Route const& route : sensorctl::Routes())
        for (Method method : {Method::Get, Method::Post, Method::Put, Method::Delete})
            if (route.served & route.methods & sensorctl::MaskOf(method)) {
                ++operations;
                EXPECT_TRUE(described.count({&route, method}))
                    << sensorctl::MethodName(method) << " " << route.pattern;
            }
    EXPECT_EQ(operations, described.size());
    // The envelope every answer uses.
    Value const& envelope = document["components"]["schemas"]["Envelope"];
    EXPECT_TRUE(envelope["properties"].contains("error"));
    EXPECT_TRUE(envelope["properties"].contains("value"));
}

} // namespace
} // namespace gatewaytest

// Every resource of the route table through real HTTP: the answer is the
// library's own, byte for byte, for the same four texts.
#include <gtest/gtest.h>

#include "gateway_server.h"
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

httplib::Result Send(httplib::Client& client, Method method, std::string const& target,
                     std::string const& body) {
    switch (method) {
    case Method::Get:
        return client.Get(target.c_str());
    case Method::Post:
        return client.Post(target.c_str(), body, "application/json");
    case Method::Put:
        return client.Put(target.c_str(), body, "application/json");
    case Method::Delete:
        return client.Delete(target.c_str(), body, "application/json");
    }
    return client.Get(target.c_str());
}

TEST(GatewayRouting, EveryResourceAnswersAsTheDirectExportCall) {
    GatewayServer server;
    auto client = server.client();
    std::string const sensor = server.openSpectro();
    ASSERT_FALSE(sensor.empty());
    size_t checked = 0;
    for (Route const& route : sensorctl::Routes()) {
        if (route.kind == RouteKind::Gateway) continue;
        HttpRequest const request = RequestFor(route, sensor);
        SCOPED_TRACE(std::string(MethodName(request.method)) + " " + request.target);
        httplib::Result result = Send(*client, request.method, request.target, "");
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
TEST(GatewayRouting, BodiesAndErrorStatusesPassThrough) {
    GatewayServer server;
    auto client = server.client();
    std::string const sensor = server.openSpectro();
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
        Method method;
        std::string target;
        int status;
        char const* errorName;
    } const cases[] = {
        {Method::Get, "/Sensors/" + sensor + "/Bogus", 404, "Error"}, // no resource: the gateway's
        {Method::Get, "/sensors", 404, "Error"},
        {Method::Get, "/Sensors?=x", 400, "BadRequestError"},
    };
    for (Case const& c : cases) {
        SCOPED_TRACE(c.target);
        httplib::Result result = Send(*client, c.method, c.target, "");
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

} // namespace
} // namespace gatewaytest

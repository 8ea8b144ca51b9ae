// The OpenAPI description and the route table tell the same story: every
// row's methods are described, and everything described is routed.
#include <gtest/gtest.h>

#include <set>

#include "openapi.h"
#include "routes.h"

namespace gatewaytest {
namespace {

using quilljson::Value;
using sensorctl::Method;

// "/Sensors/{id}/XYZ" -> "/Sensors/p/XYZ"
std::string Instance(std::string pattern) {
    for (size_t open; (open = pattern.find('{')) != std::string::npos;)
        pattern.replace(open, pattern.find('}', open) - open + 1, "p");
    return pattern;
}

TEST(GatewayOpenApi, DescribesExactlyWhatTheRouteTableServes) {
    Value const document = sensorctl::gateway::OpenApi();
    EXPECT_EQ("3.0.3", document["openapi"].toString(""));
    Value const& paths = document["paths"];

    // Every method a row serves is described where the row's path leads.
    size_t operations = 0;
    for (sensorctl::Route const& route : sensorctl::Routes()) {
        for (Method method : {Method::Get, Method::Post, Method::Put, Method::Delete}) {
            if (!(route.served & route.methods & sensorctl::MaskOf(method))) continue;
            ++operations;
            bool found = false;
            for (auto const& [path, item] : paths.objectRef()) {
                std::string lower = sensorctl::MethodName(method);
                for (char& c : lower)
                    c = static_cast<char>(std::tolower(c));
                if (!item.contains(lower)) continue;
                sensorctl::RouteMatch match = sensorctl::MatchRoute(method, Instance(path), true);
                if (match.route != &route) continue;
                found = true;
                Value const& operation = item[lower];
                EXPECT_EQ(route.summary, operation["summary"].toString("")) << path;
                // Path parameters as many as the pattern has; a body where the row reads one.
                size_t pathParameters = 0;
                for (Value const& parameter : operation["parameters"].arrayRef())
                    pathParameters += parameter["in"].toString("") == "path";
                EXPECT_EQ(match.parameters.size(), pathParameters) << path;
                bool const takesBody = (method == Method::Put || method == Method::Post) && *route.body;
                EXPECT_EQ(takesBody, operation.contains("requestBody")) << lower << " " << path;
                for (char const* status : {"200", "400", "401", "404", "413", "421", "429", "500", "503"})
                    EXPECT_TRUE(operation["responses"].contains(status))
                        << lower << " " << path << " " << status;
            }
            EXPECT_TRUE(found) << sensorctl::MethodName(method) << " " << route.pattern;
        }
    }
    // And nothing else is.
    size_t described = 0;
    for (auto const& [path, item] : paths.objectRef()) {
        for (auto const& [method, operation] : item.objectRef()) {
            ++described;
            Method parsed;
            ASSERT_TRUE(sensorctl::ParseMethod(method, &parsed)) << method;
            sensorctl::RouteMatch match = sensorctl::MatchRoute(parsed, Instance(path), true);
            ASSERT_NE(nullptr, match.route) << method << " " << path;
            EXPECT_TRUE(match.route->served & sensorctl::MaskOf(parsed)) << method << " " << path;
        }
    }
    EXPECT_EQ(operations, described);
    // The envelope every answer uses.
    Value const& envelope = document["components"]["schemas"]["Envelope"];
    EXPECT_TRUE(envelope["properties"].contains("error"));
    EXPECT_TRUE(envelope["properties"].contains("value"));
}

} // namespace
} // namespace gatewaytest

// The HTTP gateway of `sensorctl serve`: every resource of the library over
// HTTP/1.1, the console's files, the OpenAPI description and the event stream,
// behind the Host check, the bearer token and the rate and connection limits.
#pragma once

#include <httplib.h>

#include <memory>
#include <string>
#include <vector>

#include "access_policy.h"
#include "event_hub.h"
#include "host_library.h"
#include "http_server.h"
#include "rate_limiter.h"
#include "resource_forwarder.h"

namespace sensorctl::gateway {

struct GatewayOptions {
    std::string host = "127.0.0.1";
    int port = 8080; // 0: any free port
    std::string token;
    size_t maxBodyBytes = 1u << 20;
    double requestsPerSecond = 200; // per client address; 0: no limit
    size_t maxConnections = 128;
    std::vector<std::string> corsOrigins; // none: no CORS headers at all
    int maxLeaseSeconds = 3600;
};

class Gateway {
public:
    // The library must be set up and stay so while the gateway runs.
    Gateway(HostLibrary& library, GatewayOptions options);
    ~Gateway();

    bool bind(std::string* error);
    int port() const { return port_; }
    // Serves until stop(); call after bind.
    void run();
    void stop();

    // http://HOST:PORT/#token=TOKEN, for the console to take the token from.
    std::string consoleAddress() const;

private:
    void handle(httplib::Request const& request, httplib::Response& response);
    bool serveConsole(httplib::Request const& request, httplib::Response& response);
    void serveEvents(httplib::Response& response);
    void publishRequest(httplib::Request const& request, httplib::Response const& response);

    GatewayOptions const options_;
    AccessPolicy access_;
    RateLimiter limiter_;
    EventHub events_;
    ResourceForwarder forwarder_;
    std::string description_; // /openapi.json
    HttpServer server_;
    int port_ = 0;
    int listenSocket_ = -1;
};

} // namespace sensorctl::gateway

// Who may talk to the gateway: the Host header must name this server (a web
// page cannot reach it through a DNS name of its own), API requests carry the
// bearer token, and cross-origin reads are allowed only for configured origins.
#pragma once

#include <string>
#include <vector>

namespace sensorctl::gateway {

class AccessPolicy {
public:
    AccessPolicy(std::string token, std::string listenHost, std::vector<std::string> corsOrigins);

    void setPort(int port); // once bound

    // "127.0.0.1:PORT", "localhost:PORT", "[::1]:PORT" or the listen address
    // with the port; without a port only when the port is 80.
    bool hostAllowed(std::string const& host) const;

    // "Bearer TOKEN", the token compared in constant time.
    bool authorized(std::string const& authorization) const;

    // The origin to allow in Access-Control-Allow-Origin, or "" for none.
    std::string allowedOrigin(std::string const& origin) const;
    bool corsConfigured() const { return !corsOrigins_.empty(); }

private:
    std::string token_;
    std::string listenHost_;
    std::vector<std::string> corsOrigins_;
    std::vector<std::string> hosts_; // lower case, with and without the port
};

} // namespace sensorctl::gateway

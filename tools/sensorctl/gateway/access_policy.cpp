#include "access_policy.h"

#include <algorithm>
#include <cctype>

#include "token.h"

namespace sensorctl::gateway {

namespace {

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

} // namespace

AccessPolicy::AccessPolicy(std::string token, std::string listenHost, std::vector<std::string> corsOrigins)
    : token_(std::move(token)), listenHost_(std::move(listenHost)), corsOrigins_(std::move(corsOrigins)) {}

void AccessPolicy::setPort(int port) {
    std::string const suffix = ":" + std::to_string(port);
    std::vector<std::string> names = {"127.0.0.1", "localhost", "[::1]"};
    std::string listen = Lower(listenHost_);
    if (listen.find(':') != std::string::npos) listen = "[" + listen + "]"; // an IPv6 address
    // A wildcard address is no name a client can use: it still needs one of the loopback names.
    if (listen != "0.0.0.0" && listen != "[::]") names.push_back(listen);
    hosts_.clear();
    for (std::string const& name : names) {
        hosts_.push_back(name + suffix);
        if (port == 80) hosts_.push_back(name);
    }
}

bool AccessPolicy::hostAllowed(std::string const& host) const {
    std::string const wanted = Lower(host);
    return std::find(hosts_.begin(), hosts_.end(), wanted) != hosts_.end();
}

bool AccessPolicy::authorized(std::string const& authorization) const {
    static std::string const kScheme = "Bearer ";
    if (authorization.size() < kScheme.size() ||
        Lower(authorization.substr(0, kScheme.size())) != Lower(kScheme))
        return false;
    return SameToken(std::string_view(authorization).substr(kScheme.size()), token_);
}

std::string AccessPolicy::allowedOrigin(std::string const& origin) const {
    if (origin.empty()) return std::string();
    for (std::string const& allowed : corsOrigins_)
        if (allowed == "*" || allowed == origin) return origin;
    return std::string();
}

} // namespace sensorctl::gateway

// A gateway on a free loopback port in this process, over the library this
// process loaded, and the small HTTP helpers the gateway tests share.
#pragma once

#include <gtest/gtest.h>
#include <httplib.h>

#include <memory>
#include <string>
#include <thread>

#include "gateway.h"
#include "host_library.h"

namespace gatewaytest {

// The library, loaded and set up once per process (each test runs in a
// process of its own).
sensorctl::HostLibrary& Library();

class GatewayServer {
public:
    explicit GatewayServer(sensorctl::gateway::GatewayOptions options = Defaults());
    ~GatewayServer();

    static sensorctl::gateway::GatewayOptions Defaults(); // port 0, a fixed token, no rate limit

    int port() const { return gateway_->port(); }
    std::string const& token() const { return token_; }

    // A client that sends the token.
    std::unique_ptr<httplib::Client> client() const;
    // One that sends nothing of its own.
    std::unique_ptr<httplib::Client> bareClient() const;

    // Opens device 8 through the gateway; answers the sensor id.
    std::string openSpectro() const;

private:
    std::string token_;
    std::unique_ptr<sensorctl::gateway::Gateway> gateway_;
    std::thread thread_;
};

// A connected socket, or -1.
int ConnectLoopback(int port);

// Sends `raw` on a fresh connection and reads one answer, until the server
// closes the connection or `timeoutMs` passes; "" when nothing came.
std::string RawExchange(int port, std::string const& raw, int timeoutMs = 2000);

// The "value" of a response text, as compact JSON.
std::string ValueOf(std::string const& text);

// The status of an answer, -1 when none came.
inline int Status(httplib::Result const& result) {
    return result ? result->status : -1;
}

// "METHOD /target" as raw HTTP/1.1 with the server's Host and token and
// Connection: close, then `rest`: further headers, the blank line, the body.
std::string RawRequest(GatewayServer const& server, std::string const& head,
                       std::string const& rest = "\r\n");

// A gateway with the default options, a client that sends the token, and device 8 open.
class GatewayTest : public ::testing::Test {
protected:
    GatewayServer server;
    std::unique_ptr<httplib::Client> client = server.client();
    std::string const sensor = server.openSpectro();
};

} // namespace gatewaytest

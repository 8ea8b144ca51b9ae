// Limits with clear answers (body size, request rate, connections), and
// requests that are not HTTP at all: answered, never a crash.
#include <unistd.h>

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "gateway_server.h"
#include "rate_limiter.h"

namespace gatewaytest {
namespace {

TEST(GatewayLimits, BodiesOverTheLimitAnswer413) {
    auto options = GatewayServer::Defaults();
    options.maxBodyBytes = 1000;
    GatewayServer server(options);
    auto client = server.client();
    std::string const sensor = server.openSpectro();
    std::string const path = "/Sensors/" + sensor + "/Mode";

    httplib::Result fits = client->Put(path.c_str(), std::string(1000, ' '), "application/json");
    EXPECT_NE(413, fits->status);
    httplib::Result over = client->Put(path.c_str(), std::string(1001, ' '), "application/json");
    EXPECT_EQ(413, over->status);
    EXPECT_EQ(
        R"({"error":{"message":"The body is larger than 1000 bytes.","name":"PayloadTooLargeError"},"value":null})",
        over->body);
    // Sent in chunks, with no length to refuse up front.
    std::string const chunked =
        RawRequest(server, "PUT " + path,
                   "Transfer-Encoding: chunked\r\n\r\n7d0\r\n" + std::string(2000, ' ') + "\r\n0\r\n\r\n");
    EXPECT_EQ(0u, RawExchange(server.port(), chunked).find("HTTP/1.1 413"))
        << RawExchange(server.port(), chunked);
    // Declared over the limit and none of it sent: refused at once, not after
    // the server's read time-out.
    for (char const* length : {"1001", "99999999999999999999999"}) {
        std::string const answer =
            RawExchange(server.port(), RawRequest(server, "PUT " + path,
                                                  "Content-Length: " + std::string(length) + "\r\n\r\n"));
        EXPECT_EQ(0u, answer.find("HTTP/1.1 413")) << length << ": " << answer;
    }
}

TEST(GatewayLimits, RateLimitRefillsPerClient) {
    using sensorctl::gateway::RateLimiter;
    RateLimiter limiter(5);
    auto const start = RateLimiter::Clock::now();
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(limiter.admit("a", start)) << i;
    EXPECT_FALSE(limiter.admit("a", start));
    EXPECT_TRUE(limiter.admit("b", start)); // another client has its own allowance
    EXPECT_FALSE(limiter.admit("a", start + std::chrono::milliseconds(150)));
    EXPECT_TRUE(limiter.admit("a", start + std::chrono::milliseconds(250))); // one more after 1/5 s
    EXPECT_FALSE(limiter.admit("a", start + std::chrono::milliseconds(260)));
    EXPECT_TRUE(RateLimiter(0).admit("a", start)); // no limit

    auto options = GatewayServer::Defaults();
    options.requestsPerSecond = 5;
    GatewayServer server(options);
    auto client = server.client();
    int refused = 0;
    for (int i = 0; i < 12; ++i) {
        httplib::Result result = client->Get("/Sensors");
        if (result->status != 429) continue;
        ++refused;
        EXPECT_EQ("1", result->get_header_value("Retry-After"));
        EXPECT_NE(std::string::npos, result->body.find("\"name\":\"TooManyRequestsError\"")) << result->body;
    }
    EXPECT_GE(refused, 5);
}

TEST(GatewayLimits, RangesAreIgnored) {
    GatewayServer server;
    auto client = server.bareClient();
    httplib::Result whole = client->Get("/console/app.js");
    httplib::Result ranged = client->Get("/console/app.js", {{"Range", "bytes=0-9999,0-9999,0-9999"}});
    ASSERT_EQ(200, Status(whole));
    EXPECT_EQ(200, Status(ranged));
    EXPECT_TRUE(whole->body == ranged->body); // not the file three times over
}

TEST(GatewayLimits, ConnectionsOverTheLimitAnswer503) {
    auto options = GatewayServer::Defaults();
    options.maxConnections = 2;
    GatewayServer server(options);
    // Two idle connections hold both places.
    int const first = ConnectLoopback(server.port());
    int const second = ConnectLoopback(server.port());
    std::string const refused = RawExchange(server.port(), RawRequest(server, "GET /Sensors"));
    EXPECT_EQ(0u, refused.find("HTTP/1.1 503")) << refused;
    EXPECT_NE(std::string::npos, refused.find("\"name\":\"ServiceUnavailableError\"")) << refused;
    close(first);
    close(second);
    // The places come back once the server has seen the connections close.
    std::string answer;
    for (int i = 0; i < 100 && answer.find("HTTP/1.1 200") != 0; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        answer = RawExchange(server.port(), RawRequest(server, "GET /Sensors"));
    }
    EXPECT_EQ(0u, answer.find("HTTP/1.1 200")) << answer;
}

TEST(GatewayLimits, MalformedRequestsAreAnsweredAndTheServerGoesOn) {
    GatewayServer server;
    std::string const host = "Host: 127.0.0.1:" + std::to_string(server.port()) + "\r\n";
    std::string manyHeaders;
    for (int i = 0; i < 2000; ++i)
        manyHeaders += "X-" + std::to_string(i) + ": v\r\n";
    // Each line within the length limit, but more of them than any client sends.
    std::string floodHeaders;
    for (int i = 0; i < 1000; ++i)
        floodHeaders += "X-" + std::to_string(i) + ": " + std::string(100, 'v') + "\r\n";
    struct Case {
        char const* what;
        std::string raw;
        char const* statusLine; // "" when closing without an answer is fine too
    } const cases[] = {
        {"not HTTP", "HELLO\r\n\r\n", "HTTP/1.1 400"},
        {"unknown method", "BREW /Sensors HTTP/1.1\r\n" + host + "\r\n", "HTTP/1.1 400"},
        {"target too long", "GET /" + std::string(10000, 'a') + " HTTP/1.1\r\n" + host + "\r\n",
         "HTTP/1.1 414"},
        {"header too long",
         "GET /Sensors HTTP/1.1\r\n" + host + "X-Big: " + std::string(100000, 'a') + "\r\n\r\n",
         "HTTP/1.1 431"},
        {"many headers", "GET /Sensors HTTP/1.1\r\n" + host + manyHeaders + "\r\n", ""},
        {"header block too large", "GET /Sensors HTTP/1.1\r\n" + host + floodHeaders + "\r\n",
         "HTTP/1.1 431"},
        {"bad length", "PUT /Sensors HTTP/1.1\r\n" + host + "Content-Length: -5\r\n\r\n", "HTTP/1.1 400"},
        {"length and chunks",
         "PUT /Sensors HTTP/1.1\r\n" + host +
             "Content-Length: 3\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n0\r\n\r\n",
         "HTTP/1.1 400"},
        {"length not a number", "PUT /Sensors HTTP/1.1\r\n" + host + "Content-Length: 1x\r\n\r\n",
         "HTTP/1.1 400"},
        {"body cut short", "PUT /Sensors HTTP/1.1\r\n" + host + "Content-Length: 100\r\n\r\n{\"a\"", ""},
        {"request cut short", "GET /Sens", ""},
    };
    for (Case const& c : cases) {
        // Requests that are cut short get no answer before the server's read
        // timeout: waiting for that would only slow the test.
        std::string const answer = RawExchange(server.port(), c.raw, *c.statusLine ? 3000 : 300);
        if (*c.statusLine) {
            EXPECT_EQ(0u, answer.find(c.statusLine)) << c.what << ": " << answer.substr(0, 200);
            EXPECT_NE(std::string::npos, answer.find("{\"error\":{")) << c.what;
        }
    }
    httplib::Result after = server.client()->Get("/Sensors");
    ASSERT_TRUE(after);
    EXPECT_EQ(200, after->status);
}

} // namespace
} // namespace gatewaytest

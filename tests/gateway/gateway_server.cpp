#include "gateway_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "quilljson/parser.h"
#include "quilljson/serializer.h"

namespace gatewaytest {

using sensorctl::gateway::GatewayOptions;

sensorctl::HostLibrary& Library() {
    static sensorctl::HostLibrary* library = [] {
        auto* loaded = new sensorctl::HostLibrary; // lives until the process ends, as a host's would
        std::string error;
        if (!loaded->load(TEST_LIBRARY_DIR "/libsensorcontrol" SENSORCONTROL_LIBRARY_SUFFIX, &error))
            ADD_FAILURE() << error;
        else
            loaded->setup();
        return loaded;
    }();
    return *library;
}

GatewayOptions GatewayServer::Defaults() {
    GatewayOptions options;
    options.port = 0;
    options.token = "test-token-0123456789";
    options.requestsPerSecond = 0;
    return options;
}

GatewayServer::GatewayServer(GatewayOptions options) : token_(options.token) {
    gateway_ = std::make_unique<sensorctl::gateway::Gateway>(Library(), std::move(options));
    std::string error;
    if (!gateway_->bind(&error)) {
        ADD_FAILURE() << "the gateway cannot listen: " << error;
        return;
    }
    thread_ = std::thread([this] { gateway_->run(); });
}

GatewayServer::~GatewayServer() {
    gateway_->stop();
    if (thread_.joinable()) thread_.join();
}

std::unique_ptr<httplib::Client> GatewayServer::bareClient() const {
    auto client = std::make_unique<httplib::Client>("127.0.0.1", port());
    client->set_read_timeout(10);
    return client;
}

std::unique_ptr<httplib::Client> GatewayServer::client() const {
    auto client = bareClient();
    client->set_bearer_token_auth(token_);
    return client;
}

std::string GatewayServer::openSpectro() const {
    httplib::Result result = client()->Post("/Sensors/8");
    if (!result || result->status != 200) {
        ADD_FAILURE() << "cannot open device 8";
        return std::string();
    }
    quilljson::Value parsed;
    quilljson::Parser().parse(&parsed, result->body);
    return parsed["value"].toString("");
}

namespace {

// One whole answer: its head and as many bytes as its Content-Length says.
bool Complete(std::string const& answer) {
    size_t const end = answer.find("\r\n\r\n");
    if (end == std::string::npos) return false;
    std::string const head = answer.substr(0, end);
    size_t const length = head.find("Content-Length: ");
    if (length == std::string::npos) return false;
    return answer.size() - end - 4 >= std::stoul(head.substr(length + 16));
}

} // namespace

int ConnectLoopback(int port) {
    int fd = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) return fd;
    close(fd);
    return -1;
}

std::string RawExchange(int port, std::string const& raw, int timeoutMs) {
    int fd = ConnectLoopback(port);
    if (fd < 0) return std::string();
    for (size_t sent = 0; sent < raw.size();) {
        ssize_t n = send(fd, raw.data() + sent, raw.size() - sent, MSG_NOSIGNAL);
        if (n <= 0) break; // the server may close early; what it answered is still read
        sent += static_cast<size_t>(n);
    }
    std::string answer;
    char buffer[4096];
    pollfd wait{fd, POLLIN, 0};
    while (!Complete(answer) && poll(&wait, 1, timeoutMs) > 0) {
        ssize_t n = recv(fd, buffer, sizeof buffer, 0);
        if (n <= 0) break;
        answer.append(buffer, static_cast<size_t>(n));
    }
    close(fd);
    return answer;
}

std::string RawRequest(GatewayServer const& server, std::string const& head, std::string const& rest) {
    return head + " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(server.port()) +
           "\r\nAuthorization: Bearer " + server.token() + "\r\nConnection: close\r\n" + rest;
}

std::string ValueOf(std::string const& text) {
    quilljson::Value parsed;
    if (!quilljson::Parser().parse(&parsed, text)) return "(not JSON) " + text;
    return quilljson::Serializer::toText(parsed["value"]);
}

} // namespace gatewaytest

// What this machine allows an HTTP server under wrk: cpp-httplib answering
// every request with a constant reading of the size of a SensorXYZ answer,
// through the gateway's connection loop and thread pool (or, with --stock,
// the HTTP library's own loop). Prints its address, serves until killed.
#include <httplib.h>

#include <cstdio>
#include <cstring>
#include <memory>

#include "connection_pool.h"
#include "http_server.h"

int main(int argc, char** argv) {
    bool const stock = argc > 1 && std::strcmp(argv[1], "--stock") == 0;
    std::unique_ptr<httplib::Server> server =
        stock ? std::make_unique<httplib::Server>() : std::make_unique<sensorctl::gateway::HttpServer>();
    server->new_task_queue = [] { return new sensorctl::gateway::ConnectionPool(128); };
    server->set_tcp_nodelay(true);
    server->set_keep_alive_max_count(100000);
    static char const kReading[] =
        R"({"error":null,"value":{"XYZ":{"X":95.042900000000003,"Y":100.0137,"Z":108.88120000000001},)"
        R"("rawXYZ":{"X":0.95042899999999997,"Y":1.0001370000000001,"Z":1.0888119999999999}}})";
    server->set_pre_routing_handler([](httplib::Request const&, httplib::Response& response) {
        response.set_content(kReading, sizeof kReading - 1, "application/json");
        return httplib::Server::HandlerResponse::Handled;
    });
    int const port = server->bind_to_any_port("127.0.0.1");
    if (port <= 0) return 1;
    std::printf("http://127.0.0.1:%d/\n", port);
    std::fflush(stdout);
    return server->listen_after_bind() ? 0 : 1;
}

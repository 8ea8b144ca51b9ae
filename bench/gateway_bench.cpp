// GET /Sensors/{id}/XYZ on the simulator: the direct export call against the
// same request through `sensorctl serve`'s gateway on loopback, at 1, 8 and
// 64 connections (one client thread each). Run with 2>/dev/null: the
// library logs every request on standard error.
#include <benchmark/benchmark.h>
#include <httplib.h>

#include <cstdio>
#include <memory>
#include <thread>

#include "gateway.h"
#include "host_library.h"
#include "routes.h"

namespace {

struct World {
    sensorctl::HostLibrary library;
    std::string sensor;
    std::unique_ptr<sensorctl::gateway::Gateway> gateway;
    std::thread serving;

    World() {
        std::string error;
        if (!library.load(BENCH_LIBRARY_DIR "/libsensorcontrol" SENSORCONTROL_LIBRARY_SUFFIX, &error)) {
            std::fprintf(stderr, "%s\n", error.c_str());
            std::exit(1);
        }
        library.setup();
        sensorctl::Response opened = library.call(
            "DeviceID", sensorctl::MakeCallTexts(sensorctl::Method::Post, {{"deviceID", "8"}}, {}, ""));
        sensor = opened.text.substr(opened.text.find("\"value\":\"") + 9, 36);

        sensorctl::gateway::GatewayOptions options;
        options.port = 0;
        options.token = "bench-token";
        options.requestsPerSecond = 1e9; // limited, so the limiter's cost is counted, but never reached
        gateway = std::make_unique<sensorctl::gateway::Gateway>(library, options);
        if (!gateway->bind(&error)) {
            std::fprintf(stderr, "%s\n", error.c_str());
            std::exit(1);
        }
        serving = std::thread([this] { gateway->run(); });
    }
    ~World() {
        gateway->stop();
        serving.join();
    }
};

World& TheWorld() {
    static World* world = new World; // lives until exit, as a host's library does
    return *world;
}

void BM_DirectXYZ(benchmark::State& state) {
    World& world = TheWorld();
    sensorctl::HostLibrary::Endpoint endpoint = world.library.endpoint("SensorXYZ");
    sensorctl::CallTexts const texts =
        sensorctl::MakeCallTexts(sensorctl::Method::Get, {{"id", world.sensor}}, {}, "");
    for (auto _ : state) {
        sensorctl::Response response = world.library.call(endpoint, texts);
        benchmark::DoNotOptimize(response);
        if (response.status != 200) state.SkipWithError("not 200");
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DirectXYZ)->UseRealTime();

void BM_GatewayXYZ(benchmark::State& state) {
    World& world = TheWorld();
    httplib::Client client("127.0.0.1", world.gateway->port());
    client.set_bearer_token_auth("bench-token");
    client.set_keep_alive(true);
    client.set_tcp_nodelay(true);
    client.set_read_timeout(60);
    std::string const path = "/Sensors/" + world.sensor + "/XYZ";
    client.Get(path.c_str()); // connects before the clock runs
    for (auto _ : state) {
        httplib::Result result = client.Get(path.c_str());
        if (!result || result->status != 200) {
            std::string const why = result ? "status " + std::to_string(result->status) + " " + result->body
                                           : "no answer: " + httplib::to_string(result.error());
            state.SkipWithError(why.c_str());
            break;
        }
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_GatewayXYZ)->UseRealTime()->Threads(1)->Threads(8)->Threads(64);

} // namespace

BENCHMARK_MAIN();

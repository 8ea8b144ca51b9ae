// Several clients at once: everything answered, requests for one sensor in
// arrival order, different sensors never waiting for each other.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <stdexcept>
#include <thread>
#include <vector>

#include "gateway_server.h"
#include "sensor_queues.h"

namespace gatewaytest {
namespace {

TEST(GatewayConcurrent, ClientsInParallelAreAllAnsweredAsAlone) {
    GatewayServer server;
    std::string const sensors[] = {server.openSpectro(), server.openSpectro()};
    std::string expected[2];
    for (int s = 0; s < 2; ++s)
        expected[s] = server.client()->Get(("/Sensors/" + sensors[s] + "/XYZ").c_str())->body;

    std::atomic<int> wrong{0};
    std::vector<std::thread> clients;
    for (int c = 0; c < 8; ++c) {
        clients.emplace_back([&, c] {
            auto client = server.client();
            for (int i = 0; i < 40; ++i) {
                int const s = (c + i) % 2;
                httplib::Result result = client->Get(("/Sensors/" + sensors[s] + "/XYZ").c_str());
                if (!result || result->status != 200 || result->body != expected[s]) ++wrong;
            }
        });
    }
    for (std::thread& client : clients)
        client.join();
    EXPECT_EQ(0, wrong.load());
}

TEST(SensorQueuesConcurrent, OneSensorInArrivalOrderOthersFreeFailuresToTheirOwnCaller) {
    sensorctl::gateway::SensorQueues queues;
    std::promise<void> release;
    std::shared_future<void> released = release.get_future().share();
    std::vector<int> order; // only written in the sensor's turn
    std::atomic<int> failedOwn{0};
    std::vector<std::thread> requests;
    requests.emplace_back([&] { queues.run("s", [&] { released.wait(); }); });
    while (queues.pending("s") != 1)
        std::this_thread::yield();
    for (int i = 1; i <= 5; ++i) {
        requests.emplace_back([&, i] {
            try {
                // Run by whichever thread holds the line; a failure reaches this caller only.
                queues.run("s", [&, i] {
                    order.push_back(i);
                    if (i == 3) throw std::runtime_error("three");
                });
            } catch (std::runtime_error const&) {
                if (i == 3) ++failedOwn;
            }
        });
        // The next request arrives only once this one waits in line.
        while (queues.pending("s") != static_cast<size_t>(i) + 1)
            std::this_thread::yield();
    }
    // Another sensor is not held up by the line of "s".
    bool otherRan = false;
    queues.run("t", [&] { otherRan = queues.pending("t") == 1; });
    EXPECT_TRUE(otherRan);
    EXPECT_EQ(6u, queues.pending("s"));
    release.set_value();
    for (std::thread& request : requests)
        request.join();
    EXPECT_EQ((std::vector<int>{1, 2, 3, 4, 5}), order);
    EXPECT_EQ(1, failedOwn.load());
    EXPECT_EQ(0u, queues.pending("s"));
}

} // namespace
} // namespace gatewaytest

// /events: every request and every reading, as server-sent events; a
// subscriber that does not keep up loses events rather than holding anything up.
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "event_hub.h"
#include "gateway_server.h"

namespace gatewaytest {
namespace {

// Reads /events on a thread of its own until destroyed.
class EventStream {
public:
    explicit EventStream(GatewayServer const& server) : client_(server.client()) {
        thread_ = std::thread([this] {
            client_->Get("/events", [this](char const* data, size_t length) {
                std::lock_guard<std::mutex> lock(mutex_);
                text_.append(data, length);
                arrived_.notify_all();
                return !stopping_;
            });
        });
    }
    ~EventStream() {
        {
            std::lock_guard<std::mutex> lock(mutex_);
            stopping_ = true;
        }
        client_->stop();
        thread_.join();
    }

    // Waits until the stream holds `piece`; the text so far.
    std::string waitFor(std::string const& piece) {
        std::unique_lock<std::mutex> lock(mutex_);
        arrived_.wait_for(lock, std::chrono::seconds(5),
                          [&] { return text_.find(piece) != std::string::npos; });
        return text_;
    }

private:
    std::unique_ptr<httplib::Client> client_;
    std::thread thread_;
    std::mutex mutex_;
    std::condition_variable arrived_;
    std::string text_;
    bool stopping_ = false;
};

using GatewayEvents = GatewayTest;

TEST_F(GatewayEvents, RequestsAndReadingsAreStreamed) {
    EXPECT_EQ(401, server.bareClient()->Get("/events")->status);
    std::string const path = "/Sensors/" + sensor + "/XYZ";

    EventStream events(server);
    ASSERT_NE(std::string::npos, events.waitFor(": events").find(": events")) << "the stream did not start";
    httplib::Result reading = client->Get(path.c_str());
    ASSERT_EQ(200, reading->status);
    client->Get("/Sensors/no-such-sensor/XYZ");

    std::string const expected = "event: reading\ndata: {\"path\":\"" + path + "\",\"sensor\":\"" + sensor +
                                 "\",\"value\":" + ValueOf(reading->body) + "}\n\n";
    // A request's event follows its answer, so the second request (on a
    // connection of its own) may be told first.
    std::string const requestEvent = "\"method\":\"GET\",\"path\":\"" + path + "\",\"status\":200}";
    events.waitFor("no-such-sensor");
    std::string const text = events.waitFor(requestEvent);
    EXPECT_NE(std::string::npos, text.find(expected)) << text;
    EXPECT_NE(std::string::npos, text.find("event: request\ndata: {\"durationMicroseconds\":")) << text;
    EXPECT_NE(std::string::npos, text.find(requestEvent)) << text;
    // Only successful readings are readings.
    EXPECT_NE(std::string::npos, text.find("\"path\":\"/Sensors/no-such-sensor/XYZ\",\"status\":404}"))
        << text;
    EXPECT_EQ(std::string::npos, text.find("\"sensor\":\"no-such-sensor\"")) << text;
}

TEST(EventHub, ASubscriberThatFallsBehindLosesEventsAndIsTold) {
    sensorctl::gateway::EventHub hub(3);
    auto subscriber = hub.subscribe();
    EXPECT_TRUE(hub.hasSubscribers());
    for (int i = 1; i <= 5; ++i)
        hub.publish("request", "{\"n\":" + std::to_string(i) + "}");
    std::string text;
    ASSERT_TRUE(subscriber->take(&text, std::chrono::milliseconds(0)));
    EXPECT_EQ("event: dropped\ndata: {\"count\":2}\n\n"
              "event: request\ndata: {\"n\":1}\n\n"
              "event: request\ndata: {\"n\":2}\n\n"
              "event: request\ndata: {\"n\":3}\n\n",
              text);
    text.clear();
    ASSERT_TRUE(subscriber->take(&text, std::chrono::milliseconds(0)));
    EXPECT_EQ("", text); // told once
    hub.close();
    EXPECT_FALSE(subscriber->take(&text, std::chrono::milliseconds(0)));
    hub.unsubscribe(subscriber);
    EXPECT_FALSE(hub.hasSubscribers());
}

} // namespace
} // namespace gatewaytest

// Checks shared by the per-sensor endpoint tests.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/host.h"
#include "quilljson/parser.h"
#include "quilljson/serializer.h"

namespace sensortest {

using quilljson::Value;

inline Value Json(std::string const& text) {
    Value v;
    EXPECT_TRUE(quilljson::Parser().parse(&v, text)) << text;
    return v;
}

// The envelope of a failed device call: 500 and exactly {"code": the unsigned
// reading, "message", "name": "DvError", "reason": the action text}.
inline void ExpectDvError(host::Response const& r, uint32_t code, std::string const& reason) {
    EXPECT_EQ(500u, r.status) << r.text;
    EXPECT_EQ("DvError", r.errorName()) << r.text;
    EXPECT_EQ(Value(static_cast<int64_t>(code)), r.error()["code"]) << r.text;
    EXPECT_EQ(Value(reason), r.error()["reason"]) << r.text;
    EXPECT_EQ(4u, r.error().size()) << r.text;
    EXPECT_TRUE(r.value().isNull()) << r.text;
}

inline void ExpectBadRequest(host::Response const& r, std::string const& message) {
    EXPECT_EQ(400u, r.status) << r.text;
    EXPECT_EQ("BadRequestError", r.errorName()) << r.text;
    EXPECT_EQ(message, r.errorMessage()) << r.text;
}

inline void ExpectOK(host::Response const& r, Value const& value) {
    EXPECT_EQ(200u, r.status) << r.text;
    EXPECT_EQ(value, r.value()) << r.text;
    EXPECT_TRUE(r.error().isNull()) << r.text;
}

inline std::string Text(Value const& v) {
    return quilljson::Serializer::toText(v);
}

constexpr auto Functions = &host::JournalFunctions; // names of the device calls, in order
inline std::string JournalText() {
    return Text(host::Journal());
}
using host::FirstCall;
// The argument at index of the first call of function (null when not called).
inline Value Arg(std::string const& function, unsigned long index) {
    return FirstCall(function)["args"][index];
}
inline bool Called(std::string const& function) {
    return !FirstCall(function).isNull();
}

// Loads the default world changed by edit (before any sensor is opened).
template <typename Edit> void LoadEditedWorld(Edit edit) {
    Value world = host::World();
    edit(world);
    host::LoadScenario(quilljson::Serializer::toText(world));
}

constexpr uint32_t kFailed = 0x80000000;

// One sensor open (by default the spectrometer, device 8) under id; get and put address it.
class SensorTest : public host::HostTest {
protected:
    void SetUp() override {
        host::HostTest::SetUp();
        id = open();
        host::ClearJournal();
    }
    virtual std::string open() { return host::OpenByDeviceID(8); }
    host::Response get(host::Endpoint e, std::string const& query = "") {
        return host::Call(e, "GET", host::IdParams(id), query);
    }
    host::Response put(host::Endpoint e, std::string const& body) {
        return host::Call(e, "PUT", host::IdParams(id), "", body);
    }
    // Writes body, then reads back what was stored.
    void putThenGet(host::Endpoint e, std::string const& body, Value const& stored) {
        ExpectOK(put(e, body), Value());
        ExpectOK(get(e), stored);
    }
    std::string id;
};

// The built-in sensors of a first-generation monitor (HZE priority 2, 8x3 matrices) and of a
// second-generation one (luminance levels, 3x3 matrices only), and a stand-alone device.
class MonitorSensorsTest : public host::HostTest {
protected:
    void SetUp() override {
        host::HostTest::SetUp();
        open();
    }
    void open() {
        first = host::OpenMonitorSensor("LMN27A", "41A00017");
        second = host::OpenMonitorSensor("LMN32B", "52B00042");
        usb = host::OpenByDeviceID(8);
        host::ClearJournal();
    }
    host::Response call(host::Endpoint e, std::string const& method, std::string const& sensor,
                        std::string const& query = "", std::string const& body = "") {
        return host::Call(e, method, host::IdParams(sensor), query, body);
    }
    std::string first, second, usb;
};

// The entry the default world's correlation databases hold for the first monitor, with the
// monitor texts in the positions the product adds them in.
inline Value StoredEntry() {
    return Json(R"({"date":{"dateString":"2025-01-10 09:30:00","day":10,"hour":9,"minute":30,)"
                R"("month":1,"year":2025},"id":1,"monitor":{"panelRevision":3,"product":"41A00017",)"
                R"("serial":"LMN27A"},"referenceSensor":{"deviceID":8,"serial":"LS8-20419"}})");
}

} // namespace sensortest

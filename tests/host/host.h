// Calls the library exactly as a host does, and reads the simulated world.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "quilljson/value.h"
#include "sensorcontrol/sensorcontrol.h"
#include "sim_world.h"

namespace quilljson {
// Failure messages show values as JSON text.
void PrintTo(Value const& value, std::ostream* out);
} // namespace quilljson

namespace host {

using Endpoint = uint32_t (*)(char const*, char const*, char const*, char const*);

struct Response {
    uint32_t status = 0;
    std::string text;      // the response text as fetched
    quilljson::Value json; // parsed text

    quilljson::Value const& value() const { return json["value"]; }
    quilljson::Value const& error() const { return json["error"]; }
    std::string errorName() const { return error()["name"].toString(""); }
    std::string errorMessage() const { return error()["message"].toString(""); }
};

// Texts in, promise id out, then the two-step fetch (length, then text).
// method is the word put in {"method": ...}; params, query and body are
// passed as they stand ("" for nothing).
Response Call(Endpoint endpoint, std::string const& method, std::string const& params = "",
              std::string const& query = "", std::string const& body = "");

// {"id": id} as path parameters.
std::string IdParams(std::string const& id);

// Opens sensors through the library and returns their ids (fails the test otherwise).
std::string OpenByDeviceID(uint32_t deviceID);
std::string OpenMonitorSensor(std::string const& product, std::string const& serial);

// The device-call journal of the simulator, and the world as scenario JSON.
using simworld::Journal;
using simworld::JournalFunctions;
using simworld::World;
size_t CallCount(std::string const& function);
// The first journal entry of that function ({"function":..., "args": [...]}), or null.
quilljson::Value FirstCall(std::string const& function);
void ClearJournal();

// Loads a world from text or from sim/scenarios/<name>.
void LoadScenario(std::string const& json);
void LoadScenarioFile(std::string const& name);

// Loads the default world, clears injections and the journal, runs Setup; TearDown after.
class HostTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
};

} // namespace host

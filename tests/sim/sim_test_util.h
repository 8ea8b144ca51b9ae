// Shared helpers of the simulator tests: every test starts from the default
// world with an empty journal and no injected results.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>

#include "quilljson/serializer.h"
#include "sim_world.h"

namespace simtest {

using quilljson::Value;

constexpr int32_t kInvalidArgument = static_cast<int32_t>(0x80000001u);
constexpr int32_t kNotRegistered = static_cast<int32_t>(0x80000005u);

using namespace simworld;

// The arguments of the last journal entry.
inline Value LastArgs() {
    Value const journal = Journal();
    return journal.size() == 0 ? Value() : journal[static_cast<unsigned long>(journal.size() - 1)]["args"];
}

inline Value Array(std::vector<Value> const& items) {
    Value a = Value::array();
    for (auto const& item : items)
        a.append(item);
    return a;
}

// Loads a scenario given as the default world with `edit` applied.
template <typename Edit> void LoadEdited(Edit edit) {
    Value world = Parse(ScenarioText("default.json"));
    edit(world);
    ASSERT_EQ(0, SimLoadScenario(quilljson::Serializer::toText(world).c_str()));
}

class SimTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(0, SimLoadScenario(ScenarioText("default.json").c_str()));
        SimClearInjections();
        SimClearJournal();
    }
};

} // namespace simtest

// Shared helpers of the simulator tests: every test starts from the default
// world with an empty journal and no injected results.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "quilljson/parser.h"
#include "quilljson/serializer.h"
#include "quilljson/value.h"
#include "sensorsim.h"

namespace simtest {

using quilljson::Value;

constexpr int32_t kInvalidArgument = static_cast<int32_t>(0x80000001u);
constexpr int32_t kNotRegistered = static_cast<int32_t>(0x80000005u);

inline std::string ReadFile(std::string const& path) {
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

inline std::string ScenarioText(std::string const& name) {
    return ReadFile(std::string(TEST_SOURCE_DIR) + "/sim/scenarios/" + name);
}

inline std::string Fetch(uint32_t (*get)(char*, uint32_t)) {
    std::string text(get(nullptr, 0), '\0');
    get(&text[0], static_cast<uint32_t>(text.size()));
    return text.c_str();
}

inline Value Parse(std::string const& text) {
    Value v;
    EXPECT_TRUE(quilljson::Parser().parse(&v, text)) << text;
    return v;
}

inline std::string WorldText() {
    return Fetch(SimGetWorld);
}
inline Value World() {
    return Parse(WorldText());
}
inline Value Journal() {
    return Parse(Fetch(SimGetJournal));
}

inline std::vector<std::string> JournalFunctions() {
    std::vector<std::string> names;
    Value const journal = Journal(); // kept alive while its elements are read
    for (auto const& call : journal.arrayRef())
        names.push_back(call["function"].toString(""));
    return names;
}

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

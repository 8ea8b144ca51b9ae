// The simulated world as the tests read it: its text, its journal of device
// calls, and the scenarios of sim/scenarios.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "quilljson/parser.h"
#include "quilljson/value.h"
#include "sensorsim.h"

namespace simworld {

inline std::string ReadFile(std::string const& path) {
    std::ifstream file(path);
    EXPECT_TRUE(file.good()) << path;
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

inline quilljson::Value Parse(std::string const& text) {
    quilljson::Value v;
    EXPECT_TRUE(quilljson::Parser().parse(&v, text)) << text;
    return v;
}

inline std::string WorldText() {
    return Fetch(SimGetWorld);
}
inline quilljson::Value World() {
    return Parse(WorldText());
}
inline quilljson::Value Journal() {
    return Parse(Fetch(SimGetJournal));
}

// The names of the functions called, in call order.
inline std::vector<std::string> JournalFunctions() {
    std::vector<std::string> names;
    quilljson::Value const journal = Journal(); // kept alive while its elements are read
    for (auto const& call : journal.arrayRef())
        names.push_back(call["function"].toString(""));
    return names;
}

} // namespace simworld

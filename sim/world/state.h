// The process-wide state behind the world lock: the world itself and what
// lives beside it across scenario loads (open handles, journal, injections).
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "quilljson/value.h"
#include "world/journal.h"
#include "world/model.h"
#include "world/world_lock.h"

namespace sim {

// What an open handle stands for; resolved against the world on every call,
// so a handle survives a scenario load as long as its sensor is still there.
struct OpenSensor {
    bool builtin = false;
    uint32_t deviceID = 0;
    uint64_t individualID = 0;
    uint64_t hidHandle = 0;
};

struct State {
    WorldLock mutex;
    World world;
    std::map<uintptr_t, OpenSensor> handles;
    uintptr_t nextHandle = 0x5E000000;
    // Reading calls share the world, so the journal has a lock of its own,
    // taken inside the world lock; on its own cache line, as it is written on
    // every call.
    alignas(64) std::mutex journalMutex;
    Journal journal;
    // By function name; looked up with the caller's text, no string made.
    using Injections = std::map<std::string, int32_t, std::less<>>;
    Injections injections;
    std::set<std::string> interned;

    // Argument buffers of the changing calls in progress, one per nesting level
    // of the thread that holds the lock; kept, so a call allocates nothing once
    // warm. Reading calls, which may run side by side, pack into their own.
    std::vector<std::unique_ptr<std::string>> argumentBuffers;
    size_t callDepth = 0;
};

// The state, with its world loaded on first use (SENSORSIM_SCENARIO or the
// built-in default world).
State& state();

// The built-in default world as scenario text (sim/scenarios/default.json).
char const* defaultScenarioText();

// Scenario conversion (scenario_read.cpp, scenario_write.cpp).
bool readScenario(quilljson::Value const& json, World* world, std::string* error);
quilljson::Value writeScenario(World const& world);

} // namespace sim

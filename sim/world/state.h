// The process-wide state behind the world lock: the world itself and what
// lives beside it across scenario loads (open handles, journal, injections).
#pragma once

#include <atomic>
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
    // The journal in lanes: one per reader slot of the world lock, for the
    // reading calls counted there (two of them may run side by side: a lock
    // each), and the last for the changing calls. The sequence orders the
    // calls of all lanes; each lane on cache lines of its own.
    struct alignas(64) JournalLane {
        std::mutex mutex;
        Journal journal;
    };
    static constexpr size_t kChangesLane = WorldLock::kReaderSlots;
    JournalLane journal[WorldLock::kReaderSlots + 1];
    struct alignas(64) Sequence {
        std::atomic<uint64_t> next{0};
    } journalSequence;
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

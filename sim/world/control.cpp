// The control API of sensorsim.h.
#include <cstdio>
#include <cstring>

#include "quilljson/parser.h"
#include "quilljson/serializer.h"
#include "sensorsim.h"
#include "world/state.h"

namespace {

uint32_t copyOut(std::string const& text, char* buffer, uint32_t length) {
    if (buffer != nullptr && length > 0) {
        size_t const n = text.size() < length - 1 ? text.size() : length - 1;
        std::memcpy(buffer, text.data(), n);
        buffer[n] = '\0';
    }
    return static_cast<uint32_t>(text.size() + 1);
}

} // namespace

extern "C" {

int32_t SimLoadScenario(char const* json) {
    if (json == nullptr) return -1;
    quilljson::Value value;
    std::string error;
    if (!quilljson::Parser().parse(&value, json, quilljson::ParseOption(), &error)) {
        std::fprintf(stderr, "sensorsim: scenario rejected, not JSON: %s\n", error.c_str());
        return -1;
    }
    sim::World world;
    if (!sim::readScenario(value, &world, &error)) {
        std::fprintf(stderr, "sensorsim: scenario rejected: %s\n", error.c_str());
        return -2;
    }
    sim::State& s = sim::state();
    std::lock_guard<sim::WorldLock> lock(s.mutex);
    s.world = std::move(world);
    return 0;
}

uint32_t SimGetWorld(char* buffer, uint32_t length) {
    sim::State& s = sim::state();
    std::string text;
    {
        std::lock_guard<sim::WorldLock> lock(s.mutex);
        text = quilljson::Serializer::toText(sim::writeScenario(s.world));
    }
    return copyOut(text, buffer, length);
}

void SimInjectResult(char const* function, int32_t code) {
    if (function == nullptr) return;
    sim::State& s = sim::state();
    std::lock_guard<sim::WorldLock> lock(s.mutex);
    s.injections[function] = code;
}

void SimClearInjections(void) {
    sim::State& s = sim::state();
    std::lock_guard<sim::WorldLock> lock(s.mutex);
    s.injections.clear();
}

uint32_t SimGetJournal(char* buffer, uint32_t length) {
    sim::State& s = sim::state();
    std::string text;
    {
        std::lock_guard<sim::WorldLock> lock(s.mutex);
        sim::Journal const* lanes[sizeof s.journal / sizeof s.journal[0]];
        for (size_t i = 0; i < sizeof s.journal / sizeof s.journal[0]; ++i)
            lanes[i] = &s.journal[i].journal;
        text = quilljson::Serializer::toText(sim::Journal::toJson(lanes, sizeof lanes / sizeof lanes[0]));
    }
    return copyOut(text, buffer, length);
}

void SimClearJournal(void) {
    sim::State& s = sim::state();
    std::lock_guard<sim::WorldLock> lock(s.mutex);
    for (auto& lane : s.journal)
        lane.journal.clear();
}

} // extern "C"

// The state on first use, and the Call through which the stand-ins reach it.
#include "world/world.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>

#include "quilljson/parser.h"
#include "tvl/threading/spin.h"
#include "world/state.h"

namespace sim {

using quilljson::Value;

namespace {

World loadInitialWorld() {
    World world;
    std::string error;
    Value json;
    if (char const* path = std::getenv("SENSORSIM_SCENARIO")) {
        std::ifstream file(path);
        std::stringstream text;
        text << file.rdbuf();
        if (!file.good() && !file.eof())
            error = "cannot read the file";
        else if (!quilljson::Parser().parse(&json, text.str(), quilljson::ParseOption(), &error))
            error = "not JSON: " + error;
        else if (readScenario(json, &world, &error))
            return world;
        std::fprintf(stderr, "sensorsim: scenario %s not loaded (%s); using the default world\n", path,
                     error.c_str());
        world = World();
    }
    if (!quilljson::Parser().parse(&json, defaultScenarioText()) || !readScenario(json, &world, &error))
        std::fprintf(stderr, "sensorsim: the built-in default world is broken (%s)\n", error.c_str());
    return world;
}

// SENSORSIM_INJECT="MDCalibrate=0x80010002,MDMeasureXYZ2=0x80000007": the
// injections a process starts with, for hosts that cannot call
// SimInjectResult themselves (a browser talking to a gateway, say).
State::Injections initialInjections() {
    State::Injections injections;
    char const* text = std::getenv("SENSORSIM_INJECT");
    if (text == nullptr) return injections;
    std::stringstream items(text);
    std::string item;
    while (std::getline(items, item, ',')) {
        size_t const equals = item.find('=');
        char* end = nullptr;
        unsigned long const code =
            equals == std::string::npos ? 0 : std::strtoul(item.c_str() + equals + 1, &end, 0);
        if (equals == 0 || equals == std::string::npos || end == item.c_str() + equals + 1 || *end != '\0') {
            std::fprintf(stderr, "sensorsim: SENSORSIM_INJECT item \"%s\" is not FUNCTION=CODE; ignored\n",
                         item.c_str());
            continue;
        }
        injections[item.substr(0, equals)] = static_cast<int32_t>(static_cast<uint32_t>(code));
    }
    return injections;
}

} // namespace

State& state() {
    static State* const instance = [] {
        auto* s = new State(); // never destroyed: stand-ins may call in during process exit
        s->world = loadInitialWorld();
        s->injections = initialInjections();
        return s;
    }();
    return *instance;
}

char const* pageName(Page page) {
    switch (page) {
    case Page::Current:
        return "current";
    case Page::Factory:
        return "factory";
    case Page::CurrentPriority:
        return "currentPriority";
    case Page::FactoryPriority:
        return "factoryPriority";
    }
    return "current";
}

bool pageFromName(std::string const& name, Page* page) {
    for (Page p : {Page::Current, Page::Factory, Page::CurrentPriority, Page::FactoryPriority})
        if (name == pageName(p)) {
            *page = p;
            return true;
        }
    return false;
}

void copyText(char* destination, size_t size, std::string const& text) {
    if (destination == nullptr || size == 0) return;
    size_t const n = text.size() < size - 1 ? text.size() : size - 1;
    std::memcpy(destination, text.data(), n);
    destination[n] = '\0';
}

std::string fieldText(char const* field, size_t size) {
    return field == nullptr ? std::string() : std::string(field, strnlen(field, size));
}

namespace {

std::string& argumentBuffer(State& s) {
    if (s.callDepth == s.argumentBuffers.size()) s.argumentBuffers.push_back(std::make_unique<std::string>());
    std::string& buffer = *s.argumentBuffers[s.callDepth++];
    buffer.clear();
    return buffer;
}

void prefetchForWrite(void const* address) {
#if defined(__x86_64__)
    __asm__ volatile("prefetchw %0" : : "m"(*static_cast<char const*>(address))); // a no-op where unsupported
#else
    __builtin_prefetch(address, 1);
#endif
}

// Handles are spaced by 0x10 (Call::open): sensors opened one after another
// land in different slots.
size_t readerSlot(void const* sensor) {
    return (reinterpret_cast<uintptr_t>(sensor) >> 4) % WorldLock::kReaderSlots;
}

} // namespace

Call::Call(char const* function)
    : state_(state()), function_(function), slot_(0), shared_((state_.mutex.lock(), false)),
      args_(argumentBuffer(state_)) {}

Call::Call(char const* function, void const* sensor)
    : state_(state()), function_(function), slot_(readerSlot(sensor)),
      shared_(state_.mutex.lockShared(slot_)), args_(shared_ ? ownArgs_ : argumentBuffer(state_)) {
    // The journal's sequence is the one line that reading calls on different
    // sensors write in common: asked for now, it comes from the other
    // processor while the call does its work instead of when it is numbered.
    prefetchForWrite(&state_.journalSequence.next);
}

Call::~Call() {
    {
        // Only reading calls counted in one slot share a lane.
        State::JournalLane& lane = state_.journal[shared_ ? slot_ : State::kChangesLane];
        if (!threading::spinTryLock([&lane] { return lane.mutex.try_lock(); })) lane.mutex.lock();
        std::lock_guard<std::mutex> locked(lane.mutex, std::adopt_lock);
        try {
            lane.journal.append(state_.journalSequence.next.fetch_add(1, std::memory_order_relaxed),
                                function_, args_);
        } catch (...) {
            // Out of memory: the call goes unrecorded rather than the lock held.
        }
    }
    if (shared_) {
        state_.mutex.unlockShared(slot_);
        return;
    }
    --state_.callDepth;
    state_.mutex.unlock();
}

Call& Call::num(int64_t value) {
    pack::integer(args_, value);
    return *this;
}
Call& Call::unum(uint64_t value) {
    pack::unsignedInteger(args_, value);
    return *this;
}
Call& Call::real(double value) {
    pack::real(args_, value);
    return *this;
}
Call& Call::reals(double const* values, size_t count) {
    pack::reals(args_, values, count);
    return *this;
}
Call& Call::rows(double const* values, size_t rows) {
    pack::rows(args_, values, rows);
    return *this;
}
Call& Call::text(char const* value) {
    pack::text(args_, value);
    return *this;
}
Call& Call::handle(void const* value) {
    pack::unsignedInteger(args_, reinterpret_cast<uintptr_t>(value));
    return *this;
}
Call& Call::null() {
    pack::null(args_);
    return *this;
}

#define SIM_RECORD_ARG(Type)                                                                                 \
    Call& Call::record(Type const& value) {                                                                  \
        pack::record(args_, value);                                                                          \
        return *this;                                                                                        \
    }
SIM_RECORD_ARG(colour)
SIM_RECORD_ARG(CSSG2_Date)
SIM_RECORD_ARG(MDParameterDescription)
SIM_RECORD_ARG(R2XC_RefParam)
SIM_RECORD_ARG(R2XC_RefToneParam)
SIM_RECORD_ARG(R2XC_ValueRGBK)
SIM_RECORD_ARG(R2XC_ToneCorrectionParam)
SIM_RECORD_ARG(KMCAL_CALDATA_USERPROOF)
SIM_RECORD_ARG(KMCAL_MEASDATA_USERPROOF)
SIM_RECORD_ARG(KMCAL_CALDATA_CORRECT)
SIM_RECORD_ARG(KMCAL_MEASDATA_CORRECT_GRAY)
SIM_RECORD_ARG(MDIFSv3CorrelationData)
SIM_RECORD_ARG(MDCSSG2CorrelationDataEx)
#undef SIM_RECORD_ARG

bool Call::injected(DvError* out) const {
    if (state_.injections.empty()) return false;
    auto const found = state_.injections.find(function_);
    if (found == state_.injections.end()) return false;
    if (out != nullptr) *out = DvError{found->second};
    return true;
}

World& Call::world() {
    return state_.world;
}

void* Call::open(Device const& device) {
    State& s = state_;
    uintptr_t const value = s.nextHandle += 0x10;
    s.handles[value] = OpenSensor{false, device.deviceID, device.individualID, 0};
    return reinterpret_cast<void*>(value);
}

void* Call::openBuiltin(Monitor const& monitor) {
    State& s = state_;
    uintptr_t const value = s.nextHandle += 0x10;
    s.handles[value] = OpenSensor{true, monitor.sensor.deviceID, 0, monitor.hidHandle};
    return reinterpret_cast<void*>(value);
}

bool Call::close(void* handle) {
    return state_.handles.erase(reinterpret_cast<uintptr_t>(handle)) != 0;
}

Device* Call::device(void* handle) {
    auto const found = state_.handles.find(reinterpret_cast<uintptr_t>(handle));
    if (found == state_.handles.end()) return nullptr;
    OpenSensor const& open = found->second;
    if (open.builtin) {
        Monitor* monitor = monitorByHid(hidPointer(open.hidHandle));
        return monitor != nullptr ? &monitor->sensor : nullptr;
    }
    for (Device& d : world().devices)
        if (d.deviceID == open.deviceID && d.individualID == open.individualID) return &d;
    return nullptr;
}

Monitor* Call::monitorOfSensor(void* handle) {
    auto const found = state_.handles.find(reinterpret_cast<uintptr_t>(handle));
    if (found == state_.handles.end() || !found->second.builtin) return nullptr;
    return monitorByHid(hidPointer(found->second.hidHandle));
}

Monitor* Call::monitorByHid(void* hid) {
    if (hid == nullptr) return nullptr;
    for (Monitor& m : world().monitors)
        if (hidPointer(m.hidHandle) == hid) return &m;
    return nullptr;
}

Monitor* Call::monitorByNames(char const* first, char const* second) {
    if (first == nullptr || second == nullptr) return nullptr;
    for (Monitor& m : world().monitors)
        if ((m.product == first && m.serial == second) || (m.product == second && m.serial == first))
            return &m;
    return nullptr;
}

char const* Call::intern(std::string const& text) {
    return state_.interned.insert(text).first->c_str();
}

} // namespace sim

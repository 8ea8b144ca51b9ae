// What the stand-ins see of libsensorsim: one call into the world at a time.
//
// Every stand-in function starts with a Call, which holds the world lock for
// the call's lifetime, records the function and its input arguments in the
// journal, and tells whether a result was injected for the function:
//
//     sim::Call call("MDSetMode");
//     call.handle(handle).num(mode).num(observerKey);
//     DvError injected;
//     if (call.injected(&injected)) return injected;
//     sim::Device* device = call.device(handle);
//     ...
//
// JSON values never cross the library boundary: arguments are converted inside
// libsensorsim, so a stand-in that is unloaded leaves nothing of its own behind.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "devices/device_api.h"
#include "devices/records.h"
#include "devices/result_codes.h"
#include "world/model.h"

#if defined(__GNUC__)
#define SIM_API __attribute__((visibility("default")))
#else
#define SIM_API
#endif

namespace sim {

struct State;

// Result codes the stand-ins answer with.
namespace code = ::devices::code;

inline DvError result(int32_t value) {
    return DvError{value};
}

class SIM_API Call {
public:
    // A call that may change anything: it holds the world alone.
    explicit Call(char const* function);
    // A call on a sensor handle that only reads: it changes nothing (handles,
    // interned names and the world included) and makes no changing call, and
    // shares the world with other reading calls.
    Call(char const* function, void const* sensor);
    ~Call(); // appends the journal entry and releases the world
    Call(Call const&) = delete;
    Call& operator=(Call const&) = delete;

    // Input arguments, in the order of the function's parameters.
    Call& num(int64_t value);
    Call& unum(uint64_t value);
    Call& real(double value);
    Call& reals(double const* values, size_t count);
    Call& rows(double const* values, size_t rows); // a matrix: rows of 3
    Call& text(char const* value);                 // null gives null
    Call& handle(void const* value);
    Call& null();
    Call& record(colour const& value);
    Call& record(CSSG2_Date const& value);
    Call& record(MDParameterDescription const& value);
    Call& record(R2XC_RefParam const& value);
    Call& record(R2XC_RefToneParam const& value);
    Call& record(R2XC_ValueRGBK const& value);
    Call& record(R2XC_ToneCorrectionParam const& value);
    Call& record(KMCAL_CALDATA_USERPROOF const& value);
    Call& record(KMCAL_MEASDATA_USERPROOF const& value);
    Call& record(KMCAL_CALDATA_CORRECT const& value);
    Call& record(KMCAL_MEASDATA_CORRECT_GRAY const& value);
    Call& record(MDIFSv3CorrelationData const& value);
    Call& record(MDCSSG2CorrelationDataEx const& value);

    // True when a result was injected for this function; it is stored in *out.
    bool injected(DvError* out) const;

    World& world();

    // Sensor handles: fresh for every open, resolved against the current world.
    void* open(Device const& device);
    void* openBuiltin(Monitor const& monitor);
    bool close(void* handle);
    Device* device(void* handle);           // null when closed, unknown or gone
    Monitor* monitorOfSensor(void* handle); // the monitor of a built-in sensor

    Monitor* monitorByHid(void* hid);
    // Finds a monitor by its product and serial given in either order.
    Monitor* monitorByNames(char const* first, char const* second);

    // A copy of the text that lives as long as the process.
    char const* intern(std::string const& text);

private:
    State& state_; // locked for the call's lifetime
    char const* function_;
    size_t slot_;         // the reader slot and journal lane of a reading call
    bool shared_;         // holds the world lock shared, in slot_
    std::string ownArgs_; // the packed arguments of a shared call
    std::string& args_;   // packed input arguments (journal.h): ownArgs_, or a buffer the world reuses
};

// Helpers for fixed character fields.
SIM_API void copyText(char* destination, size_t size, std::string const& text); // cut and terminated
SIM_API std::string fieldText(char const* field, size_t size);                  // up to the first 0
inline void* hidPointer(uint64_t hid) {
    return reinterpret_cast<void*>(static_cast<uintptr_t>(hid));
}

} // namespace sim

namespace sim {

inline DvError ok() {
    return DvError{code::kOK};
}

// The common start of a DvError function on a sensor handle: the sensor, or
// null with *out set to the injected result or "Not registered.".
inline Device* sensorOrResult(Call& call, void* handle, DvError* out) {
    if (call.injected(out)) return nullptr;
    Device* device = call.device(handle);
    if (device == nullptr) *out = result(code::kNotRegistered);
    return device;
}

} // namespace sim

// The common start of every libquorSensor function: the monitor behind a HID
// handle, refused while another party holds the monitor.
#pragma once

#include "world/world.h"

namespace sim {

// The monitor, or null with *out set to the injected result, "Monitor
// connection error." for an unknown HID handle, or "Monitor critical section
// is owned." while another party holds the monitor.
inline Monitor* monitorOrResult(Call& call, void* hid, DvError* out) {
    if (call.injected(out)) return nullptr;
    Monitor* monitor = call.monitorByHid(hid);
    if (monitor == nullptr) {
        *out = result(code::kMonitorConnection);
        return nullptr;
    }
    if (monitor->heldByOther) {
        *out = result(code::kMonitorOwned);
        return nullptr;
    }
    return monitor;
}

// As above, for a function of one sensor generation; the other answers "Unsupported.".
inline Monitor* generationOrResult(Call& call, void* hid, bool firstGeneration, DvError* out) {
    Monitor* monitor = monitorOrResult(call, hid, out);
    if (monitor != nullptr && monitor->firstGeneration() != firstGeneration) {
        *out = result(code::kUnsupported);
        return nullptr;
    }
    return monitor;
}

// The data set that reads and writes address now.
inline DataSet& selectedSet(Monitor& monitor) {
    return monitor.dataSets[monitor.selected];
}

} // namespace sim

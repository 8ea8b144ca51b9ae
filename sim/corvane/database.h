// What both databases of libcorvane share: the keys an entry is added with.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "world/world.h"

namespace corvane {

inline std::string textOf(char const* text) {
    return text != nullptr ? text : "";
}

// A new entry holding the keys it is added with, under the next free id (one
// above the highest in the database).
template <typename Entry>
Entry newEntry(std::vector<Entry> const& database, MDDeviceID deviceID, char const* serial,
               MDDeviceID referenceDeviceID, char const* referenceSerial, char const* monitorProduct,
               char const* monitorSerial, uint16_t panelRevision, std::optional<CSSG2_Date> date) {
    Entry e;
    for (auto const& existing : database)
        e.id = std::max(e.id, existing.id);
    ++e.id;
    e.deviceID = deviceID;
    e.serial = textOf(serial);
    e.referenceDeviceID = referenceDeviceID;
    e.referenceSerial = textOf(referenceSerial);
    e.monitorProduct = textOf(monitorProduct);
    e.monitorSerial = textOf(monitorSerial);
    e.panelRevision = panelRevision;
    e.date = date;
    return e;
}

} // namespace corvane

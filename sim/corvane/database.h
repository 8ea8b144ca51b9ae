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

// The index-th entry that matches, as the enumerations report it: its keys into
// *info and its id into *id; "No more data." past the last.
template <typename Entry, typename Matches, typename Info, typename Id>
DvError enumerate(std::vector<Entry> const& database, uint64_t index, Matches matches, Info* info, Id* id) {
    uint64_t position = 0;
    for (Entry const& e : database) {
        if (!matches(e) || position++ != index) continue;
        if (info != nullptr) {
            info->referenceDeviceID = static_cast<decltype(info->referenceDeviceID)>(e.referenceDeviceID);
            sim::copyText(info->referenceSerial, sizeof info->referenceSerial, e.referenceSerial);
            sim::copyText(info->monitorProduct, sizeof info->monitorProduct, e.monitorProduct);
            sim::copyText(info->monitorSerial, sizeof info->monitorSerial, e.monitorSerial);
            info->panelRevision = e.panelRevision;
        }
        if (id != nullptr) *id = static_cast<Id>(e.id);
        return sim::ok();
    }
    return sim::result(sim::code::kNoMoreData);
}

// The date entry id was added with: "Not registered." for an unknown id, "No
// more data." for an entry stored without a date.
template <typename Entry> DvError dateOf(std::vector<Entry> const& database, uint64_t id, CSSG2_Date* date) {
    for (Entry const& e : database) {
        if (e.id != id) continue;
        if (!e.date) return sim::result(sim::code::kNoMoreData);
        if (date == nullptr) return sim::result(sim::code::kInvalidBuffer);
        *date = *e.date;
        return sim::ok();
    }
    return sim::result(sim::code::kNotRegistered);
}

} // namespace corvane

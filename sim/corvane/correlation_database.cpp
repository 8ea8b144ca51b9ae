// libcorvane: the correlation-data database. Entries keep the texts they were
// added with; the enumeration lists the entries of one sensor (device id and
// serial) in the order they were added. New entries take the next free id.
#include <string>

#include "corvane/database.h"
#include "devices/corvane.h"

namespace {

using corvane::textOf;

sim::CorrelationEntry* entry(sim::World& world, uint64_t id) {
    for (auto& e : world.correlationDatabase)
        if (e.id == id) return &e;
    return nullptr;
}

DvError add(sim::Call& call, MDDeviceID deviceID, char const* serial, MDDeviceID referenceDeviceID,
            char const* referenceSerial, char const* monitorProduct, char const* monitorSerial,
            uint16_t panelRevision, std::optional<CSSG2_Date> date, MDIFSv3CorrelationData const* ifsv3,
            MDCSSG2CorrelationDataEx const* cssg2, uint64_t* id) {
    DvError result;
    if (call.injected(&result)) return result;
    if (id == nullptr) return sim::result(sim::code::kInvalidArgument);
    auto& database = call.world().correlationDatabase;
    sim::CorrelationEntry e =
        corvane::newEntry(database, deviceID, serial, referenceDeviceID, referenceSerial, monitorProduct,
                          monitorSerial, panelRevision, date);
    e.firstGeneration = ifsv3 != nullptr;
    if (ifsv3 != nullptr) e.ifsv3 = *ifsv3;
    if (cssg2 != nullptr) e.cssg2 = *cssg2;
    database.push_back(e);
    *id = e.id;
    return sim::ok();
}

} // namespace

extern "C" {

DvError MDEnumCorrelationInfo(MDDeviceID deviceID, char const* serial, uint64_t index,
                              MDCorrelationInfo* info, uint64_t* id) {
    sim::Call call("MDEnumCorrelationInfo");
    call.num(deviceID).text(serial).unum(index);
    DvError result;
    if (call.injected(&result)) return result;
    std::string const sensor = textOf(serial);
    return corvane::enumerate(
        call.world().correlationDatabase, index,
        [&](sim::CorrelationEntry const& e) { return e.deviceID == deviceID && e.serial == sensor; }, info,
        id);
}

// An entry stored without a date answers "No more data.".
DvError MDGetCorrelationDataDate(uint64_t id, CSSG2_Date* date) {
    sim::Call call("MDGetCorrelationDataDate");
    call.unum(id);
    DvError result;
    if (call.injected(&result)) return result;
    return corvane::dateOf(call.world().correlationDatabase, id, date);
}

// Reading an entry as the other record family answers "Invalid data.".
DvError MDGetIFSv3CorrelationData(uint64_t id, MDIFSv3CorrelationData* data) {
    sim::Call call("MDGetIFSv3CorrelationData");
    call.unum(id);
    DvError result;
    if (call.injected(&result)) return result;
    sim::CorrelationEntry* e = entry(call.world(), id);
    if (e == nullptr) return sim::result(sim::code::kNotRegistered);
    if (!e->firstGeneration) return sim::result(sim::code::kInvalidData);
    if (data == nullptr) return sim::result(sim::code::kInvalidBuffer);
    *data = e->ifsv3;
    return sim::ok();
}

DvError MDGetCSSG2CorrelationDataEx(uint64_t id, MDCSSG2CorrelationDataEx* data) {
    sim::Call call("MDGetCSSG2CorrelationDataEx");
    call.unum(id);
    DvError result;
    if (call.injected(&result)) return result;
    sim::CorrelationEntry* e = entry(call.world(), id);
    if (e == nullptr) return sim::result(sim::code::kNotRegistered);
    if (e->firstGeneration) return sim::result(sim::code::kInvalidData);
    if (data == nullptr) return sim::result(sim::code::kInvalidBuffer);
    *data = e->cssg2;
    return sim::ok();
}

DvError MDAddIFSv3CorrelationData(MDDeviceID deviceID, char const* serial, MDDeviceID referenceDeviceID,
                                  char const* referenceSerial, char const* monitorProduct,
                                  char const* monitorSerial, uint16_t panelRevision,
                                  MDIFSv3CorrelationData data, CSSG2_Date const* date, uint64_t* id) {
    sim::Call call("MDAddIFSv3CorrelationData");
    call.num(deviceID).text(serial).num(referenceDeviceID).text(referenceSerial).text(monitorProduct);
    call.text(monitorSerial).num(panelRevision).record(data);
    if (date != nullptr)
        call.record(*date);
    else
        call.null();
    std::optional<CSSG2_Date> const stored =
        date != nullptr ? std::optional<CSSG2_Date>(*date) : std::nullopt;
    return add(call, deviceID, serial, referenceDeviceID, referenceSerial, monitorProduct, monitorSerial,
               panelRevision, stored, &data, nullptr, id);
}

DvError MDAddCSSG2CorrelationDataEx(MDDeviceID deviceID, char const* serial, MDDeviceID referenceDeviceID,
                                    char const* referenceSerial, char const* monitorProduct,
                                    char const* monitorSerial, uint16_t panelRevision,
                                    MDCSSG2CorrelationDataEx data, uint64_t* id) {
    sim::Call call("MDAddCSSG2CorrelationDataEx");
    call.num(deviceID).text(serial).num(referenceDeviceID).text(referenceSerial).text(monitorProduct);
    call.text(monitorSerial).num(panelRevision).record(data);
    return add(call, deviceID, serial, referenceDeviceID, referenceSerial, monitorProduct, monitorSerial,
               panelRevision, std::nullopt, nullptr, &data, id);
}

DvError MDAddCSSG2CorrelationDataWithDateEx(MDDeviceID deviceID, char const* serial,
                                            MDDeviceID referenceDeviceID, char const* referenceSerial,
                                            char const* monitorProduct, char const* monitorSerial,
                                            uint16_t panelRevision, MDCSSG2CorrelationDataEx data,
                                            CSSG2_Date date, uint64_t* id) {
    sim::Call call("MDAddCSSG2CorrelationDataWithDateEx");
    call.num(deviceID).text(serial).num(referenceDeviceID).text(referenceSerial).text(monitorProduct);
    call.text(monitorSerial).num(panelRevision).record(data).record(date);
    return add(call, deviceID, serial, referenceDeviceID, referenceSerial, monitorProduct, monitorSerial,
               panelRevision, date, nullptr, &data, id);
}

} // extern "C"

// libcorvane: the correlation-matrix database. A monitor text given to a
// lookup matches an entry by its product or by its serial (callers pass
// either); panel revision and sensor device id must match exactly.
#include <algorithm>
#include <string>

#include "corvane/database.h"
#include "devices/corvane.h"

namespace {

using corvane::textOf;

bool sameMonitor(sim::MatrixEntry const& e, char const* monitor, uint16_t panelRevision) {
    std::string const text = textOf(monitor);
    return e.panelRevision == panelRevision && (e.monitorProduct == text || e.monitorSerial == text);
}

} // namespace

extern "C" {

DvError MDEnumCorrelationMatrixInfo(MDDeviceID deviceID, char* monitorProduct, uint16_t panelRevision,
                                    unsigned long index, MDCorrelationMatrixInfo* info, unsigned long* id) {
    sim::Call call("MDEnumCorrelationMatrixInfo");
    call.num(deviceID).text(monitorProduct).num(panelRevision).unum(index);
    DvError result;
    if (call.injected(&result)) return result;
    return corvane::enumerate(
        call.world().matrixDatabase, index,
        [&](sim::MatrixEntry const& e) {
            return e.deviceID == deviceID && sameMonitor(e, monitorProduct, panelRevision);
        },
        info, id);
}

// An entry stored without a date answers "No more data.".
DvError MDGetCorrelationMatrixDate(unsigned long id, CSSG2_Date* date) {
    sim::Call call("MDGetCorrelationMatrixDate");
    call.unum(id);
    DvError result;
    if (call.injected(&result)) return result;
    return corvane::dateOf(call.world().matrixDatabase, id, date);
}

// The latest entry is the one added last (the highest id) among the matches.
DvError MDGetLatestCorrelationMatrixID(MDDeviceID deviceID, MDDeviceID referenceDeviceID,
                                       char const* referenceSerial, char* monitorProduct,
                                       uint16_t panelRevision, unsigned long* id) {
    sim::Call call("MDGetLatestCorrelationMatrixID");
    call.num(deviceID).num(referenceDeviceID).text(referenceSerial).text(monitorProduct).num(panelRevision);
    DvError result;
    if (call.injected(&result)) return result;
    sim::MatrixEntry const* latest = nullptr;
    for (auto const& e : call.world().matrixDatabase)
        if (e.deviceID == deviceID && e.referenceDeviceID == referenceDeviceID &&
            e.referenceSerial == textOf(referenceSerial) && sameMonitor(e, monitorProduct, panelRevision) &&
            (latest == nullptr || e.id > latest->id))
            latest = &e;
    if (latest == nullptr) return sim::result(sim::code::kNoMoreData);
    if (id == nullptr) return sim::result(sim::code::kInvalidBuffer);
    *id = latest->id;
    return sim::ok();
}

DvError MDAddCorrelationMatrix(MDDeviceID deviceID, char const* serial, MDDeviceID referenceDeviceID,
                               char const* referenceSerial, char* monitorProduct, char* monitorSerial,
                               uint16_t panelRevision, int dataPage, unsigned long correlationID,
                               double* matrix, CSSG2_Date const* date, unsigned long* id) {
    sim::Call call("MDAddCorrelationMatrix");
    call.num(deviceID).text(serial).num(referenceDeviceID).text(referenceSerial).text(monitorProduct);
    call.text(monitorSerial).num(panelRevision).num(dataPage).unum(correlationID).rows(matrix, 3);
    if (date != nullptr)
        call.record(*date);
    else
        call.null();
    DvError result;
    if (call.injected(&result)) return result;
    if (matrix == nullptr || id == nullptr) return sim::result(sim::code::kInvalidArgument);
    auto& database = call.world().matrixDatabase;
    sim::MatrixEntry e = corvane::newEntry(database, deviceID, serial, referenceDeviceID, referenceSerial,
                                           monitorProduct, monitorSerial, panelRevision,
                                           date != nullptr ? std::optional<CSSG2_Date>(*date) : std::nullopt);
    e.dataPage = dataPage;
    e.correlationID = correlationID;
    std::copy(matrix, matrix + 9, e.matrix);
    database.push_back(e);
    *id = static_cast<unsigned long>(e.id);
    return sim::ok();
}

} // extern "C"

// libpallast: the correlation corrections and correlation matrices stored in a
// sensor. A monitor text given to MDEnumCorrelationMatrix matches a stored
// matrix by its product or by its serial (callers pass either).
#include <string>
#include <vector>

#include "devices/pallast.h"
#include "world/world.h"

namespace {

// Applies the correction or matrix of that id stored in the sensor; an id the
// sensor does not hold answers "Not registered.".
template <typename Item, typename Apply>
DvError applyStored(sim::Call& call, void* handle, std::vector<Item> sim::Device::*stored, uint64_t id,
                    Apply apply) {
    DvError r;
    sim::Device* device = sim::sensorOrResult(call, handle, &r);
    if (device == nullptr) return r;
    for (Item const& item : device->*stored)
        if (item.id == id) {
            apply(*device);
            return sim::ok();
        }
    return sim::result(sim::code::kNotRegistered);
}

} // namespace

extern "C" {

DvError MDEnumCorrelationCorrection(void* handle, uint64_t index, int32_t* referenceDeviceID,
                                    char referenceSerial[33], char monitorProduct[33], char monitorSerial[17],
                                    uint64_t* correlationID) {
    sim::Call call("MDEnumCorrelationCorrection");
    call.handle(handle).unum(index);
    DvError r;
    sim::Device* device = sim::sensorOrResult(call, handle, &r);
    if (device == nullptr) return r;
    if (index >= device->correlationCorrections.size()) return sim::result(sim::code::kNoMoreData);
    sim::StoredCorrelationCorrection const& c = device->correlationCorrections[index];
    if (referenceDeviceID != nullptr) *referenceDeviceID = c.referenceDeviceID;
    sim::copyText(referenceSerial, 33, c.referenceSerial);
    sim::copyText(monitorProduct, 33, c.monitorProduct);
    sim::copyText(monitorSerial, 17, c.monitorSerial);
    if (correlationID != nullptr) *correlationID = c.id;
    return sim::ok();
}

DvError MDApplyCorrelationCorrection(void* handle, uint64_t correlationID) {
    sim::Call call("MDApplyCorrelationCorrection");
    call.handle(handle).unum(correlationID);
    return applyStored(call, handle, &sim::Device::correlationCorrections, correlationID,
                       [correlationID](sim::Device& device) {
                           device.appliedCorrelationCorrection = correlationID;
                           device.targetWhite.reset();
                       });
}

DvError MDApplyCorrelationCorrectionWithRecalcLuminanceLevelCorrection(void* handle, uint64_t correlationID,
                                                                       colour targetWhite) {
    sim::Call call("MDApplyCorrelationCorrectionWithRecalcLuminanceLevelCorrection");
    call.handle(handle).unum(correlationID).record(targetWhite);
    return applyStored(call, handle, &sim::Device::correlationCorrections, correlationID,
                       [correlationID, targetWhite](sim::Device& device) {
                           device.appliedCorrelationCorrection = correlationID;
                           device.targetWhite = sim::TargetWhite{targetWhite.x, targetWhite.y, targetWhite.Y};
                       });
}

DvError MDClear9PointsCorrelationCorrection(void* handle) {
    sim::Call call("MDClear9PointsCorrelationCorrection");
    call.handle(handle);
    DvError r;
    sim::Device* device = sim::sensorOrResult(call, handle, &r);
    if (device == nullptr) return r;
    device->ninePointsCorrection = false;
    return sim::ok();
}

DvError MDReleaseCorrelationCorrection(void* handle) {
    sim::Call call("MDReleaseCorrelationCorrection");
    call.handle(handle);
    DvError r;
    sim::Device* device = sim::sensorOrResult(call, handle, &r);
    if (device == nullptr) return r;
    device->appliedCorrelationCorrection.reset();
    device->targetWhite.reset();
    return sim::ok();
}

#ifndef SIM_PALLAST_LEGACY

DvError MDEnumCorrelationMatrix(void* handle, char const* monitorProduct, uint16_t panelRevision,
                                uint64_t index, MDDeviceID* referenceDeviceID, char referenceSerial[33],
                                uint64_t* matrixID) {
    sim::Call call("MDEnumCorrelationMatrix");
    call.handle(handle).text(monitorProduct).num(panelRevision).unum(index);
    DvError r;
    sim::Device* device = sim::sensorOrResult(call, handle, &r);
    if (device == nullptr) return r;
    std::string const monitor = monitorProduct != nullptr ? monitorProduct : "";
    uint64_t position = 0;
    for (auto const& m : device->correlationMatrices) {
        if (m.panelRevision != panelRevision || (m.monitorProduct != monitor && m.monitorSerial != monitor))
            continue;
        if (position++ != index) continue;
        if (referenceDeviceID != nullptr) *referenceDeviceID = m.referenceDeviceID;
        sim::copyText(referenceSerial, 33, m.referenceSerial);
        if (matrixID != nullptr) *matrixID = m.id;
        return sim::ok();
    }
    return sim::result(sim::code::kNoMoreData);
}

DvError MDApplyCorrelationMatrix(void* handle, uint64_t matrixID) {
    sim::Call call("MDApplyCorrelationMatrix");
    call.handle(handle).unum(matrixID);
    return applyStored(call, handle, &sim::Device::correlationMatrices, matrixID,
                       [matrixID](sim::Device& device) { device.appliedCorrelationMatrix = matrixID; });
}

DvError MDReleaseCorrelationMatrix(void* handle) {
    sim::Call call("MDReleaseCorrelationMatrix");
    call.handle(handle);
    DvError r;
    sim::Device* device = sim::sensorOrResult(call, handle, &r);
    if (device == nullptr) return r;
    device->appliedCorrelationMatrix.reset();
    return sim::ok();
}

#endif // SIM_PALLAST_LEGACY

} // extern "C"

// libpallast: the applied correction and the extra corrections.
#include <cstring>
#include <string>

#include "devices/pallast.h"
#include "world/world.h"

namespace {

DvError apply(char const* function, void* handle, char const* correction) {
    sim::Call call(function);
    call.handle(handle);
    DvError r;
    sim::Device* device = sim::sensorOrResult(call, handle, &r);
    if (device == nullptr) return r;
    device->correction = correction;
    return sim::ok();
}

} // namespace

extern "C" {

DvError MDApplyEmissionCorrection(void* handle, int32_t observerKey, char const* product,
                                  uint16_t panelRevision) {
    sim::Call call("MDApplyEmissionCorrection");
    call.handle(handle).num(observerKey).text(product).num(panelRevision);
    DvError r;
    sim::Device* device = sim::sensorOrResult(call, handle, &r);
    if (device == nullptr) return r;
    if (product == nullptr) return sim::result(sim::code::kInvalidArgument);
    device->correction = "emission";
    device->correctionObserverKey = observerKey;
    device->correctionProduct = product;
    device->correctionPanelRevision = panelRevision;
    return sim::ok();
}

DvError MDApplyPaperWhiteCorrection(void* handle, int32_t observerKey) {
    sim::Call call("MDApplyPaperWhiteCorrection");
    call.handle(handle).num(observerKey);
    DvError r;
    sim::Device* device = sim::sensorOrResult(call, handle, &r);
    if (device == nullptr) return r;
    device->correction = "paperWhite";
    device->correctionObserverKey = observerKey;
    return sim::ok();
}

DvError MDApply10DegCorrectionFor2DegCorrelatedMeasurement(void* handle) {
    return apply("MDApply10DegCorrectionFor2DegCorrelatedMeasurement", handle, "10degFor2deg");
}

DvError MDApplyPlainCorrectionFor2DegCorrelatedMeasurement(void* handle) {
    return apply("MDApplyPlainCorrectionFor2DegCorrelatedMeasurement", handle, "plainFor2deg");
}

DvError MDApplyPlainCorrection(void* handle) {
    return apply("MDApplyPlainCorrection", handle, "plain");
}

DvError MDReleaseCorrection(void* handle) {
    return apply("MDReleaseCorrection", handle, "none");
}

uint32_t MDGetExCorrectionCount(void* handle) {
    sim::Call call("MDGetExCorrectionCount");
    call.handle(handle);
    sim::Device* device = call.device(handle);
    return device != nullptr ? static_cast<uint32_t>(device->exCorrections.size()) : 0;
}

DvError MDGetExCorrectionName(void* handle, uint32_t index, char* buffer, uint32_t* size) {
    sim::Call call("MDGetExCorrectionName");
    call.handle(handle).num(index);
    if (size != nullptr)
        call.num(*size);
    else
        call.null();
    DvError r;
    sim::Device* device = sim::sensorOrResult(call, handle, &r);
    if (device == nullptr) return r;
    if (size == nullptr) return sim::result(sim::code::kInvalidArgument);
    if (index >= device->exCorrections.size()) return sim::result(sim::code::kOutOfRange);
    std::string const& name = device->exCorrections[index];
    uint32_t const needed = static_cast<uint32_t>(name.size() + 1);
    if (buffer == nullptr) {
        *size = needed;
        return sim::ok();
    }
    if (*size < needed) return sim::result(sim::code::kInvalidBufferSize);
    std::memcpy(buffer, name.c_str(), needed);
    *size = needed;
    return sim::ok();
}

DvError MDGetExCorrectionIndex(void* handle, uint32_t* index) {
    sim::Call call("MDGetExCorrectionIndex");
    call.handle(handle);
    DvError r;
    sim::Device* device = sim::sensorOrResult(call, handle, &r);
    if (device == nullptr) return r;
    if (index == nullptr) return sim::result(sim::code::kInvalidBuffer);
    *index = device->exCorrectionIndex;
    return sim::ok();
}

DvError MDSetExCorrectionIndex(void* handle, uint32_t index) {
    sim::Call call("MDSetExCorrectionIndex");
    call.handle(handle).num(index);
    DvError r;
    sim::Device* device = sim::sensorOrResult(call, handle, &r);
    if (device == nullptr) return r;
    if (index >= device->exCorrections.size()) return sim::result(sim::code::kOutOfRange);
    device->exCorrectionIndex = index;
    return sim::ok();
}

} // extern "C"

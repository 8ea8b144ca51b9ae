// libquorSensor: readings of the built-in sensor and presence sensing.
#include "devices/quorsensor.h"
#include "quorSensor/builtin.h"

extern "C" {

DvError CSSG2H_MeasureRGB(void* hid, double* r, double* g, double* b) {
    sim::Call call("CSSG2H_MeasureRGB");
    call.handle(hid);
    DvError result;
    sim::Monitor* monitor = sim::monitorOrResult(call, hid, &result);
    if (monitor == nullptr) return result;
    if (r == nullptr || g == nullptr || b == nullptr) return sim::result(sim::code::kInvalidBuffer);
    *r = monitor->rgb.X;
    *g = monitor->rgb.Y;
    *b = monitor->rgb.Z;
    return sim::ok();
}

DvError CSSG2H_GetIRValue(void* hid, double* ir, double* second) {
    sim::Call call("CSSG2H_GetIRValue");
    call.handle(hid);
    DvError result;
    sim::Monitor* monitor = sim::monitorOrResult(call, hid, &result);
    if (monitor == nullptr) return result;
    if (ir == nullptr || second == nullptr) return sim::result(sim::code::kInvalidBuffer);
    *ir = monitor->ir;
    *second = monitor->irSecond;
    return sim::ok();
}

DvError CSSG2H_MeasureNotCorrelatedXYZCount(void* hid, double* x, double* y, double* z) {
    sim::Call call("CSSG2H_MeasureNotCorrelatedXYZCount");
    call.handle(hid);
    DvError result;
    sim::Monitor* monitor = sim::monitorOrResult(call, hid, &result);
    if (monitor == nullptr) return result;
    if (x == nullptr || y == nullptr || z == nullptr) return sim::result(sim::code::kInvalidBuffer);
    *x = monitor->uncorrelatedXYZ.X;
    *y = monitor->uncorrelatedXYZ.Y;
    *z = monitor->uncorrelatedXYZ.Z;
    return sim::ok();
}

DvError CSSG2H_GetHumanDetectOnOff(void* hid, signed char* on) {
    sim::Call call("CSSG2H_GetHumanDetectOnOff");
    call.handle(hid);
    DvError result;
    sim::Monitor* monitor = sim::monitorOrResult(call, hid, &result);
    if (monitor == nullptr) return result;
    if (on == nullptr) return sim::result(sim::code::kInvalidBuffer);
    *on = monitor->humanDetectOn ? 1 : 0;
    return sim::ok();
}

DvError CSSG2H_SetHumanDetectOnOff(void* hid, signed char on) {
    sim::Call call("CSSG2H_SetHumanDetectOnOff");
    call.handle(hid).num(on);
    DvError result;
    sim::Monitor* monitor = sim::monitorOrResult(call, hid, &result);
    if (monitor == nullptr) return result;
    monitor->humanDetectOn = on != 0;
    return sim::ok();
}

DvError CSSG2H_GetHumanDetectMode(void* hid, CSSG2_HUMANDETECT_MODE* mode) {
    sim::Call call("CSSG2H_GetHumanDetectMode");
    call.handle(hid);
    DvError result;
    sim::Monitor* monitor = sim::monitorOrResult(call, hid, &result);
    if (monitor == nullptr) return result;
    if (mode == nullptr) return sim::result(sim::code::kInvalidBuffer);
    *mode = monitor->humanDetectMode;
    return sim::ok();
}

DvError CSSG2H_SetHumanDetectMode(void* hid, CSSG2_HUMANDETECT_MODE mode) {
    sim::Call call("CSSG2H_SetHumanDetectMode");
    call.handle(hid).num(mode);
    DvError result;
    sim::Monitor* monitor = sim::monitorOrResult(call, hid, &result);
    if (monitor == nullptr) return result;
    monitor->humanDetectMode = mode;
    return sim::ok();
}

} // extern "C"

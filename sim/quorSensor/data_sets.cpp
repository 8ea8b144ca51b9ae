// libquorSensor: selecting the stored data set, and the items of a data set
// that both sensor generations hold (description, luminance levels, matrices).
//
// CSSG2H_SetColorSensorDataIndex(hid, data, value) selects "current" for data
// 3 and "factory" for data 0. CSSG2H_SetColorSensorDataIndex2(hid, page, index)
// selects "current" for page 1 and "factory" for page 0; index 1 selects the
// priority variant ("currentPriority", "factoryPriority") where the monitor
// holds one, else the same set as index 0. The selection stays until changed.
#include <cstring>

#include "devices/quorsensor.h"
#include "quorSensor/builtin.h"

extern "C" {

DvError CSSG2H_SetColorSensorDataIndex(void* hid, CSSG2_COLORSENSOR_DATA data, int value) {
    sim::Call call("CSSG2H_SetColorSensorDataIndex");
    call.handle(hid).num(data).num(value);
    DvError result;
    sim::Monitor* monitor = sim::monitorOrResult(call, hid, &result);
    if (monitor == nullptr) return result;
    if (!monitor->dataIndexSupported) return sim::result(sim::code::kUnsupported);
    if (data != 3 && data != 0) return sim::result(sim::code::kInvalidArgument);
    monitor->selected = data == 3 ? sim::Page::Current : sim::Page::Factory;
    return sim::ok();
}

DvError CSSG2H_SetColorSensorDataIndex2(void* hid, CSSG2_COLORSENSOR_DATA_PAGE page,
                                        CSSG2_COLORSENSOR_DATA_INDEX index) {
    sim::Call call("CSSG2H_SetColorSensorDataIndex2");
    call.handle(hid).num(page).num(index);
    DvError result;
    sim::Monitor* monitor = sim::monitorOrResult(call, hid, &result);
    if (monitor == nullptr) return result;
    if ((page != 0 && page != 1) || (index != 0 && index != 1))
        return sim::result(sim::code::kInvalidArgument);
    sim::Page selected = page == 1 ? sim::Page::Current : sim::Page::Factory;
    sim::Page const variant = page == 1 ? sim::Page::CurrentPriority : sim::Page::FactoryPriority;
    if (index == 1 && monitor->dataSets.count(variant) != 0) selected = variant;
    monitor->selected = selected;
    return sim::ok();
}

DvError CSSG2H_GetCriterionSensorDescription(void* hid, CSSG2_Date* date, int* deviceID, char* serial) {
    sim::Call call("CSSG2H_GetCriterionSensorDescription");
    call.handle(hid);
    DvError result;
    sim::Monitor* monitor = sim::monitorOrResult(call, hid, &result);
    if (monitor == nullptr) return result;
    if (date == nullptr || deviceID == nullptr || serial == nullptr)
        return sim::result(sim::code::kInvalidBuffer);
    sim::DataSet const& set = sim::selectedSet(*monitor);
    *date = set.descriptionDate;
    *deviceID = set.descriptionDeviceID;
    sim::copyText(serial, 33, set.descriptionSerial);
    return sim::ok();
}

DvError CSSG2H_SetCriterionSensorDescription(void* hid, CSSG2_Date date, int deviceID, char* serial) {
    sim::Call call("CSSG2H_SetCriterionSensorDescription");
    call.handle(hid).record(date).num(deviceID).text(serial);
    DvError result;
    sim::Monitor* monitor = sim::monitorOrResult(call, hid, &result);
    if (monitor == nullptr) return result;
    if (serial == nullptr) return sim::result(sim::code::kInvalidArgument);
    sim::DataSet& set = sim::selectedSet(*monitor);
    set.descriptionDate = date;
    set.descriptionDeviceID = deviceID;
    set.descriptionSerial = sim::fieldText(serial, 32);
    return sim::ok();
}

signed char CSSG2H_SupportedLuminanceLevelCorrectionParams(void* hid) {
    sim::Call call("CSSG2H_SupportedLuminanceLevelCorrectionParams");
    call.handle(hid);
    sim::Monitor* monitor = call.monitorByHid(hid);
    return monitor != nullptr && monitor->luminanceLevelSupported ? 1 : 0;
}

// Luminance levels are kept per mode and index; one never written reads as zeros.
DvError CSSG2H_GetLuminanceLevelCorrectionParams(void* hid, QUORSENSOR_SENSOR_MODE mode, unsigned int index,
                                                 double* brightness, uint16_t* dimmerOut) {
    sim::Call call("CSSG2H_GetLuminanceLevelCorrectionParams");
    call.handle(hid).num(mode).num(index);
    DvError result;
    sim::Monitor* monitor = sim::monitorOrResult(call, hid, &result);
    if (monitor == nullptr) return result;
    if (!monitor->luminanceLevelSupported) return sim::result(sim::code::kUnsupported);
    if (brightness == nullptr || dimmerOut == nullptr) return sim::result(sim::code::kInvalidBuffer);
    *brightness = 0;
    *dimmerOut = 0;
    for (auto const& level : sim::selectedSet(*monitor).luminanceLevels)
        if (level.mode == mode && level.index == index) {
            *brightness = level.brightness;
            *dimmerOut = level.dimmerOut;
        }
    return sim::ok();
}

DvError CSSG2H_SetLuminanceLevelCorrectionParams(void* hid, QUORSENSOR_SENSOR_MODE mode, unsigned int index,
                                                 double brightness, uint16_t dimmerOut) {
    sim::Call call("CSSG2H_SetLuminanceLevelCorrectionParams");
    call.handle(hid).num(mode).num(index).real(brightness).num(dimmerOut);
    DvError result;
    sim::Monitor* monitor = sim::monitorOrResult(call, hid, &result);
    if (monitor == nullptr) return result;
    if (!monitor->luminanceLevelSupported) return sim::result(sim::code::kUnsupported);
    auto& levels = sim::selectedSet(*monitor).luminanceLevels;
    for (auto& level : levels)
        if (level.mode == mode && level.index == index) {
            level.brightness = brightness;
            level.dimmerOut = dimmerOut;
            return sim::ok();
        }
    levels.push_back(sim::LuminanceLevel{mode, index, brightness, dimmerOut});
    return sim::ok();
}

signed char CSSG2H_SupportedXYZCorrectionMatrix8DXT(void* hid) {
    sim::Call call("CSSG2H_SupportedXYZCorrectionMatrix8DXT");
    call.handle(hid);
    sim::Monitor* monitor = call.monitorByHid(hid);
    return monitor != nullptr && monitor->matrix8x3Supported ? 1 : 0;
}

// The 8x3 and the 3x3 matrix are stored apart; writing one leaves the other.
DvError CSSG2H_GetXYZCorrectionMatrix8DXT(void* hid, double (*matrix)[3]) {
    sim::Call call("CSSG2H_GetXYZCorrectionMatrix8DXT");
    call.handle(hid);
    DvError result;
    sim::Monitor* monitor = sim::monitorOrResult(call, hid, &result);
    if (monitor == nullptr) return result;
    if (!monitor->matrix8x3Supported) return sim::result(sim::code::kUnsupported);
    if (matrix == nullptr) return sim::result(sim::code::kInvalidBuffer);
    std::memcpy(matrix, sim::selectedSet(*monitor).matrix8x3, sizeof(double) * 24);
    return sim::ok();
}

DvError CSSG2H_SetXYZCorrectionMatrix8DXT(void* hid, double (*matrix)[3]) {
    sim::Call call("CSSG2H_SetXYZCorrectionMatrix8DXT");
    call.handle(hid).rows(matrix != nullptr ? matrix[0] : nullptr, 8);
    DvError result;
    sim::Monitor* monitor = sim::monitorOrResult(call, hid, &result);
    if (monitor == nullptr) return result;
    if (!monitor->matrix8x3Supported) return sim::result(sim::code::kUnsupported);
    if (matrix == nullptr) return sim::result(sim::code::kInvalidBuffer);
    std::memcpy(sim::selectedSet(*monitor).matrix8x3, matrix, sizeof(double) * 24);
    return sim::ok();
}

DvError CSSG2H_GetXYZCorrectionMatrix(void* hid, double* matrix) {
    sim::Call call("CSSG2H_GetXYZCorrectionMatrix");
    call.handle(hid);
    DvError result;
    sim::Monitor* monitor = sim::monitorOrResult(call, hid, &result);
    if (monitor == nullptr) return result;
    if (matrix == nullptr) return sim::result(sim::code::kInvalidBuffer);
    std::memcpy(matrix, sim::selectedSet(*monitor).matrix3x3, sizeof(double) * 9);
    return sim::ok();
}

DvError CSSG2H_SetXYZCorrectionMatrix(void* hid, double* matrix) {
    sim::Call call("CSSG2H_SetXYZCorrectionMatrix");
    call.handle(hid).rows(matrix, 3);
    DvError result;
    sim::Monitor* monitor = sim::monitorOrResult(call, hid, &result);
    if (monitor == nullptr) return result;
    if (matrix == nullptr) return sim::result(sim::code::kInvalidBuffer);
    std::memcpy(sim::selectedSet(*monitor).matrix3x3, matrix, sizeof(double) * 9);
    return sim::ok();
}

} // extern "C"

// World to scenario JSON: every key written, so that loading the result gives
// the same world back.
#include <cinttypes>
#include <cstdio>

#include "world/record_json.h"
#include "world/state.h"

namespace sim {

using quilljson::Value;

namespace {

Value hex(uint64_t value) {
    char text[17];
    std::snprintf(text, sizeof text, "%016" PRIX64, value);
    return Value(text);
}

Value xyz(XYZ const& v, char const* x = "X", char const* y = "Y", char const* z = "Z") {
    Value j = Value::object();
    j[x] = v.X;
    j[y] = v.Y;
    j[z] = v.Z;
    return j;
}

Value optionalDate(std::optional<CSSG2_Date> const& date) {
    return date ? toJson(*date) : Value();
}

Value rows(double const* values, size_t count) {
    Value j = Value::array();
    for (size_t r = 0; r < count; ++r)
        j.append(toJson(values + 3 * r, 3));
    return j;
}

// A correlation or matrix stored in a sensor: the keys the two kinds share.
template <typename Stored> Value storedEntry(Stored const& s) {
    Value e = Value::object();
    e["id"] = static_cast<unsigned long>(s.id);
    e["referenceDeviceID"] = s.referenceDeviceID;
    e["referenceSerial"] = s.referenceSerial;
    e["monitorProduct"] = s.monitorProduct;
    e["monitorSerial"] = s.monitorSerial;
    return e;
}

Value writeDevice(Device const& d) {
    Value j = Value::object();
    j["deviceID"] = d.deviceID;
    j["individualID"] = hex(d.individualID);
    j["name"] = d.name;
    j["serial"] = d.serial;
    j["usb"] = d.usb;
    j["enumerationFails"] = d.enumerationFails;
    Capabilities const& k = d.capabilities;
    Value& c = j["capabilities"];
    c["validConnection"] = k.validConnection;
    c["needsCalibration"] = k.needsCalibration;
    c["ambient"] = k.ambient;
    c["reflectance"] = k.reflectance;
    c["arm"] = k.arm;
    c["multiplePositions"] = k.multiplePositions;
    c["targetMarker"] = k.targetMarker;
    c["exteriorLight"] = k.exteriorLight;
    c["ifs"] = k.ifs;
    j["spectrum"]["min"] = d.spectrum.min;
    j["spectrum"]["max"] = d.spectrum.max;
    j["spectrum"]["bandWidth"] = d.spectrum.bandWidth;
    j["spectrum"]["count"] = d.spectrum.count;
    j["mode"] = d.mode;
    j["observerKey"] = d.observerKey;
    j["armOut"] = d.armOut;
    j["position"] = d.position;
    j["exteriorLightingState"] = d.exteriorLightingState;
    j["targetMarker"] = d.targetMarker;
    j["ifsTempCorrectParamCalculated"] = d.ifsTempCorrectParamCalculated;
    j["ifsBrightCorrectParamUpdateEnabled"] = d.ifsBrightCorrectParamUpdateEnabled;
    j["options"] = Value::object();
    for (auto const& option : d.options)
        j["options"][option.first] = option.second;
    if (d.parameterDescription) {
        Value& p = j["parameterDescription"];
        p["date"] = toJson(d.parameterDescription->date);
        p["referenceDeviceID"] = d.parameterDescription->referenceDeviceID;
        p["referenceSerial"] = d.parameterDescription->referenceSerial;
        p["serialPadding"] = d.parameterDescription->serialPadding;
    } else {
        j["parameterDescription"] = Value();
    }
    j["correction"]["type"] = d.correction;
    j["correction"]["observerKey"] = d.correctionObserverKey;
    j["correction"]["product"] = d.correctionProduct;
    j["correction"]["panelRevision"] = d.correctionPanelRevision;
    j["exCorrections"]["names"] = Value::array();
    for (auto const& name : d.exCorrections)
        j["exCorrections"]["names"].append(Value(name));
    j["exCorrections"]["index"] = d.exCorrectionIndex;
    j["measurement"]["XYZ"] = xyz(d.XYZReading);
    j["measurement"]["rawXYZ"] = xyz(d.rawXYZReading);
    j["measurement"]["rawData"] = toJson(d.rawData.data(), d.rawData.size());
    j["correlationCorrections"] = Value::array();
    for (auto const& s : d.correlationCorrections)
        j["correlationCorrections"].append(storedEntry(s));
    j["appliedCorrelationCorrection"] =
        d.appliedCorrelationCorrection ? Value(static_cast<unsigned long>(*d.appliedCorrelationCorrection))
                                       : Value();
    if (d.targetWhite) {
        j["targetWhite"]["x"] = d.targetWhite->x;
        j["targetWhite"]["y"] = d.targetWhite->y;
        j["targetWhite"]["Y"] = d.targetWhite->Y;
    } else {
        j["targetWhite"] = Value();
    }
    j["ninePointsCorrection"] = d.ninePointsCorrection;
    j["correlationMatrices"] = Value::array();
    for (auto const& s : d.correlationMatrices) {
        Value e = storedEntry(s);
        e["panelRevision"] = s.panelRevision;
        e["matrix"] = toJson(s.matrix, 9);
        j["correlationMatrices"].append(e);
    }
    j["appliedCorrelationMatrix"] =
        d.appliedCorrelationMatrix ? Value(static_cast<unsigned long>(*d.appliedCorrelationMatrix)) : Value();
    return j;
}

Value writeDataSet(DataSet const& s, bool firstGeneration) {
    Value j = Value::object();
    if (s.descriptionDeviceID == 0 && s.descriptionSerial.empty() && s.descriptionDate.year == 0 &&
        s.descriptionDate.month == 0 && s.descriptionDate.day == 0 && s.descriptionDate.hour == 0 &&
        s.descriptionDate.minute == 0) {
        j["description"] = Value();
    } else {
        j["description"]["date"] = toJson(s.descriptionDate);
        j["description"]["deviceID"] = s.descriptionDeviceID;
        j["description"]["serial"] = s.descriptionSerial;
    }
    if (firstGeneration) {
        j["correlation"] = toJson(s.ifsv3);
    } else {
        j["correlation"]["calibrationData"] = toJson(s.calibration);
        j["correlation"]["correctionData"] = toJson(s.correction);
    }
    j["luminanceLevels"] = Value::array();
    for (auto const& l : s.luminanceLevels) {
        Value e = Value::object();
        e["mode"] = l.mode;
        e["index"] = l.index;
        e["brightness"] = l.brightness;
        e["dimmerOut"] = l.dimmerOut;
        j["luminanceLevels"].append(e);
    }
    j["matrix3x3"] = rows(s.matrix3x3, 3);
    j["matrix8x3"] = rows(&s.matrix8x3[0][0], 8);
    return j;
}

Value writeMonitor(Monitor const& m) {
    Value j = Value::object();
    j["product"] = m.product;
    j["serial"] = m.serial;
    j["hidHandle"] = static_cast<unsigned long>(m.hidHandle);
    j["panelRevision"] = m.panelRevision;
    j["hzePriority"] = m.hzePrioritySupported ? Value(m.hzePriority) : Value();
    j["dataIndexSupported"] = m.dataIndexSupported;
    j["heldByOther"] = m.heldByOther;
    j["lockCount"] = m.lockCount;
    j["sensor"] = writeDevice(m.sensor);
    j["rgb"] = xyz(m.rgb, "R", "G", "B");
    j["ir"] = m.ir;
    j["irSecond"] = m.irSecond;
    j["uncorrelatedXYZ"] = xyz(m.uncorrelatedXYZ);
    j["humanDetection"]["on"] = m.humanDetectOn;
    j["humanDetection"]["mode"] = m.humanDetectMode;
    j["luminanceLevelSupported"] = m.luminanceLevelSupported;
    j["matrix8x3Supported"] = m.matrix8x3Supported;
    j["dataSets"] = Value::object();
    for (auto const& set : m.dataSets)
        j["dataSets"][pageName(set.first)] = writeDataSet(set.second, m.firstGeneration());
    j["selectedDataSet"] = pageName(m.selected);
    return j;
}

// The keys both databases share.
void writeDatabaseEntry(Value& j, DatabaseEntry const& e) {
    j["id"] = static_cast<unsigned long>(e.id);
    j["sensor"]["deviceID"] = e.deviceID;
    j["sensor"]["serial"] = e.serial;
    j["referenceSensor"]["deviceID"] = e.referenceDeviceID;
    j["referenceSensor"]["serial"] = e.referenceSerial;
    j["monitor"]["product"] = e.monitorProduct;
    j["monitor"]["serial"] = e.monitorSerial;
    j["monitor"]["panelRevision"] = e.panelRevision;
    j["date"] = optionalDate(e.date);
}

} // namespace

Value writeScenario(World const& w) {
    Value j = Value::object();
    j["libraryPath"] = w.libraryPath;
    j["controlPanelOpened"] = w.controlPanelOpened;
    Value& c = j["compatibilityProcess"];
    c["supported"] = w.compatibility.supported;
    c["launchResult"] = w.compatibility.launchResult;
    c["quitResult"] = w.compatibility.quitResult;
    c["running"] = w.compatibility.running;
    c["launched"] = Value::array();
    for (auto const& l : w.compatibility.launched) {
        Value e = Value::object();
        e["path"] = l.path;
        e["application"] = l.application;
        c["launched"].append(e);
    }
    j["devices"] = Value::array();
    for (auto const& d : w.devices)
        j["devices"].append(writeDevice(d));
    j["modelNames"] = Value::object();
    for (auto const& n : w.modelNames)
        j["modelNames"][std::to_string(n.first)] = n.second;
    j["monitors"] = Value::array();
    for (auto const& m : w.monitors)
        j["monitors"].append(writeMonitor(m));
    j["usb"]["devices"] = Value::array();
    for (auto const& name : w.usbDevices)
        j["usb"]["devices"].append(Value(name));
    j["usb"]["snapshotFails"] = w.usbSnapshotFails;
    j["correlationDatabase"] = Value::array();
    for (auto const& e : w.correlationDatabase) {
        Value v = Value::object();
        writeDatabaseEntry(v, e);
        v["kind"] = e.firstGeneration ? "IFSv3" : "CSSG2";
        v["correlationData"] = e.firstGeneration ? toJson(e.ifsv3) : toJson(e.cssg2);
        j["correlationDatabase"].append(v);
    }
    j["matrixDatabase"] = Value::array();
    for (auto const& e : w.matrixDatabase) {
        Value v = Value::object();
        writeDatabaseEntry(v, e);
        v["dataPage"] = e.dataPage;
        v["correlationID"] = static_cast<unsigned long>(e.correlationID);
        v["matrix"] = toJson(e.matrix, 9);
        j["matrixDatabase"].append(v);
    }
    return j;
}

} // namespace sim

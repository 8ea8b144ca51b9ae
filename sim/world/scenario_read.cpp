// Scenario JSON to world. Missing keys take their defaults; a key of the wrong
// type, an unknown key or an impossible value rejects the whole scenario.
#include <cassert>
#include <cinttypes>
#include <cstdlib>
#include <set>
#include <stdexcept>

#include "world/record_json.h"
#include "world/state.h"

namespace sim {

using quilljson::Value;

namespace {

struct ScenarioError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The members of one JSON object, read by name; finish() rejects the members
// that nobody asked for. Every reader calls it once it has read its keys: a
// destructor must not throw (the object being returned would not be destroyed).
class Fields {
public:
    Fields(Value const& value, std::string path) : value_(value), path_(std::move(path)) {
        if (!value.isObject() && !value.isNull()) fail("", "an object");
    }
    Fields(Fields const&) = delete;
    ~Fields() { assert(finished_ || std::uncaught_exceptions() > 0); }

    void finish() {
        finished_ = true;
        for (auto const& member : value_.objectRef())
            if (used_.count(member.first) == 0) throw ScenarioError(where(member.first) + ": unknown key");
    }

    bool has(char const* key) const { return value_.contains(key); }
    Value const& any(char const* key) {
        used_.insert(key);
        return value_[key];
    }
    bool boolean(char const* key, bool fallback) {
        Value const& v = any(key);
        if (v.isNull()) return fallback;
        if (!v.isBool()) fail(key, "true or false");
        return v.getBool();
    }
    int64_t integer(char const* key, int64_t fallback, int64_t min, int64_t max) {
        Value const& v = any(key);
        if (v.isNull()) return fallback;
        if (!v.isInteger()) fail(key, "an integer");
        if (v.getInteger() < min || v.getInteger() > max) fail(key, "a value in range");
        return v.getInteger();
    }
    double real(char const* key, double fallback) {
        Value const& v = any(key);
        if (v.isNull()) return fallback;
        if (!v.isNumber()) fail(key, "a number");
        return v.asDouble();
    }
    std::string text(char const* key, std::string const& fallback, size_t maxLength = SIZE_MAX) {
        Value const& v = any(key);
        if (v.isNull()) return fallback;
        if (!v.isString()) fail(key, "a string");
        if (v.stringRef().size() > maxLength)
            fail(key, "at most " + std::to_string(maxLength) + " characters");
        return v.stringRef();
    }
    // An unsigned 64-bit number: an integer, or a text of hexadecimal digits.
    uint64_t hex(char const* key, uint64_t fallback) {
        Value const& v = any(key);
        if (v.isNull()) return fallback;
        if (v.isInteger()) return static_cast<uint64_t>(v.getInteger());
        if (!v.isString() || v.stringRef().empty() || v.stringRef().size() > 18)
            fail(key, "hexadecimal digits");
        char* end = nullptr;
        uint64_t const n = std::strtoull(v.stringRef().c_str(), &end, 16);
        if (*end != '\0') fail(key, "hexadecimal digits");
        return n;
    }
    Value const& array(char const* key) {
        Value const& v = any(key);
        if (!v.isNull() && !v.isArray()) fail(key, "an array");
        return v;
    }
    std::string path(char const* key) const { return where(key); }

    [[noreturn]] void fail(std::string const& key, std::string const& expected) const {
        throw ScenarioError(where(key) + ": expected " + expected);
    }

private:
    std::string where(std::string const& key) const {
        return key.empty() ? (path_.empty() ? "scenario" : path_) : (path_.empty() ? key : path_ + "." + key);
    }

    Value const& value_;
    std::string path_;
    std::set<std::string> used_;
    bool finished_ = false;
};

std::string item(std::string const& path, size_t index) {
    return path + "[" + std::to_string(index) + "]";
}

void readReals(Value const& json, std::string const& path, double* out, size_t count) {
    if (!json.isArray() || json.size() != count)
        throw ScenarioError(path + ": expected " + std::to_string(count) + " numbers");
    for (size_t i = 0; i < count; ++i) {
        if (!json[static_cast<unsigned long>(i)].isNumber())
            throw ScenarioError(item(path, i) + ": expected a number");
        out[i] = json[static_cast<unsigned long>(i)].asDouble();
    }
}

void readRows(Value const& json, std::string const& path, double* out, size_t rows) {
    if (!json.isArray() || json.size() != rows)
        throw ScenarioError(path + ": expected " + std::to_string(rows) + " rows of 3 numbers");
    for (size_t r = 0; r < rows; ++r)
        readReals(json[static_cast<unsigned long>(r)], item(path, r), out + 3 * r, 3);
}

CSSG2_Date readDate(Value const& json, std::string const& path) {
    Fields f(json, path);
    CSSG2_Date d{};
    d.year = static_cast<uint16_t>(f.integer("year", 0, 0, 65535));
    d.month = static_cast<uint8_t>(f.integer("month", 0, 0, 255));
    d.day = static_cast<uint8_t>(f.integer("day", 0, 0, 255));
    d.hour = static_cast<uint8_t>(f.integer("hour", 0, 0, 255));
    d.minute = static_cast<uint8_t>(f.integer("minute", 0, 0, 255));
    f.finish();
    return d;
}

std::optional<CSSG2_Date> readOptionalDate(Fields& f, char const* key) {
    Value const& v = f.any(key);
    if (v.isNull()) return std::nullopt;
    return readDate(v, f.path(key));
}

XYZ readXYZ(Fields& parent, char const* key, XYZ fallback, char const* x = "X", char const* y = "Y",
            char const* z = "Z") {
    Fields f(parent.any(key), parent.path(key));
    XYZ const read{f.real(x, fallback.X), f.real(y, fallback.Y), f.real(z, fallback.Z)};
    f.finish();
    return read;
}

// A record in its wire form: must be an object (or absent); members read leniently.
Value const& record(Fields& f, char const* key) {
    Value const& v = f.any(key);
    if (!v.isNull() && !v.isObject()) f.fail(key, "an object");
    return v;
}

Device readDevice(Value const& json, std::string const& path, bool builtin) {
    Fields f(json, path);
    Device d;
    d.usb = !builtin;
    d.deviceID = static_cast<uint32_t>(f.integer("deviceID", 0, 0, UINT32_MAX));
    d.individualID = f.hex("individualID", 0);
    d.name = f.text("name", "");
    d.serial = f.text("serial", "");
    d.usb = f.boolean("usb", d.usb);
    d.enumerationFails = f.boolean("enumerationFails", false);
    {
        Fields c(f.any("capabilities"), f.path("capabilities"));
        Capabilities& k = d.capabilities;
        k.validConnection = c.boolean("validConnection", k.validConnection);
        k.needsCalibration = c.boolean("needsCalibration", k.needsCalibration);
        k.ambient = c.boolean("ambient", k.ambient);
        k.reflectance = c.boolean("reflectance", k.reflectance);
        k.arm = c.boolean("arm", k.arm);
        k.multiplePositions = c.boolean("multiplePositions", k.multiplePositions);
        k.targetMarker = c.boolean("targetMarker", k.targetMarker);
        k.exteriorLight = c.boolean("exteriorLight", k.exteriorLight);
        k.ifs = c.boolean("ifs", k.ifs);
        c.finish();
    }
    {
        Fields s(f.any("spectrum"), f.path("spectrum"));
        d.spectrum = Spectrum{
            s.integer("min", 0, INT64_MIN, INT64_MAX), s.integer("max", 0, INT64_MIN, INT64_MAX),
            s.integer("bandWidth", 0, INT64_MIN, INT64_MAX), s.integer("count", 0, INT64_MIN, INT64_MAX)};
        s.finish();
    }
    d.mode = static_cast<int32_t>(f.integer("mode", 0, INT32_MIN, INT32_MAX));
    d.observerKey = static_cast<int32_t>(f.integer("observerKey", 0, INT32_MIN, INT32_MAX));
    d.armOut = f.boolean("armOut", false);
    d.position = static_cast<int32_t>(f.integer("position", 1, INT32_MIN, INT32_MAX));
    d.exteriorLightingState =
        static_cast<int32_t>(f.integer("exteriorLightingState", 0, INT32_MIN, INT32_MAX));
    d.targetMarker = static_cast<int32_t>(f.integer("targetMarker", 0, INT32_MIN, INT32_MAX));
    d.ifsTempCorrectParamCalculated = f.boolean("ifsTempCorrectParamCalculated", false);
    d.ifsBrightCorrectParamUpdateEnabled = f.boolean("ifsBrightCorrectParamUpdateEnabled", false);
    {
        Fields o(f.any("options"), f.path("options"));
        for (auto const& option : f.any("options").objectRef())
            d.options[option.first] = o.integer(option.first.c_str(), 0, INT64_MIN, INT64_MAX);
        o.finish();
    }
    if (!f.any("parameterDescription").isNull()) {
        Fields p(f.any("parameterDescription"), f.path("parameterDescription"));
        ParameterDescription pd;
        pd.date = readOptionalDate(p, "date").value_or(CSSG2_Date{});
        pd.referenceDeviceID = static_cast<uint32_t>(p.integer("referenceDeviceID", 0, 0, UINT32_MAX));
        pd.referenceSerial = p.text("referenceSerial", "", 32);
        pd.serialPadding = static_cast<uint8_t>(p.integer("serialPadding", 0, 0, 255));
        p.finish();
        d.parameterDescription = pd;
    }
    {
        Fields c(f.any("correction"), f.path("correction"));
        d.correction = c.text("type", "none");
        static std::set<std::string> const kTypes{"none",       "plain",        "emission",
                                                  "paperWhite", "10degFor2deg", "plainFor2deg"};
        if (kTypes.count(d.correction) == 0) c.fail("type", "a known correction");
        d.correctionObserverKey = static_cast<int32_t>(c.integer("observerKey", 0, INT32_MIN, INT32_MAX));
        d.correctionProduct = c.text("product", "");
        d.correctionPanelRevision = static_cast<uint16_t>(c.integer("panelRevision", 0, 0, 65535));
        c.finish();
    }
    {
        Fields x(f.any("exCorrections"), f.path("exCorrections"));
        Value const& names = x.array("names");
        for (size_t i = 0; i < names.size(); ++i) {
            Value const& n = names[static_cast<unsigned long>(i)];
            if (!n.isString()) throw ScenarioError(item(x.path("names"), i) + ": expected a string");
            d.exCorrections.push_back(n.stringRef());
        }
        d.exCorrectionIndex = static_cast<uint32_t>(x.integer("index", 0, 0, UINT32_MAX));
        x.finish();
    }
    {
        Fields m(f.any("measurement"), f.path("measurement"));
        d.XYZReading = readXYZ(m, "XYZ", d.XYZReading);
        d.rawXYZReading = readXYZ(m, "rawXYZ", d.rawXYZReading);
        Value const& raw = m.array("rawData");
        if (!raw.isNull()) {
            if (raw.size() > 16) m.fail("rawData", "at most 16 numbers");
            d.rawData.assign(raw.size(), 0.0);
            readReals(raw, m.path("rawData"), d.rawData.data(), raw.size());
        }
        m.finish();
    }
    Value const& corrections = f.array("correlationCorrections");
    for (size_t i = 0; i < corrections.size(); ++i) {
        Fields c(corrections[static_cast<unsigned long>(i)], item(f.path("correlationCorrections"), i));
        StoredCorrelationCorrection s;
        s.id = c.hex("id", 0);
        s.referenceDeviceID = static_cast<int32_t>(c.integer("referenceDeviceID", 0, INT32_MIN, INT32_MAX));
        s.referenceSerial = c.text("referenceSerial", "", 32);
        s.monitorProduct = c.text("monitorProduct", "", 32);
        s.monitorSerial = c.text("monitorSerial", "", 16);
        c.finish();
        d.correlationCorrections.push_back(s);
    }
    if (!f.any("appliedCorrelationCorrection").isNull())
        d.appliedCorrelationCorrection = f.hex("appliedCorrelationCorrection", 0);
    if (!f.any("targetWhite").isNull()) {
        Fields t(f.any("targetWhite"), f.path("targetWhite"));
        d.targetWhite = TargetWhite{t.real("x", 0), t.real("y", 0), t.real("Y", 0)};
        t.finish();
    }
    d.ninePointsCorrection = f.boolean("ninePointsCorrection", false);
    Value const& matrices = f.array("correlationMatrices");
    for (size_t i = 0; i < matrices.size(); ++i) {
        std::string const p = item(f.path("correlationMatrices"), i);
        Fields c(matrices[static_cast<unsigned long>(i)], p);
        StoredCorrelationMatrix s;
        s.id = c.hex("id", 0);
        s.referenceDeviceID = static_cast<uint32_t>(c.integer("referenceDeviceID", 0, 0, UINT32_MAX));
        s.referenceSerial = c.text("referenceSerial", "", 32);
        s.monitorProduct = c.text("monitorProduct", "");
        s.monitorSerial = c.text("monitorSerial", "");
        s.panelRevision = static_cast<uint16_t>(c.integer("panelRevision", 0, 0, 65535));
        if (!c.any("matrix").isNull()) readReals(c.any("matrix"), c.path("matrix"), s.matrix, 9);
        c.finish();
        d.correlationMatrices.push_back(s);
    }
    if (!f.any("appliedCorrelationMatrix").isNull())
        d.appliedCorrelationMatrix = f.hex("appliedCorrelationMatrix", 0);
    f.finish();
    return d;
}

DataSet readDataSet(Value const& json, std::string const& path, bool firstGeneration) {
    Fields f(json, path);
    DataSet s;
    if (!f.any("description").isNull()) {
        Fields d(f.any("description"), f.path("description"));
        s.descriptionDate = readOptionalDate(d, "date").value_or(CSSG2_Date{});
        s.descriptionDeviceID = static_cast<int32_t>(d.integer("deviceID", 0, INT32_MIN, INT32_MAX));
        s.descriptionSerial = d.text("serial", "", 32);
        d.finish();
    }
    Value const& correlation = record(f, "correlation");
    if (firstGeneration) {
        s.ifsv3 = ifsv3FromJson(correlation);
    } else {
        MDCSSG2CorrelationDataEx const r = cssg2FromJson(correlation);
        s.calibration = r.calibrationData;
        s.correction = r.correctionData;
    }
    Value const& levels = f.array("luminanceLevels");
    for (size_t i = 0; i < levels.size(); ++i) {
        Fields l(levels[static_cast<unsigned long>(i)], item(f.path("luminanceLevels"), i));
        LuminanceLevel level;
        level.mode = static_cast<int32_t>(l.integer("mode", 0, INT32_MIN, INT32_MAX));
        level.index = static_cast<uint32_t>(l.integer("index", 0, 0, UINT32_MAX));
        level.brightness = l.real("brightness", 0);
        level.dimmerOut = static_cast<uint16_t>(l.integer("dimmerOut", 0, 0, 65535));
        l.finish();
        s.luminanceLevels.push_back(level);
    }
    if (!f.any("matrix3x3").isNull()) readRows(f.any("matrix3x3"), f.path("matrix3x3"), s.matrix3x3, 3);
    if (!f.any("matrix8x3").isNull())
        readRows(f.any("matrix8x3"), f.path("matrix8x3"), &s.matrix8x3[0][0], 8);
    f.finish();
    return s;
}

Monitor readMonitor(Value const& json, std::string const& path) {
    Fields f(json, path);
    Monitor m;
    m.product = f.text("product", "", 8);
    m.serial = f.text("serial", "", 16);
    if (m.product.empty() || m.serial.empty()) f.fail("", "a product and a serial");
    m.hidHandle = f.hex("hidHandle", 0);
    if (m.hidHandle == 0) f.fail("hidHandle", "a non-zero HID handle");
    m.panelRevision = static_cast<uint16_t>(f.integer("panelRevision", 0, 0, 65535));
    m.hzePrioritySupported = !f.any("hzePriority").isNull();
    m.hzePriority = static_cast<uint32_t>(f.integer("hzePriority", 0, 0, UINT32_MAX));
    m.dataIndexSupported = f.boolean("dataIndexSupported", true);
    m.heldByOther = f.boolean("heldByOther", false);
    m.lockCount = static_cast<int32_t>(f.integer("lockCount", 0, 0, INT32_MAX));
    m.sensor = readDevice(f.any("sensor"), f.path("sensor"), true);
    m.rgb = readXYZ(f, "rgb", m.rgb, "R", "G", "B");
    m.ir = f.real("ir", m.ir);
    m.irSecond = f.real("irSecond", m.irSecond);
    m.uncorrelatedXYZ = readXYZ(f, "uncorrelatedXYZ", m.uncorrelatedXYZ);
    {
        Fields h(f.any("humanDetection"), f.path("humanDetection"));
        m.humanDetectOn = h.boolean("on", false);
        m.humanDetectMode = static_cast<int32_t>(h.integer("mode", 0, INT32_MIN, INT32_MAX));
        h.finish();
    }
    m.luminanceLevelSupported = f.boolean("luminanceLevelSupported", false);
    m.matrix8x3Supported = f.boolean("matrix8x3Supported", false);
    {
        Value const& sets = f.any("dataSets");
        Fields s(sets, f.path("dataSets"));
        for (Page page : {Page::Current, Page::Factory, Page::CurrentPriority, Page::FactoryPriority})
            if (s.has(pageName(page)))
                m.dataSets[page] =
                    readDataSet(s.any(pageName(page)), s.path(pageName(page)), m.firstGeneration());
        // The factory set defaults to a copy of the current one.
        if (m.dataSets.count(Page::Factory) == 0) m.dataSets[Page::Factory] = m.dataSets[Page::Current];
        s.finish();
    }
    if (!pageFromName(f.text("selectedDataSet", "current"), &m.selected))
        f.fail("selectedDataSet", "a data set name");
    if (m.dataSets.count(m.selected) == 0) f.fail("selectedDataSet", "a data set the monitor holds");
    f.finish();
    return m;
}

struct Identity {
    uint32_t deviceID;
    std::string serial;
};
Identity readIdentity(Fields& parent, char const* key) {
    Fields f(parent.any(key), parent.path(key));
    Identity const read{static_cast<uint32_t>(f.integer("deviceID", 0, 0, UINT32_MAX)), f.text("serial", "")};
    f.finish();
    return read;
}

// The keys both databases share: id, sensor, referenceSensor, monitor, date.
void readDatabaseEntry(Fields& f, DatabaseEntry* e) {
    e->id = f.hex("id", 0);
    Identity const sensor = readIdentity(f, "sensor");
    e->deviceID = sensor.deviceID;
    e->serial = sensor.serial;
    Identity const reference = readIdentity(f, "referenceSensor");
    e->referenceDeviceID = reference.deviceID;
    e->referenceSerial = reference.serial;
    {
        Fields m(f.any("monitor"), f.path("monitor"));
        e->monitorProduct = m.text("product", "");
        e->monitorSerial = m.text("serial", "");
        e->panelRevision = static_cast<uint16_t>(m.integer("panelRevision", 0, 0, 65535));
        m.finish();
    }
    e->date = readOptionalDate(f, "date");
}

CorrelationEntry readCorrelationEntry(Value const& json, std::string const& path) {
    Fields f(json, path);
    CorrelationEntry e;
    readDatabaseEntry(f, &e);
    std::string const kind = f.text("kind", (e.deviceID | 1u) == 0x131u ? "IFSv3" : "CSSG2");
    if (kind != "IFSv3" && kind != "CSSG2") f.fail("kind", "\"IFSv3\" or \"CSSG2\"");
    e.firstGeneration = kind == "IFSv3";
    Value const& data = record(f, "correlationData");
    if (e.firstGeneration)
        e.ifsv3 = ifsv3FromJson(data);
    else
        e.cssg2 = cssg2FromJson(data);
    f.finish();
    return e;
}

MatrixEntry readMatrixEntry(Value const& json, std::string const& path) {
    Fields f(json, path);
    MatrixEntry e;
    readDatabaseEntry(f, &e);
    e.dataPage = static_cast<int32_t>(f.integer("dataPage", 0, INT32_MIN, INT32_MAX));
    e.correlationID = f.hex("correlationID", 0);
    if (!f.any("matrix").isNull()) readReals(f.any("matrix"), f.path("matrix"), e.matrix, 9);
    f.finish();
    return e;
}

template <typename T> void checkUniqueIds(std::vector<T> const& entries, std::string const& path) {
    std::set<uint64_t> ids;
    for (auto const& e : entries)
        if (!ids.insert(e.id).second)
            throw ScenarioError(path + ": id " + std::to_string(e.id) + " used twice");
}

World readWorld(Value const& json) {
    if (!json.isObject()) throw ScenarioError("scenario: expected an object");
    Fields f(json, "");
    World w;
    w.libraryPath = f.text("libraryPath", "");
    w.controlPanelOpened = static_cast<int32_t>(f.integer("controlPanelOpened", 0, 0, INT32_MAX));
    {
        Fields c(f.any("compatibilityProcess"), "compatibilityProcess");
        CompatibilityProcess& p = w.compatibility;
        p.supported = c.boolean("supported", false);
        p.launchResult = static_cast<int32_t>(c.integer("launchResult", 0, INT32_MIN, INT32_MAX));
        p.quitResult = static_cast<int32_t>(c.integer("quitResult", 0, INT32_MIN, INT32_MAX));
        p.running = c.boolean("running", false);
        Value const& launched = c.array("launched");
        for (size_t i = 0; i < launched.size(); ++i) {
            Fields l(launched[static_cast<unsigned long>(i)], item("compatibilityProcess.launched", i));
            p.launched.push_back({l.text("path", ""), l.text("application", "")});
            l.finish();
        }
        c.finish();
    }
    Value const& devices = f.array("devices");
    for (size_t i = 0; i < devices.size(); ++i)
        w.devices.push_back(readDevice(devices[static_cast<unsigned long>(i)], item("devices", i), false));
    {
        Fields names(f.any("modelNames"), "modelNames");
        for (auto const& member : f.any("modelNames").objectRef()) {
            char* end = nullptr;
            unsigned long const id = std::strtoul(member.first.c_str(), &end, 10);
            if (member.first.empty() || *end != '\0' || id > UINT32_MAX)
                names.fail(member.first, "a decimal device id as key");
            w.modelNames[static_cast<uint32_t>(id)] = names.text(member.first.c_str(), "");
        }
        names.finish();
    }
    Value const& monitors = f.array("monitors");
    std::set<uint64_t> hids;
    for (size_t i = 0; i < monitors.size(); ++i) {
        w.monitors.push_back(readMonitor(monitors[static_cast<unsigned long>(i)], item("monitors", i)));
        if (!hids.insert(w.monitors.back().hidHandle).second)
            throw ScenarioError(item("monitors", i) + ": HID handle used twice");
    }
    {
        Fields u(f.any("usb"), "usb");
        Value const& names = u.array("devices");
        for (size_t i = 0; i < names.size(); ++i) {
            Value const& n = names[static_cast<unsigned long>(i)];
            if (!n.isString()) throw ScenarioError(item("usb.devices", i) + ": expected a string");
            w.usbDevices.push_back(n.stringRef());
        }
        w.usbSnapshotFails = u.boolean("snapshotFails", false);
        u.finish();
    }
    Value const& correlations = f.array("correlationDatabase");
    for (size_t i = 0; i < correlations.size(); ++i)
        w.correlationDatabase.push_back(readCorrelationEntry(correlations[static_cast<unsigned long>(i)],
                                                             item("correlationDatabase", i)));
    checkUniqueIds(w.correlationDatabase, "correlationDatabase");
    Value const& matrices = f.array("matrixDatabase");
    for (size_t i = 0; i < matrices.size(); ++i)
        w.matrixDatabase.push_back(
            readMatrixEntry(matrices[static_cast<unsigned long>(i)], item("matrixDatabase", i)));
    checkUniqueIds(w.matrixDatabase, "matrixDatabase");
    f.finish();
    return w;
}

} // namespace

bool readScenario(Value const& json, World* world, std::string* error) {
    try {
        *world = readWorld(json);
        return true;
    } catch (ScenarioError const& e) {
        if (error != nullptr) *error = e.what();
        return false;
    }
}

} // namespace sim

// The correlation database of the correction library: listing, finding the
// entry equal to the monitor's current data, adding the monitor's data.
#include "devices/corvane.h"
#include "devices/pallast.h"
#include "sensorcontrol/bridge/Device.h"
#include "sensorcontrol/bridge/SensorCorrelationControl.h"
#include "sensorcontrol/bridge/SensorCorrelationDetail.h"
#include "sensorcontrol/bridge/SensorHelpers.h"
#include "share/error_check.h"
#include "share/json_utils.h"
#include "share/lib/libcorvaneLoader.h"
#include "share/record_compare.h"

namespace tovel {
namespace bridge {

using quilljson::Value;
using namespace detail;

namespace {

char const kResource[] = "Correlation/Database";

Value ReferenceSensor(int32_t deviceID, std::string const& serial) {
    Value reference = Value::object();
    reference["deviceID"] = deviceID;
    reference["serial"] = serial;
    return reference;
}

Value Monitor(std::string const& product, std::string const& serial, uint16_t panelRevision) {
    Value monitor = Value::object();
    monitor["product"] = product;
    monitor["serial"] = serial;
    monitor["panelRevision"] = static_cast<int>(panelRevision);
    return monitor;
}

Value DateJson(CSSG2_Date const& date) {
    return ToJson(DateTimeFromCSSG2Date(date), true, false, false);
}

// The stored record of entry id in its JSON form, of the sensor's family.
Value StoredCorrelationData(libcorvaneLoader& corvane, uint64_t id, bool ifsv3) {
    if (ifsv3) {
        MDIFSv3CorrelationData record = Zeroed<MDIFSv3CorrelationData>();
        BridgeCheckDvError(TOVEL_EXEC(corvane, MDGetIFSv3CorrelationData, id, &record),
                           "Get correlation data.");
        return ToJson(record);
    }
    MDCSSG2CorrelationDataEx record = Zeroed<MDCSSG2CorrelationDataEx>();
    BridgeCheckDvError(TOVEL_EXEC(corvane, MDGetCSSG2CorrelationDataEx, id, &record),
                       "Get correlation data.");
    return ToJson(record);
}

} // namespace

BridgeResult SensorCorrelationDatabase::Get(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, kResource);
    void* hid = GetHIDHandle(device);
    libcorvaneLoader& corvane = libcorvaneLoader::loader();

    if (HasQuery(data, "available")) {
        MDDeviceID const deviceID = MDGetDeviceID(device);
        std::string const serial = Text(MDGetSerialNumber(device));
        Value list = Value::array();
        for (uint64_t index = 0;; ++index) {
            MDCorrelationInfo info = Zeroed<MDCorrelationInfo>();
            uint64_t id = 0;
            if (TOVEL_EXEC(corvane, MDEnumCorrelationInfo, deviceID, serial.c_str(), index, &info, &id)
                    .code != 0)
                break;
            Value entry = Value::object();
            entry["id"] = id;
            entry["referenceSensor"] =
                ReferenceSensor(info.referenceDeviceID, BufferText(info.referenceSerial));
            entry["monitor"] =
                Monitor(BufferText(info.monitorProduct), BufferText(info.monitorSerial), info.panelRevision);
            CSSG2_Date date = Zeroed<CSSG2_Date>();
            // An entry whose date cannot be read is listed without one.
            if (TOVEL_EXEC(corvane, MDGetCorrelationDataDate, id, &date).code >= 0)
                entry["date"] = DateJson(date);
            list.append(entry);
        }
        return BridgeResultOK(list);
    }

    MDDeviceID const deviceID = MDGetDeviceID(device);
    std::string const serial = Text(MDGetSerialNumber(device));
    MonitorIdentity monitor = GetMonitorIdentity(hid);
    DvCtrlHZEPriority priority = 0;
    ApplyBuiltinSensorDataIndex(hid, &priority, false);
    Value const current = GetCorrelationData(hid, device, priority, false);
    bool const ifsv3 = IsIFSv3Kind(deviceID);

    for (uint64_t index = 0;; ++index) {
        MDCorrelationInfo info = Zeroed<MDCorrelationInfo>();
        uint64_t id = 0;
        if (TOVEL_EXEC(corvane, MDEnumCorrelationInfo, deviceID, serial.c_str(), index, &info, &id).code != 0)
            return BridgeResultOK(Value());
        Value const stored = StoredCorrelationData(corvane, id, ifsv3);
        bool const equal = ifsv3 ? MDIFSv3CorrelationDataEquals(stored, current)
                                 : MDCSSG2CorrelationDataExEquals(stored, current);
        if (!equal) continue;

        CSSG2_Date date = Zeroed<CSSG2_Date>();
        BridgeCheckDvError(TOVEL_EXEC(corvane, MDGetCorrelationDataDate, id, &date),
                           "Get correlation data date.");
        Value entry = Value::object();
        entry["id"] = id;
        entry["referenceSensor"] = ReferenceSensor(info.referenceDeviceID, BufferText(info.referenceSerial));
        // The monitor as it is now, not as the entry recorded it, with its texts
        // named as the database names them.
        entry["monitor"] =
            Monitor(BufferText(monitor.serial), BufferText(monitor.product), monitor.panelRevision);
        entry["date"] = DateJson(date);
        return BridgeResultOK(entry);
    }
}

BridgeResult SensorCorrelationDatabase::Post(BridgeData const& data) {
    void* device = GetMDHandle(data, &uri, kResource);
    void* hid = GetHIDHandle(device);
    MonitorIdentity monitor = GetMonitorIdentity(hid);
    MDDeviceID const deviceID = MDGetDeviceID(device);
    std::string const serial = Text(MDGetSerialNumber(device));

    Value const& request = data.data;
    Value const& reference = request["referenceSensor"];
    MDDeviceID const referenceDeviceID = static_cast<MDDeviceID>(JsonToInt32(reference["deviceID"]));
    std::string const referenceSerial = StringOf(reference["serial"]);
    bool const dated = !request["date"].isNull();
    CSSG2_Date const date = CSSG2DateFromDateTime(DateTimeFromJson(request["date"]));

    libcorvaneLoader& corvane = libcorvaneLoader::loader();
    uint64_t id = 0;
    DvError added;
    if (IsIFSv3Kind(deviceID)) {
        MDIFSv3CorrelationData const record = MDIFSv3CorrelationDataFromJson(request["correlationData"]);
        added = TOVEL_EXEC(corvane, MDAddIFSv3CorrelationData, deviceID, serial.c_str(), referenceDeviceID,
                           referenceSerial.c_str(), monitor.databaseProduct(), monitor.databaseSerial(),
                           monitor.panelRevision, record, dated ? &date : nullptr, &id);
    } else {
        MDCSSG2CorrelationDataEx const record = MDCSSG2CorrelationDataExFromJson(request["correlationData"]);
        if (dated)
            added = TOVEL_EXEC(corvane, MDAddCSSG2CorrelationDataWithDateEx, deviceID, serial.c_str(),
                               referenceDeviceID, referenceSerial.c_str(), monitor.databaseProduct(),
                               monitor.databaseSerial(), monitor.panelRevision, record, date, &id);
        else
            added = TOVEL_EXEC(corvane, MDAddCSSG2CorrelationDataEx, deviceID, serial.c_str(),
                               referenceDeviceID, referenceSerial.c_str(), monitor.databaseProduct(),
                               monitor.databaseSerial(), monitor.panelRevision, record, &id);
    }
    BridgeCheckDvError(added, "Add correlation data to database.");
    Value result = Value::object();
    result["id"] = id;
    return BridgeResultOK(result);
}

} // namespace bridge
} // namespace tovel

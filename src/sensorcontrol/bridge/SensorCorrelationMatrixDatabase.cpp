// Correlation matrices in the correlation database, keyed by the sensor, the
// reference sensor and the monitor.
#include "devices/corvane.h"
#include "devices/dvc.h"
#include "devices/pallast.h"
#include "sensorcontrol/bridge/Device.h"
#include "sensorcontrol/bridge/SensorCorrelationControl.h"
#include "sensorcontrol/bridge/SensorCorrelationDetail.h"
#include "sensorcontrol/bridge/SensorHelpers.h"
#include "share/error_check.h"
#include "share/json_utils.h"
#include "share/lib/libcorvaneLoader.h"
#include "share/lib/libdvcLoader.h"

namespace tovel {
namespace bridge {

using quilljson::Value;
using namespace detail;

namespace {

// What both methods start with.
struct Frame {
    Frame(BridgeData const& data, std::string* uri)
        : device(GetMDHandle(data, uri, "CorrelationMatrix/Database")), hid(GetHIDHandle(device)),
          deviceID(MDGetDeviceID(device)), monitor(GetMonitorIdentity(hid)) {}

    void* const device;
    void* const hid;
    MDDeviceID const deviceID;
    MonitorIdentity monitor; // the library takes the monitor texts as writable buffers
};

Value Entry(unsigned long id, MDDeviceID referenceDeviceID, std::string const& referenceSerial,
            std::string const& product, std::string const& serial, uint16_t panelRevision) {
    Value reference = Value::object();
    reference["deviceID"] = referenceDeviceID;
    reference["serial"] = referenceSerial;
    Value monitor = Value::object();
    monitor["product"] = product;
    monitor["serial"] = serial;
    monitor["panelRevision"] = static_cast<int>(panelRevision);
    Value entry = Value::object();
    entry["id"] = id;
    entry["referenceSensor"] = reference;
    entry["monitor"] = monitor;
    return entry;
}

Value DateJson(CSSG2_Date const& date) {
    return ToJson(DateTimeFromCSSG2Date(date), true, false, false);
}

} // namespace

BridgeResult SensorCorrelationMatrixDatabase::Get(BridgeData const& data) {
    Frame frame(data, &uri);
    MonitorIdentity& monitor = frame.monitor;
    libcorvaneLoader& corvane = libcorvaneLoader::loader();

    if (HasQuery(data, "available")) {
        Value list = Value::array();
        for (unsigned long index = 0;; ++index) {
            MDCorrelationMatrixInfo info = Zeroed<MDCorrelationMatrixInfo>();
            unsigned long id = 0;
            if (TOVEL_EXEC(corvane, MDEnumCorrelationMatrixInfo, frame.deviceID, monitor.databaseProduct(),
                           monitor.panelRevision, index, &info, &id)
                    .code != 0)
                break;
            Value entry =
                Entry(id, info.referenceDeviceID, BufferText(info.referenceSerial),
                      BufferText(info.monitorProduct), BufferText(info.monitorSerial), info.panelRevision);
            CSSG2_Date date = Zeroed<CSSG2_Date>();
            // A matrix whose date cannot be read is listed without one.
            if (TOVEL_EXEC(corvane, MDGetCorrelationMatrixDate, id, &date).code >= 0)
                entry["date"] = DateJson(date);
            list.append(entry);
        }
        return BridgeResultOK(list);
    }

    // The matrix recorded with the monitor's current description.
    DvCtrlHZEPriority priority = 0;
    ApplyBuiltinSensorDataIndex(frame.hid, &priority, false);
    Value const description = GetCorrelationDescription(frame.hid);
    DateTime const described = DateTimeFromJson(description["date"]);
    Value const& reference = description["referenceSensor"];
    MDDeviceID const referenceDeviceID =
        static_cast<MDDeviceID>(JsonToInt64Truncating(reference["deviceID"]));
    std::string const referenceSerial = StringOf(reference["serial"]);

    unsigned long id = 0;
    if (TOVEL_EXEC(corvane, MDGetLatestCorrelationMatrixID, frame.deviceID, referenceDeviceID,
                   referenceSerial.c_str(), monitor.databaseProduct(), monitor.panelRevision, &id)
            .code < 0)
        return BridgeResultOK(Value());
    CSSG2_Date date = Zeroed<CSSG2_Date>();
    BridgeCheckDvError(TOVEL_EXEC(corvane, MDGetCorrelationMatrixDate, id, &date),
                       "Get correlation matrix data date.");
    bool const sameDate = date.year == described.year && date.month == described.month &&
                          date.day == described.day && date.hour == described.hour &&
                          date.minute == described.minute && described.second == 0 && described.msec == 0;
    if (!sameDate) return BridgeResultOK(Value());

    // The monitor's texts named as the database names them.
    Value entry = Entry(id, referenceDeviceID, referenceSerial, BufferText(monitor.serial),
                        BufferText(monitor.product), monitor.panelRevision);
    entry["date"] = DateJson(date);
    return BridgeResultOK(entry);
}

BridgeResult SensorCorrelationMatrixDatabase::Post(BridgeData const& data) {
    Frame frame(data, &uri);
    MonitorIdentity& monitor = frame.monitor;
    std::string const sensorSerial = Text(MDGetSerialNumber(frame.device));

    libdvcLoader& dvc = libdvcLoader::loader();
    int dataPage = 0;
    if (TOVEL_EXEC(dvc, DvCtrlSupportedHZEPriority, monitor.product, monitor.serial) != 0) {
        DvCtrlHZEPriority priority = 0;
        BridgeCheckDvError(TOVEL_EXEC(dvc, DvCtrlGetHZEPriority, monitor.product, monitor.serial, &priority),
                           "Get HZE priority.");
        dataPage = priority == 2 ? 1 : 0;
    }

    Value const& request = data.data;
    unsigned long const correlationID = JsonToUInt64Truncating(request["correlationID"]);
    Value const& reference = request["referenceSensor"];
    MDDeviceID const referenceDeviceID =
        static_cast<MDDeviceID>(JsonToInt64Truncating(reference["deviceID"]));
    std::string const referenceSerial = StringOf(reference["serial"]);
    bool const dated = !request["date"].isNull();
    CSSG2_Date const date = CSSG2DateFromDateTime(DateTimeFromJson(request["date"]));
    double matrix[9] = {};
    CorrelationMatrixFromJson(request["correlationData"]["matrix"], &matrix);

    unsigned long id = 0;
    BridgeCheckDvError(TOVEL_EXEC(libcorvaneLoader::loader(), MDAddCorrelationMatrix, frame.deviceID,
                                  sensorSerial.c_str(), referenceDeviceID, referenceSerial.c_str(),
                                  monitor.databaseProduct(), monitor.databaseSerial(), monitor.panelRevision,
                                  dataPage, correlationID, matrix, dated ? &date : nullptr, &id),
                       "Add correlation matrix data to database.");
    Value result = Value::object();
    result["id"] = id;
    return BridgeResultOK(result);
}

} // namespace bridge
} // namespace tovel

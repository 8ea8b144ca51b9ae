// Reading and writing the correlation items a monitor's built-in sensor holds:
// the reference-sensor description, the correlation data and the XYZ
// correction matrix. Every function that talks to the monitor holds its
// MonitorLock for its device calls; failures leave by BridgeCheckDvError.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>

#include "devices/records.h"
#include "quilljson/value.h"

namespace tovel {
namespace bridge {
namespace detail {

// Selects which stored data set later calls address: the factory set when
// factory is true, the current one otherwise. With HZE priority support the
// priority is read (and stored through priority when not null) and picks the
// index of the data page.
void ApplyBuiltinSensorDataIndex(void* monitor, DvCtrlHZEPriority* priority, bool factory);

// {"date": ..., "referenceSensor": {"deviceID", "serial"}}, or null when the
// monitor holds no description at all.
quilljson::Value GetCorrelationDescription(void* monitor);
// Writes date, device id and serial (at most 32 characters); a null value
// writes an empty description.
void SetCorrelationDescription(void* monitor, quilljson::Value const& json);

// The correlation data of the family chosen by the reference device's kind
// (see IsIFSv3Kind). factory chooses the luminance-level mode.
quilljson::Value GetCorrelationData(void* monitor, void* device, DvCtrlHZEPriority priority, bool factory);
// Writes only the parts the request names (members of an object).
void SetCorrelationData(void* monitor, void* device, DvCtrlHZEPriority priority, quilljson::Value const& json,
                        bool factory);

// 8 rows of 3 where the monitor supports the 8x3 form, else 3 rows of 3.
quilljson::Value GetCorrelationMatrixData(void* monitor);
// Reduces either JSON form to the 3x3 matrix; 400 for a non-array or fewer
// than 3 rows. From 8 rows on, rows 1 to 3 are taken transposed.
void CorrelationMatrixFromJson(quilljson::Value const& json, double (*out)[9]);
void SetCorrelationMatrixData(void* monitor, quilljson::Value const& json);

// ---- shared by the correlation endpoints ----

// Device ids 0x130 and 0x131 keep first-generation (IFSv3) correlation records.
inline bool IsIFSv3Kind(uint32_t deviceID) {
    return (deviceID | 1u) == 0x131u;
}

// A device library's text buffer, which may fill its whole length.
template <size_t N> std::string BufferText(char const (&buffer)[N]) {
    return std::string(buffer, strnlen(buffer, N));
}

// A string member's text; any other kind reads as the empty text.
inline std::string StringOf(quilljson::Value const& value) {
    return value.isString() ? value.stringRef() : std::string();
}

// A monitor as the correlation databases key it.
//
// The device libraries have always been called with these texts in fixed
// positions, which are kept: the monitor-control functions take the
// 9-character text first (where they name the serial), and the database
// functions take the 17-character text where they name the monitor product
// and the 9-character text where they name the monitor serial. The database
// endpoints name the monitor's texts in their answers the same way, so that an
// entry found for the monitor reads like the entry the database lists.
struct MonitorIdentity {
    char product[9] = {}; // as the monitor list reports them
    char serial[17] = {};
    uint16_t panelRevision = 0;

    char* databaseProduct() { return serial; }
    char* databaseSerial() { return product; }
};
// The monitor of a HID handle (404 when no monitor has it) and its panel revision.
MonitorIdentity GetMonitorIdentity(void* monitor);

} // namespace detail
} // namespace bridge
} // namespace tovel

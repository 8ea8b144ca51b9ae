// colord's errors as the device libraries' codes: the one table of linux/README.md.
#pragma once

#include <glib.h>

#include "codes.h"

namespace pallast {

// What the caller was doing: opening a sensor by id, or using an open handle.
// A sensor that has left the bus (unplugged, or colord stopped) is a
// connection error while opening and a closed handle afterwards.
enum class CallSite { Opening, OpenHandle };

// The code of a failed call; also tells whether the sensor has gone away.
int32_t codeForError(GError const* error, CallSite site);
bool sensorIsGone(GError const* error);
// A Required...Calibrate answer: the sensor must be calibrated before it measures.
bool needsCalibration(GError const* error);

} // namespace pallast

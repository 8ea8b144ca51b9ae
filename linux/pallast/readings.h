// Readings from colord under its lock. The caller holds sensor.device->mutex.
#pragma once

#include <cstdint>
#include <vector>

#include "open_sensors.h"

namespace pallast {

// Lock, GetSample(cap), Unlock. 0 or the code of the first failure; a sensor
// that has left the bus is marked gone, a Required...Calibrate answer marks the
// device as needing calibration.
int32_t readSample(OpenSensor& sensor, char const* cap, double xyz[3]);

// Lock, GetSpectrum(cap), Unlock.
int32_t readSpectrum(OpenSensor& sensor, char const* cap, double* startNm, double* endNm,
                     std::vector<double>* values);

} // namespace pallast

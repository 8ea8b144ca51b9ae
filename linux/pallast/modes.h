// Measuring modes: the mode numbers of MDSetMode and the colord caps they read with.
#pragma once

#include <cstdint>

#include "colord_sensors.h"

namespace pallast {

// The colord cap of a mode number, or null for a number the table lacks
// (linux/README.md lists the table).
char const* capForMode(int32_t mode);

// colord answers CIE 1931 2-degree XYZ only; this is its observer key.
constexpr int32_t kObserver2Degree = 0;

// The first mode of the table whose cap the sensor has (-1: none).
int32_t defaultModeFor(SensorInfo const& info);

bool measuresReflectance(SensorInfo const& info);

} // namespace pallast

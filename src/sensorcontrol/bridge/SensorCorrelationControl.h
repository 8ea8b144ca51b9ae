// Correlation of a monitor's built-in sensor with a reference sensor.
#pragma once

#include "share/bridge.h"

namespace tovel {
namespace bridge {

class SensorCorrelation : public Bridge {};
class SensorCorrelation9Points : public Bridge {};
class SensorCorrelationDescription : public Bridge {};
class SensorCorrelationData : public Bridge {};
class SensorCorrelationDatabase : public Bridge {};
class SensorCorrelationMatrix : public Bridge {};
class SensorCorrelationMatrixData : public Bridge {};
class SensorCorrelationMatrixDatabase : public Bridge {};

} // namespace bridge
} // namespace tovel

#include "share/lib/libquorSensorLoader.h"

namespace tovel {

TOVEL_DEFINE_LOADER(libquorSensorLoader, "libquorSensor", "libquorSensor does not have a requested function.")

} // namespace tovel

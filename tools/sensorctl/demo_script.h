// The guided tour of "sensorctl demo" through the default simulated world.
#pragma once

#include <vector>

#include "script_runner.h"

namespace sensorctl {

std::vector<ScriptLine> DemoScript();

} // namespace sensorctl

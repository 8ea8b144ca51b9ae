// Answers the gateway writes itself, in the library's response envelope, so a
// client reads every answer the same way.
#pragma once

#include <string>

#include "quilljson/value.h"

namespace sensorctl::gateway {

// {"error":{"message":MESSAGE,"name":NAME},"value":null}
std::string ErrorEnvelope(std::string const& name, std::string const& message);

// {"error":null,"value":VALUE}
std::string ValueEnvelope(quilljson::Value const& value);

} // namespace sensorctl::gateway

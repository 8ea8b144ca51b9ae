// The OpenAPI 3 description of the gateway, made from the route table so that
// the two cannot tell different stories.
#pragma once

#include <string>

#include "quilljson/value.h"

namespace sensorctl::gateway {

quilljson::Value OpenApi();
std::string OpenApiDescription(); // OpenApi() as compact JSON

} // namespace sensorctl::gateway

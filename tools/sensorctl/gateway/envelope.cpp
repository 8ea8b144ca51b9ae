#include "envelope.h"

#include "quilljson/serializer.h"

namespace sensorctl::gateway {

std::string ErrorEnvelope(std::string const& name, std::string const& message) {
    quilljson::Value response = quilljson::Value::object();
    quilljson::Value& error = response["error"];
    error["name"] = quilljson::Value(name);
    error["message"] = quilljson::Value(message);
    response["value"] = quilljson::Value();
    return quilljson::Serializer::toText(response);
}

std::string ValueEnvelope(quilljson::Value const& value) {
    quilljson::Value response = quilljson::Value::object();
    response["error"] = quilljson::Value();
    response["value"] = value;
    return quilljson::Serializer::toText(response);
}

} // namespace sensorctl::gateway

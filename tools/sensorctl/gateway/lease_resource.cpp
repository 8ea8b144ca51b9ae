#include "lease_resource.h"

#include "envelope.h"
#include "quilljson/parser.h"
#include "routes.h"

namespace sensorctl::gateway {

namespace {

quilljson::Value LeaseValue(Lease const& lease, int seconds) {
    quilljson::Value value = quilljson::Value::object();
    value["token"] = quilljson::Value(lease.token);
    value["owner"] = quilljson::Value(lease.owner);
    value["expires"] = quilljson::Value(lease.expiresText);
    value["seconds"] = quilljson::Value(seconds);
    return value;
}

Answer BadRequest(std::string const& message) {
    return {400, ErrorEnvelope("BadRequestError", message)};
}

} // namespace

Answer LeasedAnswer(std::string const& sensor, Lease const& lease) {
    return {409, ErrorEnvelope("LeaseError", "Sensor " + sensor + " is leased by \"" + lease.owner +
                                                 "\" until " + lease.expiresText +
                                                 "; send the lease token in the Sensor-Lease header.")};
}

Answer LeaseResource::serve(Method method, std::string const& sensor, std::string const& body,
                            std::string const& presented) {
    if (method == Method::Put) return take(sensor, body, presented);
    if (method == Method::Delete) return release(sensor, presented);
    return {405, ErrorEnvelope("MethodError", std::string(MethodName(method)) + " method is not allowed.")};
}

Answer LeaseResource::take(std::string const& sensor, std::string const& body, std::string const& presented) {
    quilljson::Value request;
    if (!quilljson::Parser().parse(&request, body) || !request.isObject())
        return BadRequest("data must be an object with owner and seconds.");
    quilljson::Value const& owner = request["owner"];
    if (!owner.isString() || owner.stringRef().empty()) return BadRequest("data must have owner.");
    quilljson::Value const& seconds = request["seconds"];
    if (!seconds.isInteger() || seconds.getInteger() < 1 || seconds.getInteger() > maxSeconds_)
        return BadRequest("data must have seconds from 1 to " + std::to_string(maxSeconds_) + ".");

    // Only an open sensor can be leased: the library's own answer says whether it is.
    CallTexts const texts = MakeCallTexts(Method::Get, {{"id", sensor}}, {}, "");
    Response const description = library_.call("Sensor", texts);
    if (description.status != 200) return {static_cast<int>(description.status), description.text};

    int const duration = static_cast<int>(seconds.getInteger());
    Lease lease;
    switch (leases_.take(sensor, owner.stringRef(), duration, presented, &lease)) {
    case LeaseTable::Outcome::HeldByOther:
        return LeasedAnswer(sensor, lease);
    default:
        return {200, ValueEnvelope(LeaseValue(lease, duration))};
    }
}

Answer LeaseResource::release(std::string const& sensor, std::string const& presented) {
    Lease lease;
    switch (leases_.release(sensor, presented, &lease)) {
    case LeaseTable::Outcome::NotLeased:
        return {404, ErrorEnvelope("Error", "Sensor " + sensor + " has no lease.")};
    case LeaseTable::Outcome::HeldByOther:
        return LeasedAnswer(sensor, lease);
    default:
        return {200, ValueEnvelope(quilljson::Value())};
    }
}

} // namespace sensorctl::gateway

#include "resource_forwarder.h"

#include "envelope.h"
#include "quilljson/parser.h"
#include "quilljson/serializer.h"
#include "routes.h"

namespace sensorctl::gateway {

namespace {

// The query as the tool reads it, each piece percent-decoded.
bool ParseHttpQuery(std::string const& target, std::vector<QueryItem>* query, std::string* error) {
    size_t const question = target.find('?');
    if (question == std::string::npos) return true;
    if (!ParseQuery(std::string_view(target).substr(question + 1), query, error)) return false;
    for (QueryItem& item : *query) {
        item.key = httplib::detail::decode_url(item.key, true);
        if (item.value) *item.value = httplib::detail::decode_url(*item.value, true);
    }
    return true;
}

std::string Parameter(RouteMatch const& match, char const* name) {
    for (auto const& [key, value] : match.parameters)
        if (key == name) return value;
    return std::string();
}

bool HasParameter(RouteMatch const& match, char const* name) {
    for (auto const& parameter : match.parameters)
        if (parameter.first == name) return true;
    return false;
}

} // namespace

ResourceForwarder::ResourceForwarder(HostLibrary& library, EventHub& events, int maxLeaseSeconds)
    : library_(library), events_(events), leaseResource_(library, leases_, maxLeaseSeconds) {
    for (Route const& route : Routes())
        endpoints_.push_back(route.kind == RouteKind::Gateway ? nullptr : library.endpoint(route.exportName));
}

void ResourceForwarder::serve(httplib::Request const& request, httplib::Response& response) {
    Answer answer;
    Method method = Method::Get;
    RouteMatch match;
    std::vector<QueryItem> query;
    std::string error;
    if (!ParseMethod(request.method, &method) || request.method != MethodName(method)) {
        answer = {405, ErrorEnvelope("MethodError", request.method + " method is not allowed.")};
    } else if ((match = MatchRoute(method, request.path, true)).route == nullptr || request.path.empty() ||
               request.path[0] != '/') {
        answer = {404, ErrorEnvelope("Error", "No resource at " + request.path + ".")};
    } else if (!ParseHttpQuery(request.target, &query, &error)) {
        answer = {400, ErrorEnvelope("BadRequestError", error + ".")};
    } else {
        answer = forward(method, match, query, request);
    }
    response.status = answer.status;
    response.set_content(answer.body, "application/json");
}

Answer ResourceForwarder::forward(Method method, RouteMatch const& match, std::vector<QueryItem> const& query,
                                  httplib::Request const& request) {
    Route const& route = *match.route;
    std::string const presented = request.get_header_value("Sensor-Lease");
    bool const forSensor = HasParameter(match, "id");
    std::string const sensor = Parameter(match, "id");

    if (route.kind != RouteKind::Gateway && method == Method::Delete &&
        std::string(route.exportName) == "Sensors") {
        // Closing every sensor would close the leased ones too.
        std::vector<std::string> leased = leases_.leased();
        if (!leased.empty())
            return {409, ErrorEnvelope("LeaseError", "Sensor " + leased.front() +
                                                         " is leased; its lease must end before every sensor "
                                                         "is closed.")};
    }

    // Built before the sensor's turn, which only the library call needs.
    CallTexts const texts = route.kind == RouteKind::Gateway
                                ? CallTexts()
                                : MakeCallTexts(method, match.parameters, query, request.body);
    Answer answer;
    std::function<void()> const inTurn = [&] {
        answer = forwardInTurn(method, route, sensor, forSensor, presented, texts, request);
    };
    if (forSensor)
        queues_.run(sensor, inTurn);
    else
        inTurn();
    return answer;
}

Answer ResourceForwarder::forwardInTurn(Method method, Route const& route, std::string const& sensor,
                                        bool forSensor, std::string const& presented, CallTexts const& texts,
                                        httplib::Request const& request) {
    if (route.kind == RouteKind::Gateway)
        return leaseResource_.serve(method, sensor, request.body, presented);

    // Reading the description is open to everyone; everything else of a
    // leased sensor (a measurement drives the instrument) needs the token.
    bool const describes = method == Method::Get && std::string(route.exportName) == "Sensor";
    if (forSensor && !describes) {
        if (std::optional<Lease> lease = leases_.blocking(sensor, presented))
            return LeasedAnswer(sensor, *lease);
    }

    HostLibrary::Endpoint endpoint = endpoints_[&route - Routes().data()];
    if (endpoint == nullptr)
        return {404, ErrorEnvelope("FunctionNotFoundError",
                                   std::string(route.exportName) + " is not exported by the library.")};
    Response response = library_.call(endpoint, texts);
    if (!response.stored)
        return {500, ErrorEnvelope("UnknownError", "The library stored no response for the request.")};

    if (response.status == 200) {
        if (method == Method::Delete && std::string(route.exportName) == "Sensor") leases_.forget(sensor);
        if (route.kind == RouteKind::Reading && events_.hasSubscribers())
            publishReading(sensor, request.path, response.text);
    }
    return {static_cast<int>(response.status), std::move(response.text)};
}

void ResourceForwarder::publishReading(std::string const& sensor, std::string const& path,
                                       std::string const& text) {
    quilljson::Value parsed;
    if (!quilljson::Parser().parse(&parsed, text)) return;
    quilljson::Value event = quilljson::Value::object();
    event["sensor"] = quilljson::Value(sensor);
    event["path"] = quilljson::Value(path);
    event["value"] = parsed["value"];
    events_.publish("reading", quilljson::Serializer::toText(event));
}

} // namespace sensorctl::gateway

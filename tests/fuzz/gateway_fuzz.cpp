// The gateway's side of a request, after the HTTP library has parsed it: route
// matching, query decoding, the export's four texts, leases and the sensor
// queues, over the default simulated world. The first byte picks a row of the
// route table, the second the method (bits 0-1), whether the path is written
// by the input rather than filled in from the row (bit 2) and whether a
// Sensor-Lease header is sent (bit 3). The rest is split at zero bytes: the
// target (bit 2), or the row's path parameters in order and the query; then
// the body and the lease token. "$s" stands for an open sensor's id. Every answer
// must be the response envelope with a status the gateway gives.
#include <httplib.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "envelope.h"
#include "event_hub.h"
#include "host_library.h"
#include "quilljson/parser.h"
#include "resource_forwarder.h"
#include "routes.h"

namespace {

char const* const kMethods[] = {"GET", "POST", "PUT", "DELETE"};

struct Served {
    sensorctl::HostLibrary library;
    sensorctl::gateway::EventHub events;
    std::unique_ptr<sensorctl::gateway::ResourceForwarder> forwarder;
};

Served& Gateway() {
    static Served* served = [] {
        auto* made = new Served; // lives as long as the process, as the server's would
        std::string error;
        if (!made->library.load(FUZZ_LIBRARY_PATH, &error)) {
            std::fprintf(stderr, "fuzz: %s\n", error.c_str());
            std::abort();
        }
        made->library.setup();
        made->forwarder =
            std::make_unique<sensorctl::gateway::ResourceForwarder>(made->library, made->events, 60);
        return made;
    }();
    return *served;
}

void CheckAnswer(httplib::Response const& response) {
    static int const kStatuses[] = {200, 400, 401, 404, 405, 409, 500};
    bool known = false;
    for (int status : kStatuses)
        known = known || response.status == status;
    quilljson::Value json;
    if (!known || !quilljson::Parser().parse(&json, response.body) || !json.isObject() || json.size() != 2 ||
        !json.contains("error") || !json.contains("value")) {
        std::fprintf(stderr, "fuzz: answer %d is not an envelope: %s\n", response.status,
                     response.body.c_str());
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
    if (size < 2) return 0;
    Served& served = Gateway();
    std::vector<sensorctl::Route> const& routes = sensorctl::Routes();
    sensorctl::Route const& route = routes[data[0] % routes.size()];
    bool const writtenPath = (data[1] & 0x04) != 0;
    bool const withLease = (data[1] & 0x08) != 0;

    std::vector<std::string> pieces(1);
    for (size_t i = 2; i < size; ++i) {
        if (data[i] == '\0')
            pieces.emplace_back();
        else
            pieces.back() += static_cast<char>(data[i]);
    }
    size_t next = 0;
    auto take = [&]() {
        return next < pieces.size() ? fuzz::Replace(pieces[next++], "$s", fuzz::SensorId(false))
                                    : std::string();
    };

    std::string target;
    if (writtenPath) {
        target = take(); // the query too, when it holds a '?'
    } else {
        std::string path;
        std::string const pattern = route.pattern;
        for (size_t at = 0; at < pattern.size();) {
            size_t const open = pattern.find('{', at);
            path += pattern.substr(at, open - at);
            if (open == std::string::npos) break;
            path += take();
            at = pattern.find('}', open) + 1;
        }
        std::string const query = take();
        target = query.empty() ? path : path + "?" + query;
    }

    httplib::Request request;
    request.method = kMethods[data[1] & 0x03];
    request.target = target;
    request.path = httplib::detail::decode_url(target.substr(0, target.find('?')), false);
    request.body = take();
    if (withLease) request.set_header("Sensor-Lease", take());
    httplib::Response response;
    served.forwarder->serve(request, response);
    CheckAnswer(response);
    return 0;
}

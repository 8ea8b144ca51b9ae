// Serves the resources of the route table over HTTP: the method, path
// parameters, query and body become the export's four texts, and the
// library's status and response text become the HTTP answer unchanged.
// Requests for one sensor run in arrival order and respect its lease.
#pragma once

#include <httplib.h>

#include <string>
#include <vector>

#include "event_hub.h"
#include "host_library.h"
#include "lease_resource.h"
#include "lease_table.h"
#include "routes.h"
#include "sensor_queues.h"

namespace sensorctl::gateway {

class ResourceForwarder {
public:
    ResourceForwarder(HostLibrary& library, EventHub& events, int maxLeaseSeconds);

    void serve(httplib::Request const& request, httplib::Response& response);

private:
    Answer forward(Method method, RouteMatch const& match, std::vector<QueryItem> const& query,
                   httplib::Request const& request);
    // The part that runs in the sensor's turn, on whichever thread holds its line.
    Answer forwardInTurn(Method method, Route const& route, std::string const& sensor, bool forSensor,
                         std::string const& presented, CallTexts const& texts,
                         httplib::Request const& request);
    void publishReading(std::string const& sensor, std::string const& path, std::string const& text);

    HostLibrary& library_;
    EventHub& events_;
    std::vector<HostLibrary::Endpoint> endpoints_; // by row of Routes()
    SensorQueues queues_;
    LeaseTable leases_;
    LeaseResource leaseResource_;
};

} // namespace sensorctl::gateway

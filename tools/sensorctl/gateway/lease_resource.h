// PUT and DELETE /Sensors/{id}/Lease: take, renew and release a sensor's
// lease. The lease itself is kept by LeaseTable; this class reads the
// request and writes the answer.
#pragma once

#include <string>

#include "host_library.h"
#include "lease_table.h"
#include "request_line.h"

namespace sensorctl::gateway {

struct Answer {
    int status;
    std::string body;
};

class LeaseResource {
public:
    LeaseResource(HostLibrary& library, LeaseTable& leases, int maxSeconds)
        : library_(library), leases_(leases), maxSeconds_(maxSeconds) {}

    // `presented` is the Sensor-Lease header ("" when absent).
    Answer serve(Method method, std::string const& sensor, std::string const& body,
                 std::string const& presented);

private:
    Answer take(std::string const& sensor, std::string const& body, std::string const& presented);
    Answer release(std::string const& sensor, std::string const& presented);

    HostLibrary& library_;
    LeaseTable& leases_;
    int const maxSeconds_;
};

// 409: the sensor is leased and the request did not carry the lease's token.
Answer LeasedAnswer(std::string const& sensor, Lease const& lease);

} // namespace sensorctl::gateway

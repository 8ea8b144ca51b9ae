// The HTTP library's server with the gateway's own loop over a kept-alive
// connection (ConnectionStream): one send per answer, one recv per request,
// no poll or address look-up per request. Parsing, routing and writing stay
// the library's.
#pragma once

#include <httplib.h>

namespace sensorctl::gateway {

class HttpServer : public httplib::Server {
private:
    bool process_and_close_socket(socket_t socket) override;
};

} // namespace sensorctl::gateway

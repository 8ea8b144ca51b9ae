#include "http_server.h"

#include <sys/socket.h>
#include <unistd.h>

#include "connection_stream.h"
#include "envelope.h"

namespace sensorctl::gateway {

namespace {

std::chrono::milliseconds Milliseconds(time_t seconds, time_t microseconds) {
    return std::chrono::milliseconds(seconds * 1000 + microseconds / 1000);
}

std::string HeadTooLargeAnswer() {
    std::string const body = ErrorEnvelope("RequestHeaderFieldsTooLargeError",
                                           "The request line and headers are larger than " +
                                               std::to_string(ConnectionStream::kHeadLimit) + " bytes.");
    return "HTTP/1.1 431 Request Header Fields Too Large\r\nContent-Type: application/json\r\n"
           "Content-Length: " +
           std::to_string(body.size()) + "\r\nConnection: close\r\nX-Content-Type-Options: nosniff\r\n\r\n" +
           body;
}

} // namespace

bool HttpServer::process_and_close_socket(socket_t socket) {
    bool served = false;
    {
        ConnectionStream stream(socket, Milliseconds(read_timeout_sec_, read_timeout_usec_),
                                Milliseconds(write_timeout_sec_, write_timeout_usec_), svr_sock_);
        for (size_t left = keep_alive_max_count_; left > 0 && svr_sock_ != INVALID_SOCKET; --left) {
            if (!stream.awaitRequest(std::chrono::seconds(keep_alive_timeout_sec_))) break;
            bool closeRequested = false;
            stream.beginRequest();
            served = process_request(stream, left == 1, closeRequested, nullptr);
            served = stream.flush() && served;
            if (stream.headTooLarge()) {
                served = stream.sendAnswer(HeadTooLargeAnswer());
                break;
            }
            if (!served || closeRequested) break;
        }
    }
    shutdown(socket, SHUT_RDWR);
    close(socket);
    return served;
}

} // namespace sensorctl::gateway

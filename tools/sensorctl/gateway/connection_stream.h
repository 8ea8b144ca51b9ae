// One kept-alive connection of the gateway as the HTTP library's stream.
// The library writes a response as its header block and then its body; held
// back until the next write, the two leave in one send, so the client wakes
// once per answer rather than twice. Reads come from a buffer kept for the
// whole connection and block in recv itself (no poll before each read).
// The HTTP library gathers header lines without a limit of their own, so the
// stream bounds a request's head: past kHeadLimit bytes its reads fail.
#pragma once

#include <httplib.h>

#include <atomic>
#include <chrono>
#include <string>

namespace sensorctl::gateway {

class ConnectionStream : public httplib::Stream {
public:
    using Clock = std::chrono::steady_clock;
    // The request line and headers of one request, at most.
    static constexpr size_t kHeadLimit = 65536;

    // `serving` turns false when the server stops: waits for data give up
    // within a fraction of a second then.
    ConnectionStream(socket_t socket, std::chrono::milliseconds readTimeout,
                     std::chrono::milliseconds writeTimeout, std::atomic<socket_t> const& serving);

    // Waits up to `idle` for the next request. False when the client closed
    // the connection, it stayed idle that long, or the server stops.
    bool awaitRequest(std::chrono::milliseconds idle);
    // Starts a request: the head is counted afresh, and the first write of its
    // answer may be held back for the next one.
    void beginRequest() {
        holdFirstWrite_ = true;
        headBytes_ = 0;
        readingHead_ = true;
    }
    // Sends what is held back; false when the client cannot take it.
    bool flush();
    // True once the request's head ran past kHeadLimit. Its reads failed, and
    // what the HTTP library answers to that is dropped: the caller sends its own
    // answer with sendAnswer and closes the connection.
    bool headTooLarge() const { return headTooLarge_; }
    bool sendAnswer(std::string const& text) { return sendAll(text.data(), text.size(), nullptr, 0); }

    bool is_readable() const override;
    bool is_writable() const override;
    ssize_t read(char* ptr, size_t size) override;
    ssize_t write(char const* ptr, size_t size) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    socket_t socket() const override { return socket_; }

private:
    // Reads into the empty buffer, waiting until `deadline`: the bytes read,
    // 0 at the end of the stream, -1 on an error or time-out.
    ssize_t fill(Clock::time_point deadline);
    bool sendAll(char const* first, size_t firstSize, char const* second, size_t secondSize);

    socket_t const socket_;
    std::chrono::milliseconds const readTimeout_;
    std::chrono::milliseconds const writeTimeout_;
    std::atomic<socket_t> const& serving_;
    std::string remoteAddress_;
    int remotePort_ = 0;
    std::string localAddress_;
    int localPort_ = 0;
    char buffer_[16384];
    size_t begin_ = 0;
    size_t end_ = 0;
    std::string held_;
    bool holdFirstWrite_ = false;
    size_t headBytes_ = 0;
    bool readingHead_ = false; // until the first read of more than a byte: the body's
    bool headTooLarge_ = false;
};

} // namespace sensorctl::gateway

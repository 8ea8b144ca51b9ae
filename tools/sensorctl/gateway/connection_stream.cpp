#include "connection_stream.h"

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/uio.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace sensorctl::gateway {

namespace {

// How long one recv may block before the stream looks whether the server is
// stopping: what an idle connection adds to stopping the server.
constexpr long kWaitSliceMicroseconds = 100000;

// A client that has gone must fail the send, not raise SIGPIPE: per send on
// Linux, per socket (SO_NOSIGPIPE) on macOS.
#ifdef MSG_NOSIGNAL
constexpr int kSendFlags = MSG_NOSIGNAL;
#else
constexpr int kSendFlags = 0;
#endif

void NumericAddress(sockaddr_storage const& address, socklen_t length, std::string* ip, int* port) {
    if (address.ss_family == AF_INET)
        *port = ntohs(reinterpret_cast<sockaddr_in const&>(address).sin_port);
    else if (address.ss_family == AF_INET6)
        *port = ntohs(reinterpret_cast<sockaddr_in6 const&>(address).sin6_port);
    else
        return;
    char host[NI_MAXHOST] = {};
    if (getnameinfo(reinterpret_cast<sockaddr const*>(&address), length, host, sizeof host, nullptr, 0,
                    NI_NUMERICHOST) == 0)
        *ip = host;
}

int Poll(socket_t socket, short events, std::chrono::milliseconds timeout) {
    pollfd entry{socket, events, 0};
    int result;
    do {
        result = poll(&entry, 1, static_cast<int>(timeout.count()));
    } while (result < 0 && errno == EINTR);
    return result;
}

} // namespace

ConnectionStream::ConnectionStream(socket_t socket, std::chrono::milliseconds readTimeout,
                                   std::chrono::milliseconds writeTimeout,
                                   std::atomic<socket_t> const& serving)
    : socket_(socket), readTimeout_(readTimeout), writeTimeout_(writeTimeout), serving_(serving) {
    timeval slice{0, kWaitSliceMicroseconds};
    setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &slice, sizeof slice);
    auto const writeMicros = std::chrono::duration_cast<std::chrono::microseconds>(writeTimeout).count();
    timeval write{static_cast<time_t>(writeMicros / 1000000),
                  static_cast<suseconds_t>(writeMicros % 1000000)};
    setsockopt(socket_, SOL_SOCKET, SO_SNDTIMEO, &write, sizeof write);
#ifdef SO_NOSIGPIPE
    int const yes = 1;
    setsockopt(socket_, SOL_SOCKET, SO_NOSIGPIPE, &yes, sizeof yes);
#endif
    // The addresses do not change: asked once, not for every request.
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    if (getpeername(socket_, reinterpret_cast<sockaddr*>(&address), &length) == 0)
        NumericAddress(address, length, &remoteAddress_, &remotePort_);
    length = sizeof address;
    if (getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &length) == 0)
        NumericAddress(address, length, &localAddress_, &localPort_);
}

bool ConnectionStream::awaitRequest(std::chrono::milliseconds idle) {
    return begin_ < end_ || fill(Clock::now() + idle) > 0;
}

ssize_t ConnectionStream::fill(Clock::time_point deadline) {
    for (;;) {
        ssize_t const received = recv(socket_, buffer_, sizeof buffer_, 0);
        if (received >= 0) {
            begin_ = 0;
            end_ = static_cast<size_t>(received);
            return received;
        }
        if (errno == EINTR) continue;
        if (errno != EAGAIN && errno != EWOULDBLOCK) return -1;
        if (serving_ == INVALID_SOCKET || Clock::now() >= deadline) return -1;
    }
}

bool ConnectionStream::is_readable() const {
    return begin_ < end_ || Poll(socket_, POLLIN, readTimeout_) > 0;
}

bool ConnectionStream::is_writable() const {
    return Poll(socket_, POLLOUT, writeTimeout_) > 0;
}

ssize_t ConnectionStream::read(char* ptr, size_t size) {
    // The HTTP library reads the request line and headers a byte at a time.
    if (size != 1) {
        readingHead_ = false;
    } else if (readingHead_ && ++headBytes_ > kHeadLimit) {
        headTooLarge_ = true;
        return -1;
    }
    if (size == 1 && begin_ < end_) {
        *ptr = buffer_[begin_++];
        return 1;
    }
    if (!held_.empty()) {
        // An interim answer (100 Continue) must reach the client before its body can arrive.
        if (!flush()) return -1;
        holdFirstWrite_ = true;
    }
    if (begin_ == end_) {
        ssize_t const received = fill(Clock::now() + readTimeout_);
        if (received <= 0) return received;
    }
    size_t const taken = std::min(size, end_ - begin_);
    std::memcpy(ptr, buffer_ + begin_, taken);
    begin_ += taken;
    return static_cast<ssize_t>(taken);
}

ssize_t ConnectionStream::write(char const* ptr, size_t size) {
    if (headTooLarge_) return static_cast<ssize_t>(size);
    if (holdFirstWrite_) {
        holdFirstWrite_ = false;
        held_.assign(ptr, size);
        return static_cast<ssize_t>(size);
    }
    bool const sent =
        held_.empty() ? sendAll(ptr, size, nullptr, 0) : sendAll(held_.data(), held_.size(), ptr, size);
    held_.clear();
    return sent ? static_cast<ssize_t>(size) : -1;
}

bool ConnectionStream::flush() {
    if (held_.empty()) return true;
    bool const sent = sendAll(held_.data(), held_.size(), nullptr, 0);
    held_.clear();
    return sent;
}

bool ConnectionStream::sendAll(char const* first, size_t firstSize, char const* second, size_t secondSize) {
    iovec parts[2] = {{const_cast<char*>(first), firstSize}, {const_cast<char*>(second), secondSize}};
    msghdr message{};
    message.msg_iov = parts;
    message.msg_iovlen = secondSize == 0 ? 1 : 2;
    while (message.msg_iovlen > 0) {
        ssize_t sent = sendmsg(socket_, &message, kSendFlags);
        if (sent < 0) {
            if (errno == EINTR) continue;
            return false; // SO_SNDTIMEO ran out, or the client has gone
        }
        while (message.msg_iovlen > 0 && static_cast<size_t>(sent) >= message.msg_iov->iov_len) {
            sent -= static_cast<ssize_t>(message.msg_iov->iov_len);
            ++message.msg_iov;
            --message.msg_iovlen;
        }
        if (message.msg_iovlen > 0) {
            message.msg_iov->iov_base = static_cast<char*>(message.msg_iov->iov_base) + sent;
            message.msg_iov->iov_len -= static_cast<size_t>(sent);
        }
    }
    return true;
}

void ConnectionStream::get_remote_ip_and_port(std::string& ip, int& port) const {
    ip = remoteAddress_;
    port = remotePort_;
}

void ConnectionStream::get_local_ip_and_port(std::string& ip, int& port) const {
    ip = localAddress_;
    port = localPort_;
}

} // namespace sensorctl::gateway

#include "gateway.h"

#include <sys/socket.h>

#include <chrono>

#include "connection_pool.h"
#include "console_assets.h"
#include "envelope.h"
#include "openapi.h"
#include "quilljson/serializer.h"

namespace sensorctl::gateway {

namespace {

using Clock = std::chrono::steady_clock;

// When the request being served on this thread started (set before routing,
// read when the answer has been written).
thread_local Clock::time_point t_started;

void Json(httplib::Response& response, int status, std::string const& body) {
    response.status = status;
    response.set_content(body, "application/json");
}

void Refuse(httplib::Response& response, int status, char const* name, std::string const& message) {
    Json(response, status, ErrorEnvelope(name, message));
}

// Answers of the HTTP layer itself (malformed requests, bodies over the
// limit), in the same envelope as everything else.
std::string HttpErrorText(int status, size_t maxBodyBytes) {
    switch (status) {
    case 400:
        return ErrorEnvelope("BadRequestError", "The request is not valid HTTP.");
    case 413:
        return ErrorEnvelope("PayloadTooLargeError",
                             "The body is larger than " + std::to_string(maxBodyBytes) + " bytes.");
    case 414:
        return ErrorEnvelope("BadRequestError", "The request target is too long.");
    default:
        return ErrorEnvelope("Error", "HTTP status " + std::to_string(status) + ".");
    }
}

std::string HostForAddress(std::string const& host) {
    return host.find(':') != std::string::npos ? "[" + host + "]" : host;
}

} // namespace

Gateway::Gateway(HostLibrary& library, GatewayOptions options)
    : options_(std::move(options)), access_(options_.token, options_.host, options_.corsOrigins),
      limiter_(options_.requestsPerSecond), forwarder_(library, events_, options_.maxLeaseSeconds),
      description_(OpenApiDescription()) {
    size_t const maxConnections = options_.maxConnections;
    server_.new_task_queue = [maxConnections] { return new ConnectionPool(maxConnections); };
    server_.set_payload_max_length(options_.maxBodyBytes);
    server_.set_tcp_nodelay(true);
    // Not SO_REUSEPORT, which the HTTP library sets by default: another
    // process of the same user could bind the port too and take connections.
    server_.set_socket_options([this](socket_t socket) {
        int const yes = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
        listenSocket_ = socket;
    });
    server_.set_keep_alive_max_count(100000);
    // An idle kept-alive connection holds its thread, and stop() waits for it
    // until this timeout: short, so that Ctrl-C ends the server promptly.
    server_.set_keep_alive_timeout(2);
    server_.set_read_timeout(5);
    server_.set_write_timeout(5);

    httplib::Server::Handler handler = [this](httplib::Request const& request, httplib::Response& response) {
        handle(request, response);
    };
    // Bodies are read here rather than by the HTTP library, which does not
    // hold chunked bodies to the size limit.
    httplib::Server::HandlerWithContentReader reading = [this](httplib::Request const& request,
                                                               httplib::Response& response,
                                                               httplib::ContentReader const& reader) {
        std::string body;
        bool over = false;
        bool const read = reader([&](char const* data, size_t length) {
            over = body.size() + length > options_.maxBodyBytes;
            if (!over) body.append(data, length);
            return !over;
        });
        auto& writable = const_cast<httplib::Request&>(request); // the library's own, handed over as const
        if (!read) {
            // Over the limit by what arrived (a length over it was refused
            // before routing), or cut short.
            int const status = over ? 413 : 400;
            writable.set_header("Connection", "close"); // the rest of the body may still be on its way
            response.status = status;
            response.set_content(HttpErrorText(status, options_.maxBodyBytes), "application/json");
            return;
        }
        writable.body = std::move(body);
        handle(request, response);
    };
    server_.Post(".*", handler).Put(".*", handler).Delete(".*", handler).Patch(".*", handler);
    server_.Post(".*", reading).Put(".*", reading).Delete(".*", reading).Patch(".*", reading);

    server_.set_pre_routing_handler([this](httplib::Request const& request, httplib::Response& response) {
        t_started = Clock::now();
        // Every answer is whole: the HTTP library would answer a list of
        // ranges with each part built in memory, so that a short request could
        // ask for a file a thousand times over.
        const_cast<httplib::Request&>(request).ranges.clear();
        // Methods without a body are served here, sparing every request the
        // HTTP library's route matching (a std::regex per route); those with
        // a body go on to the handlers above, which read it.
        if (request.method == "GET" || request.method == "HEAD" || request.method == "OPTIONS") {
            handle(request, response);
            return httplib::Server::HandlerResponse::Handled;
        }
        // A request without Content-Length or Transfer-Encoding has no body
        // (curl -X POST sends such); this HTTP library would wait for one
        // until the connection closes and answer 400.
        auto& writable = const_cast<httplib::Request&>(request); // the library's own, handed over as const
        if (!request.has_header("Content-Length") && !request.has_header("Transfer-Encoding"))
            writable.set_header("Content-Length", "0");
        // A length over the limit is refused before its body: the HTTP library
        // would read and drop all of it first, however long it is. One that is
        // not a number it would take as 0, and the body as the next request.
        // Both a length and a transfer coding make the body's end a matter of
        // opinion between this server and anything in front of it: refused.
        if (request.has_header("Content-Length")) {
            std::string const length = request.get_header_value("Content-Length");
            bool const valid = !length.empty() &&
                               length.find_first_not_of("0123456789") == std::string::npos &&
                               !request.has_header("Transfer-Encoding");
            if (!valid || length.size() > 19 || std::stoull(length) > options_.maxBodyBytes) {
                int const status = valid ? 413 : 400;
                writable.set_header("Connection", "close");
                Json(response, status, HttpErrorText(status, options_.maxBodyBytes));
                return httplib::Server::HandlerResponse::Handled;
            }
        }
        return httplib::Server::HandlerResponse::Unhandled;
    });
    size_t const maxBody = options_.maxBodyBytes;
    server_.set_error_handler(
        httplib::Server::HandlerWithResponse([maxBody](httplib::Request const&, httplib::Response& response) {
            if (!response.body.empty() || response.is_chunked_content_provider_)
                return httplib::Server::HandlerResponse::Unhandled;
            response.set_content(HttpErrorText(response.status, maxBody), "application/json");
            return httplib::Server::HandlerResponse::Handled;
        }));
    server_.set_exception_handler(
        [](httplib::Request const&, httplib::Response& response, std::exception_ptr) {
            Refuse(response, 500, "UnknownError", "Unknown error occurred.");
        });
    server_.set_logger([this](httplib::Request const& request, httplib::Response const& response) {
        if (events_.hasSubscribers() && request.path != "/events") publishRequest(request, response);
    });
}

Gateway::~Gateway() {
    stop();
}

bool Gateway::bind(std::string* error) {
    if (options_.token.empty()) {
        *error = "no token";
        return false;
    }
    if (options_.port == 0) {
        port_ = server_.bind_to_any_port(options_.host);
    } else if (server_.bind_to_port(options_.host, options_.port)) {
        port_ = options_.port;
    } else {
        port_ = -1;
    }
    if (port_ <= 0) {
        *error = "cannot listen on " + HostForAddress(options_.host) + ":" + std::to_string(options_.port);
        return false;
    }
    // The HTTP library listens with a backlog of 5: a burst of clients
    // connecting at once would wait for SYN retries. Listening again only
    // changes the backlog.
    if (listenSocket_ >= 0) listen(listenSocket_, SOMAXCONN);
    access_.setPort(port_);
    return true;
}

void Gateway::run() {
    server_.listen_after_bind();
}

void Gateway::stop() {
    events_.close();
    server_.stop();
}

std::string Gateway::consoleAddress() const {
    std::string host = options_.host;
    if (host == "0.0.0.0" || host == "::") host = "127.0.0.1";
    return "http://" + HostForAddress(host) + ":" + std::to_string(port_) + "/#token=" + options_.token;
}

void Gateway::handle(httplib::Request const& request, httplib::Response& response) {
    if (ConnectionPool::TurnedAway()) {
        response.set_header("Retry-After", "1");
        // Ask the client to close, so the connection does not hold the line.
        const_cast<httplib::Request&>(request).set_header("Connection", "close");
        return Refuse(response, 503, "ServiceUnavailableError",
                      "Too many connections: the gateway serves at most " +
                          std::to_string(options_.maxConnections) + " at once. Try again later.");
    }
    if (!access_.hostAllowed(request.get_header_value("Host")))
        return Refuse(response, 421, "HostError",
                      "The Host header must name this server (127.0.0.1:" + std::to_string(port_) +
                          " or localhost:" + std::to_string(port_) + ").");
    if (access_.corsConfigured()) {
        std::string const origin = access_.allowedOrigin(request.get_header_value("Origin"));
        if (!origin.empty()) {
            response.set_header("Access-Control-Allow-Origin", origin);
            response.set_header("Vary", "Origin");
            if (request.method == "OPTIONS") {
                response.set_header("Access-Control-Allow-Methods", "GET, POST, PUT, DELETE");
                response.set_header("Access-Control-Allow-Headers",
                                    "Authorization, Content-Type, Sensor-Lease");
                response.status = 204;
                return;
            }
        }
    }
    if (!limiter_.admit(request.remote_addr)) {
        response.set_header("Retry-After", "1");
        return Refuse(response, 429, "TooManyRequestsError",
                      "Too many requests: at most " +
                          std::to_string(static_cast<long>(limiter_.perSecond())) +
                          " per second from one client.");
    }
    // The page asks for the token itself.
    if (serveConsole(request, response)) return;
    if (!access_.authorized(request.get_header_value("Authorization"))) {
        response.set_header("WWW-Authenticate", "Bearer");
        return Refuse(
            response, 401, "UnauthorizedError",
            "This request needs the header \"Authorization: Bearer TOKEN\" with the token sensorctl "
            "serve printed.");
    }
    if (request.path == "/openapi.json" || request.path == "/events") {
        if (request.method != "GET" && request.method != "HEAD")
            return Refuse(response, 405, "MethodError", request.method + " method is not allowed.");
        if (request.path == "/events") return serveEvents(response);
        return Json(response, 200, description_);
    }
    forwarder_.serve(request, response);
}

bool Gateway::serveConsole(httplib::Request const& request, httplib::Response& response) {
    static std::string const kFolder = "/console/";
    std::string name;
    if (request.path == "/")
        name = "index.html";
    else if (request.path.compare(0, kFolder.size(), kFolder) == 0)
        name = request.path.substr(kFolder.size());
    else
        return false;
    if (request.method != "GET" && request.method != "HEAD") {
        Refuse(response, 405, "MethodError", request.method + " method is not allowed.");
        return true;
    }
    ConsoleAsset const* asset = FindConsoleAsset(name);
    if (asset == nullptr) {
        Refuse(response, 404, "Error", "No console file " + name + ".");
        return true;
    }
    response.status = 200;
    response.set_header("Cache-Control", "no-cache");
    response.set_header("X-Content-Type-Options", "nosniff");
    response.set_header("X-Frame-Options", "DENY");
    // The console's files and the gateway are all it needs: a name of a
    // sensor that reached the page as markup could run nothing.
    response.set_header("Content-Security-Policy",
                        "default-src 'self'; object-src 'none'; base-uri 'none'; form-action 'none'; "
                        "frame-ancestors 'none'");
    response.set_content(reinterpret_cast<char const*>(asset->bytes), asset->size, asset->contentType);
    return true;
}

void Gateway::serveEvents(httplib::Response& response) {
    std::shared_ptr<EventSubscriber> subscriber = events_.subscribe();
    subscriber->push(": events of sensorctl serve\n\n"); // starts the stream at once
    response.status = 200;
    response.set_header("Cache-Control", "no-store");
    response.set_chunked_content_provider(
        "text/event-stream",
        [subscriber](size_t, httplib::DataSink& sink) {
            std::string text;
            if (!subscriber->take(&text, std::chrono::seconds(1))) {
                sink.done();
                return true;
            }
            // A comment now and then finds out when the client has gone.
            if (text.empty()) text = ":\n\n";
            return sink.write(text.data(), text.size());
        },
        [this, subscriber](bool) { events_.unsubscribe(subscriber); });
}

void Gateway::publishRequest(httplib::Request const& request, httplib::Response const& response) {
    auto const micros =
        std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - t_started).count();
    quilljson::Value event = quilljson::Value::object();
    event["method"] = quilljson::Value(request.method);
    event["path"] = quilljson::Value(request.path);
    event["status"] = quilljson::Value(response.status);
    event["durationMicroseconds"] = quilljson::Value(static_cast<long>(micros));
    events_.publish("request", quilljson::Serializer::toText(event));
}

} // namespace sensorctl::gateway

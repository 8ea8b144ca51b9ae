#include "serve_command.h"

#include <signal.h>

#include <cstdlib>
#include <iostream>
#include <string>
#include <thread>

#include "device_set.h"
#include "gateway.h"
#include "host_library.h"
#include "scenario.h"
#include "script_runner.h"
#include "token.h"
#include "usage.h"

namespace sensorctl {

namespace {

struct ServeOptions {
    gateway::GatewayOptions gateway;
    std::string libraryPath;
    std::string scenarioPath;
    std::string backend; // "" (the library's own choice), "sim" or "linux"
    std::string tokenFile;
};

// "ADDR:PORT", "[v6]:PORT" or ":PORT" (the default address).
bool ParseListen(std::string const& text, gateway::GatewayOptions* options) {
    size_t const colon = text.rfind(':');
    if (colon == std::string::npos) return false;
    std::string host = text.substr(0, colon);
    if (host.size() >= 2 && host.front() == '[' && host.back() == ']') host = host.substr(1, host.size() - 2);
    char* end = nullptr;
    std::string const port = text.substr(colon + 1);
    long const number = std::strtol(port.c_str(), &end, 10);
    if (port.empty() || *end != '\0' || number < 0 || number > 65535) return false;
    if (!host.empty()) options->host = host;
    options->port = static_cast<int>(number);
    return true;
}

bool ParseCount(std::string const& text, double* value) {
    char* end = nullptr;
    double const number = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0' || !(number >= 0)) return false;
    *value = number;
    return true;
}

int ParseServeOptions(int argc, char** argv, int first, ServeOptions* options) {
    options->libraryPath = DefaultLibraryPath(argc > 0 ? argv[0] : nullptr);
    for (int i = first; i < argc; ++i) {
        std::string arg = argv[i];
        std::string value;
        if (arg == "-h" || arg == "--help") {
            PrintUsage(std::cout);
            std::exit(kExitOk);
        }
        if (arg.rfind("--", 0) == 0 && arg.find('=') != std::string::npos) {
            value = arg.substr(arg.find('=') + 1);
            arg = arg.substr(0, arg.find('='));
        } else if (arg.rfind("--", 0) == 0 && i + 1 < argc) {
            value = argv[++i];
        } else {
            std::cerr << "sensorctl serve: unknown argument " << arg << "\n";
            return kExitUsage;
        }
        double number = 0;
        bool ok = true;
        if (arg == "--listen") {
            ok = ParseListen(value, &options->gateway);
        } else if (arg == "--token-file") {
            options->tokenFile = value;
        } else if (arg == "--library") {
            options->libraryPath = value;
        } else if (arg == "--scenario") {
            options->scenarioPath = value;
        } else if (arg == "--backend") {
            options->backend = value;
            ok = value == "sim" || value == "linux";
        } else if (arg == "--cors-origin") {
            options->gateway.corsOrigins.push_back(value);
        } else if (arg == "--max-body" || arg == "--rate-limit" || arg == "--max-connections") {
            ok = ParseCount(value, &number);
            if (arg == "--max-body") options->gateway.maxBodyBytes = static_cast<size_t>(number);
            if (arg == "--rate-limit") options->gateway.requestsPerSecond = number;
            if (arg == "--max-connections") options->gateway.maxConnections = static_cast<size_t>(number);
        } else {
            std::cerr << "sensorctl serve: unknown option " << arg << "\n";
            return kExitUsage;
        }
        if (!ok) {
            std::cerr << "sensorctl serve: " << arg << " cannot take \"" << value << "\"\n";
            return kExitUsage;
        }
    }
    return kExitOk;
}

} // namespace

int RunServe(int argc, char** argv, int first) {
    ServeOptions options;
    if (int failed = ParseServeOptions(argc, argv, first, &options)) return failed;

    std::string error;
    if (!options.tokenFile.empty()) {
        if (!gateway::ReadOrCreateTokenFile(options.tokenFile, &options.gateway.token, &error)) {
            std::cerr << "sensorctl serve: " << error << "\n";
            return kExitBackEnd;
        }
    } else {
        options.gateway.token = gateway::FreshToken();
        if (options.gateway.token.empty()) {
            std::cerr << "sensorctl serve: cannot read the system's random source\n";
            return kExitBackEnd;
        }
    }

    Scenario scenario(options.scenarioPath);
    if (!scenario.prepare(std::cerr)) return kExitBackEnd;
    if (!options.backend.empty()) {
        std::string const folder = FindDeviceSet(options.libraryPath, options.backend);
        if (folder.empty() || !PreloadDeviceSet(folder, &error)) {
            std::cerr << "sensorctl serve: "
                      << (folder.empty()
                              ? "no " + options.backend + " device set beside " + options.libraryPath
                              : error)
                      << "\n";
            return kExitBackEnd;
        }
    }
    HostLibrary library;
    if (!library.load(options.libraryPath, &error)) {
        std::cerr << "sensorctl serve: " << error << "\n";
        return kExitBackEnd;
    }
    if (!scenario.apply(library, std::cerr)) return kExitBackEnd;
    library.setup();

    // Signals are taken by sigwait below, never by a server thread.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
    signal(SIGPIPE, SIG_IGN);

    gateway::Gateway server(library, options.gateway);
    if (!server.bind(&error)) {
        std::cerr << "sensorctl serve: " << error << "\n";
        return kExitBackEnd;
    }
    std::cout << server.consoleAddress() << std::endl;
    std::cerr << "sensorctl serve: open the address above in a browser; API requests need the header "
                 "\"Authorization: Bearer <token>\". Ctrl-C stops.\n";

    std::thread serving([&server] { server.run(); });
    int received = 0;
    sigwait(&stopSignals, &received);
    server.stop();
    serving.join();
    return kExitOk;
}

} // namespace sensorctl

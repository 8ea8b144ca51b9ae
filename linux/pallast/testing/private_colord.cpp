#include "private_colord.h"

#include <fcntl.h>
#include <ftw.h>
#include <gio/gio.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <thread>

namespace testing_colord {

namespace {

char const* const kDbusDaemon = "/usr/bin/dbus-daemon";
char const* const kColord = "/usr/libexec/colord";
char const* const kColordState = "/var/lib/colord";

bool writeFile(std::string const& path, std::string const& text) {
    std::ofstream out(path);
    out << text;
    return out.good();
}

// Each child leads a process group of its own (see execWithLog), so that the
// helpers it starts (colord starts colord-sane) end with it instead of living on.
void stop(pid_t& pid) {
    if (pid <= 0) return;
    if (kill(-pid, SIGTERM) != 0) kill(pid, SIGTERM);
    for (int i = 0; i < 100; ++i) {
        if (waitpid(pid, nullptr, WNOHANG) == pid) {
            kill(-pid, SIGKILL); // helpers that outlived their parent
            pid = -1;
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    kill(-pid, SIGKILL);
    waitpid(pid, nullptr, 0);
    pid = -1;
}

int removeEntry(char const* path, struct stat const*, int, struct FTW*) {
    return remove(path);
}

// In the child: output to a log file, then exec.
[[noreturn]] void execWithLog(std::string const& log, char const* program, char* const argv[]) {
    setpgid(0, 0);
    int fd = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
    if (fd >= 0) {
        dup2(fd, 1);
        dup2(fd, 2);
        close(fd);
    }
    execv(program, argv);
    std::fprintf(stderr, "cannot run %s: %s\n", program, std::strerror(errno));
    _exit(127);
}

} // namespace

GDBusConnection* ConnectBus(std::string const& address) {
    char const* const system = std::getenv("DBUS_SYSTEM_BUS_ADDRESS");
    return g_dbus_connection_new_for_address_sync(
        !address.empty()    ? address.c_str()
        : system != nullptr ? system
                            : "",
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr);
}

PrivateColord::PrivateColord() {
    char templ[] = "/tmp/sensorcontrol-colord-XXXXXX";
    if (mkdtemp(templ) == nullptr) {
        failure_ = std::string("cannot make a temporary folder: ") + std::strerror(errno);
        return;
    }
    folder_ = templ;
    if (!startBus()) return;
    setenv("DBUS_SYSTEM_BUS_ADDRESS", busAddress().c_str(), 1);
    startColord();
}

PrivateColord::~PrivateColord() {
    stop(colord_);
    stop(bus_);
    if (!folder_.empty()) nftw(folder_.c_str(), removeEntry, 16, FTW_DEPTH | FTW_PHYS);
}

std::string PrivateColord::busAddress() const {
    return "unix:path=" + folder_ + "/bus";
}

std::string PrivateColord::colordLog() const {
    std::ifstream in(folder_ + "/colord.log");
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

bool PrivateColord::startBus() {
    std::string const config = folder_ + "/bus.conf";
    std::string const socket = folder_ + "/bus";
    writeFile(config, "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-BUS Bus Configuration 1.0//EN\"\n"
                      " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
                      "<busconfig>\n"
                      "  <type>system</type>\n"
                      "  <listen>unix:path=" +
                          socket +
                          "</listen>\n"
                          "  <auth>EXTERNAL</auth>\n"
                          "  <policy context=\"default\">\n"
                          "    <allow user=\"*\"/>\n"
                          "    <allow own=\"*\"/>\n"
                          "    <allow send_destination=\"*\"/>\n"
                          "    <allow receive_sender=\"*\"/>\n"
                          "  </policy>\n"
                          "</busconfig>\n");
    std::string const arg = "--config-file=" + config;
    bus_ = fork();
    if (bus_ == 0) {
        char* const argv[] = {const_cast<char*>("dbus-daemon"), const_cast<char*>(arg.c_str()),
                              const_cast<char*>("--nofork"), nullptr};
        execWithLog(folder_ + "/bus.log", kDbusDaemon, argv);
    }
    if (bus_ > 0) setpgid(bus_, bus_); // also here: stop() may come before the child's own call
    if (bus_ < 0) {
        failure_ = std::string("cannot start dbus-daemon: ") + std::strerror(errno);
        return false;
    }
    for (int i = 0; i < 500; ++i) {
        struct stat info;
        if (stat(socket.c_str(), &info) == 0) return true;
        if (waitpid(bus_, nullptr, WNOHANG) == bus_) break;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    bus_ = -1;
    failure_ =
        "dbus-daemon did not start (is the dbus-daemon package installed?); see " + folder_ + "/bus.log";
    return false;
}

bool PrivateColord::startColord() {
    std::string const state = folder_ + "/state";
    mkdir(state.c_str(), 0755);
    std::string const log = folder_ + "/colord.log";
    std::string const address = busAddress();
    colord_ = fork();
    if (colord_ == 0) {
        if (unshare(CLONE_NEWNS) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount(state.c_str(), kColordState, nullptr, MS_BIND, nullptr) != 0) {
            int fd = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
            dprintf(fd, "cannot give colord a private %s (root needed): %s\n", kColordState,
                    std::strerror(errno));
            _exit(126);
        }
        setenv("DBUS_SYSTEM_BUS_ADDRESS", address.c_str(), 1);
        char* const argv[] = {const_cast<char*>("colord"), const_cast<char*>("--create-dummy-sensor"),
                              const_cast<char*>("--verbose"), nullptr};
        execWithLog(log, kColord, argv);
    }
    if (colord_ > 0) setpgid(colord_, colord_);
    if (colord_ < 0) {
        failure_ = std::string("cannot start colord: ") + std::strerror(errno);
        return false;
    }
    if (!waitForSensor(20000)) {
        failure_ = "colord did not publish its dummy sensor on the private bus (" +
                   (exitStatus_.empty() ? std::string("still running") : "ended with " + exitStatus_) +
                   "); its log:\n" + colordLog();
        stop(colord_);
        return false;
    }
    failure_.clear();
    return true;
}

void PrivateColord::stopColord() {
    stop(colord_);
}

bool PrivateColord::waitForSensor(int timeoutMs) {
    // The bus may not accept connections yet when its socket appears, so the
    // connection is retried along with the question until the deadline.
    GDBusConnection* connection = nullptr;
    bool up = false;
    auto const deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (!up && std::chrono::steady_clock::now() < deadline) {
        int status = 0;
        if (waitpid(colord_, &status, WNOHANG) == colord_) {
            colord_ = -1;
            exitStatus_ = WIFEXITED(status) ? "exit code " + std::to_string(WEXITSTATUS(status))
                                            : "signal " + std::to_string(WTERMSIG(status));
            break;
        }
        if (connection == nullptr) connection = ConnectBus(busAddress());
        GVariant* reply =
            connection == nullptr
                ? nullptr
                : g_dbus_connection_call_sync(connection, "org.freedesktop.ColorManager",
                                              "/org/freedesktop/ColorManager", "org.freedesktop.ColorManager",
                                              "GetSensors", nullptr, G_VARIANT_TYPE("(ao)"),
                                              G_DBUS_CALL_FLAGS_NO_AUTO_START, 1000, nullptr, nullptr);
        if (reply != nullptr) {
            GVariant* paths = g_variant_get_child_value(reply, 0);
            up = g_variant_n_children(paths) > 0;
            g_variant_unref(paths);
            g_variant_unref(reply);
        }
        if (!up) std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    if (connection != nullptr) g_object_unref(connection);
    return up;
}

} // namespace testing_colord

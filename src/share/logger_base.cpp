#include "share/logger_base.h"

#include <cmath>
#include <limits>

#include "devices/halvern.h"
#include "share/bridge_result.h"
#include "tvl/string_utils.h"

namespace tovel {

namespace {

using GetLoggerFunction = void* (*)();
using LogFunction = void (*)(void*, char const*, int32_t, char const*);

// A floating-point code is rounded; one beyond the 64-bit range is clamped.
long codeOf(quilljson::Value const& code) {
    if (code.isInteger()) return static_cast<long>(code.getInteger());
    double const r = std::round(code.getDouble());
    if (std::isnan(r)) return 0;
    if (r <= static_cast<double>(std::numeric_limits<long>::min())) return std::numeric_limits<long>::min();
    if (r >= static_cast<double>(std::numeric_limits<long>::max())) return std::numeric_limits<long>::max();
    return static_cast<long>(r);
}

} // namespace

LoggerBase::LoggerBase(std::string const& name) : name_(name) {
    setup();
}

void LoggerBase::setup() {
    char const* exports = Plg_GetRegistryExportsPath();
    fs::Path path(exports != nullptr ? exports : "");
    path.appendPathComponent("liblorvant2");
    if (!library_.load(fs::Path(path.string() + SENSORCONTROL_LIBRARY_SUFFIX))) return;
    void* getLogger = library_.symbol("lorvant_get_logger");
    if (getLogger == nullptr) return;
    logger_ = reinterpret_cast<GetLoggerFunction>(getLogger)();
}

void LoggerBase::log(LorvantLevel level, std::string const& message) {
    if (!bound()) return;
    // Looked up on every line, as the logging library has always been used.
    void* logFunction = library_.symbol("lorvant_log");
    if (logFunction == nullptr) return;
    reinterpret_cast<LogFunction>(logFunction)(logger_, name_.c_str(), static_cast<int32_t>(level),
                                               message.c_str());
}

std::string LoggerBase::resultLine(std::string const& uri, std::string const& method,
                                   BridgeResult const& result, LorvantLevel* level) {
    std::string line;
    line.reserve(64 + method.size() + uri.size() + result.error.name.size() + result.error.message.size());
    line += "statusCode:";
    line += std::to_string(result.status);
    line += "\tmethod:";
    line += method;
    line += "\turi:";
    line += uri;
    if (result.status - 200u <= 99u) {
        line += "\tmsg:Success";
        if (level != nullptr) *level = LorvantLevelSuccess;
    } else {
        line += "\terr:";
        line += result.error.name;
        line += "\tmsg:";
        line += result.error.message;
        quilljson::Value const& code = result.error.value["code"];
        if (code.isNumber()) {
            line += "\tcode:";
            line += string::hex<long>(codeOf(code), 8);
        }
        if (level != nullptr) *level = LorvantLevelError;
    }
    return line;
}

void LoggerBase::logResult(std::string const& uri, std::string const& method, BridgeResult const& result) {
    if (!bound()) return;
    LorvantLevel level = LorvantLevelError;
    std::string const line = resultLine(uri, method, result, &level);
    log(level, line);
}

} // namespace tovel

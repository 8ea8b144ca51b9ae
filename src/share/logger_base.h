// Binding to the logging library, opened at run time from the exports directory.
#pragma once

#include <cstdint>
#include <string>

#include "tvl/dynamic_library.h"

struct BridgeResult;

namespace tovel {

// Levels passed to the logging library.
enum LorvantLevel : int32_t { LorvantLevelSuccess = 2, LorvantLevelInfo = 3, LorvantLevelError = 5 };

class LoggerBase {
public:
    explicit LoggerBase(std::string const& name);
    virtual ~LoggerBase() = default;

    void setup();
    // True when the logging library gave a logger; lines are built only then,
    // since nobody would receive them otherwise.
    bool bound() const { return logger_ != nullptr; }
    void log(LorvantLevel level, std::string const& message);
    // "statusCode:…\tmethod:…\turi:…" then "\tmsg:Success" (level 2) or
    // "\terr:…\tmsg:…[\tcode:xxxxxxxx]" (level 5).
    void logResult(std::string const& uri, std::string const& method, BridgeResult const& result);

    // The result line without logging it; for tests.
    static std::string resultLine(std::string const& uri, std::string const& method,
                                  BridgeResult const& result, LorvantLevel* level);

private:
    std::string name_;
    DynamicLibrary library_;
    void* logger_ = nullptr;
};

} // namespace tovel

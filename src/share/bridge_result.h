// Outcome of an endpoint method: a status code, an error record and a value.
#pragma once

#include <cstdint>
#include <string>

#include "quilljson/value.h"

typedef uint32_t _BridgeStatusCode;

struct BridgeError {
    BridgeError() = default;
    BridgeError(std::string const& name, std::string const& message) : name(name), message(message) {}

    // No kind, no message and an "empty" detail value (null, boolean, number,
    // empty string, array or object).
    bool empty() const;

    std::string name;    // error kind ("BadRequestError", "DvError", ...)
    std::string message; // human-readable sentence
    quilljson::Value value;
};

struct BridgeResult {
    _BridgeStatusCode status = 200;
    BridgeError error;
    quilljson::Value value;
};

struct BridgeResultOK : BridgeResult {
    explicit BridgeResultOK(quilljson::Value const& v) { value = v; }
};

// Thrown from any depth of an endpoint method; caught only by the request framework.
struct BridgeResultError : BridgeResult {
    BridgeResultError(_BridgeStatusCode const& code, std::string const& name, std::string const& message) {
        status = code;
        error = BridgeError(name, message);
    }
    BridgeResultError(_BridgeStatusCode const& code, BridgeError const& e) {
        status = code;
        error = e;
    }
};

// Shorthand for the request errors of the endpoints.
inline BridgeResultError BadRequest(std::string const& message) {
    return BridgeResultError(400, "BadRequestError", message);
}

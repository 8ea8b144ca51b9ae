// The one place where device-library result codes become bridge errors.
#pragma once

#include <string>

#include "devices/device_api.h"

namespace tovel {

// Returns for success (non-negative codes, and 0x80000006 "Unknown." which is
// deliberately let through); otherwise throws 500 "DvError" whose detail holds
// "code" (the unsigned reading) and, when reason is not empty, "reason".
void BridgeCheckDvError(DvError const& result, std::string const& reason);

// The message of a device-library code; "Undefined error." for unlisted codes.
std::string dverror_string(DvError const& result);

inline DvError MakeDvError(int32_t code) {
    DvError e;
    e.code = code;
    return e;
}

} // namespace tovel

// The result codes and the DvError this library answers with.
#pragma once

#include <cstdint>

#include "devices/device_api.h"
#include "devices/result_codes.h"

namespace pallast {

namespace code = ::devices::code;

inline DvError result(int32_t c) {
    DvError r;
    r.code = c;
    return r;
}

} // namespace pallast

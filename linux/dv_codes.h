// The device libraries' result codes that the Linux set answers with.
#pragma once

#include "devices/device_api.h"

namespace linuxset {

constexpr DvError kNotRegistered{static_cast<int32_t>(0x80000005u)};
// The set cannot do this: no Linux interface reaches what the call is about.
constexpr DvError kUnsupported{static_cast<int32_t>(0x80000007u)};
// The end of an enumeration; also the whole answer of an empty list.
constexpr DvError kNoMoreData{static_cast<int32_t>(0x8000000Bu)};

} // namespace linuxset

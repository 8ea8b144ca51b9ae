// The device libraries' result codes this library answers.
#pragma once

#include <cstdint>

#include "devices/device_api.h"

namespace pallast {

namespace code {
constexpr int32_t kOK = 0;
constexpr int32_t kFailed = static_cast<int32_t>(0x80000000u);
constexpr int32_t kInvalidArgument = static_cast<int32_t>(0x80000001u);
constexpr int32_t kInvalidBuffer = static_cast<int32_t>(0x80000002u);
constexpr int32_t kInvalidBufferSize = static_cast<int32_t>(0x80000003u);
constexpr int32_t kNotRegistered = static_cast<int32_t>(0x80000005u);
constexpr int32_t kUnsupported = static_cast<int32_t>(0x80000007u);
constexpr int32_t kOutOfRange = static_cast<int32_t>(0x8000000Au);
constexpr int32_t kNoMoreData = static_cast<int32_t>(0x8000000Bu);
constexpr int32_t kAlreadyUsed = static_cast<int32_t>(0x80000012u);
constexpr int32_t kTimedOut = static_cast<int32_t>(0x80000013u);
constexpr int32_t kDisabled = static_cast<int32_t>(0x80000014u);
constexpr int32_t kInvalidPrecondition = static_cast<int32_t>(0x80000015u);
constexpr int32_t kSensorConnection = static_cast<int32_t>(0x80010002u);
constexpr int32_t kMeasure = static_cast<int32_t>(0x80010003u);
constexpr int32_t kSensorPosition = static_cast<int32_t>(0x80010004u);
constexpr int32_t kZeroCalibration = static_cast<int32_t>(0x80010008u);
} // namespace code

inline DvError result(int32_t c) {
    DvError r;
    r.code = c;
    return r;
}

} // namespace pallast

/* The result codes the device libraries answer with in DvError.code (negative
 * means failure). Every device set answers with these, so a host sees the same
 * code, and the product the same message, whichever set is loaded. */
#ifndef DEVICES_RESULT_CODES_H
#define DEVICES_RESULT_CODES_H

#include <stdint.h>

#ifdef __cplusplus
namespace devices {
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
constexpr int32_t kInvalidData = static_cast<int32_t>(0x8000001Au);
constexpr int32_t kMonitorConnection = static_cast<int32_t>(0x80010001u);
constexpr int32_t kSensorConnection = static_cast<int32_t>(0x80010002u);
constexpr int32_t kMeasure = static_cast<int32_t>(0x80010003u);
constexpr int32_t kSensorPosition = static_cast<int32_t>(0x80010004u);
constexpr int32_t kZeroCalibration = static_cast<int32_t>(0x80010008u);
constexpr int32_t kMonitorOwned = static_cast<int32_t>(0x8001000Au);
} // namespace code
} // namespace devices
#endif

#endif

/* liblorvant2: the logging library, opened at run time. */
#ifndef DEVICES_LORVANT_H
#define DEVICES_LORVANT_H

#include "device_api.h"

DEVICE_EXTERN_C_BEGIN

DEVICE_API void* lorvant_get_logger(void);
DEVICE_API void lorvant_log(void* logger, char const* name, int32_t level, char const* message);

DEVICE_EXTERN_C_END

#endif

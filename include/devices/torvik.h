/* libtorvik: USB device enumeration, opened at run time. */
#ifndef DEVICES_TORVIK_H
#define DEVICES_TORVIK_H

#include "device_api.h"

DEVICE_EXTERN_C_BEGIN

typedef struct TvkSnapshot TvkSnapshot;
typedef struct TvkUSB TvkUSB;

DEVICE_API TvkSnapshot* TvkCreateUSBDeviceSnapshot(void);                   /* null on failure */
DEVICE_API TvkUSB* TvkEnumUSBDevice(TvkSnapshot* snapshot, uint32_t index); /* null past the last */
DEVICE_API char const* TvkGetUSBDeviceName(TvkUSB* device);
DEVICE_API void TvkReleaseSnapshot(TvkSnapshot* snapshot);

DEVICE_EXTERN_C_END

#endif

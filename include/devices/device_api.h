/* Common definitions of the device-library interfaces.
 *
 * These headers are the one seam between libsensorcontrol and the device
 * libraries it drives: the product includes them to call the libraries, and
 * every back-end (the simulated stand-ins today) implements them. */
#ifndef DEVICES_DEVICE_API_H
#define DEVICES_DEVICE_API_H

#include <stdint.h>

#if defined(__GNUC__)
#define DEVICE_API __attribute__((visibility("default")))
#else
#define DEVICE_API
#endif

#ifdef __cplusplus
#define DEVICE_EXTERN_C_BEGIN extern "C" {
#define DEVICE_EXTERN_C_END }
#else
#define DEVICE_EXTERN_C_BEGIN
#define DEVICE_EXTERN_C_END
#endif

DEVICE_EXTERN_C_BEGIN

/* Result record of every device library: negative codes are failures. */
typedef struct DvError {
    int32_t code;
} DvError;

/* Measurement-device id of libpallast (the model of a device). */
typedef uint32_t MDDeviceID;

DEVICE_EXTERN_C_END

#endif

/* libdvc: the monitor-control library (functions prefixed DvCtrl), opened at
 * run time. A monitor is named by its product (at most 8 characters) and its
 * serial number (at most 16 characters); its HID handle is an opaque pointer. */
#ifndef DEVICES_DVC_H
#define DEVICES_DVC_H

#include "records.h"

DEVICE_EXTERN_C_BEGIN

/* The monitor at `index` of the monitor list; a non-zero code past the end. */
DEVICE_API DvError DvCtrlGetSerialProduct(unsigned long index, char (*product)[9], char (*serial)[17]);
/* Callers pass the two names in either order; the monitor is found by both. */
DEVICE_API DvError DvCtrlGetHIDHandle(char const* first, char const* second, void** hidHandle);
DEVICE_API DvError DvCtrlLockMonitor(char const* product, char const* serial);
DEVICE_API DvError DvCtrlUnlockMonitor(char const* product, char const* serial);
DEVICE_API signed char DvCtrlSupportedHZEPriority(char const* serial, char const* product);
DEVICE_API DvError DvCtrlGetHZEPriority(char const* serial, char const* product, DvCtrlHZEPriority* priority);
DEVICE_API uint16_t DvCtrlGetPanelRevision(char const* serial, char const* product);

DEVICE_EXTERN_C_END

#endif

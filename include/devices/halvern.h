/* libhalvern: the host's plug-in support library. Each text stays valid for
 * the life of the process; callers copy it at once. */
#ifndef DEVICES_HALVERN_H
#define DEVICES_HALVERN_H

#include "device_api.h"

DEVICE_EXTERN_C_BEGIN

DEVICE_API char const* Plg_GetRegistryExportsPath(void);
DEVICE_API char const* Plg_GetRegistryPath(void);
DEVICE_API char const* Plg_GetArchitecture(void);
DEVICE_API char const* Plg_GetApplicationName(void);

DEVICE_EXTERN_C_END

#endif

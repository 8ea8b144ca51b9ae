/* libcorvane: the correction library with the correlation databases, opened
 * at run time. Entries are keyed by the sensor (device id and serial), the
 * reference sensor and the monitor; a non-zero code ends an enumeration. */
#ifndef DEVICES_CORVANE_H
#define DEVICES_CORVANE_H

#include "records.h"

DEVICE_EXTERN_C_BEGIN

/* correlation data */
DEVICE_API DvError MDEnumCorrelationInfo(MDDeviceID deviceID, char const* serial, uint64_t index,
                                         MDCorrelationInfo* info, uint64_t* id);
DEVICE_API DvError MDGetCorrelationDataDate(uint64_t id, CSSG2_Date* date);
DEVICE_API DvError MDGetIFSv3CorrelationData(uint64_t id, MDIFSv3CorrelationData* data);
DEVICE_API DvError MDGetCSSG2CorrelationDataEx(uint64_t id, MDCSSG2CorrelationDataEx* data);
/* A null date stores the entry without one. */
DEVICE_API DvError MDAddIFSv3CorrelationData(MDDeviceID deviceID, char const* serial,
                                             MDDeviceID referenceDeviceID, char const* referenceSerial,
                                             char const* monitorProduct, char const* monitorSerial,
                                             uint16_t panelRevision, MDIFSv3CorrelationData data,
                                             CSSG2_Date const* date, uint64_t* id);
DEVICE_API DvError MDAddCSSG2CorrelationDataEx(MDDeviceID deviceID, char const* serial,
                                               MDDeviceID referenceDeviceID, char const* referenceSerial,
                                               char const* monitorProduct, char const* monitorSerial,
                                               uint16_t panelRevision, MDCSSG2CorrelationDataEx data,
                                               uint64_t* id);
DEVICE_API DvError MDAddCSSG2CorrelationDataWithDateEx(MDDeviceID deviceID, char const* serial,
                                                       MDDeviceID referenceDeviceID,
                                                       char const* referenceSerial,
                                                       char const* monitorProduct, char const* monitorSerial,
                                                       uint16_t panelRevision, MDCSSG2CorrelationDataEx data,
                                                       CSSG2_Date date, uint64_t* id);

/* correlation matrices */
DEVICE_API DvError MDEnumCorrelationMatrixInfo(MDDeviceID deviceID, char* monitorProduct,
                                               uint16_t panelRevision, unsigned long index,
                                               MDCorrelationMatrixInfo* info, unsigned long* id);
DEVICE_API DvError MDGetCorrelationMatrixDate(unsigned long id, CSSG2_Date* date);
DEVICE_API DvError MDGetLatestCorrelationMatrixID(MDDeviceID deviceID, MDDeviceID referenceDeviceID,
                                                  char const* referenceSerial, char* monitorProduct,
                                                  uint16_t panelRevision, unsigned long* id);
DEVICE_API DvError MDAddCorrelationMatrix(MDDeviceID deviceID, char const* serial,
                                          MDDeviceID referenceDeviceID, char const* referenceSerial,
                                          char* monitorProduct, char* monitorSerial, uint16_t panelRevision,
                                          int dataPage, unsigned long correlationID, double* matrix /* 9 */,
                                          CSSG2_Date const* date, unsigned long* id);

DEVICE_EXTERN_C_END

#endif

// libcorvane of the Linux set. Its databases hold correlations of monitors'
// built-in sensors, which the set cannot reach, so both are empty: an
// enumeration ends at once, an id names no entry, and adding is unsupported
// (an entry could never be used, and nothing is stored that would be lost).
#include "devices/corvane.h"
#include "codes.h"

namespace {
DvError const kUnsupported = pallast::result(pallast::code::kUnsupported);
DvError const kNoMoreData = pallast::result(pallast::code::kNoMoreData);
DvError const kNotRegistered = pallast::result(pallast::code::kNotRegistered);
} // namespace

extern "C" {

DvError MDEnumCorrelationInfo(MDDeviceID, char const*, uint64_t, MDCorrelationInfo*, uint64_t*) {
    return kNoMoreData;
}

DvError MDGetCorrelationDataDate(uint64_t, CSSG2_Date*) {
    return kNotRegistered;
}

DvError MDGetIFSv3CorrelationData(uint64_t, MDIFSv3CorrelationData*) {
    return kNotRegistered;
}

DvError MDGetCSSG2CorrelationDataEx(uint64_t, MDCSSG2CorrelationDataEx*) {
    return kNotRegistered;
}

DvError MDAddIFSv3CorrelationData(MDDeviceID, char const*, MDDeviceID, char const*, char const*, char const*,
                                  uint16_t, MDIFSv3CorrelationData, CSSG2_Date const*, uint64_t*) {
    return kUnsupported;
}

DvError MDAddCSSG2CorrelationDataEx(MDDeviceID, char const*, MDDeviceID, char const*, char const*,
                                    char const*, uint16_t, MDCSSG2CorrelationDataEx, uint64_t*) {
    return kUnsupported;
}

DvError MDAddCSSG2CorrelationDataWithDateEx(MDDeviceID, char const*, MDDeviceID, char const*, char const*,
                                            char const*, uint16_t, MDCSSG2CorrelationDataEx, CSSG2_Date,
                                            uint64_t*) {
    return kUnsupported;
}

DvError MDEnumCorrelationMatrixInfo(MDDeviceID, char*, uint16_t, unsigned long, MDCorrelationMatrixInfo*,
                                    unsigned long*) {
    return kNoMoreData;
}

DvError MDGetCorrelationMatrixDate(unsigned long, CSSG2_Date*) {
    return kNotRegistered;
}

// Like a search that finds no matching matrix.
DvError MDGetLatestCorrelationMatrixID(MDDeviceID, MDDeviceID, char const*, char*, uint16_t, unsigned long*) {
    return kNoMoreData;
}

DvError MDAddCorrelationMatrix(MDDeviceID, char const*, MDDeviceID, char const*, char*, char*, uint16_t, int,
                               unsigned long, double*, CSSG2_Date const*, unsigned long*) {
    return kUnsupported;
}

} // extern "C"

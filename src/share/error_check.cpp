#include "share/error_check.h"

#include "share/bridge_result.h"

namespace tovel {

namespace {

constexpr uint32_t kUnknown = 0x80000006u;

char const* const kGeneralMessages[] = {
    "Failed.",                       // 0x80000000
    "Invalid argument.",             // 0x80000001
    "Invalid buffer.",               // 0x80000002
    "Invalid buffer size.",          // 0x80000003
    "Already registered.",           // 0x80000004
    "Not registered.",               // 0x80000005
    "Unknown.",                      // 0x80000006
    "Unsupported.",                  // 0x80000007
    "Stall.",                        // 0x80000008
    "Unimplemented.",                // 0x80000009
    "Out of range.",                 // 0x8000000A
    "No more data.",                 // 0x8000000B
    "Canceled.",                     // 0x8000000C
    "Out of domain.",                // 0x8000000D
    "Long proc lock is wait.",       // 0x8000000E
    "Short proc lock is wait.",      // 0x8000000F
    "Dll is not found.",             // 0x80000010
    "Over limit.",                   // 0x80000011
    "Already used.",                 // 0x80000012
    "Timed out.",                    // 0x80000013
    "Disabled.",                     // 0x80000014
    "Invalid precondition.",         // 0x80000015
    "Unresolved.",                   // 0x80000016
    "Retry count exceeded.",         // 0x80000017
    "Already created.",              // 0x80000018
    "Cannot create file.",           // 0x80000019
    "Invalid data.",                 // 0x8000001A
    "Invalid data size.",            // 0x8000001B
    "Invalid key.",                  // 0x8000001C
    "Invalid key size.",             // 0x8000001D
    "Data verify error.",            // 0x8000001E
    "Rejected by critical section.", // 0x8000001F
};

char const* const kDeviceMessages[] = {
    "Monitor connection error.",              // 0x80010001
    "Sensor connection error.",               // 0x80010002
    "Measure error.",                         // 0x80010003
    "Sensor position error.",                 // 0x80010004
    "Calculation error.",                     // 0x80010005
    "Chamber error.",                         // 0x80010006
    "Siggenerator error.",                    // 0x80010007
    "Zero calibration error.",                // 0x80010008
    "Cannot enter monitor critical section.", // 0x80010009
    "Monitor critical section is owned.",     // 0x8001000A
};

char const* const kNoteMessages[] = {
    "OK.",                           // 0
    "Exists more data.",             // 1
    "Running.",                      // 2
    "Unconfirmed.",                  // 3
    "OK but data is not corrected.", // 4
};

template <size_t N> char const* lookup(char const* const (&table)[N], uint32_t offset) {
    return offset < N ? table[offset] : nullptr;
}

} // namespace

std::string dverror_string(DvError const& result) {
    uint32_t const code = static_cast<uint32_t>(result.code);
    char const* message = nullptr;
    if (code < 0x80000000u)
        message = lookup(kNoteMessages, code);
    else if (code < 0x80010000u)
        message = lookup(kGeneralMessages, code - 0x80000000u);
    else if (code > 0x80010000u)
        message = lookup(kDeviceMessages, code - 0x80010001u);
    return message != nullptr ? message : "Undefined error.";
}

void BridgeCheckDvError(DvError const& result, std::string const& reason) {
    if (result.code >= 0) return;
    uint32_t const code = static_cast<uint32_t>(result.code);
    if (code == kUnknown) return;
    BridgeError error("DvError", dverror_string(result));
    error.value["code"] = static_cast<int64_t>(code);
    if (!reason.empty()) error.value["reason"] = reason;
    throw BridgeResultError(500, error);
}

} // namespace tovel

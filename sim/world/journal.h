// The journal of device calls. A call is recorded as its function name and
// its input arguments packed into bytes (a tag, then the raw value); they
// become JSON only when the journal is read, so a call costs a few copies into
// buffers that are reused once the journal is full.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "devices/records.h"
#include "quilljson/value.h"

namespace sim {

// Appends one argument to a packed argument text.
namespace pack {
void integer(std::string& args, int64_t value);
void unsignedInteger(std::string& args, uint64_t value);
void real(std::string& args, double value);
void reals(std::string& args, double const* values, size_t count); // null gives null
void rows(std::string& args, double const* values, size_t rows);   // rows of 3; null gives null
void text(std::string& args, char const* value);                   // null gives null
void null(std::string& args);
void record(std::string& args, colour const& value);
void record(std::string& args, CSSG2_Date const& value);
void record(std::string& args, MDParameterDescription const& value);
void record(std::string& args, R2XC_RefParam const& value);
void record(std::string& args, R2XC_RefToneParam const& value);
void record(std::string& args, R2XC_ValueRGBK const& value);
void record(std::string& args, R2XC_ToneCorrectionParam const& value);
void record(std::string& args, KMCAL_CALDATA_USERPROOF const& value);
void record(std::string& args, KMCAL_MEASDATA_USERPROOF const& value);
void record(std::string& args, KMCAL_CALDATA_CORRECT const& value);
void record(std::string& args, KMCAL_MEASDATA_CORRECT_GRAY const& value);
void record(std::string& args, MDIFSv3CorrelationData const& value);
void record(std::string& args, MDCSSG2CorrelationDataEx const& value);
} // namespace pack

// The calls of one lane of the world (state.h); the journal as read merges
// the lanes by the calls' sequence numbers.
class Journal {
public:
    static constexpr size_t kLimit = 10000; // the latest calls kept

    // Records a call; the oldest one goes once kLimit are kept.
    void append(uint64_t sequence, char const* function, std::string const& args);
    void clear();
    // [{"function": ..., "args": [...]}, ...] of the latest kLimit calls of
    // all the journals, oldest first.
    static quilljson::Value toJson(Journal const* const* journals, size_t count);

private:
    struct Entry {
        uint64_t sequence;
        std::string function;
        std::string args; // packed
    };
    std::vector<Entry> entries_; // a ring once it holds kLimit entries
    size_t oldest_ = 0;
};

} // namespace sim

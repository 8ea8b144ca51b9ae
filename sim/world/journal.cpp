#include "world/journal.h"

#include <algorithm>
#include <cstring>

#include "world/record_json.h"

namespace sim {

using quilljson::Value;

namespace {

enum Tag : char {
    kInteger = 'i',
    kUnsigned = 'u',
    kReal = 'd',
    kReals = 'D', // a count, then the numbers
    kRows = 'M',  // a row count, then rows of 3 numbers
    kText = 's',  // a length, then the bytes
    kNull = 'n',
    kRecord = 'r', // a record kind, then the record's bytes
};

// The record types, in the order of their kinds.
enum RecordKind : char {
    kColour,
    kDate,
    kParameterDescription,
    kRefParam,
    kRefToneParam,
    kValueRGBK,
    kToneCorrectionParam,
    kCalDataUserProof,
    kMeasDataUserProof,
    kCalDataCorrect,
    kMeasDataCorrectGray,
    kIFSv3Correlation,
    kCSSG2Correlation,
};

template <typename T> void raw(std::string& args, T const& value) {
    args.append(reinterpret_cast<char const*>(&value), sizeof value);
}

// Reads packed arguments back; a malformed text cannot occur, since only the
// functions above write it.
class Reader {
public:
    explicit Reader(std::string const& args) : at_(args.data()), end_(args.data() + args.size()) {}
    bool done() const { return at_ >= end_; }
    char tag() { return *at_++; }
    template <typename T> T take() {
        T value;
        std::memcpy(&value, at_, sizeof value);
        at_ += sizeof value;
        return value;
    }
    double const* doubles(size_t count) {
        // The bytes may be unaligned: copy them out.
        scratch_.resize(count);
        if (count > 0) std::memcpy(scratch_.data(), at_, count * sizeof(double));
        at_ += count * sizeof(double);
        return scratch_.data();
    }
    std::string text(size_t length) {
        std::string value(at_, length);
        at_ += length;
        return value;
    }

private:
    char const* at_;
    char const* end_;
    std::vector<double> scratch_;
};

Value recordJson(Reader& in) {
    switch (in.take<char>()) {
    case kColour:
        return sim::toJson(in.take<colour>());
    case kDate:
        return sim::toJson(in.take<CSSG2_Date>());
    case kParameterDescription:
        return sim::toJson(in.take<MDParameterDescription>());
    case kRefParam:
        return sim::toJson(in.take<R2XC_RefParam>());
    case kRefToneParam:
        return sim::toJson(in.take<R2XC_RefToneParam>());
    case kValueRGBK:
        return sim::toJson(in.take<R2XC_ValueRGBK>());
    case kToneCorrectionParam:
        return sim::toJson(in.take<R2XC_ToneCorrectionParam>());
    case kCalDataUserProof:
        return sim::toJson(in.take<KMCAL_CALDATA_USERPROOF>());
    case kMeasDataUserProof:
        return sim::toJson(in.take<KMCAL_MEASDATA_USERPROOF>());
    case kCalDataCorrect:
        return sim::toJson(in.take<KMCAL_CALDATA_CORRECT>());
    case kMeasDataCorrectGray:
        return sim::toJson(in.take<KMCAL_MEASDATA_CORRECT_GRAY>());
    case kIFSv3Correlation:
        return sim::toJson(in.take<MDIFSv3CorrelationData>());
    case kCSSG2Correlation:
        return sim::toJson(in.take<MDCSSG2CorrelationDataEx>());
    }
    return Value();
}

Value argsJson(std::string const& args) {
    Value out = Value::array();
    Reader in(args);
    while (!in.done()) {
        switch (in.tag()) {
        case kInteger:
            out.append(Value(static_cast<long>(in.take<int64_t>())));
            break;
        case kUnsigned:
            out.append(Value(static_cast<unsigned long>(in.take<uint64_t>())));
            break;
        case kReal:
            out.append(Value(in.take<double>()));
            break;
        case kReals: {
            size_t const count = in.take<uint32_t>();
            out.append(sim::toJson(in.doubles(count), count));
            break;
        }
        case kRows: {
            size_t const rows = in.take<uint32_t>();
            double const* values = in.doubles(3 * rows);
            Value matrix = Value::array();
            for (size_t r = 0; r < rows; ++r)
                matrix.append(sim::toJson(values + 3 * r, 3));
            out.append(matrix);
            break;
        }
        case kText: {
            size_t const length = in.take<uint32_t>();
            out.append(Value(in.text(length)));
            break;
        }
        case kRecord:
            out.append(recordJson(in));
            break;
        default:
            out.append(Value());
            break;
        }
    }
    return out;
}

} // namespace

namespace pack {

void integer(std::string& args, int64_t value) {
    args += kInteger;
    raw(args, value);
}
void unsignedInteger(std::string& args, uint64_t value) {
    args += kUnsigned;
    raw(args, value);
}
void real(std::string& args, double value) {
    args += kReal;
    raw(args, value);
}
void reals(std::string& args, double const* values, size_t count) {
    if (values == nullptr) return null(args);
    args += kReals;
    raw(args, static_cast<uint32_t>(count));
    args.append(reinterpret_cast<char const*>(values), count * sizeof(double));
}
void rows(std::string& args, double const* values, size_t rows) {
    if (values == nullptr) return null(args);
    args += kRows;
    raw(args, static_cast<uint32_t>(rows));
    args.append(reinterpret_cast<char const*>(values), 3 * rows * sizeof(double));
}
void text(std::string& args, char const* value) {
    if (value == nullptr) return null(args);
    size_t const length = std::strlen(value);
    args += kText;
    raw(args, static_cast<uint32_t>(length));
    args.append(value, length);
}
void null(std::string& args) {
    args += kNull;
}

#define SIM_PACK_RECORD(Type, kind)                                                                          \
    void record(std::string& args, Type const& value) {                                                      \
        args += kRecord;                                                                                     \
        args += kind;                                                                                        \
        raw(args, value);                                                                                    \
    }
SIM_PACK_RECORD(colour, kColour)
SIM_PACK_RECORD(CSSG2_Date, kDate)
SIM_PACK_RECORD(MDParameterDescription, kParameterDescription)
SIM_PACK_RECORD(R2XC_RefParam, kRefParam)
SIM_PACK_RECORD(R2XC_RefToneParam, kRefToneParam)
SIM_PACK_RECORD(R2XC_ValueRGBK, kValueRGBK)
SIM_PACK_RECORD(R2XC_ToneCorrectionParam, kToneCorrectionParam)
SIM_PACK_RECORD(KMCAL_CALDATA_USERPROOF, kCalDataUserProof)
SIM_PACK_RECORD(KMCAL_MEASDATA_USERPROOF, kMeasDataUserProof)
SIM_PACK_RECORD(KMCAL_CALDATA_CORRECT, kCalDataCorrect)
SIM_PACK_RECORD(KMCAL_MEASDATA_CORRECT_GRAY, kMeasDataCorrectGray)
SIM_PACK_RECORD(MDIFSv3CorrelationData, kIFSv3Correlation)
SIM_PACK_RECORD(MDCSSG2CorrelationDataEx, kCSSG2Correlation)
#undef SIM_PACK_RECORD

} // namespace pack

void Journal::append(uint64_t sequence, char const* function, std::string const& args) {
    if (entries_.size() < kLimit) {
        entries_.push_back(Entry{sequence, function, args});
        return;
    }
    // Full: the oldest entry's buffers take the new call.
    Entry& entry = entries_[oldest_];
    entry.sequence = sequence;
    entry.function.assign(function);
    entry.args.assign(args);
    oldest_ = (oldest_ + 1) % kLimit;
}

void Journal::clear() {
    entries_.clear();
    oldest_ = 0;
}

Value Journal::toJson(Journal const* const* journals, size_t count) {
    std::vector<Entry const*> calls;
    for (size_t j = 0; j < count; ++j)
        for (Entry const& entry : journals[j]->entries_)
            calls.push_back(&entry);
    std::sort(calls.begin(), calls.end(),
              [](Entry const* a, Entry const* b) { return a->sequence < b->sequence; });
    size_t const first = calls.size() > kLimit ? calls.size() - kLimit : 0;
    Value journal = Value::array();
    for (size_t i = first; i < calls.size(); ++i) {
        Value call = Value::object();
        call["function"] = calls[i]->function;
        call["args"] = argsJson(calls[i]->args);
        journal.append(call);
    }
    return journal;
}

} // namespace sim

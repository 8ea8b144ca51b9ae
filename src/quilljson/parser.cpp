#include "parser.h"

#include "decimal_to_double.h"

#include <charconv>
#include <cstring>
#include <iterator>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace quilljson {

namespace {

char const kGarbage[] = "Gabage string exists after json string.";
char const kCancelled[] = "SAX handler cancels parsing.";
char const kBadBoolean[] = "Invalid boolean type string exists.";
char const kBadNull[] = "Invalid null type string exists.";
char const kUnexpectedCharacter[] = "Unexpected character exists while parsing.";
char const kBadEscape[] = "Unexpected escape character is found while parsing string.";
char const kUnterminated[] = "Expected string ending character '\"' is not found.";
char const kBadSurrogate[] = "Invalid unicode surrogate pair is found while parsing string.";
char const kBadHex[] = "Invalid unicode hex string is found while parsing string.";
char const kObjectJunk[] = "Unexpected string exists while parsing object.";
char const kObjectComma[] = "Unexpected comma exists while parsing object.";
char const kArrayComma[] = "Unexpected comma exists while parsing array.";
char const kArrayJunk[] = "Unexpected string exists while parsing array.";
char const kLeadingZero[] = "Unexpected '0' character is found while parsing number.";
char const kNoDigit[] = "Digit is not found while parsing number.";
char const kNoFraction[] = "Digit is not found after the decimal point while parsing number.";
char const kNoExponent[] = "Digit is not found after exponent keyword while parsing number.";
char const kBadReal[] = "Failed to parse floating point.";

// Parse modes; the Run template is compiled once per mode so the build-only
// and check-only paths carry no handler tests.
enum Mode {
    kBuild,     // target only
    kBuildKeys, // target, plus onObjectKey/onObjectEnd/onArrayEnd to the handler
    kEvents,    // handler only, every event
    kCheck,     // neither
};

// Frames and keys are made in place: a temporary copied in would be read
// back with wider loads than it was written with, which stalls the store
// forwarding on every container the parse opens.
struct Frame {
    Frame(size_t base_, bool isObject_) : data(nullptr), count(0), base(base_), isObject(isObject_) {}
    Value holder;   // owns a nested container until it is complete; null for the top level
    void* data;     // its ObjectType or ArrayType (target modes)
    uint64_t count; // members or elements read
    size_t base;    // arrays: where their elements start in elements_
    bool isObject;
};

// The key of a member whose value is being read: a view of the input, or
// the decoded text when the key had escapes (text is then null).
struct PendingKey {
    PendingKey(char const* t, size_t n, std::string&& d) : text(t), size(n), decoded(std::move(d)) {}
    char const* text;
    size_t size;
    std::string decoded;
};

// The buffers of a parse, kept per thread so that a parse reuses the capacity
// of the previous one (growing them anew each time costs more than the parse
// of a small text, and their large blocks make malloc consolidate its free
// lists). A parse started from a handler while one runs gets its own.
struct Workspace {
    std::string scratch;          // decoded text of a string with escapes
    std::vector<Frame> stack;     // open containers
    std::vector<PendingKey> keys; // keys of the open nested members (target modes)
    std::vector<Value> elements;  // elements of the open arrays (target modes)
    bool busy = false;

    // Empties the buffers; big ones (after a deep or huge text) are freed.
    void reset() {
        stack.clear();
        keys.clear();
        elements.clear();
        if (stack.capacity() > 4096) std::vector<Frame>().swap(stack);
        if (keys.capacity() > 4096) std::vector<PendingKey>().swap(keys);
        if (elements.capacity() > 65536) std::vector<Value>().swap(elements);
        if (scratch.capacity() > 65536) std::string().swap(scratch);
        busy = false;
    }
};

thread_local Workspace t_workspace;

inline bool isDigit(char c) {
    return static_cast<unsigned char>(c - '0') < 10;
}
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
#define QUILLJSON_SWAR_DIGITS 1
// Digit runs are read eight bytes at a time, which breaks the multiply-add
// chain of a digit loop (it dominates long fractions).

// The number of leading ASCII digits (0-8) of the eight bytes at p.
inline int leadingDigits(uint64_t x) {
    uint64_t const other =
        ((x & 0xF0F0F0F0F0F0F0F0) | (((x + 0x0606060606060606) & 0xF0F0F0F0F0F0F0F0) >> 4)) ^
        0x3333333333333333;
    return other == 0 ? 8 : __builtin_ctzll(other) / 8;
}

// The value of the first n (1-8) digits of x.
inline uint64_t digitsValue(uint64_t x, int n) {
    if (n < 8) // keep n digits, as the last ones behind leading '0's
        x = (x << (8 * (8 - n))) | (0x3030303030303030ULL >> (8 * n));
    x -= 0x3030303030303030;
    x = x * 10 + (x >> 8); // pairs
    x = (((x & 0x000000FF000000FF) * (100 + (1000000ULL << 32))) +
         (((x >> 16) & 0x000000FF000000FF) * (1 + (10000ULL << 32)))) >>
        32;
    return x;
}
#endif

constexpr uint64_t kPow10Int[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};

inline bool isSpace(char c) {
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

} // namespace

void CodePoint::toUtf8(std::string& out) const {
    uint32_t const cp = value;
    char buf[4];
    size_t n;
    if (cp <= 0x7F) {
        buf[0] = static_cast<char>(cp);
        n = 1;
    } else if (cp <= 0x7FF) {
        buf[0] = static_cast<char>(0xC0 | (cp >> 6));
        buf[1] = static_cast<char>(0x80 | (cp & 0x3F));
        n = 2;
    } else if (cp <= 0xFFFF) {
        buf[0] = static_cast<char>(0xE0 | (cp >> 12));
        buf[1] = static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        buf[2] = static_cast<char>(0x80 | (cp & 0x3F));
        n = 3;
    } else {
        buf[0] = static_cast<char>(0xF0 | (cp >> 18));
        buf[1] = static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        buf[2] = static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        buf[3] = static_cast<char>(0x80 | (cp & 0x3F));
        n = 4;
    }
    out.append(buf, n);
}

// One parse over [p, end). Nesting is handled with an explicit stack of open
// containers, so the depth of the input costs heap memory only. A nested
// container is built in its frame's holder and moved into its parent only once
// it is complete, so after a failure the target holds exactly the completed part.
template <int kMode> class Parser::Run {
    static constexpr bool kTarget = kMode == kBuild || kMode == kBuildKeys;
    static constexpr bool kHandler = kMode == kBuildKeys || kMode == kEvents;
    static constexpr bool kAllEvents = kMode == kEvents;

public:
    Run(AbstractParseHandler* handler, char const* begin, char const* end, uint32_t flags, std::string& error,
        Workspace& ws)
        : p_(begin), end_(end), handler_(handler), flags_(flags), error_(error), scratch_(ws.scratch),
          stack_(ws.stack), keys_(ws.keys), elements_(ws.elements) {}

    bool document(Value* out) {
        // A byte-order mark is skipped byte by byte, so a partial one goes too.
        if (p_ != end_ && static_cast<unsigned char>(*p_) == 0xEF) {
            ++p_;
            if (p_ != end_ && static_cast<unsigned char>(*p_) == 0xBB) {
                ++p_;
                if (p_ != end_ && static_cast<unsigned char>(*p_) == 0xBF) ++p_;
            }
        }
        skipSpace();
        if (p_ == end_) return fail(kUnexpectedCharacter);
        if (*p_ == '{' || *p_ == '[') {
            if (!open(out)) return false;
            if (!nested()) {
                if (kTarget && !stack_.front().isObject) keepRootElements();
                return false;
            }
        } else if (!scalar(out)) {
            return false;
        }
        if (!(flags_ & ParseOption::IgnoreRest)) {
            skipSpace();
            if (p_ != end_ && *p_ != '\0') // a NUL byte ends the text
                return fail(kGarbage);
        }
        return true;
    }

private:
    bool fail(char const* message) {
        error_ = message;
        return false;
    }
    bool cancelled() { return fail(kCancelled); }

    // Compact text has no whitespace between tokens, indented text has runs
    // of it (about two thirds of a typical pretty file): return at once on a
    // non-space, else skip 16 bytes per step.
    void skipSpace() {
        if (p_ == end_ || !isSpace(*p_)) return;
        ++p_;
#if defined(__SSE2__)
        while (end_ - p_ >= 16) {
            __m128i const chunk = _mm_loadu_si128(reinterpret_cast<__m128i const*>(p_));
            __m128i const space = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(chunk, _mm_set1_epi8(' ')),
                                                            _mm_cmpeq_epi8(chunk, _mm_set1_epi8('\n'))),
                                               _mm_or_si128(_mm_cmpeq_epi8(chunk, _mm_set1_epi8('\r')),
                                                            _mm_cmpeq_epi8(chunk, _mm_set1_epi8('\t'))));
            unsigned const other = ~static_cast<unsigned>(_mm_movemask_epi8(space)) & 0xFFFFu;
            if (other != 0) {
                p_ += __builtin_ctz(other);
                return;
            }
            p_ += 16;
        }
#endif
        while (p_ != end_ && isSpace(*p_))
            ++p_;
    }

    // ---- containers -------------------------------------------------------

    // Opens an object or array (p_ at its bracket). The top level (root set)
    // is built straight into the target: an object target keeps its members
    // and gains the parsed ones (inserted, not made private, like
    // Value::insert); an array target is made private and appended to. A
    // nested container is built in a fresh holder in its frame.
    bool open(Value* root) {
        bool const isObject = *p_ == '{';
        stack_.emplace_back(elements_.size(), isObject);
        if (kTarget) {
            Frame& f = stack_.back();
            Value& v = root ? *root : f.holder;
            if (isObject) {
                f.data = &v.become<Value::ObjectType>(Value::Object);
            } else {
                auto& fresh = v.become<Value::ArrayType>(Value::Array);
                f.data = root ? &v.makePrivate<Value::ArrayType>() : &fresh; // a holder is never shared
            }
        }
        ++p_; // past '{' or '['
        if (kAllEvents && !(isObject ? handler_->onObjectBegin() : handler_->onArrayBegin()))
            return cancelled();
        return true;
    }

    // Array elements are staged on one stack shared by all open arrays and
    // moved into their array, allocated once at its final size, when it is
    // complete: no regrowing while reading.
    void moveElements(Frame& f) {
        auto& vec = *static_cast<Value::ArrayType*>(f.data);
        auto const first = elements_.begin() + static_cast<std::ptrdiff_t>(f.base);
        if (vec.empty()) {
            vec.assign(std::make_move_iterator(first), std::make_move_iterator(elements_.end()));
        } else {
            vec.reserve(vec.size() + (elements_.size() - f.base));
            vec.insert(vec.end(), std::make_move_iterator(first), std::make_move_iterator(elements_.end()));
        }
        elements_.resize(f.base); // moved from: nulls
    }

    // After a failure the top-level array keeps the elements read before it.
    void keepRootElements() {
        size_t end = elements_.size();
        for (size_t i = 1; i < stack_.size(); ++i)
            if (!stack_[i].isObject) {
                end = stack_[i].base;
                break;
            }
        elements_.resize(end); // drops the elements of unfinished nested arrays
        moveElements(stack_.front());
    }

    // The first of two equal keys wins: emplace leaves an existing member
    // alone. The end hint makes keys arriving in ascending order (common)
    // cost one comparison instead of a tree search; the key is made in the
    // node straight from the input.
    static void insertMember(Frame& f, char const* text, size_t size, std::string& decoded, Value&& v) {
        auto& map = *static_cast<Value::ObjectType*>(f.data);
        if (text)
            map.emplace_hint(map.end(), std::piecewise_construct, std::forward_as_tuple(text, size),
                             std::forward_as_tuple(std::move(v)));
        else
            map.emplace_hint(map.end(), std::move(decoded), std::move(v));
    }

    bool nested() {
        for (;;) {
            Frame* f = &stack_.back();
            if (f->isObject) {
                // Just past '{' or ','. The text may end here (the object is
                // complete so far); bytes other than '"' and '}' are skipped.
                for (;;) {
                    if (p_ == end_) goto complete;
                    skipSpace();
                    if (p_ == end_) goto complete;
                    if (*p_ == '"') break;
                    if (*p_ == '}') {
                        if (f->count > 0 && !(flags_ & ParseOption::TrailingComma)) return fail(kObjectComma);
                        if (kHandler && !handler_->onObjectEnd(f->count)) return cancelled();
                        ++p_;
                        goto complete;
                    }
                    ++p_;
                }
                char const* kb;
                size_t kn;
                if (!string(kb, kn)) return false;
                std::string decoded;
                if (kTarget && kb == scratch_.data()) { // the value may reuse scratch_
                    decoded.assign(kb, kn);
                    kb = nullptr;
                }
                if (kHandler) {
                    bool const goOn = kTarget ? handler_->onObjectKey(kb ? std::string(kb, kn) : decoded)
                                              : handler_->onObjectKey(handlerText(kb, kn));
                    if (!goOn) return cancelled();
                }
                skipSpace();
                if (p_ == end_ || *p_ != ':') return fail(kObjectJunk);
                ++p_;
                skipSpace();
                if (p_ == end_) return fail(kUnexpectedCharacter);
                if (*p_ == '{' || *p_ == '[') {
                    if (kTarget) keys_.emplace_back(kb, kn, std::move(decoded));
                    if (!open(nullptr)) return false;
                    continue;
                }
                if (kTarget) {
                    Value v;
                    if (!scalar(&v)) return false;
                    insertMember(*f, kb, kn, decoded, std::move(v));
                } else if (!scalar(nullptr)) {
                    return false;
                }
            } else {
                // Just past '[' or ','.
                if (p_ == end_) goto complete;
                skipSpace();
                if (p_ != end_ && *p_ == ']') {
                    if (f->count > 0 && !(flags_ & ParseOption::TrailingComma)) return fail(kArrayComma);
                    if (kHandler && !handler_->onArrayEnd(f->count)) return cancelled();
                    ++p_;
                    goto complete;
                }
                if (p_ == end_) return fail(kUnexpectedCharacter);
                if (*p_ == '{' || *p_ == '[') {
                    if (!open(nullptr)) return false;
                    continue;
                }
                if (kTarget) {
                    // Parsed in place; dropped again when it fails.
                    elements_.emplace_back();
                    if (!scalar(&elements_.back())) {
                        elements_.pop_back();
                        return false;
                    }
                } else if (!scalar(nullptr)) {
                    return false;
                }
            }

        afterValue: // f is the innermost open frame; one member or element was read
            ++f->count;
            skipSpace();
            if (p_ != end_ && *p_ == ',') {
                ++p_;
                continue;
            }
            if (f->isObject) {
                if (p_ == end_ || *p_ != '}') return fail(kObjectJunk);
                if (kHandler && !handler_->onObjectEnd(f->count)) return cancelled();
            } else {
                if (p_ == end_ || *p_ != ']') return fail(kArrayJunk);
                if (kHandler && !handler_->onArrayEnd(f->count)) return cancelled();
            }
            ++p_;

        complete: // the innermost frame is complete: hand it to its parent
            if (kTarget && !stack_.back().isObject) moveElements(stack_.back());
            if (stack_.size() == 1) {
                stack_.pop_back();
                return true;
            }
            {
                Value child(std::move(stack_.back().holder));
                stack_.pop_back();
                f = &stack_.back();
                if (kTarget) {
                    if (f->isObject) {
                        PendingKey& key = keys_.back();
                        insertMember(*f, key.text, key.size, key.decoded, std::move(child));
                        keys_.pop_back();
                    } else {
                        elements_.push_back(std::move(child));
                    }
                }
            }
            goto afterValue;
        }
    }

    // ---- scalars ----------------------------------------------------------

    // A value that is not a container; the caller has skipped the whitespace
    // and checked for the end. target is null unless building.
    bool scalar(Value* target) {
        switch (*p_) {
        case '"': {
            char const* sb;
            size_t sn;
            if (!string(sb, sn)) return false;
            if (kTarget)
                target->assignString(sb, sn);
            else if (kAllEvents && !handler_->onString(handlerText(sb, sn)))
                return cancelled();
            return true;
        }
        case 't':
            return literal("true", 4, kBadBoolean) &&
                   emit(target, Value(true), [this] { return handler_->onBool(true); });
        case 'f':
            return literal("false", 5, kBadBoolean) &&
                   emit(target, Value(false), [this] { return handler_->onBool(false); });
        case 'n':
            return literal("null", 4, kBadNull) &&
                   emit(target, Value(), [this] { return handler_->onNull(); });
        default:
            if (*p_ == '-' || isDigit(*p_)) return number(target);
            return fail(kUnexpectedCharacter);
        }
    }

    bool literal(char const* word, size_t n, char const* message) {
        for (size_t i = 0; i < n; ++i, ++p_)
            if (p_ == end_ || *p_ != word[i]) return fail(message);
        return true;
    }

    // Stores a scalar in the target (its old content released), or reports
    // it through the event in the handler-only mode.
    template <typename Event> bool emit(Value* target, Value&& value, Event event) {
        if (kTarget)
            *target = std::move(value);
        else if (kAllEvents && !event())
            return cancelled();
        return true;
    }

    // A text for onObjectKey/onString in the handler-only mode: the scratch
    // buffer, which already holds it when it had escapes.
    std::string const& handlerText(char const* b, size_t n) {
        if (b != scratch_.data()) scratch_.assign(b, n);
        return scratch_;
    }

    // Stops at the first '"' or '\\' or at the end.
    void scanPlain() {
#if defined(__SSE2__)
        __m128i const quote = _mm_set1_epi8('"');
        __m128i const backslash = _mm_set1_epi8('\\');
        while (end_ - p_ >= 16) {
            __m128i const chunk = _mm_loadu_si128(reinterpret_cast<__m128i const*>(p_));
            int const mask = _mm_movemask_epi8(
                _mm_or_si128(_mm_cmpeq_epi8(chunk, quote), _mm_cmpeq_epi8(chunk, backslash)));
            if (mask != 0) {
                p_ += __builtin_ctz(static_cast<unsigned>(mask));
                return;
            }
            p_ += 16;
        }
#endif
        while (p_ != end_ && *p_ != '"' && *p_ != '\\')
            ++p_;
    }

    // Reads a string (p_ at its opening quote). Without escapes the result is
    // a view of the input; with escapes it is decoded into scratch_. Every byte
    // other than '"' and '\\' is taken as it is.
    bool string(char const*& b, size_t& n) {
        char const* start = ++p_;
        scanPlain();
        if (p_ == end_) return fail(kUnterminated);
        if (*p_ == '"') {
            b = start;
            n = static_cast<size_t>(p_ - start);
            ++p_;
            return true;
        }
        scratch_.assign(start, p_);
        for (;;) {
            if (*p_ == '"') {
                ++p_;
                b = scratch_.data();
                n = scratch_.size();
                return true;
            }
            ++p_; // past the backslash
            if (p_ == end_) return fail(kBadEscape);
            char c = *p_++;
            switch (c) {
            case '"':
            case '/':
            case '\\':
                break;
            case 'b':
                c = '\b';
                break;
            case 'f':
                c = '\f';
                break;
            case 'n':
                c = '\n';
                break;
            case 'r':
                c = '\r';
                break;
            case 't':
                c = '\t';
                break;
            case 'u':
                if (!unicode()) // appends the code point itself
                    return false;
                goto plain;
            default:
                return fail(kBadEscape);
            }
            scratch_ += c;
        plain:
            start = p_;
            scanPlain();
            if (p_ == end_) return fail(kUnterminated);
            scratch_.append(start, p_);
        }
    }

    bool hex(uint32_t& unit) {
        unit = 0;
        for (int i = 0; i < 4; ++i, ++p_) {
            if (p_ == end_) return fail(kBadHex);
            char const c = *p_;
            uint32_t digit;
            if (isDigit(c))
                digit = static_cast<uint32_t>(c - '0');
            else if (c >= 'a' && c <= 'f')
                digit = static_cast<uint32_t>(c - 'a' + 10);
            else if (c >= 'A' && c <= 'F')
                digit = static_cast<uint32_t>(c - 'A' + 10);
            else
                return fail(kBadHex);
            unit = unit * 16 + digit;
        }
        return true;
    }

    // After "\u": one code point, appended to scratch_ as UTF-8.
    bool unicode() {
        uint32_t unit;
        if (!hex(unit)) return false;
        uint32_t cp = unit;
        if (unit >= 0xDC00 && unit <= 0xDFFF) return false; // a low surrogate first: fails without a message
        if (unit >= 0xD800 && unit <= 0xDBFF) {
            if (p_ == end_ || *p_ != '\\') return fail(kBadSurrogate);
            ++p_;
            if (p_ == end_ || *p_ != 'u') return fail(kBadSurrogate);
            ++p_;
            uint32_t low;
            if (!hex(low)) return false;
            if (low < 0xDC00 || low > 0xDFFF) return fail(kBadSurrogate);
            cp = (unit << 10) + (low & 0x3FF) - 0x35F0000;
        }
        CodePoint{cp}.toUtf8(scratch_);
        return true;
    }

    // One pass over the number: the integer value (with the overflow rule
    // below) and, for a real, up to 19 significant digits and their decimal
    // exponent, converted without reading the text again.
    bool number(Value* target) {
        char const* const start = p_;
        bool const negative = *p_ == '-';
        if (negative) ++p_;
        if (p_ == end_ || !isDigit(*p_)) return fail(kNoDigit);
        uint64_t magnitude = 0;
        bool overflow = false;
        char const* const digits = p_;
        if (*p_ == '0') {
            ++p_;
            if (p_ != end_ && isDigit(*p_)) return fail(kLeadingZero);
        } else {
#if QUILLJSON_SWAR_DIGITS
            // Sixteen digits stay far below the overflow bound.
            while (end_ - p_ >= 8 && p_ - digits <= 8) {
                uint64_t x;
                std::memcpy(&x, p_, 8);
                int const n = leadingDigits(x);
                if (n == 0) break;
                magnitude = magnitude * kPow10Int[n] + digitsValue(x, n);
                p_ += n;
                if (n < 8) break;
            }
#endif
            if (p_ != end_ && isDigit(*p_)) do {
                    unsigned const digit = static_cast<unsigned>(*p_ - '0');
                    // Below the bound the digit is multiplied in. At or above it only
                    // a digit above 7 counts as overflow; the others still multiply
                    // in, so a magnitude past the bound wraps (the test is signed).
                    if (static_cast<int64_t>(magnitude) < 0x0CCCCCCCCCCCCCCCLL || digit <= 7) {
                        magnitude = magnitude * 10 + digit;
                    } else {
                        overflow = true;
                        do
                            ++p_;
                        while (p_ != end_ && isDigit(*p_));
                        break;
                    }
                    ++p_;
                } while (p_ != end_ && isDigit(*p_));
        }

        // Up to 19 digits without overflow, the magnitude is exact (unsigned).
        uint64_t significand = magnitude;
        int significant = magnitude == 0 ? 0 : static_cast<int>(p_ - digits);
        bool exact = !overflow && p_ - digits <= 19;
        int64_t exponent10 = 0;
        bool fraction = false;
        if (p_ != end_ && *p_ == '.') {
            ++p_;
            if (p_ == end_ || !isDigit(*p_)) return fail(kNoFraction);
            fraction = true;
            while (significand == 0 && *p_ == '0') { // leading zeros only move the point
                --exponent10;
                if (++p_ == end_ || !isDigit(*p_)) break;
            }
#if QUILLJSON_SWAR_DIGITS
            while (end_ - p_ >= 8) {
                uint64_t x;
                std::memcpy(&x, p_, 8);
                int const n = leadingDigits(x);
                if (n == 0 || significant + n > 19) break;
                significand = significand * kPow10Int[n] + digitsValue(x, n);
                significant += n;
                exponent10 -= n;
                p_ += n;
                if (n < 8) break;
            }
#endif
            if (p_ != end_ && isDigit(*p_)) do {
                    unsigned const digit = static_cast<unsigned>(*p_ - '0');
                    if (significand == 0 && digit == 0) { // leading zeros only move the point
                        --exponent10;
                    } else if (significant < 19) {
                        significand = significand * 10 + digit;
                        ++significant;
                        --exponent10;
                    } else {
                        exact = false;
                    }
                } while (++p_ != end_ && isDigit(*p_));
        }
        // The exponent's value is summed in 32 bits, wrapping like the int it
        // always was: "1e4294967296" has the value 0 and is the integer 1. Only
        // that test sees the wrapped value; the conversion reads the text.
        char const* exponentAt = nullptr;
        uint32_t exponentValue = 0;
        if (p_ != end_ && (*p_ == 'e' || *p_ == 'E')) {
            exponentAt = p_++;
            bool exponentNegative = false;
            if (p_ != end_ && (*p_ == '-' || *p_ == '+')) exponentNegative = *p_++ == '-';
            if (p_ == end_ || !isDigit(*p_)) return fail(kNoExponent);
            int64_t e = 0;
            do {
                unsigned const digit = static_cast<unsigned>(*p_ - '0');
                exponentValue = exponentValue * 10 + digit;
                if (e < 1000000) e = e * 10 + digit; // far beyond any double: saturates
            } while (++p_ != end_ && isDigit(*p_));
            if (exponentValue != 0) exponent10 += exponentNegative ? -e : e;
        }

        if (!overflow && !fraction && exponentValue == 0) { // "1e0" and "-0" are integers too
            int64_t const i = static_cast<int64_t>(negative ? 0 - magnitude : magnitude);
            return emit(target, Value(i), [this, i] { return handler_->onInteger(i); });
        }

        double d;
        if (exact && significand == 0) {
            d = negative ? -0.0 : 0.0;
        } else if (!exact || !detail::decimalToDouble(significand, exponent10, negative, d)) {
            // Many digits, or a result out of range: convert the text (a zero
            // exponent is cut off first).
            char const* const textEnd = exponentAt && exponentValue == 0 ? exponentAt : p_;
            if (!toDouble(start, textEnd, d)) return fail(kBadReal);
        }
        return emit(target, Value(d), [this, d] { return handler_->onDouble(d); });
    }

    // What Double::strToDouble gives for the number's text (with "e+" written
    // "e"). std::from_chars is correctly rounded like strtod; it refuses
    // results that overflow or underflow, where strtod's inf, 0 or denormal is
    // what gets stored, so those go through strToDouble.
    static bool toDouble(char const* b, char const* e, double& d) {
#if defined(__cpp_lib_to_chars)
        auto const r = std::from_chars(b, e, d);
        if (r.ec == std::errc() && r.ptr == e) return true;
#endif
        std::string text;
        text.reserve(static_cast<size_t>(e - b));
        for (char const* q = b; q != e; ++q)
            if (*q != '+') text += *q == 'E' ? 'e' : *q;
        bool ok = false;
        d = Double::strToDouble(text.c_str(), &ok);
        return ok;
    }

    char const* p_;
    char const* const end_;
    AbstractParseHandler* const handler_;
    uint32_t const flags_;
    std::string& error_;
    std::string& scratch_;
    std::vector<Frame>& stack_;
    std::vector<PendingKey>& keys_;
    std::vector<Value>& elements_;
};

bool Parser::parse(Value* out, AbstractParseHandler* handler, char const* begin, char const* end,
                   ParseOption const& option, std::string* error) {
    error_.clear();
    if (!begin) end = begin;
    uint32_t const flags = option.flags & 0xFF;
    Workspace own;
    Workspace* ws = t_workspace.busy ? &own : &t_workspace;
    ws->busy = true;
    struct Release { // also when a handler throws
        Workspace* ws;
        ~Release() { ws->reset(); }
    } release{ws};
    bool ok;
    if (out && handler)
        ok = Run<kBuildKeys>(handler, begin, end, flags, error_, *ws).document(out);
    else if (out)
        ok = Run<kBuild>(handler, begin, end, flags, error_, *ws).document(out);
    else if (handler)
        ok = Run<kEvents>(handler, begin, end, flags, error_, *ws).document(nullptr);
    else
        ok = Run<kCheck>(handler, begin, end, flags, error_, *ws).document(nullptr);
    if (error) *error = error_;
    return ok;
}

} // namespace quilljson

#include "parser.h"

#include <charconv>
#include <cstring>
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

inline bool isDigit(char c) {
    return static_cast<unsigned char>(c - '0') < 10;
}
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

    using ObjectBox = Value::Container<Value::ObjectType>;
    using ArrayBox = Value::Container<Value::ArrayType>;
    using StringBox = Value::Container<std::string>;

    struct Frame {
        Value holder;   // owns a nested container until it is complete; null for the top level
        void* data;     // its ObjectType or ArrayType (target modes)
        uint64_t count; // members or elements read
        bool isObject;
    };

public:
    Run(AbstractParseHandler* handler, char const* begin, char const* end, uint32_t flags, std::string& error)
        : p_(begin), end_(end), handler_(handler), flags_(flags), error_(error) {}

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
            if (!openRoot(out)) return false;
            if (!nested()) return false;
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

    void skipSpace() {
        while (p_ != end_ && isSpace(*p_))
            ++p_;
    }

    // ---- containers -------------------------------------------------------

    // The top level goes straight into the target: an object target keeps its
    // members and gains the parsed ones (inserted, not made private, like
    // Value::insert); an array target is made private and appended to.
    bool openRoot(Value* out) {
        bool const isObject = *p_ == '{';
        Frame f{Value(), nullptr, 0, isObject};
        if (kTarget) {
            if (isObject) {
                if (out->type_ != Value::Object) {
                    out->release();
                    out->payload_.c = new ObjectBox();
                    out->type_ = Value::Object;
                }
                f.data = &static_cast<ObjectBox*>(out->payload_.c)->data;
            } else {
                if (out->type_ != Value::Array) {
                    out->release();
                    out->payload_.c = new ArrayBox();
                    out->type_ = Value::Array;
                } else if (out->payload_.c->count >= 2) {
                    auto* copy = new ArrayBox(static_cast<ArrayBox*>(out->payload_.c)->data);
                    --out->payload_.c->count;
                    out->payload_.c = copy;
                }
                f.data = &static_cast<ArrayBox*>(out->payload_.c)->data;
            }
        }
        stack_.push_back(std::move(f));
        return begin(isObject);
    }

    // A nested container: a fresh one in the new frame's holder.
    bool openNested() {
        bool const isObject = *p_ == '{';
        Frame f{Value(), nullptr, 0, isObject};
        if (kTarget) {
            if (isObject) {
                auto* box = new ObjectBox();
                f.holder.payload_.c = box;
                f.holder.type_ = Value::Object;
                f.data = &box->data;
            } else {
                auto* box = new ArrayBox();
                f.holder.payload_.c = box;
                f.holder.type_ = Value::Array;
                f.data = &box->data;
            }
        }
        stack_.push_back(std::move(f));
        return begin(isObject);
    }

    bool begin(bool isObject) {
        ++p_; // past '{' or '['
        if (kAllEvents && !(isObject ? handler_->onObjectBegin() : handler_->onArrayBegin()))
            return cancelled();
        return true;
    }

    // Members of the first-inserted key win: an existing key is left alone.
    // Keys arriving in ascending order (common) are placed at the end with a
    // single comparison instead of a tree search.
    static void insertMember(Frame& f, std::string&& key, Value&& v) {
        auto& map = *static_cast<Value::ObjectType*>(f.data);
        if (map.empty() || map.rbegin()->first < key)
            map.emplace_hint(map.end(), std::move(key), std::move(v));
        else
            map.try_emplace(std::move(key), std::move(v));
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
                std::string key;
                if (kTarget) key.assign(kb, kn);
                if (kHandler && !handler_->onObjectKey(handlerText(key, kb, kn))) return cancelled();
                skipSpace();
                if (p_ == end_ || *p_ != ':') return fail(kObjectJunk);
                ++p_;
                skipSpace();
                if (p_ == end_) return fail(kUnexpectedCharacter);
                if (*p_ == '{' || *p_ == '[') {
                    if (kTarget) keys_.push_back(std::move(key));
                    if (!openNested()) return false;
                    continue;
                }
                if (kTarget) {
                    Value v;
                    if (!scalar(&v)) return false;
                    insertMember(*f, std::move(key), std::move(v));
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
                    if (!openNested()) return false;
                    continue;
                }
                if (kTarget) {
                    // Parsed in place; dropped again when it fails.
                    auto& vec = *static_cast<Value::ArrayType*>(f->data);
                    vec.emplace_back();
                    if (!scalar(&vec.back())) {
                        vec.pop_back();
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
                        insertMember(*f, std::move(keys_.back()), std::move(child));
                        keys_.pop_back();
                    } else {
                        static_cast<Value::ArrayType*>(f->data)->push_back(std::move(child));
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
            if (kTarget) {
                if (target->type_ == Value::String && target->payload_.c->count < 2) {
                    static_cast<StringBox*>(target->payload_.c)->data.assign(sb, sn);
                } else {
                    auto* box = new StringBox(std::string(sb, sn));
                    target->release();
                    target->payload_.c = box;
                    target->type_ = Value::String;
                }
            } else if (kAllEvents) {
                std::string none;
                if (!handler_->onString(handlerText(none, sb, sn))) return cancelled();
            }
            return true;
        }
        case 't':
            return literal("true", 4, kBadBoolean) && setBool(target, true);
        case 'f':
            return literal("false", 5, kBadBoolean) && setBool(target, false);
        case 'n':
            if (!literal("null", 4, kBadNull)) return false;
            if (kTarget)
                target->release();
            else if (kAllEvents && !handler_->onNull())
                return cancelled();
            return true;
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

    bool setBool(Value* target, bool b) {
        if (kTarget) {
            target->release();
            target->type_ = Value::Boolean;
            target->payload_.b = b;
        } else if (kAllEvents && !handler_->onBool(b)) {
            return cancelled();
        }
        return true;
    }

    // The text handed to onObjectKey/onString: the key itself when it was
    // built, else the scratch buffer (which may already hold it).
    std::string const& handlerText(std::string const& built, char const* b, size_t n) {
        if (kTarget) return built;
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

    // Integers are accumulated while scanning; everything else is converted
    // from the number's text.
    bool number(Value* target) {
        char const* const start = p_;
        bool const negative = *p_ == '-';
        if (negative) ++p_;
        if (p_ == end_ || !isDigit(*p_)) return fail(kNoDigit);
        uint64_t magnitude = 0;
        bool overflow = false;
        if (*p_ == '0') {
            ++p_;
            if (p_ != end_ && isDigit(*p_)) return fail(kLeadingZero);
        } else {
            do {
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
        bool fraction = false;
        if (p_ != end_ && *p_ == '.') {
            ++p_;
            if (p_ == end_ || !isDigit(*p_)) return fail(kNoFraction);
            do
                ++p_;
            while (p_ != end_ && isDigit(*p_));
            fraction = true;
        }
        char const* exponentAt = nullptr;
        bool exponentNonZero = false;
        if (p_ != end_ && (*p_ == 'e' || *p_ == 'E')) {
            exponentAt = p_++;
            if (p_ != end_ && (*p_ == '-' || *p_ == '+')) ++p_;
            if (p_ == end_ || !isDigit(*p_)) return fail(kNoExponent);
            do
                exponentNonZero |= *p_ != '0';
            while (++p_ != end_ && isDigit(*p_));
        }

        if (!overflow && !fraction && !exponentNonZero) { // "1e0" and "-0" are integers too
            int64_t const i = static_cast<int64_t>(negative ? 0 - magnitude : magnitude);
            if (kTarget) {
                target->release();
                target->type_ = Value::Integer;
                target->payload_.i = i;
            } else if (kAllEvents && !handler_->onInteger(i)) {
                return cancelled();
            }
            return true;
        }

        // A zero exponent is cut off before converting.
        char const* const textEnd = exponentAt && !exponentNonZero ? exponentAt : p_;
        double d;
        if (!toDouble(start, textEnd, d)) return fail(kBadReal);
        if (kTarget) {
            target->release();
            target->type_ = Value::Float;
            target->payload_.d = d;
        } else if (kAllEvents && !handler_->onDouble(d)) {
            return cancelled();
        }
        return true;
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
    std::string scratch_;
    std::vector<Frame> stack_;
    std::vector<std::string> keys_; // keys of the open nested members (target modes)
};

bool Parser::parse(Value* out, AbstractParseHandler* handler, char const* begin, char const* end,
                   ParseOption const& option, std::string* error) {
    error_.clear();
    if (!begin) end = begin;
    uint32_t const flags = option.flags & 0xFF;
    bool ok;
    if (out && handler)
        ok = Run<kBuildKeys>(handler, begin, end, flags, error_).document(out);
    else if (out)
        ok = Run<kBuild>(handler, begin, end, flags, error_).document(out);
    else if (handler)
        ok = Run<kEvents>(handler, begin, end, flags, error_).document(nullptr);
    else
        ok = Run<kCheck>(handler, begin, end, flags, error_).document(nullptr);
    if (error) *error = error_;
    return ok;
}

} // namespace quilljson

#include "serializer.h"

#include <atomic>
#include <cmath>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif
#include <cstdlib>
#include <new>
#include <type_traits>
#include <vector>

#include "number_text.h"

namespace quilljson {

namespace {

char const kNonFinite[] = "Floating point is nan or inf.";

// What each byte of a string becomes: 0 itself, 'u' "\u00xx", else a backslash
// and that character. '/' and the bytes 0x80-0xFF pass through unchanged.
struct EscapeTable {
    char code[256];
    constexpr EscapeTable() : code() {
        for (int c = 0; c < 0x20; ++c)
            code[c] = 'u';
        code[0x7F] = 'u';
        code[0x08] = 'b';
        code[0x09] = 't';
        code[0x0A] = 'n';
        code[0x0C] = 'f';
        code[0x0D] = 'r';
        code[0x22] = '"';
        code[0x5C] = '\\';
    }
};
constexpr EscapeTable kEscape;

#if defined(__SSE2__)
// One bit per byte of the chunk that needs an escape.
inline unsigned escapeMask(__m128i chunk) {
    __m128i const control = _mm_cmpeq_epi8(_mm_max_epu8(chunk, _mm_set1_epi8(0x1F)), _mm_set1_epi8(0x1F));
    __m128i const special = _mm_or_si128(
        _mm_or_si128(_mm_cmpeq_epi8(chunk, _mm_set1_epi8('"')), _mm_cmpeq_epi8(chunk, _mm_set1_epi8('\\'))),
        _mm_cmpeq_epi8(chunk, _mm_set1_epi8(0x7F)));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(control, special)));
}
#endif

// A std::string shorter than 16 bytes can be read 16 bytes at a time from
// data(): libstdc++ (its C++11 string; the old reference-counted one keeps
// short texts in blocks just their size) keeps such a text in a 16-byte
// buffer inside the string object or in a heap block of at least 17 bytes,
// and libc++'s short buffer is 23 bytes. The bytes past the text may be
// unwritten, which only MemorySanitizer would object to; their bits are
// masked off. AddressSanitizer with libc++ may mark the unused capacity of a
// long string as unreadable, so that build goes byte by byte.
#if defined(__SSE2__) && ((defined(__GLIBCXX__) && _GLIBCXX_USE_CXX11_ABI) || defined(_LIBCPP_VERSION))
#if defined(__has_feature)
#if __has_feature(memory_sanitizer) || (defined(_LIBCPP_VERSION) && __has_feature(address_sanitizer))
#define QUILLJSON_SHORT_STRING_LOAD 0
#endif
#endif
#ifndef QUILLJSON_SHORT_STRING_LOAD
#define QUILLJSON_SHORT_STRING_LOAD 1
#endif
#else
#define QUILLJSON_SHORT_STRING_LOAD 0
#endif

// The text is written through a raw cursor into a buffer, then appended to
// the caller's string in one piece. A string grown in place would be
// zero-filled and copied on every doubling. The buffer is first one inside the
// writer, which a response or any small document never leaves; a larger text
// moves to a heap block grown with realloc. The block of a large text is kept
// afterwards for the next one, as it is warm and its pages are faulted in: one
// block for the process, in a slot that a writer empties when it needs a block
// and fills when it is done, so that only writers of large texts touch it (no
// per-thread buffer: those are slow to reach, and a risk, in a library opened
// at run time).
constexpr size_t kInlineBuffer = 2048;
constexpr size_t kKeptBuffer = size_t(4) << 20; // a larger block is freed after use
constexpr size_t kBlockHeader = 16;             // the block's capacity, keeping the text aligned

struct KeptBlock {
    std::atomic<char*> block{nullptr};
    ~KeptBlock() { std::free(block.exchange(nullptr)); }
};
KeptBlock g_kept;

inline size_t& blockCapacity(char* block) {
    return *reinterpret_cast<size_t*>(block);
}

class Writer {
public:
    Writer() : cur_(inline_), limit_(inline_ + kInlineBuffer) {}
    ~Writer() { std::free(block_); }
    Writer(Writer const&) = delete;
    Writer& operator=(Writer const&) = delete;

    // Appends the text to out (also after a failure: what was written stays).
    void finish(std::string& out) {
        char const* const begin = block_ ? block_ + kBlockHeader : inline_;
        out.append(begin, static_cast<size_t>(cur_ - begin));
        if (block_ && blockCapacity(block_) <= kKeptBuffer) {
            std::free(g_kept.block.exchange(block_, std::memory_order_acq_rel));
            block_ = nullptr;
        }
    }

    void reserve(size_t n) {
        if (static_cast<size_t>(limit_ - cur_) < n) grow(n);
    }
    void put(char c) { *cur_++ = c; }
    void put(char const* s, size_t n) {
        std::memcpy(cur_, s, n);
        cur_ += n;
    }

    void integer(int64_t i) {
        reserve(detail::kNumberTextMax);
        cur_ = detail::writeInteger(cur_, i);
    }

    bool real(double d) {
        if (!std::isfinite(d)) return false;
        reserve(detail::kNumberTextMax);
        if (d == 0.0)
            put("0.0", 3);
        else
            cur_ = detail::writeDouble(cur_, d);
        return true;
    }

    void string(std::string const& s) {
        size_t const size = s.size();
        reserve(size * 6 + 18); // room for a 16-byte store past the quote
        char* w = cur_;
        *w++ = '"';
        unsigned char const* b = reinterpret_cast<unsigned char const*>(s.data());
        unsigned char const* const e = b + size;
#if QUILLJSON_SHORT_STRING_LOAD
        // Most keys and many texts are shorter than 16 bytes: one load, one
        // test, one store, instead of a byte loop.
        if (size < 16) {
            __m128i const chunk = _mm_loadu_si128(reinterpret_cast<__m128i const*>(b));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(w), chunk);
            if ((escapeMask(chunk) & ((1u << size) - 1)) == 0) {
                w[size] = '"';
                cur_ = w + size + 1;
                return;
            }
        }
#endif
        for (;;) {
#if defined(__SSE2__)
            // Bytes that need no escape are copied 16 at a time, up to the
            // first one that does.
            while (e - b >= 16) {
                __m128i const chunk = _mm_loadu_si128(reinterpret_cast<__m128i const*>(b));
                unsigned const mask = escapeMask(chunk);
                _mm_storeu_si128(reinterpret_cast<__m128i*>(w), chunk);
                if (mask != 0) {
                    unsigned const clean = static_cast<unsigned>(__builtin_ctz(mask));
                    b += clean; // the bytes stored after it are rewritten below
                    w += clean;
                    break;
                }
                b += 16;
                w += 16;
            }
#endif
            if (b == e) break;
            unsigned char const c = *b++;
            char const code = kEscape.code[c];
            if (code == 0) {
                *w++ = static_cast<char>(c);
            } else if (code != 'u') {
                w[0] = '\\';
                w[1] = code;
                w += 2;
            } else {
                static char const kHex[] = "0123456789abcdef";
                std::memcpy(w, "\\u00", 4);
                w[4] = kHex[c >> 4];
                w[5] = kHex[c & 0xF];
                w += 6;
            }
        }
        *w++ = '"';
        cur_ = w;
    }

private:
    void grow(size_t n) {
        char* const begin = block_ ? block_ + kBlockHeader : inline_;
        size_t const used = static_cast<size_t>(cur_ - begin);
        size_t capacity = (block_ ? blockCapacity(block_) : kInlineBuffer) * 2;
        if (capacity < used + n) capacity = used + n;
        char* block = block_;
        if (!block) { // leaving the inline buffer: the kept block if it is large enough
            block = g_kept.block.exchange(nullptr, std::memory_order_acq_rel);
            if (block && blockCapacity(block) >= capacity) capacity = blockCapacity(block);
        }
        if (!block || blockCapacity(block) < capacity) {
            char* const grown = static_cast<char*>(std::realloc(block, kBlockHeader + capacity));
            if (!grown) {
                if (!block_) std::free(block);
                throw std::bad_alloc();
            }
            block = grown;
            blockCapacity(block) = capacity;
        }
        if (!block_) std::memcpy(block + kBlockHeader, inline_, used);
        block_ = block;
        cur_ = block + kBlockHeader + used;
        limit_ = block + kBlockHeader + capacity;
    }

    char* block_ = nullptr; // the heap block once the text outgrew inline_
    char* cur_;
    char* limit_;
    char inline_[kInlineBuffer];
};

// Pretty-printing attributes; unused when compact.
struct Layout {
    char const* lineBreak;
    size_t lineBreakSize;
    char const* unit;
    size_t unitSize;
};

// One open container: the members still to write. Made in place on the
// stack: a temporary copied in is read back with wider loads than it was
// written with, which stalls the store forwarding for every container.
struct Frame {
    explicit Frame(Value::ObjectType const& map)
        : isObject(true), any(false), member(map.begin()), memberEnd(map.end()), element(nullptr),
          elementEnd(nullptr) {}
    explicit Frame(Value::ArrayType const& vec)
        : isObject(false), any(false), element(vec.data()), elementEnd(vec.data() + vec.size()) {}
    bool isObject;
    bool any; // a member was written: the next one needs a comma
    Value::ObjectType::const_iterator member, memberEnd;
    Value const* element;
    Value const* elementEnd;
};

// The open containers: the first levels in the worker itself, so that a
// response or a shallow document needs no heap block for them; deeper ones in
// a vector, so that depth costs heap, not stack.
class FrameStack {
public:
    template <typename Container> void emplace_back(Container const& c) {
        if (size_ < kInline)
            ::new (static_cast<void*>(inline_ + size_ * sizeof(Frame))) Frame(c);
        else
            deep_.emplace_back(c);
        ++size_;
    }
    Frame& back() { return size_ <= kInline ? inlineFrame(size_ - 1) : deep_.back(); }
    void pop_back() {
        if (size_ > kInline) deep_.pop_back();
        --size_;
    }
    bool empty() const { return size_ == 0; }
    size_t size() const { return size_; }

private:
    static constexpr size_t kInline = 16;
    static_assert(std::is_trivially_destructible<Frame>::value, "frames are dropped without a destructor");
    Frame& inlineFrame(size_t i) {
        return *std::launder(reinterpret_cast<Frame*>(inline_ + i * sizeof(Frame)));
    }

    size_t size_ = 0;
    alignas(Frame) unsigned char inline_[kInline * sizeof(Frame)];
    std::vector<Frame> deep_;
};

class SerializeWorker {
public:
    SerializeWorker(Writer& w, Layout const& layout) : w_(w), layout_(layout) {}

    // Writes a value. Containers are walked with an explicit stack: each loop
    // turn writes one value, opening a frame for a non-empty container, then
    // closes finished frames and moves to the next member.
    template <bool kPretty> bool run(Value const& root) {
        Value const* v = &root;
        for (;;) {
            switch (v->type()) {
            case Value::Null:
                w_.reserve(4);
                w_.put("null", 4);
                break;
            case Value::Boolean:
                w_.reserve(5);
                if (v->getBool())
                    w_.put("true", 4);
                else
                    w_.put("false", 5);
                break;
            case Value::Integer:
                w_.integer(v->getInteger());
                break;
            case Value::Float:
                if (!w_.real(v->getDouble())) return false;
                break;
            case Value::String:
                w_.string(v->stringRef());
                break;
            case Value::Object: {
                auto const& map = v->objectRef();
                w_.reserve(2);
                if (map.empty()) {
                    w_.put("{}", 2); // no line break inside, pretty or not
                    break;
                }
                w_.put('{');
                stack_.emplace_back(map);
                break;
            }
            case Value::Array: {
                auto const& vec = v->arrayRef();
                w_.reserve(2);
                if (vec.empty()) {
                    w_.put("[]", 2);
                    break;
                }
                w_.put('[');
                stack_.emplace_back(vec);
                break;
            }
            default:
                break; // unknown tags write nothing
            }

            // Next value: close the finished containers, then step to a member.
            for (;;) {
                if (stack_.empty()) return true;
                Frame& f = stack_.back();
                if (f.isObject ? f.member == f.memberEnd : f.element == f.elementEnd) {
                    char const close = f.isObject ? '}' : ']';
                    stack_.pop_back();
                    if (kPretty) indent(stack_.size());
                    w_.reserve(1);
                    w_.put(close);
                    continue;
                }
                w_.reserve(1);
                if (f.any) w_.put(',');
                f.any = true;
                if (kPretty) indent(stack_.size());
                if (f.isObject) {
                    w_.string(f.member->first);
                    w_.reserve(2);
                    w_.put(':');
                    if (kPretty) w_.put(' ');
                    v = &f.member->second;
                    ++f.member;
                } else {
                    v = f.element++;
                }
                break;
            }
        }
    }

private:
    void indent(size_t depth) {
        w_.reserve(layout_.lineBreakSize + depth * layout_.unitSize);
        w_.put(layout_.lineBreak, layout_.lineBreakSize);
        for (size_t i = 0; i < depth; ++i)
            w_.put(layout_.unit, layout_.unitSize);
    }

    Writer& w_;
    Layout const& layout_;
    FrameStack stack_;
};

} // namespace

bool Serializer::serialize(std::string& out, Value const& value, SerializeOption const& option,
                           std::string* error) {
    bool const pretty = (option.flags & SerializeOption::Pretty) != 0;
    Layout layout{"", 0, "", 0};
    if (pretty) {
        if (option.flags & SerializeOption::CRLF)
            layout.lineBreak = "\r\n", layout.lineBreakSize = 2;
        else
            layout.lineBreak = "\n", layout.lineBreakSize = 1;
        switch (option.flags & SerializeOption::IndentMask) {
        case 1:
            layout.unit = "    ", layout.unitSize = 4;
            break;
        case 2:
            layout.unit = "\t", layout.unitSize = 1;
            break;
        default:
            layout.unit = "  ", layout.unitSize = 2;
            break;
        }
    }
    Writer writer;
    SerializeWorker worker(writer, layout);
    bool const ok = pretty ? worker.run<true>(value) : worker.run<false>(value);
    writer.finish(out); // on failure the text written so far stays
    if (error) *error = ok ? std::string() : std::string(kNonFinite);
    return ok;
}

std::string Serializer::toText(Value const& value) {
    std::string out;
    if (!serialize(out, value)) out.clear();
    return out;
}

} // namespace quilljson

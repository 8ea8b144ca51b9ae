// quilljson::Value: the one JSON value type of the library.
//
// A value is a type tag and a 64-bit payload. Strings, objects and arrays live
// in reference-counted containers shared between copies and copied (one level
// deep) only when a shared one is written through a mutating accessor. Object
// members are kept in byte-wise key order. Counts are not atomic: a value and
// its copies belong to one thread at a time.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <type_traits>
#include <vector>

#include "allocator.h"

namespace quilljson {

class Value {
public:
    enum Type : uint32_t {
        Null = 0,
        Boolean = 1,
        Integer = 2,
        Float = 4,
        String = 16,
        Object = 32,
        Array = 64,
    };
    static constexpr uint32_t kContainerMask = 0x70;

    using ObjectType = std::map<std::string, Value, std::less<std::string>,
                                detail::BlockAllocator<std::pair<std::string const, Value>>>;
    using ArrayType = std::vector<Value, detail::BlockAllocator<Value>>;

    // The header of every container. While the count is above 0 it counts
    // the values sharing the container; once it is 0 and the container waits
    // on the pending-deletion list (see destroy()), the same word links the
    // next one, with bit 0 set when this one is an array: a parsed document
    // is as compact as the header allows.
    struct AbstractContainer {
        virtual ~AbstractContainer() = default;
        static void* operator new(size_t size) { return detail::allocateBlock(size); }
        static void operator delete(void* p) noexcept { detail::freeBlock(p); }
        union {
            uint32_t count = 1;
            uintptr_t nextDead;
        };
    };
    template <typename T> struct Container final : AbstractContainer {
        T data;
        Container() = default;
        explicit Container(T const& d) : data(d) {}
        explicit Container(T&& d) : data(std::move(d)) {}
        Container(char const* s, size_t n) : data(s, n) {} // a string made in place
    };

    Value() noexcept : type_(Null), payload_{0} {}
    Value(Value const& other) noexcept;
    Value(Value&& other) noexcept;
    ~Value();
    Value& operator=(Value const& other) noexcept;
    Value& operator=(Value&& other) noexcept;

    Value(bool b) noexcept : type_(Boolean), payload_{0} { payload_.b = b; }
    Value(int i) noexcept : Value(static_cast<int64_t>(i)) {}
    Value(unsigned int i) noexcept : Value(static_cast<int64_t>(i)) {}
    Value(long i) noexcept : type_(Integer), payload_{0} { payload_.i = i; }
    Value(long long i) noexcept : Value(static_cast<long>(i)) {}
    Value(unsigned long i) noexcept : Value(static_cast<long>(i)) {}
    Value(unsigned long long i) noexcept : Value(static_cast<long>(i)) {}
    Value(double d) noexcept : type_(Float), payload_{0} { payload_.d = d; }
    Value(std::string const& s);
    Value(std::string&& s);
    Value(char const* s);

    static Value object(); // an empty object
    static Value array();  // an empty array

    // Assigns in place when this is an unshared string, else takes a fresh string.
    Value& operator=(char const* s);
    // Numbers and booleans assign through their constructors. Without this,
    // `v = 0` would pick the char const* overload (a null pointer constant
    // converts without a user-defined conversion).
    template <typename T, typename = std::enable_if_t<std::is_arithmetic<T>::value>>
    Value& operator=(T number) noexcept {
        return *this = Value(number);
    }

    // Turns a non-object into an empty object, makes the object private, and
    // returns the member (created as null when missing).
    Value& operator[](std::string const& key);
    Value& operator[](char const* key) { return (*this)[std::string(key)]; }
    // The member, or s_null() when the key is missing or this is no object.
    Value const& operator[](std::string const& key) const;
    Value const& operator[](char const* key) const;
    // Turns a non-array into an empty array, makes it private, grows it with
    // nulls to index + 1 when needed, and returns the element.
    Value& operator[](unsigned long const& index);
    Value& operator[](int index) { return (*this)[static_cast<unsigned long>(index)]; }
    // The element, or s_null() when out of range or this is no array.
    Value const& operator[](unsigned long const& index) const;
    Value const& operator[](int index) const { return (*this)[static_cast<unsigned long>(index)]; }

    // Inserts a copy of v under key unless the key is present. Deliberately does
    // NOT make a shared object private: every sharer sees the new member.
    void insert(std::string const& key, Value const& v);
    // Sets member key to v like (*this)[key] = v, for building an object whose
    // keys come in byte-wise order: a key that sorts after every present one
    // is placed at the end without searching the members.
    Value& setMemberInOrder(std::string key, Value v);
    // Appends to an array (turning a non-array into an empty array first, then
    // making it private).
    void append(Value const& v);
    void append(Value&& v);

    // Text of a scalar: "true"/"false", "%lld", Double::toString, the string
    // itself; fallback for null, objects and arrays.
    std::string toString(std::string const& fallback) const;

    bool operator==(Value const& other) const;
    bool operator!=(Value const& other) const { return !(*this == other); }

    Type type() const noexcept { return static_cast<Type>(type_); }
    bool isNull() const noexcept { return type_ == Null; }
    bool isBool() const noexcept { return type_ == Boolean; }
    bool isInteger() const noexcept { return type_ == Integer; }
    bool isDouble() const noexcept { return type_ == Float; }
    bool isNumber() const noexcept { return type_ == Integer || type_ == Float; }
    bool isString() const noexcept { return type_ == String; }
    bool isObject() const noexcept { return type_ == Object; }
    bool isArray() const noexcept { return type_ == Array; }
    bool isContainer() const noexcept { return (type_ & kContainerMask) != 0; }

    // Raw payload getters; they read the payload as the named kind and return
    // false / 0 / 0.0 when the tag is another kind.
    bool getBool() const noexcept { return type_ == Boolean && payload_.b; }
    int64_t getInteger() const noexcept { return type_ == Integer ? payload_.i : 0; }
    double getDouble() const noexcept { return type_ == Float ? payload_.d : 0.0; }

    // Lenient conversions used by the endpoints.
    // Boolean: true for true, a non-zero integer or real, or the exact string "true".
    bool asBool() const;
    // Integer: a boolean 0/1, an integer itself, a real rounded half away from
    // zero (0 outside the signed 64-bit range), a string wholly made of a
    // decimal integer; 0 otherwise.
    int64_t asInteger() const;
    // Real: an integer converted, a real itself, a boolean 0.0/1.0, a string
    // read by Double::strToDouble when wholly a number; 0.0 otherwise.
    double asDouble() const;

    // Container access; an empty static container for another kind.
    std::string const& stringRef() const noexcept {
        return type_ == String ? static_cast<Container<std::string>*>(payload_.c)->data : emptyString();
    }
    ObjectType const& objectRef() const noexcept {
        return type_ == Object ? static_cast<Container<ObjectType>*>(payload_.c)->data : emptyObject();
    }
    ArrayType const& arrayRef() const noexcept {
        return type_ == Array ? static_cast<Container<ArrayType>*>(payload_.c)->data : emptyArray();
    }

    bool contains(std::string const& key) const; // an object holding key
    size_t size() const noexcept;                // members, elements, or 0

    // Reference count of the container (0 for scalars); for tests.
    uint32_t useCount() const noexcept;

    // The shared null returned by const lookups of missing members. Never write to it.
    static Value const& s_null();

private:
    friend class Parser;
    friend class Serializer;

    static std::string const& emptyString() noexcept;
    static ObjectType const& emptyObject() noexcept;
    static ArrayType const& emptyArray() noexcept;

    void release() noexcept; // drops this value's content, leaves it null
    // Deletes a container whose count reached 0 without recursing into nested
    // containers (see value.cpp).
    static void destroy(uint32_t type, AbstractContainer* c) noexcept;
    static void dropMember(Value& member, uintptr_t& queue) noexcept;
    template <typename T> T& makePrivate();  // copy-on-write of the container
    template <typename T> T& become(Type t); // converts into an empty container of kind t when needed
    // Takes the text, in place when this is an unshared string (s may point
    // into the old content).
    void assignString(char const* s, size_t n);

    uint32_t type_;
    union Payload {
        bool b;
        int64_t i;
        double d;
        AbstractContainer* c;
    } payload_;
};

// Formatting and reading of doubles.
class Double {
public:
    explicit Double(double v) : value_(v) {}
    // Appends the text ("%.17g", or "0.0" for zero); false for NaN and infinities
    // (after appending "nan", "inf" or "-inf").
    bool toString(std::string& out) const;
    // strtod on a copy whose first '.' became the locale's decimal point; *ok
    // tells whether the whole text was consumed.
    static double strToDouble(char const* text, bool* ok);

private:
    double value_;
};

// The copy, move and release paths are inline: they run for every value the
// parser stores and every temporary an endpoint returns.
inline Value::Value(Value const& other) noexcept : type_(other.type_), payload_(other.payload_) {
    if (type_ & kContainerMask) ++payload_.c->count;
}
inline Value::Value(Value&& other) noexcept : type_(other.type_), payload_(other.payload_) {
    other.type_ = Null;
    other.payload_.i = 0;
}
inline Value& Value::operator=(Value&& other) noexcept {
    if (this != &other) {
        uint32_t const type = other.type_;
        Payload const payload = other.payload_;
        other.type_ = Null;
        other.payload_.i = 0;
        release();
        type_ = type;
        payload_ = payload;
    }
    return *this;
}
inline Value::~Value() {
    if (type_ & kContainerMask) release();
}
inline void Value::release() noexcept {
    uint32_t const type = type_;
    AbstractContainer* const c = payload_.c;
    type_ = Null;
    payload_.i = 0;
    if ((type & kContainerMask) && --c->count == 0) destroy(type, c);
}

template <typename T> T& Value::become(Type t) {
    if (type_ != t) {
        release();
        payload_.c = new Container<T>();
        type_ = t;
    }
    return static_cast<Container<T>*>(payload_.c)->data;
}

template <typename T> T& Value::makePrivate() {
    auto* box = static_cast<Container<T>*>(payload_.c);
    if (box->count >= 2) {
        // One level deep: the copied members share their own containers.
        auto* copy = new Container<T>(box->data);
        --box->count;
        payload_.c = copy;
        return copy->data;
    }
    return box->data;
}

} // namespace quilljson

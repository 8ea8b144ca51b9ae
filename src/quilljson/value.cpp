#include "value.h"

#include <cerrno>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <utility>

#include "number_text.h"

namespace quilljson {

namespace {

using StringBox = Value::Container<std::string>;
using ObjectBox = Value::Container<Value::ObjectType>;
using ArrayBox = Value::Container<Value::ArrayType>;

} // namespace

// A container is emptied before it is deleted: each member whose container
// drops to 0 is taken out of it (left null) and queued, linked through its own
// header with bit 0 set for an array, and the queue is deleted in a loop. A
// value nested a million levels deep is so freed without a million nested
// destructor calls, and the queue lives on this call's stack instead of in a
// per-thread variable (slow to reach from a library opened at run time).
void Value::dropMember(Value& member, uintptr_t& queue) noexcept {
    uint32_t const type = member.type_;
    if (!(type & kContainerMask)) return;
    AbstractContainer* const c = member.payload_.c;
    member.type_ = Null;
    member.payload_.i = 0;
    if (--c->count != 0) return;
    if (type == String) {
        delete static_cast<StringBox*>(c);
        return;
    }
    c->nextDead = queue | (type == Array ? 1u : 0u);
    queue = reinterpret_cast<uintptr_t>(c);
}

void Value::destroy(uint32_t type, AbstractContainer* c) noexcept {
    if (type == String) { // holds no values: nothing can nest
        delete static_cast<StringBox*>(c);
        return;
    }
    uintptr_t queue = 0;
    bool isArray = type == Array;
    for (;;) {
        if (isArray) {
            auto* box = static_cast<ArrayBox*>(c);
            for (Value& element : box->data)
                dropMember(element, queue);
            delete box;
        } else {
            auto* box = static_cast<ObjectBox*>(c);
            for (auto& member : box->data)
                dropMember(member.second, queue);
            delete box;
        }
        if (queue == 0) return;
        c = reinterpret_cast<AbstractContainer*>(queue);
        uintptr_t const link = c->nextDead;
        isArray = link & 1;
        queue = link & ~uintptr_t(1);
    }
}

Value& Value::operator=(Value const& other) noexcept {
    Value copy(other); // counts first: other may live inside what this value drops
    *this = std::move(copy);
    return *this;
}

Value::Value(std::string const& s) : type_(String), payload_{0} {
    payload_.c = new StringBox(s);
}
Value::Value(std::string&& s) : type_(String), payload_{0} {
    payload_.c = new StringBox(std::move(s));
}
Value::Value(char const* s) : type_(String), payload_{0} {
    payload_.c = s ? new StringBox(std::string(s)) : new StringBox();
}

Value Value::object() {
    Value v;
    v.become<ObjectType>(Object);
    return v;
}

Value Value::array() {
    Value v;
    v.become<ArrayType>(Array);
    return v;
}

void Value::assignString(char const* s, size_t n) {
    if (type_ == String && payload_.c->count < 2) {
        static_cast<StringBox*>(payload_.c)->data.assign(s, n);
        return;
    }
    if (!(type_ & kContainerMask)) { // the parser's case: the text goes straight into its container
        payload_.c = new StringBox(s, n);
        type_ = String;
        return;
    }
    Value fresh(std::string(s, n)); // made before the release: s may point into the old content
    *this = std::move(fresh);
}

Value& Value::operator=(char const* s) {
    assignString(s ? s : "", s ? std::strlen(s) : 0);
    return *this;
}

Value& Value::operator[](std::string const& key) {
    if (type_ != Object) {
        std::string copy(key); // key may live inside the content that become() drops
        become<ObjectType>(Object);
        return makePrivate<ObjectType>().try_emplace(std::move(copy)).first->second;
    }
    return makePrivate<ObjectType>().try_emplace(key).first->second;
}

Value const& Value::operator[](std::string const& key) const {
    if (type_ != Object) return s_null();
    auto const& map = static_cast<ObjectBox*>(payload_.c)->data;
    auto it = map.find(key);
    return it == map.end() ? s_null() : it->second;
}

Value const& Value::operator[](char const* key) const {
    if (type_ != Object) return s_null();
    return (*this)[std::string(key)];
}

Value& Value::operator[](unsigned long const& index) {
    become<ArrayType>(Array);
    auto& vec = makePrivate<ArrayType>();
    if (index >= vec.size()) vec.resize(index + 1);
    return vec[index];
}

Value const& Value::operator[](unsigned long const& index) const {
    if (type_ != Array) return s_null();
    auto const& vec = static_cast<ArrayBox*>(payload_.c)->data;
    return index < vec.size() ? vec[index] : s_null();
}

void Value::insert(std::string const& key, Value const& v) {
    if (&v == this) return;
    Value copy(v); // v may live inside the content that become() drops
    become<ObjectType>(Object).try_emplace(key, std::move(copy));
}

Value& Value::setMemberInOrder(std::string key, Value v) {
    become<ObjectType>(Object); // key and v are our own: nothing of them lives in what it drops
    ObjectType& members = makePrivate<ObjectType>();
    if (!members.empty() && !(std::prev(members.end())->first < key)) {
        Value& member = members[std::move(key)];
        member = std::move(v);
        return member;
    }
    return members.emplace_hint(members.end(), std::move(key), std::move(v))->second;
}

void Value::append(Value const& v) {
    Value copy(v);
    append(std::move(copy));
}

void Value::append(Value&& v) {
    Value moved(std::move(v));
    become<ArrayType>(Array);
    makePrivate<ArrayType>().push_back(std::move(moved));
}

std::string Value::toString(std::string const& fallback) const {
    switch (type_) {
    case Boolean:
        return payload_.b ? "true" : "false";
    case Integer: {
        char buf[detail::kNumberTextMax];
        return std::string(buf, detail::writeInteger(buf, payload_.i));
    }
    case Float: {
        std::string out;
        Double(payload_.d).toString(out);
        return out;
    }
    case String:
        return static_cast<StringBox*>(payload_.c)->data;
    default:
        return fallback;
    }
}

namespace {

// Scalar part of equality; for two non-empty containers of the same kind and
// size it answers Descend and the caller walks their members.
enum class Shallow { Unequal, Equal, Descend };

Shallow compareShallow(Value const& a, Value const& b) {
    if (a.type() != b.type()) return Shallow::Unequal; // so an integer never equals a real
    switch (a.type()) {
    case Value::Null:
        return Shallow::Equal;
    case Value::Boolean:
        return a.getBool() == b.getBool() ? Shallow::Equal : Shallow::Unequal;
    case Value::Integer:
        return a.getInteger() == b.getInteger() ? Shallow::Equal : Shallow::Unequal;
    case Value::Float:
        return a.getDouble() == b.getDouble() ? Shallow::Equal : Shallow::Unequal;
    case Value::String:
        return a.stringRef() == b.stringRef() ? Shallow::Equal : Shallow::Unequal;
    case Value::Object:
        if (a.size() != b.size()) return Shallow::Unequal;
        return a.size() == 0 ? Shallow::Equal : Shallow::Descend;
    case Value::Array:
        if (a.size() != b.size()) return Shallow::Unequal;
        return a.size() == 0 ? Shallow::Equal : Shallow::Descend;
    }
    return Shallow::Equal;
}

// One pair of containers being walked in step.
struct EqualFrame {
    bool isObject;
    Value::ObjectType::const_iterator objA, objEnd, objB;
    Value const* arrA;
    Value const* arrEnd;
    Value const* arrB;
};

void pushFrame(std::vector<EqualFrame>& stack, Value const& a, Value const& b) {
    EqualFrame f{};
    if (a.isObject()) {
        f.isObject = true;
        f.objA = a.objectRef().begin();
        f.objEnd = a.objectRef().end();
        f.objB = b.objectRef().begin();
    } else {
        f.isObject = false;
        f.arrA = a.arrayRef().data();
        f.arrEnd = f.arrA + a.arrayRef().size();
        f.arrB = b.arrayRef().data();
    }
    stack.push_back(f);
}

} // namespace

bool Value::operator==(Value const& other) const {
    Shallow s = compareShallow(*this, other);
    if (s != Shallow::Descend) return s == Shallow::Equal;
    // Containers: walk with an explicit stack so depth costs heap, not stack.
    std::vector<EqualFrame> stack;
    pushFrame(stack, *this, other);
    while (!stack.empty()) {
        EqualFrame& f = stack.back();
        Value const* a;
        Value const* b;
        if (f.isObject) {
            if (f.objA == f.objEnd) {
                stack.pop_back();
                continue;
            }
            if (f.objA->first != f.objB->first) return false;
            a = &f.objA->second;
            b = &f.objB->second;
            ++f.objA;
            ++f.objB;
        } else {
            if (f.arrA == f.arrEnd) {
                stack.pop_back();
                continue;
            }
            a = f.arrA++;
            b = f.arrB++;
        }
        s = compareShallow(*a, *b);
        if (s == Shallow::Unequal) return false;
        if (s == Shallow::Descend) pushFrame(stack, *a, *b); // f may dangle from here on
    }
    return true;
}

bool Value::asBool() const {
    switch (type_) {
    case Boolean:
        return payload_.b;
    case Integer:
        return payload_.i != 0;
    case Float:
        return payload_.d != 0.0;
    case String:
        return static_cast<StringBox*>(payload_.c)->data == "true";
    default:
        return false;
    }
}

int64_t Value::asInteger() const {
    switch (type_) {
    case Boolean:
        return payload_.b ? 1 : 0;
    case Integer:
        return payload_.i;
    case Float: {
        double const r = std::round(payload_.d);
        // NaN fails both tests; 2^63 itself is out of range.
        if (r >= -9223372036854775808.0 && r < 9223372036854775808.0) return static_cast<int64_t>(r);
        return 0;
    }
    case String: {
        std::string const& s = static_cast<StringBox*>(payload_.c)->data;
        size_t i = (!s.empty() && (s[0] == '-' || s[0] == '+')) ? 1 : 0;
        if (i == s.size()) return 0;
        for (size_t k = i; k < s.size(); ++k)
            if (s[k] < '0' || s[k] > '9') return 0;
        errno = 0;
        long long const v = std::strtoll(s.c_str(), nullptr, 10);
        return errno == ERANGE ? 0 : v;
    }
    default:
        return 0;
    }
}

double Value::asDouble() const {
    switch (type_) {
    case Boolean:
        return payload_.b ? 1.0 : 0.0;
    case Integer:
        return static_cast<double>(payload_.i);
    case Float:
        return payload_.d;
    case String: {
        bool ok = false;
        double const d = Double::strToDouble(static_cast<StringBox*>(payload_.c)->data.c_str(), &ok);
        return ok ? d : 0.0;
    }
    default:
        return 0.0;
    }
}

std::string const& Value::emptyString() noexcept {
    static std::string const empty;
    return empty;
}

Value::ObjectType const& Value::emptyObject() noexcept {
    static ObjectType const empty;
    return empty;
}

Value::ArrayType const& Value::emptyArray() noexcept {
    static ArrayType const empty;
    return empty;
}

bool Value::contains(std::string const& key) const {
    return type_ == Object && static_cast<ObjectBox*>(payload_.c)->data.count(key) != 0;
}

size_t Value::size() const noexcept {
    switch (type_) {
    case Object:
        return static_cast<ObjectBox*>(payload_.c)->data.size();
    case Array:
        return static_cast<ArrayBox*>(payload_.c)->data.size();
    default:
        return 0;
    }
}

uint32_t Value::useCount() const noexcept {
    return (type_ & kContainerMask) ? payload_.c->count : 0;
}

Value const& Value::s_null() {
    static Value const null;
    return null;
}

bool Double::toString(std::string& out) const {
    if (value_ == 0.0) { // +0 and -0
        out += "0.0";
        return true;
    }
    if (std::isnan(value_)) {
        out += "nan";
        return false;
    }
    if (std::isinf(value_)) {
        out += value_ < 0 ? "-inf" : "inf";
        return false;
    }
    char buf[detail::kNumberTextMax];
    out.append(buf, detail::writeDouble(buf, value_));
    return true;
}

double Double::strToDouble(char const* text, bool* ok) {
    std::string copy(text ? text : "");
    size_t const point = copy.find('.');
    if (point != std::string::npos) copy[point] = *std::localeconv()->decimal_point;
    char* end = nullptr;
    double const d = std::strtod(copy.c_str(), &end);
    if (ok) *ok = end == copy.c_str() + copy.size();
    return d;
}

} // namespace quilljson

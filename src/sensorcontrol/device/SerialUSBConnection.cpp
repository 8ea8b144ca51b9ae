#include "sensorcontrol/device/SerialUSBConnection.h"

#include <cstdlib>

#include "devices/torvik.h"
#include "share/lib/torvikLoader.h"
#include "tvl/threading/mutex_locker.h"

namespace tovel {
namespace device {

namespace {

constexpr int32_t kExistsMoreData = 1;
constexpr int32_t kNoMoreData = static_cast<int32_t>(0x8000000Bu);

// A string mapping value is a whole integer in C notation (decimal, 0x hex,
// leading-0 octal); anything left over makes it 0.
MDDeviceID IDFromText(std::string const& text) {
    char const* begin = text.c_str();
    char* end = nullptr;
    long long const value = std::strtoll(begin, &end, 0);
    if (end != begin + text.size()) return 0;
    return static_cast<MDDeviceID>(static_cast<unsigned long long>(value));
}

MDDeviceID IDFromValue(quilljson::Value const& value) {
    if (value.isString()) return IDFromText(value.stringRef());
    // Booleans give 0/1, integers themselves, reals rounded half away from
    // zero (0 outside the signed 64-bit range); the low 32 bits are kept.
    if (value.isBool() || value.isNumber())
        return static_cast<MDDeviceID>(static_cast<uint64_t>(value.asInteger()));
    return 0;
}

// Releases the snapshot also when an enumeration call throws.
class SnapshotGuard {
public:
    SnapshotGuard(torvikLoader& torvik, TvkSnapshot* snapshot) : torvik_(torvik), snapshot_(snapshot) {}
    ~SnapshotGuard() {
        try {
            TOVEL_EXEC(torvik_, TvkReleaseSnapshot, snapshot_);
        } catch (...) {
        }
    }
    SnapshotGuard(SnapshotGuard const&) = delete;
    SnapshotGuard& operator=(SnapshotGuard const&) = delete;

private:
    torvikLoader& torvik_;
    TvkSnapshot* snapshot_;
};

} // namespace

SerialUSBConnection& SerialUSBConnection::Instance() {
    static SerialUSBConnection instance;
    return instance;
}

void SerialUSBConnection::update() {
    threading::MutexLocker locker(mutex_);
    connected_.clear();
    // Without mappings nothing on the bus could match: leave the bus alone.
    if (mappings_.empty()) return;

    torvikLoader& torvik = torvikLoader::loader();
    TvkSnapshot* snapshot = TOVEL_EXEC0(torvik, TvkCreateUSBDeviceSnapshot);
    if (snapshot == nullptr) return;
    SnapshotGuard guard(torvik, snapshot);

    for (uint32_t index = 0;; ++index) {
        TvkUSB* device = TOVEL_EXEC(torvik, TvkEnumUSBDevice, snapshot, index);
        if (device == nullptr) break;
        char const* name = TOVEL_EXEC(torvik, TvkGetUSBDeviceName, device);
        if (name == nullptr) continue;
        auto const it = mappings_.find(name);
        if (it != mappings_.end()) connected_.push_back(it->second);
    }
}

void SerialUSBConnection::setDeviceIDMappings(quilljson::Value const& mappings) {
    std::map<std::string, MDDeviceID> converted;
    for (auto const& member : mappings.objectRef())
        converted[member.first] = IDFromValue(member.second);
    // Built aside and swapped in, so that an update running meanwhile sees
    // either the old or the new mappings.
    threading::MutexLocker locker(mutex_);
    mappings_.swap(converted);
}

quilljson::Value SerialUSBConnection::connectedDeviceIDs() const {
    threading::MutexLocker locker(mutex_);
    quilljson::Value list = quilljson::Value::array();
    for (MDDeviceID id : connected_) {
        quilljson::Value entry = quilljson::Value::object();
        entry["deviceID"] = static_cast<int64_t>(id);
        list.append(entry);
    }
    return list;
}

DvError SerialUSBConnection::enumerate(unsigned long index, MDDeviceID* out) const {
    threading::MutexLocker locker(mutex_);
    DvError result;
    if (index >= connected_.size()) {
        result.code = kNoMoreData;
        return result;
    }
    // Deliberately never 0: even the last element reports more data.
    result.code = kExistsMoreData;
    if (out != nullptr) *out = connected_[index];
    return result;
}

MDDeviceID SerialUSBConnection::operator[](unsigned long index) const {
    threading::MutexLocker locker(mutex_);
    return connected_[index];
}

} // namespace device
} // namespace tovel

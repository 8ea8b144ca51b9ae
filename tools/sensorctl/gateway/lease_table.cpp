#include "lease_table.h"

#include <ctime>

#include "token.h"

namespace sensorctl::gateway {

namespace {

std::string UtcText(std::chrono::system_clock::time_point when) {
    std::time_t const seconds = std::chrono::system_clock::to_time_t(when);
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text;
}

} // namespace

Lease* LeaseTable::live(std::string const& sensor, Clock::time_point now) {
    auto it = leases_.find(sensor);
    if (it == leases_.end()) return nullptr;
    if (it->second.expires <= now) {
        leases_.erase(it);
        return nullptr;
    }
    return &it->second;
}

LeaseTable::Outcome LeaseTable::take(std::string const& sensor, std::string const& owner, int seconds,
                                     std::string const& presented, Lease* lease, Clock::time_point now) {
    std::lock_guard<std::mutex> lock(mutex_);
    Lease* current = live(sensor, now);
    if (current != nullptr && !SameToken(presented, current->token)) {
        *lease = *current;
        return Outcome::HeldByOther;
    }
    Outcome const outcome = current != nullptr ? Outcome::Renewed : Outcome::Granted;
    if (current == nullptr) {
        current = &leases_[sensor];
        current->token = FreshToken();
    }
    current->owner = owner;
    current->expires = now + std::chrono::seconds(seconds);
    current->expiresText = UtcText(std::chrono::system_clock::now() + std::chrono::seconds(seconds));
    *lease = *current;
    return outcome;
}

LeaseTable::Outcome LeaseTable::release(std::string const& sensor, std::string const& presented, Lease* lease,
                                        Clock::time_point now) {
    std::lock_guard<std::mutex> lock(mutex_);
    Lease* current = live(sensor, now);
    if (current == nullptr) return Outcome::NotLeased;
    *lease = *current;
    if (!SameToken(presented, current->token)) return Outcome::HeldByOther;
    leases_.erase(sensor);
    return Outcome::Released;
}

std::optional<Lease> LeaseTable::blocking(std::string const& sensor, std::string const& presented,
                                          Clock::time_point now) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (leases_.empty()) return std::nullopt;
    Lease* current = live(sensor, now);
    if (current == nullptr || SameToken(presented, current->token)) return std::nullopt;
    return *current;
}

std::vector<std::string> LeaseTable::leased(Clock::time_point now) {
    std::lock_guard<std::mutex> lock(mutex_);
    std::vector<std::string> sensors;
    for (auto it = leases_.begin(); it != leases_.end();) {
        if (it->second.expires <= now) {
            it = leases_.erase(it);
        } else {
            sensors.push_back(it->first);
            ++it;
        }
    }
    return sensors;
}

void LeaseTable::forget(std::string const& sensor) {
    std::lock_guard<std::mutex> lock(mutex_);
    leases_.erase(sensor);
}

} // namespace sensorctl::gateway

// Leases on sensors: while a sensor is leased, only requests that carry the
// lease token reach it. A lease that is not renewed ends by itself.
#pragma once

#include <chrono>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace sensorctl::gateway {

struct Lease {
    std::string token;
    std::string owner;
    std::chrono::steady_clock::time_point expires;
    std::string expiresText; // UTC, "2026-11-23T15:40:00Z"
};

class LeaseTable {
public:
    using Clock = std::chrono::steady_clock;

    enum class Outcome {
        Granted, // a new lease
        Renewed, // the holder's token was presented
        HeldByOther,
        Released,
        NotLeased,
    };

    // Takes the lease on a free sensor, or renews it when `presented` is its
    // token. *lease is the lease now (or the one in the way).
    Outcome take(std::string const& sensor, std::string const& owner, int seconds,
                 std::string const& presented, Lease* lease, Clock::time_point now = Clock::now());
    Outcome release(std::string const& sensor, std::string const& presented, Lease* lease,
                    Clock::time_point now = Clock::now());

    // The live lease a request with token `presented` may not pass, if any.
    std::optional<Lease> blocking(std::string const& sensor, std::string const& presented,
                                  Clock::time_point now = Clock::now());
    // Sensors under a live lease.
    std::vector<std::string> leased(Clock::time_point now = Clock::now());

    void forget(std::string const& sensor); // the sensor was closed

private:
    Lease* live(std::string const& sensor, Clock::time_point now); // drops an expired lease

    std::mutex mutex_;
    std::unordered_map<std::string, Lease> leases_;
};

} // namespace sensorctl::gateway

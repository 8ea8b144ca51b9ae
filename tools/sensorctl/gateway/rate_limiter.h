// Requests per second per client address, so one client cannot starve the
// others: a token bucket per address, refilled continuously.
#pragma once

#include <chrono>
#include <mutex>
#include <string>
#include <unordered_map>

namespace sensorctl::gateway {

class RateLimiter {
public:
    using Clock = std::chrono::steady_clock;

    // perSecond 0 turns the limit off; a client may send a burst of up to
    // one second's worth at once.
    explicit RateLimiter(double perSecond);

    bool admit(std::string const& client, Clock::time_point now = Clock::now());
    double perSecond() const { return perSecond_; }

private:
    struct Bucket {
        double tokens;
        Clock::time_point updated;
    };

    double const perSecond_;
    std::mutex mutex_;
    std::unordered_map<std::string, Bucket> buckets_;
};

} // namespace sensorctl::gateway

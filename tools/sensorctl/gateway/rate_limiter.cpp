#include "rate_limiter.h"

#include <algorithm>

namespace sensorctl::gateway {

namespace {

// Full buckets are forgotten past this many clients, so that addresses seen
// once do not pile up.
constexpr size_t kClientsKept = 4096;

} // namespace

RateLimiter::RateLimiter(double perSecond) : perSecond_(perSecond) {}

bool RateLimiter::admit(std::string const& client, Clock::time_point now) {
    if (perSecond_ <= 0) return true;
    double const burst = std::max(perSecond_, 1.0);
    std::lock_guard<std::mutex> lock(mutex_);
    auto [it, fresh] = buckets_.try_emplace(client, Bucket{burst, now});
    Bucket& bucket = it->second;
    if (!fresh) {
        double const elapsed = std::chrono::duration<double>(now - bucket.updated).count();
        bucket.tokens = std::min(burst, bucket.tokens + elapsed * perSecond_);
        bucket.updated = now;
    }
    bool const admitted = bucket.tokens >= 1.0;
    if (admitted) bucket.tokens -= 1.0;
    if (buckets_.size() > kClientsKept) {
        for (auto i = buckets_.begin(); i != buckets_.end();) {
            double const elapsed = std::chrono::duration<double>(now - i->second.updated).count();
            if (i->second.tokens + elapsed * perSecond_ >= burst)
                i = buckets_.erase(i);
            else
                ++i;
        }
    }
    return admitted;
}

} // namespace sensorctl::gateway

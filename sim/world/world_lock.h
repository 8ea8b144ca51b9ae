// The world lock: exclusive and recursive for calls that change the world,
// shared for the few hot calls that only read it, so that host threads
// measuring different sensors do not wait for each other.
#pragma once

#include <atomic>
#include <shared_mutex>
#include <thread>

#include "tvl/threading/spin.h"

namespace sim {

class WorldLock {
public:
    // Exclusive; a thread that holds the lock exclusively may take it again.
    void lock() {
        std::thread::id const self = std::this_thread::get_id();
        if (owner_.load(std::memory_order_relaxed) == self) {
            ++depth_;
            return;
        }
        if (!threading::spinTryLock([this] { return mutex_.try_lock(); })) mutex_.lock();
        owner_.store(self, std::memory_order_relaxed);
        depth_ = 1;
    }
    void unlock() {
        if (--depth_ != 0) return;
        owner_.store(std::thread::id(), std::memory_order_relaxed);
        mutex_.unlock();
    }

    // Shared, for a call that only reads. A thread already holding the lock
    // exclusively (a reading call made inside a changing one) takes it again
    // exclusively, so the answer tells which unlock to call.
    bool lockShared() {
        if (owner_.load(std::memory_order_relaxed) == std::this_thread::get_id()) {
            ++depth_;
            return false;
        }
        if (!threading::spinTryLock([this] { return mutex_.try_lock_shared(); })) mutex_.lock_shared();
        return true;
    }
    void unlockShared() { mutex_.unlock_shared(); }

private:
    std::shared_mutex mutex_;
    // Read without the lock only to compare with the calling thread, which
    // alone can have stored its own id there.
    std::atomic<std::thread::id> owner_{};
    unsigned depth_ = 0; // written by the owner only
};

} // namespace sim

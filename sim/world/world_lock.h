// The world lock: exclusive and recursive for calls that change the world,
// shared for the few hot calls that only read it. A reading call counts itself
// in one of several reader slots, chosen by its sensor handle, each on a cache
// line of its own: host threads measuring different sensors then write no
// memory in common here, and a changing call waits until every slot is empty.
#pragma once

#include <atomic>
#include <cstddef>
#include <mutex>
#include <thread>

#include "tvl/threading/spin.h"

namespace sim {

class WorldLock {
public:
    static constexpr size_t kReaderSlots = 8;

    // Exclusive; a thread that holds the lock exclusively may take it again.
    void lock() {
        std::thread::id const self = std::this_thread::get_id();
        if (owner_.load(std::memory_order_relaxed) == self) {
            ++depth_;
            return;
        }
        if (!threading::spinTryLock([this] { return writer_.try_lock(); })) writer_.lock();
        owner_.store(self, std::memory_order_relaxed);
        depth_ = 1;
        // Sequentially consistent against the readers' increment and check below:
        // either a reader sees the flag, or this sees the reader.
        writing_.store(true);
        for (Slot& slot : slots_)
            for (int spins = 0; slot.readers.load() != 0; ++spins)
                spins < 64 ? threading::cpuRelax() : std::this_thread::yield();
    }
    void unlock() {
        if (--depth_ != 0) return;
        owner_.store(std::thread::id(), std::memory_order_relaxed);
        writing_.store(false);
        writer_.unlock();
    }

    // Shared, in the given slot (any number; it is reduced). A thread already
    // holding the lock exclusively (a reading call made inside a changing one)
    // takes it again exclusively; the answer tells which unlock to call.
    bool lockShared(size_t slot) {
        if (owner_.load(std::memory_order_relaxed) == std::this_thread::get_id()) {
            ++depth_;
            return false;
        }
        std::atomic<unsigned>& readers = slots_[slot % kReaderSlots].readers;
        for (;;) {
            readers.fetch_add(1);
            if (!writing_.load()) return true;
            readers.fetch_sub(1);
            // Wait for the changing call to finish.
            std::lock_guard<std::mutex> wait(writer_);
        }
    }
    void unlockShared(size_t slot) { slots_[slot % kReaderSlots].readers.fetch_sub(1); }

private:
    struct alignas(64) Slot {
        std::atomic<unsigned> readers{0};
    };

    Slot slots_[kReaderSlots];
    alignas(64) std::mutex writer_; // held by the changing call
    std::atomic<bool> writing_{false};
    // Read without the lock only to compare with the calling thread, which
    // alone can have stored its own id there.
    std::atomic<std::thread::id> owner_{};
    unsigned depth_ = 0; // written by the owner only
};

} // namespace sim

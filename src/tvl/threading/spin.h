// Brief spinning before a lock blocks.
//
// The locks on the request path are held for a few hundred nanoseconds, while
// blocking on one costs a futex wait and a wake-up, each a system call of a
// microsecond or more on a virtual machine: two host threads that merely
// brushed against each other would then run slower than one. So a taker first
// retries for about as long as a holder keeps the lock, then blocks as before.
#pragma once

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

namespace threading {

inline void cpuRelax() {
#if defined(__x86_64__) || defined(__i386__)
    _mm_pause();
#elif defined(__aarch64__)
    __asm__ __volatile__("yield");
#endif
}

// Calls tryLock until it succeeds or the spin budget is spent; true when it
// succeeded. The caller blocks on the lock when it did not. The pauses
// between tries double, so that a waiter does not keep taking the lock's
// cache line away from the holder.
template <typename TryLock> bool spinTryLock(TryLock&& tryLock) {
    constexpr int kPauses = 256; // a few microseconds at most, by the processor's pause
    for (int pauses = 1, spent = 0; spent < kPauses; spent += pauses, pauses *= 2) {
        if (tryLock()) return true;
        for (int i = 0; i < pauses; ++i)
            cpuRelax();
    }
    return tryLock();
}

} // namespace threading

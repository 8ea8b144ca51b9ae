// Scoped holders of the two lock kinds.
#pragma once

#include "tvl/threading/mutex_posix.h"

class CriticalSectionLocker {
public:
    explicit CriticalSectionLocker(CriticalSection* section) : section_(section) { section_->lock(); }
    ~CriticalSectionLocker() { section_->unlock(); }
    CriticalSectionLocker(CriticalSectionLocker const&) = delete;
    CriticalSectionLocker& operator=(CriticalSectionLocker const&) = delete;

private:
    CriticalSection* section_;
};

namespace threading {

class MutexLocker {
public:
    explicit MutexLocker(Mutex& mutex) : mutex_(mutex) { mutex_.lock(); }
    ~MutexLocker() { mutex_.unlock(); }
    MutexLocker(MutexLocker const&) = delete;
    MutexLocker& operator=(MutexLocker const&) = delete;

private:
    Mutex& mutex_;
};

} // namespace threading

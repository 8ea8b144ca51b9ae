// Recursive, process-private POSIX mutexes.
#pragma once

#include <pthread.h>

namespace threading {

class Mutex {
public:
    Mutex();
    ~Mutex();
    Mutex(Mutex const&) = delete;
    Mutex& operator=(Mutex const&) = delete;

    int lock();
    int unlock();
    bool tryLock();

private:
    pthread_mutex_t mutex_;
};

} // namespace threading

// The lock of the response store; a class of its own, recursive like Mutex.
class CriticalSection {
public:
    CriticalSection();
    ~CriticalSection();
    CriticalSection(CriticalSection const&) = delete;
    CriticalSection& operator=(CriticalSection const&) = delete;

    void lock();
    void unlock();

private:
    pthread_mutex_t mutex_;
};

#include "tvl/threading/mutex_posix.h"

#include "tvl/threading/spin.h"

namespace {

void initRecursive(pthread_mutex_t* mutex) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_PRIVATE);
    pthread_mutex_init(mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

} // namespace

namespace threading {

Mutex::Mutex() {
    initRecursive(&mutex_);
}
Mutex::~Mutex() {
    pthread_mutex_destroy(&mutex_);
}
int Mutex::lock() {
    if (spinTryLock([this] { return pthread_mutex_trylock(&mutex_) == 0; })) return 0;
    return pthread_mutex_lock(&mutex_);
}
int Mutex::unlock() {
    return pthread_mutex_unlock(&mutex_);
}
bool Mutex::tryLock() {
    return pthread_mutex_trylock(&mutex_) == 0;
}

} // namespace threading

CriticalSection::CriticalSection() {
    initRecursive(&mutex_);
}
CriticalSection::~CriticalSection() {
    pthread_mutex_destroy(&mutex_);
}
void CriticalSection::lock() {
    if (threading::spinTryLock([this] { return pthread_mutex_trylock(&mutex_) == 0; })) return;
    pthread_mutex_lock(&mutex_);
}
void CriticalSection::unlock() {
    pthread_mutex_unlock(&mutex_);
}

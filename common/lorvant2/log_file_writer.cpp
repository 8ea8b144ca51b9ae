#include "log_file_writer.h"

#include <signal.h>
#include <sys/uio.h>
#include <time.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

namespace lorvant {
namespace {

// Lines gathered before the caller writes them itself, which bounds both the
// memory and how far a busy process runs ahead of its file.
constexpr size_t kCapacity = 64 * 1024;
// How long the writer thread lets lines gather before it writes them.
constexpr long kLingerNanoseconds = 1000 * 1000;

// The writer whose thread and buffer fork() must deal with (a process has one).
LogFileWriter* forkWatched = nullptr;

// Writes both pieces, in one system call unless the kernel takes less.
void writeAll(int fd, char const* first, size_t firstLength, char const* second, size_t secondLength) {
    iovec pieces[2] = {{const_cast<char*>(first), firstLength}, {const_cast<char*>(second), secondLength}};
    iovec* piece = pieces;
    int count = 2;
    while (count > 0) {
        if (piece->iov_len == 0) {
            ++piece, --count;
            continue;
        }
        ssize_t written = writev(fd, piece, count);
        if (written < 0) return; // nowhere to report a failing log
        for (; count > 0 && static_cast<size_t>(written) >= piece->iov_len; ++piece, --count)
            written -= static_cast<ssize_t>(piece->iov_len);
        if (count > 0) {
            piece->iov_base = static_cast<char*>(piece->iov_base) + written;
            piece->iov_len -= static_cast<size_t>(written);
        }
    }
}

} // namespace

void LogFileWriter::append(char const* line, size_t length, bool gather) {
    pthread_mutex_lock(&lock_);
    if (!gather || stopped_ || size_ + length > kCapacity) return writeGatheredAndUnlock(line, length);
    if (buffer_ == nullptr && (buffer_ = static_cast<char*>(std::malloc(kCapacity))) == nullptr)
        return writeGatheredAndUnlock(line, length);
    std::memcpy(buffer_ + size_, line, length);
    size_ += length;
    if (!threadRunning_ && !startThread()) {
        stopped_ = true; // no thread to be had: every line goes out at once from now on
        return writeGatheredAndUnlock(nullptr, 0);
    }
    bool const wakeWriter = threadWaiting_;
    threadWaiting_ = false;
    pthread_mutex_unlock(&lock_);
    if (wakeWriter) pthread_cond_signal(&wake_);
}

// Called with lock_ held. The batch is taken under lock_ and writeOrder_ is
// taken before lock_ is let go, so batches reach the file in the order they
// were taken, while new lines gather meanwhile.
void LogFileWriter::writeGatheredAndUnlock(char const* line, size_t length) {
    char* const batch = buffer_;
    size_t const batchSize = size_;
    buffer_ = nullptr;
    size_ = 0;
    pthread_mutex_lock(&writeOrder_);
    pthread_mutex_unlock(&lock_);
    writeAll(fd_, batch, batchSize, line, length);
    pthread_mutex_unlock(&writeOrder_);
    std::free(batch);
}

void LogFileWriter::stop() {
    pthread_mutex_lock(&lock_);
    bool const join = threadRunning_ && !stopped_;
    stopped_ = true;
    threadRunning_ = false;
    pthread_mutex_unlock(&lock_);
    if (join) {
        pthread_cond_signal(&wake_);
        pthread_join(thread_, nullptr);
    }
    pthread_mutex_lock(&lock_);
    writeGatheredAndUnlock(nullptr, 0);
}

// Called with lock_ held.
bool LogFileWriter::startThread() {
    static pthread_once_t forkHandlers = PTHREAD_ONCE_INIT;
    pthread_once(&forkHandlers, [] {
        pthread_atfork(
            [] {
                if (forkWatched == nullptr) return;
                pthread_mutex_lock(&forkWatched->lock_);
                pthread_mutex_lock(&forkWatched->writeOrder_);
            },
            [] {
                if (forkWatched == nullptr) return;
                pthread_mutex_unlock(&forkWatched->writeOrder_);
                pthread_mutex_unlock(&forkWatched->lock_);
            },
            [] {
                if (forkWatched != nullptr) forkWatched->resetInForkedChild();
            });
    });
    forkWatched = this;

    // The host's signals are none of this thread's business.
    sigset_t all, previous;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &previous);
    threadRunning_ = pthread_create(
                         &thread_, nullptr,
                         [](void* self) -> void* {
                             static_cast<LogFileWriter*>(self)->runThread();
                             return nullptr;
                         },
                         this) == 0;
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    return threadRunning_;
}

void LogFileWriter::runThread() {
    pthread_mutex_lock(&lock_);
    for (;;) {
        while (size_ == 0 && !stopped_) {
            threadWaiting_ = true;
            pthread_cond_wait(&wake_, &lock_);
        }
        threadWaiting_ = false;
        if (stopped_) break; // stop() writes what is left
        pthread_mutex_unlock(&lock_);
        timespec linger{0, kLingerNanoseconds};
        nanosleep(&linger, nullptr);
        pthread_mutex_lock(&lock_);
        if (size_ > 0) {
            writeGatheredAndUnlock(nullptr, 0);
            pthread_mutex_lock(&lock_);
        }
    }
    pthread_mutex_unlock(&lock_);
}

// The child has no writer thread, and the lines gathered before fork() are
// the parent's to write.
void LogFileWriter::resetInForkedChild() {
    pthread_mutex_init(&lock_, nullptr);
    pthread_mutex_init(&writeOrder_, nullptr);
    pthread_cond_init(&wake_, nullptr);
    size_ = 0;
    threadRunning_ = false;
    threadWaiting_ = false;
}

} // namespace lorvant

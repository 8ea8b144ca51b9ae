// Appends whole lines to a log file without a system call per line.
//
// A write costs more than a whole request on some machines, and a request
// logs a line. So lines of the routine level are gathered in memory and a
// writer thread of this library appends them a millisecond later, many to
// one write; any other line goes out at once from the caller, together with
// the lines gathered before it. Every write holds whole lines and the file is
// opened with O_APPEND, so lines of other threads and processes never split
// or mix, and the lines of one thread keep their order. Gathered lines are
// written at exit, when the library is unloaded, when the buffer fills and
// before any line of a higher level; a process that dies without exit() loses
// at most the routine lines of its last millisecond.
#ifndef LORVANT_LOG_FILE_WRITER_H
#define LORVANT_LOG_FILE_WRITER_H

#include <pthread.h>

#include <cstddef>

namespace lorvant {

// Trivially destructible on purpose: the object outlives stop(), so that a
// line logged by another library's destructor still has somewhere to go.
class LogFileWriter {
public:
    explicit LogFileWriter(int fd) : fd_(fd) {}

    // Appends a line; `gather` lets it wait for the writer thread.
    void append(char const* line, size_t length, bool gather);
    // Writes what is gathered and ends the writer thread; later lines go
    // out at once.
    void stop();

private:
    void writeGatheredAndUnlock(char const* line, size_t length);
    bool startThread();
    void runThread();
    void resetInForkedChild();

    int fd_;
    pthread_mutex_t lock_ = PTHREAD_MUTEX_INITIALIZER;       // the buffer and the flags
    pthread_mutex_t writeOrder_ = PTHREAD_MUTEX_INITIALIZER; // taken under lock_ with a batch
    pthread_cond_t wake_ = PTHREAD_COND_INITIALIZER;
    char* buffer_ = nullptr; // kCapacity bytes once a line was gathered
    size_t size_ = 0;
    bool threadRunning_ = false;
    bool threadWaiting_ = false;
    bool stopped_ = false;
    pthread_t thread_{};
};

} // namespace lorvant

#endif

// liblorvant2: one line per message, with a time stamp, the logger name, the
// level and the message, appended to the file named by LORVANT_LOG_FILE or
// written to stderr. Log calls are not journaled: one follows every request.
//
// The file is opened once, for appending, and every write holds whole lines:
// with O_APPEND the kernel places each write at the end of the file as a
// whole, so lines from other threads and processes never split or mix. The
// per-request lines are gathered and written several at a time
// (log_file_writer.h); standard error gets each line at once, in step with
// what the program prints, and so does a file when LORVANT_LOG_GATHER=0.
#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "devices/lorvant.h"
#include "log_file_writer.h"

namespace {

void writeWhole(int fd, char const* text, size_t length) {
    while (length > 0) {
        ssize_t const written = write(fd, text, length);
        if (written < 0) return; // nowhere to report a failing log
        text += written;
        length -= static_cast<size_t>(written);
    }
}

// The level of a successful request's line, the one logged all the time;
// lines of this level and below may wait a moment for company.
constexpr int32_t kRoutineLevel = 2;

struct Logger {
    int fd;       // the log file, or stderr when none is named or it cannot be opened
    bool gathers; // a file, unless LORVANT_LOG_GATHER=0 asks for every line at once
    lorvant::LogFileWriter file{fd};

    void write(char const* line, size_t length, int32_t level) {
        if (gathers)
            file.append(line, length, level <= kRoutineLevel);
        else
            writeWhole(fd, line, length);
    }
};

int openLogFile() {
    char const* path = std::getenv("LORVANT_LOG_FILE");
    if (path == nullptr || *path == '\0') return STDERR_FILENO;
    int const fd = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    return fd >= 0 ? fd : STDERR_FILENO;
}

bool gatherWanted() {
    char const* gather = std::getenv("LORVANT_LOG_GATHER");
    return gather == nullptr || std::strcmp(gather, "0") != 0;
}

Logger* theLogger = nullptr;

// Gathered lines reach the file at exit and when the library is unloaded.
struct WriteGatheredAtUnload {
    ~WriteGatheredAtUnload() {
        if (theLogger != nullptr) theLogger->file.stop();
    }
} writeGatheredAtUnload;

constexpr size_t kSecondLength = 19; // "YYYY-MM-DD hh:mm:ss"

char* put(char* out, char const* text, size_t length) {
    std::memcpy(out, text, length);
    return out + length;
}

// The local time to the second, "YYYY-MM-DD hh:mm:ss", into out.
void formatSecondStamp(char* out, time_t seconds) {
    tm local{};
    localtime_r(&seconds, &local);
    char text[32];
    if (std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local) != kSecondLength)
        std::snprintf(text, sizeof text, "%19s", "");
    std::memcpy(out, text, kSecondLength);
}

// The stamp of the latest second any thread formatted, so that a line costs
// a copy instead of localtime_r and strftime (which also share a lock inside
// the C library). A sequence lock over atomic words: a reader that meets a
// writer, or another second, formats the stamp itself. Shared rather than
// thread_local: this library is opened at run time, and dynamic TLS in it
// trips LeakSanitizer's scan of thread-local storage at exit.
class SecondStampCache {
public:
    void put(char* out, time_t seconds) {
        uint32_t const before = sequence_.load(std::memory_order_acquire);
        if ((before & 1u) == 0 && second_.load(std::memory_order_relaxed) == seconds) {
            uint64_t words[kWords];
            for (size_t i = 0; i < kWords; ++i)
                words[i] = words_[i].load(std::memory_order_relaxed);
            std::atomic_thread_fence(std::memory_order_acquire);
            if (sequence_.load(std::memory_order_relaxed) == before) {
                std::memcpy(out, words, kSecondLength);
                return;
            }
        }
        formatSecondStamp(out, seconds);
        store(out, seconds);
    }

private:
    static constexpr size_t kWords = (kSecondLength + 7) / 8;

    // Publishes a stamp unless another thread is publishing one.
    void store(char const* stamp, time_t seconds) {
        uint32_t current = sequence_.load(std::memory_order_relaxed);
        if ((current & 1u) != 0 ||
            !sequence_.compare_exchange_strong(current, current + 1, std::memory_order_relaxed))
            return;
        std::atomic_thread_fence(std::memory_order_release);
        uint64_t words[kWords] = {};
        std::memcpy(words, stamp, kSecondLength);
        second_.store(seconds, std::memory_order_relaxed);
        for (size_t i = 0; i < kWords; ++i)
            words_[i].store(words[i], std::memory_order_relaxed);
        sequence_.store(current + 2, std::memory_order_release);
    }

    std::atomic<uint32_t> sequence_{0}; // odd while a stamp is being published
    std::atomic<time_t> second_{-1};
    std::atomic<uint64_t> words_[kWords] = {};
};

SecondStampCache secondStamps;

// The decimal text of a level (snprintf costs more than the rest of the line).
size_t decimal(char* out, int32_t value) {
    char digits[12];
    size_t n = 0;
    int64_t v = value < 0 ? -static_cast<int64_t>(value) : value;
    do {
        digits[n++] = static_cast<char>('0' + v % 10);
        v /= 10;
    } while (v != 0);
    size_t length = 0;
    if (value < 0) out[length++] = '-';
    while (n > 0)
        out[length++] = digits[--n];
    return length;
}

} // namespace

extern "C" {

void* lorvant_get_logger(void) {
    static int const fd = openLogFile();
    static Logger logger{fd, fd != STDERR_FILENO && gatherWanted()};
    static bool const stoppedAtUnload = (theLogger = &logger, true);
    (void)stoppedAtUnload;
    return &logger;
}

void lorvant_log(void* logger, char const* name, int32_t level, char const* message) {
    if (logger == nullptr) return;
    timeval now{};
    gettimeofday(&now, nullptr);
    char const* const who = name != nullptr ? name : "";
    char const* const what = message != nullptr ? message : "";
    size_t const whoLength = std::strlen(who);
    size_t const whatLength = std::strlen(what);
    char levelText[16];
    size_t const levelLength = decimal(levelText, level);

    // "<stamp>.mmm [<name>] level <n>: <message>\n", on the stack when short.
    size_t const total = kSecondLength + 4 + 2 + whoLength + 8 + levelLength + 2 + whatLength + 1;
    char shortLine[1024];
    std::string longLine;
    char* const line = total <= sizeof shortLine ? shortLine : &(longLine = std::string(total, ' '))[0];
    char* out = line;
    secondStamps.put(out, now.tv_sec);
    out += kSecondLength;
    long const ms = static_cast<long>(now.tv_usec / 1000);
    *out++ = '.';
    *out++ = static_cast<char>('0' + ms / 100);
    *out++ = static_cast<char>('0' + ms / 10 % 10);
    *out++ = static_cast<char>('0' + ms % 10);
    out = put(out, " [", 2);
    out = put(out, who, whoLength);
    out = put(out, "] level ", 8);
    out = put(out, levelText, levelLength);
    out = put(out, ": ", 2);
    out = put(out, what, whatLength);
    *out++ = '\n';
    static_cast<Logger*>(logger)->write(line, static_cast<size_t>(out - line), level);
}

} // extern "C"

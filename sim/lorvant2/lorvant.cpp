// liblorvant2: one line per message, with a time stamp, the logger name, the
// level and the message, appended to the file named by LORVANT_LOG_FILE or
// written to stderr. Log calls are not journaled: one follows every request.
//
// The file is opened once, for appending, and every line goes out in one
// write: with O_APPEND the kernel places each write at the end of the file as
// a whole, so lines from other threads and processes never split or mix, and
// no lock is needed here.
#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "devices/lorvant.h"

namespace {

struct Logger {
    int fd; // the log file, or stderr when none is named or it cannot be opened
};

int openLogFile() {
    char const* path = std::getenv("LORVANT_LOG_FILE");
    if (path == nullptr || *path == '\0') return STDERR_FILENO;
    int const fd = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    return fd >= 0 ? fd : STDERR_FILENO;
}

// "YYYY-MM-DD hh:mm:ss" of the local time; localtime_r is dear, so each thread
// keeps the text of the last second it formatted.
char const* secondStamp(time_t seconds) {
    thread_local time_t cachedSecond = -1;
    thread_local char cached[32];
    if (seconds != cachedSecond) {
        tm local{};
        localtime_r(&seconds, &local);
        std::strftime(cached, sizeof cached, "%Y-%m-%d %H:%M:%S", &local);
        cachedSecond = seconds;
    }
    return cached;
}

void writeWhole(int fd, char const* text, size_t length) {
    while (length > 0) {
        ssize_t const written = write(fd, text, length);
        if (written < 0) return; // nowhere to report a failing log
        text += written;
        length -= static_cast<size_t>(written);
    }
}

} // namespace

extern "C" {

void* lorvant_get_logger(void) {
    static Logger logger{openLogFile()};
    return &logger;
}

void lorvant_log(void* logger, char const* name, int32_t level, char const* message) {
    if (logger == nullptr) return;
    timeval now{};
    gettimeofday(&now, nullptr);
    char const* const who = name != nullptr ? name : "";
    char const* const what = message != nullptr ? message : "";
    size_t const messageLength = std::strlen(what);

    // Short lines are put together on the stack; longer ones on the heap.
    char line[1024];
    std::string longLine;
    char* out = line;
    size_t room = sizeof line;
    for (;;) {
        int const head = std::snprintf(out, room, "%s.%03ld [%s] level %d: ", secondStamp(now.tv_sec),
                                       static_cast<long>(now.tv_usec / 1000), who, static_cast<int>(level));
        if (head < 0) return;
        size_t const total = static_cast<size_t>(head) + messageLength + 1;
        if (total < room) { // snprintf needs room for its terminating zero
            std::memcpy(out + head, what, messageLength);
            out[head + messageLength] = '\n';
            writeWhole(static_cast<Logger*>(logger)->fd, out, total);
            return;
        }
        longLine.resize(total + 1);
        out = &longLine[0];
        room = total + 1;
    }
}

} // extern "C"

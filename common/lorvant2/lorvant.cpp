// liblorvant2: one line per message, with a time stamp, the logger name, the
// level and the message, appended to the file named by LORVANT_LOG_FILE or
// written to stderr. Log calls are not journaled: one follows every request.
#include <sys/time.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <mutex>

#include "devices/lorvant.h"

namespace {

struct Logger {
    std::mutex mutex;
};

} // namespace

extern "C" {

void* lorvant_get_logger(void) {
    static Logger logger;
    return &logger;
}

void lorvant_log(void* logger, char const* name, int32_t level, char const* message) {
    if (logger == nullptr) return;
    timeval now{};
    gettimeofday(&now, nullptr);
    tm local{};
    time_t const seconds = now.tv_sec;
    localtime_r(&seconds, &local);
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%Y-%m-%d %H:%M:%S", &local);

    std::lock_guard<std::mutex> lock(static_cast<Logger*>(logger)->mutex);
    char const* path = std::getenv("LORVANT_LOG_FILE");
    FILE* out = path != nullptr && *path != '\0' ? std::fopen(path, "a") : stderr;
    if (out == nullptr) return;
    std::fprintf(out, "%s.%03ld [%s] level %d: %s\n", stamp, static_cast<long>(now.tv_usec / 1000),
                 name != nullptr ? name : "", static_cast<int>(level), message != nullptr ? message : "");
    if (out == stderr)
        std::fflush(out);
    else
        std::fclose(out);
}

} // extern "C"

// The logging stand-in appends whole lines to its file, whoever writes.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "devices/lorvant.h"

namespace {

// Messages of a few sizes: on the stack, on the heap, beyond a pipe's atomic size.
std::string Message(int writer, int i) {
    static size_t const kSizes[] = {10, 2000, 70000};
    return "w" + std::to_string(writer) + " " + std::string(kSizes[i % 3], static_cast<char>('a' + writer));
}

constexpr int kProcesses = 2, kThreads = 2, kLines = 300;

// Runs write(logger, writer) on kThreads threads in each of `processes` child
// processes, all logging into `file`; writers are numbered across processes.
template <typename Write> void LogFromChildren(std::string const& file, int processes, Write write) {
    std::vector<pid_t> children;
    for (int p = 0; p < processes; ++p) {
        pid_t const pid = fork();
        if (pid == 0) {
            setenv("LORVANT_LOG_FILE", file.c_str(), 1);
            void* logger = lorvant_get_logger();
            std::vector<std::thread> threads;
            for (int t = 0; t < kThreads; ++t)
                threads.emplace_back([=] { write(logger, p * kThreads + t); });
            for (auto& thread : threads)
                thread.join();
            _exit(0);
        }
        children.push_back(pid);
    }
    for (pid_t pid : children) {
        int status = 0;
        waitpid(pid, &status, 0);
        ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
}

} // namespace

TEST(LogFile, ConcurrentWritersNeverSplitOrMixLines) {
    std::string const file = "/tmp/sim_log_test." + std::to_string(getpid());
    LogFromChildren(file, kProcesses, [](void* logger, int writer) {
        for (int i = 0; i < kLines; ++i)
            lorvant_log(logger, "Mirel", 2 + writer % kThreads, Message(writer, i).c_str());
    });
    std::ifstream in(file);
    std::regex const head(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} \[Mirel\] level (\d+): w(\d+) )");
    std::map<int, int> linesOf; // writer -> lines seen
    int bad = 0;
    for (std::string line; std::getline(in, line);) {
        std::smatch m;
        if (!std::regex_search(line, m, head) || m.position(0) != 0) {
            ++bad;
            continue;
        }
        int const writer = std::stoi(m[2]);
        std::string const body = line.substr(m.length(0));
        bool const whole = (body.size() == 10 || body.size() == 2000 || body.size() == 70000) &&
                           body.find_first_not_of(static_cast<char>('a' + writer)) == std::string::npos &&
                           std::stoi(m[1]) == 2 + writer % kThreads;
        if (whole)
            ++linesOf[writer];
        else
            ++bad;
    }
    unlink(file.c_str());
    EXPECT_EQ(0, bad);
    for (int writer = 0; writer < kProcesses * kThreads; ++writer)
        EXPECT_EQ(kLines, linesOf[writer]) << "writer " << writer;
}

// Each line carries the local time of its call to the second, also when
// threads log across the turn of a second.
TEST(LogFile, ConcurrentLinesCarryTheSecondOfTheirCall) {
    std::string const file = "/tmp/sim_log_stamp_test." + std::to_string(getpid());
    time_t const end = time(nullptr) + 2;
    LogFromChildren(file, 1, [end](void* logger, int) {
        for (time_t before = time(nullptr); before < end; before = time(nullptr)) {
            lorvant_log(logger, "Mirel", 3, std::to_string(before).c_str());
            usleep(500);
        }
    });

    auto const stampOf = [](time_t seconds) {
        tm local{};
        localtime_r(&seconds, &local);
        char text[32];
        strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
        return std::string(text);
    };
    std::ifstream in(file);
    std::set<std::string> seen;
    int lines = 0, bad = 0;
    for (std::string line; std::getline(in, line); ++lines) {
        std::string const stamp = line.substr(0, 19);
        time_t const before = std::stoll(line.substr(line.find(": ") + 2));
        // Not an earlier second (a stale stamp); a later one only when the call itself was late.
        if (stamp != stampOf(before) && stamp != stampOf(before + 1)) ++bad;
        seen.insert(stamp);
    }
    unlink(file.c_str());
    EXPECT_GT(lines, 100);
    EXPECT_EQ(0, bad);
    EXPECT_GE(seen.size(), 2u); // the turn of a second was crossed
}

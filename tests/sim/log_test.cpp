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

// Messages of a few sizes: on the stack, on the heap, beyond a pipe's atomic
// size and the gathered lines' buffer.
std::string Message(int writer, int i) {
    static size_t const kSizes[] = {10, 2000, 70000};
    return "w" + std::to_string(writer) + " " + std::to_string(i) + " " +
           std::string(kSizes[i % 3], static_cast<char>('a' + writer));
}

// Mostly the routine level, which waits to be written with others, and now
// and then an error, which goes out at once.
int32_t Level(int i) {
    return i % 4 == 3 ? 5 : 2;
}

std::string Slurp(std::string const& file) {
    std::ifstream in(file);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
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
            std::exit(0); // as a host ends: what is gathered is written then
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

TEST(LogFile, ConcurrentWritersNeverSplitMixOrReorderLines) {
    std::string const file = "/tmp/sim_log_test." + std::to_string(getpid());
    LogFromChildren(file, kProcesses, [](void* logger, int writer) {
        for (int i = 0; i < kLines; ++i)
            lorvant_log(logger, "Mirel", Level(i), Message(writer, i).c_str());
    });
    std::ifstream in(file);
    // The head only: std::regex recurses per character, and lines run to 70 kB.
    std::regex const head(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} \[Mirel\] level (\d+): w(\d+) (\d+) )");
    std::map<int, int> linesOf; // writer -> lines seen, each its next one
    int bad = 0;
    for (std::string text; std::getline(in, text);) {
        std::smatch m;
        std::string const start = text.substr(0, 80);
        if (!std::regex_search(start, m, head) || m.position(0) != 0) {
            ++bad;
            continue;
        }
        int const writer = std::stoi(m[2]), i = std::stoi(m[3]);
        bool const whole = text.compare(m.position(2) - 1, std::string::npos, Message(writer, i)) == 0 &&
                           std::stoi(m[1]) == Level(i) && i == linesOf[writer];
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

// A routine line waits only a moment, not for exit; a child forked meanwhile
// writes its own lines and not its parent's gathered ones.
TEST(LogFile, GatheredLinesReachTheFileWithoutExitAndOnceAcrossFork) {
    std::string const file = "/tmp/sim_log_fork_test." + std::to_string(getpid());
    pid_t const pid = fork();
    if (pid == 0) { // the logger binds once per process: keep it out of the test process
        setenv("LORVANT_LOG_FILE", file.c_str(), 1);
        void* logger = lorvant_get_logger();
        lorvant_log(logger, "Mirel", 2, "parent before fork");
        pid_t const child = fork();
        if (child == 0) {
            lorvant_log(logger, "Mirel", 2, "child");
            std::exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        for (int wait = 0; wait < 500 && Slurp(file).find("parent before fork") == std::string::npos; ++wait)
            usleep(10000);
        _exit(0); // no exit handlers: whatever reached the file came by itself
    }
    int status = 0;
    waitpid(pid, &status, 0);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    std::string const text = Slurp(file);
    unlink(file.c_str());
    auto const count = [&](std::string const& what) {
        int n = 0;
        for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
            ++n;
        return n;
    };
    EXPECT_EQ(1, count("level 2: parent before fork\n")) << text;
    EXPECT_EQ(1, count("level 2: child\n")) << text;
}

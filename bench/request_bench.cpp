// The request path as a host sees it: a SensorXYZ export call and the two-step
// fetch of its response, on the default simulated world.
//
// The library binds its logger once per process, so every measurement runs in
// a child forked from this (still untouched) process, set up the way the case
// needs; the child reports its wall time through a pipe. Benchmarks with
// --benchmark_enable_random_interleaving then compare cases within one run.
#include <benchmark/benchmark.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "sensorcontrol/sensorcontrol.h"

namespace {

// Round trips per thread and measurement: long enough to dwarf the fork and
// Setup, short enough to interleave many repetitions.
constexpr int kRoundTrips = 50000;
constexpr int kWarmUp = 5000;

std::string const& LibraryDir() {
    static std::string const dir = BENCH_LIBRARY_DIR;
    return dir;
}

// An exports directory holding every stand-in but the logging library.
// Never destroyed: the atexit handler that removes the folder is registered
// while the string is made, so it would run after the string's destructor.
std::string const& ExportsWithoutLogger() {
    static std::string const& dir = *new std::string([] {
        char pattern[] = "/tmp/request_bench.XXXXXX";
        std::string const made = mkdtemp(pattern);
        for (char const* name : {"libpallast", "libdvc", "libquorSensor", "libtorvik", "libcorvane"}) {
            std::string const file = std::string("/") + name + BENCH_LIBRARY_SUFFIX;
            if (symlink((LibraryDir() + file).c_str(), (made + file).c_str()) != 0) std::perror("symlink");
        }
        std::atexit([] {
            std::string const command = "rm -rf " + ExportsWithoutLogger();
            if (std::system(command.c_str()) != 0) std::perror("rm");
        });
        return made;
    }());
    return dir;
}

std::string const& LogFile() {
    static std::string const file = ExportsWithoutLogger() + ".log";
    return file;
}

enum class Logging { None, File };

// The response text, fetched as a host does; an empty text when the request failed.
std::string Fetch(uint32_t id, std::string& buffer) {
    uint32_t length = 0;
    if (BridgeHelperGetResponse(id, nullptr, &length) != 200) return std::string();
    buffer.resize(length);
    BridgeHelperGetResponse(id, &buffer[0], &length);
    return buffer;
}

// The default world's two stand-alone USB sensors. Each host thread measures
// its own, as two hosts' threads would, and each of two processes takes the
// one the thread of the same number takes, so both cases read the same pair.
constexpr char const* kDeviceIDs[] = {"8", "11"};

std::string OpenSensor(char const* deviceID) {
    std::string buffer;
    std::string const parameters = std::string("{\"deviceID\":\"") + deviceID + "\"}";
    std::string const text = Fetch(DeviceID(R"({"method":"POST"})", parameters.c_str(), "", ""), buffer);
    auto const start = text.find("\"value\":\"");
    if (start == std::string::npos) return std::string();
    return text.substr(start + 9, text.find('"', start + 9) - start - 9);
}

// One host thread: its own sensor, kRoundTrips SensorXYZ round trips.
bool RunRoundTrips(std::string const& id, int count) {
    std::string const params = "{\"id\":\"" + id + "\"}";
    std::vector<char> buffer(256);
    for (int i = 0; i < count; ++i) {
        uint32_t const promise = SensorXYZ("", params.c_str(), "", "");
        uint32_t length = 0;
        if (BridgeHelperGetResponse(promise, nullptr, &length) != 200) return false;
        if (length > buffer.size()) buffer.resize(length);
        BridgeHelperGetResponse(promise, buffer.data(), &length);
        benchmark::DoNotOptimize(buffer.data());
    }
    return true;
}

struct Times {
    double wall = -1; // seconds; negative on failure
    double cpu = 0;   // seconds of CPU, user and system, of the whole process
};

double ProcessCpuSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

// In a fresh child: set up, open one sensor per thread (the first one the
// `sensor`th of kDeviceIDs), warm up, then time kRoundTrips round trips on
// each of `threads` threads.
Times ChildRun(Logging logging, int threads, int sensor, int count = kRoundTrips) {
    setenv("HALVERN_EXPORTS_PATH", (logging == Logging::None ? ExportsWithoutLogger() : LibraryDir()).c_str(),
           1);
    setenv("LORVANT_LOG_FILE", LogFile().c_str(), 1);
    Setup();
    std::vector<std::string> ids;
    for (int t = 0; t < threads; ++t) {
        ids.push_back(OpenSensor(kDeviceIDs[(sensor + t) % 2]));
        if (ids.back().empty() || !RunRoundTrips(ids.back(), kWarmUp)) return Times();
    }
    double const cpuStart = ProcessCpuSeconds();
    auto const start = std::chrono::steady_clock::now();
    std::vector<std::thread> workers;
    std::vector<char> ok(threads, 0);
    for (int t = 0; t < threads; ++t)
        workers.emplace_back([&, t] { ok[t] = RunRoundTrips(ids[t], count); });
    for (auto& worker : workers)
        worker.join();
    Times times;
    times.wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    times.cpu = ProcessCpuSeconds() - cpuStart;
    for (char good : ok)
        if (!good) return Times();
    return times;
}

struct Child {
    pid_t pid;
    int result; // read end of the pipe that carries the wall time
    int go;     // write end: the child starts timing when it reads a byte
};

Child Spawn(Logging logging, int threads, int sensor) {
    int result[2], go[2];
    if (pipe(result) != 0 || pipe(go) != 0) std::abort();
    pid_t const pid = fork();
    if (pid == 0) {
        close(result[0]);
        close(go[1]);
        char byte;
        Times const times = read(go[0], &byte, 1) == 1 ? ChildRun(logging, threads, sensor) : Times();
        if (write(result[1], &times, sizeof times) != sizeof times) _exit(1);
        _exit(0);
    }
    close(result[1]);
    close(go[0]);
    return Child{pid, result[0], go[1]};
}

Times Collect(Child const& child) {
    Times times;
    if (read(child.result, &times, sizeof times) != sizeof times) times = Times();
    close(child.result);
    close(child.go);
    int status = 0;
    waitpid(child.pid, &status, 0);
    return times;
}

// Runs `processes` children of `threads` threads at once; the iteration time is
// the wall time of the slowest divided by all round trips, so it reads as the
// time per round trip of the whole machine (lower is more throughput). The
// counter cpu_ns is the CPU time per round trip, which a loaded machine
// disturbs less than the wall time.
void Measure(benchmark::State& state, Logging logging, int processes, int threads) {
    double const roundTrips = static_cast<double>(kRoundTrips) * processes * threads;
    double cpu = 0;
    for (auto _ : state) {
        if (truncate(LogFile().c_str(), 0) != 0 && errno != ENOENT) std::perror("truncate");
        std::vector<Child> children;
        for (int p = 0; p < processes; ++p)
            children.push_back(Spawn(logging, threads, p));
        for (Child const& child : children)
            if (write(child.go, "g", 1) != 1) std::abort();
        double slowest = 0;
        for (Child const& child : children) {
            Times const times = Collect(child);
            if (times.wall < 0) {
                state.SkipWithError("a child failed");
                return;
            }
            slowest = times.wall > slowest ? times.wall : slowest;
            cpu += times.cpu;
        }
        state.SetIterationTime(slowest / roundTrips);
    }
    state.counters["cpu_ns"] = 1e9 * cpu / (roundTrips * static_cast<double>(state.iterations()));
}

void RoundTripWithoutLogger(benchmark::State& state) {
    Measure(state, Logging::None, 1, 1);
}
void RoundTripWithFileLogger(benchmark::State& state) {
    Measure(state, Logging::File, 1, 1);
}
void TwoThreads(benchmark::State& state) {
    Measure(state, Logging::None, 1, 2);
}
void TwoProcesses(benchmark::State& state) {
    Measure(state, Logging::None, 2, 1);
}
void TwoThreadsWithFileLogger(benchmark::State& state) {
    Measure(state, Logging::File, 1, 2);
}
void TwoProcessesWithFileLogger(benchmark::State& state) {
    Measure(state, Logging::File, 2, 1);
}

} // namespace

BENCHMARK(RoundTripWithoutLogger)->UseManualTime()->Iterations(3)->Unit(benchmark::kNanosecond);
BENCHMARK(RoundTripWithFileLogger)->UseManualTime()->Iterations(3)->Unit(benchmark::kNanosecond);
BENCHMARK(TwoThreads)->UseManualTime()->Iterations(3)->Unit(benchmark::kNanosecond);
BENCHMARK(TwoProcesses)->UseManualTime()->Iterations(3)->Unit(benchmark::kNanosecond);
BENCHMARK(TwoThreadsWithFileLogger)->UseManualTime()->Iterations(3)->Unit(benchmark::kNanosecond);
BENCHMARK(TwoProcessesWithFileLogger)->UseManualTime()->Iterations(3)->Unit(benchmark::kNanosecond);

// `request_bench --profile [file]` runs one child's work in this process, for
// callgrind or perf: `valgrind --tool=callgrind build/bin/request_bench --profile`.
int main(int argc, char** argv) {
    if (argc >= 2 && std::string(argv[1]) == "--profile")
        return ChildRun(argc >= 3 ? Logging::File : Logging::None, 1, 0, 20000).wall < 0 ? 1 : 0;
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

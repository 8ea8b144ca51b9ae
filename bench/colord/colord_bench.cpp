// What the Linux set's libpallast adds to colord's own GetSample round trip.
//
// Each iteration reads colord's dummy sensor twice, interleaved: once with
// libcolord directly (GetSample alone, timed, with the sensor locked and
// unlocked around it untimed) and once through MDMeasureXYZ2 (per-sensor
// serialisation, Lock, GetSample, Unlock, the correction matrix). The counters
// are medians over the iterations; added_ms is the median of the paired
// differences, so colord's own variation in a reading largely cancels.
// lock_unlock_ms is libcolord's own Lock and Unlock round trips, timed in the
// direct read; beyond_lock_ms what the library adds beyond those.
#include <benchmark/benchmark.h>
#include <colord.h>

#include <algorithm>
#include <time.h>

#include <chrono>
#include <cstdio>
#include <vector>

#include "devices/pallast.h"
#include "private_colord.h"

namespace {

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

// CPU time of the calling thread: what a call costs here while it waits for colord.
double threadCpuMs() {
    timespec t;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return t.tv_sec * 1e3 + t.tv_nsec / 1e6;
}

double elapsedMs(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

void BM_MeasureXYZ2AgainstGetSample(benchmark::State& state) {
    static testing_colord::PrivateColord colord; // one bus and colord for the whole run
    if (!colord.failure().empty()) {
        state.SkipWithError(colord.failure().c_str());
        return;
    }
    CdClient* client = cd_client_new();
    GPtrArray* sensors = nullptr;
    if (!cd_client_connect_sync(client, nullptr, nullptr) ||
        (sensors = cd_client_get_sensors_sync(client, nullptr, nullptr)) == nullptr || sensors->len == 0) {
        state.SkipWithError("libcolord finds no sensor");
        return;
    }
    CdSensor* direct = CD_SENSOR(g_ptr_array_index(sensors, 0));
    if (!cd_sensor_connect_sync(direct, nullptr, nullptr)) {
        state.SkipWithError("libcolord cannot connect to the sensor");
        return;
    }
    MDDeviceID deviceID = 0;
    uint64_t individualID = 0;
    void* handle = nullptr;
    if (MDEnumConnectedDevices(0, &deviceID, &individualID) != 0 ||
        MDOpenWithIndividualID(individualID, &handle).code != 0) {
        state.SkipWithError("libpallast cannot open the sensor");
        return;
    }
    std::vector<double> directMs, libraryMs, addedMs, lockUnlockMs, beyondLockMs, directCpuMs, libraryCpuMs;
    for (auto _ : state) {
        auto start = std::chrono::steady_clock::now();
        if (!cd_sensor_lock_sync(direct, nullptr, nullptr)) {
            state.SkipWithError("libcolord cannot lock the sensor");
            break;
        }
        double lockUnlock = elapsedMs(start);
        start = std::chrono::steady_clock::now();
        double cpu = threadCpuMs();
        CdColorXYZ* xyz = cd_sensor_get_sample_sync(direct, CD_SENSOR_CAP_LCD, nullptr, nullptr);
        double const d = elapsedMs(start);
        directCpuMs.push_back(threadCpuMs() - cpu);
        cd_color_xyz_free(xyz);
        start = std::chrono::steady_clock::now();
        bool const unlocked = cd_sensor_unlock_sync(direct, nullptr, nullptr);
        lockUnlock += elapsedMs(start);
        if (!unlocked) {
            state.SkipWithError("libcolord cannot unlock the sensor");
            break;
        }

        colour raw, measured;
        start = std::chrono::steady_clock::now();
        cpu = threadCpuMs();
        DvError const r = MDMeasureXYZ2(handle, &raw, &measured);
        double const l = elapsedMs(start);
        libraryCpuMs.push_back(threadCpuMs() - cpu);
        if (r.code != 0) {
            state.SkipWithError("MDMeasureXYZ2 failed");
            break;
        }
        directMs.push_back(d);
        libraryMs.push_back(l);
        addedMs.push_back(l - d);
        lockUnlockMs.push_back(lockUnlock);
        beyondLockMs.push_back(l - d - lockUnlock);
        state.SetIterationTime(l / 1000.0);
    }
    state.counters["direct_ms"] = median(directMs);
    state.counters["library_ms"] = median(libraryMs);
    state.counters["added_ms"] = median(addedMs);
    // colord's own Lock and Unlock round trips, which MDMeasureXYZ2 makes
    // around every reading, and what remains of added_ms beyond them.
    state.counters["lock_unlock_ms"] = median(lockUnlockMs);
    state.counters["beyond_lock_ms"] = median(beyondLockMs);
    state.counters["direct_cpu_ms"] = median(directCpuMs);
    state.counters["library_cpu_ms"] = median(libraryCpuMs);
    MDClose(&handle);
    g_ptr_array_unref(sensors);
    g_object_unref(client);
}

BENCHMARK(BM_MeasureXYZ2AgainstGetSample)->Iterations(10)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();

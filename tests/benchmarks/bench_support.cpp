// Each pair runs its standard-container baseline first; the second benchmark
// reports its CPU time per item as a ratio to that baseline ("x_baseline").
#include <benchmark/benchmark.h>

#include <time.h>

#include <string>
#include <unordered_map>
#include <vector>

#include <zel/hashkv.h>
#include <zel/minimem.h>

namespace {

const int kBytes = 4096;
const int kKeys = 1000;
double g_baselineNs;

// Runs body once per iteration and returns the thread's CPU nanoseconds per
// item, so that other load on the machine skews the ratios less.
template <typename Body>
double Timed(benchmark::State& state, int items, Body body) {
    auto cpuNs = [] {
        timespec now;
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return now.tv_sec * 1e9 + now.tv_nsec;
    };
    double start = cpuNs();
    for (auto _ : state) body();
    state.SetItemsProcessed(state.iterations() * items);
    return (cpuNs() - start) / (double(state.iterations()) * items);
}

void Compared(benchmark::State& state, double ns) {
    if (g_baselineNs > 0) state.counters["x_baseline"] = ns / g_baselineNs;
}

std::vector<std::wstring> Keys() {
    std::vector<std::wstring> keys;
    for (int i = 0; i < kKeys; ++i) keys.push_back(L"工具.item" + std::to_wstring(i * 7919));
    return keys;
}

void BM_Vector_PushBackBytes(benchmark::State& state) {
    g_baselineNs = Timed(state, kBytes, [] {
        std::vector<unsigned char> v;
        for (int i = 0; i < kBytes; ++i) v.push_back(static_cast<unsigned char>(i));
        benchmark::DoNotOptimize(v.data());
    });
}

void BM_MiniMem_AddByte(benchmark::State& state) {
    Compared(state, Timed(state, kBytes, [] {
        CMiniMem m;
        for (int i = 0; i < kBytes; ++i) m.AddByte(static_cast<unsigned char>(i));
        benchmark::DoNotOptimize(m.GetData());
    }));
}

void BM_UnorderedMap_TextLookup(benchmark::State& state) {
    std::vector<std::wstring> keys = Keys(), probes = Keys();  // equal texts, other storage
    std::unordered_map<std::wstring, void*> map;
    for (auto& key : keys) map[key] = &key;
    g_baselineNs = Timed(state, kKeys, [&] {
        for (auto& probe : probes) benchmark::DoNotOptimize(map.find(probe)->second);
    });
}

void BM_HashKV_TextLookup(benchmark::State& state) {
    std::vector<std::wstring> keys = Keys(), probes = Keys();
    CText2PtrHashmap map(kKeys);
    for (auto& key : keys) map.Set(key.data(), &key);
    Compared(state, Timed(state, kKeys, [&] {
        void* value;
        for (auto& probe : probes) {
            map.Get(probe.data(), &value);
            benchmark::DoNotOptimize(value);
        }
    }));
}

}  // namespace

BENCHMARK(BM_Vector_PushBackBytes);
BENCHMARK(BM_MiniMem_AddByte);
BENCHMARK(BM_UnorderedMap_TextLookup);
BENCHMARK(BM_HashKV_TextLookup);

BENCHMARK_MAIN();

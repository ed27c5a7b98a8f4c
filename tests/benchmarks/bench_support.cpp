// Each pair runs its standard-container baseline first; the second benchmark
// reports its time per item as a ratio to that baseline ("x_baseline").
#include <benchmark/benchmark.h>

#include <time.h>

#include <string>
#include <unordered_map>
#include <vector>

#include "support/hashkv.h"
#include "support/minimem.h"

namespace {

const int kBytes = 4096;
const int kKeys = 1000;

double g_vectorBytesNs, g_vectorWordsNs, g_unorderedLookupNs;

double ThreadCpuNs() {
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return now.tv_sec * 1e9 + now.tv_nsec;
}

// Runs body once per iteration and returns the CPU nanoseconds per item
// (CPU time, so that other load on the machine skews the ratios less).
template <typename Body>
double Timed(benchmark::State& state, int itemsPerIteration, Body body) {
    double start = ThreadCpuNs();
    for (auto _ : state) body();
    double elapsed = ThreadCpuNs() - start;
    state.SetItemsProcessed(state.iterations() * itemsPerIteration);
    return elapsed / (double(state.iterations()) * itemsPerIteration);
}

void ReportRatio(benchmark::State& state, double ns, double baselineNs) {
    if (baselineNs > 0) state.counters["x_baseline"] = ns / baselineNs;
}

void BM_Vector_PushBackBytes(benchmark::State& state) {
    g_vectorBytesNs = Timed(state, kBytes, [] {
        std::vector<unsigned char> v;
        for (int i = 0; i < kBytes; ++i) v.push_back(static_cast<unsigned char>(i));
        benchmark::DoNotOptimize(v.data());
    });
}

void BM_MiniMem_AddByte(benchmark::State& state) {
    double ns = Timed(state, kBytes, [] {
        CMiniMem m;
        for (int i = 0; i < kBytes; ++i) m.AddByte(static_cast<unsigned char>(i));
        benchmark::DoNotOptimize(m.GetData());
    });
    ReportRatio(state, ns, g_vectorBytesNs);
}

void BM_Vector_PushBackWords(benchmark::State& state) {
    g_vectorWordsNs = Timed(state, kBytes / 4, [] {
        std::vector<unsigned char> v;
        for (unsigned i = 0; i < kBytes / 4; ++i) {
            const auto* bytes = reinterpret_cast<const unsigned char*>(&i);
            v.insert(v.end(), bytes, bytes + 4);
        }
        benchmark::DoNotOptimize(v.data());
    });
}

void BM_MiniMem_AddDWord(benchmark::State& state) {
    double ns = Timed(state, kBytes / 4, [] {
        CMiniMem m;
        for (unsigned i = 0; i < kBytes / 4; ++i) m.AddDWord(i);
        benchmark::DoNotOptimize(m.GetData());
    });
    ReportRatio(state, ns, g_vectorWordsNs);
}

std::vector<std::wstring> Keys() {
    std::vector<std::wstring> keys;
    for (int i = 0; i < kKeys; ++i) keys.push_back(L"工具.item" + std::to_wstring(i * 7919));
    return keys;
}

void BM_UnorderedMap_TextLookup(benchmark::State& state) {
    std::vector<std::wstring> keys = Keys();
    std::unordered_map<std::wstring, void*> map;
    for (auto& key : keys) map[key] = &key;
    std::vector<std::wstring> probes = Keys();  // equal texts, other storage
    g_unorderedLookupNs = Timed(state, kKeys, [&] {
        for (auto& probe : probes) benchmark::DoNotOptimize(map.find(probe)->second);
    });
}

void BM_HashKV_TextLookup(benchmark::State& state) {
    std::vector<std::wstring> keys = Keys();
    CText2PtrHashmap map(kKeys);
    for (auto& key : keys) map.Set(key.data(), &key);
    std::vector<std::wstring> probes = Keys();
    double ns = Timed(state, kKeys, [&] {
        void* value;
        for (auto& probe : probes) {
            map.Get(probe.data(), &value);
            benchmark::DoNotOptimize(value);
        }
    });
    ReportRatio(state, ns, g_unorderedLookupNs);
}

}  // namespace

BENCHMARK(BM_Vector_PushBackBytes);
BENCHMARK(BM_MiniMem_AddByte);
BENCHMARK(BM_Vector_PushBackWords);
BENCHMARK(BM_MiniMem_AddDWord);
BENCHMARK(BM_UnorderedMap_TextLookup);
BENCHMARK(BM_HashKV_TextLookup);

BENCHMARK_MAIN();

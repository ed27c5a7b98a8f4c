// The text map against std::unordered_map<std::wstring>, each sized for its
// keys: n Sets into a fresh table, n Gets of equal texts held elsewhere.
#include <string>
#include <unordered_map>
#include <vector>

#include <zel/hashkv.h>

#include "pairs.h"

namespace {

// Identifier-like names, the kind the registry and scripts use.
std::vector<std::wstring> Names(int n) {
    std::vector<std::wstring> names;
    for (int i = 0; i < n; ++i)
        names.push_back(L"工具.类" + std::to_wstring(i % 97) + L".方法_" + std::to_wstring(i));
    return names;
}

std::vector<std::pair<double, bench::Times>> g_setGrowth, g_getGrowth;

void Measure(int n) {
    int rounds = n >= 100000 ? 11 : n >= 10000 ? 21 : 101;
    std::vector<std::wstring> keys = Names(n), probes = Names(n);
    std::string size = " " + std::to_string(n) + " keys";

    auto stdSet = [&] {
        std::unordered_map<std::wstring, void*> map;
        map.reserve(n);
        for (auto& key : keys) map.emplace(key, &key);
        benchmark::DoNotOptimize(map.size());
    };
    auto ourSet = [&] {
        CText2PtrHashmap map(n);
        for (auto& key : keys) map.Set(key.data(), &key);
        benchmark::DoNotOptimize(map.GetCount());
    };
    bench::Times set = bench::Compare(rounds, "CText2PtrHashmap Set," + size, 1.0, stdSet, ourSet);
    g_setGrowth.push_back({double(n), set});

    std::unordered_map<std::wstring, void*> stdMap;
    stdMap.reserve(n);
    CText2PtrHashmap ourMap(n);
    for (auto& key : keys) {
        stdMap.emplace(key, &key);
        ourMap.Set(key.data(), &key);
    }
    auto stdGet = [&] {
        for (auto& probe : probes) benchmark::DoNotOptimize(stdMap.find(probe)->second);
    };
    auto ourGet = [&] {
        void* value;
        for (auto& probe : probes) {
            ourMap.Get(probe.data(), &value);
            benchmark::DoNotOptimize(value);
        }
    };
    bench::Times get = bench::Compare(rounds, "CText2PtrHashmap Get," + size, 1.0, stdGet, ourGet);
    g_getGrowth.push_back({double(n), get});
}

void BM_TextMap(benchmark::State& state) {
    for (auto _ : state) Measure(int(state.range(0)));
}

void BM_TextMapGrowth(benchmark::State& state) {
    for (auto _ : state) {
        bench::Growth("CText2PtrHashmap Set, growth 1e3 → 1e5 keys", g_setGrowth);
        bench::Growth("CText2PtrHashmap Get, growth 1e3 → 1e5 keys", g_getGrowth);
    }
}

}  // namespace

BENCHMARK(BM_TextMap)->Arg(1000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TextMap)->Arg(10000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TextMap)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TextMapGrowth)->Iterations(1);

BENCH_MAIN("Text map")

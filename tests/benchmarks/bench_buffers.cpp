// The byte buffer and the wide string against std::vector and std::wstring:
// filling a buffer a byte and 16 bytes at a time, and appending short texts.
#include <string>
#include <vector>

#include <zel/minimem.h>
#include <zel/mstring.h>

#include "pairs.h"

namespace {

std::string SizeName(int bytes) {
    return bytes >= 1 << 20 ? std::to_string(bytes >> 20) + " MiB" : std::to_string(bytes >> 10) + " KiB";
}

int RoundsFor(int bytes) { return bytes >= 16 << 20 ? 9 : bytes >= 1 << 20 ? 21 : 201; }

void BM_AddByte(benchmark::State& state) {
    int bytes = int(state.range(0));
    auto vector = [&] {
        std::vector<unsigned char> v;
        for (int i = 0; i < bytes; ++i) v.push_back(static_cast<unsigned char>(i));
        benchmark::DoNotOptimize(v.data());
    };
    auto ours = [&] {
        CMiniMem m;
        for (int i = 0; i < bytes; ++i) m.AddByte(static_cast<unsigned char>(i));
        benchmark::DoNotOptimize(m.GetData());
    };
    for (auto _ : state)
        bench::Compare(RoundsFor(bytes), "CMiniMem AddByte, " + SizeName(bytes), 1.5, vector, ours,
                       "vs std::vector push_back");
}

void BM_Append16(benchmark::State& state) {
    int bytes = int(state.range(0));
    unsigned char piece[16] = "0123456789abcde";
    auto vector = [&] {
        std::vector<unsigned char> v;
        for (int i = 0; i < bytes; i += 16) v.insert(v.end(), piece, piece + 16);
        benchmark::DoNotOptimize(v.data());
    };
    auto ours = [&] {
        CMiniMem m;
        for (int i = 0; i < bytes; i += 16) m.Append(piece, 16);
        benchmark::DoNotOptimize(m.GetData());
    };
    for (auto _ : state)
        bench::Compare(RoundsFor(bytes), "CMiniMem Append of 16 bytes, " + SizeName(bytes), 2.0, vector, ours,
                       "vs std::vector insert");
}

void BM_StringAppend(benchmark::State& state) {
    const wchar_t* pieces[] = {L"ab", L"工具", L"hello", L"x", L"类名.方法"};
    const int count = 20000;
    auto wstring = [&] {
        std::wstring s;
        for (int i = 0; i < count; ++i) s += pieces[i % 5];
        benchmark::DoNotOptimize(s.data());
    };
    auto ours = [&] {
        CMString s;
        for (int i = 0; i < count; ++i) s += pieces[i % 5];
        benchmark::DoNotOptimize(s.GetLength());
    };
    for (auto _ : state)
        bench::Compare(101, "CMString += of short texts", 1.5, wstring, ours, "vs std::wstring +=");
}

}  // namespace

BENCHMARK(BM_AddByte)->Arg(4 << 10)->Arg(1 << 20)->Arg(16 << 20)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Append16)->Arg(4 << 10)->Arg(1 << 20)->Arg(16 << 20)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_StringAppend)->Iterations(1)->Unit(benchmark::kMillisecond);

BENCH_MAIN("Buffers and strings")

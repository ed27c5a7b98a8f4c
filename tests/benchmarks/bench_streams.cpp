// The memory stream against plain stores and loads in a buffer: writing and
// reading integers directly, and reading them through the 系统.输入流 slot of
// a 工具.内存流 object: by the slot function as the runtime calls it, and by
// zel::StreamReadInt, which finds the slot, as Unserialize hooks do.
#include <cstring>
#include <memory>
#include <vector>

#include "common/test_object.h"
#include "io/MemoryStream.h"
#include <zel/stream_calls.h>

#include "pairs.h"

extern "C" {
extern tagTBaseTypeInfo g_info_MemoryStream;
void MemoryStream_Init(ZelObject*);
void MemoryStream_Free(ZelObject*);
CMemoryStream* _MemoryStream_GetData(ZelObject*);
}

namespace {

const int kInts = 1 << 16;

// Keeps a value alive in a register. (DoNotOptimize lets GCC pass a loaded
// value as the memory it came from, and the load disappears; its memory
// clobber also makes the subjects reload what a real loop would keep.)
inline void Use(int v) { asm volatile("" : : "r"(v)); }

// The reference rows: what any per-value call costs on this machine, with
// no stream behind it. A function that only returns a field, called through
// a pointer the compiler cannot see through, and one that forwards to it
// through a second pointer (as a function that finds the slot must).
__attribute__((noinline)) int FieldOf(ZelObject* obj) { return static_cast<int>(reinterpret_cast<intptr_t>(obj->runtimeWord)); }
int (*volatile g_fieldOf)(ZelObject*) = FieldOf;
__attribute__((noinline)) int ForwardToFieldOf(ZelObject* obj) {
    int (*fn)(ZelObject*) = g_fieldOf;
    return fn ? fn(obj) : -1;
}
int (*volatile g_forward)(ZelObject*) = ForwardToFieldOf;

void BM_Streams(benchmark::State& state) {
    std::vector<unsigned char> plain(kInts * 4);
    for (int i = 0; i < kInts; ++i) std::memcpy(&plain[i * 4], &i, 4);

    // The baselines store and load each value through memory, one at a time.
    // The store loop allocates its buffer, as the stream does, but does not
    // clear it (the stream does not either).
    auto store = [&] {
        std::unique_ptr<unsigned char[]> out(new unsigned char[kInts * 4]);
        unsigned char* p = out.get();
        for (int i = 0; i < kInts; ++i, p += 4) {
            std::memcpy(p, &i, 4);
            benchmark::ClobberMemory();
        }
        benchmark::DoNotOptimize(out.get());
    };
    auto load = [&] {
        const unsigned char* p = plain.data();
        for (int i = 0; i < kInts; ++i, p += 4) {
            int v;
            std::memcpy(&v, p, 4);
            Use(v);
        }
    };
    auto pushBack = [&] {
        std::vector<int> v;
        for (int i = 0; i < kInts; ++i) v.push_back(i);
        benchmark::DoNotOptimize(v.data());
    };
    auto write = [&] {
        CMemoryStream s;
        for (int i = 0; i < kInts; ++i) s.WriteInt(i);
        benchmark::DoNotOptimize(s.GetData());
    };
    CMemoryStream filled;
    filled.InitData(plain.data(), int(plain.size()));
    auto read = [&] {
        filled.Init();
        filled.InitData(plain.data(), int(plain.size()));
        for (int i = 0; i < kInts; ++i) Use(filled.ReadInt());
    };
    TestObject object(&g_info_MemoryStream, MemoryStream_Init, MemoryStream_Free);
    CMemoryStream* inside = _MemoryStream_GetData(object);
    auto slotRead = [&] {
        inside->InitData(plain.data(), int(plain.size()));
        for (int i = 0; i < kInts; ++i) Use(zel::StreamReadInt(object));
    };
    // The slot function itself, found once, as the runtime calls it.
    // Function and object are held in registers through the loop, as a
    // caller holds them.
    auto slot = reinterpret_cast<int (*)(ZelObject*)>(zel::InterfaceSlot(object, L"系统.输入流", 1));
    auto callEach = [&](int (*fn)(ZelObject*)) {
        ZelObject* obj = object;
        for (int i = 0; i < kInts; ++i) Use(fn(obj));
    };
    auto slotCall = [&] {
        inside->InitData(plain.data(), int(plain.size()));
        callEach(slot);
    };
    auto emptyCall = [&] { callEach(g_fieldOf); };
    auto forwardedCall = [&] { callEach(g_forward); };
    for (auto _ : state) {
        bench::Compare(201, "CMemoryStream WriteInt", 1.3, store, write, "vs a store loop");
        bench::Compare(201, "CMemoryStream ReadInt", 2.5, load, read, "vs a load loop");
        bench::Compare(201, "ReadInt by the 系统.输入流 slot function", 5.0, load, slotCall, "vs a load loop");
        bench::Compare(201, "zel::StreamReadInt on a 工具.内存流", 5.0, load, slotRead, "vs a load loop");
        bench::Compare(201, "reference: std::vector<int> push_back", 0, store, pushBack, "vs a store loop");
        bench::Compare(201, "reference: a call through a pointer that returns a field", 0, load, emptyCall,
                       "vs a load loop");
        bench::Compare(201, "reference: a call that forwards through a second pointer", 0, load, forwardedCall,
                       "vs a load loop");
    }
}

}  // namespace

BENCHMARK(BM_Streams)->Iterations(1)->Unit(benchmark::kMillisecond);

BENCH_MAIN("Memory stream")

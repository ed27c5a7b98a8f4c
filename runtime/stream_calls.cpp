#include <zel/stream_calls.h>

#include <atomic>

#include <zel/textfuncs.h>

namespace zel {

void* InterfaceSlot(ZelObject* obj, const wchar_t* interfaceName, int slot) {
    if (!obj || !obj->classChain || slot < 1) return nullptr;
    for (int level = obj->classChain[0] - 1; level >= 0; --level) {
        tagTBaseTypeInfo* cls = ZelChainClass(obj, level);
        if (!cls || cls->kind != ZEL_KIND_CLASS) continue;
        for (int i = 0; i < cls->interfaceCount; ++i) {
            tagInterfaceEntry& entry = cls->interfaces[i];
            if (mystrcmp(entry.name, interfaceName) == 0 && slot <= entry.slotCount && entry.slots)
                return entry.slots[slot - 1];
        }
    }
    return nullptr;
}

namespace {
const wchar_t kOutput[] = L"系统.输出流";
const wchar_t kInput[] = L"系统.输入流";

// Hooks read and write many values through one stream: each interface slot
// keeps the function found last, keyed by the stream's class chain and own
// class record. The three words change together under a sequence count (odd
// while a writer is at work), so a reader on another thread never pairs one
// class with another's function; a reader that sees a change searches.
struct SlotMemo {
    std::atomic<unsigned> sequence;
    std::atomic<const int*> chain;
    std::atomic<const void*> ownClass;
    std::atomic<void*> function;
};

template <bool Input, int Slot>
SlotMemo g_memo;

// The search, and the memo's update; kept out of the way of the hit.
template <bool Input, int Slot>
__attribute__((noinline)) void* SearchSlot(ZelObject* stream, unsigned seen) {
    SlotMemo& memo = g_memo<Input, Slot>;
    void* function = InterfaceSlot(stream, Input ? kInput : kOutput, Slot);
    const int* chain = stream ? stream->classChain : nullptr;
    if (!chain || chain[0] < 1) return function;
    // Only one writer at a time; a busy memo is simply not updated.
    if (!(seen & 1) && memo.sequence.compare_exchange_strong(seen, seen + 1, std::memory_order_acquire)) {
        memo.chain.store(chain, std::memory_order_relaxed);
        memo.ownClass.store(ZelOwnClass(stream), std::memory_order_relaxed);
        memo.function.store(function, std::memory_order_relaxed);
        memo.sequence.store(seen + 2, std::memory_order_release);
    }
    return function;
}

template <bool Input, int Slot>
void* CachedSlot(ZelObject* stream) {
    SlotMemo& memo = g_memo<Input, Slot>;
    unsigned seen = memo.sequence.load(std::memory_order_acquire);
    const int* chain = stream ? stream->classChain : nullptr;
    if (chain && chain[0] >= 1 && memo.chain.load(std::memory_order_relaxed) == chain &&
        memo.ownClass.load(std::memory_order_relaxed) == ZelOwnClass(stream)) {
        void* function = memo.function.load(std::memory_order_relaxed);
        std::atomic_thread_fence(std::memory_order_acquire);
        // An odd count never matches: a writer was at work.
        if (function && !(seen & 1) && memo.sequence.load(std::memory_order_relaxed) == seen) return function;
    }
    return SearchSlot<Input, Slot>(stream, seen);
}

template <bool Input, int Slot, typename Result, typename... Args>
Result CallSlot(ZelObject* stream, Result fallback, Args... args) {
    auto fn = reinterpret_cast<Result (*)(ZelObject*, Args...)>(CachedSlot<Input, Slot>(stream));
    return fn ? fn(stream, args...) : fallback;
}
}  // namespace

bool StreamWriteInt(ZelObject* s, int v) { return CallSlot<false, 1, int>(s, 0, v) != 0; }
bool StreamWriteDouble(ZelObject* s, double v) { return CallSlot<false, 2, int>(s, 0, v) != 0; }
bool StreamWriteBool(ZelObject* s, int v) { return CallSlot<false, 3, int>(s, 0, v) != 0; }
bool StreamWriteText(ZelObject* s, unsigned char* text) { return CallSlot<false, 4, int>(s, 0, text) != 0; }
bool StreamWriteBin(ZelObject* s, unsigned char* bin) { return CallSlot<false, 5, int>(s, 0, bin) != 0; }
int StreamReadInt(ZelObject* s) { return CallSlot<true, 1, int>(s, -1); }
double StreamReadDouble(ZelObject* s) { return CallSlot<true, 2, double>(s, -1.0); }
int StreamReadBool(ZelObject* s) { return CallSlot<true, 3, int>(s, 0); }
unsigned char* StreamReadText(ZelObject* s) { return CallSlot<true, 4, unsigned char*>(s, nullptr); }
unsigned char* StreamReadBin(ZelObject* s) { return CallSlot<true, 5, unsigned char*>(s, nullptr); }

}  // namespace zel

#include <zel/stream_calls.h>

#include <zel/textfuncs.h>

namespace zel {

void* InterfaceSlot(ZelObject* obj, const wchar_t* interfaceName, int slot) {
    if (!obj || !obj->classChain || slot < 1) return nullptr;
    int* chain = obj->classChain;
    for (int level = chain[0] - 1; level >= 0; --level) {
        auto* cls = reinterpret_cast<tagTBaseTypeInfo*>(chain[1 + 2 * level]);
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

// Hooks read and write many values through one stream: the slot found last
// for each interface and slot number is kept per thread, keyed by the
// stream's class chain and own class record.
struct SlotMemo {
    const int* chain = nullptr;
    const void* ownClass = nullptr;
    void* function = nullptr;
};
thread_local SlotMemo t_memo[2][6];

void* CachedSlot(ZelObject* stream, const wchar_t* interfaceName, int slot) {
    if (!stream || !stream->classChain || stream->classChain[0] < 1 || slot < 1 || slot > 5)
        return InterfaceSlot(stream, interfaceName, slot);
    const int* chain = stream->classChain;
    const void* ownClass = reinterpret_cast<const void*>(chain[1 + 2 * (chain[0] - 1)]);
    SlotMemo& memo = t_memo[interfaceName == kInput][slot];
    if (memo.chain != chain || memo.ownClass != ownClass || !memo.function) {
        memo.function = InterfaceSlot(stream, interfaceName, slot);
        memo.chain = chain;
        memo.ownClass = ownClass;
    }
    return memo.function;
}

template <typename Result, typename... Args>
Result CallSlot(ZelObject* stream, const wchar_t* interfaceName, int slot, Result fallback, Args... args) {
    auto fn = reinterpret_cast<Result (*)(ZelObject*, Args...)>(CachedSlot(stream, interfaceName, slot));
    return fn ? fn(stream, args...) : fallback;
}
}  // namespace

bool StreamWriteInt(ZelObject* s, int v) { return CallSlot<int>(s, kOutput, 1, 0, v) != 0; }
bool StreamWriteDouble(ZelObject* s, double v) { return CallSlot<int>(s, kOutput, 2, 0, v) != 0; }
bool StreamWriteBool(ZelObject* s, int v) { return CallSlot<int>(s, kOutput, 3, 0, v) != 0; }
bool StreamWriteText(ZelObject* s, unsigned char* text) { return CallSlot<int>(s, kOutput, 4, 0, text) != 0; }
bool StreamWriteBin(ZelObject* s, unsigned char* bin) { return CallSlot<int>(s, kOutput, 5, 0, bin) != 0; }
int StreamReadInt(ZelObject* s) { return CallSlot<int>(s, kInput, 1, -1); }
double StreamReadDouble(ZelObject* s) { return CallSlot<double>(s, kInput, 2, -1.0); }
int StreamReadBool(ZelObject* s) { return CallSlot<int>(s, kInput, 3, 0); }
unsigned char* StreamReadText(ZelObject* s) { return CallSlot<unsigned char*>(s, kInput, 4, nullptr); }
unsigned char* StreamReadBin(ZelObject* s) { return CallSlot<unsigned char*>(s, kInput, 5, nullptr); }

}  // namespace zel

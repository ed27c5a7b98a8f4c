#include <zel/memory.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <cwchar>

#include <zel/errors.h>
#include <zel/services.h>
#include <zel/values.h>
#include <zel/minimem.h>

// ---- allocation ------------------------------------------------------------

namespace {
int g_failCountdown = 0;
void (*g_watch)(const void*) = nullptr;

void ReportNoMemory() {
    MReportError(const_cast<wchar_t*>(L""), ZEL_ERR_NO_MEMORY, const_cast<wchar_t*>(L"分配内存失败"));
}
}  // namespace

void zel::FailAllocationAfter(int n) { g_failCountdown = n > 0 ? n : 0; }
int zel::AllocationCountdown() { return g_failCountdown; }
void zel::WatchAllocations(void (*watch)(const void*)) { g_watch = watch; }

bool zel::AllocationFails(const void* site) {
    if (g_watch) g_watch(site);
    if (g_failCountdown <= 0) return false;
    return --g_failCountdown == 0;
}

// ---- constant or ordinary, in O(1) -------------------------------------------

namespace {
// Every 4 KiB page that holds part of a constant block we have seen is
// marked; an address on an unmarked page is an ordinary block as long as the
// chains have not changed since they were walked. The runtime links new
// blocks at the ends of the two chains, so whether they changed shows in our
// own two links and in the outer links of the two end blocks (libraries stay
// loaded while the runtime runs, so those blocks stay readable). Marks are
// never cleared: a stale mark only sends an address the slow way.
const unsigned kPageBits = 12;
const unsigned kPages = 1u << 20;  // the whole 32-bit address space
std::atomic<uint32_t> g_pageMarks[kPages / 32];

// What the last walk saw, published under a sequence count so that readers
// take no lock: an odd or changed count means "walk again".
std::atomic<unsigned> g_walkSequence{0};
std::atomic<void*> g_walkRuntime{nullptr};
std::atomic<void*> g_walkLinks[2];  // our own next and next2 links
std::atomic<void*> g_walkEnds[2];   // the last block along each link

void*& LinkOf(void* block, int which) { return static_cast<void**>(block)[1 + which]; }
void* LoadLink(void* block, int which) { return __atomic_load_n(&LinkOf(block, which), __ATOMIC_ACQUIRE); }

uint32_t PageOf(const void* p) { return uint32_t(reinterpret_cast<uintptr_t>(p) >> kPageBits) & (kPages - 1); }
bool PageMarked(const void* p) {
    uint32_t page = PageOf(p);
    return g_pageMarks[page / 32].load(std::memory_order_acquire) >> (page % 32) & 1;
}

void MarkBlock(void* block) {
    int size = *static_cast<int*>(block);
    auto* last = static_cast<unsigned char*>(block) + std::max(size, 12) - 1;
    for (uint32_t page = PageOf(block);; page = (page + 1) & (kPages - 1)) {
        g_pageMarks[page / 32].fetch_or(1u << (page % 32), std::memory_order_release);
        if (page == PageOf(last)) break;
    }
}

// Under the runtime's lock: marks every block of both chains and records
// where they end.
void WalkChains() {
    zel::RuntimeLock();
    g_walkSequence.fetch_add(1, std::memory_order_acq_rel);
    MarkBlock(&g_EmptyConst);
    for (int which = 0; which < 2; ++which) {
        void* end = &g_EmptyConst;
        for (void* next; (next = LoadLink(end, which)); end = next) MarkBlock(next);
        g_walkLinks[which].store(LoadLink(&g_EmptyConst, which), std::memory_order_relaxed);
        g_walkEnds[which].store(end, std::memory_order_relaxed);
    }
    g_walkRuntime.store(g_pRuntimeClassInfo, std::memory_order_relaxed);
    g_walkSequence.fetch_add(1, std::memory_order_acq_rel);
    zel::RuntimeUnlock();
}

bool ChainsAsWalked() {
    unsigned before = g_walkSequence.load(std::memory_order_acquire);
    if (before == 0 || before % 2) return false;
    bool same = g_walkRuntime.load(std::memory_order_relaxed) == g_pRuntimeClassInfo;
    for (int which = 0; same && which < 2; ++which) {
        same = g_walkLinks[which].load(std::memory_order_relaxed) == LoadLink(&g_EmptyConst, which) &&
               !LoadLink(g_walkEnds[which].load(std::memory_order_relaxed), which);
    }
    return same && g_walkSequence.load(std::memory_order_acquire) == before;
}

// True when p is surely no constant; false sends the caller the slow way.
bool Ordinary(void* p) {
    if (!g_pRuntimeClassInfo) return !IsConstData(p);  // only our own block counts: no walk
    if (!ChainsAsWalked()) WalkChains();
    return !PageMarked(p);
}
}  // namespace

// A negative size is refused like a failed allocation, without a report.
void* zel_malloc(int size) {
    if (size <= 0) return nullptr;
    if (zel::AllocationFails(__builtin_return_address(0))) return nullptr;
    void* p = std::malloc(size_t(size));
    if (!p) ReportNoMemory();
    return p;
}

void* zel_realloc(void* p, int size) {
    if (size == 0) {
        zel_free(p);
        return nullptr;
    }
    if (!p) return zel_malloc(size);
    if (size < 0 || zel::AllocationFails(__builtin_return_address(0))) return nullptr;
    if (Ordinary(p)) {
        void* result = std::realloc(p, size_t(size));
        if (!result) ReportNoMemory();
        return result;
    }
    zel::RuntimeLock();
    void* result;
    if (void* block = zel::ConstBlockOf(p)) {
        // A constant is never resized: the caller gets a fresh copy of what lies
        // between p and the end of its block.
        int available = int(static_cast<unsigned char*>(block) + *static_cast<int*>(block) - static_cast<unsigned char*>(p));
        result = std::malloc(size_t(size));
        if (result)
            std::memcpy(result, p, size_t(std::min(size, available)));
        else
            ReportNoMemory();
    } else {
        result = std::realloc(p, size_t(size));
        if (!result) ReportNoMemory();
    }
    zel::RuntimeUnlock();
    return result;
}

void zel_free(void* p) {
    if (!p || (!Ordinary(p) && IsConstData(p))) return;
    std::free(p);
}

// ---- ZelMallocer -----------------------------------------------------------

ZelMallocer::ZelMallocer() : m_data(nullptr), m_size(0) {}
ZelMallocer::ZelMallocer(int size) : m_data(zel_malloc(size)), m_size(m_data ? size : 0) {}
ZelMallocer::~ZelMallocer() { zel_free(m_data); }

void ZelMallocer::Atach(void* p, int size) {
    zel_free(m_data);
    m_data = p;
    m_size = size;
}

void* ZelMallocer::Detach() {
    void* p = m_data;
    m_data = nullptr;
    m_size = 0;
    return p;
}

void* ZelMallocer::GetData() { return m_data; }
ZelMallocer::operator void*() { return m_data; }
int ZelMallocer::GetSize() { return m_size; }

// ---- wrappers of runtime handles -------------------------------------------

ZelDataWrapper::ZelDataWrapper() : m_handle(nullptr) {}
ZelDataWrapper::ZelDataWrapper(void* handle) : m_handle(handle) {}
ZelDataWrapper::~ZelDataWrapper() {
    if (m_handle) zel::Release(m_handle);
}

void* ZelDataWrapper::GetData() { return m_handle; }

void* ZelDataWrapper::Detach() {
    void* h = m_handle;
    m_handle = nullptr;
    return h;
}

void ZelDataWrapper::Atach(void* handle) {
    if (m_handle) zel::Release(m_handle);
    m_handle = handle;
}

void ZelDataWrapper::AddRef() {
    if (m_handle) m_handle = zel::AddRef(m_handle);
}

ZelTextWrapper::ZelTextWrapper(unsigned char* text) : ZelDataWrapper(text) {}
ZelTextWrapper::ZelTextWrapper(wchar_t* s) : ZelDataWrapper(zel::NewText(s)) {}
wchar_t* ZelTextWrapper::GetText() { return zel::TextChars(static_cast<unsigned char*>(m_handle)); }
ZelTextWrapper::operator wchar_t*() { return GetText(); }

ZelBinWrapper::ZelBinWrapper(void* data, int len) : ZelDataWrapper(zel::NewBin(data, len)) {}

// The block is len + 8 bytes, as callers expect; it never gets smaller than
// the three header words that are written into it.
ZelBinWrapper::ZelBinWrapper(int len) {
    ZelMallocer block(std::max(len + 8, 12));
    if (!block.GetData()) return;
    int* words = static_cast<int*>(block.GetData());
    words[1] = 1;
    words[2] = len;
    m_handle = zel::TakeOverBlock(block.Detach());
}

unsigned char* ZelBinWrapper::GetCData(int* len) { return GetBinData(static_cast<unsigned char*>(m_handle), len); }
int ZelBinWrapper::GetCDataLength() { return MGetZelBinLength(static_cast<unsigned char*>(m_handle)); }

ZelObjectWrapper::ZelObjectWrapper(wchar_t* className) : ZelDataWrapper(zel::NewObject(className)) {}
ZelObjectWrapper::operator ZelObject*() { return static_cast<ZelObject*>(m_handle); }

// ---- clones ----------------------------------------------------------------

wchar_t* MCloneText(wchar_t* s, int n) {
    if (!s || n < 1) return zel::EmptyString();
    auto* copy = static_cast<wchar_t*>(zel_malloc(n * 4 + 4));
    if (!copy) return zel::EmptyString();
    std::memcpy(copy, s, size_t(n) * 4);
    copy[n] = 0;
    return copy;
}

wchar_t* MCloneText(wchar_t* s) { return s ? MCloneText(s, int(std::wcslen(s))) : zel::EmptyString(); }

// Converts in the current locale; unconvertible text gives the empty string.
static int WideLength(const char* s) {
    if (!s || !*s) return 0;
    size_t n = std::mbstowcs(nullptr, s, 0);
    return n == size_t(-1) ? 0 : int(n);
}

wchar_t* MCloneText(char* s) {
    int n = WideLength(s);
    if (n == 0) return zel::EmptyString();
    auto* copy = static_cast<wchar_t*>(zel_malloc(n * 4 + 4));
    if (!copy) return zel::EmptyString();
    std::mbstowcs(copy, s, size_t(n) + 1);
    copy[n] = 0;
    return copy;
}

unsigned char* MCloneZelText(wchar_t* s, int n) {
    if (!s || n < 1) return zel::EmptyText();
    auto* text = static_cast<unsigned char*>(zel_malloc(n * 4 + 12));
    if (!text) return zel::EmptyText();
    int* words = reinterpret_cast<int*>(text);
    words[0] = 0;
    words[1] = n;
    std::memcpy(text + 8, s, size_t(n) * 4);
    words[2 + n] = 0;
    return text;
}

unsigned char* MCloneZelText(wchar_t* s) { return s ? MCloneZelText(s, int(std::wcslen(s))) : zel::EmptyText(); }

unsigned char* MCloneZelText(unsigned char* text) {
    if (!text) return zel::EmptyText();
    return MCloneZelText(zel::TextChars(text), reinterpret_cast<int*>(text)[1]);
}

unsigned char* MCloneZelText(char* s) {
    wchar_t* wide = MCloneText(s);
    unsigned char* text = MCloneZelText(wide);
    zel_free(wide);
    return text;
}

wchar_t* MCloneZelTextToString(unsigned char* text) {
    if (!text) return zel::EmptyString();
    return MCloneText(zel::TextChars(text), reinterpret_cast<int*>(text)[1]);
}

unsigned char* MCloneZelBin(void* data, int len) {
    if (len < 1) return zel::EmptyBin();
    auto* bin = static_cast<unsigned char*>(zel_malloc(len + 12));
    if (!bin) return zel::EmptyBin();
    int* words = reinterpret_cast<int*>(bin);
    words[0] = 0;
    words[1] = 1;
    words[2] = len;
    if (data)
        std::memcpy(bin + 12, data, size_t(len));
    else
        std::memset(bin + 12, 0, size_t(len));
    return bin;
}

unsigned char* MCloneZelBin(unsigned char* bin) {
    if (!bin) return zel::EmptyBin();
    return MCloneZelBin(bin + 12, MGetZelBinLength(bin));
}

int* MCloneArray(int* ary, DATATYPE_TYPE type) {
    if (!ary) return reinterpret_cast<int*>(zel::EmptyBin());
    void* data;
    int count = MGetAryElementCount(ary, &data);
    int headerBytes = int(static_cast<unsigned char*>(data) - reinterpret_cast<unsigned char*>(ary));
    int elementSize = MGetAryElementDataTypeSize(type);
    auto* copy = static_cast<int*>(zel_malloc(headerBytes + count * elementSize));
    if (!copy) return reinterpret_cast<int*>(zel::EmptyBin());
    std::memcpy(copy, ary, size_t(headerBytes));
    copy[0] = 0;
    if (count == 0) return copy;
    unsigned char* target = reinterpret_cast<unsigned char*>(copy) + headerBytes;
    switch (type) {
        case DATATYPE_INT_ARRAY:
        case DATATYPE_DOUBLE_ARRAY:
        case DATATYPE_BOOL_ARRAY:
            std::memcpy(target, data, size_t(count) * elementSize);
            break;
        case DATATYPE_TEXT_ARRAY:
        case DATATYPE_BIN_ARRAY: {
            auto** from = static_cast<unsigned char**>(data);
            auto** to = reinterpret_cast<unsigned char**>(target);
            for (int i = 0; i < count; ++i) {
                unsigned char* element =
                    type == DATATYPE_TEXT_ARRAY ? MCloneZelText(from[i]) : MCloneZelBin(from[i]);
                to[i] = static_cast<unsigned char*>(IsConstData(element) ? element : zel::TakeOverBlock(element));
            }
            break;
        }
        default:
            // Object arrays (and anything else) are not copied: the elements stay null.
            std::memset(target, 0, size_t(count) * elementSize);
            break;
    }
    return copy;
}

char* GetMBSText(wchar_t* s, CMiniMem& buf) {
    int n = s ? int(std::wcslen(s)) : 0;
    if (n == 0) return reinterpret_cast<char*>(zel::EmptyString());
    int bytes = 4 * n + 4;
    auto* out = reinterpret_cast<char*>(buf.Alloc(bytes));
    if (!out) return reinterpret_cast<char*>(zel::EmptyString());
    std::memset(out, 0, size_t(bytes));
    if (std::wcstombs(out, s, size_t(bytes) - 1) == size_t(-1)) out[0] = 0;
    return out;
}

// ---- assignment into variables ---------------------------------------------

template <typename Handle>
static void StoreShared(Handle* var, Handle value) {
    if (*var) zel::Release(*var);
    *var = value ? static_cast<Handle>(zel::AddRef(value)) : value;
}

void SetCloneIntoTextVar(unsigned char** var, unsigned char* v) { StoreShared(var, v ? v : zel::EmptyText()); }
void SetCloneIntoBinVar(unsigned char** var, unsigned char* v) { StoreShared(var, v ? v : zel::EmptyBin()); }
void SetCloneIntoArrayVar(int** var, int* v) {
    StoreShared(var, v ? v : reinterpret_cast<int*>(zel::EmptyBin()));
}
void SetCloneIntoObjectVar(ZelObject** var, ZelObject* v) { StoreShared(var, v); }

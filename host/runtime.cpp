// The runtime object, the two runtime classes and their services, and the
// handle table with its reference counts and audit.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <map>
#include <mutex>
#include <unordered_map>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
extern "C" int __sanitizer_get_ownership(const volatile void* p);
extern "C" size_t __sanitizer_get_allocated_size(const volatile void* p);
#define ZELHOST_ASAN 1
#endif

#include "host/host_internal.h"

namespace zelhost {
namespace {

wchar_t* W(const wchar_t* s) { return const_cast<wchar_t*>(s); }

// ------------------------------------------------------------ handle table
enum HKind { H_TEXT, H_BIN, H_ARRAY, H_OBJECT, H_BLOCK };

struct HandleRec {
    HKind kind = H_TEXT;
    int refs = 0;
    bool dead = false;
    bool everHeld = false;   // has had a reference
    bool byLibrary = false;  // made through a service
    long statement = 0;      // statement that made it (0: none)
    long serial = 0;         // creation order
    std::string where;
    std::string preview;  // content shown in findings, kept when the handle dies
    ClassInfo* cls = nullptr;
    int id = 0;
    size_t size = 0;                  // bytes of the handle block (for poisoning)
    std::vector<void*> blocks;        // object: its level data blocks
    void* chain = nullptr;            // object: word 1
    void* block0 = nullptr;           // object: word 2
};

std::recursive_mutex g_tableLock;  // guards the tables below
std::unordered_map<void*, HandleRec> g_handles;
long g_serial = 0;
int g_objectIds = 0;
long g_statement = 0;         // current statement (0: none)
long g_statementCounter = 0;
std::string g_where;          // "file:line" of the current statement
std::vector<void*> g_statementRefs;
std::vector<Finding> g_findings;
std::vector<std::string> g_reports;
int g_reportCount = 0;
std::ostream* g_reportStream = nullptr;
bool g_tearingDown = false;
int g_serviceDepth = 0;  // > 0 while a service runs on behalf of a library

struct ConstBlock {
    char* begin;
    size_t size;
};
std::vector<ConstBlock> g_constBlocks;

std::recursive_mutex g_runtimeLock;  // services 0 and 1

void Poison(void* p, size_t n) {
#ifdef ZELHOST_ASAN
    if (p && n) ASAN_POISON_MEMORY_REGION(p, n);
#else
    (void)p, (void)n;
#endif
}
void Unpoison(void* p, size_t n) {
#ifdef ZELHOST_ASAN
    if (p && n) ASAN_UNPOISON_MEMORY_REGION(p, n);
#else
    (void)p, (void)n;
#endif
}
size_t BlockSize(void* p) {
#ifdef ZELHOST_ASAN
    if (__sanitizer_get_ownership(p)) return __sanitizer_get_allocated_size(p);
#endif
    (void)p;
    return 0;
}

const char* KindName(HKind k) {
    switch (k) {
        case H_TEXT: return "文本";
        case H_BIN: return "字节集";
        case H_ARRAY: return "数组";
        case H_OBJECT: return "对象";
        case H_BLOCK: return "交出的内存块";
    }
    return "?";
}

std::string Where() {
    if (!g_where.empty()) return g_where;
    return "library load";
}

HandleRec& Track(void* p, HKind kind, size_t size) {
    HandleRec rec;
    rec.kind = kind;
    rec.byLibrary = g_serviceDepth > 0;
    rec.statement = g_statement;
    rec.serial = ++g_serial;
    rec.where = Where();
    rec.size = size;
    auto& slot = g_handles[p];
    slot = rec;
    return slot;
}

std::string Preview(void* p, const HandleRec& r) {
    if (r.dead) return r.preview;
    std::string s;
    if (r.kind == H_TEXT) s = FormatValue(Value::Handle(VK::Text, p));
    else if (r.kind == H_BIN) s = FormatValue(Value::Handle(VK::Bin, p));
    else return "";
    if (s.size() > 60) {
        size_t cut = 57;
        while (cut > 0 && (static_cast<unsigned char>(s[cut]) & 0xC0) == 0x80) --cut;
        s = s.substr(0, cut) + "...";
    }
    return " " + s;
}

std::string Describe(void* p, const HandleRec& r) {
    std::string s;
    if (r.kind == H_OBJECT && r.cls)
        s = ToUtf8(r.cls->name) + "#" + std::to_string(r.id);
    else
        s = KindName(r.kind);
    s += Preview(p, r);
    s += r.byLibrary ? " made by library at " : " made at ";
    s += r.where;
    return s;
}

// Resolves a handle or a 12-byte copy of an object's first words.
HandleRec* Resolve(void*& p) {
    auto it = g_handles.find(p);
    if (it != g_handles.end()) return &it->second;
    void* w[3];
    PeekWords(p, w);
    auto ob = g_handles.find(w[0]);
    if (ob != g_handles.end() && ob->second.kind == H_OBJECT && ob->second.chain == w[1] &&
        ob->second.block0 == w[2]) {
        p = w[0];
        return &ob->second;
    }
    return nullptr;
}

// The live record of a handle to add a reference to or release (`action`);
// a copy of an object's first words resolves p to the object. An unknown or
// freed handle is reported (as `unknownKind` or an over-release) and gives null.
HandleRec* LiveRecord(void*& p, const char* action, const char* unknownKind) {
    void* handle = p;
    HandleRec* r = Resolve(p);
    if (r && !r->dead) return r;
    if (g_tearingDown) return nullptr;
    if (r) {
        AddFinding("over-release", std::string("over-release: ") + action + " of a freed " + Describe(p, *r) + " (at " +
                                       Where() + ")");
        return nullptr;
    }
    char buf[32];
    std::snprintf(buf, sizeof buf, "%p", handle);
    AddFinding(unknownKind, std::string("unknown handle: ") + action + " of a handle the host never made (" + buf +
                                ") at " + Where());
    return nullptr;
}

void AddReport(const std::string& text) {
    {
        std::lock_guard<std::recursive_mutex> g(g_tableLock);
        g_reports.push_back(text);
        ++g_reportCount;
    }
    (g_reportStream ? *g_reportStream : std::cerr) << text << std::endl;
}

// Runs the Init or Free hook of one level of an object; "" when it succeeded
// or the level has none, else how it failed.
std::string RunHook(const Level& lv, HookKind hook, ZelObject* obj) {
    if (!lv.cls || lv.cls->kind == ZEL_KIND_INTERFACE || !lv.cls->hooks[hook]) return "";
    CallResult r = CallFunction(lv.cls->hooks[hook], {L"系统.对象"}, {Value::Handle(VK::Object, obj)}, L"_i", false);
    if (r.ok) return "";
    return (r.raised ? "raised an exception: " : "failed: ") + r.error;
}

void FreeObjectState(ZelObject* obj, HandleRec& rec) {
    ClassInfo* cls = rec.cls;
    std::vector<void*> blocks = rec.blocks;
    // Free hooks, derived first.
    for (size_t i = cls ? cls->levels.size() : 0; i-- > 0;) {
        std::string failure = RunHook(cls->levels[i], HOOK_FREE, obj);
        if (!failure.empty() && !g_tearingDown) AddReport(ToUtf8(cls->levels[i].cls->name) + " Free hook " + failure);
    }
    for (void* b : blocks) std::free(b);
}

void Kill(void* p) {
    auto it = g_handles.find(p);
    if (it == g_handles.end() || it->second.dead) return;
    HandleRec& rec = it->second;
    rec.preview = Preview(p, rec);
    rec.dead = true;
    if (rec.kind == H_OBJECT) {
        FreeObjectState(static_cast<ZelObject*>(p), g_handles[p]);
    }
    HandleRec& again = g_handles[p];
    Poison(p, again.size);
}

}  // namespace

// ------------------------------------------------------------ public handles
void PeekWords(const void* p, void* out[3]) __attribute__((no_sanitize("address")));
void PeekWords(const void* p, void* out[3]) {
    void* const* w = static_cast<void* const*>(const_cast<void*>(p));
    out[0] = w[0];
    out[1] = w[1];
    out[2] = w[2];
}

bool IsConstant(const void* p) {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    const char* c = static_cast<const char*>(p);
    for (auto& b : g_constBlocks)
        if (c >= b.begin && c < b.begin + b.size) return true;
    return false;
}

void BeginStatement(const std::string& where) {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    g_where = where;
    g_statement = ++g_statementCounter;
}

void StatementHold(void* h) {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    if (!h || IsConstant(h)) return;
    void* p = h;
    HandleRec* r = Resolve(p);
    if (!r || r->dead) return;
    ++r->refs;
    r->everHeld = true;
    g_statementRefs.push_back(p);
}

void EndStatement() {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    std::vector<void*> refs;
    refs.swap(g_statementRefs);
    for (void* p : refs) Release(p);
    // Fresh handles of this statement that nothing took: the statement owned them.
    if (g_statement) {
        std::vector<std::pair<long, void*>> fresh;
        for (auto& [p, r] : g_handles)
            if (!r.dead && r.statement == g_statement && r.refs == 0) fresh.push_back({r.serial, p});
        std::sort(fresh.begin(), fresh.end());
        for (auto& f : fresh) {
            auto it = g_handles.find(f.second);
            if (it != g_handles.end() && !it->second.dead && it->second.refs == 0) Kill(f.second);
        }
    }
    g_statement = 0;
    g_where.clear();
}

std::string CurrentWhere() { return Where(); }

unsigned char* NewText(const wchar_t* s) {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    size_t n = s ? wcslen(s) : 0;
    size_t size = n * 4 + 12;
    auto* block = static_cast<unsigned char*>(std::calloc(1, size));
    int32_t* w = reinterpret_cast<int32_t*>(block);
    w[0] = 0;
    w[1] = int32_t(n);
    if (n) std::memcpy(block + 8, s, n * 4);
    Track(block, H_TEXT, size);
    return block;
}

unsigned char* NewBin(const void* data, int length) {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    size_t n = length > 0 ? size_t(length) : 0;
    size_t size = n + 12;
    auto* block = static_cast<unsigned char*>(std::calloc(1, size));
    int32_t* w = reinterpret_cast<int32_t*>(block);
    w[0] = 0;
    w[1] = 1;
    w[2] = int32_t(n);
    if (n && data) std::memcpy(block + 12, data, n);
    Track(block, H_BIN, size);
    return block;
}

ZelObject* NewObject(ClassInfo* cls, std::string* error) {
    std::unique_lock<std::recursive_mutex> g(g_tableLock);
    if (!cls || cls->kind == ZEL_KIND_INTERFACE) {
        if (error) *error = "cannot create an object of an interface";
        return nullptr;
    }
    size_t n = cls->levels.size();
    size_t size = (2 + n) * sizeof(void*);
    void** words = static_cast<void**>(std::calloc(1, size));
    words[0] = words;
    words[1] = cls->chain.data();
    std::vector<void*> blocks;
    for (size_t i = 0; i < n; ++i) {
        int nw = std::max(cls->levels[i].words, 1);
        void* b = std::calloc(size_t(nw), 4);
        words[2 + i] = b;
        blocks.push_back(b);
    }
    HandleRec& rec = Track(words, H_OBJECT, size);
    rec.cls = cls;
    rec.id = ++g_objectIds;
    rec.blocks = blocks;
    rec.chain = words[1];
    rec.block0 = words[2];
    ZelObject* obj = reinterpret_cast<ZelObject*>(words);
    // Init hooks, base first.
    for (size_t i = 0; i < n; ++i) {
        std::string failure = RunHook(cls->levels[i], HOOK_INIT, obj);
        if (failure.empty()) continue;
        if (error) *error = ToUtf8(cls->levels[i].cls->name) + "_Init " + failure;
        return obj;  // still tracked; the statement frees it
    }
    return obj;
}

void* AddRef(void* handle) {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    if (!handle || IsConstant(handle)) return handle;
    void* p = handle;
    if (HandleRec* r = LiveRecord(p, "add-reference", "unknown-addref")) {
        ++r->refs;
        r->everHeld = true;
    }
    return p;
}

void Release(void* handle) {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    if (!handle || IsConstant(handle)) return;
    void* p = handle;
    HandleRec* r = LiveRecord(p, "release", "unknown-release");
    // A fresh value that nobody took goes at once: its maker disposes of it.
    if (r && (r->refs == 0 || --r->refs == 0)) Kill(p);
}

int RefCount(void* handle) {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    if (!handle) return -1;
    void* p = handle;
    HandleRec* r = Resolve(p);
    if (!r) return -1;
    return r->dead ? -2 : r->refs;
}

bool IsLive(void* handle) {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    auto it = g_handles.find(handle);
    return it != g_handles.end() && !it->second.dead;
}

ClassInfo* ObjectClass(ZelObject* obj) {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    auto it = g_handles.find(obj);
    if (it == g_handles.end() || it->second.kind != H_OBJECT) return nullptr;
    return it->second.cls;
}

int ObjectId(ZelObject* obj) {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    auto it = g_handles.find(obj);
    if (it == g_handles.end()) return 0;
    return it->second.id;
}

std::string DescribeHandle(void* handle) {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    void* p = handle;
    HandleRec* r = Resolve(p);
    if (!r) return "unknown handle";
    return Describe(p, *r);
}

void AddFinding(const std::string& kind, const std::string& message) {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    g_findings.push_back({kind, message});
}

std::vector<Finding> Findings() {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    return g_findings;
}

std::vector<Finding> AuditAndReset() {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    if (g_statement) EndStatement();
    std::vector<Finding> out = g_findings;
    std::vector<std::pair<long, void*>> live;
    for (auto& [p, r] : g_handles)
        if (!r.dead) live.push_back({r.serial, p});
    std::sort(live.begin(), live.end());
    for (auto& l : live) {
        HandleRec& r = g_handles[l.second];
        std::string refs = r.refs == 0 ? "no reference, nothing holds it" :
                           std::to_string(r.refs) + (r.refs == 1 ? " reference" : " references") + " nothing holds";
        out.push_back({"leak", "leak: " + Describe(l.second, r) + " (" + refs + ")"});
    }
    // Free everything: first the state of live objects, then the memory.
    g_tearingDown = true;
    for (auto& l : live) {
        auto it = g_handles.find(l.second);
        if (it != g_handles.end() && !it->second.dead) Kill(l.second);
    }
    for (auto& [p, r] : g_handles) {
        Unpoison(p, r.size);
        std::free(p);
    }
    g_handles.clear();
    g_tearingDown = false;
    g_findings.clear();
    g_statementRefs.clear();
    g_objectIds = 0;
    g_statement = 0;
    g_where.clear();
    return out;
}

std::vector<std::string> TakeReports() {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    std::vector<std::string> r;
    r.swap(g_reports);
    return r;
}
int ReportCount() { return g_reportCount; }

void SetReportStream(std::ostream* out) { g_reportStream = out; }

std::string FormatReport(const wchar_t* library, int code, const wchar_t* message) {
    bool hasLib = library && *library;
    bool hasMsg = message && *message;
    bool fatal = code < 0;
    std::string lib = ToUtf8(library), msg = ToUtf8(message), c = std::to_string(code);
    if (!hasLib && !hasMsg) return fatal ? "发生错误码为" + c + "的严重错误" : "发生错误码为" + c + "的错误";
    if (!hasLib) return (fatal ? "严重错误(" : "错误(") + c + "): " + msg;
    if (!hasMsg)
        return "类库\"" + lib + "\"中发生错误码为" + c + (fatal ? "的严重错误" : "的错误");
    return "类库\"" + lib + "\"中发生" + (fatal ? "严重错误(" : "错误(") + c + "): " + msg;
}

// ------------------------------------------------------------ the services
namespace {

struct ServiceScope {
    ServiceScope() { ++g_serviceDepth; }
    ~ServiceScope() { --g_serviceDepth; }
};

void RtLock() { g_runtimeLock.lock(); }
void RtUnlock() { g_runtimeLock.unlock(); }

void RtRegisterConst(void* block) {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    if (!block) return;
    char* b = static_cast<char*>(block);
    for (auto& c : g_constBlocks)
        if (c.begin == b) return;
    int32_t size = *reinterpret_cast<int32_t*>(b);
    if (size < 12) size = 12;
    // Chain: byte 4 links to the block registered before (towards the oldest),
    // byte 8 to the block registered after (towards the newest).
    void** words = reinterpret_cast<void**>(b);
    words[1] = g_constBlocks.empty() ? nullptr : g_constBlocks.back().begin;
    words[2] = nullptr;
    if (!g_constBlocks.empty()) reinterpret_cast<void**>(g_constBlocks.back().begin)[2] = b;
    g_constBlocks.push_back({b, size_t(size)});
}

int RtReserved() { return 0; }

tagTBaseTypeInfo* RtMemoryManager();

int RtReportError(int one, wchar_t* library, int code, wchar_t* message) {
    AddReport(FormatReport(library, code, message));
    return 0;
}

ZelObject* RtNewObject(wchar_t* className, int one) {
    ServiceScope s;
    std::string err;
    ClassInfo* cls = FindClass(className ? className : L"", &err);
    if (!cls) {
        std::string msg = "创建对象失败: " + err;
        RtReportError(1, W(L"系统"), 16, W(FromUtf8(msg).c_str()));
        return nullptr;
    }
    ZelObject* obj = NewObject(cls, &err);
    if (!err.empty()) RtReportError(1, W(L"系统"), 16, W(FromUtf8(err).c_str()));
    return obj;
}

void* MmTakeOver(void* block, int zero) {
    ServiceScope s;
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    if (!block || IsConstant(block)) return block;
    auto it = g_handles.find(block);
    if (it != g_handles.end() && !it->second.dead) return block;
    Track(block, H_BLOCK, BlockSize(block));
    return block;
}

unsigned char* MmNewText(wchar_t* s) {
    ServiceScope sc;
    return NewText(s);
}

unsigned char* MmNewBin(void* data, int length) {
    ServiceScope sc;
    return NewBin(data, length);
}

void* MmAddRef(void* h) { return AddRef(h); }
void MmRelease(void* h) { Release(h); }

// ------------------------------------------------------------ records
tagParamItem P(const wchar_t* name, const wchar_t* type, const wchar_t* desc = L"") {
    return tagParamItem{0, W(name), W(desc), W(L""), 0, W(type), 0, {0, 0}};
}
tagMethodItem M(unsigned flags, const wchar_t* name, const wchar_t* ret, tagParamItem* params, int n, void* fn,
                const wchar_t* desc) {
    return tagMethodItem{flags, W(name), W(desc), W(L""), 0, W(L""), 0, W(ret), 0, n, n ? params : nullptr, fn, {0, 0}};
}
template <typename F>
void* FP(F f) {
    return reinterpret_cast<void*>(f);
}

tagParamItem kRegisterParams[] = {P(L"常量块", L"_i", L"常量块的地址")};
tagParamItem kReportParams[] = {P(L"一", L"_i", L"总是1"), P(L"类库名", L"_i", L"宽字符文本的地址"),
                                P(L"错误码", L"_i", L"负数为严重错误"), P(L"错误信息", L"_i", L"宽字符文本的地址")};
tagParamItem kNewObjectParams[] = {P(L"类名", L"_i", L"宽字符类名的地址"), P(L"一", L"_i", L"总是1")};

const unsigned S = ZEL_STATIC;
tagMethodItem kRuntimeMethods[17] = {
    M(S, L"加锁", L"", nullptr, 0, FP(RtLock), L"进入运行时的锁（可重入）"),
    M(S, L"解锁", L"", nullptr, 0, FP(RtUnlock), L"离开运行时的锁"),
    M(S, L"登记常量块", L"", kRegisterParams, 1, FP(RtRegisterConst), L"登记类库的常量块并填写其两个链接"),
    M(S, L"保留3", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"取内存管理器", L"_i", nullptr, 0, FP(RtMemoryManager), L"返回内存管理器的类记录"),
    M(S, L"报告错误", L"_i", kReportParams, 4, FP(RtReportError), L"报告错误，运行因此失败"),
    M(S, L"保留6", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"保留7", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"保留8", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"保留9", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"保留10", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"保留11", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"保留12", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"保留13", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"保留14", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"保留15", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"创建对象", L"系统.对象", kNewObjectParams, 2, FP(RtNewObject), L"按类名创建一个新对象"),
};

tagParamItem kTakeOverParams[] = {P(L"内存块", L"_i", L"以zel_malloc分配的内存块"), P(L"零", L"_i", L"总是0")};
tagParamItem kNewTextParams[] = {P(L"文本", L"_i", L"宽字符文本的地址")};
tagParamItem kNewBinParams[] = {P(L"数据", L"_i", L"数据的地址"), P(L"长度", L"_i", L"字节数")};
tagParamItem kHandleParams[] = {P(L"句柄", L"_i", L"文本、字节集、数组或对象")};

tagMethodItem kMemoryMethods[6] = {
    M(S, L"保留0", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"接管内存块", L"_i", kTakeOverParams, 2, FP(MmTakeOver), L"接管内存块，返回应保留的句柄"),
    M(S, L"新建文本", L"_s", kNewTextParams, 1, FP(MmNewText), L"从宽字符文本新建文本值"),
    M(S, L"新建字节集", L"_bn", kNewBinParams, 2, FP(MmNewBin), L"从数据和长度新建字节集值"),
    M(S, L"增加引用", L"_i", kHandleParams, 1, FP(MmAddRef), L"增加一个引用，返回应保留的句柄"),
    M(S, L"释放引用", L"", kHandleParams, 1, FP(MmRelease), L"释放一个引用，为零时释放"),
};

tagTBaseTypeInfo ClassRec(const wchar_t* name, const wchar_t* desc, const wchar_t* base, tagMethodItem* methods,
                          int nMethods) {
    tagTBaseTypeInfo r{};
    r.flags = ZEL_CLASS_FLAGS;
    r.name = W(name);
    r.description = W(desc);
    r.text = W(L"");
    r.library = &g_sysLibInfo;
    r.kind = ZEL_KIND_CLASS;
    r.version = 1.0;
    r.fixed36 = -1;
    r.fixed40 = 0;
    r.fixed44 = 3;
    r.baseName = W(base);
    r.interfaceCount = 0;
    r.interfaces = nullptr;
    r.methodCount = nMethods;
    r.methods = methods;
    r.elementCount = 0;
    r.elements = nullptr;
    return r;
}

// The stream interfaces, in their slot order.
tagParamItem kWriteInt[] = {P(L"整数", L"_i")};
tagParamItem kWriteDouble[] = {P(L"小数", L"_db")};
tagParamItem kWriteBool[] = {P(L"逻辑", L"_b")};
tagParamItem kWriteText[] = {P(L"文本", L"_s")};
tagParamItem kWriteBin[] = {P(L"字节集", L"_bn")};
const unsigned MF = ZEL_METHOD;
tagMethodItem kInputMembers[6] = {
    M(MF, L"读整数", L"_i", nullptr, 0, nullptr, L"读一个整数"),
    M(MF, L"读小数", L"_db", nullptr, 0, nullptr, L"读一个小数"),
    M(MF, L"读逻辑", L"_b", nullptr, 0, nullptr, L"读一个逻辑值"),
    M(MF, L"读文本", L"_s", nullptr, 0, nullptr, L"读一个文本"),
    M(MF, L"读字节集", L"_bn", nullptr, 0, nullptr, L"读一个字节集"),
    M(MF, L"保留", L"_i", nullptr, 0, nullptr, L"保留，返回0"),
};
tagMethodItem kOutputMembers[6] = {
    M(MF, L"写整数", L"_b", kWriteInt, 1, nullptr, L"写一个整数"),
    M(MF, L"写小数", L"_b", kWriteDouble, 1, nullptr, L"写一个小数"),
    M(MF, L"写逻辑", L"_b", kWriteBool, 1, nullptr, L"写一个逻辑值"),
    M(MF, L"写文本", L"_b", kWriteText, 1, nullptr, L"写一个文本"),
    M(MF, L"写字节集", L"_b", kWriteBin, 1, nullptr, L"写一个字节集"),
    M(MF, L"保留", L"_i", nullptr, 0, nullptr, L"保留，返回0"),
};

tagTInterfaceInfo InterfaceRec(const wchar_t* name, const wchar_t* desc, tagMethodItem* methods, int n) {
    return tagTInterfaceInfo{ZEL_CLASS_FLAGS, W(name), W(desc), W(L""), 0, &g_sysLibInfo, ZEL_KIND_INTERFACE, 1.0,
                             -1, 0, W(L""), 0, n, methods};
}

int SysEnum(ZelLibInfo*, tagTBaseTypeInfo** out, int capacity);
tagTBaseTypeInfo* SysFind(ZelLibInfo*, wchar_t* name);

}  // namespace

ZelLibInfo g_sysLibInfo = {0,       W(L"系统"), W(L"系统类库：运行时宿主 (ncl)"), W(L""), 0, 1, 0, 7, 1.0, 1,
                           {W(L""), W(L""), W(L"")}, SysEnum, SysFind, 0, {W(L""), W(L"")}, {0, 0, 0}};

}  // namespace zelhost

// The host's records, exported as g_info_<Record> like any class library's.
using namespace zelhost;
extern "C" {
ZELHOST_API tagTBaseTypeInfo g_info_SystemObject =
    ClassRec(L"系统.对象", L"所有类的根类", L"", nullptr, 0);
ZELHOST_API tagTInterfaceInfo g_info_InputStream =
    InterfaceRec(L"系统.输入流", L"输入流接口", kInputMembers, 6);
ZELHOST_API tagTInterfaceInfo g_info_OutputStream =
    InterfaceRec(L"系统.输出流", L"输出流接口", kOutputMembers, 6);
ZELHOST_API tagTBaseTypeInfo g_info_Runtime =
    ClassRec(L"系统.运行时", L"运行时类：其方法按序号提供运行时服务（无对象参数）", L"系统.对象", kRuntimeMethods, 17);
ZELHOST_API tagTBaseTypeInfo g_info_MemoryManager =
    ClassRec(L"系统.内存管理器", L"内存管理器类：其方法按序号提供内存服务（无对象参数）", L"系统.对象",
             kMemoryMethods, 6);
}

namespace zelhost {
namespace {

tagTBaseTypeInfo* kHostRecords[] = {
    &g_info_SystemObject,
    reinterpret_cast<tagTBaseTypeInfo*>(&g_info_InputStream),
    reinterpret_cast<tagTBaseTypeInfo*>(&g_info_OutputStream),
    &g_info_Runtime,
    &g_info_MemoryManager,
};

tagTBaseTypeInfo* RtMemoryManager() { return &g_info_MemoryManager; }

int SysEnum(ZelLibInfo*, tagTBaseTypeInfo** out, int capacity) {
    int n = int(sizeof kHostRecords / sizeof kHostRecords[0]);
    if (!out) return n;
    if (capacity < 1) return 0;
    int k = std::min(n, capacity);
    for (int i = 0; i < k; ++i) out[i] = kHostRecords[i];
    return k;
}

tagTBaseTypeInfo* SysFind(ZelLibInfo*, wchar_t* name) {
    if (!name) return nullptr;
    for (auto* r : kHostRecords)
        if (wcscmp(r->name, name) == 0) return r;
    return nullptr;
}

void FillHashes(tagMethodItem* m, int n) {
    for (int i = 0; i < n; ++i) {
        m[i].nameHash = TextHash(m[i].name);
        m[i].friendNameHash = 0;
        m[i].returnTypeHash = TextHash(m[i].returnType);
        for (int k = 0; k < m[i].paramCount; ++k) {
            m[i].params[k].nameHash = TextHash(m[i].params[k].name);
            m[i].params[k].typeHash = TextHash(m[i].params[k].type);
        }
    }
}

// The runtime object: chain [系统.对象, 系统.运行时], no data.
int g_runtimeChain[5];
int g_runtimeBlocks[2][1];
void* g_runtimeWords[4];

struct HostInit {
    HostInit() {
        g_sysLibInfo.nameHash = TextHash(g_sysLibInfo.name);
        for (auto* r : kHostRecords) {
            r->nameHash = TextHash(r->name);
            if (r->kind == ZEL_KIND_INTERFACE) {
                auto* ir = reinterpret_cast<tagTInterfaceInfo*>(r);
                ir->baseNameHash = TextHash(ir->baseName);
                FillHashes(ir->methods, ir->methodCount);
            } else {
                r->baseNameHash = TextHash(r->baseName);
                FillHashes(r->methods, r->methodCount);
            }
        }
        g_runtimeChain[0] = 2;
        g_runtimeChain[1] = int(reinterpret_cast<intptr_t>(&g_info_SystemObject));
        g_runtimeChain[2] = int(reinterpret_cast<intptr_t>(&g_sysLibInfo));
        g_runtimeChain[3] = int(reinterpret_cast<intptr_t>(&g_info_Runtime));
        g_runtimeChain[4] = int(reinterpret_cast<intptr_t>(&g_sysLibInfo));
        g_runtimeWords[0] = g_runtimeWords;
        g_runtimeWords[1] = g_runtimeChain;
        g_runtimeWords[2] = g_runtimeBlocks[0];
        g_runtimeWords[3] = g_runtimeBlocks[1];
    }
} g_hostInit;

}  // namespace

ZelObject* RuntimeObject() { return reinterpret_cast<ZelObject*>(g_runtimeWords); }

tagTBaseTypeInfo* HostFindRecord(const std::wstring& name) { return SysFind(nullptr, const_cast<wchar_t*>(name.c_str())); }

std::vector<tagTBaseTypeInfo*> HostRecords() {
    return std::vector<tagTBaseTypeInfo*>(std::begin(kHostRecords), std::end(kHostRecords));
}

std::string HostRecordName(const void* record) {
    if (record == &g_info_SystemObject) return "SystemObject";
    if (record == &g_info_InputStream) return "InputStream";
    if (record == &g_info_OutputStream) return "OutputStream";
    if (record == &g_info_Runtime) return "Runtime";
    if (record == &g_info_MemoryManager) return "MemoryManager";
    return "";
}

}  // namespace zelhost

extern "C" ZELHOST_API ZelObject* ZelInitSysLib() { return zelhost::RuntimeObject(); }

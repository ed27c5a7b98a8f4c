// Handle tracking: the table of texts, byte sets, objects and blocks the host
// made, their reference counts, the statements that own fresh handles, and the
// audit that reports leaks at the end of a run.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unordered_map>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
extern "C" int __sanitizer_get_ownership(const volatile void* p);
extern "C" size_t __sanitizer_get_allocated_size(const volatile void* p);
#define ZELHOST_ASAN 1
#endif

#include "host/handle_table.h"

namespace zelhost {

std::recursive_mutex g_tableLock;
bool g_tearingDown = false;

namespace {

std::unordered_map<void*, HandleRec> g_handles;
long g_serial = 0;
int g_objectIds = 0;
long g_statement = 0;         // current statement (0: none)
long g_statementCounter = 0;
std::string g_where;          // "file:line" of the current statement
std::vector<void*> g_statementRefs;
std::vector<Finding> g_findings;
int g_serviceDepth = 0;  // > 0 while a service runs on behalf of a library

struct ConstBlock {
    char* begin;
    size_t size;
};
std::vector<ConstBlock> g_constBlocks;

// Dead handles stay poisoned until the audit frees them, so a late use shows up under ASan.
#ifdef ZELHOST_ASAN
void Poison(void* p, size_t n) { if (p && n) ASAN_POISON_MEMORY_REGION(p, n); }
void Unpoison(void* p, size_t n) { if (p && n) ASAN_UNPOISON_MEMORY_REGION(p, n); }
size_t BlockSize(void* p) { return __sanitizer_get_ownership(p) ? __sanitizer_get_allocated_size(p) : 0; }
#else
void Poison(void*, size_t) {}
void Unpoison(void*, size_t) {}
size_t BlockSize(void*) { return 0; }
#endif

const char* KindName(HKind k) {
    switch (k) {
        case H_TEXT: return "文本";
        case H_BIN: return "字节集";
        case H_OBJECT: return "对象";
        case H_BLOCK: return "交出的内存块";
    }
    return "?";
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

// Reads three words of memory the host may not own, so without the ASan check.
void PeekWords(const void* p, void* out[3]) __attribute__((no_sanitize("address")));
void PeekWords(const void* p, void* out[3]) {
    void* const* w = static_cast<void* const*>(const_cast<void*>(p));
    out[0] = w[0];
    out[1] = w[1];
    out[2] = w[2];
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
                                       CurrentWhere() + ")");
        return nullptr;
    }
    char buf[32];
    std::snprintf(buf, sizeof buf, "%p", handle);
    AddFinding(unknownKind, std::string("unknown handle: ") + action + " of a handle the host never made (" + buf +
                                ") at " + CurrentWhere());
    return nullptr;
}

void Kill(void* p) {
    auto it = g_handles.find(p);
    if (it == g_handles.end() || it->second.dead) return;
    HandleRec& rec = it->second;
    rec.preview = Preview(p, rec);
    rec.dead = true;
    if (rec.kind == H_OBJECT) FreeObjectState(static_cast<ZelObject*>(p), rec);
    Poison(p, rec.size);
}

}  // namespace

// ------------------------------------------------------------ the table
std::string CurrentWhere() {
    if (!g_where.empty()) return g_where;
    return "library load";
}

HandleRec& Track(void* p, HKind kind, size_t size) {
    HandleRec rec;
    rec.kind = kind;
    rec.byLibrary = g_serviceDepth > 0;
    rec.statement = g_statement;
    rec.serial = ++g_serial;
    rec.where = CurrentWhere();
    rec.size = size;
    auto& slot = g_handles[p];
    slot = rec;
    return slot;
}

HandleRec* FindHandle(void* p) {
    auto it = g_handles.find(p);
    return it == g_handles.end() ? nullptr : &it->second;
}

int NextObjectId() { return ++g_objectIds; }

ServiceScope::ServiceScope() { ++g_serviceDepth; }
ServiceScope::~ServiceScope() { --g_serviceDepth; }

void RegisterConstBlock(void* block) {
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

void* TakeOverBlock(void* block) {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    if (!block || IsConstant(block)) return block;
    if (HandleRec* r = FindHandle(block); r && !r->dead) return block;
    Track(block, H_BLOCK, BlockSize(block));
    return block;
}

// ------------------------------------------------------------ statements
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

// ------------------------------------------------------------ handles
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

void* AddRef(void* handle) {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    if (!handle || IsConstant(handle)) return handle;
    void* p = handle;
    if (HandleRec* r = LiveRecord(p, "add-reference", "unknown-addref")) ++r->refs;
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
    HandleRec* r = FindHandle(handle);
    return r && !r->dead;
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

}  // namespace zelhost

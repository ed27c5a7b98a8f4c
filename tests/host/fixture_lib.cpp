// 测试.ncl: a small class library for the host's unit tests. It uses only
// runtime/zel_types.h and runtime/services.h and reaches the runtime through
// the object handed over by ZelNotifyLib.
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>

#include "runtime/services.h"

namespace {

ZelObject* g_runtime = nullptr;
tagTBaseTypeInfo* g_rtClass = nullptr;
tagTBaseTypeInfo* g_mmClass = nullptr;
std::string g_log;

void Log(const char* s) {
    g_log += s;
    g_log += ';';
}

void* Service(tagTBaseTypeInfo* cls, int k) { return cls ? cls->methods[k].function : nullptr; }

unsigned char* RtNewText(const wchar_t* s) {
    return reinterpret_cast<unsigned char* (*)(const wchar_t*)>(Service(g_mmClass, ZEL_MM_NEW_TEXT))(s);
}
void* RtAddRef(void* h) { return reinterpret_cast<void* (*)(void*)>(Service(g_mmClass, ZEL_MM_ADD_REF))(h); }
void RtRelease(void* h) { reinterpret_cast<void (*)(void*)>(Service(g_mmClass, ZEL_MM_RELEASE))(h); }
void* RtTakeOver(void* b) { return reinterpret_cast<void* (*)(void*, int)>(Service(g_mmClass, ZEL_MM_TAKE_OVER))(b, 0); }
int RtReport(const wchar_t* lib, int code, const wchar_t* msg) {
    return reinterpret_cast<int (*)(int, const wchar_t*, int, const wchar_t*)>(
        Service(g_rtClass, ZEL_RT_REPORT_ERROR))(1, lib, code, msg);
}
ZelObject* RtNewObject(const wchar_t* name) {
    return reinterpret_cast<ZelObject* (*)(const wchar_t*, int)>(Service(g_rtClass, ZEL_RT_NEW_OBJECT))(name, 1);
}

// The constant block: size, two links, an empty ZelText {0, 0, 0}.
int g_const[6] = {24, 0, 0, 0, 0, 0};

int* Block(ZelObject* o, int level) { return static_cast<int*>(ZelObjectWords(o)[2 + level]); }
const wchar_t* Chars(unsigned char* text) { return reinterpret_cast<const wchar_t*>(text + 8); }

wchar_t* W(const wchar_t* s) { return const_cast<wchar_t*>(s); }

tagParamItem P(const wchar_t* name, const wchar_t* type) {
    return tagParamItem{0, W(name), W(L""), W(L""), 0, W(type), 0, {0, 0}};
}
tagMethodItem M(unsigned flags, const wchar_t* name, const wchar_t* ret, tagParamItem* params, int n, void* fn) {
    return tagMethodItem{flags, W(name), W(L""), W(L""), 0, W(L""), 0, W(ret), 0, n, n ? params : nullptr, fn, {0, 0}};
}
tagElementItem E(const wchar_t* name, const wchar_t* type) {
    return tagElementItem{0, W(name), W(L""), W(L""), 0, W(type), 0, {0, 0, 0, 0, 0}};
}
template <typename F>
void* FP(F f) {
    return reinterpret_cast<void*>(f);
}

tagTBaseTypeInfo Class(const wchar_t* name, const wchar_t* base, tagMethodItem* m, int nm, tagElementItem* e, int ne) {
    tagTBaseTypeInfo r{};
    r.flags = ZEL_CLASS_FLAGS;
    r.name = W(name);
    r.description = W(L"测试类");
    r.text = W(L"");
    r.kind = ZEL_KIND_CLASS;
    r.version = 1.0;
    r.fixed36 = -1;
    r.fixed44 = 3;
    r.baseName = W(base);
    r.methodCount = nm;
    r.methods = m;
    r.elementCount = ne;
    r.elements = e;
    return r;
}

}  // namespace

// ------------------------------------------------------------ 测试.计数器 (Counter)
// Level-1 block: word 0 the value, words 1-2 a double, word 3 an int.
extern "C" {
ZEL_API int Counter_Init(ZelObject* o) {
    Log("Counter_Init");
    Block(o, 1)[0] = 0;
    return 0;
}
ZEL_API int Counter_Free(ZelObject* o) {
    Log("Counter_Free");
    return 0;
}
ZEL_API int Counter_Serialize(ZelObject* o, ZelObject* stream) { return 7; }
}

namespace {
int GetValue(ZelObject* o) { return Block(o, 1)[0]; }
void SetValue(ZelObject* o, int v) { Block(o, 1)[0] = v; }
int Add(ZelObject* o, int d) { return Block(o, 1)[0] += d; }
double Scale(ZelObject* o, double f) {
    double d;
    std::memcpy(&d, Block(o, 1) + 1, 8);
    d = (d == 0 ? 1.0 : d) * f;
    std::memcpy(Block(o, 1) + 1, &d, 8);
    return d;
}
unsigned char* Name(ZelObject*) { return RtNewText(L"计数器"); }
unsigned char* Concat(ZelObject*, unsigned char* a, unsigned char* b) {
    std::wstring s = std::wstring(Chars(a)) + Chars(b);
    return RtNewText(s.c_str());
}
int BinLength(ZelObject*, unsigned char* bin) { return bin ? reinterpret_cast<int*>(bin)[2] : -1; }
void Throw(ZelObject*, int kind) {
    if (kind == 0) std::string().erase(5, 1);  // std::out_of_range "basic_string::erase"
    if (kind == 1) throw "narrow message";
    if (kind == 2) throw 42;
}
void Leak(ZelObject*) { RtAddRef(RtNewText(L"漏掉的文本")); }
void OverRelease(ZelObject*, unsigned char* text) { RtRelease(text); }
int StaticAdd(int a, int b) { return a + b; }
int Add2(ZelObject* o, int a, int b) { return Block(o, 1)[0] += a + b; }
unsigned char* Read(ZelObject*, int n, int* ok) {
    if (n < 0) {
        *ok = 0;
        return nullptr;
    }
    std::string s(size_t(n), 'a');
    auto* block = static_cast<unsigned char*>(std::malloc(12 + size_t(n)));
    reinterpret_cast<int*>(block)[0] = 0;
    reinterpret_cast<int*>(block)[1] = 1;
    reinterpret_cast<int*>(block)[2] = n;
    std::memcpy(block + 12, s.data(), size_t(n));
    return static_cast<unsigned char*>(RtTakeOver(block));
}
int Same(ZelObject* o, ZelObject* other) { return other && GetValue(o) == GetValue(other); }
void Report(ZelObject*) { RtReport(L"测试", 3, L"出错了"); }
ZelObject* NewCounter(ZelObject*) { return RtNewObject(L"测试.计数器"); }
unsigned char* EmptyText(ZelObject*) { return reinterpret_cast<unsigned char*>(&g_const[3]); }
int g_foreignText[4] = {0, 1, 'x', 0};
unsigned char* Foreign(ZelObject*) { return reinterpret_cast<unsigned char*>(g_foreignText); }
// Keeps a 12-byte copy of an object's first words, as the variant node does.
int g_copy[3];
void Keep(ZelObject*, ZelObject* other) {
    std::memcpy(g_copy, other, 12);
    RtAddRef(g_copy);
}
void Drop(ZelObject*) { RtRelease(g_copy); }
// Word 0 of the copy is the object itself (the host's convention).
void Crash(ZelObject*) { *static_cast<volatile int*>(nullptr) = 1; }
ZelObject* Kept(ZelObject*) { return reinterpret_cast<ZelObject*>(g_copy[0]); }

tagParamItem kValue[] = {P(L"值", L"_i")};
tagParamItem kDelta[] = {P(L"增量", L"_i")};
tagParamItem kFactor[] = {P(L"因子", L"_db")};
tagParamItem kTwoTexts[] = {P(L"甲", L"_s"), P(L"乙", L"_s")};
tagParamItem kBin[] = {P(L"数据", L"_bn")};
tagParamItem kKind[] = {P(L"种类", L"_i")};
tagParamItem kText[] = {P(L"文本", L"_s")};
tagParamItem kTwoInts[] = {P(L"甲", L"_i"), P(L"乙", L"_i")};
tagParamItem kLength[] = {P(L"长度", L"_i")};
tagParamItem kOther[] = {P(L"另一个", L"测试.计数器")};
tagParamItem kStream[] = {P(L"流对象", L"系统.输出流")};

tagMethodItem kCounterMethods[] = {
    M(ZEL_PROPERTY, L"值", L"_i", nullptr, 0, FP(GetValue)),
    M(ZEL_PROPERTY, L"值", L"", kValue, 1, FP(SetValue)),
    M(ZEL_METHOD, L"加", L"_i", kDelta, 1, FP(Add)),
    M(ZEL_METHOD, L"缩放", L"_db", kFactor, 1, FP(Scale)),
    M(ZEL_METHOD, L"名字", L"_s", nullptr, 0, FP(Name)),
    M(ZEL_METHOD, L"拼接", L"_s", kTwoTexts, 2, FP(Concat)),
    M(ZEL_METHOD, L"长度", L"_i", kBin, 1, FP(BinLength)),
    M(ZEL_METHOD, L"抛出", L"", kKind, 1, FP(Throw)),
    M(ZEL_METHOD, L"泄漏", L"", nullptr, 0, FP(Leak)),
    M(ZEL_METHOD, L"多释放", L"", kText, 1, FP(OverRelease)),
    M(ZEL_STATIC, L"静态加", L"_i", kTwoInts, 2, FP(StaticAdd)),
    M(ZEL_METHOD, L"读", L"_bn", kLength, 1, FP(Read)),
    M(ZEL_METHOD, L"相同", L"_b", kOther, 1, FP(Same)),
    M(ZEL_METHOD, L"报错", L"", nullptr, 0, FP(Report)),
    M(ZEL_METHOD, L"新对象", L"测试.计数器", nullptr, 0, FP(NewCounter)),
    M(ZEL_METHOD, L"空文本", L"_s", nullptr, 0, FP(EmptyText)),
    M(ZEL_METHOD, L"外来", L"_s", nullptr, 0, FP(Foreign)),
    M(ZEL_METHOD, L"序列化", L"_b", kStream, 1, nullptr),
    M(ZEL_METHOD, L"保留", L"", kOther, 1, FP(Keep)),
    M(ZEL_METHOD, L"丢弃", L"", nullptr, 0, FP(Drop)),
    M(ZEL_METHOD, L"取保留", L"测试.计数器", nullptr, 0, FP(Kept)),
    M(ZEL_METHOD, L"加", L"_i", kTwoInts, 2, FP(Add2)),  // an overload by argument count
    M(ZEL_METHOD, L"崩溃", L"", nullptr, 0, FP(Crash)),
};
tagElementItem kCounterElements[] = {E(L"", L"_i"), E(L"小数", L"_db"), E(L"整数", L"_i")};

// ------------------------------------------------------------ 测试.接口 / 测试.文件 / 测试.子文件
int IfaceNothing(ZelObject*) { return 0; }
tagMethodItem kIfaceMembers[] = {M(ZEL_METHOD, L"什么也不做", L"_i", nullptr, 0, nullptr)};
int FileLevel(ZelObject* o) { return Block(o, 2)[0]; }
int SubLevel(ZelObject* o) { return Block(o, 3)[0]; }
void* kFileSlots[] = {FP(IfaceNothing)};
tagInterfaceEntry kFileInterfaces[] = {{W(L"测试.接口"), 0, 1, kFileSlots}};
tagMethodItem kFileMethods[] = {M(ZEL_METHOD, L"什么也不做", L"_i", nullptr, 0, FP(IfaceNothing)),
                                M(ZEL_METHOD, L"状态", L"_i", nullptr, 0, FP(FileLevel))};
tagElementItem kFileElements[] = {E(L"", L"_i")};
tagMethodItem kSubMethods[] = {M(ZEL_METHOD, L"子状态", L"_i", nullptr, 0, FP(SubLevel))};
tagElementItem kSubElements[] = {E(L"", L"_i"), E(L"", L"_i")};

// ------------------------------------------------------------ 测试.流: implements 系统.输入流 and 系统.输出流
struct Buf {
    std::string bytes;
    size_t pos = 0;
};
Buf* StreamBuf(ZelObject* o) { return reinterpret_cast<Buf*>(Block(o, 1)[0]); }
int WriteInt(ZelObject* o, int v) {
    StreamBuf(o)->bytes.append(reinterpret_cast<char*>(&v), 4);
    return 1;
}
int WriteDouble(ZelObject* o, double v) {
    StreamBuf(o)->bytes.append(reinterpret_cast<char*>(&v), 8);
    return 1;
}
int WriteText(ZelObject* o, unsigned char* t) {
    const wchar_t* s = Chars(t);
    StreamBuf(o)->bytes.append(reinterpret_cast<const char*>(s), (wcslen(s) + 1) * 4);
    return 1;
}
int Reserved(ZelObject*) { return 0; }
int ReadInt(ZelObject* o) {
    Buf* b = StreamBuf(o);
    int v = -1;
    if (b->pos + 4 <= b->bytes.size()) {
        std::memcpy(&v, b->bytes.data() + b->pos, 4);
        b->pos += 4;
    }
    return v;
}
double ReadDouble(ZelObject* o) {
    Buf* b = StreamBuf(o);
    double v = -1;
    if (b->pos + 8 <= b->bytes.size()) {
        std::memcpy(&v, b->bytes.data() + b->pos, 8);
        b->pos += 8;
    }
    return v;
}
unsigned char* ReadText(ZelObject* o) {
    Buf* b = StreamBuf(o);
    const wchar_t* s = reinterpret_cast<const wchar_t*>(b->bytes.data() + b->pos);
    b->pos += (wcslen(s) + 1) * 4;
    return RtNewText(s);
}
int StreamLength(ZelObject* o) { return int(StreamBuf(o)->bytes.size()); }
void* kInputSlots[] = {FP(ReadInt), FP(ReadDouble), FP(Reserved), FP(ReadText), FP(Reserved), FP(Reserved)};
void* kOutputSlots[] = {FP(WriteInt), FP(WriteDouble), FP(Reserved), FP(WriteText), FP(Reserved), FP(Reserved)};
tagInterfaceEntry kStreamInterfaces[] = {{W(L"系统.输入流"), 0, 6, kInputSlots}, {W(L"系统.输出流"), 0, 6, kOutputSlots}};
tagMethodItem kStreamMethods[] = {M(ZEL_METHOD, L"取长度", L"_i", nullptr, 0, FP(StreamLength))};
tagElementItem kStreamElements[] = {E(L"", L"_i")};

// ------------------------------------------------------------ 测试.数学 (record Math): the 求极限 irregularity
double Ceil(int zero, double x) { return zero == 0 ? std::ceil(x) : -1.0; }
tagParamItem kX[] = {P(L"数值", L"_db")};
tagMethodItem kMathMethods[] = {M(ZEL_STATIC, L"求极限", L"_db", kX, 1, FP(Ceil))};

}  // namespace

extern "C" {
ZEL_API int FileLike_Init(ZelObject* o) {
    Log("FileLike_Init");
    Block(o, 2)[0] = 2;
    return 0;
}
ZEL_API int FileLike_Free(ZelObject*) {
    Log("FileLike_Free");
    return 0;
}
ZEL_API int SubFile_Init(ZelObject* o) {
    Log("SubFile_Init");
    Block(o, 3)[0] = 3;
    return 0;
}
ZEL_API int SubFile_Free(ZelObject*) {
    Log("SubFile_Free");
    return 0;
}
ZEL_API int Stream_Init(ZelObject* o) {
    Block(o, 1)[0] = int(reinterpret_cast<intptr_t>(new Buf));
    return 0;
}
ZEL_API int Stream_Free(ZelObject* o) {
    delete StreamBuf(o);
    Block(o, 1)[0] = 0;
    return 0;
}

ZEL_API tagTBaseTypeInfo g_info_Counter =
    Class(L"测试.计数器", L"系统.对象", kCounterMethods, int(sizeof kCounterMethods / sizeof kCounterMethods[0]),
          kCounterElements, 3);
ZEL_API tagTInterfaceInfo g_info_Iface = {ZEL_CLASS_FLAGS, W(L"测试.接口"), W(L""), W(L""), 0, nullptr,
                                          ZEL_KIND_INTERFACE, 1.0, -1, 0, W(L""), 0, 1, kIfaceMembers};
ZEL_API tagTBaseTypeInfo g_info_FileLike = [] {
    tagTBaseTypeInfo r = Class(L"测试.文件", L"系统.对象", kFileMethods, 2, kFileElements, 1);
    r.interfaceCount = 1;
    r.interfaces = kFileInterfaces;
    return r;
}();
ZEL_API tagTBaseTypeInfo g_info_SubFile = Class(L"测试.子文件", L"测试.文件", kSubMethods, 1, kSubElements, 2);
ZEL_API tagTBaseTypeInfo g_info_Stream = [] {
    tagTBaseTypeInfo r = Class(L"测试.流", L"系统.对象", kStreamMethods, 1, kStreamElements, 1);
    r.interfaceCount = 2;
    r.interfaces = kStreamInterfaces;
    return r;
}();
ZEL_API tagTBaseTypeInfo g_info_Math = Class(L"测试.数学", L"系统.对象", kMathMethods, 1, nullptr, 0);

ZEL_API const char* Fixture_Log() { return g_log.c_str(); }
ZEL_API void Fixture_ClearLog() { g_log.clear(); }
}

namespace {

unsigned Hash(const wchar_t* s) {
    unsigned h = 0;
    for (; s && *s; ++s) h += unsigned(*s);
    return h;
}
void HashItems(tagMethodItem* m, int n) {
    for (int i = 0; i < n; ++i) {
        m[i].nameHash = Hash(m[i].name);
        m[i].returnTypeHash = Hash(m[i].returnType);
        for (int k = 0; k < m[i].paramCount; ++k) {
            m[i].params[k].nameHash = Hash(m[i].params[k].name);
            m[i].params[k].typeHash = Hash(m[i].params[k].type);
        }
    }
}
void HashRecord(tagTBaseTypeInfo* r) {
    r->nameHash = Hash(r->name);
    r->baseNameHash = Hash(r->baseName);
    HashItems(r->methods, r->methodCount);
    for (int i = 0; i < r->elementCount; ++i) {
        r->elements[i].nameHash = Hash(r->elements[i].name);
        r->elements[i].typeHash = Hash(r->elements[i].type);
    }
    for (int i = 0; i < r->interfaceCount; ++i) r->interfaces[i].nameHash = Hash(r->interfaces[i].name);
}

tagTBaseTypeInfo* kRecords[] = {&g_info_Counter, reinterpret_cast<tagTBaseTypeInfo*>(&g_info_Iface),
                                &g_info_FileLike, &g_info_SubFile, &g_info_Stream, &g_info_Math};

int Enum(ZelLibInfo*, tagTBaseTypeInfo** out, int capacity) {
    int n = int(sizeof kRecords / sizeof kRecords[0]);
    if (!out) return n;
    int k = capacity < n ? capacity : n;
    for (int i = 0; i < k; ++i) out[i] = kRecords[i];
    return k < 0 ? 0 : k;
}
tagTBaseTypeInfo* Find(ZelLibInfo*, wchar_t* name) {
    for (auto* r : kRecords)
        if (name && wcscmp(r->name, name) == 0) return r;
    return nullptr;
}

ZelLibInfo g_lib = {0, W(L"测试"), W(L"宿主测试用类库"), W(L""), 0, 1, 0, 7, 1.0, 1, {W(L""), W(L""), W(L"")},
                    Enum, Find, 0, {W(L""), W(L"")}, {0, 0, 0}};

struct Init {
    Init() {
        g_lib.nameHash = Hash(g_lib.name);
        for (auto* r : kRecords) {
            if (r->kind == ZEL_KIND_INTERFACE) {
                auto* ir = reinterpret_cast<tagTInterfaceInfo*>(r);
                ir->nameHash = Hash(ir->name);
                ir->baseNameHash = Hash(ir->baseName);
                HashItems(ir->methods, ir->methodCount);
            } else {
                HashRecord(r);
            }
        }
    }
} g_init;

}  // namespace

extern "C" ZEL_API ZelLibInfo* ZelGetLibInfo() { return &g_lib; }
extern "C" ZEL_API int ZelNotifyLib(ZelLibInfo* lib, NOTIFY_LIB_CODE code, unsigned p1, unsigned) {
    if (code != NOTIFY_LIB_RUNTIME) return -1;
    g_runtime = reinterpret_cast<ZelObject*>(p1);
    int n = g_runtime->classChain[0];
    g_rtClass = reinterpret_cast<tagTBaseTypeInfo*>(g_runtime->classChain[1 + 2 * (n - 1)]);
    g_mmClass = reinterpret_cast<tagTBaseTypeInfo* (*)()>(Service(g_rtClass, ZEL_RT_MEMORY_MANAGER))();
    reinterpret_cast<void (*)(void*)>(Service(g_rtClass, ZEL_RT_REGISTER_CONST))(g_const);
    return 0;
}

// 测试.ncl: a small class library for the host's unit tests. It reaches the
// runtime only through the object handed over by ZelNotifyLib.
#include <cstdlib>
#include <cstring>
#include <string>

#include "fixture_records.h"
#include <zel/services.h>

using namespace fixture;

namespace {

tagTBaseTypeInfo* g_rtClass = nullptr;
tagTBaseTypeInfo* g_mmClass = nullptr;
std::string g_log;

template <typename Fn>
Fn Service(tagTBaseTypeInfo* cls, int k) {
    return reinterpret_cast<Fn>(cls->methods[k].function);
}
unsigned char* RtNewText(const wchar_t* s) {
    return Service<unsigned char* (*)(const wchar_t*)>(g_mmClass, ZEL_MM_NEW_TEXT)(s);
}

// The constant block: size, two links, an empty ZelText {0, 0, 0}.
int g_const[6] = {24, 0, 0, 0, 0, 0};

int* Block(ZelObject* o, int level) { return static_cast<int*>(ZelObjectWords(o)[2 + level]); }
const wchar_t* Chars(unsigned char* text) { return reinterpret_cast<const wchar_t*>(text + 8); }

// Init and Free hooks log their calls; Init marks the first word of its level.
int Hook(const char* name, ZelObject* o = nullptr, int level = 0) {
    (g_log += name) += ';';
    if (level) Block(o, level)[0] = level;
    return 0;
}
}  // namespace
ZEL_EXPORT int Counter_Init(ZelObject*) { return Hook("Counter_Init"); }
ZEL_EXPORT int Counter_Free(ZelObject*) { return Hook("Counter_Free"); }
ZEL_EXPORT int FileLike_Init(ZelObject* o) { return Hook("FileLike_Init", o, 2); }
ZEL_EXPORT int FileLike_Free(ZelObject*) { return Hook("FileLike_Free"); }
ZEL_EXPORT int SubFile_Init(ZelObject* o) { return Hook("SubFile_Init", o, 3); }
ZEL_EXPORT int SubFile_Free(ZelObject*) { return Hook("SubFile_Free"); }
ZEL_EXPORT int Counter_Serialize(ZelObject*, ZelObject*) { return 7; }
ZEL_EXPORT const char* Fixture_Log(int clear) {
    if (clear) g_log.clear();
    return g_log.c_str();
}

// ------------------------------------------------------------ 测试.计数器 (Counter)
// Level-1 block: word 0 the value, words 1-2 a double, word 3 an int.
namespace {
int GetValue(ZelObject* o) { return Block(o, 1)[0]; }
void SetValue(ZelObject* o, int v) { Block(o, 1)[0] = v; }
int Add(ZelObject* o, int d) { return Block(o, 1)[0] += d; }
int Add2(ZelObject* o, int a, int b) { return Block(o, 1)[0] += a + b; }
double Scale(ZelObject*, double f) { return f * 2.5; }
unsigned char* Concat(ZelObject*, unsigned char* a, unsigned char* b) {
    return RtNewText((std::wstring(Chars(a)) + Chars(b)).c_str());
}
void Throw(ZelObject*, int kind) {
    if (kind == 0) std::string().erase(5, 1);  // std::out_of_range "basic_string::erase"
    if (kind == 1) throw "narrow message";
    if (kind == 2) throw 42;
}
void Leak(ZelObject*) { Service<void* (*)(void*)>(g_mmClass, ZEL_MM_ADD_REF)(RtNewText(L"漏掉的文本")); }
void OverRelease(ZelObject*, unsigned char* text) { Service<void (*)(void*)>(g_mmClass, ZEL_MM_RELEASE)(text); }
int StaticAdd(int a, int b) { return a + b; }
// n bytes 'a' in a block handed over to the host; a negative n fails.
unsigned char* Read(ZelObject*, int n, int* ok) {
    if (n < 0) return *ok = 0, nullptr;
    auto* block = static_cast<int*>(std::malloc(12 + size_t(n)));
    const int header[3] = {0, 1, n};  // a byte set
    std::memcpy(block, header, 12);
    std::memset(block + 3, 'a', size_t(n));
    return static_cast<unsigned char*>(Service<void* (*)(void*, int)>(g_mmClass, ZEL_MM_TAKE_OVER)(block, 0));
}
int Same(ZelObject* o, ZelObject* other) { return other && GetValue(o) == GetValue(other); }
void Report(ZelObject*) {
    Service<int (*)(int, const wchar_t*, int, const wchar_t*)>(g_rtClass, ZEL_RT_REPORT_ERROR)(1, L"测试", 3, L"出错了");
}
ZelObject* NewCounter(ZelObject*) {
    return Service<ZelObject* (*)(const wchar_t*, int)>(g_rtClass, ZEL_RT_NEW_OBJECT)(L"测试.计数器", 1);
}
unsigned char* EmptyText(ZelObject*) { return reinterpret_cast<unsigned char*>(&g_const[3]); }
int g_foreignText[4] = {0, 1, 'x', 0};
unsigned char* Foreign(ZelObject*) { return reinterpret_cast<unsigned char*>(g_foreignText); }

tagParamItem kInt[] = {P(L"数", L"_i")};
tagParamItem kDelta[] = {P(L"增量", L"_i")};
tagParamItem kFactor[] = {P(L"因子", L"_db")};
tagParamItem kTwoTexts[] = {P(L"甲", L"_s"), P(L"乙", L"_s")};
tagParamItem kText[] = {P(L"文本", L"_s")};
tagParamItem kTwoInts[] = {P(L"甲", L"_i"), P(L"乙", L"_i")};
tagParamItem kOther[] = {P(L"另一个", L"测试.计数器")};
tagParamItem kStream[] = {P(L"流对象", L"系统.输出流")};

tagMethodItem kCounterMethods[] = {
    M(ZEL_PROPERTY, L"值", L"_i", nullptr, 0, FP(GetValue)),
    M(ZEL_PROPERTY, L"值", L"", kInt, 1, FP(SetValue)),
    M(ZEL_METHOD, L"加", L"_i", kDelta, 1, FP(Add)),
    M(ZEL_METHOD, L"缩放", L"_db", kFactor, 1, FP(Scale)),
    M(ZEL_METHOD, L"拼接", L"_s", kTwoTexts, 2, FP(Concat)),
    M(ZEL_METHOD, L"抛出", L"", kInt, 1, FP(Throw)),
    M(ZEL_METHOD, L"泄漏", L"", nullptr, 0, FP(Leak)),
    M(ZEL_METHOD, L"多释放", L"", kText, 1, FP(OverRelease)),
    M(ZEL_STATIC, L"静态加", L"_i", kTwoInts, 2, FP(StaticAdd)),
    M(ZEL_METHOD, L"读", L"_bn", kInt, 1, FP(Read)),
    M(ZEL_METHOD, L"相同", L"_b", kOther, 1, FP(Same)),
    M(ZEL_METHOD, L"报错", L"", nullptr, 0, FP(Report)),
    M(ZEL_METHOD, L"新对象", L"测试.计数器", nullptr, 0, FP(NewCounter)),
    M(ZEL_METHOD, L"空文本", L"_s", nullptr, 0, FP(EmptyText)),
    M(ZEL_METHOD, L"外来", L"_s", nullptr, 0, FP(Foreign)),
    M(ZEL_METHOD, L"序列化", L"_b", kStream, 1, nullptr),
    M(ZEL_METHOD, L"加", L"_i", kTwoInts, 2, FP(Add2)),  // an overload by argument count
};
tagElementItem kCounterElements[] = {E(L"", L"_i"), E(L"小数", L"_db"), E(L"整数", L"_i")};

// ------------------------------------------------------------ 测试.接口 / 测试.文件 / 测试.子文件
// 测试.文件 implements the library's own 测试.接口 (which takes a level) and
// the host's 系统.输出流 (which does not).
int Nothing(ZelObject*) { return 0; }
int FileLevel(ZelObject* o) { return Block(o, 2)[0]; }
int SubLevel(ZelObject* o) { return Block(o, 3)[0]; }
tagMethodItem kIfaceMembers[] = {M(ZEL_METHOD, L"什么也不做", L"_i", nullptr, 0, nullptr)};
void* kFileSlots[] = {FP(Nothing)};
void* kOutputSlots[] = {FP(Nothing), FP(Nothing), FP(Nothing), FP(Nothing), FP(Nothing), FP(Nothing)};
tagInterfaceEntry kFileInterfaces[] = {I(L"测试.接口", kFileSlots, 1), I(L"系统.输出流", kOutputSlots, 6)};
tagMethodItem kFileMethods[] = {M(ZEL_METHOD, L"什么也不做", L"_i", nullptr, 0, FP(Nothing)),
                                M(ZEL_METHOD, L"状态", L"_i", nullptr, 0, FP(FileLevel))};
tagElementItem kFileElements[] = {E(L"", L"_i")};
tagMethodItem kSubMethods[] = {M(ZEL_METHOD, L"子状态", L"_i", nullptr, 0, FP(SubLevel))};
tagElementItem kSubElements[] = {E(L"", L"_i"), E(L"", L"_i")};

}  // namespace

ZEL_RECORD(tagTBaseTypeInfo, g_info_Counter) =
    Class(L"测试.计数器", L"系统.对象", kCounterMethods, int(std::size(kCounterMethods)), kCounterElements, 3);
ZEL_RECORD(tagTInterfaceInfo, g_info_Iface) = {ZEL_CLASS_FLAGS, W(L"测试.接口"), W(L""), W(L""), Hash(L"测试.接口"),
                                               nullptr, ZEL_KIND_INTERFACE, 1.0, -1, 0, W(L""), 0, 1, kIfaceMembers};
ZEL_RECORD(tagTBaseTypeInfo, g_info_FileLike) =
    Class(L"测试.文件", L"系统.对象", kFileMethods, 2, kFileElements, 1, kFileInterfaces, 2);
ZEL_RECORD(tagTBaseTypeInfo, g_info_SubFile) = Class(L"测试.子文件", L"测试.文件", kSubMethods, 1, kSubElements, 2);

namespace {
tagTBaseTypeInfo* kRecords[] = {&g_info_Counter, reinterpret_cast<tagTBaseTypeInfo*>(&g_info_Iface),
                                &g_info_FileLike, &g_info_SubFile};
ZelLibInfo g_lib = Library<kRecords>(L"测试", L"宿主测试用类库");
}  // namespace

ZEL_EXPORT ZelLibInfo* ZelGetLibInfo() { return &g_lib; }
ZEL_EXPORT int ZelNotifyLib(ZelLibInfo*, NOTIFY_LIB_CODE code, unsigned runtime, unsigned) {
    if (code != NOTIFY_LIB_RUNTIME) return -1;
    auto* rt = reinterpret_cast<ZelObject*>(runtime);
    int n = rt->classChain[0];
    g_rtClass = reinterpret_cast<tagTBaseTypeInfo*>(rt->classChain[1 + 2 * (n - 1)]);
    g_mmClass = Service<tagTBaseTypeInfo* (*)()>(g_rtClass, ZEL_RT_MEMORY_MANAGER)();
    Service<void (*)(void*)>(g_rtClass, ZEL_RT_REGISTER_CONST)(g_const);
    return 0;
}

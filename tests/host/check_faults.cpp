// One deliberate fault per build (FAULT = 1 ... 8) for the stricter checks of
// `ncl check`; everything else about each library is sound.
#include "fixture_records.h"

using namespace fixture;

#if FAULT == 1
#define NS L"无类"  // only an interface: no class registered
#elif FAULT == 2
#define NS L"别名"  // built as 名不符.ncl
#elif FAULT == 3
#define NS L"域外"
#elif FAULT == 4
#define NS L"类型"
#elif FAULT == 5
#define NS L"钩子"
#elif FAULT == 6
#define NS L"释放"
#elif FAULT == 7
#define NS L"重复"
#elif FAULT == 8
#define NS L"属性"
#endif

namespace {
int Get(ZelObject*) { return 0; }
void Put(ZelObject*, int) {}

tagParamItem kInt[] = {P(L"值", L"_i")};
tagParamItem kText[] = {P(L"值", L"_s")};
tagMethodItem kMethods[] = {
    M(ZEL_PROPERTY, L"值", L"_i", nullptr, 0, FP(Get)),
#if FAULT == 8
    M(ZEL_PROPERTY, L"值", L"", kText, 1, FP(Put)),  // the getter gives _i
#else
    M(ZEL_PROPERTY, L"值", L"", kInt, 1, FP(Put)),
#endif
#if FAULT == 4
    M(ZEL_METHOD, L"取", L"_str", nullptr, 0, FP(Get)),
#else
    M(ZEL_METHOD, L"取", L"_i", nullptr, 0, FP(Get)),
#endif
#if FAULT == 7
    M(ZEL_METHOD, L"取", L"_s", nullptr, 0, FP(Get)),  // differs only in its return type
#endif
};
tagElementItem kElements[] = {E(L"", L"_i")};
}  // namespace

#if FAULT == 1
ZEL_RECORD(tagTInterfaceInfo, g_info_Item) = {ZEL_CLASS_FLAGS, W(NS L".接口"), W(L""), W(L""), Hash(NS L".接口"),
                                              nullptr, ZEL_KIND_INTERFACE, 1.0, -1, 0, W(L""), 0, 1, kMethods};
#elif FAULT == 3
ZEL_RECORD(tagTBaseTypeInfo, g_info_Item) = Class(L"别处.类", L"系统.对象", kMethods, int(std::size(kMethods)), kElements, 1);
#else
ZEL_RECORD(tagTBaseTypeInfo, g_info_Item) = Class(NS L".类", L"系统.对象", kMethods, int(std::size(kMethods)), kElements, 1);
#endif

#if FAULT == 5
ZEL_EXPORT void Item_init(ZelObject*) {}
ZEL_EXPORT void Item_Fre(ZelObject*) {}
ZEL_EXPORT void Itme_Free(ZelObject*) {}  // the record's name misspelt
#elif FAULT == 6
ZEL_EXPORT void Item_Free(ZelObject*) {}
#else
ZEL_EXPORT void Item_Init(ZelObject*) {}
ZEL_EXPORT void Item_Free(ZelObject*) {}
#endif

namespace {
tagTBaseTypeInfo* kRecords[] = {reinterpret_cast<tagTBaseTypeInfo*>(&g_info_Item)};
ZelLibInfo g_lib = Library<kRecords>(NS, L"");
}  // namespace

ZEL_EXPORT ZelLibInfo* ZelGetLibInfo() { return &g_lib; }

// Libraries with a group of related descriptor faults each (FAULT = 9 ... 14),
// for `ncl check`, `ncl show`, `ncl list` and `ncl doc` on broken records.
#include "fixture_records.h"

using namespace fixture;

namespace {
int Get(ZelObject*) { return 0; }
void* kSlots[] = {FP(Get), FP(Get)};
[[maybe_unused]] tagTBaseTypeInfo* FindNothing(ZelLibInfo*, wchar_t*) { return nullptr; }
tagTBaseTypeInfo* kNoRecords[] = {nullptr};
// A library record with callbacks of its own.
[[maybe_unused]] ZelLibInfo WithCallbacks(const wchar_t* name, decltype(ZelLibInfo::enumClasses) enumerate,
                                          decltype(ZelLibInfo::findClass) find) {
    ZelLibInfo li = Library<kNoRecords>(name, L"");
    li.enumClasses = enumerate;
    li.findClass = find;
    return li;
}
}  // namespace

#if FAULT == 9
// 哈希.ncl: every kind of hash wrong once; list and array types are fine, two unknown.
namespace {
tagParamItem kParams[] = {P(L"甲", L"_i"), P(L"乙", L"_i,_s"), P(L"丙", L"@_i"), P(L"丁", L"_i,_x"), P(L"戊", L"@@_i")};
tagMethodItem kMethods[] = {M(ZEL_METHOD, L"取", L"_i", kParams, 5, FP(Get))};
tagMethodItem kMembers[] = {M(ZEL_METHOD, L"成员", L"_i", nullptr, 0, nullptr)};
tagElementItem kElements[] = {E(L"元素", L"_i")};
tagInterfaceEntry kInterfaces[] = {I(L"哈希.接口", kSlots, 1)};
}  // namespace
ZEL_RECORD(tagTInterfaceInfo, g_info_Iface) = {ZEL_CLASS_FLAGS, W(L"哈希.接口"), W(L""), W(L""), Hash(L"哈希.接口"),
                                               nullptr, ZEL_KIND_INTERFACE, 1.0, -1, 0, W(L""), 7, 1, kMembers};
ZEL_RECORD(tagTBaseTypeInfo, g_info_Item) = [] {
    tagTBaseTypeInfo r = Class(L"哈希.类", L"系统.对象", kMethods, 1, kElements, 1, kInterfaces, 1);
    r.baseNameHash += 1;
    kMethods[0].returnTypeHash += 1;
    kParams[0].nameHash += 1;
    kParams[1].typeHash += 1;
    kElements[0].nameHash += 1;
    kElements[0].typeHash += 1;
    kInterfaces[0].nameHash += 1;
    return r;
}();
#define RECORDS &g_info_Item, reinterpret_cast<tagTBaseTypeInfo*>(&g_info_Iface)

#elif FAULT == 10
// 接口.ncl: interface entries that are wrong in every way, tables of
// interfaces missing or negative, a base class that does not exist and a
// class that derives from itself.
namespace {
void* kNullSlot[] = {nullptr};
tagMethodItem kMembers[] = {M(ZEL_METHOD, L"成员", L"_i", nullptr, 0, nullptr)};
tagInterfaceEntry kInterfaces[] = {
    I(L"系统.输出流", kSlots, 2),  // the host's interface has 6 members
    I(L"接口.甲", kNullSlot, 1),
    I(L"接口.没有", kSlots, 1),
    I(L"", kSlots, 1),
    I(L"系统.输入流", nullptr, -1),
    I(L"接口.甲", nullptr, 2),
};
tagElementItem kElements[] = {E(L"", L"_i")};
}  // namespace
ZEL_RECORD(tagTInterfaceInfo, g_info_Iface) = {ZEL_CLASS_FLAGS, W(L"接口.甲"), W(L"甲接口"), W(L""), Hash(L"接口.甲"),
                                               nullptr, ZEL_KIND_INTERFACE, 1.0, -1, 0, W(L""), 0, 1, kMembers};
ZEL_RECORD(tagTBaseTypeInfo, g_info_Item) =
    Class(L"接口.类", L"系统.对象", nullptr, 0, kElements, 1, kInterfaces, int(std::size(kInterfaces)));
ZEL_RECORD(tagTBaseTypeInfo, g_info_NoTable) = Class(L"接口.无表", L"系统.对象", nullptr, 0, nullptr, 0, nullptr, 2);
ZEL_RECORD(tagTBaseTypeInfo, g_info_Negative) = Class(L"接口.负数", L"系统.对象", nullptr, 0, nullptr, 0, kInterfaces, -1);
ZEL_RECORD(tagTBaseTypeInfo, g_info_Orphan) = Class(L"接口.孤儿", L"接口.无基", nullptr, 0, nullptr, 0);
ZEL_RECORD(tagTBaseTypeInfo, g_info_Self) = Class(L"接口.自身", L"接口.自身", nullptr, 0, nullptr, 0);
#define RECORDS                                                                                              \
    &g_info_Item, reinterpret_cast<tagTBaseTypeInfo*>(&g_info_Iface), &g_info_NoTable, &g_info_Negative, \
        &g_info_Orphan, &g_info_Self

#elif FAULT == 11
// 表.ncl: method, parameter and element tables that are missing, negative or
// empty; an item bound to an export the library lacks (its record name is that
// of the date class); a record of a third kind that no g_info_ export names.
namespace {
tagParamItem kUntyped[] = {P(L"参", L"")};
tagMethodItem kMethods[] = {
    M(ZEL_METHOD, L"年", L"_i", nullptr, 0, nullptr),  // bound to DatetimeClass_GetYear
    M(ZEL_METHOD, L"负参数", L"", kUntyped, -1, FP(Get)),
    M(ZEL_METHOD, L"缺参数表", L"", nullptr, 2, FP(Get)),
    M(ZEL_METHOD, L"无返回", nullptr, nullptr, 0, FP(Get)),
    M(ZEL_METHOD, L"", L"", nullptr, 0, FP(Get)),
    M(ZEL_METHOD, L"无类型", L"", kUntyped, 1, FP(Get)),
    M(ZEL_CONSTRUCTOR | ZEL_METHOD_STATIC_BIT, L"造", L"", nullptr, 0, FP(Get)),
    M(0x100, L"无标记", L"", nullptr, 0, FP(Get)),
};
}  // namespace
ZEL_RECORD(tagTBaseTypeInfo, g_info_DatetimeClass) =
    Class(L"表.类", L"系统.对象", kMethods, int(std::size(kMethods)), nullptr, 2);
ZEL_RECORD(tagTBaseTypeInfo, g_info_Negative) = Class(L"表.负数", L"系统.对象", nullptr, -1, nullptr, 0);
ZEL_RECORD(tagTBaseTypeInfo, g_info_NoTable) = Class(L"表.无表", L"系统.对象", nullptr, 2, nullptr, 0);
ZEL_RECORD(tagTBaseTypeInfo, g_info_NoElements) = Class(L"表.无元素", L"系统.对象", nullptr, 0, nullptr, 2);
namespace {
tagTBaseTypeInfo g_odd = [] {
    tagTBaseTypeInfo r = Class(L"表.怪", L"系统.对象", nullptr, 0, nullptr, 0);
    r.kind = 3;
    return r;
}();
}  // namespace
#define RECORDS &g_info_DatetimeClass, &g_info_Negative, &g_info_NoTable, &g_info_NoElements, &g_odd

#elif FAULT == 12
// 回调.ncl: an enumerator that promises more than it hands out and hands out
// null, a finder that finds nothing, a record with no name, and a
// notification that fails.
namespace {
tagElementItem kElements[] = {E(L"", L"_i")};
}  // namespace
ZEL_RECORD(tagTBaseTypeInfo, g_info_Item) = Class(L"回调.类", L"系统.对象", nullptr, 0, kElements, 1);
ZEL_RECORD(tagTBaseTypeInfo, g_info_Unnamed) = [] {
    tagTBaseTypeInfo r = Class(L"", L"系统.对象", nullptr, 0, nullptr, 0);
    r.name = nullptr;
    return r;
}();
namespace {
int Enumerate(ZelLibInfo*, tagTBaseTypeInfo** out, int capacity) {
    tagTBaseTypeInfo* handed[] = {&g_info_Item, &g_info_Unnamed, nullptr};
    if (!out) return 4;
    int n = capacity < 3 ? capacity : 3;
    for (int i = 0; i < n; ++i) out[i] = handed[i];
    return n;
}
ZelLibInfo g_lib = WithCallbacks(L"回调", Enumerate, FindNothing);
}  // namespace
ZEL_EXPORT int ZelNotifyLib(ZelLibInfo*, NOTIFY_LIB_CODE, unsigned, unsigned) { return -1; }

#elif FAULT == 13
// 空名.ncl: a library record with an empty name and neither callback.
namespace {
ZelLibInfo g_lib = WithCallbacks(L"", nullptr, nullptr);
}  // namespace

#elif FAULT == 14
// 负数.ncl: an enumerator that answers with a negative count.
namespace {
int Negative(ZelLibInfo*, tagTBaseTypeInfo**, int) { return -1; }
ZelLibInfo g_lib = WithCallbacks(L"负数", Negative, FindNothing);
}  // namespace
#endif

#ifdef RECORDS
namespace {
tagTBaseTypeInfo* kRecords[] = {RECORDS};
ZelLibInfo g_lib = [] {
    ZelLibInfo li = Library<kRecords>(FAULT == 9 ? L"哈希" : FAULT == 10 ? L"接口" : L"表", L"");
    if (FAULT == 9) li.nameHash += 1;
    return li;
}();
}  // namespace
#endif

ZEL_EXPORT ZelLibInfo* ZelGetLibInfo() { return &g_lib; }

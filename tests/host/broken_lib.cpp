// 坏.ncl: a class library with deliberate descriptor faults, for `ncl check`.
#include "fixture_records.h"

using namespace fixture;

namespace {
int Get(ZelObject*) { return 0; }

tagParamItem kParam[] = {P(L"值", L"_i")};
tagMethodItem kMethods[] = {
    M(ZEL_PROPERTY, L"坏属性", L"_i", kParam, 1, FP(Get)),  // a parameter and a type: neither getter nor setter
    M(ZEL_METHOD, L"无函数", L"", nullptr, 0, nullptr),     // no function and no binding
    M(ZEL_METHOD, L"错哈希", L"_i", nullptr, 0, FP(Get)),   // a wrong name hash (set below)
};
}  // namespace

ZEL_RECORD(tagTBaseTypeInfo, g_info_Broken) = [] {
    tagTBaseTypeInfo r = Class(L"坏.类", L"系统.对象", kMethods, 3, nullptr, -1);  // a negative element count
    r.nameHash += 1;
    kMethods[2].nameHash = 12345;
    return r;
}();
ZEL_EXPORT int Broken_Init(ZelObject*) { return 0; }

namespace {
tagTBaseTypeInfo* kRecords[] = {&g_info_Broken};
ZelLibInfo g_lib = Library<kRecords>(L"坏", L"");
}  // namespace

ZEL_EXPORT ZelLibInfo* ZelGetLibInfo() { return &g_lib; }

// 工具.整数类: an integer boxed in an object. The value is the state word
// itself, so there is nothing to allocate or release.
#include <cstdint>

#include <zel/class_table.h>
#include <zel/values.h>

ZEL_EXPORT void IntClass_Init(ZelObject* obj) { SetDataItemData(obj, 1, 0, nullptr); }

ZEL_EXPORT void IntClass_Free(ZelObject*) {}

ZEL_EXPORT int IntClass_GetValue(ZelObject* obj) {
    return int(reinterpret_cast<intptr_t>(GetDataItemData(obj, 1, 0)));
}

ZEL_EXPORT void IntClass_SetValue(ZelObject* obj, int value) {
    SetDataItemData(obj, 1, 0, reinterpret_cast<void*>(intptr_t(value)));
}

using namespace zel;

static tagParamItem kValue[] = {Param(L"值", L"_i")};
static tagMethodItem kMethods[] = {
    Getter(L"整数", L"_i", IntClass_GetValue),
    Setter(L"整数", kValue, IntClass_SetValue),
};
static tagElementItem kElements[] = {HiddenState()};
ZEL_RECORD(tagTBaseTypeInfo, g_info_IntClass) = ClassRecord(L"工具.整数类", L"整数型的包装类", kMethods, kElements);
ZEL_REGISTER_CLASS(g_info_IntClass);

// 工具.逻辑类: a logical value boxed in an object. The cell keeps the word it
// was given; non-zero values are not folded to 1.
#include <new>

#include "runtime/class_table.h"
#include "runtime/values.h"

ZEL_EXPORT int* _BoolClass_GetData(ZelObject* obj) { return static_cast<int*>(GetDataItemData(obj, 1, 0)); }

// A fresh cell reads false rather than leftover memory.
ZEL_EXPORT void BoolClass_Init(ZelObject* obj) { SetDataItemData(obj, 1, 0, new (std::nothrow) int()); }

ZEL_EXPORT void BoolClass_Free(ZelObject* obj) {
    delete _BoolClass_GetData(obj);
    SetDataItemData(obj, 1, 0, nullptr);
}

ZEL_EXPORT int BoolClass_GetValue(ZelObject* obj) {
    int* cell = _BoolClass_GetData(obj);
    return cell ? *cell : 0;
}

ZEL_EXPORT void BoolClass_SetValue(ZelObject* obj, int value) {
    if (int* cell = _BoolClass_GetData(obj)) *cell = value;
}

using namespace zel;

static tagParamItem kValue[] = {Param(L"值", L"_b")};
static tagMethodItem kMethods[] = {
    Getter(L"逻辑", L"_b", BoolClass_GetValue),
    Setter(L"逻辑", kValue, BoolClass_SetValue),
};
static tagElementItem kElements[] = {HiddenState()};
ZEL_RECORD(tagTBaseTypeInfo, g_info_BoolClass) = ClassRecord(L"工具.逻辑类", L"逻辑型的包装类", kMethods, kElements);
ZEL_REGISTER_CLASS(g_info_BoolClass);

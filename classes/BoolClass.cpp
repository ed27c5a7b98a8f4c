// 工具.逻辑类: a logical value boxed in an object. The cell keeps the word it
// was given; non-zero values are not folded to 1.
#include "classes/value_object.h"

ZEL_EXPORT int* _BoolClass_GetData(ZelObject* obj) { return zel::StateOf<int>(obj); }

ZEL_EXPORT void BoolClass_Init(ZelObject* obj) { zel::NewCell<int>(obj); }
ZEL_EXPORT void BoolClass_Free(ZelObject* obj) { zel::DeleteState<int>(obj); }

ZEL_EXPORT int BoolClass_GetValue(ZelObject* obj) { return zel::CellValue<int>(obj); }
ZEL_EXPORT void BoolClass_SetValue(ZelObject* obj, int value) { zel::SetCellValue(obj, value); }

using namespace zel;

static tagParamItem kValue[] = {Param(L"值", L"_b")};
static tagMethodItem kMethods[] = {
    Getter(L"逻辑", L"_b", BoolClass_GetValue),
    Setter(L"逻辑", kValue, BoolClass_SetValue),
};
static tagElementItem kElements[] = {HiddenState()};
ZEL_RECORD(tagTBaseTypeInfo, g_info_BoolClass) = ClassRecord(L"工具.逻辑类", L"逻辑型的包装类", kMethods, kElements);
ZEL_REGISTER_CLASS(g_info_BoolClass);

// 工具.双精度类: a double boxed in an object, kept in a cell of its own
// because the state word is too narrow for it.
#include "classes/value_object.h"

ZEL_EXPORT void DoubleClass_Init(ZelObject* obj) { zel::NewCell<double>(obj); }
ZEL_EXPORT void DoubleClass_Free(ZelObject* obj) { zel::DeleteState<double>(obj); }

ZEL_EXPORT double DoubleClass_GetValue(ZelObject* obj) { return zel::CellValue<double>(obj); }
ZEL_EXPORT void DoubleClass_SetValue(ZelObject* obj, double value) { zel::SetCellValue(obj, value); }

using namespace zel;

static tagParamItem kValue[] = {Param(L"值", L"_db")};
static tagMethodItem kMethods[] = {
    Getter(L"小数", L"_db", DoubleClass_GetValue),
    Setter(L"小数", kValue, DoubleClass_SetValue),
};
static tagElementItem kElements[] = {HiddenState()};
ZEL_RECORD(tagTBaseTypeInfo, g_info_DoubleClass) =
    ClassRecord(L"工具.双精度类", L"双精度型的包装类", kMethods, kElements);
ZEL_REGISTER_CLASS(g_info_DoubleClass);

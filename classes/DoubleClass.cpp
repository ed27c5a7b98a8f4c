// 工具.双精度类: a double boxed in an object, kept in a cell of its own
// because the state word is too narrow for it.
#include <new>

#include "runtime/class_table.h"
#include "runtime/values.h"

static double* Cell(ZelObject* obj) { return static_cast<double*>(GetDataItemData(obj, 1, 0)); }

// A fresh cell reads 0.0 rather than leftover memory.
ZEL_EXPORT void DoubleClass_Init(ZelObject* obj) { SetDataItemData(obj, 1, 0, new (std::nothrow) double()); }

ZEL_EXPORT void DoubleClass_Free(ZelObject* obj) {
    delete Cell(obj);
    SetDataItemData(obj, 1, 0, nullptr);
}

ZEL_EXPORT double DoubleClass_GetValue(ZelObject* obj) {
    double* cell = Cell(obj);
    return cell ? *cell : 0.0;
}

ZEL_EXPORT void DoubleClass_SetValue(ZelObject* obj, double value) {
    if (double* cell = Cell(obj)) *cell = value;
}

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

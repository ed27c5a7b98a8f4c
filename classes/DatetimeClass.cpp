// 工具.日期时间类: a calendar date and time of day as six integer fields,
// the object's data words 0-5 (年 月 日 时 分 秒). Nothing checks or
// normalises them: a month of 13 is kept as 13.
#include <cstdint>
#include <ctime>
#include <cwchar>

#include <zel/class_table.h>
#include <zel/services.h>
#include <zel/values.h>

enum DatetimeField { kYear, kMonth, kDay, kHour, kMinute, kSecond };

static int Field(ZelObject* obj, DatetimeField field) {
    return int(reinterpret_cast<intptr_t>(GetDataItemData(obj, 1, field)));
}
static void SetField(ZelObject* obj, DatetimeField field, int value) {
    SetDataItemData(obj, 1, field, reinterpret_cast<void*>(intptr_t(value)));
}

// A new object holds the local time of its creation.
ZEL_EXPORT void DatetimeClass_Init(ZelObject* obj) {
    std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    SetField(obj, kYear, local.tm_year + 1900);
    SetField(obj, kMonth, local.tm_mon + 1);
    SetField(obj, kDay, local.tm_mday);
    SetField(obj, kHour, local.tm_hour);
    SetField(obj, kMinute, local.tm_min);
    SetField(obj, kSecond, local.tm_sec);
}

ZEL_EXPORT int DatetimeClass_GetYear(ZelObject* obj) { return Field(obj, kYear); }
ZEL_EXPORT int DatetimeClass_GetMonth(ZelObject* obj) { return Field(obj, kMonth); }
ZEL_EXPORT int DatetimeClass_GetDay(ZelObject* obj) { return Field(obj, kDay); }
ZEL_EXPORT int DatetimeClass_GetHour(ZelObject* obj) { return Field(obj, kHour); }
ZEL_EXPORT int DatetimeClass_GetMinute(ZelObject* obj) { return Field(obj, kMinute); }
ZEL_EXPORT int DatetimeClass_GetSecond(ZelObject* obj) { return Field(obj, kSecond); }
ZEL_EXPORT void DatetimeClass_SetYear(ZelObject* obj, int value) { SetField(obj, kYear, value); }
ZEL_EXPORT void DatetimeClass_SetMonth(ZelObject* obj, int value) { SetField(obj, kMonth, value); }
ZEL_EXPORT void DatetimeClass_SetDay(ZelObject* obj, int value) { SetField(obj, kDay, value); }
ZEL_EXPORT void DatetimeClass_SetHour(ZelObject* obj, int value) { SetField(obj, kHour, value); }
ZEL_EXPORT void DatetimeClass_SetMinute(ZelObject* obj, int value) { SetField(obj, kMinute, value); }
ZEL_EXPORT void DatetimeClass_SetSecond(ZelObject* obj, int value) { SetField(obj, kSecond, value); }

// The date part only, unpadded: 2024-3-5.
ZEL_EXPORT unsigned char* DatetimeClass_ToString(ZelObject* obj) {
    wchar_t buffer[1024] = {};
    std::swprintf(buffer, 1024, L"%d-%d-%d", Field(obj, kYear), Field(obj, kMonth), Field(obj, kDay));
    return zel::NewText(buffer);
}

using namespace zel;

// The items carry no functions: the runtime binds them, in this order, to
// DatetimeClass_GetYear ... DatetimeClass_SetSecond and DatetimeClass_ToString.
static tagParamItem kYearValue[] = {Param(L"年", L"_i")};
static tagParamItem kMonthValue[] = {Param(L"月", L"_i")};
static tagParamItem kDayValue[] = {Param(L"日", L"_i")};
static tagParamItem kHourValue[] = {Param(L"时", L"_i")};
static tagParamItem kMinuteValue[] = {Param(L"分", L"_i")};
static tagParamItem kSecondValue[] = {Param(L"秒", L"_i")};
static tagMethodItem kMethods[] = {
    Getter(L"年", L"_i", nullptr),
    Getter(L"月", L"_i", nullptr, L"1 - 12"),
    Getter(L"日", L"_i", nullptr, L"1 - 31"),
    Getter(L"时", L"_i", nullptr, L"0 - 23"),
    Getter(L"分", L"_i", nullptr, L"0 - 59"),
    Getter(L"秒", L"_i", nullptr, L"0 - 59"),
    Setter(L"年", kYearValue, nullptr),
    Setter(L"月", kMonthValue, nullptr, L"1 - 12"),
    Setter(L"日", kDayValue, nullptr, L"1 - 31"),
    Setter(L"时", kHourValue, nullptr, L"0 - 23"),
    Setter(L"分", kMinuteValue, nullptr, L"0 - 59"),
    Setter(L"秒", kSecondValue, nullptr, L"0 - 59"),
    Method(L"到文本", L"_s", nullptr),
};
static tagElementItem kElements[] = {
    Element(L"年", L"_i"),
    Element(L"月", L"_i", 0, L"1 - 12"),
    Element(L"日", L"_i", 0, L"1 - 31"),
    Element(L"时", L"_i", 0, L"0 - 23"),
    Element(L"分", L"_i", 0, L"0 - 59"),
    Element(L"秒", L"_i", 0, L"0 - 59"),
};
ZEL_RECORD(tagTBaseTypeInfo, g_info_DatetimeClass) =
    ClassRecord(L"工具.日期时间类", L"日期时间型的包装类", kMethods, kElements);
ZEL_REGISTER_CLASS(g_info_DatetimeClass);

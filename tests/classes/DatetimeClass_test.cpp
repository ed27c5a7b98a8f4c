#include <gtest/gtest.h>

#include <string>

#include "common/test_object.h"
#include "runtime/memory.h"
#include "runtime/values.h"

extern "C" {
extern tagTBaseTypeInfo g_info_DatetimeClass;
void DatetimeClass_Init(ZelObject*);
int DatetimeClass_GetYear(ZelObject*);
int DatetimeClass_GetMonth(ZelObject*);
int DatetimeClass_GetDay(ZelObject*);
int DatetimeClass_GetHour(ZelObject*);
int DatetimeClass_GetSecond(ZelObject*);
void DatetimeClass_SetYear(ZelObject*, int);
void DatetimeClass_SetMonth(ZelObject*, int);
void DatetimeClass_SetDay(ZelObject*, int);
void DatetimeClass_SetMinute(ZelObject*, int);
unsigned char* DatetimeClass_ToString(ZelObject*);
}

namespace {
std::wstring Take(unsigned char* text) {
    std::wstring s(zel::TextChars(text));
    zel_free(text);
    return s;
}
}  // namespace

TEST(DatetimeClass, NewObjectHoldsTheLocalTime) {
    TestObject t(&g_info_DatetimeClass, DatetimeClass_Init);
    EXPECT_GE(DatetimeClass_GetYear(t), 2000);
    EXPECT_GE(DatetimeClass_GetMonth(t), 1);
    EXPECT_LE(DatetimeClass_GetMonth(t), 12);
    EXPECT_GE(DatetimeClass_GetDay(t), 1);
    EXPECT_LE(DatetimeClass_GetHour(t), 23);
    EXPECT_LE(DatetimeClass_GetSecond(t), 60);
}

TEST(DatetimeClass, FieldsAreDataWordsKeptUnchecked) {
    TestObject t(&g_info_DatetimeClass, DatetimeClass_Init);
    DatetimeClass_SetYear(t, 5);
    DatetimeClass_SetMonth(t, 1);
    DatetimeClass_SetDay(t, 2);
    EXPECT_EQ(Take(DatetimeClass_ToString(t)), L"5-1-2");
    DatetimeClass_SetMonth(t, 13);
    DatetimeClass_SetDay(t, -4);
    EXPECT_EQ(Take(DatetimeClass_ToString(t)), L"5-13--4");
    DatetimeClass_SetMinute(t, 77);
    EXPECT_EQ(t.word(1, 4), reinterpret_cast<void*>(77));
}

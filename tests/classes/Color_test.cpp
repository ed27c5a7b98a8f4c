#include <gtest/gtest.h>

#include <string>

#include "common/test_object.h"
#include "runtime/memory.h"
#include "runtime/values.h"

extern "C" {
extern tagTBaseTypeInfo g_info_Color;
void Color_Init(ZelObject*);
void Color_Free(ZelObject*);
void* _Color_GetData(ZelObject*);
void Color_SetRGB(ZelObject*, int, int, int);
int Color_GetRed(ZelObject*);
void Color_SetRed(ZelObject*, int);
int Color_GetGreen(ZelObject*);
void Color_SetGreen(ZelObject*, int);
int Color_GetBlue(ZelObject*);
void Color_SetBlue(ZelObject*, int);
int Color_SaveToStream(ZelObject*, ZelObject*);
int Color_LoadFromStream(ZelObject*, ZelObject*);
unsigned char* Color_ToText(ZelObject*);
void Color_FromText(ZelObject*, unsigned char*);
int Color_Compare(ZelObject*, ZelObject*);
}

namespace {
std::wstring TakeText(unsigned char* text) {
    std::wstring s = zel::TextChars(text);
    zel_free(text);
    return s;
}
void FromText(ZelObject* obj, const wchar_t* s) {
    unsigned char* text = MCloneZelText(const_cast<wchar_t*>(s));
    Color_FromText(obj, text);
    zel_free(text);
}
struct Color : TestObject {
    Color(int r, int g, int b) : TestObject(&g_info_Color, Color_Init, Color_Free) { Color_SetRGB(get(), r, g, b); }
};
}  // namespace

TEST(Color, NewColourIsBlackAndSettersKeepTheLowByte) {
    TestObject t(&g_info_Color, Color_Init, Color_Free);
    EXPECT_EQ(TakeText(Color_ToText(t)), L"0, 0, 0");
    Color_SetRed(t, 300);
    Color_SetGreen(t, -1);
    Color_SetBlue(t, 256 + 7);
    EXPECT_EQ(Color_GetRed(t), 44);
    EXPECT_EQ(Color_GetGreen(t), 255);
    EXPECT_EQ(Color_GetBlue(t), 7);
    Color_SetRGB(t, 511, 1, 2);
    EXPECT_EQ(TakeText(Color_ToText(t)), L"255, 1, 2");
}

TEST(Color, TextRoundTripAndShortTexts) {
    Color c(12, 34, 56);
    Color d(0, 0, 0);
    unsigned char* text = Color_ToText(c);
    Color_FromText(d, text);
    zel_free(text);
    EXPECT_EQ(Color_Compare(c, d), 0);

    FromText(d, L" 300 ,  -2,7 ");  // blanks trimmed, low bytes kept
    EXPECT_EQ(TakeText(Color_ToText(d)), L"44, 254, 7");
    FromText(d, L"9");  // missing items keep their components
    EXPECT_EQ(TakeText(Color_ToText(d)), L"9, 254, 7");
    Color_FromText(d, nullptr);
    EXPECT_EQ(TakeText(Color_ToText(d)), L"9, 254, 7");
}

TEST(Color, CompareWeighsBlueMost) {
    Color red(255, 0, 0), blue(0, 0, 255), green(0, 255, 0), red2(255, 0, 0);
    EXPECT_EQ(Color_Compare(red, blue), -1);
    EXPECT_EQ(Color_Compare(blue, red), 1);
    EXPECT_EQ(Color_Compare(red, red2), 0);
    EXPECT_EQ(Color_Compare(red, green), -1);
    EXPECT_EQ(Color_Compare(green, blue), -1);
}

TEST(Color, WithoutRecordEverythingIsNeutral) {
    TestObject t(&g_info_Color, Color_Init, Color_Free);
    Color other(1, 2, 3);
    EXPECT_EQ(Color_Compare(other, nullptr), 0);
    Color_Free(t);
    EXPECT_EQ(_Color_GetData(t), nullptr);
    Color_SetRed(t, 5);
    Color_SetRGB(t, 1, 2, 3);
    FromText(t, L"1, 2, 3");
    EXPECT_EQ(Color_GetRed(t), 0);
    EXPECT_EQ(Color_Compare(t, other), 0);
    EXPECT_EQ(Color_ToText(t), zel::EmptyText());
    EXPECT_EQ(Color_SaveToStream(t, nullptr), 1);
    EXPECT_EQ(Color_LoadFromStream(t, nullptr), 1);
}

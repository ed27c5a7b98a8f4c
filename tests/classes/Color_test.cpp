#include <gtest/gtest.h>

#include <string>

#include "common/test_object.h"
#include "runtime/memory.h"
#include "runtime/values.h"

extern "C" {
extern tagTBaseTypeInfo g_info_Color;
void Color_Init(ZelObject*);
void Color_Free(ZelObject*);
void Color_SetRGB(ZelObject*, int, int, int);
int Color_GetRed(ZelObject*);
void Color_SetRed(ZelObject*, int);
unsigned char* Color_ToText(ZelObject*);
void Color_FromText(ZelObject*, unsigned char*);
int Color_Compare(ZelObject*, ZelObject*);
}

namespace {
struct Color : TestObject {
    Color(int r = 0, int g = 0, int b = 0) : TestObject(&g_info_Color, Color_Init, Color_Free) {
        Color_SetRGB(get(), r, g, b);
    }
    std::wstring Text() {
        unsigned char* text = Color_ToText(get());
        std::wstring s = zel::TextChars(text);
        zel_free(text);
        return s;
    }
    void FromText(const wchar_t* s) {
        unsigned char* text = MCloneZelText(const_cast<wchar_t*>(s));
        Color_FromText(get(), text);
        zel_free(text);
    }
};
}  // namespace

TEST(Color, KeepsLowBytesAndReadsBackItsText) {
    Color c;
    EXPECT_EQ(c.Text(), L"0, 0, 0");
    Color_SetRed(c, 300);
    EXPECT_EQ(Color_GetRed(c), 44);
    Color_SetRGB(c, 511, -1, 7);
    EXPECT_EQ(c.Text(), L"255, 255, 7");
    Color d(1, 1, 1);
    d.FromText(c.Text().c_str());
    EXPECT_EQ(Color_Compare(c, d), 0);
    d.FromText(L" 300 ,  -2");  // blanks trimmed; blue has no item and stays
    EXPECT_EQ(d.Text(), L"44, 254, 7");
}

TEST(Color, CompareWeighsBlueMost) {
    Color red(255, 0, 0), green(0, 255, 0), blue(0, 0, 255), red2(255, 0, 0);
    EXPECT_EQ(Color_Compare(red, blue), -1);
    EXPECT_EQ(Color_Compare(blue, red), 1);
    EXPECT_EQ(Color_Compare(green, blue), -1);
    EXPECT_EQ(Color_Compare(red, red2), 0);
}

TEST(Color, WithoutRecordEverythingIsNeutral) {
    Color c, other(1, 2, 3);
    EXPECT_EQ(Color_Compare(other, nullptr), 0);
    Color_Free(c);
    Color_SetRGB(c, 1, 2, 3);
    c.FromText(L"1, 2, 3");
    EXPECT_EQ(Color_GetRed(c), 0);
    EXPECT_EQ(Color_Compare(c, other), 0);
    EXPECT_EQ(Color_ToText(c), zel::EmptyText());
}

#include <gtest/gtest.h>

#include <string>

#include "classes/geometry.h"
#include "common/test_object.h"
#include "runtime/memory.h"
#include "runtime/values.h"

extern "C" {
extern tagTBaseTypeInfo g_info_Size;
void Size_Init(ZelObject*);
void Size_Free(ZelObject*);
int Size_GetWidth(ZelObject*);
void Size_SetWidth(ZelObject*, int);
int Size_GetHeight(ZelObject*);
void Size_SetHeight(ZelObject*, int);
void Size_Set(ZelObject*, int, int);
int Size_IsEmpty(ZelObject*);
int Size_Equals(ZelObject*, ZelObject*);
void Size_Inflate(ZelObject*, int, int);
unsigned char* Size_ToText(ZelObject*);
void Size_FromText(ZelObject*, unsigned char*);
}

namespace {
struct Size : TestObject {
    Size(int w = 0, int h = 0) : TestObject(&g_info_Size, Size_Init, Size_Free) { Size_Set(get(), w, h); }
};
std::wstring ToText(ZelObject* obj) {
    unsigned char* text = Size_ToText(obj);
    std::wstring s = zel::TextChars(text);
    if (text != zel::EmptyText()) zel_free(text);
    return s;
}
void FromText(ZelObject* obj, const wchar_t* s) {
    unsigned char* text = MCloneZelText(const_cast<wchar_t*>(s));
    Size_FromText(obj, text);
    zel_free(text);
}
}  // namespace

TEST(Size, EmptyUnlessBothArePositive) {
    Size s;
    EXPECT_TRUE(Size_IsEmpty(s));
    Size_SetWidth(s, 3);
    EXPECT_TRUE(Size_IsEmpty(s));
    Size_SetHeight(s, 1);
    EXPECT_FALSE(Size_IsEmpty(s));
    Size_Set(s, 3, -1);
    EXPECT_TRUE(Size_IsEmpty(s));
    Size_Inflate(s, -1, 5);
    EXPECT_EQ(Size_GetWidth(s), 2);
    EXPECT_EQ(Size_GetHeight(s), 4);
    EXPECT_FALSE(Size_IsEmpty(s));
}

TEST(Size, EqualityAndText) {
    Size a(4, 5), b(4, 5), c(5, 4);
    EXPECT_TRUE(Size_Equals(a, b));
    EXPECT_FALSE(Size_Equals(a, c));
    EXPECT_FALSE(Size_Equals(a, nullptr));
    EXPECT_EQ(ToText(a), L"4, 5");
    FromText(c, L" -7 , 8");
    EXPECT_EQ(ToText(c), L"-7, 8");
    FromText(c, L"9");  // the height is kept
    EXPECT_EQ(ToText(c), L"9, 8");
    Size_FromText(c, nullptr);
    EXPECT_EQ(ToText(c), L"9, 8");
}

TEST(Size, WithoutStateNothingHappens) {
    Size s(1, 1);
    Size_Free(s);
    EXPECT_EQ(_Size_GetData(s), nullptr);
    Size_Set(s, 2, 2);
    Size_Inflate(s, 1, 1);
    FromText(s, L"3, 3");
    EXPECT_EQ(Size_GetWidth(s), 0);
    EXPECT_TRUE(Size_IsEmpty(s));
    EXPECT_FALSE(Size_Equals(s, s));
    EXPECT_EQ(ToText(s), L"");
}

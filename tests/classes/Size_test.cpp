#include <gtest/gtest.h>

#include "classes/geometry.h"
#include "common/test_object.h"
#include "runtime/memory.h"
#include "runtime/values.h"

extern "C" {
extern tagTBaseTypeInfo g_info_Size;
void Size_Init(ZelObject*);
void Size_Free(ZelObject*);
void Size_Set(ZelObject*, int, int);
int Size_IsEmpty(ZelObject*);
int Size_Equals(ZelObject*, ZelObject*);
void Size_FromText(ZelObject*, unsigned char*);
}

namespace {
struct Size : TestObject {
    Size(int w = 0, int h = 0) : TestObject(&g_info_Size, Size_Init, Size_Free) { Size_Set(get(), w, h); }
};
}  // namespace

TEST(Size, EmptyUnlessBothArePositive) {
    EXPECT_TRUE(Size_IsEmpty(Size()));
    EXPECT_TRUE(Size_IsEmpty(Size(3, 0)));
    EXPECT_TRUE(Size_IsEmpty(Size(-1, 3)));
    EXPECT_FALSE(Size_IsEmpty(Size(1, 1)));
}

TEST(Size, ShortTextKeepsTheHeightAndNoStateIsNeutral) {
    Size a(4, 5), b(4, 5);
    EXPECT_TRUE(Size_Equals(a, b));
    unsigned char* text = MCloneZelText(const_cast<wchar_t*>(L" 9 "));
    Size_FromText(a, text);
    EXPECT_EQ(_Size_GetData(a)->width, 9);
    EXPECT_EQ(_Size_GetData(a)->height, 5);
    Size_Free(b);
    Size_FromText(b, text);
    zel_free(text);
    EXPECT_TRUE(Size_IsEmpty(b));
    EXPECT_FALSE(Size_Equals(a, b));
    EXPECT_FALSE(Size_Equals(a, nullptr));
}

#include <gtest/gtest.h>

#include "common/test_object.h"

extern "C" {
extern tagTBaseTypeInfo g_info_IntClass;
void IntClass_Init(ZelObject*);
void IntClass_Free(ZelObject*);
int IntClass_GetValue(ZelObject*);
void IntClass_SetValue(ZelObject*, int);
}

TEST(IntClass, StartsAtZeroAndKeepsTheFullRange) {
    TestObject t(&g_info_IntClass, IntClass_Init, IntClass_Free);
    EXPECT_EQ(IntClass_GetValue(t), 0);
    for (int v : {-1, 2147483647, -2147483647 - 1, 42}) {
        IntClass_SetValue(t, v);
        EXPECT_EQ(IntClass_GetValue(t), v);
    }
}

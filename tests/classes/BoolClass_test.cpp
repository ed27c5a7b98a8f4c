#include <gtest/gtest.h>

#include "common/test_object.h"

extern "C" {
extern tagTBaseTypeInfo g_info_BoolClass;
void BoolClass_Init(ZelObject*);
void BoolClass_Free(ZelObject*);
int* _BoolClass_GetData(ZelObject*);
int BoolClass_GetValue(ZelObject*);
void BoolClass_SetValue(ZelObject*, int);
}

TEST(BoolClass, StoresTheWordUnfolded) {
    TestObject t(&g_info_BoolClass, BoolClass_Init, BoolClass_Free);
    EXPECT_EQ(BoolClass_GetValue(t), 0);
    BoolClass_SetValue(t, 2);
    EXPECT_EQ(BoolClass_GetValue(t), 2);
    EXPECT_EQ(*_BoolClass_GetData(t), 2);
    BoolClass_SetValue(t, 0);
    EXPECT_EQ(BoolClass_GetValue(t), 0);
    BoolClass_Free(t);
    EXPECT_EQ(_BoolClass_GetData(t), nullptr);
}

#include <gtest/gtest.h>

#include <limits>

#include "common/test_object.h"

extern "C" {
extern tagTBaseTypeInfo g_info_DoubleClass;
void DoubleClass_Init(ZelObject*);
void DoubleClass_Free(ZelObject*);
double DoubleClass_GetValue(ZelObject*);
void DoubleClass_SetValue(ZelObject*, double);
}

TEST(DoubleClass, KeepsTheDoubleExactlyAndFreesItsCell) {
    TestObject t(&g_info_DoubleClass, DoubleClass_Init, DoubleClass_Free);
    EXPECT_EQ(DoubleClass_GetValue(t), 0.0);
    for (double v : {0.1, -1e300, std::numeric_limits<double>::denorm_min()}) {
        DoubleClass_SetValue(t, v);
        EXPECT_EQ(DoubleClass_GetValue(t), v);
    }
    DoubleClass_Free(t);
    EXPECT_EQ(t.word(1, 0), nullptr);
    EXPECT_EQ(DoubleClass_GetValue(t), 0.0);  // no cell: neutral, no crash
    DoubleClass_SetValue(t, 1.0);
}

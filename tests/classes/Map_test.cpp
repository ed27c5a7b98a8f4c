// Keys, values and their references are covered end to end by
// tests/scripts/containers_map.zs under the host's audit.
#include <gtest/gtest.h>

#include "common/test_object.h"
#include "runtime/class_table.h"

ZEL_EXPORT tagTBaseTypeInfo g_info_Map;
ZEL_EXPORT int Map_GetValue(ZelObject*, ZelObject*, ZelObject*);
ZEL_EXPORT void Map_SetValue(ZelObject*, ZelObject*, ZelObject*);
ZEL_EXPORT int Map_HasKey(ZelObject*, ZelObject*);
ZEL_EXPORT int Map_GetCount(ZelObject*);

TEST(Map, AnObjectWithoutATableGivesNeutralResults) {
    TestObject bare(&g_info_Map), key(&g_info_Map);
    Map_SetValue(bare, key, key);
    EXPECT_EQ(Map_GetValue(bare, key, key), 0);
    EXPECT_EQ(Map_HasKey(bare, key), 0);
    EXPECT_EQ(Map_GetCount(bare), 0);
}

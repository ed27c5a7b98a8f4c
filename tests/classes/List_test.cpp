// Positions and the release of dropped items are covered end to end by
// tests/scripts/containers_list.zs under the host's audit; these pin what a
// script cannot see.
#include <gtest/gtest.h>

#include "common/test_object.h"
#include "counting_runtime.h"
#include "runtime/class_table.h"

ZEL_EXPORT tagTBaseTypeInfo g_info_List;
ZEL_EXPORT void List_Init(ZelObject*);
ZEL_EXPORT void List_Free(ZelObject*);
ZEL_EXPORT void List_AddItem(ZelObject*, ZelObject*, int);
ZEL_EXPORT ZelObject* List_GetItem(ZelObject*, int);
ZEL_EXPORT void List_SetItem(ZelObject*, int, ZelObject*);
ZEL_EXPORT int List_IsEmpty(ZelObject*);
ZEL_EXPORT int List_GetCount(ZelObject*);
ZEL_EXPORT int List_LoadFromStream(ZelObject*, ZelObject*);

namespace {

tagElementItem kElements[] = {zel::HiddenState()};
tagTBaseTypeInfo kItem = zel::ClassRecord(L"测试.项目", L"", nullptr, kElements);

TEST(List, ReplacingKeepsTheReferenceOnTheReplacedItem) {
    CountingRuntime runtime;
    TestObject replaced(&kItem), item(&kItem);
    {
        TestObject list(&g_info_List, List_Init, List_Free);
        List_AddItem(list, replaced, 1);
        List_SetItem(list, 0, item);
        EXPECT_EQ(List_GetItem(list, 0), item.get());
        EXPECT_EQ(runtime.Net(item), 1);
    }
    EXPECT_EQ(runtime.Net(item), 0);
    EXPECT_EQ(runtime.Net(replaced), 1) << "kept on purpose: the list never drops it";
}

TEST(List, AnObjectWithoutAListGivesNeutralResults) {
    TestObject item(&kItem), bare(&g_info_List);
    List_AddItem(bare, item, 1);
    List_SetItem(bare, 0, item);
    EXPECT_EQ(List_GetItem(bare, 0), nullptr);
    EXPECT_EQ(List_GetCount(bare), -1);
    EXPECT_EQ(List_IsEmpty(bare), 0);
    EXPECT_EQ(List_LoadFromStream(bare, nullptr), 1);
}

}  // namespace

#include <gtest/gtest.h>

#include <list>
#include <vector>

#include "common/test_object.h"
#include "counting_runtime.h"
#include "runtime/class_table.h"

ZEL_EXPORT tagTBaseTypeInfo g_info_List;
ZEL_EXPORT void List_Init(ZelObject*);
ZEL_EXPORT void List_Free(ZelObject*);
ZEL_EXPORT void List_AddItem(ZelObject*, ZelObject*, int);
ZEL_EXPORT void List_InsertItem(ZelObject*, int, ZelObject*);
ZEL_EXPORT void List_RemoveItem(ZelObject*, int);
ZEL_EXPORT ZelObject* List_GetItem(ZelObject*, int);
ZEL_EXPORT void List_SetItem(ZelObject*, int, ZelObject*);
ZEL_EXPORT void List_Clear(ZelObject*);
ZEL_EXPORT int List_IsEmpty(ZelObject*);
ZEL_EXPORT int List_GetCount(ZelObject*);
ZEL_EXPORT int List_SaveToStream(ZelObject*, ZelObject*);
ZEL_EXPORT int List_LoadFromStream(ZelObject*, ZelObject*);

namespace {

tagElementItem kElements[] = {zel::HiddenState()};
tagTBaseTypeInfo kItem = zel::ClassRecord(L"测试.项目", L"", nullptr, kElements);

class ListTest : public ::testing::Test {
protected:
    std::vector<ZelObject*> Items(ZelObject* list) {
        std::vector<ZelObject*> out;
        for (int i = 0; i < List_GetCount(list); ++i) out.push_back(List_GetItem(list, i));
        return out;
    }
    CountingRuntime runtime;
    TestObject a{&kItem}, b{&kItem}, c{&kItem}, x{&kItem};
};

TEST_F(ListTest, NewListIsEmpty) {
    TestObject list(&g_info_List, List_Init, List_Free);
    EXPECT_EQ(List_GetCount(list), 0);
    EXPECT_EQ(List_IsEmpty(list), 1);
    EXPECT_EQ(List_GetItem(list, 0), nullptr);
}

TEST_F(ListTest, PositionsAreCheckedAgainstTheWalkedCount) {
    TestObject list(&g_info_List, List_Init, List_Free);
    List_AddItem(list, a, 1);
    List_AddItem(list, b, 0);
    EXPECT_EQ(Items(list), (std::vector<ZelObject*>{b, a}));
    List_InsertItem(list, 2, c);
    List_InsertItem(list, 4, x);
    List_InsertItem(list, -1, x);
    List_InsertItem(list, 1, x);
    EXPECT_EQ(Items(list), (std::vector<ZelObject*>{b, x, a, c}));
    List_RemoveItem(list, 4);
    List_RemoveItem(list, -1);
    List_RemoveItem(list, 1);
    EXPECT_EQ(Items(list), (std::vector<ZelObject*>{b, a, c}));
    EXPECT_EQ(List_GetItem(list, 3), nullptr);
    EXPECT_EQ(List_GetItem(list, -1), nullptr);
    List_SetItem(list, 4, x);
    List_SetItem(list, 3, x);
    List_SetItem(list, 0, c);
    EXPECT_EQ(Items(list), (std::vector<ZelObject*>{c, a, c, x}));
}

TEST_F(ListTest, TheListHoldsOneReferencePerStoredItem) {
    {
        TestObject list(&g_info_List, List_Init, List_Free);
        List_AddItem(list, a, 1);
        List_InsertItem(list, 0, b);
        List_AddItem(list, a, 0);
        EXPECT_EQ(runtime.Net(a), 2);
        EXPECT_EQ(List_GetItem(list, 0), a.get());
        EXPECT_EQ(runtime.Net(a), 2) << "reading lends the item";
        List_RemoveItem(list, 0);
        EXPECT_EQ(runtime.Net(a), 1);
        // Replacing keeps the reference on the replaced item, as designed.
        List_SetItem(list, 0, c);
        EXPECT_EQ(runtime.Net(b), 1);
        EXPECT_EQ(runtime.Net(c), 1);
        List_SetItem(list, 2, c);
        EXPECT_EQ(runtime.Net(c), 2);
        List_Clear(list);
        EXPECT_EQ(runtime.Net(c), 0);
        EXPECT_EQ(List_IsEmpty(list), 1);
        List_AddItem(list, x, 1);
        List_AddItem(list, nullptr, 1);
        EXPECT_EQ(List_GetCount(list), 2);
    }
    EXPECT_EQ(runtime.Net(x), 0) << "freeing the list drops its items";
    EXPECT_EQ(runtime.Net(b), 1) << "the replaced item was never dropped";
}

TEST_F(ListTest, StreamsKeepNothingAndReadingEmpties) {
    TestObject list(&g_info_List, List_Init, List_Free);
    List_AddItem(list, a, 1);
    EXPECT_EQ(List_SaveToStream(list, nullptr), 1);
    EXPECT_EQ(List_LoadFromStream(list, nullptr), 1);
    EXPECT_EQ(List_GetCount(list), 0);
    EXPECT_EQ(runtime.Net(a), 0);
}

TEST_F(ListTest, AnObjectWithoutAListGivesNeutralResults) {
    TestObject bare(&g_info_List);
    List_AddItem(bare, a, 1);
    List_SetItem(bare, 0, a);
    EXPECT_EQ(List_GetCount(bare), -1);
    EXPECT_EQ(List_IsEmpty(bare), 0);
    EXPECT_EQ(List_LoadFromStream(bare, nullptr), 1);
    EXPECT_EQ(runtime.Net(a), 0);
}

}  // namespace

// Positions, keys and releases are covered by tests/scripts/containers_*.zs under the host's
// audit; these pin exact reference counts, null items, cloning and long runs.
#include <gtest/gtest.h>

#include <deque>

#include "common/test_object.h"
#include "common/counting_runtime.h"
#include <zel/class_table.h>

using ObjectDeque = std::deque<ZelObject*>;
extern "C" {
extern tagTBaseTypeInfo g_info_List, g_info_Stack;
void List_Init(ZelObject*), List_Free(ZelObject*), List_AddItem(ZelObject*, ZelObject*, int);
void List_SetItem(ZelObject*, int, ZelObject*), List_InsertItem(ZelObject*, int, ZelObject*), List_RemoveItem(ZelObject*, int);
ZelObject* List_GetItem(ZelObject*, int);
int List_IsEmpty(ZelObject*), List_GetCount(ZelObject*);
void Stack_Init(ZelObject*), Stack_Free(ZelObject*), Stack_Push(ZelObject*, ZelObject*), Stack_Pop(ZelObject*);
ObjectDeque* Stack_Clone(ZelObject*);
ZelObject* Stack_Top(ZelObject*);
int Stack_GetCount(ZelObject*), Stack_IsEmpty(ZelObject*);
}

namespace {

tagElementItem kElements[] = {zel::HiddenState()};
tagTBaseTypeInfo kItem = zel::ClassRecord(L"测试.项目", L"", nullptr, kElements);

// The stack takes no reference, so any distinct pointers do.
ZelObject* Fake(int i) { return reinterpret_cast<ZelObject*>(0x1000 + 16 * i); }

TEST(List, DropsWhatItHoldsButKeepsTheReferenceOnAReplacedItem) {
    CountingRuntime runtime;
    TestObject replaced(&kItem), item(&kItem);
    {
        TestObject list(&g_info_List, List_Init, List_Free);
        List_AddItem(list, replaced, 1);
        List_AddItem(list, item, 1);
        List_SetItem(list, 0, item);
        EXPECT_EQ(List_GetItem(list, 0), item.get());
        EXPECT_EQ(runtime.Net(item), 2);
    }
    EXPECT_EQ(runtime.Net(item), 0);
    EXPECT_EQ(runtime.Net(replaced), 1) << "kept on purpose: the list never drops it";
}

TEST(List, HoldsNullsAndIgnoresPositionsPastTheEnd) {
    CountingRuntime runtime;
    TestObject list(&g_info_List, List_Init, List_Free), other(&kItem);
    List_InsertItem(list, 0, nullptr);
    List_InsertItem(list, 1, other);
    EXPECT_TRUE(List_GetCount(list) == 2 && !List_IsEmpty(list) && List_GetItem(list, 0) == nullptr);
    List_RemoveItem(list, 2);
    List_SetItem(list, -1, other);
    List_SetItem(list, 3, other);
    EXPECT_EQ(List_GetCount(list), 2) << "positions outside the list change nothing";
    List_RemoveItem(list, 0);  // the null item goes without a release
    EXPECT_TRUE(List_GetCount(list) == 1 && List_GetItem(list, 0) == other.get());
    EXPECT_EQ(runtime.Net(other), 1);
    List_RemoveItem(list, 0);
    EXPECT_TRUE(List_IsEmpty(list) && runtime.Net(other) == 0);
    List_RemoveItem(list, 0);
    EXPECT_EQ(List_GetCount(list), 0);
}

TEST(Stack, LastInFirstOutAcrossBlocksAndClonesApart) {
    TestObject stack(&g_info_Stack, Stack_Init, Stack_Free);
    for (int i = 0; i < 200; ++i) Stack_Push(stack, Fake(i));
    EXPECT_TRUE(Stack_GetCount(stack) == 200 && !Stack_IsEmpty(stack));
    TestObject clone(&g_info_Stack, nullptr, Stack_Free);
    clone.word(1, 0) = Stack_Clone(stack);
    for (int i = 199; i >= 0; --i) {
        ASSERT_EQ(Stack_Top(stack), Fake(i));
        Stack_Pop(stack);
    }
    EXPECT_EQ(Stack_GetCount(stack), 0);
    EXPECT_EQ(Stack_GetCount(clone), 200) << "the clone is a copy of the pointers, not a view";
    EXPECT_EQ(Stack_Top(clone), Fake(199));
    TestObject bare(&g_info_Stack);
    ObjectDeque* empty = Stack_Clone(bare);
    EXPECT_TRUE(empty->empty()) << "a stack without a deque clones to an empty one";
    delete empty;
}

}  // namespace

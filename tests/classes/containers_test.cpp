// Positions, keys and releases are covered by tests/scripts/containers_*.zs under the host's
// audit; these pin exact reference counts, cloning and long runs.
#include <gtest/gtest.h>

#include <deque>

#include "common/test_object.h"
#include "common/counting_runtime.h"
#include <zel/class_table.h>

using ObjectDeque = std::deque<ZelObject*>;
extern "C" {
extern tagTBaseTypeInfo g_info_List, g_info_Stack;
void List_Init(ZelObject*), List_Free(ZelObject*), List_AddItem(ZelObject*, ZelObject*, int);
void List_SetItem(ZelObject*, int, ZelObject*);
ZelObject* List_GetItem(ZelObject*, int);
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
}

}  // namespace

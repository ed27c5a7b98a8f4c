// The empty stack and serialization are covered by tests/scripts/containers_stack.zs;
// the host cannot clone, and a script has no loop for the long run.
#include <gtest/gtest.h>

#include <deque>

#include "common/test_object.h"
#include "runtime/class_table.h"

using ObjectDeque = std::deque<ZelObject*>;
ZEL_EXPORT tagTBaseTypeInfo g_info_Stack;
ZEL_EXPORT void Stack_Init(ZelObject*);
ZEL_EXPORT void Stack_Free(ZelObject*);
ZEL_EXPORT ObjectDeque* Stack_Clone(ZelObject*);
ZEL_EXPORT void Stack_Push(ZelObject*, ZelObject*);
ZEL_EXPORT void Stack_Pop(ZelObject*);
ZEL_EXPORT ZelObject* Stack_Top(ZelObject*);
ZEL_EXPORT int Stack_IsEmpty(ZelObject*);
ZEL_EXPORT int Stack_GetCount(ZelObject*);

namespace {

ZelObject* Fake(int i) { return reinterpret_cast<ZelObject*>(0x1000 + 16 * i); }

TEST(Stack, LastInFirstOutAcrossBlocks) {
    TestObject stack(&g_info_Stack, Stack_Init, Stack_Free);
    EXPECT_EQ(Stack_IsEmpty(stack), 1);
    EXPECT_EQ(Stack_GetCount(stack), 0);
    for (int i = 0; i < 200; ++i) Stack_Push(stack, Fake(i));
    EXPECT_EQ(Stack_GetCount(stack), 200);
    for (int i = 199; i >= 0; --i) {
        ASSERT_EQ(Stack_Top(stack), Fake(i));
        Stack_Pop(stack);
    }
    EXPECT_EQ(Stack_IsEmpty(stack), 1);
}

TEST(Stack, CloneIsShallowAndIndependent) {
    TestObject stack(&g_info_Stack, Stack_Init, Stack_Free);
    Stack_Push(stack, Fake(1));
    Stack_Push(stack, Fake(2));
    TestObject clone(&g_info_Stack, nullptr, Stack_Free);
    clone.word(1, 0) = Stack_Clone(stack);
    EXPECT_EQ(*static_cast<ObjectDeque*>(clone.word(1, 0)), (ObjectDeque{Fake(1), Fake(2)}));
    Stack_Pop(clone);
    Stack_Pop(clone);
    EXPECT_EQ(Stack_GetCount(stack), 2);
    EXPECT_EQ(Stack_Top(stack), Fake(2));

    TestObject bare(&g_info_Stack);
    Stack_Push(bare, Fake(1));
    EXPECT_EQ(Stack_GetCount(bare), -1);
    EXPECT_EQ(Stack_Top(bare), nullptr);
    ObjectDeque* empty = Stack_Clone(bare);
    EXPECT_TRUE(empty->empty()) << "a stack without a deque clones to an empty one";
    delete empty;
}

}  // namespace

// Faults that allocation failure used to cause, each pinned; the sweep in
// tests/sweep fails every allocation of the classes one by one.
#include <gtest/gtest.h>

#include <cstring>

#include "common/counting_runtime.h"
#include "common/test_object.h"
#include <zel/zel.h>

extern "C" {
extern tagTBaseTypeInfo g_info_List, g_info_Map, g_info_String;
void List_Init(ZelObject*), List_Free(ZelObject*), List_AddItem(ZelObject*, ZelObject*, int);
void List_InsertItem(ZelObject*, int, ZelObject*);
int List_GetCount(ZelObject*);
void Map_Init(ZelObject*), Map_Free(ZelObject*), Map_SetValue(ZelObject*, ZelObject*, ZelObject*);
int Map_GetValue(ZelObject*, ZelObject*, ZelObject*), Map_HasKey(ZelObject*, ZelObject*), Map_GetCount(ZelObject*);
void String_Init(ZelObject*), String_Free(ZelObject*), String_SetText(ZelObject*, unsigned char*);
void String_Append(ZelObject*, unsigned char*), String_Insert(ZelObject*, int, unsigned char*);
int String_GetLength(ZelObject*), String_Find(ZelObject*, unsigned char*, int);
unsigned char* String_GetText(ZelObject*);
}

namespace {

tagElementItem kElements[] = {zel::HiddenState()};
tagTBaseTypeInfo kItem = zel::ClassRecord(L"测试.项目", L"", nullptr, kElements);

// Fails the next allocation for the length of a scope.
struct NextAllocationFails {
    NextAllocationFails() { zel::FailAllocationAfter(1); }
    ~NextAllocationFails() { zel::FailAllocationAfter(0); }
};

TEST(AllocationFailure, PrintingWithoutACopyOfTheFormatLeavesTheEmptyConstantsAlone) {
    ZelEmptyConst before;
    std::memcpy(&before, &g_EmptyConst, sizeof before);
    wchar_t buf[32] = L"as it was";
    CMString text(L"kept");
    {
        NextAllocationFails failing;
        EXPECT_EQ(swprintf_linux(buf, const_cast<wchar_t*>(L"ab %d%s"), 1, L"x"), -1);
    }
    {
        NextAllocationFails failing;
        text.Format(L"%s and %s", L"one", L"two");
    }
    EXPECT_STREQ(buf, L"as it was");
    EXPECT_TRUE(text == L"kept");
    EXPECT_EQ(MGetZelBinLength(zel::EmptyBin()), 0);
    EXPECT_EQ(std::memcmp(&before, &g_EmptyConst, sizeof before), 0);
    EXPECT_EQ(swprintf_linux(buf, const_cast<wchar_t*>(L"ab %d%s"), 1, L"x"), 5);
    EXPECT_STREQ(buf, L"ab 1x");
}

TEST(AllocationFailure, ListAndMapTakeNoReferenceWhenTheyCannotStore) {
    CountingRuntime runtime;
    TestObject item(&kItem), key(&kItem);
    {
        TestObject list(&g_info_List, List_Init, List_Free), map(&g_info_Map, Map_Init, Map_Free);
        for (int k = 1; k <= 3; ++k) {
            zel::FailAllocationAfter(k);
            List_AddItem(list, item, 1);
            List_InsertItem(list, 0, item);
            Map_SetValue(map, key, item);
            Map_GetValue(map, item, nullptr);
            Map_HasKey(map, key);
            zel::FailAllocationAfter(0);
            EXPECT_EQ(runtime.Net(item), List_GetCount(list) + (Map_HasKey(map, key) ? 1 : 0) +
                                             (Map_GetCount(map) == 2 ? 1 : 0));
        }
    }
    EXPECT_EQ(runtime.Net(item), 0);
    EXPECT_EQ(runtime.Net(key), 0);
}

TEST(AllocationFailure, ANodeThatCannotCopyRaisesAndHoldsNoReference) {
    CountingRuntime runtime;
    TestObject item(&kItem);
    CNode node;
    node.SetInt(7);
    {
        NextAllocationFails failing;
        EXPECT_THROW(node.SetObject(item), std::bad_alloc);
    }
    EXPECT_EQ(node.GetType(), CNode::NodeInt);
    EXPECT_EQ(node.GetInt(), 7);
    EXPECT_EQ(runtime.Net(item), 0);
}

// Without its state a text object answers as an empty text and changes nothing.
TEST(AllocationFailure, ATextWithoutItsStateAnswersAsAnEmptyText) {
    CountingRuntime runtime;
    unsigned char* abc = MCloneZelText(const_cast<wchar_t*>(L"abc"));
    {
        TestObject text(&g_info_String, nullptr, String_Free);
        {
            NextAllocationFails failing;
            String_Init(text);
        }
        String_SetText(text, abc);
        String_Append(text, abc);
        String_Insert(text, 0, abc);
        EXPECT_EQ(String_GetLength(text), 0);
        EXPECT_EQ(String_Find(text, abc, 0), -1);
        unsigned char* got = String_GetText(text);
        EXPECT_EQ(MGetZelBinLength(got), 0);
        zel::Release(got);
    }
    zel_free(abc);
    EXPECT_EQ(runtime.LiveValues(), 0);
}

TEST(AllocationFailure, AStringPropertyWithoutMemoryIsNotFound) {
    CMString value(L"before");
    {
        NextAllocationFails failing;
        EXPECT_FALSE(GetExtendPropertyValue(L"a=1;b=2", L"b", value));
    }
    EXPECT_TRUE(value == L"before");
}

}  // namespace

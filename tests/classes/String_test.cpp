// The kept arithmetic of 删除, 查找/倒找 and 比较, and the exceptions the host turns into
// script errors (tests/scripts/values_text.zs shows them end to end).
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "common/test_object.h"
#include "owned_values.h"

extern "C" {
extern tagTBaseTypeInfo g_info_String;
void String_Init(ZelObject*), String_Free(ZelObject*), String_SetText(ZelObject*, unsigned char*);
void String_Append(ZelObject*, unsigned char*), String_Insert(ZelObject*, int, unsigned char*);
void String_Delete(ZelObject*, int, int);
int String_GetLength(ZelObject*), String_Compare(ZelObject*, unsigned char*);
int String_Find(ZelObject*, unsigned char*, int), String_ReverseFind(ZelObject*, unsigned char*, int);
unsigned char* String_GetText(ZelObject*);
}

namespace {
class StringTest : public ::testing::Test {
protected:
    TestObject t{&g_info_String, String_Init, String_Free};
    void Set(const wchar_t* s) { String_SetText(t, Text(s)); }
    std::wstring Content() {
        Owned text{String_GetText(t)};
        return zel::TextChars(text.p);
    }
};
}  // namespace

TEST_F(StringTest, DeleteRemovesStartPlusCountAndPositionsPastTheEndThrow) {
    const struct { int start, count; const wchar_t* left; } cases[] = {
        {2, 2, L"ab"}, {0, 2, L"cdef"}, {4, 1, L"abcd"}, {1, -1, L"abcdef"}, {6, 3, L"abcdef"}, {0, 100, L""},
    };
    for (auto& c : cases) {
        Set(L"abcdef");
        String_Delete(t, c.start, c.count);
        EXPECT_EQ(Content(), c.left) << c.start << "," << c.count;
    }
    Set(L"abcdef");
    try {
        String_Delete(t, 9, 1);
        FAIL() << "no exception";
    } catch (const std::out_of_range& e) {
        EXPECT_EQ(std::string(e.what()).rfind("basic_string::erase", 0), 0u) << e.what();
    }
    EXPECT_EQ(Content(), L"abcdef");

    Set(L"ab");
    String_Insert(t, 2, Text(L"y"));
    EXPECT_THROW(String_Insert(t, 4, Text(L"z")), std::out_of_range);
    EXPECT_THROW(String_Insert(t, -1, Text(L"z")), std::out_of_range);
    String_Append(t, nullptr);  // null texts change nothing
    String_Insert(t, 0, nullptr);
    EXPECT_EQ(Content(), L"aby");
    String_SetText(t, nullptr);
    EXPECT_EQ(String_GetLength(t), 0);
}

TEST_F(StringTest, SearchesWithUnsignedStartsAndCompareByLengthAfterAPrefix) {
    Set(L"abcb");
    EXPECT_EQ(String_Find(t, Text(L"b"), -1), -1);
    EXPECT_EQ(String_ReverseFind(t, Text(L"abcbx"), -1), -1);
    EXPECT_EQ(String_Find(t, Text(L""), 4), 4);
    EXPECT_EQ(String_Find(t, Text(L""), 5), -1);
    EXPECT_EQ(String_Find(t, nullptr, 0), -1);
    EXPECT_EQ(String_ReverseFind(t, nullptr, -1), -1);
    TestObject bare(&g_info_String);
    EXPECT_EQ(String_ReverseFind(bare, Text(L"a"), 0), -1);

    Set(L"abc");
    EXPECT_LT(String_Compare(t, Text(L"abd")), 0);
    EXPECT_GT(String_Compare(t, Text(L"abb")), 0);
    EXPECT_EQ(String_Compare(t, Text(L"ab")), 1);
    EXPECT_EQ(String_Compare(t, Text(L"abcde")), -2);
}

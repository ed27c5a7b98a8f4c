// 删除 and 插入 past the end raise the standard library's out_of_range, which
// the host shows as the script error; the text is left as it was
// (tests/scripts/values_text.zs shows the kept arithmetic end to end).
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "common/test_object.h"
#include "owned_values.h"

extern "C" {
extern tagTBaseTypeInfo g_info_String;
void String_Init(ZelObject*), String_Free(ZelObject*), String_SetText(ZelObject*, unsigned char*);
void String_Insert(ZelObject*, int, unsigned char*), String_Delete(ZelObject*, int, int);
unsigned char* String_GetText(ZelObject*);
}

TEST(String, PositionsPastTheEndRaiseAndChangeNothing) {
    TestObject t{&g_info_String, String_Init, String_Free};
    String_SetText(t, Text(L"abcdef"));
    try {
        String_Delete(t, 9, 1);
        FAIL() << "no exception";
    } catch (const std::out_of_range& e) {
        EXPECT_EQ(std::string(e.what()).rfind("basic_string::erase", 0), 0u) << e.what();
    }
    EXPECT_THROW(String_Insert(t, -1, Text(L"z")), std::out_of_range);
    Owned text{String_GetText(t)};
    EXPECT_STREQ(zel::TextChars(text.p), L"abcdef");
}

#include <gtest/gtest.h>

#include <string>

#include <zel/minimem.h>
#include <zel/mstring.h>
#include <zel/textfuncs.h>

namespace {

std::wstring FromUtf8(const char* s) { CMiniMem out; return UTF8_to_UCS(s, out); }
std::string ToUtf8(const wchar_t* s) { CMiniMem out; return UCS_to_UTF8(s, out); }

// The items of a split, joined by '|', then '#' and the count.
std::wstring Split(const wchar_t* text, wchar_t separator = L',') {
    CMStringArray items;
    int count = GetStringList(text, items, separator);
    std::wstring joined;
    for (int i = 0; i < count; ++i) joined += (i ? L"|" : L"") + std::wstring(items[i]);
    items.RemoveAll();
    return joined + L"#" + std::to_wstring(count);
}

}  // namespace

TEST(TextFuncs, NullReadsAsEmptyAndNumbersSaturate) {
    EXPECT_TRUE(mystrlen(nullptr) == 0 && mystrcmp(nullptr, L"") == 0 && myatoi(nullptr) == 0);
    EXPECT_LT(mystrcmp(L"a", L"\x10000"), 0);
    EXPECT_EQ(mystrnicmp(L"HELLO", L"help", 3), 0);
    EXPECT_TRUE(!mystrchr(nullptr, L'a') && !mystrstr(nullptr, L"a") && !mystrcpy(nullptr, L"x"));
    EXPECT_EQ(myatoi(L"99999999999"), 2147483647);
    EXPECT_EQ(myatoi(L"-99999999999"), -2147483647 - 1);
    EXPECT_TRUE(IsValidName(L"工具类2") && !IsValidName(nullptr) && !IsValidName(L"") && !IsValidName(L"1a"));
}

TEST(TextFuncs, Hashes) {
    EXPECT_TRUE(GetTextHash(nullptr) == 0 && GetTextHash(L"") == 0 && GetFriendNameHash(L"") == 0);
    EXPECT_EQ(GetTextHash(L"ba"), 97u + 98u);
    const wchar_t wraps[] = {0x7FFFFFFF, 0x7FFFFFFF, 3, 0};
    EXPECT_EQ(GetTextHash(wraps), 1u);  // unsigned 32-bit arithmetic
    EXPECT_EQ(GetFriendNameHash(L"别名"), GetTextHash(L"别名"));
}

TEST(TextFuncs, Utf8RoundTripAndInvalidInput) {
    EXPECT_EQ(ToUtf8(L"Aé中😀"), "A\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80");
    EXPECT_EQ(FromUtf8("A\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80"), L"Aé中😀");
    EXPECT_TRUE(ToUtf8(nullptr).empty() && FromUtf8(nullptr).empty());
    CMiniMem same;  // converting a buffer's own contents into the same buffer
    UCS_to_UTF8(L"中文", same);
    EXPECT_EQ(std::wstring(UTF8_to_UCS(reinterpret_cast<char*>(same.GetData()), same)), L"中文");

    EXPECT_EQ(FromUtf8("a\xC3"), L"a\xFFFD");                              // cut short at the terminator
    EXPECT_EQ(FromUtf8("\xE4\xB8" "A"), L"\xFFFD" L"A");                    // missing continuation
    EXPECT_EQ(FromUtf8("\xC0\xAF"), L"\xFFFD\xFFFD");                       // overlong
    EXPECT_EQ(FromUtf8("\xED\xA0\x80"), L"\xFFFD\xFFFD\xFFFD");             // surrogate
    EXPECT_EQ(FromUtf8("\xF4\x90\x80\x80"), L"\xFFFD\xFFFD\xFFFD\xFFFD");  // past U+10FFFF
    EXPECT_EQ(FromUtf8("\xFF" "b"), L"\xFFFD" L"b");
    const wchar_t bad[] = {0x110000, 0xD800, -1, 0};
    EXPECT_EQ(ToUtf8(bad), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(TextFuncs, StringListTrimsItems) {
    EXPECT_EQ(Split(L"0, 0, 0"), L"0|0|0#3");
    EXPECT_EQ(Split(L" a ,\tb\t,c "), L"a|b|c#3");
    EXPECT_EQ(Split(L"a,,b,"), L"a||b|#4");
    EXPECT_EQ(Split(L"宋体;12", L';'), L"宋体|12#2");
    EXPECT_EQ(Split(L"") + Split(nullptr), L"#0#0");
}

TEST(TextFuncs, EscapesAndExtendedProperties) {
    CMiniMem out;  // what is not an escape stays as written
    wchar_t* text = ConvertEscapeSequences(L"a\\n\\t\\\\\\\"\\x4e2D!\\u4E2D\\0\\q\\x\\", out);
    EXPECT_EQ(std::wstring(text, out.GetSize() / sizeof(wchar_t) - 1), std::wstring(L"a\n\t\\\"中!中\0\\q\\x\\", 14));
    EXPECT_EQ(*ConvertEscapeSequences(nullptr, out), 0);
    CMString value(L"kept");  // names match case-sensitively; values are trimmed
    EXPECT_FALSE(GetExtendPropertyValue(L"a=1; b = x=y ;c", L"B", value) || GetExtendPropertyValue(nullptr, L"a", value));
    EXPECT_EQ(value, L"kept");
    EXPECT_TRUE(GetExtendPropertyValue(L"a=1; b = x=y ;c", L"b", value) && value == L"x=y");
}

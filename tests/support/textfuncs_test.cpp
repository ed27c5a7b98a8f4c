#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "support/minimem.h"
#include "support/mstring.h"
#include "support/textfuncs.h"

namespace {

std::wstring FromUtf8(const char* s) {
    CMiniMem out;
    return UTF8_to_UCS(s, out);
}

std::string ToUtf8(const wchar_t* s) {
    CMiniMem out;
    return UCS_to_UTF8(s, out);
}

std::wstring Unescape(const wchar_t* s) {
    CMiniMem out;
    wchar_t* text = ConvertEscapeSequences(s, out);
    return std::wstring(text, out.GetSize() / sizeof(wchar_t) - 1);
}

// The items of a split, joined by '|'.
std::wstring Split(const wchar_t* text, wchar_t separator = L',') {
    CMStringArray items;
    int count = GetStringList(text, items, separator);
    std::wstring joined;
    for (int i = 0; i < count; ++i) joined += (i ? L"|" : L"") + std::wstring(items[i]);
    items.RemoveAll();
    return joined + L"#" + std::to_wstring(count);
}

}  // namespace

TEST(TextFuncs, ComparisonsReadNullAsEmpty) {
    EXPECT_EQ(mystrlen(nullptr), 0);
    EXPECT_EQ(mystrlen(L"中文ab"), 4);
    EXPECT_EQ(mystrcmp(nullptr, L""), 0);
    EXPECT_GT(mystrcmp(L"a", nullptr), 0);
    EXPECT_LT(mystrcmp(L"ab", L"abc"), 0);
    EXPECT_LT(mystrcmp(L"a", L"\x10000"), 0);
    EXPECT_NE(mystrcmp(L"ABC", L"abc"), 0);
    EXPECT_EQ(mystricmp(L"ABC", L"abc"), 0);
    EXPECT_EQ(mystrncmp(L"abcX", L"abcY", 3), 0);
    EXPECT_NE(mystrncmp(L"abcX", L"abcY", 4), 0);
    EXPECT_EQ(mystrncmp(L"ab", L"ab", 10), 0);
    EXPECT_EQ(mystrncmp(L"a", L"b", 0), 0);
    EXPECT_EQ(mystrnicmp(L"HELLO", L"help", 3), 0);
}

TEST(TextFuncs, SearchCopyAndTokens) {
    const wchar_t* s = L"a,b;c,d";
    EXPECT_EQ(mystrchr(s, L','), s + 1);
    EXPECT_EQ(mystrrchr(s, L','), s + 5);
    EXPECT_EQ(mystrchr(s, 0), s + 7);
    EXPECT_EQ(mystrchr(nullptr, L'a'), nullptr);
    EXPECT_EQ(mystrrchr(s, L'x'), nullptr);
    EXPECT_EQ(mystrstr(s, L"c,d"), s + 4);
    EXPECT_EQ(mystrstr(s, L"c,e"), nullptr);
    EXPECT_EQ(mystrstr(s, L""), s);
    EXPECT_EQ(mystrstr(nullptr, L"a"), nullptr);

    wchar_t buffer[32];
    mystrcpy(buffer, L"ab");
    mystrcat(buffer, L"cd");
    mystrcat(buffer, nullptr);
    EXPECT_EQ(std::wstring(buffer), L"abcd");
    EXPECT_EQ(mystrcpy(nullptr, L"x"), nullptr);

    wchar_t tokens[] = L" one, two,,three ";
    std::wstring seen;
    for (wchar_t* t = mystrtok(tokens, L" ,"); t; t = mystrtok(nullptr, L" ,")) seen += std::wstring(t) + L"/";
    EXPECT_EQ(seen, L"one/two/three/");
    EXPECT_EQ(mystrtok(nullptr, L","), nullptr);

    EXPECT_EQ(mytoupper(L'a'), L'A');
    EXPECT_EQ(mytolower(L'Z'), L'z');
    EXPECT_EQ(mytolower(L'中'), L'中');
}

TEST(TextFuncs, NumbersAndHash) {
    EXPECT_EQ(myatoi(L"  -42abc"), -42);
    EXPECT_EQ(myatoi(L"+7"), 7);
    EXPECT_EQ(myatoi(L"x1"), 0);
    EXPECT_EQ(myatoi(nullptr), 0);
    EXPECT_EQ(myatoi(L"99999999999"), 2147483647);
    EXPECT_EQ(myatoi(L"-99999999999"), -2147483647 - 1);
    EXPECT_DOUBLE_EQ(myatof(L" 3.5e2"), 350.0);
    EXPECT_DOUBLE_EQ(myatof(L"-0.25x"), -0.25);
    EXPECT_DOUBLE_EQ(myatof(L"abc"), 0.0);

    EXPECT_EQ(GetTextHash(nullptr), 0u);
    EXPECT_EQ(GetTextHash(L""), 0u);
    EXPECT_EQ(GetTextHash(L"ab"), 97u + 98u);
    EXPECT_EQ(GetTextHash(L"ba"), GetTextHash(L"ab"));
    const wchar_t wraps[] = {0x7FFFFFFF, 0x7FFFFFFF, 3, 0};
    EXPECT_EQ(GetTextHash(wraps), 1u);  // unsigned 32-bit arithmetic
    EXPECT_EQ(GetFriendNameHash(L""), 0u);
    EXPECT_EQ(GetFriendNameHash(L"别名"), GetTextHash(L"别名"));
}

TEST(TextFuncs, Utf8RoundTrip) {
    const wchar_t* text = L"Aé中😀";
    std::string utf8 = ToUtf8(text);
    EXPECT_EQ(utf8, "A\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80");
    EXPECT_EQ(FromUtf8(utf8.c_str()), text);
    EXPECT_EQ(ToUtf8(nullptr), "");
    EXPECT_EQ(FromUtf8(nullptr), L"");

    // Converting a buffer's own contents into the same buffer is safe.
    CMiniMem same;
    UCS_to_UTF8(L"中文", same);
    EXPECT_EQ(std::wstring(UTF8_to_UCS(reinterpret_cast<char*>(same.GetData()), same)), L"中文");
}

TEST(TextFuncs, InvalidUtf8BecomesReplacementCharacters) {
    EXPECT_EQ(FromUtf8("a\xC3"), L"a\xFFFD");            // cut short at the terminator
    EXPECT_EQ(FromUtf8("\xE4\xB8" "A"), L"\xFFFD" L"A");  // missing continuation
    EXPECT_EQ(FromUtf8("\xC0\xAF"), L"\xFFFD\xFFFD");     // overlong
    EXPECT_EQ(FromUtf8("\xED\xA0\x80"), L"\xFFFD\xFFFD\xFFFD");  // surrogate
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
    EXPECT_EQ(Split(L"single"), L"single#1");
    EXPECT_EQ(Split(L""), L"#0");
    EXPECT_EQ(Split(nullptr), L"#0");
}

TEST(TextFuncs, EscapeSequences) {
    EXPECT_EQ(Unescape(L"a\\nb\\tc\\r\\\\\\\"\\'"), L"a\nb\tc\r\\\"'");
    EXPECT_EQ(Unescape(L"\\x41\\x4e2D!\\u4E2Dz"), L"A中!中z");
    EXPECT_EQ(Unescape(L"x\\0y"), std::wstring(L"x\0y", 3));
    // What is not an escape stays as written.
    EXPECT_EQ(Unescape(L"\\q\\x\\"), L"\\q\\x\\");
    EXPECT_EQ(Unescape(nullptr), L"");
}

TEST(TextFuncs, Names) {
    EXPECT_TRUE(IsValidName(L"abc"));
    EXPECT_TRUE(IsValidName(L"_a1"));
    EXPECT_TRUE(IsValidName(L"工具类2"));
    EXPECT_FALSE(IsValidName(L"1a"));
    EXPECT_FALSE(IsValidName(L"a b"));
    EXPECT_FALSE(IsValidName(L"a-b"));
    EXPECT_FALSE(IsValidName(L""));
    EXPECT_FALSE(IsValidName(nullptr));
}

TEST(TextFuncs, ExtendPropertyValue) {
    const wchar_t* properties = L"a=1; b = two ;flag;c=x=y";
    CMString value;
    EXPECT_TRUE(GetExtendPropertyValue(properties, L"b", value));
    EXPECT_EQ(value, L"two");
    EXPECT_TRUE(GetExtendPropertyValue(properties, L"c", value));
    EXPECT_EQ(value, L"x=y");
    EXPECT_TRUE(GetExtendPropertyValue(properties, L"flag", value));
    EXPECT_EQ(value, L"");
    value = L"kept";
    EXPECT_FALSE(GetExtendPropertyValue(properties, L"B", value));
    EXPECT_FALSE(GetExtendPropertyValue(properties, L"", value));
    EXPECT_FALSE(GetExtendPropertyValue(nullptr, L"a", value));
    EXPECT_EQ(value, L"kept");
}

// The text functions: null read as empty, numbers that saturate or are no
// decimal text, names, escapes, UTF-8 both ways, splits and the wide print
// family.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <string>

#include <zel/errors.h>
#include <zel/memory.h>
#include <zel/minimem.h>
#include <zel/mstring.h>
#include <zel/textfuncs.h>

#include "common/child_process.h"

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

// Null reads as the empty text; a null target takes nothing.
TEST(TextFuncs, NullReadsAsEmptyAndSearchesStayInTheText) {
    EXPECT_TRUE(mystrlen(nullptr) == 0 && mystrcmp(nullptr, L"") == 0 && !mystrstr(nullptr, L"a"));
    EXPECT_TRUE(!mystrchr(nullptr, L'a') && !mystrrchr(nullptr, L'a') && !mystrcpy(nullptr, L"x") && !mystrcat(nullptr, L"x"));
    EXPECT_TRUE(GetTextHash(nullptr) == 0 && myatoi(nullptr) == 0 && !IsValidName(nullptr) && FromUtf8(nullptr).empty());
    EXPECT_LT(mystrcmp(L"a", L"\x10000"), 0);
    EXPECT_LT(mystrnicmp(L"ABc", L"abD", 3), 0);
    const wchar_t* hay = L"aaab";
    EXPECT_EQ(mystrstr(hay, L"aab"), hay + 1);  // a partial match first
    EXPECT_EQ(mystrchr(hay, 0), hay + 4);  // the terminator is part of the text
    wchar_t buf[8] = L"ab";
    EXPECT_STREQ(mystrcat(buf, L"cd"), L"abcd");
    EXPECT_STREQ(mystrcpy(buf, nullptr), L"");
}

// Numbers saturate: integers at their limits, doubles to infinity or to
// zero keeping the sign, like strtod.
TEST(TextFuncs, NumbersSaturate) {
    EXPECT_EQ(myatoi(L"99999999999"), INT_MAX);
    EXPECT_EQ(myatoi(L" -123456789012345678901234567890"), INT_MIN);
    EXPECT_EQ(myatoi(L"-99999999999"), INT_MIN);
    EXPECT_EQ(myatof(L"-1e400"), -HUGE_VAL);
    EXPECT_EQ(myatof(L"1000000e303"), HUGE_VAL);
    EXPECT_TRUE(std::signbit(myatof(L"-1e-400")));
    EXPECT_EQ(myatof((L"1" + std::wstring(400, L'0') + L"e-800").c_str()), 0.0);
    EXPECT_EQ(myatof(L"0e99999"), 0.0);  // zero digits never overflow
    // Correctly rounded also where a product in extended precision would round twice.
    EXPECT_EQ(myatof(L"92222228E18"), 92222228E18);
    EXPECT_EQ(myatof(L"4.9406564584124654e-324"), 4.9406564584124654e-324);
}

TEST(TextFuncs, MyatofReadsDecimalTextOnly) {
    EXPECT_EQ(myatof(L"\t 12.5e1xyz"), 125.0);
    EXPECT_EQ(myatof(L"1e"), 1.0);
    // Words and hex numbers are no decimal text ("0x10" reads its leading 0).
    for (const wchar_t* text : {L"-infinity", L"nan", L"0x10", L"+-1", L"", L".e5"})
        EXPECT_EQ(myatof(text), 0.0) << text;
}

// Hashes wrap at 32 bits. Names start with a letter, '_' or anything beyond
// ASCII up to U+10FFFF; digits may follow.
TEST(TextFuncs, HashesAndNames) {
    const wchar_t wraps[] = {0x7FFFFFFF, 0x7FFFFFFF, 3, 0};
    EXPECT_EQ(GetTextHash(wraps), 1u);
    const wchar_t last[] = {0x10FFFF, L'0', 0}, past[] = {0x110000, 0};
    for (const wchar_t* name : {L"_x", L"名字1", L"aZ_09", last}) EXPECT_TRUE(IsValidName(name)) << name;
    for (const wchar_t* name : {L"9a", L"a-b", L"a:", L"a{", L"`", past}) EXPECT_FALSE(IsValidName(name)) << name;
}

TEST(TextFuncs, Utf8RoundTripAndInvalidInput) {
    EXPECT_EQ(ToUtf8(L"Aé中😀"), "A\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80");
    EXPECT_EQ(FromUtf8("A\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80"), L"Aé中😀");
    EXPECT_EQ(FromUtf8("a\xC3"), L"a\xFFFD");                              // cut short at the terminator
    EXPECT_EQ(FromUtf8("\xED\xA0\x80"), L"\xFFFD\xFFFD\xFFFD");             // surrogate
    EXPECT_EQ(FromUtf8("\xF4\x90\x80\x80"), L"\xFFFD\xFFFD\xFFFD\xFFFD");  // past U+10FFFF
    const wchar_t bad[] = {0x110000, 0xD800, -1, 0};
    EXPECT_EQ(ToUtf8(bad), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(TextFuncs, StringListTrimsItems) {
    EXPECT_EQ(Split(L" a ,\tb\t,,c,"), L"a|b||c|#5");
    EXPECT_EQ(Split(L"宋体;12", L';') + Split(L""), L"宋体|12#2#0");
}

// What is not an escape stays as written; hex digits end at the first
// non-digit, \u takes four at most.
TEST(TextFuncs, Escapes) {
    const std::pair<const wchar_t*, std::wstring> cases[] = {
        {L"a\\n\\t\\\\\\\"\\x4e2D!\\u4E2D\\0\\q\\x\\", std::wstring(L"a\n\t\\\"中!中\0\\q\\x\\", 14)},
        {L"\\r\\a\\b\\f\\v\\'\\u12345", L"\r\a\b\f\v'\x1234" L"5"},
        {L"\\x/\\x:\\x@\\x`\\xg", L"\\x/\\x:\\x@\\x`\\xg"},
    };
    CMiniMem out;
    for (const auto& [source, expected] : cases) {
        wchar_t* text = ConvertEscapeSequences(source, out);
        EXPECT_EQ(std::wstring(text, out.GetSize() / sizeof(wchar_t) - 1), expected) << source;
    }
}

// Names match case-sensitively; values are trimmed; a name without '=' has
// an empty value.
TEST(TextFuncs, ExtendedProperties) {
    CMString value(L"kept");
    EXPECT_FALSE(GetExtendPropertyValue(L"a=1; b = x=y ;c", L"B", value) || GetExtendPropertyValue(nullptr, L"a", value) ||
                 GetExtendPropertyValue(L"a=1", L"", value));
    EXPECT_EQ(value, L"kept");
    EXPECT_TRUE(GetExtendPropertyValue(L"a=1; b = x=y ;c", L"b", value) && value == L"x=y");
    EXPECT_TRUE(GetExtendPropertyValue(L"x=1; a ;b=2", L"a", value) && value.IsEmpty());
}

// The delimiters may change between calls.
TEST(TextFuncs, StrtokSplitsInPlaceAndContinues) {
    wchar_t text[] = L",,a,bc;;d";
    EXPECT_STREQ(mystrtok(text, L",;"), L"a");
    EXPECT_STREQ(mystrtok(nullptr, L","), L"bc;;d");
    EXPECT_EQ(mystrtok(nullptr, L",;"), nullptr);
    wchar_t other[] = L"a b,c d";  // no delimiters at all take the rest
    EXPECT_STREQ(mystrtok(other, L" "), L"a");
    EXPECT_STREQ(mystrtok(nullptr, nullptr), L"b,c d");
}

// The print family makes the stream wide: it runs in a child.
TEST(TextFuncs, PrintFamilyWritesWideStringsForPercentS) {
    ChildResult child = RunInChild([] {
        zel::FailAllocationAfter(1);  // no memory for the format's copy: -1, nothing printed
        int failed = wprintf_linux(const_cast<wchar_t*>(L"%s"), L"x");
        zel::FailAllocationAfter(1);
        failed += fwprintf_linux(stderr, const_cast<wchar_t*>(L"%s"), L"x");
        zel::FailAllocationAfter(0);
        return wprintf_linux(const_cast<wchar_t*>(L"[%s]"), L"x") * 10 +
               fwprintf_linux(stderr, const_cast<wchar_t*>(L"%s=%d"), L"工具", 7) + failed + 2;
    });
    EXPECT_EQ(child.status, 34);
    EXPECT_EQ(child.out + child.err, "[x]工具=7");
}

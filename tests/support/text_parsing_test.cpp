// Numbers past the integer range, bare points, every escape and the hex
// digit boundaries, and names at the edges of the allowed characters.
#include <gtest/gtest.h>

#include <climits>
#include <string>

#include <zel/minimem.h>
#include <zel/textfuncs.h>

namespace {

TEST(TextParsing, NumbersPastTheRangeOrWithoutDigits) {
    EXPECT_EQ(myatoi(L"123456789012345678901234567890"), INT_MAX);
    EXPECT_EQ(myatoi(L" -123456789012345678901234567890"), INT_MIN);
    for (const wchar_t* text : {L".", L"-.", L".e5", L"-"}) EXPECT_EQ(myatof(text), 0.0) << text;
}

TEST(TextParsing, EveryEscapeAndTheHexDigitBoundaries) {
    struct Case {
        const wchar_t* source;
        std::wstring expected;
    } cases[] = {
        {L"\\r\\a\\b\\f\\v\\'", L"\r\a\b\f\v'"},
        {L"\\xaf|\\xAF|\\u00e9z", L"\xaf|\xaf|\xe9z"},
        {L"\\xg", L"\\xg"},           // no digit: the escape stays as written
        {L"\\xfG", L"\x0fG"},         // the digits end at the first non-digit
        {L"\\u12345", L"\x1234" L"5"},  // \u takes four digits at most
        {L"\\x/\\x:\\x@\\x`", L"\\x/\\x:\\x@\\x`"},
    };
    CMiniMem out;
    for (const Case& c : cases) EXPECT_EQ(ConvertEscapeSequences(c.source, out), c.expected) << c.source;
}

TEST(TextParsing, NamesAtTheEdgesOfTheAllowedCharacters) {
    const wchar_t past[] = {0x110000, 0}, last[] = {0x10FFFF, L'0', 0}, colon[] = {L'a', L':', 0};
    EXPECT_FALSE(IsValidName(past));
    EXPECT_TRUE(IsValidName(last));
    EXPECT_FALSE(IsValidName(colon));
    EXPECT_FALSE(IsValidName(L"a{"));
    EXPECT_FALSE(IsValidName(L"`"));
}

}  // namespace

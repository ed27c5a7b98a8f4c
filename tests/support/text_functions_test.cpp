// The text functions the rest of the suite does not reach: myatof's range and
// what it reads, mystrtok's continuation and the wide print family
// writing to a stream.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>

#include <zel/errors.h>
#include <zel/mstring.h>
#include <zel/textfuncs.h>

#include "common/child_process.h"

TEST(TextFunctions, MyatofSaturatesToInfinityAndZeroLikeStrtod) {
    EXPECT_EQ(myatof(L"1e999"), HUGE_VAL);
    EXPECT_EQ(myatof(L"-1e400"), -HUGE_VAL);
    EXPECT_EQ(myatof(L"  +1.8e308"), HUGE_VAL);
    EXPECT_EQ(myatof(L"1000000e303"), HUGE_VAL);
    // Far below the smallest double: zero, keeping the sign.
    EXPECT_EQ(myatof(L"1e-400"), 0.0);
    EXPECT_TRUE(std::signbit(myatof(L"-1e-400")));
    EXPECT_EQ(myatof(L"0.000001e-320"), 0.0);
    EXPECT_EQ(myatof((L"1" + std::wstring(400, L'0') + L"e-800").c_str()), 0.0);
    // Zero digits never overflow, whatever the exponent.
    EXPECT_EQ(myatof(L"0e99999"), 0.0);
    // Correctly rounded also where a product in extended precision would round twice.
    EXPECT_EQ(myatof(L"92222228E18"), 92222228E18);
    // The extremes that still fit are exact.
    EXPECT_EQ(myatof(L"1.7976931348623157e308"), 1.7976931348623157e308);
    EXPECT_EQ(myatof(L"4.9406564584124654e-324"), 4.9406564584124654e-324);
}

TEST(TextFunctions, MyatofReadsDecimalTextOnly) {
    EXPECT_EQ(myatof(L"\t 12.5e1xyz"), 125.0);
    EXPECT_EQ(myatof(L".5"), 0.5);
    EXPECT_EQ(myatof(L"1e"), 1.0);
    EXPECT_TRUE(std::signbit(myatof(L"-0")));
    // Words and hex numbers are no decimal text ("0x10" reads its leading 0).
    for (const wchar_t* text : {L"inf", L"-infinity", L"nan", L"0x10", L"+-1", L"", L"e5", L"工1"})
        EXPECT_EQ(myatof(text), 0.0) << text;
    EXPECT_EQ(myatof(nullptr), 0.0);
}

TEST(TextFunctions, StrtokSplitsInPlaceAndContinues) {
    wchar_t text[] = L",,a,bc;;d,";
    EXPECT_STREQ(mystrtok(text, L",;"), L"a");
    EXPECT_STREQ(mystrtok(nullptr, L",;"), L"bc");
    EXPECT_STREQ(mystrtok(nullptr, L",;"), L"d");
    EXPECT_EQ(mystrtok(nullptr, L",;"), nullptr);
    EXPECT_EQ(mystrtok(nullptr, L",;"), nullptr);  // stays finished
    // The delimiters may change between calls; none at all takes the rest.
    wchar_t other[] = L"a b,c d";
    EXPECT_STREQ(mystrtok(other, L" "), L"a");
    EXPECT_STREQ(mystrtok(nullptr, nullptr), L"b,c d");
    wchar_t blanks[] = L",,,";
    EXPECT_EQ(mystrtok(blanks, L","), nullptr);
}

TEST(TextFunctions, PrintFamilyWritesWideStringsForPercentS) {
    FILE* out = std::tmpfile();
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(fwprintf_linux(out, const_cast<wchar_t*>(L"%s=%d"), L"工具", 7), 4);
    std::rewind(out);
    wchar_t line[16] = {};
    ASSERT_NE(std::fgetws(line, 16, out), nullptr);
    EXPECT_STREQ(line, L"工具=7");
    std::fclose(out);

    // wprintf_linux makes standard output wide: it runs in a child.
    ChildResult child = RunInChild([] { return wprintf_linux(const_cast<wchar_t*>(L"[%s]"), L"x"); });
    EXPECT_EQ(child.status, 3);
    EXPECT_EQ(child.out, "[x]");
}

// Error reports without a runtime, and
// the print family: which "%s" it swaps, and formats that cannot be copied.
#include <gtest/gtest.h>

#include <cstdio>
#include <cwchar>
#include <string>

#include <zel/errors.h>
#include <zel/memory.h>
#include <zel/mstring.h>
#include <zel/services.h>
#include <zel/values.h>

#include "common/child_process.h"

namespace {
wchar_t* W(const wchar_t* s) { return const_cast<wchar_t*>(s); }

TEST(Report, EveryFormOnTheErrorStream) {
    struct Case {
        const wchar_t* library;
        int code;
        const wchar_t* message;
        int status;
        const char* text;
    } cases[] = {
        {L"工具", 3, L"", 0, "类库\"工具\"中发生错误码为3的错误\n"},
        {L"", 5, L"坏了", 0, "错误(5): 坏了\n"},
        {L"工具", 7, L"坏", 0, "类库\"工具\"中发生错误(7): 坏\n"},
        {L"工具", -1, L"坏", 255, "类库\"工具\"中发生严重错误(-1): 坏\n"},
        {nullptr, 6, nullptr, 0, "发生错误码为6的错误\n"},  // null reads as empty
        {nullptr, -2, nullptr, 255, "发生错误码为-2的严重错误\n"},
        {nullptr, -3, L"坏", 255, "严重错误(-3): 坏\n"},
        {L"工具", -4, nullptr, 255, "类库\"工具\"中发生错误码为-4的严重错误\n"},
    };
    for (const Case& c : cases) {
        ChildResult r = RunInChild([&] {
            MReportError(W(c.library), c.code, W(c.message));
            return 0;
        });
        EXPECT_EQ(r.status, c.status) << c.text;
        EXPECT_EQ(r.err, c.text);
        EXPECT_EQ(r.out, "");
    }
}

TEST(Print, SwapsOnlyTheCharacterAfterPercent) {
    wchar_t buf[64];
    wchar_t format[] = L"%s|%S|";
    swprintf_linux(buf, format, L"宽", "narrow");
    EXPECT_STREQ(buf, L"宽|narrow|");
    EXPECT_STREQ(format, L"%s|%S|");  // the caller's format is untouched
    swprintf_linux(buf, W(L"[%-3s]"), "ab");  // not swapped: still a narrow string
    EXPECT_STREQ(buf, L"[ab ]");
    swprintf_linux(buf, W(L"100%%s"));
    EXPECT_STREQ(buf, L"100%s");
}

TEST(Print, FormatsWithoutACopyPrintNothing) {
    CMString copy;
    EXPECT_STREQ(zel::CLibraryFormat(nullptr, copy), L"");
    const wchar_t* trailing = L"100%";
    EXPECT_EQ(zel::CLibraryFormat(trailing, copy), trailing);  // nothing to swap: no copy
    EXPECT_TRUE(copy.IsEmpty());

    // Only formats with a "%s" need a copy, so only those fail without memory.
    wchar_t buf[16] = L"old";
    zel::FailAllocationAfter(1);
    EXPECT_EQ(swprintf_linux(buf, W(L"<%s>"), L"x"), -1);
    EXPECT_STREQ(buf, L"old");
    zel::FailAllocationAfter(1);
    EXPECT_EQ(swprintf_linux(buf, W(L"%d"), 42), 2);  // no copy needed: printed
    EXPECT_EQ(zel::AllocationCountdown(), 1);
    zel::FailAllocationAfter(0);
}

}  // namespace

// What the platform layer shows for real: error reports without a runtime,
// console frames and answers, the exit code and the memory figures; and the
// print family: which "%s" it swaps, and formats that cannot be copied.
#include <gtest/gtest.h>

#include <cstdio>
#include <cwchar>
#include <string>

#include <zel/errors.h>
#include <zel/memory.h>
#include <zel/mstring.h>
#include <zel/os.h>
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

TEST(Console, AnswersToAQuestion) {
    struct Case {
        std::string input;
        int answer;  // exit status of the child: 1 yes, 0 no
    } cases[] = {
        {"?\n \tY", 1},               // anything else is skipped
        {"y", 1},
        {"N", 0},
        {"n", 0},
        {std::string("\0y", 2), 0},  // a zero character answers no
        {"", 0},                      // so does the end of input
    };
    for (const Case& c : cases) {
        ChildResult r = RunInChild([] { return int(OS::yesOrNo(L"继续")); }, c.input);
        EXPECT_EQ(r.status, c.answer) << c.input;
        EXPECT_EQ(r.out, "\n[询问]：继续[Y/N]\n") << c.input;
    }
}

TEST(Console, FramesAndTheExitCode) {
    ChildResult r = RunInChild([] {
        OS::warning(L"小心");
        OS::information(L"好");
        OS::error(L"坏了");
        std::fflush(stdout);
        OS::MExit(3);
        return 0;
    });
    EXPECT_EQ(r.status, 3);
    EXPECT_EQ(r.out, "\n[警告]：小心\n\a\n[信息]：好\n\n[错误]：坏了\n");
}

// The system's meminfo is longer than the 1024 bytes read: the read fails with
// zeros, and the percent of a zero total is 0 rather than a division by zero.
TEST(MemoryFigures, AFailedReadGivesZeros) {
    unsigned total = 9, free = 9;
    if (OS::GetMemoryInfo(total, free)) GTEST_SKIP() << "this system's meminfo is short enough to read";
    EXPECT_TRUE(total == 0 && free == 0);
    EXPECT_EQ(OS::GetUsedMemoryPercent(), 0u);
}

}  // namespace

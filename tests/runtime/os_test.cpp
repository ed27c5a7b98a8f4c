// The platform layer for real: console answers and frames, the exit code,
// and the memory figures read from a meminfo file.
#include <gtest/gtest.h>

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <zel/mstring.h>
#include <zel/os.h>

#include "common/child_process.h"

namespace {

TEST(Console, AnswersToAQuestion) {
    struct Case {
        std::string input;
        int answer;  // exit status of the child: 1 yes, 0 no
    } cases[] = {
        {"Y", 1}, {"y\n", 1}, {"N", 0}, {"n\n", 0},
        {"?\n \tY", 1},               // anything else is skipped
        {std::string("\0y", 2), 0},  // a zero character answers no
        {"", 0},                      // so does the end of input
        {"中n", 0},
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

TEST(Platform, PathsStayAsGivenTheClockRunsOnAndTheObjectIsOne) {
    EXPECT_STREQ(OS::NormalizePath(const_cast<wchar_t*>(L"/甲/../乙//丙.txt")).GetText(), L"/甲/../乙//丙.txt");
    unsigned first = OS::milliseconds();
    EXPECT_LE(first, OS::milliseconds());
    EXPECT_TRUE(OS::GetOS() != nullptr && OS::GetOS() == OS::GetOS());
}

// Runs the memory-figure cases in a child that sees `file` as /proc/meminfo
// (a private mount namespace); prints "ok total free percent" per case.
// Exits 77 when the platform allows no such namespace.
int ReadFiguresWithMeminfo(const char* file, const std::vector<std::string>& contents) {
    if (unshare(CLONE_NEWNS) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return 77;
    // Private first, so that the bind mount never reaches the parent's view.
    if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return 77;
    if (FILE* f = std::fopen(file, "w")) std::fclose(f);
    if (mount(file, "/proc/meminfo", nullptr, MS_BIND, nullptr) != 0) return 77;
    for (const std::string& text : contents) {
        FILE* f = std::fopen(file, "w");  // same file, so the mount sees the new text
        if (!f) return 78;
        std::fwrite(text.data(), 1, text.size(), f);
        std::fclose(f);
        unsigned total = 9, free = 9;
        bool ok = OS::GetMemoryInfo(total, free);
        std::printf("%d %u %u %u\n", int(ok), total, free, OS::GetUsedMemoryPercent());
    }
    // And with an empty folder over /proc, taken away again after the read
    // (the sanitizers read /proc at exit).
    if (mount("none", "/proc", "tmpfs", 0, "size=16k") != 0) return 77;
    unsigned total = 9, free = 9;
    bool ok = OS::GetMemoryInfo(total, free);
    std::printf("%d %u %u\n", int(ok), total, free);
    return umount2("/proc", MNT_DETACH) == 0 ? 0 : 80;
}

TEST(MemoryFigures, ReadFromTheMeminfoFile) {
    struct Case {
        std::string text;
        const char* figures;
    } cases[] = {
        {"MemTotal:       1000 kB\nMemFree: \t 250 kB\nMemAvailable: 600 kB\n", "1 1000 250 75"},
        {"MemFree: 1 kB\nMemTotal: 3 kB\n", "1 3 1 66"},  // in any order; the percent rounds down
        {"MemTotal: 1000 kB\n", "0 1000 0 100"},          // no free figure: a failure
        {"MemFree: 5 kB\n", "0 0 5 0"},                   // no total: the percent is 0, not a fault
        {"MemTotal: many\nMemFree: 1 kB\n", "0 0 1 0"},   // not a number
        {"", "0 0 0 0"},
        {"MemTotal: 8 kB\nMemFree: 4 kB\n" + std::string(1100, ' '), "0 0 0 0"},  // 1024 bytes or more
    };
    std::vector<std::string> texts;
    std::string expected;
    for (const Case& c : cases) {
        texts.push_back(c.text);
        expected += std::string(c.figures) + "\n";
    }
    expected += "0 0 0\n";
    char file[] = "/tmp/zel-meminfo-XXXXXX";
    close(mkstemp(file));
    ChildResult r = RunInChild([&] { return ReadFiguresWithMeminfo(file, texts); });
    unlink(file);
    if (r.status == 77) GTEST_SKIP() << "no private mount namespace here";
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, expected);
}

}  // namespace

// The platform layer for real: console answers and frames, the exit code,
// and the memory figures.
#include <gtest/gtest.h>

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>


#include <cstdio>
#include <string>
#include <vector>

#include <zel/os.h>

#include "common/child_process.h"

namespace {

TEST(Console, AnswersToAQuestion) {
    struct Case {
        std::string input;
        int answer;  // exit status of the child: 1 yes, 0 no
    } cases[] = {
        {"?\n \ty", 1},               // anything else is skipped
        {"N", 0},
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

// Reads the figures with each text as /proc/meminfo, in a child with a mount
// namespace of its own; prints "ok total free percent" for each. Exits 77
// when the platform allows no such namespace.
int ReadFiguresWithMeminfo(const char* file, const std::vector<std::string>& texts) {
    if (unshare(CLONE_NEWNS) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return 77;
    // Private first, so that the bind mount never reaches the parent's view.
    if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return 77;
    if (mount(file, "/proc/meminfo", nullptr, MS_BIND, nullptr) != 0) return 77;
    for (const std::string& text : texts) {
        FILE* f = std::fopen(file, "w");  // same file, so the mount sees the new text
        if (!f) return 78;
        std::fwrite(text.data(), 1, text.size(), f);
        std::fclose(f);
        unsigned total = 9, free = 9;
        bool ok = OS::GetMemoryInfo(total, free);
        std::printf("%d %u %u %u\n", int(ok), total, free, OS::GetUsedMemoryPercent());
    }
    return 0;
}

TEST(MemoryFigures, ReadFromTheMeminfoFile) {
    std::vector<std::string> texts = {
        "MemFree: 1 kB\nMemTotal: 3 kB\n",  // in any order; the percent rounds down
        "MemTotal: 1000 kB\n",               // no free figure: a failure
        "MemFree: 5 kB\n",                   // no total: the percent is 0, not a fault
        "MemTotal: 8 kB\nMemFree: 4 kB\n" + std::string(1100, ' '),  // 1024 bytes or more
    };
    char file[] = "/tmp/zel-meminfo-XXXXXX";
    close(mkstemp(file));
    ChildResult r = RunInChild([&] { return ReadFiguresWithMeminfo(file, texts); });
    unlink(file);
    if (r.status == 77) GTEST_SKIP() << "no private mount namespace here";
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "1 3 1 66\n0 1000 0 100\n0 0 5 0\n0 0 0 0\n");
}

}  // namespace

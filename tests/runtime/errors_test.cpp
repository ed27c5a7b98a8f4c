#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include <zel/errors.h>
#include <zel/loader.h>
#include <zel/os.h>
#include <zel/mstring.h>

namespace {
wchar_t* W(const wchar_t* s) { return const_cast<wchar_t*>(s); }

// Runs `body` in a child process whose standard stream `fd` (1 or 2) is a
// fresh file, so the stream's wide orientation starts unset; returns what
// was written there.
template <typename Body>
std::string Capture(int fd, Body body) {
    char path[] = "/tmp/zel-capture-XXXXXX";
    close(mkstemp(path));
    fflush(nullptr);
    pid_t child = fork();
    if (child == 0) {
        if (!freopen(path, "w", fd == 1 ? stdout : stderr)) _exit(1);
        body();
        std::exit(0);  // not _exit: what the child ran is counted at exit
    }
    int status = 0;
    waitpid(child, &status, 0);
    std::string out;
    if (FILE* f = fopen(path, "rb")) {
        char buf[512];
        for (size_t n; (n = fread(buf, 1, sizeof buf, f)) > 0;) out.append(buf, n);
        fclose(f);
    }
    unlink(path);
    return out;
}
}  // namespace

TEST(Print, SwapsOnlyTheCharacterAfterPercent) {
    wchar_t buf[128];
    wchar_t fmt[] = L"%s|%S|";
    swprintf_linux(buf, fmt, L"wide", "narrow");
    EXPECT_STREQ(buf, L"wide|narrow|");
    EXPECT_STREQ(fmt, L"%s|%S|");  // the caller's format is untouched
    // "%-3s" is not swapped: it still reads a narrow string.
    wchar_t buf2[64];
    swprintf_linux(buf2, W(L"%s-%S"), L"甲", "b");
    EXPECT_STREQ(buf2, L"甲-b");
    swprintf_linux(buf2, W(L"[%-3s]"), "ab");
    EXPECT_STREQ(buf2, L"[ab ]");
    swprintf_linux(buf2, W(L"100%%s"));
    EXPECT_STREQ(buf2, L"100%s");
}

TEST(Report, FormatsWithoutRuntime) {
    std::string out = Capture(2, [] { MReportError(W(L"工具"), 3, W(L"")); });
    EXPECT_EQ(out, "类库\"工具\"中发生错误码为3的错误\n");
    out = Capture(2, [] { MReportError(W(L""), 5, W(L"坏了")); });
    EXPECT_EQ(out, "错误(5): 坏了\n");
    out = Capture(2, [] { MReportError(W(L""), 6, W(L"")); });
    EXPECT_EQ(out, "发生错误码为6的错误\n");
    out = Capture(2, [] { MReportError(W(L"工具"), 7, W(L"坏")); });
    EXPECT_EQ(out, "类库\"工具\"中发生错误(7): 坏\n");
    EXPECT_EXIT(MReportError(W(L"工具"), -1, W(L"坏")), testing::ExitedWithCode(255),
                "类库\"工具\"中发生严重错误\\(-1\\): 坏");
}

TEST(Console, FramesAndQuestions) {
    std::string out = Capture(1, [] { OS::warning(L"小心"); });
    EXPECT_EQ(out, "\n[警告]：小心\n\a");
    out = Capture(1, [] { OS::information(L"好"); });
    EXPECT_EQ(out, "\n[信息]：好\n");

    char path[] = "/tmp/zel-answer-XXXXXX";
    int fd = mkstemp(path);
    ASSERT_EQ(write(fd, "x\ny\n", 4), 4);
    close(fd);
    FILE* in = freopen(path, "r", stdin);
    ASSERT_NE(in, nullptr);
    // The child prints its two answers after the question.
    out = Capture(1, [] {
        bool first = OS::yesOrNo(L"继续");
        bool atEnd = OS::yesOrNo(L"再来");  // the end of input answers no
        wprintf(L"%d%d", int(first), int(atEnd));
    });
    EXPECT_EQ(out, "\n[询问]：继续[Y/N]\n\n[询问]：再来[Y/N]\n10");
    unlink(path);
}

TEST(Console, ClockAndMemoryFigures) {
    unsigned int a = OS::milliseconds();
    unsigned int b = OS::milliseconds();
    EXPECT_LE(a, b);
    unsigned int total = 1, free = 1;
    bool ok = OS::GetMemoryInfo(total, free);
    if (ok) {
        EXPECT_GT(total, 0u);
        EXPECT_LE(free, total);
    } else {
        // The file is read up to 1023 bytes; a longer one is refused with zeros.
        EXPECT_EQ(total, 0u);
        EXPECT_EQ(free, 0u);
    }
}

TEST(Loader, SearchPathsSplitAndEndInOneSlash) {
    setenv("ZELCLS_PATHS", "/a;/b/,,/c", 1);
    CMStringArray paths;
    GetZelLibSearchPaths(paths);
    ASSERT_EQ(paths.GetSize(), 3);
    EXPECT_STREQ(paths[0], L"/a/");
    EXPECT_STREQ(paths[1], L"/b/");
    EXPECT_STREQ(paths[2], L"/c/");
    paths.RemoveAll();
    unsetenv("ZELCLS_PATHS");
    CMStringArray none;
    GetZelLibSearchPaths(none);
    EXPECT_EQ(none.GetSize(), 0);
}

TEST(Loader, MissingSystemLibraryIsReportedOnce) {
    setenv("ZELCLS_PATHS", "/nonexistent-zel-dir", 1);
    std::string out = Capture(1, [] {
        SysLibLoader loader;
        EXPECT_EQ(loader.GetRuntimeObject(), nullptr);
        EXPECT_EQ(loader.GetLibInfo(), nullptr);
    });
    EXPECT_NE(out.find("[错误]：无法加载Zel语言系统类库(系统.ncl)！"), std::string::npos);
    unsetenv("ZELCLS_PATHS");
}

TEST(Loader, FindsTheSystemLibraryInALaterDirectory) {
    const char* env = std::getenv("ZEL_TEST_BUILD_DIR");
    std::string build = env ? env : ".";
    if (access((build + "/系统.ncl").c_str(), R_OK) != 0) GTEST_SKIP() << "the runtime host is not built";
    setenv("ZELCLS_PATHS", ("/nonexistent-zel-dir;" + build).c_str(), 1);
    SysLibLoader loader;
    EXPECT_NE(loader.GetRuntimeObject(), nullptr);
    unsetenv("ZELCLS_PATHS");
}

TEST(Names, EventShortName) {
    CMString out;
    GetEventShortName(out, W(L"工具.颜色"));
    EXPECT_STREQ(out.GetText(), L"颜色");
    GetEventShortName(out, W(L"界面/按钮.单击事件"));
    EXPECT_STREQ(out.GetText(), L"按钮.单击");  // after the last slash, dots are kept
    GetEventShortName(out, W(L"甲/乙.丙"));
    EXPECT_STREQ(out.GetText(), L"乙.丙");
    GetEventShortName(out, W(L"事件"));
    EXPECT_STREQ(out.GetText(), L"");
}

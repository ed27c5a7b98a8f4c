// ncl repl on a pseudo-terminal: the prompt, and tab completion of variables
// and of the members of a variable's class through libedit. Line editing is
// optional, so without libedit.so.2 these tests are skipped.
#include <gtest/gtest.h>

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace {

class ReplOnTerminal : public ::testing::Test {
protected:
    void SetUp() override {
        void* editline = dlopen("libedit.so.2", RTLD_NOW | RTLD_LOCAL);
        if (!editline) GTEST_SKIP() << "libedit.so.2 is not installed: ncl repl reads plain lines";
        dlclose(editline);
        master_ = posix_openpt(O_RDWR | O_NOCTTY);
        ASSERT_GE(master_, 0);
        ASSERT_EQ(grantpt(master_), 0);
        ASSERT_EQ(unlockpt(master_), 0);
        std::string slave = ptsname(master_);
        child_ = fork();
        ASSERT_GE(child_, 0);
        if (child_ == 0) {
            setsid();
            int fd = open(slave.c_str(), O_RDWR);
            if (fd < 0) _exit(127);
            ioctl(fd, TIOCSCTTY, 0);
            dup2(fd, 0);
            dup2(fd, 1);
            dup2(fd, 2);
            setenv("ZELCLS_PATHS", ZEL_FIXTURE_DIR, 1);
            setenv("LC_ALL", "C.UTF-8", 1);
            setenv("TERM", "xterm", 1);
            setenv("HOME", "/nonexistent", 1);  // no ~/.editrc
            execl(ZEL_NCL, ZEL_NCL, "repl", static_cast<char*>(nullptr));
            _exit(127);
        }
    }
    void TearDown() override {
        if (master_ >= 0) close(master_);
        if (child_ > 0) {
            int status = 0;
            waitpid(child_, &status, 0);
        }
    }
    // Reads until `text` appears; false at end of output. The long poll only
    // guards against a hang: nothing here depends on how fast ncl answers.
    bool WaitFor(const std::string& text) {
        while (seen_.find(text, from_) == std::string::npos) {
            pollfd p{master_, POLLIN, 0};
            if (poll(&p, 1, 60000) <= 0) return false;
            char buf[512];
            ssize_t n = read(master_, buf, sizeof buf);
            if (n <= 0) return false;
            seen_.append(buf, size_t(n));
        }
        from_ = seen_.find(text, from_) + text.size();
        return true;
    }
    void Type(const std::string& keys) { ASSERT_EQ(write(master_, keys.data(), keys.size()), ssize_t(keys.size())); }

    int master_ = -1;
    pid_t child_ = -1;
    std::string seen_;
    size_t from_ = 0;
};

TEST_F(ReplOnTerminal, CompletesVariablesAndMembers) {
    ASSERT_TRUE(WaitFor("ncl> ")) << seen_;
    Type("counter1 = 2.50e1\n");
    ASSERT_TRUE(WaitFor("ncl> ")) << seen_;
    Type("print coun\t\n");  // completes to counter1, whose value prints as 25
    ASSERT_TRUE(WaitFor("25\r\n")) << seen_;
    ASSERT_TRUE(WaitFor("ncl> ")) << seen_;
    Type("c = new 测试.计数器\n");
    ASSERT_TRUE(WaitFor("ncl> ")) << seen_;
    Type("c.静\t(40, 2)\n");  // completes to the static member 静态加
    ASSERT_TRUE(WaitFor("42\r\n")) << seen_;
    ASSERT_TRUE(WaitFor("ncl> ")) << seen_;
    Type(":quit\n");
    EXPECT_EQ(seen_.find("error"), std::string::npos) << seen_;
}

}  // namespace

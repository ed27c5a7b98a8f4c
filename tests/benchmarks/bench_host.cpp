// `ncl list` of the library as a process against a process that only loads
// the library; both are timed in the CPU time of the child.
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "pairs.h"

extern char** environ;

namespace {

std::string BuildDir() {
    if (const char* dir = std::getenv("ZEL_BENCH_BUILD_DIR")) return dir;
    char self[4096];
    ssize_t n = readlink("/proc/self/exe", self, sizeof self - 1);
    std::string path(self, n > 0 ? size_t(n) : 0);
    return path.substr(0, path.rfind('/'));
}

// Runs the command with its output thrown away; its CPU nanoseconds.
double ChildCpuNs(std::vector<std::string> args) {
    std::vector<char*> argv;
    for (auto& a : args) argv.push_back(a.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    pid_t pid;
    int status = 0;
    rusage usage{};
    if (posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ) == 0) wait4(pid, &status, 0, &usage);
    posix_spawn_file_actions_destroy(&actions);
    auto ns = [](const timeval& t) { return t.tv_sec * 1e9 + t.tv_usec * 1e3; };
    return ns(usage.ru_utime) + ns(usage.ru_stime);
}

void BM_Host(benchmark::State& state) {
    std::string dir = BuildDir(), library = dir + "/工具.ncl";
    std::vector<std::string> list = {dir + "/ncl", "list", library}, load = {dir + "/bench_load_only", library};
    // Each side runs a batch of processes (rusage counts microseconds) and
    // adds their CPU time to `children`, which is the clock of the row.
    double children = 0;
    auto lists = [&] {
        for (int i = 0; i < 10; ++i) children += ChildCpuNs(list);
    };
    auto loads = [&] {
        for (int i = 0; i < 10; ++i) children += ChildCpuNs(load);
    };
    auto childClock = [&](const std::function<void()>& side) {
        children = 0;
        side();
        return children;
    };
    for (auto _ : state)
        bench::Compare(15, "ncl list 工具.ncl as a process", 2.5, childClock, loads, lists,
                       "vs a process that only loads the library");
}

}  // namespace

BENCHMARK(BM_Host)->Iterations(1)->Unit(benchmark::kMillisecond);

BENCH_MAIN("Host")

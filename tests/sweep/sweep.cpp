// The allocation-failure sweep. Each workload runs once to count the
// allocations it makes, then once more for every k, in a process of its own,
// with the k-th allocation failing. Every run checks that each object is
// either unchanged or whole, that the empty constants are intact, that every
// reference and runtime value is given back and that no descriptor stays
// open; under AddressSanitizer, LeakSanitizer checks every block at exit.
#include <dirent.h>
#include <dlfcn.h>
#include <execinfo.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "sweep/workloads.h"

namespace {

// The distinct call stacks that reached a counted allocation, and the
// distinct callers of the allocation functions among them (fixed tables:
// the watcher itself must not allocate).
const int kMaxStacks = 4096, kFrames = 16;
void* g_stacks[kMaxStacks][kFrames];
int g_stackCount = 0;
const void* g_callers[kMaxStacks];
int g_callerCount = 0;
bool g_inWatch = false;

void Remember(const void* caller) {
    for (int i = 0; i < g_callerCount; ++i)
        if (g_callers[i] == caller) return;
    g_callers[g_callerCount++] = caller;
}

void WatchSite(const void* caller) {
    if (g_inWatch || zel::AllocationCountdown() <= 0 || g_stackCount == kMaxStacks) return;  // not the runtime's
    g_inWatch = true;
    void** stack = g_stacks[g_stackCount];
    std::memset(stack, 0, sizeof g_stacks[0]);
    backtrace(stack, kFrames);
    g_inWatch = false;
    for (int i = 0; i < g_stackCount; ++i)
        if (std::memcmp(g_stacks[i], stack, sizeof g_stacks[0]) == 0) return;
    ++g_stackCount;
    Remember(caller);
}

// One line per site: the frames of its stack inside this program, as
// offsets for addr2line.
void PrintSites() {
    for (int i = 0; i < g_stackCount; ++i) {
        std::printf("site");
        for (void* frame : g_stacks[i]) {
            Dl_info info;
            if (frame && dladdr(frame, &info) && info.dli_fname && std::strstr(info.dli_fname, "alloc_sweep"))
                std::printf(" 0x%lx", static_cast<unsigned long>(static_cast<char*>(frame) -
                                                                 static_cast<char*>(info.dli_fbase) - 1));
        }
        std::printf("\n");
    }
}

int OpenDescriptors() {
    int n = 0;
    if (DIR* dir = opendir("/proc/self/fd")) {
        while (readdir(dir)) ++n;
        closedir(dir);
    }
    return n;
}

// The child's verdict: 0 when every check held.
int RunFailing(const Workload& w, int k) {
    ZelEmptyConst before;
    std::memcpy(&before, &g_EmptyConst, sizeof before);
    int descriptors = OpenDescriptors();
    Sweep s(w.name, k);
    try {
        w.run(s);
    } catch (const std::bad_alloc&) {
        s.Fail(__LINE__, "std::bad_alloc left the workload");
    } catch (...) {
        s.Fail(__LINE__, "an exception left the workload");
    }
    if (std::memcmp(&before, &g_EmptyConst, sizeof before) != 0) s.Fail(__LINE__, "the empty constants changed");
    if (OpenDescriptors() != descriptors) s.Fail(__LINE__, "a descriptor stayed open");
    return s.failures ? 1 : 0;
}

// The number of allocations the workload makes, or -1 when it fails unforced.
int CountAllocations(const Workload& w) {
    Sweep s(w.name, 0);
    w.run(s);
    return s.failures ? -1 : s.counted;
}

int SweepWorkload(const Workload& w, int* reached) {
    CountAllocations(w);  // first-use work of the C library and the runtime
    zel::WatchAllocations(WatchSite);
    int total = CountAllocations(w);
    zel::WatchAllocations(nullptr);
    if (total < 0) {
        std::fprintf(stderr, "%s: fails without any allocation failing\n", w.name);
        return 1;
    }
    int bad = 0;
    for (int k = 1; k <= total; ++k) {
        std::fflush(nullptr);
        pid_t child = fork();
        if (child == 0) std::exit(RunFailing(w, k));
        int status = 0;
        waitpid(child, &status, 0);
        if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
            std::fprintf(stderr, "%s: allocation %d of %d: run failed (status %d)\n", w.name, k, total, status);
            ++bad;
        }
    }
    std::printf("%-14s %5d allocations\n", w.name, total);
    *reached += total;
    return bad;
}

}  // namespace

// alloc_sweep [--sites] [WORKLOAD]: --sites lists the sites reached.
int main(int argc, char** argv) {
    bool listSites = argc > 1 && std::strcmp(argv[1], "--sites") == 0;
    const char* only = argc > 1 + listSites ? argv[1 + listSites] : nullptr;
    void* warmUp[1];
    backtrace(warmUp, 1);  // loads what backtrace needs before anything is watched
    int reached = 0, bad = 0;
    for (const Workload& w : Workloads()) {
        if (only && std::strcmp(only, w.name) != 0) continue;
        bad += SweepWorkload(w, &reached);
    }
    if (listSites) PrintSites();
#if defined(__SANITIZE_ADDRESS__)
    // LeakSanitizer is on unless ASAN_OPTIONS turns it off.
    const char* options = std::getenv("ASAN_OPTIONS");
    std::printf("leak checking: %s\n", options && std::strstr(options, "detect_leaks=0") ? "off" : "on");
#endif
    std::printf("allocation sweep: %d allocation indices failed one by one; %d distinct call stacks reached "
                "an allocation, through %d distinct callers of the allocation functions\n",
                reached, g_stackCount, g_callerCount);
    if (bad) std::printf("%d runs failed\n", bad);
    return bad ? 1 : 0;
}

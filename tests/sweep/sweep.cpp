// The allocation-failure sweep. Each workload runs once to count the
// allocations it makes, then once more for every k, in a process of its own,
// with the k-th allocation failing. Every run checks that each object is
// either unchanged or whole, that the empty constants are intact, that every
// reference and runtime value is given back and that no descriptor stays
// open; under AddressSanitizer, LeakSanitizer checks every block at exit.
#include <dirent.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>

#include "sweep/workloads.h"

namespace {

// Distinct callers of the counted allocations (a fixed table: the watcher
// itself must not allocate).
const void* g_sites[8192];
int g_siteCount = 0;

void WatchSite(const void* site) {
    if (zel::AllocationCountdown() <= 0) return;  // the runtime's own allocations
    for (int i = 0; i < g_siteCount; ++i)
        if (g_sites[i] == site) return;
    if (g_siteCount < int(std::size(g_sites))) g_sites[g_siteCount++] = site;
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

int main(int argc, char** argv) {
    int reached = 0, bad = 0;
    for (const Workload& w : Workloads()) {
        if (argc > 1 && std::strcmp(argv[1], w.name) != 0) continue;
        bad += SweepWorkload(w, &reached);
    }
    std::printf("allocation sweep: %d allocation indices failed one by one, %d distinct allocation sites\n",
                reached, g_siteCount);
    if (bad) std::printf("%d runs failed\n", bad);
    return bad ? 1 : 0;
}

// Blocks beside constants and blocks the system cannot give.
#include <gtest/gtest.h>

#include <sys/resource.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <vector>

#include <zel/errors.h>
#include <zel/memory.h>
#include <zel/values.h>

#include "common/child_process.h"
#include "common/counting_runtime.h"

namespace {

// A constant block of another library made from an ordinary allocation, on
// one page with an ordinary block of ours: the page is marked, so calls on
// the neighbour go the slow way and must still treat it as ours.
TEST(Blocks, OrdinaryBlockOnAConstantsPageIsResizedAndTheConstantCopied) {
    CountingRuntime runtime;
    std::map<uintptr_t, std::vector<void*>> byPage;
    for (int i = 0; i < 256; ++i) {
        void* p = zel_malloc(64);
        byPage[reinterpret_cast<uintptr_t>(p) >> 12].push_back(p);
    }
    int* constant = nullptr;
    void* neighbour = nullptr;
    for (auto& [page, blocks] : byPage) {
        if (!constant && blocks.size() >= 2) {
            constant = static_cast<int*>(blocks[0]);
            neighbour = blocks[1];
            blocks.erase(blocks.begin(), blocks.begin() + 2);
        }
        for (void* p : blocks) zel_free(p);
    }
    ASSERT_NE(constant, nullptr) << "no page held two of the blocks";
    std::memset(constant, 0, 64);
    constant[0] = 64;
    constant[4] = 0x5EED;
    g_EmptyConst.next = constant;

    std::memset(neighbour, 'a', 64);
    auto* grown = static_cast<char*>(zel_realloc(neighbour, 4096));
    ASSERT_NE(grown, nullptr);
    EXPECT_EQ(std::memcmp(grown, std::vector<char>(64, 'a').data(), 64), 0);
    zel_free(grown);  // freed for real: ASan sees a leak otherwise
    auto* copy = static_cast<int*>(zel_realloc(&constant[4], 8));
    ASSERT_TRUE(copy && copy != &constant[4]);
    EXPECT_EQ(copy[0], 0x5EED);
    zel_free(copy);
    zel_free(&constant[4]);  // a constant: left alone
    EXPECT_EQ(constant[4], 0x5EED);
    g_EmptyConst.next = nullptr;
    std::free(constant);
}

// The chains are walked once; constants linked after that, at either end,
// are still seen (freeing one would crash).
TEST(Blocks, ConstantChainsGrownAfterUseAreSeen) {
    int older[8] = {32, 0, 0, 0, 7}, newest[8] = {32, 0, 0, 0, 7, 8, 9};
    int constantOfPages[3 * 1024 + 25] = {int(sizeof constantOfPages)};
    CountingRuntime runtime;
    void* ordinary = zel_realloc(zel_malloc(16), 4000);  // the walk
    ASSERT_NE(ordinary, nullptr);
    g_EmptyConst.next = older;
    g_EmptyConst.next2 = constantOfPages;
    reinterpret_cast<void**>(constantOfPages)[2] = newest;
    zel_free(&older[4]);
    zel_free(&newest[5]);
    zel_free(&constantOfPages[3 * 1024 + 24]);  // on the constant's last page
    auto* copy = static_cast<int*>(zel_realloc(&newest[4], 12));
    ASSERT_NE(copy, nullptr);
    EXPECT_TRUE(copy[0] == 7 && copy[1] == 8 && copy[2] == 9);
    zel_free(copy);
    zel_free(ordinary);
    g_EmptyConst.next = g_EmptyConst.next2 = nullptr;
}

// A negative size is refused and keeps the block.
TEST(Blocks, NegativeReallocKeepsTheBlock) {
    void* p = zel_realloc(nullptr, 8);
    std::memcpy(p, "1234567", 8);
    EXPECT_EQ(zel_realloc(p, -4), nullptr);
    EXPECT_STREQ(static_cast<char*>(p), "1234567");
    EXPECT_EQ(zel_realloc(p, 0), nullptr);  // frees p
}

// Only 32 MiB more address space than is in use: 256 MiB cannot be had.
TEST(Blocks, ExhaustedMemoryIsReportedAndTheBlockKept) {
    ChildResult r = RunInChild([] {
        CountingRuntime runtime;
        unsigned long pages = 0;
        FILE* statm = std::fopen("/proc/self/statm", "r");
        if (!statm || std::fscanf(statm, "%lu", &pages) != 1) return 77;
        std::fclose(statm);
        rlimit limit{};
        getrlimit(RLIMIT_AS, &limit);
        limit.rlim_cur = rlim_t(pages) * 4096 + (32 << 20);
        if (setrlimit(RLIMIT_AS, &limit) != 0) return 77;
        auto* mine = static_cast<char*>(zel_malloc(16));
        std::strcpy(mine, "kept");
        auto refused = [&](void* result) {
            int bad = result || runtime.lastCode != ZEL_ERR_NO_MEMORY;
            runtime.lastCode = 0;
            return bad;
        };
        int failures = refused(zel_malloc(256 << 20));
        failures += refused(zel_realloc(mine, 256 << 20));
        failures += std::strcmp(mine, "kept") != 0;
        zel_free(mine);
        return failures;
    });
    if (r.status == 77) GTEST_SKIP() << "the address space cannot be limited here";
    EXPECT_EQ(r.status, 0);
}

}  // namespace

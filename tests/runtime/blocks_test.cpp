// Blocks near constants, blocks the system cannot give, and variables that
// store runtime values.
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
#include <zel/minimem.h>
#include <zel/values.h>

#include "common/child_process.h"
#include "common/counting_runtime.h"

namespace {

uintptr_t Page(const void* p) { return reinterpret_cast<uintptr_t>(p) >> 12; }

// A constant block of another library made from an ordinary allocation, and
// two ordinary blocks of ours on the same page: the page is marked, so every
// call on a neighbour goes the slow way and must still treat it as ours.
struct SharedPage {
    SharedPage() {
        std::map<uintptr_t, std::vector<void*>> byPage;
        for (int i = 0; i < 256; ++i) {
            void* p = zel_malloc(64);
            byPage[Page(p)].push_back(p);
        }
        for (auto& [page, blocks] : byPage) {
            if (!constant && blocks.size() >= 3) {
                constant = static_cast<int*>(blocks[0]);
                neighbours.assign(blocks.begin() + 1, blocks.begin() + 3);
                others.insert(others.end(), blocks.begin() + 3, blocks.end());
            } else {
                others.insert(others.end(), blocks.begin(), blocks.end());
            }
        }
        if (!constant) return;
        std::memset(constant, 0, 64);
        constant[0] = 64;
        constant[4] = 0x5EED;
        g_EmptyConst.next = constant;
    }
    ~SharedPage() {
        g_EmptyConst.next = nullptr;
        for (void* p : others) zel_free(p);
        for (void* p : neighbours) zel_free(p);
        std::free(constant);
    }
    int* constant = nullptr;
    std::vector<void*> neighbours, others;
};

TEST(Blocks, OrdinaryBlockOnAConstantsPageIsResizedAndFreed) {
    CountingRuntime runtime;
    SharedPage page;
    ASSERT_EQ(page.neighbours.size(), 2u) << "no page held three of the blocks";
    std::memset(page.neighbours[0], 'a', 64);
    auto* grown = static_cast<char*>(zel_realloc(page.neighbours[0], 4096));
    ASSERT_NE(grown, nullptr);
    page.neighbours[0] = grown;
    EXPECT_EQ(std::memcmp(grown, std::vector<char>(64, 'a').data(), 64), 0);
    zel_free(page.neighbours[1]);  // freed for real: ASan sees a leak otherwise
    page.neighbours.pop_back();
    // The constant itself is copied, never resized or freed.
    auto* copy = static_cast<int*>(zel_realloc(&page.constant[4], 8));
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, &page.constant[4]);
    EXPECT_EQ(copy[0], 0x5EED);
    zel_free(copy);
    zel_free(&page.constant[4]);
    EXPECT_EQ(page.constant[4], 0x5EED);
}

TEST(Blocks, ConstantLongerThanAPageIsKnownOnEveryPage) {
    const int size = 3 * 4096 + 100;
    auto* big = static_cast<unsigned char*>(std::calloc(1, size));
    *reinterpret_cast<int*>(big) = size;
    big[size - 1] = 0x7F;
    {
        CountingRuntime runtime;
        g_EmptyConst.next2 = big;
        zel_free(big + size - 1);  // the last page of the block: left alone
        zel_free(big + 2 * 4096);
        auto* tail = static_cast<unsigned char*>(zel_realloc(big + size - 1, 32));
        ASSERT_NE(tail, nullptr);
        EXPECT_EQ(tail[0], 0x7F);  // one byte was left in the block; the rest is unset
        zel_free(tail);
        g_EmptyConst.next2 = nullptr;
    }
    EXPECT_EQ(big[size - 1], 0x7F);
    std::free(big);
}

// zel_free and zel_realloc tell constants from ordinary blocks without a walk
// of the chains; the chains can still grow at either end at any time.
// A constant block of another library: size, the two links, then data.
struct ForeignBlock {
    int words[8] = {32, 0, 0, 0, 7, 8, 9, 10};
};

TEST(Blocks, ConstantChainsGrownAfterUseAreSeen) {
    ForeignBlock older, newer, newest;  // far from our own block, on pages never marked
    CountingRuntime runtime;
    void* ordinary = zel_malloc(16);
    ordinary = zel_realloc(ordinary, 4000);  // the chains are walked once here
    ASSERT_NE(ordinary, nullptr);

    // Linked after that walk, at the ends of both chains, one after another.
    g_EmptyConst.next = older.words;
    g_EmptyConst.next2 = newer.words;
    zel_free(&older.words[4]);  // a constant: left alone (freeing it would crash)
    reinterpret_cast<void**>(newer.words)[2] = newest.words;
    zel_free(&newest.words[5]);
    auto* copy = static_cast<int*>(zel_realloc(&newest.words[4], 12));
    ASSERT_NE(copy, nullptr);
    EXPECT_TRUE(copy[0] == 7 && copy[1] == 8 && copy[2] == 9);
    EXPECT_EQ(newest.words[4], 7);
    zel_free(copy);
    zel_free(ordinary);
    reinterpret_cast<void**>(newer.words)[2] = nullptr;
}

TEST(Blocks, ReallocEdges) {
    void* p = zel_realloc(nullptr, 8);  // a plain allocation
    ASSERT_NE(p, nullptr);
    std::memcpy(p, "1234567", 8);
    EXPECT_EQ(zel_realloc(p, -4), nullptr);  // refused: p is kept as it was
    EXPECT_STREQ(static_cast<char*>(p), "1234567");
    EXPECT_EQ(zel_realloc(p, 0), nullptr);  // frees p (ASan would see a leak otherwise)
}

// Lowers the address-space limit so that a large block cannot be had.
bool LimitAddressSpace(rlim_t headroom) {
    FILE* f = std::fopen("/proc/self/statm", "r");
    unsigned long pages = 0;
    if (!f || std::fscanf(f, "%lu", &pages) != 1) return false;
    std::fclose(f);
    rlimit limit{};
    if (getrlimit(RLIMIT_AS, &limit) != 0) return false;
    limit.rlim_cur = rlim_t(pages) * 4096 + headroom;
    return setrlimit(RLIMIT_AS, &limit) == 0;
}

TEST(Blocks, ExhaustedMemoryIsReportedAndNothingIsLost) {
    ChildResult r = RunInChild([] {
        CountingRuntime runtime;
        SharedPage page;
        if (page.neighbours.empty()) return 9;
        auto* mine = static_cast<char*>(zel_malloc(16));
        std::strcpy(mine, "kept");
        if (!LimitAddressSpace(32 << 20)) return 77;
        const int huge = 256 << 20;
        int failures = 0;
        auto expectRefused = [&](void* result) {
            if (result || runtime.lastCode != ZEL_ERR_NO_MEMORY) ++failures;
            runtime.lastCode = 0;
        };
        expectRefused(zel_malloc(huge));
        expectRefused(zel_realloc(mine, huge));
        expectRefused(zel_realloc(page.neighbours[0], huge));   // the slow way
        expectRefused(zel_realloc(&page.constant[4], huge));    // a copy that cannot be made
        if (std::strcmp(mine, "kept") != 0 || page.constant[4] != 0x5EED) ++failures;
        zel_free(mine);
        return failures;
    });
    if (r.status == 77) GTEST_SKIP() << "the address space cannot be limited here";
    EXPECT_EQ(r.status, 0);
}

TEST(Variables, StoringReleasesTheOldValueAndSharesTheNew) {
    CountingRuntime runtime;
    unsigned char* text = nullptr;
    SetCloneIntoTextVar(&text, zel::NewText(L"一"));
    unsigned char* second = zel::NewText(L"二");
    SetCloneIntoTextVar(&text, second);
    EXPECT_EQ(text, second);
    EXPECT_EQ(runtime.LiveValues(), 1);  // the first text was released

    unsigned char* none = nullptr;
    SetCloneIntoTextVar(&none, nullptr);
    EXPECT_EQ(none, zel::EmptyText());
    unsigned char* bin = nullptr;
    SetCloneIntoBinVar(&bin, nullptr);
    EXPECT_EQ(bin, zel::EmptyBin());
    unsigned char bytes[] = {1, 2};
    SetCloneIntoBinVar(&bin, zel::NewBin(bytes, 2));
    EXPECT_EQ(MGetZelBinLength(bin), 2);

    int* array = nullptr;
    int* made = reinterpret_cast<int*>(zel::NewBin(bytes, 2));
    SetCloneIntoArrayVar(&array, made);
    EXPECT_EQ(array, made);
    SetCloneIntoArrayVar(&array, nullptr);
    EXPECT_EQ(array, reinterpret_cast<int*>(zel::EmptyBin()));
    EXPECT_EQ(runtime.LiveValues(), 2);

    ZelObject* object = nullptr;
    ZelObject other{&other, nullptr, nullptr};
    SetCloneIntoObjectVar(&object, &other);
    EXPECT_TRUE(object == &other && runtime.Net(&other) == 1);
    SetCloneIntoObjectVar(&object, nullptr);
    EXPECT_TRUE(object == nullptr && runtime.Net(&other) == 0);

    ZelDataWrapper holder;  // empty: taking a handle releases nothing
    holder.Atach(text);
    holder.Atach(bin);
    EXPECT_EQ(holder.GetData(), bin);
    EXPECT_EQ(runtime.LiveValues(), 1);
}

}  // namespace

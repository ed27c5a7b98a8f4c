// zel_free and zel_realloc tell constants from ordinary blocks without a walk
// of the chains; the chains can still grow at either end at any time.
#include <gtest/gtest.h>

#include <cstring>

#include "common/counting_runtime.h"
#include <zel/memory.h>
#include <zel/values.h>

namespace {

// A constant block of another library: size, the two links, then data.
struct ForeignBlock {
    int words[8] = {32, 0, 0, 0, 7, 8, 9, 10};
};

TEST(ConstantBlocks, ChainsGrownAfterUseAreSeen) {
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

}  // namespace

// Growth by small adds: the capacity a buffer shows follows the granule rule
// at every step, while the block beneath moves only a logarithmic number of
// times. Under the sanitizers any step that trusted a block too small for
// it would show as a write past the block.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include <zel/memory.h>
#include <zel/minimem.h>

#include "io/MemoryStream.h"

namespace {

int Rounded(int n, int granule) { return n + granule - n % granule; }

// Adds `width` bytes at a time up to `total`, checking the capacity after
// every add; returns how often the block moved.
int Fill(CMiniMem& m, int granule, int width, int total, const std::function<void(CMiniMem&, int)>& add) {
    int moves = 0;
    for (int i = 0; m.GetSize() + width <= total; ++i) {
        int size = m.GetSize(), capacity = m.GetCapacity();
        unsigned char* block = m.GetData();
        add(m, i);
        EXPECT_EQ(m.GetSize(), size + width);
        int expected = size + width <= capacity ? capacity : Rounded(size + width, granule);
        if (m.GetCapacity() != expected) {
            ADD_FAILURE() << "capacity " << m.GetCapacity() << " at size " << m.GetSize() << ", expected " << expected;
            break;
        }
        moves += block != m.GetData();
    }
    return moves;
}

TEST(MiniMemGrowth, CapacityFollowsTheGranuleWhileTheBlockMovesRarely) {
    const int total = 1 << 20;
    CMiniMem bytes;
    EXPECT_LE(Fill(bytes, 32, 1, total, [](CMiniMem& m, int i) { m.AddByte(static_cast<unsigned char>(i)); }), 40);
    for (int i = 0; i < total; i += 4099) ASSERT_EQ(bytes.GetData()[i], static_cast<unsigned char>(i));
    CAlignMem odd(100);  // a granule that is not a power of two
    EXPECT_LE(Fill(odd, 100, 4, total, [](CMiniMem& m, int i) { m.AddDWord(unsigned(i)); }), 40);
}

// After a shrink or an exchange between granules, adds still step within
// what the block really holds.
TEST(MiniMemGrowth, GrowthAfterShrinkAndExchangeStaysInsideTheBlock) {
    auto addBytes = [](CMiniMem& m, int i) { m.AddByte(static_cast<unsigned char>(i)); };
    CMiniMem m;
    Fill(m, 32, 1, 5000, addBytes);
    m.Remove(100, m.GetSize() - 100);
    EXPECT_EQ(m.GetCapacity(), 128);
    Fill(m, 32, 1, 9000, addBytes);
    CAlignMem wide(1000);
    wide.Alloc(1);
    wide.xchg(m);  // m: a 1000-byte capacity from the wider granule
    Fill(m, 32, 1, 20000, addBytes);
}

// WriteInt's own step gives the bytes and capacity of AddInt; a growth the
// allocator refuses writes nothing and the stream stays as it was.
TEST(MiniMemGrowth, StreamWriteIntStepsLikeAddIntAndSurvivesARefusedGrowth) {
    CMemoryStream stream;
    CMiniMem plain;
    for (int i = 0; i < 5000; ++i) {
        EXPECT_EQ(stream.WriteInt(i), 1);
        plain.AddInt(i);
        ASSERT_EQ(stream.GetCapacity(), plain.GetCapacity()) << i;
    }
    EXPECT_EQ(std::memcmp(stream.GetData(), plain.GetData(), plain.GetSize()), 0);

    CMemoryStream full;
    for (int i = 0; i < 1000; ++i) full.WriteInt(7);
    unsigned char* block = full.GetData();
    // Steps within the block allocate nothing; the first growth that must
    // move the block is refused.
    zel::FailAllocationAfter(1);
    int before;
    do {
        before = full.GetSize();
        EXPECT_EQ(full.WriteInt(8), 1);
    } while (full.GetSize() == before + 4 && before < (1 << 20));
    zel::FailAllocationAfter(0);
    EXPECT_TRUE(full.GetSize() == before && full.GetData() == block);
    EXPECT_GE(full.GetCapacity(), full.GetSize());
    EXPECT_EQ(full.WriteInt(9), 1);  // the allocator works again
    EXPECT_EQ(full.GetSize(), before + 4);
}

}  // namespace

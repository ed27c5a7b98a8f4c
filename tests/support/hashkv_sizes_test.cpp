// Hash tables of every size along the prime ladder, tables whose buckets
// could not be allocated, the pool on its own, and iterators compared.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <set>
#include <vector>

#include <zel/memory.h>

#include <zel/hashkv.h>

namespace {

void* P(uintptr_t n) { return reinterpret_cast<void*>(n); }

// Keys k and k + p share bucket k mod p at every size; the largest key lands
// where unsigned arithmetic puts it. A table of 67220089 buckets takes 256 MiB.
TEST(HashKVSizes, KeysLandInTheirBucketAtEverySize) {
    const unsigned primes[] = {257,    509,    1021,    2053,    4093,    8191,     16381,    32771,    65521,   131071,
                               262007, 525013, 1050239, 2100001, 4201123, 8402357, 16805323, 33610001, 67220089};
    for (unsigned p : primes) {
        CPtr2PtrHashmap map(int(p / 1.854));
        ASSERT_EQ(map.GetBucketCount(), int(p));
        const uintptr_t keys[] = {7, 7 + p, p - 1, UINTPTR_MAX};
        for (uintptr_t key : keys) ASSERT_EQ(map.Set(P(key), P(key)), 1);
        int bucket = -1;
        HashKV::KV* chain = map.GetKVs(P(7 + p), &bucket);
        EXPECT_EQ(bucket, 7) << p;
        ASSERT_TRUE(chain && chain->next) << p;
        EXPECT_TRUE(chain->key == P(7) && chain->next->key == P(7 + p)) << p;
        map.GetKVs(P(p - 1), &bucket);
        EXPECT_EQ(bucket, int(p - 1)) << p;
        map.GetKVs(P(UINTPTR_MAX), &bucket);
        EXPECT_EQ(unsigned(bucket), unsigned(UINTPTR_MAX % p)) << p;
        void* value = nullptr;
        EXPECT_TRUE(map.Get(P(UINTPTR_MAX), &value) && value == P(UINTPTR_MAX)) << p;
        EXPECT_EQ(map.GetCount(), 4);
    }
}

// Past about 1.1 billion entries the bucket array would not fit in memory:
// the table keeps what it had, and an empty one starts over at 2053 buckets
// on its first Set.
TEST(HashKVSizes, BucketArraysThatCannotBeAllocated) {
    CPtr2PtrHashmap map(10);
    map.Set(P(1), P(2));
    map.InitHashTable(INT_MAX);
    EXPECT_EQ(map.GetBucketCount(), 257);
    EXPECT_TRUE(map.IsExist(P(1)) && map.GetCount() == 1);

    EXPECT_EQ(CPtr2PtrHashmap().Remove(P(1)), 0);
    CThreadSafePtr2PtrHashmap guarded;
    HashKV_iterator* parked = guarded._begin();  // at the end of the empty table
    guarded.Set(P(1), P(1));
    EXPECT_TRUE(guarded.Remove(P(1)) && parked->IsEnd());

    CPtr2PtrHashmap empty(1200000000);
    EXPECT_EQ(empty.GetBucketCount(), 0);
    void* value = P(9);
    EXPECT_TRUE(!empty.Get(P(1), &value) && value == nullptr);
    EXPECT_EQ(empty.Remove(P(1)), 0);
    EXPECT_TRUE(empty._begin()->IsEnd());
    EXPECT_EQ(empty.Set(P(1), P(3)), 1);
    EXPECT_EQ(empty.GetBucketCount(), 2053);
    EXPECT_TRUE(empty.Get(P(1), &value) && value == P(3));
}

TEST(HashKVSizes, PoolRefusesCellsItCannotSize) {
    for (int size : {0, -4, INT_MAX / 100 + 1}) {
        CMemoryPool_HashKV pool(size);
        EXPECT_EQ(pool.Malloc(), nullptr) << size;
    }
    CMemoryPool_HashKV pool(8);
    pool.Free(nullptr);  // not recorded as a free cell
    void* first = pool.Malloc();
    ASSERT_NE(first, nullptr);
    EXPECT_NE(pool.Malloc(), first);
    pool.SetMemCellSize(16);
    pool.Free(first);
    EXPECT_EQ(pool.Malloc(), first);
}

// A bucket array or free-list shrink that fails leaves everything in place:
// the table keeps its entries, the pool hands out each cell once.
TEST(HashKVSizes, FailedAllocationsLoseNothing) {
    CPtr2PtrHashmap map(10);
    map.Set(P(1), P(2));
    zel::FailAllocationAfter(1);
    map.InitHashTable(1000);
    zel::FailAllocationAfter(0);
    EXPECT_TRUE(map.GetBucketCount() == 257 && map.IsExist(P(1)));

    CPtr2PtrHashmap unallocated(1200000000);
    zel::FailAllocationAfter(1);
    EXPECT_EQ(unallocated.Set(P(1), P(1)), 0);
    zel::FailAllocationAfter(0);
    EXPECT_EQ(unallocated.GetCount(), 0);

    CMemoryPool_HashKV pool(8);
    std::vector<void*> cells;
    for (int i = 0; i < 300; ++i) cells.push_back(pool.Malloc());  // a free list past its 1 KiB granule
    for (void* cell : cells) pool.Free(cell);
    std::vector<void*> handed;
    handed.reserve(cells.size());  // the test's own allocations count too
    zel::FailAllocationAfter(1);
    for (void* cell; (cell = pool.Malloc());) handed.push_back(cell);
    zel::FailAllocationAfter(0);
    EXPECT_LT(handed.size(), cells.size()) << "a shrink of the free list was refused";
    while (handed.size() < cells.size()) handed.push_back(pool.Malloc());
    EXPECT_EQ(std::multiset<void*>(handed.begin(), handed.end()), std::multiset<void*>(cells.begin(), cells.end()));
}

struct NoIterators : CPtr2PtrHashmap {
    HashKV_iterator* CreateIterator() override { return nullptr; }
};

TEST(HashKVSizes, IteratorsCompareByTableAndEntry) {
    CPtr2PtrHashmap map, other;
    for (int i = 1; i <= 3; ++i) map.Set(P(i), P(i)), other.Set(P(i), P(i));
    HashKV_iterator a(&map), b(&map), elsewhere(&other), loose;
    a.reset(), b.reset(), elsewhere.reset(), loose.reset();
    EXPECT_TRUE(a == b && !(a != b));
    b.skip();
    EXPECT_TRUE(a != b);
    HashKV_iterator copy(b);
    EXPECT_TRUE(copy == b);
    a = b;
    EXPECT_TRUE(a == b);
    HashKV_iterator here(&map);
    here.reset();
    EXPECT_TRUE(elsewhere != here) << "each at the first entry of its own table";
    EXPECT_TRUE(loose.IsEnd() && !loose.GetKeyValue(nullptr, nullptr)) << "no table: at the end";

    NoIterators bare;
    bare.Set(P(1), P(1));
    EXPECT_EQ(bare._begin(), nullptr);
}

// Null and the empty text are one key; a non-empty text in the same bucket
// is another, whichever side of the comparison the null is on.
TEST(HashKVSizes, TextMapNullAgainstTextsInOneBucket) {
    CText2PtrHashmap map(1);
    int first = 1, second = 2;
    map.Set(nullptr, &first);
    int nullBucket = -1, bucket = -1;
    map.GetKVs(nullptr, &nullBucket);
    wchar_t probe[2] = {1, 0};
    for (; probe[0] < 0x10000; ++probe[0]) {
        map.GetKVs(probe, &bucket);
        if (bucket == nullBucket) break;
    }
    ASSERT_LT(probe[0], 0x10000) << "no one-character text shares the bucket of the empty one";
    map.Set(probe, &second);
    wchar_t same[2] = {probe[0], 0}, empty[] = L"";
    void* value = nullptr;
    EXPECT_TRUE(map.Get(empty, &value) && value == &first);
    EXPECT_TRUE(map.Get(same, &value) && value == &second);
    EXPECT_EQ(map.Remove(empty), 1);
    EXPECT_FALSE(map.Get(nullptr, &value));
    EXPECT_EQ(map.GetCount(), 1);
}

}  // namespace

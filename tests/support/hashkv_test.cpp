#include <gtest/gtest.h>

#include <cstring>
#include <mutex>
#include <set>
#include <thread>
#include <utility>
#include <vector>

#include "runtime/memory.h"
#include "support/hashkv.h"

namespace {

void* P(int n) { return reinterpret_cast<void*>(n); }

struct FailGuard {
    explicit FailGuard(int n) { zel::FailAllocationAfter(n); }
    ~FailGuard() { zel::FailAllocationAfter(0); }
};

std::set<int> Keys(HashKV& table) {
    std::set<int> keys;
    for (HashKV_iterator* it = table._begin(); !it->IsEnd(); it->skip()) {
        void* key;
        it->GetKey(&key);
        keys.insert(static_cast<int>(reinterpret_cast<intptr_t>(key)));
    }
    return keys;
}

std::vector<std::pair<void*, void*>> g_equalityCalls;
int RecordingEquals(void* a, void* b) {
    g_equalityCalls.emplace_back(a, b);
    return a == b;
}

struct ProbeTable : CPtr2PtrHashmap {
    int Offset(const void* field) const {
        return static_cast<int>(static_cast<const char*>(field) - reinterpret_cast<const char*>(this));
    }
    std::vector<int> Offsets() const {
        return {Offset(&m_pool),        Offset(&m_needFreeKey), Offset(&m_buckets), Offset(&m_count),
                Offset(&m_bucketCount), Offset(&m_iterator),    Offset(&m_hash),    Offset(&m_equals)};
    }
};

void** VirtualTable(void* object) {
    void** table;
    std::memcpy(&table, object, sizeof table);
    return table;
}

}  // namespace

TEST(HashKV, LayoutAndVirtualSlots) {
    ProbeTable t;
    EXPECT_EQ(t.Offsets(), (std::vector<int>{4, 48, 52, 56, 60, 64, 68, 72}));

    // Slots after the two destructors: CreateIterator, KV_GetKey, KV_GetValue,
    // KV_SetKey, KV_SetValue.
    void** slots = VirtualTable(&t);
    HashKV::KV cell{nullptr, P(1), P(2)};
    reinterpret_cast<void (*)(HashKV*, HashKV::KV*, void*)>(slots[5])(&t, &cell, P(3));
    reinterpret_cast<void (*)(HashKV*, HashKV::KV*, void*)>(slots[6])(&t, &cell, P(4));
    EXPECT_EQ(reinterpret_cast<void* (*)(HashKV*, HashKV::KV*)>(slots[3])(&t, &cell), P(3));
    EXPECT_EQ(reinterpret_cast<void* (*)(HashKV*, HashKV::KV*)>(slots[4])(&t, &cell), P(4));
    HashKV_iterator* it = reinterpret_cast<HashKV_iterator* (*)(HashKV*)>(slots[2])(&t);
    EXPECT_TRUE(it->IsEnd());
    delete it;
}

TEST(HashKV, BucketCountFollowsThePrimeTable) {
    EXPECT_EQ(HashKV(0).GetBucketCount(), 2053);
    EXPECT_EQ(HashKV(-5).GetBucketCount(), 2053);
    EXPECT_EQ(HashKV(1).GetBucketCount(), 257);
    EXPECT_EQ(HashKV(100).GetBucketCount(), 257);    // t = 185
    EXPECT_EQ(HashKV(139).GetBucketCount(), 257);    // t = 257
    EXPECT_EQ(HashKV(140).GetBucketCount(), 509);    // t = 259
    EXPECT_EQ(HashKV(1000).GetBucketCount(), 2053);  // t = 1854
    EXPECT_EQ(HashKV(100000).GetBucketCount(), 262007);
}

TEST(HashKV, SetGetReplaceAndRemove) {
    CPtr2PtrHashmap map;
    EXPECT_EQ(map.Set(P(1), P(10)), 1);
    map.Set(P(2), P(20));
    map.Set(P(1), P(11));
    EXPECT_EQ(map.GetCount(), 2);
    void* value = P(99);
    EXPECT_EQ(map.Get(P(1), &value), 1);
    EXPECT_EQ(value, P(11));
    EXPECT_EQ(map.Get(P(3), &value), 0);
    EXPECT_EQ(value, nullptr);
    EXPECT_EQ(map.Get(P(2), nullptr), 1);
    EXPECT_TRUE(map.IsExist(P(2)));
    EXPECT_EQ(map.Remove(P(2)), 1);
    EXPECT_EQ(map.Remove(P(2)), 0);
    EXPECT_FALSE(map.IsExist(P(2)));
    EXPECT_EQ(map.GetCount(), 1);
}

TEST(HashKV, ChainsGrowAtTheTail) {
    CPtr2PtrHashmap map;  // 2053 buckets: 5, 5 + 2053 and 5 + 4106 collide
    EXPECT_EQ(map.GetKVs(P(5), nullptr), nullptr);  // empty table, buckets allocated
    map.Set(P(5), P(1));
    map.Set(P(5 + 2053), P(2));
    map.Set(P(5 + 4106), P(3));
    int bucket = -1;
    HashKV::KV* head = map.GetKVs(P(5 + 2053), &bucket);
    EXPECT_EQ(bucket, 5);
    ASSERT_NE(head, nullptr);
    EXPECT_EQ(head->key, P(5));
    ASSERT_NE(head->next, nullptr);
    EXPECT_EQ(head->next->key, P(5 + 2053));
    EXPECT_EQ(head->next->next->key, P(5 + 4106));

    map.Remove(P(5));  // unlinking the head keeps the rest
    EXPECT_EQ(map.GetKVs(P(5), nullptr)->key, P(5 + 2053));
    map.Remove(P(5 + 4106));  // and the tail
    EXPECT_EQ(map.GetKV(P(5 + 2053))->next, nullptr);
}

TEST(HashKV, EqualityArgumentOrders) {
    // Lookups pass (stored, searched); Remove passes (searched, stored).
    CText2PtrHashmap text;
    text.SetFunctions(hashkv_GetTextHashValue, RecordingEquals);
    wchar_t stored[] = L"k", searched[] = L"k";
    text.Set(stored, P(1));
    g_equalityCalls.clear();
    text.Get(searched, nullptr);
    text.Remove(searched);
    ASSERT_EQ(g_equalityCalls.size(), 2u);
    EXPECT_EQ(g_equalityCalls[0], std::make_pair(static_cast<void*>(stored), static_cast<void*>(searched)));
    EXPECT_EQ(g_equalityCalls[1], std::make_pair(static_cast<void*>(searched), static_cast<void*>(stored)));
}

TEST(HashKV, PoolBlocksOfOneHundredCellsAndReuse) {
    CPtr2PtrHashmap map;
    for (int i = 1; i <= 99; ++i) map.Set(P(i), P(i));
    {
        FailGuard fail(1);
        EXPECT_EQ(map.Set(P(100), P(100)), 1);  // the 100th cell needs no allocation
        // The 101st starts a second block: refused, the table stays as it was.
        EXPECT_EQ(map.Set(P(101), P(101)), 0);
    }
    EXPECT_EQ(map.GetCount(), 100);
    EXPECT_FALSE(map.IsExist(P(101)));
    EXPECT_EQ(Keys(map).size(), 100u);
    EXPECT_EQ(map.Set(P(101), P(101)), 1);

    HashKV::KV* cell = map.GetKV(P(50));
    map.Remove(P(50));
    map.Set(P(500), P(5));
    EXPECT_EQ(map.GetKV(P(500)), cell);  // the freed cell comes back first
}

TEST(HashKV, FailedFirstBlockLeavesTheTableEmpty) {
    for (int failing : {1, 2}) {  // the block itself, then recording it
        CPtr2PtrHashmap map;
        FailGuard fail(failing);
        EXPECT_EQ(map.Set(P(1), P(1)), 0);
        EXPECT_EQ(map.GetCount(), 0);
        EXPECT_FALSE(map.IsExist(P(1)));
    }
}

TEST(HashKV, RemoveAllKeepsBucketsAndInitDiscardsEntries) {
    CPtr2PtrHashmap map(100);
    for (int i = 1; i <= 150; ++i) map.Set(P(i), P(i));
    map.RemoveAll();
    EXPECT_EQ(map.GetCount(), 0);
    EXPECT_EQ(map.GetBucketCount(), 257);
    EXPECT_TRUE(Keys(map).empty());
    map.Set(P(3), P(3));
    map.InitHashTable(1000);
    EXPECT_EQ(map.GetBucketCount(), 2053);
    EXPECT_EQ(map.GetCount(), 0);
    EXPECT_FALSE(map.IsExist(P(3)));
}

TEST(HashKV, IteratorVisitsEveryEntryOnce) {
    CPtr2PtrHashmap map(10);
    EXPECT_TRUE(map._begin()->IsEnd());
    std::set<int> expected;
    for (int i = 0; i < 300; i += 3) {
        map.Set(P(i * 257 + i), P(i));  // several per bucket, across buckets
        expected.insert(i * 257 + i);
    }
    EXPECT_EQ(Keys(map), expected);

    HashKV_iterator* it = map._begin();
    HashKV_iterator copy(*it), other;
    EXPECT_TRUE(copy == *it);
    it->skip();
    EXPECT_TRUE(copy != *it);
    other = copy;
    EXPECT_TRUE(other == copy);
    void *key, *value;
    EXPECT_EQ(copy.GetKeyValue(&key, &value), 1);
    EXPECT_EQ(map.GetKV(key)->value, value);
    while (!it->IsEnd()) it->skip();
    it->skip();
    EXPECT_EQ(it->GetKey(&key), 0);
    EXPECT_EQ(it->GetValue(nullptr), 0);
}

TEST(HashKV, TextMapComparesContentsAndCanOwnKeys) {
    CText2PtrHashmap map;
    wchar_t key[] = L"名称";
    map.Set(key, P(1));
    EXPECT_TRUE(map.IsExist(const_cast<wchar_t*>(L"名称")));
    EXPECT_FALSE(map.IsExist(const_cast<wchar_t*>(L"名")));

    // An owning map frees replaced, removed and remaining keys (the sanitizer
    // build reports any leak or double free).
    CText2PtrHashmap owning;
    owning.SetIsNeedFreeKey(1);
    owning.Set(MCloneText(const_cast<wchar_t*>(L"a")), P(1));
    owning.Set(MCloneText(const_cast<wchar_t*>(L"a")), P(2));
    owning.Set(MCloneText(const_cast<wchar_t*>(L"b")), P(3));
    owning.Set(MCloneText(const_cast<wchar_t*>(L"c")), P(4));
    EXPECT_EQ(owning.GetCount(), 3);
    EXPECT_EQ(owning.Remove(const_cast<wchar_t*>(L"b")), 1);
    void* same = owning.GetKV(const_cast<wchar_t*>(L"c"))->key;
    owning.Set(same, P(5));  // storing the same key again must not free it
    void* value;
    owning.Get(const_cast<wchar_t*>(L"c"), &value);
    EXPECT_EQ(value, P(5));
}

TEST(ThreadSafeHashmap, RemovingTheIteratorsEntryMovesItOn) {
    CThreadSafePtr2PtrHashmap map;
    map.Set(P(1), P(10));
    map.Set(P(2), P(20));
    map.Set(P(3), P(30));
    HashKV_iterator* it = map._begin();
    void* key;
    it->GetKey(&key);
    ASSERT_EQ(key, P(1));
    map.Remove(P(3));  // elsewhere: the iterator stays
    it->GetKey(&key);
    EXPECT_EQ(key, P(1));
    map.Remove(P(1));
    it->GetKey(&key);
    EXPECT_EQ(key, P(2));
    map.Remove(P(2));
    EXPECT_TRUE(it->IsEnd());
    EXPECT_EQ(map.GetCount(), 0);
}

TEST(ThreadSafeHashmap, LockIsRecursiveAndSharedByThreads) {
    CThreadSafePtr2PtrHashmap map;
    {
        std::lock_guard<ZelThread::IMutex> hold(*map.GetMutex());
        map.Set(P(1), P(1));  // the same thread locks again
    }
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&map, t] {
            for (int i = 0; i < 500; ++i) {
                map.Set(P(1000 + t * 500 + i), P(i));
                if (i % 2) map.Remove(P(1000 + t * 500 + i));
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(map.GetCount(), 1 + 4 * 250);
    map.RemoveAll();
    EXPECT_EQ(map.GetCount(), 0);
}

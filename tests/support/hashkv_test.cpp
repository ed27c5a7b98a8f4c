#include <gtest/gtest.h>

#include <cstdint>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include <zel/memory.h>
#include <zel/hashkv.h>

namespace {

void* P(int n) { return reinterpret_cast<void*>(n); }

// The keys an iteration visits; a key seen twice shows up twice.
std::multiset<int> Keys(HashKV& table) {
    std::multiset<int> keys;
    void *key, *value;
    for (HashKV_iterator* it = table._begin(); it->GetKeyValue(&key, &value); it->skip()) {
        EXPECT_EQ(table.GetKV(key)->value, value);
        keys.insert(static_cast<int>(reinterpret_cast<intptr_t>(key)));
    }
    return keys;
}

std::vector<std::pair<void*, void*>> g_equalityCalls;
int RecordingEquals(void* a, void* b) {
    g_equalityCalls.emplace_back(a, b);
    return a == b;
}

}  // namespace

TEST(HashKV, BucketCountFollowsThePrimeTable) {
    // t = 3 * n * 0.618: 100 -> 185, 139 -> 257, 140 -> 259, 1000 -> 1854
    std::pair<int, int> cases[] = {{0, 2053},  {-5, 2053}, {1, 257},     {100, 257},
                                   {139, 257}, {140, 509}, {1000, 2053}, {100000, 262007}};
    for (auto [n, buckets] : cases) EXPECT_EQ(HashKV(n).GetBucketCount(), buckets) << n;
}

TEST(HashKV, SetReplaceGetAndChains) {
    CPtr2PtrHashmap map;  // 2053 buckets: 5, 5 + 2053 and 5 + 4106 collide
    EXPECT_EQ(map.GetKVs(P(5), nullptr), nullptr);  // empty table, buckets allocated
    for (int i : {0, 1, 2}) EXPECT_EQ(map.Set(P(5 + 2053 * i), P(i)), 1);
    EXPECT_EQ(map.Set(P(5), P(10)), 1);
    EXPECT_EQ(map.GetCount(), 3);  // the replaced key still counts once
    void* value = P(99);
    EXPECT_TRUE(map.Get(P(5), &value) && value == P(10));
    EXPECT_TRUE(!map.Get(P(6), &value) && value == nullptr);

    int bucket = -1;  // chains grow at the tail
    HashKV::KV* head = map.GetKVs(P(5 + 2053), &bucket);
    EXPECT_EQ(bucket, 5);
    ASSERT_TRUE(head && head->next && head->next->next);
    EXPECT_EQ(std::vector<void*>({head->key, head->next->key, head->next->next->key}),
              std::vector<void*>({P(5), P(5 + 2053), P(5 + 4106)}));
    EXPECT_TRUE(map.Remove(P(5)) && !map.Remove(P(5)));  // unlinking the head keeps the rest
    EXPECT_EQ(map.GetKVs(P(5), nullptr)->key, P(5 + 2053));
    map.Remove(P(5 + 4106));  // and the tail
    EXPECT_EQ(map.GetKV(P(5 + 2053))->next, nullptr);
    EXPECT_EQ(map.GetCount(), 1);
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
    EXPECT_EQ(g_equalityCalls, (std::vector<std::pair<void*, void*>>{{stored, searched}, {searched, stored}}));
}

TEST(HashKV, IterationRemoveAllAndInit) {
    CPtr2PtrHashmap map(100);
    std::multiset<int> expected;
    for (int i = 1; i <= 150; ++i) expected.insert(i * 257 + i % 7);  // several per bucket
    for (int key : expected) map.Set(P(key), P(key));
    EXPECT_EQ(Keys(map), expected);
    HashKV_iterator* it = map._begin();
    while (!it->IsEnd()) it->skip();
    it->skip();
    void* key;
    EXPECT_FALSE(it->GetKey(&key) || it->GetValue(nullptr));

    map.RemoveAll();
    EXPECT_TRUE(Keys(map).empty() && map.GetCount() == 0);
    EXPECT_EQ(map.GetBucketCount(), 257);
    map.Set(P(3), P(3));
    map.InitHashTable(1000);
    EXPECT_EQ(map.GetBucketCount(), 2053);
    EXPECT_FALSE(map.IsExist(P(3)));
}

// An owning map frees replaced, removed and remaining keys (the sanitizer
// build reports any leak or double free).
TEST(HashKV, TextMapComparesContentsAndCanOwnKeys) {
    CText2PtrHashmap owning;
    owning.SetIsNeedFreeKey(1);
    for (const wchar_t* k : {L"名称", L"名称", L"b", L"c"}) owning.Set(MCloneText(const_cast<wchar_t*>(k)), P(1));
    EXPECT_EQ(owning.GetCount(), 3);
    EXPECT_TRUE(owning.IsExist(const_cast<wchar_t*>(L"名称")) && !owning.IsExist(const_cast<wchar_t*>(L"名")));
    EXPECT_EQ(owning.Remove(const_cast<wchar_t*>(L"b")), 1);
    void* same = owning.GetKV(const_cast<wchar_t*>(L"c"))->key;
    owning.Set(same, P(5));  // storing the same key again must not free it
    EXPECT_EQ(owning.GetKV(const_cast<wchar_t*>(L"c"))->value, P(5));
}

TEST(ThreadSafeHashmap, RemovingTheIteratorsEntryMovesItOn) {
    CThreadSafePtr2PtrHashmap map;
    for (int i = 1; i <= 3; ++i) map.Set(P(i), P(10 * i));
    HashKV_iterator* it = map._begin();
    void* key;
    map.Remove(P(3));  // elsewhere: the iterator stays
    EXPECT_TRUE(it->GetKey(&key) && key == P(1));
    map.Remove(P(1));
    EXPECT_TRUE(it->GetKey(&key) && key == P(2));
    map.Remove(P(2));
    EXPECT_TRUE(it->IsEnd());
}

TEST(ThreadSafeHashmap, LockIsRecursive) {
    CThreadSafePtr2PtrHashmap map;
    std::lock_guard<ZelThread::IMutex> hold(*map.GetMutex());
    map.Set(P(1), P(1));  // the same thread locks again
    EXPECT_EQ(map.Remove(P(1)), 1);
}

// Every operation takes the lock: from several threads at once no update is
// lost and the table stays whole.
TEST(ThreadSafeHashmap, ConcurrentSetsGetsAndRemovesLoseNothing) {
    CThreadSafePtr2PtrHashmap map;
    constexpr int kThreads = 4, kKeys = 2000;
    std::vector<int> mismatches(kThreads, 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&map, &mismatches, t] {
            auto key = [t](int i) { return reinterpret_cast<void*>(uintptr_t(t * kKeys + i + 1)); };
            for (int i = 0; i < kKeys; ++i) map.Set(key(i), key(i));
            for (int i = 0; i < kKeys; ++i) {
                void* value = nullptr;
                if (!map.Get(key(i), &value) || value != key(i)) ++mismatches[t];
            }
            for (int i = 0; i < kKeys; i += 2) map.Remove(key(i));
        });
    for (std::thread& thread : threads) thread.join();
    for (int t = 0; t < kThreads; ++t) EXPECT_EQ(mismatches[t], 0) << "thread " << t;
    EXPECT_EQ(map.GetCount(), kThreads * kKeys / 2);
    map.RemoveAll();
    EXPECT_EQ(map.GetCount(), 0);
    void* value = nullptr;
    EXPECT_EQ(map.Get(reinterpret_cast<void*>(uintptr_t(2)), &value), 0);
}

// Hash tables: buckets along the prime ladder, chains, iteration, owned
// keys, the guarded table under threads and the text map's spread.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cwchar>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <zel/hashkv.h>
#include <zel/memory.h>

namespace {

void* P(uintptr_t n) { return reinterpret_cast<void*>(n); }
wchar_t* W(const wchar_t* s) { return const_cast<wchar_t*>(s); }

// The keys an iteration visits; a key seen twice shows up twice.
std::multiset<uintptr_t> Keys(HashKV& table) {
    std::multiset<uintptr_t> keys;
    void *key, *value;
    for (HashKV_iterator* it = table._begin(); it->GetKeyValue(&key, &value); it->skip()) {
        EXPECT_EQ(table.GetKV(key)->value, value);
        keys.insert(reinterpret_cast<uintptr_t>(key));
    }
    return keys;
}

std::vector<std::pair<void*, void*>> g_equalityCalls;
int RecordingEquals(void* a, void* b) {
    g_equalityCalls.emplace_back(a, b);
    return a == b;
}

// Buckets: 2053 for no count, else the first prime of the table past
// t = 3 * n * 0.618 (139 -> 257, 140 -> 259). The pool refuses cells it
// cannot size and hands a freed cell out again.
TEST(HashKV, BucketCountFollowsThePrimeTableAndThePoolItsCells) {
    std::pair<int, int> cases[] = {{0, 2053}, {139, 257}, {140, 509}, {100000, 262007}};
    for (auto [n, buckets] : cases) EXPECT_EQ(HashKV(n).GetBucketCount(), buckets) << n;
    for (int size : {0, INT32_MAX / 100 + 1}) EXPECT_EQ(CMemoryPool_HashKV(size).Malloc(), nullptr) << size;
    CMemoryPool_HashKV pool(8);
    pool.Free(nullptr);  // not recorded as a free cell
    void* first = pool.Malloc();
    pool.Free(first);
    EXPECT_EQ(pool.Malloc(), first);
}

// Keys k and k + p share bucket k mod p at every size (each size has its own
// divisor); the largest key lands where unsigned arithmetic puts it. A table
// of 67220089 buckets takes 256 MiB.
TEST(HashKV, KeysLandInTheirBucketAtEverySize) {
    const unsigned primes[] = {257,    509,    1021,    2053,    4093,    8191,     16381,    32771,    65521,   131071,
                               262007, 525013, 1050239, 2100001, 4201123, 8402357, 16805323, 33610001, 67220089};
    for (unsigned p : primes) {
        CPtr2PtrHashmap map(int(p / 1.854));
        ASSERT_EQ(map.GetBucketCount(), int(p));
        for (uintptr_t key : {uintptr_t(7), 7 + p, uintptr_t(UINTPTR_MAX)}) map.Set(P(key), P(key));
        int bucket = -1;
        HashKV::KV* chain = map.GetKVs(P(7 + p), &bucket);
        EXPECT_TRUE(bucket == 7 && chain && chain->next && chain->next->key == P(7 + p)) << p;
        map.GetKVs(P(UINTPTR_MAX), &bucket);
        EXPECT_EQ(unsigned(bucket), unsigned(UINTPTR_MAX % p)) << p;
    }
}

// Past about 1.1 billion entries the bucket array would not fit in memory: a
// table keeps what it had, and an empty one starts over at 2053 buckets on
// its first Set.
TEST(HashKV, BucketArraysThatCannotExistAreRefused) {
    CPtr2PtrHashmap map(10);
    map.Set(P(1), P(2));
    map.InitHashTable(INT32_MAX);
    EXPECT_TRUE(map.GetBucketCount() == 257 && map.IsExist(P(1)));
    zel::FailAllocationAfter(1);  // a bucket array refused by the allocator keeps the table too
    map.InitHashTable(1000);
    zel::FailAllocationAfter(0);
    EXPECT_TRUE(map.GetBucketCount() == 257 && map.IsExist(P(1)));
    CPtr2PtrHashmap empty(1200000000);
    EXPECT_EQ(empty.GetBucketCount(), 0);
    void* value = P(9);
    EXPECT_TRUE(empty._begin()->IsEnd() && !empty.Get(P(1), &value) && !value && !empty.Remove(P(1)));
    zel::FailAllocationAfter(1);
    EXPECT_EQ(empty.Set(P(1), P(3)), 0);
    zel::FailAllocationAfter(0);
    EXPECT_EQ(empty.Set(P(1), P(3)), 1);
    EXPECT_EQ(empty.GetBucketCount(), 2053);
    EXPECT_TRUE(empty.Get(P(1), &value) && value == P(3));
}

TEST(HashKV, SetReplaceRemoveAndIterate) {
    CPtr2PtrHashmap map;  // 2053 buckets: 5, 5 + 2053 and 5 + 4106 collide
    for (int i : {0, 1, 2}) EXPECT_EQ(map.Set(P(5 + 2053 * i), P(i)), 1);
    EXPECT_EQ(map.Set(P(5), P(10)), 1);
    EXPECT_EQ(map.GetCount(), 3);  // the replaced key still counts once
    void* value = P(99);
    EXPECT_TRUE(map.Get(P(5), &value) && value == P(10));
    EXPECT_TRUE(!map.Get(P(6), &value) && value == nullptr);
    EXPECT_TRUE(map.Remove(P(5)) && !map.Remove(P(5)));  // unlinking the head keeps the rest
    EXPECT_EQ(map.GetKVs(P(5), nullptr)->key, P(5 + 2053));
    map.Remove(P(5 + 4106));  // and the tail
    EXPECT_EQ(map.GetKV(P(5 + 2053))->next, nullptr);

    HashKV_iterator a(&map), b(&map), loose;
    a.reset(), b.reset(), loose.reset();
    EXPECT_TRUE(a == b && !(a != b) && loose.IsEnd());  // an iterator of no table is at the end
    b.skip();
    EXPECT_TRUE(a != b && !(a == b));
    std::multiset<uintptr_t> expected;
    for (int i = 1; i <= 150; ++i) expected.insert(i * 2053 + i % 7);  // several per bucket
    for (uintptr_t key : expected) map.Set(P(key), P(key));
    expected.insert(5 + 2053);
    EXPECT_EQ(Keys(map), expected);
    map.InitHashTable(10);  // a new size drops the entries
    EXPECT_TRUE(Keys(map).empty() && map.GetCount() == 0 && map.GetBucketCount() == 257);
}

// Lookups pass (stored, searched); Remove passes (searched, stored).
TEST(HashKV, EqualityArgumentOrders) {
    CText2PtrHashmap text;
    text.SetFunctions(hashkv_GetTextHashValue, RecordingEquals);
    wchar_t stored[] = L"k", searched[] = L"k";
    text.Set(stored, P(1));
    g_equalityCalls.clear();
    text.Get(searched, nullptr);
    text.Remove(searched);
    EXPECT_EQ(g_equalityCalls, (std::vector<std::pair<void*, void*>>{{stored, searched}, {searched, stored}}));
}

// An owning map frees replaced, removed and remaining keys (the sanitizer
// build reports any leak or double free); null and the empty text are one key.
TEST(TextMap, ComparesContentsAndCanOwnKeys) {
    CText2PtrHashmap owning;
    owning.SetIsNeedFreeKey(1);
    for (const wchar_t* k : {L"名称", L"名称", L"b", L"c"}) owning.Set(MCloneText(W(k)), P(1));
    EXPECT_EQ(owning.GetCount(), 3);
    EXPECT_TRUE(owning.IsExist(W(L"名称")) && !owning.IsExist(W(L"名")));
    EXPECT_EQ(owning.Remove(W(L"b")), 1);
    void* same = owning.GetKV(W(L"c"))->key;
    owning.Set(same, P(5));  // storing the same key again must not free it
    EXPECT_EQ(owning.GetKV(W(L"c"))->value, P(5));

    CText2PtrHashmap map(1);
    map.Set(nullptr, P(1));
    void* value = nullptr;
    EXPECT_TRUE(map.Get(W(L""), &value) && value == P(1));
    EXPECT_FALSE(map.IsExist(W(L"a")));
    EXPECT_EQ(map.Remove(W(L"")), 1);
}

// Identifier-like keys (shared prefixes, same code-unit sums in places) fill
// about as many buckets as random keys would; the sum of code units fills
// under a tenth of them.
TEST(TextMap, SimilarKeysSpreadOverTheBuckets) {
    const int n = 20000;
    std::vector<std::wstring> keys;
    for (int i = 0; i < n; ++i) keys.push_back(L"工具.类" + std::to_wstring(i % 97) + L".方法_" + std::to_wstring(i));
    CText2PtrHashmap map(n);
    std::set<int> used;
    for (auto& key : keys) {
        map.Set(key.data(), &key);
        int bucket = -1;
        map.GetKVs(key.data(), &bucket);
        used.insert(bucket);
    }
    double buckets = map.GetBucketCount(), expected = buckets * (1 - std::exp(-double(n) / buckets));
    EXPECT_GT(double(used.size()), 0.95 * expected);
    EXPECT_EQ(hashkv_GetTextHashValue(W(L"ab")), unsigned(L'a' + L'b'));  // the sum itself stays
}

// Long chains of keys of every length, each in a block of exactly its size
// (the sanitizers see any read past a key's end): every key is found by an
// equal copy, and a prefix or an extension only when it is stored itself.
TEST(TextMap, ChainsOfMixedLengthsCompareWithinEachKey) {
    std::vector<std::unique_ptr<wchar_t[]>> keys;
    std::set<std::wstring> texts;
    CText2PtrHashmap map(1);  // few buckets: long chains
    for (int i = 0; i < 3000; ++i) {
        std::wstring text = std::to_wstring(i * 7919 % 100003).substr(0, 1 + i % 6);
        if (!texts.insert(text).second) continue;
        keys.push_back(std::make_unique<wchar_t[]>(text.size() + 1));
        std::wmemcpy(keys.back().get(), text.c_str(), text.size() + 1);
        map.Set(keys.back().get(), keys.back().get());
    }
    for (auto& key : keys) {
        std::wstring copy = key.get();
        void* value = nullptr;
        EXPECT_TRUE(map.Get(copy.data(), &value) && value == key.get()) << copy;
        for (std::wstring other : {copy + L"9", copy.substr(0, copy.size() - 1)})
            EXPECT_EQ(map.IsExist(other.data()) != 0, texts.count(other) == 1) << other;
    }
    for (auto& key : keys) EXPECT_EQ(map.Remove(std::wstring(key.get()).data()), 1);  // Remove compares its own way
    EXPECT_EQ(map.GetCount(), 0);
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

// Every operation takes the lock, which is recursive: from two threads at
// once no update is lost and the table stays whole.
TEST(ThreadSafeHashmap, ConcurrentSetsAndRemovesLoseNothing) {
    CThreadSafePtr2PtrHashmap map;
    {
        std::lock_guard<ZelThread::IMutex> hold(*map.GetMutex());
        map.Set(P(1), P(1));  // the same thread locks again
    }
    auto work = [&map](uintptr_t first) {
        for (uintptr_t key = first; key < first + 4000; ++key) map.Set(P(key), P(key));
        for (uintptr_t key = first; key < first + 4000; key += 2) map.Remove(P(key));
    };
    std::thread one(work, 10), two(work, 10000);
    one.join();
    two.join();
    EXPECT_EQ(map.GetCount(), 1 + 4000);
    void* value = nullptr;
    EXPECT_TRUE(map.Get(P(10001), &value) && value == P(10001));
    map.RemoveAll();
    EXPECT_EQ(map.GetCount(), 0);
}

}  // namespace

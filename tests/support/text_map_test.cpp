// The text map's own hash and equality: keys that differ in a few code units
// spread like random ones, and texts compare within each key.
#include <gtest/gtest.h>

#include <cmath>
#include <cwchar>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <zel/hashkv.h>

namespace {

// Identifier-like keys (shared prefixes, same code-unit sums in places) fill
// about as many buckets as random keys would; the sum of code units fills
// under a tenth of them.
TEST(TextMap, SimilarKeysSpreadOverTheBuckets) {
    const int n = 20000;
    std::vector<std::wstring> keys;
    for (int i = 0; i < n; ++i) keys.push_back(L"工具.类" + std::to_wstring(i % 97) + L".方法_" + std::to_wstring(i));
    keys.push_back(L"ab");
    keys.push_back(L"ba");  // the same sum
    CText2PtrHashmap map(n);
    for (auto& key : keys) ASSERT_EQ(map.Set(key.data(), &key), 1);
    std::set<int> used;
    for (auto& key : keys) {
        int bucket = -1;
        map.GetKVs(key.data(), &bucket);
        used.insert(bucket);
    }
    double buckets = map.GetBucketCount(), expected = buckets * (1 - std::exp(-double(keys.size()) / buckets));
    EXPECT_GT(double(used.size()), 0.95 * expected);
    EXPECT_EQ(map.GetCount(), int(keys.size()));
    void* value = nullptr;
    std::wstring probe = L"ba";
    EXPECT_TRUE(map.Get(probe.data(), &value) && value == &keys.back());
    EXPECT_EQ(hashkv_GetTextHashValue(const_cast<wchar_t*>(L"ab")), unsigned(L'a' + L'b'));  // the sum stays
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
        ASSERT_EQ(map.Set(keys.back().get(), keys.back().get()), 1);
    }
    for (auto& key : keys) {
        std::wstring copy = key.get();
        void* value = nullptr;
        EXPECT_TRUE(map.Get(copy.data(), &value) && value == key.get()) << copy;
        for (std::wstring other : {copy + L"9", copy.substr(0, copy.size() - 1), copy.substr(1)})
            EXPECT_EQ(map.IsExist(other.data()) != 0, texts.count(other) == 1) << other;
    }
}

}  // namespace

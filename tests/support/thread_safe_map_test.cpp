// The thread-safe map used from several threads at once: every operation
// takes the lock, so no update is lost and the table stays whole.
#include <gtest/gtest.h>

#include <cstdint>
#include <thread>
#include <vector>

#include <zel/hashkv.h>

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

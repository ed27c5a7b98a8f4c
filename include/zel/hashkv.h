// HashKV: a chained hash table from void* keys to void* values, with its
// cells taken from a pool, user-chosen hash and equality functions, and
// optional ownership of its keys. The table never rehashes by itself: pass
// the expected number of entries to the constructor or to InitHashTable.
#pragma once

#include <pthread.h>

#include <zel/minimem.h>

// Hands out fixed-size cells from blocks of 100; freed cells are reused
// last in, first out.
class ZEL_API CMemoryPool_HashKV {
public:
    explicit CMemoryPool_HashKV(int cellSize);
    ~CMemoryPool_HashKV();
    void SetMemCellSize(int cellSize);
    void* Malloc();
    void Free(void* cell);
    void FreeAll();

    enum { kCellsPerBlock = 100 };

private:
    int m_cellSize;
    int m_usedInNewestBlock;  // -1 before the first block
    CMiniMem m_blocks;
    CMPtrArray m_freeCells;
};

class HashKV_iterator;

typedef unsigned int (*HashKV_HashFunc)(void* key);
typedef int (*HashKV_EqualsFunc)(void* a, void* b);

class ZEL_API HashKV {
public:
    struct KV {
        KV* next;
        void* key;
        void* value;
    };

    explicit HashKV(int n);
    virtual ~HashKV();
    virtual HashKV_iterator* CreateIterator();
    virtual void* KV_GetKey(KV* kv) const;
    virtual void* KV_GetValue(KV* kv) const;
    virtual void KV_SetKey(KV* kv, void* key);
    virtual void KV_SetValue(KV* kv, void* value);

    HashKV(const HashKV&) = delete;
    HashKV& operator=(const HashKV&) = delete;

    void SetFunctions(unsigned int (*hash)(void*), int (*equals)(void*, void*));
    void SetIsNeedFreeKey(int needFreeKey);
    void InitHashTable(int n);

    // 1 on success; 0 when a new cell could not be allocated (nothing changed).
    int Set(void* key, void* value);
    int Get(void* key, void** value);
    int IsExist(void* key);
    KV* GetKV(void* key) const;
    KV* GetKVs(void* key, int* bucket) const;
    int Remove(void* key);
    void RemoveAll();
    int GetCount();
    int GetBucketCount() const { return m_bucketCount; }
    HashKV_iterator* _begin();

protected:
    friend class HashKV_iterator;
    unsigned int BucketOf(void* key) const;

    CMemoryPool_HashKV m_pool;
    int m_needFreeKey;
    KV** m_buckets;
    int m_count;
    int m_bucketCount;
    HashKV_iterator* m_iterator;
    HashKV_HashFunc m_hash;
    HashKV_EqualsFunc m_equals;
};

class ZEL_API HashKV_iterator {
public:
    explicit HashKV_iterator(HashKV* table = nullptr);
    HashKV_iterator(const HashKV_iterator& other);
    HashKV_iterator& operator=(const HashKV_iterator& other);
    void CopyFrom(const HashKV_iterator& other);
    bool operator==(const HashKV_iterator& other) const;
    bool operator!=(const HashKV_iterator& other) const;

    void Attach(HashKV* table) { m_table = table; }
    // To the first entry of the table, or to the end when it is empty.
    void reset();
    void skip();
    bool IsEnd() const { return m_kv == nullptr; }

    // 0 at the end; otherwise stores through each non-null argument, 1.
    int GetKey(void** key);
    int GetValue(void** value);
    int GetKeyValue(void** key, void** value);

private:
    void FirstFrom(int bucket);

    int m_bucket;
    HashKV::KV* m_kv;
    HashKV* m_table;
};

ZEL_API unsigned int hashkv_GetIntHashValue(void* key);
ZEL_API int hashkv_IsIntEquals(void* a, void* b);
ZEL_API unsigned int hashkv_GetTextHashValue(void* key);
ZEL_API int hashkv_IsTextEquals(void* a, void* b);

class ZEL_API CPtr2PtrHashmap : public HashKV {
public:
    explicit CPtr2PtrHashmap(int n = 0);
    ~CPtr2PtrHashmap() override;
};

// Keys are wide texts compared case-sensitively; the map does not own them
// unless SetIsNeedFreeKey(1) is called. Its hash is its own (not
// hashkv_GetTextHashValue), so the order of iteration is unspecified.
class ZEL_API CText2PtrHashmap : public HashKV {
public:
    explicit CText2PtrHashmap(int n = 0);
    ~CText2PtrHashmap() override;
};

namespace ZelThread {
class ZEL_API IMutex {
public:
    virtual ~IMutex();
    virtual void lock() = 0;
    virtual void unlock() = 0;
};

// Recursive: the thread holding it may lock it again.
class ZEL_API Mutex : public IMutex {
public:
    Mutex();
    ~Mutex() override;
    void lock() override;
    void unlock() override;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

private:
    pthread_mutex_t m_mutex;
};
}  // namespace ZelThread

// Every operation runs under one recursive mutex; GetMutex() lets callers
// hold it across several operations, iteration included.
class ZEL_API CThreadSafePtr2PtrHashmap : public CPtr2PtrHashmap {
public:
    explicit CThreadSafePtr2PtrHashmap(int n = 0);
    ~CThreadSafePtr2PtrHashmap() override;
    int Set(void* key, void* value);
    int Get(void* key, void** value);
    // Moves the cached iterator off the removed entry first.
    int Remove(void* key);
    void RemoveAll();
    ZelThread::IMutex* GetMutex();

private:
    ZelThread::Mutex m_mutex;
};

static_assert(sizeof(HashKV::KV) == 12);
static_assert(sizeof(CMemoryPool_HashKV) == 44);
static_assert(sizeof(HashKV) == 76, "vptr, pool, then seven words");
static_assert(sizeof(HashKV_iterator) == 12);

#include <zel/hashkv.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <mutex>
#include <new>
#include <utility>

#include <zel/memory.h>
#include <zel/textfuncs.h>

namespace {

constexpr int kPrimes[] = {257,     509,     1021,     2053,     4093,     8191,     16381,
                       32771,   65521,   131071,   262007,   525013,   1050239,  2100001,
                       4201123, 8402357, 16805323, 33610001, 67220089, 2147483647};

int FirstPrimeFrom(int index, long long atLeast) {
    for (int i = index; i < static_cast<int>(std::size(kPrimes)); ++i)
        if (kPrimes[i] >= atLeast) return kPrimes[i];
    return kPrimes[std::size(kPrimes) - 1];
}

// About 1.85 buckets per expected entry; 2053 when no estimate is given.
int BucketCountFor(int n) {
    if (n < 1) return FirstPrimeFrom(0, 1898);
    auto t = static_cast<long long>(3.0 * n * 0.618);
    if (t <= kPrimes[0]) return kPrimes[0];
    return FirstPrimeFrom(1, t);
}

}  // namespace

// ---- pool ----

CMemoryPool_HashKV::CMemoryPool_HashKV(int cellSize)
    : m_cellSize(cellSize), m_usedInNewestBlock(-1), m_freeCells(1024) {}

CMemoryPool_HashKV::~CMemoryPool_HashKV() { FreeAll(); }

void CMemoryPool_HashKV::SetMemCellSize(int cellSize) { m_cellSize = cellSize; }

void* CMemoryPool_HashKV::Malloc() {
    int freed = m_freeCells.GetSize() / static_cast<int>(sizeof(void*));
    if (freed > 0) {
        void* cell;
        std::memcpy(&cell, m_freeCells.GetData() + (freed - 1) * sizeof(void*), sizeof cell);
        return m_freeCells.Remove(-1, sizeof(void*)) ? cell : nullptr;
    }
    if (m_usedInNewestBlock >= 0 && m_usedInNewestBlock < kCellsPerBlock) {
        unsigned char* block;
        std::memcpy(&block, m_blocks.GetData() + m_blocks.GetSize() - sizeof block, sizeof block);
        return block + m_cellSize * m_usedInNewestBlock++;
    }
    if (m_cellSize < 1 || m_cellSize > INT_MAX / kCellsPerBlock) return nullptr;
    void* block = zel_malloc(m_cellSize * kCellsPerBlock);
    if (!block) return nullptr;
    if (!m_blocks.Append(&block, sizeof block)) {
        zel_free(block);
        return nullptr;
    }
    m_usedInNewestBlock = 1;
    return block;
}

// A cell that cannot be recorded as free is simply not reused before FreeAll.
void CMemoryPool_HashKV::Free(void* cell) {
    if (cell) m_freeCells.Append(&cell, sizeof cell);
}

void CMemoryPool_HashKV::FreeAll() {
    auto** blocks = reinterpret_cast<void**>(m_blocks.GetData());
    for (int i = 0; i < m_blocks.GetSize() / static_cast<int>(sizeof(void*)); ++i) zel_free(blocks[i]);
    m_blocks.Free();
    m_freeCells.Free();
    m_usedInNewestBlock = -1;
}

// ---- table ----

namespace {
// The text map's own hash and equality (with the maps, below).
unsigned int TextMapHash(void* key);
int TextMapEquals(void* a, void* b);
inline unsigned int HashAndLength(const wchar_t* s, int* length);
inline bool SameText(const wchar_t* stored, const wchar_t* probe, int length);
}  // namespace

HashKV::HashKV(int n)
    : m_pool(sizeof(KV)),
      m_needFreeKey(0),
      m_buckets(nullptr),
      m_count(0),
      m_bucketCount(0),
      m_iterator(nullptr),
      m_hash(hashkv_GetIntHashValue),
      m_equals(hashkv_IsIntEquals) {
    InitHashTable(n);
}

HashKV::~HashKV() {
    RemoveAll();
    delete[] m_buckets;
    delete m_iterator;
}

HashKV_iterator* HashKV::CreateIterator() { return new (std::nothrow) HashKV_iterator(this); }
void* HashKV::KV_GetKey(KV* kv) const { return kv->key; }
void* HashKV::KV_GetValue(KV* kv) const { return kv->value; }
void HashKV::KV_SetKey(KV* kv, void* key) { kv->key = key; }
void HashKV::KV_SetValue(KV* kv, void* value) { kv->value = value; }

void HashKV::SetFunctions(unsigned int (*hash)(void*), int (*equals)(void*, void*)) {
    m_hash = hash;
    m_equals = equals;
}

void HashKV::SetIsNeedFreeKey(int needFreeKey) { m_needFreeKey = needFreeKey; }

// When the new bucket array cannot be allocated the table stays as it was.
// A count whose array would not fit in memory at all is refused first: an
// array new of that size throws even in its nothrow form.
void HashKV::InitHashTable(int n) {
    int bucketCount = BucketCountFor(n);
    if (size_t(bucketCount) > SIZE_MAX / sizeof(KV*)) return;
    KV** buckets = new (std::nothrow) KV*[bucketCount]();
    if (!buckets) return;
    RemoveAll();
    delete[] m_buckets;
    m_buckets = buckets;
    m_bucketCount = bucketCount;
}

namespace {
// h mod p for a prime of the table, by a constant divisor, which the
// compiler turns into a multiplication instead of a division.
template <size_t... I>
unsigned int ModuloPrime(unsigned int h, unsigned int p, std::index_sequence<I...>) {
    unsigned int result = 0;
    bool found = ((p == unsigned(kPrimes[I]) ? (result = h % unsigned(kPrimes[I]), true) : false) || ...);
    return found ? result : h % p;
}

// A hash to its bucket among `count`.
unsigned int Reduce(unsigned int hash, int count) {
    return ModuloPrime(hash, static_cast<unsigned int>(count), std::make_index_sequence<std::size(kPrimes)>());
}
}  // namespace

unsigned int HashKV::BucketOf(void* key) const { return Reduce(m_hash(key), m_bucketCount); }

int HashKV::Set(void* key, void* value) {
    if (!m_buckets) InitHashTable(m_bucketCount);
    if (!m_buckets) return 0;
    if (KV* kv = GetKV(key)) {
        void* oldKey = KV_GetKey(kv);
        if (m_needFreeKey && oldKey != key) zel_free(oldKey);  // never the key being stored
        KV_SetKey(kv, key);
        KV_SetValue(kv, value);
        return 1;
    }
    auto* kv = static_cast<KV*>(m_pool.Malloc());
    if (!kv) return 0;
    KV_SetKey(kv, key);
    KV_SetValue(kv, value);
    kv->next = nullptr;
    KV** link = &m_buckets[BucketOf(key)];
    while (*link) link = &(*link)->next;
    *link = kv;
    ++m_count;
    return 1;
}

int HashKV::Get(void* key, void** value) {
    KV* kv = GetKV(key);
    if (value) *value = kv ? KV_GetValue(kv) : nullptr;
    return kv ? 1 : 0;
}

int HashKV::IsExist(void* key) { return GetKV(key) != nullptr; }

HashKV::KV* HashKV::GetKV(void* key) const {
    if (!m_buckets || m_count == 0) return nullptr;
    // The text map's own functions are inlined: no call per lookup and
    // cell, and the probe's length is counted once. The map is known by its
    // functions (the table's fixed layout has no room for a kind), so one
    // given other functions with SetFunctions takes the general path.
    if (m_hash == TextMapHash && m_equals == TextMapEquals) {
        auto* probe = static_cast<const wchar_t*>(key);
        int length;
        unsigned int hash = HashAndLength(probe, &length);
        for (KV* kv = m_buckets[Reduce(hash, m_bucketCount)]; kv; kv = kv->next)
            if (SameText(static_cast<const wchar_t*>(KV_GetKey(kv)), probe, length)) return kv;
        return nullptr;
    }
    for (KV* kv = m_buckets[Reduce(m_hash(key), m_bucketCount)]; kv; kv = kv->next)
        if (m_equals(KV_GetKey(kv), key)) return kv;
    return nullptr;
}

HashKV::KV* HashKV::GetKVs(void* key, int* bucket) const {
    if (!m_buckets || m_count == 0) return nullptr;
    unsigned int index = BucketOf(key);
    if (bucket) *bucket = static_cast<int>(index);
    return m_buckets[index];
}

int HashKV::Remove(void* key) {
    if (!m_buckets || m_count == 0) return 0;
    for (KV** link = &m_buckets[BucketOf(key)]; *link; link = &(*link)->next) {
        KV* kv = *link;
        if (!m_equals(key, KV_GetKey(kv))) continue;
        *link = kv->next;
        if (m_needFreeKey) zel_free(KV_GetKey(kv));
        m_pool.Free(kv);
        --m_count;
        return 1;
    }
    return 0;
}

void HashKV::RemoveAll() {
    if (m_needFreeKey && m_buckets) {
        for (int i = 0; i < m_bucketCount; ++i)
            for (KV* kv = m_buckets[i]; kv; kv = kv->next) zel_free(KV_GetKey(kv));
    }
    if (m_buckets) std::memset(m_buckets, 0, sizeof(KV*) * m_bucketCount);
    m_count = 0;
    m_pool.FreeAll();
    // The cells are gone: the cached iterator is parked at the end.
    if (m_iterator) m_iterator->reset();
}

int HashKV::GetCount() { return m_count; }

HashKV_iterator* HashKV::_begin() {
    if (!m_iterator) m_iterator = CreateIterator();
    if (!m_iterator) return nullptr;
    m_iterator->Attach(this);
    m_iterator->reset();
    return m_iterator;
}

// ---- iterator ----

HashKV_iterator::HashKV_iterator(HashKV* table) : m_bucket(0), m_kv(nullptr), m_table(table) {}
HashKV_iterator::HashKV_iterator(const HashKV_iterator& other) { CopyFrom(other); }

HashKV_iterator& HashKV_iterator::operator=(const HashKV_iterator& other) {
    CopyFrom(other);
    return *this;
}

void HashKV_iterator::CopyFrom(const HashKV_iterator& other) {
    m_bucket = other.m_bucket;
    m_kv = other.m_kv;
    m_table = other.m_table;
}

bool HashKV_iterator::operator==(const HashKV_iterator& other) const {
    return m_table == other.m_table && m_kv == other.m_kv;
}

bool HashKV_iterator::operator!=(const HashKV_iterator& other) const { return !(*this == other); }

void HashKV_iterator::reset() {
    m_bucket = 0;
    m_kv = nullptr;
    if (m_table && m_table->m_buckets && m_table->m_count >= 1) FirstFrom(0);
}

void HashKV_iterator::FirstFrom(int bucket) {
    for (; bucket < m_table->m_bucketCount; ++bucket) {
        if (m_table->m_buckets[bucket]) {
            m_bucket = bucket;
            m_kv = m_table->m_buckets[bucket];
            return;
        }
    }
    m_bucket = m_table->m_bucketCount;
    m_kv = nullptr;
}

void HashKV_iterator::skip() {
    if (!m_kv) return;
    if (m_kv->next)
        m_kv = m_kv->next;
    else
        FirstFrom(m_bucket + 1);
}

int HashKV_iterator::GetKey(void** key) { return GetKeyValue(key, nullptr); }
int HashKV_iterator::GetValue(void** value) { return GetKeyValue(nullptr, value); }

int HashKV_iterator::GetKeyValue(void** key, void** value) {
    if (!m_kv) return 0;
    if (key) *key = m_table->KV_GetKey(m_kv);
    if (value) *value = m_table->KV_GetValue(m_kv);
    return 1;
}

// ---- hash and equality ----

unsigned int hashkv_GetIntHashValue(void* key) { return static_cast<unsigned int>(reinterpret_cast<uintptr_t>(key)); }
int hashkv_IsIntEquals(void* a, void* b) { return a == b; }
unsigned int hashkv_GetTextHashValue(void* key) { return GetTextHash(static_cast<wchar_t*>(key)); }
int hashkv_IsTextEquals(void* a, void* b) {
    return mystrcmp(static_cast<wchar_t*>(a), static_cast<wchar_t*>(b)) == 0;
}

// ---- maps ----

CPtr2PtrHashmap::CPtr2PtrHashmap(int n) : HashKV(n) {}
CPtr2PtrHashmap::~CPtr2PtrHashmap() = default;

namespace {
// The text map spreads its keys by a polynomial over the code units, taken
// in two interleaved lanes so the multiplications overlap; the high bits are
// folded in and the prime bucket count does the rest. (A plain sum of code
// units gives identifier-like keys a few hundred distinct values, and the
// chains grow with the square of the count.) The key's length comes out too,
// for the compares along its chain.
inline unsigned int HashAndLength(const wchar_t* s, int* length) {
    const unsigned int kOdd = 0x01000193u, kSquare = kOdd * kOdd;
    const wchar_t* start = s;
    unsigned int even = 0x811C9DC5u, odd = 0x9E3779B9u;
    if (s) {
        for (; s[0] && s[1]; s += 2) {
            even = (even + static_cast<unsigned int>(s[0])) * kSquare;
            odd = (odd + static_cast<unsigned int>(s[1])) * kSquare;
        }
        if (s[0]) even = (even + static_cast<unsigned int>(*s++)) * kOdd;
    }
    *length = static_cast<int>(s - start);
    unsigned int hash = even ^ (odd * kOdd);
    return hash ^ (hash >> 15);
}

unsigned int TextMapHash(void* key) {
    int length;
    return HashAndLength(static_cast<const wchar_t*>(key), &length);
}

// Case-sensitive, a null text counting as the empty one.
int TextMapEquals(void* a, void* b) {
    auto* x = static_cast<const wchar_t*>(a);
    auto* y = static_cast<const wchar_t*>(b);
    if (x == y) return 1;
    if (!x || !y) return (x ? *x : *y) == 0;
    for (;; x += 2, y += 2) {
        if (x[0] != y[0]) return 0;
        if (!x[0]) return 1;
        if (x[1] != y[1]) return 0;
        if (!x[1]) return 1;
    }
}

// Whether a stored key equals a probe of known length. The probe's units
// before its end are not zero, so the stored key is never read past its own.
inline bool SameText(const wchar_t* stored, const wchar_t* probe, int length) {
    if (stored == probe) return true;
    if (!stored || !probe) return TextMapEquals(const_cast<wchar_t*>(stored), const_cast<wchar_t*>(probe));
    int i = 0;
    for (; i < length; i += 2) {  // stored[i + 1] is read only once stored[i] matched a unit that is not zero
        if (stored[i] != probe[i]) return false;
        if (stored[i + 1] != probe[i + 1]) return false;
    }
    return i > length || stored[i] == 0;
}
}  // namespace

CText2PtrHashmap::CText2PtrHashmap(int n) : HashKV(n) { SetFunctions(TextMapHash, TextMapEquals); }
CText2PtrHashmap::~CText2PtrHashmap() = default;

namespace ZelThread {
IMutex::~IMutex() = default;

Mutex::Mutex() {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&m_mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

Mutex::~Mutex() { pthread_mutex_destroy(&m_mutex); }
void Mutex::lock() { pthread_mutex_lock(&m_mutex); }
void Mutex::unlock() { pthread_mutex_unlock(&m_mutex); }
}  // namespace ZelThread

CThreadSafePtr2PtrHashmap::CThreadSafePtr2PtrHashmap(int n) : CPtr2PtrHashmap(n) {}
CThreadSafePtr2PtrHashmap::~CThreadSafePtr2PtrHashmap() = default;

int CThreadSafePtr2PtrHashmap::Set(void* key, void* value) {
    std::lock_guard<ZelThread::IMutex> hold(m_mutex);
    return HashKV::Set(key, value);
}

int CThreadSafePtr2PtrHashmap::Get(void* key, void** value) {
    std::lock_guard<ZelThread::IMutex> hold(m_mutex);
    return HashKV::Get(key, value);
}

int CThreadSafePtr2PtrHashmap::Remove(void* key) {
    std::lock_guard<ZelThread::IMutex> hold(m_mutex);
    void* current;
    if (m_iterator && m_iterator->GetKey(&current) && m_equals(current, key)) m_iterator->skip();
    return HashKV::Remove(key);
}

void CThreadSafePtr2PtrHashmap::RemoveAll() {
    std::lock_guard<ZelThread::IMutex> hold(m_mutex);
    HashKV::RemoveAll();
}

ZelThread::IMutex* CThreadSafePtr2PtrHashmap::GetMutex() { return &m_mutex; }

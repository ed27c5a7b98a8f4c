#include <zel/minimem.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include <zel/memory.h>
#include <zel/values.h>
#include <zel/textfuncs.h>

namespace {

// The next granule boundary strictly past n (n + A - n mod A); 0 when it
// does not fit in an int.
int RoundedCapacity(int n, int granule) {
    int rest = granule & (granule - 1) ? n % granule : n & (granule - 1);  // no division for powers of two
    long long capacity = static_cast<long long>(n) + granule - rest;
    return capacity > INT_MAX ? 0 : static_cast<int>(capacity);
}

// A source that lies inside the buffer being edited would move or be
// overwritten during the edit, so it is copied aside first.
class SourceCopy {
public:
    SourceCopy(const CMiniMem& target, void* src, int n) : m_src(src) {
        auto* p = static_cast<unsigned char*>(src);
        unsigned char* block = target.GetData();
        if (p && block && n > 0 && p >= block && p < block + target.GetCapacity()) {
            m_copy = zel_malloc(n);
            if (m_copy) std::memcpy(m_copy, src, n);
            m_src = m_copy;
            m_failed = !m_copy;
        }
    }
    ~SourceCopy() { zel_free(m_copy); }
    SourceCopy(const SourceCopy&) = delete;
    SourceCopy& operator=(const SourceCopy&) = delete;
    bool Failed() const { return m_failed; }
    void* Get() const { return m_src; }

private:
    void* m_src;
    void* m_copy = nullptr;
    bool m_failed = false;
};

void CopyOrZero(unsigned char* dst, const void* src, int n) {
    if (src)
        std::memcpy(dst, src, n);
    else
        std::memset(dst, 0, n);
}

// The capacity a buffer shows grows by its granule; the block beneath holds
// at least BlockFor(capacity) bytes, which steps by half again (2^k and
// 1.5 * 2^k; past 128 MiB, by 64 MiB). So a buffer filled a little at a time
// is moved a logarithmic number of times, and whether a granule step fits in
// the block follows from the capacity alone. Every value it gives maps to
// itself, so a capacity raised within a block keeps the block large enough.
int BlockFor(int capacity) {
    const int kLarge = 128 << 20, kStep = 64 << 20;
    if (capacity <= 32) return 32;
    if (capacity > kLarge) {
        long long block = (static_cast<long long>(capacity) + kStep - 1) / kStep * kStep;
        return block > INT_MAX ? capacity : static_cast<int>(block);
    }
    unsigned below = 1u << (31 - __builtin_clz(static_cast<unsigned>(capacity - 1)));  // below < capacity <= 2 below
    unsigned block = capacity <= static_cast<int>(below + below / 2) ? below + below / 2 : 2 * below;
    return static_cast<int>(block);
}

// The rounded capacity for n bytes when the block beneath a buffer of
// `capacity` holds it without moving; 0 otherwise.
int CapacityInPlace(int capacity, int n, int granule) {
    int rounded = RoundedCapacity(n, granule);
    return rounded && rounded <= BlockFor(capacity) ? rounded : 0;
}

class FileCloser {
public:
    explicit FileCloser(FILE* f) : m_file(f) {}
    ~FileCloser() { if (m_file) std::fclose(m_file); }
    FileCloser(const FileCloser&) = delete;
    FileCloser& operator=(const FileCloser&) = delete;

private:
    FILE* m_file;
};

// How many of the buffer's bytes a write of n covers (-1: all of them).
int WriteCount(int n, int size) {
    if (n == -1) return size;
    return std::clamp(n, 0, size);
}

}  // namespace

CMiniMem::~CMiniMem() { Free(); }

int CMiniMem::GetMemAlignSize() { return 32; }

unsigned char* CMiniMem::Alloc(int n) {
    if (m_data) return Realloc(n);
    if (n <= 0) return nullptr;  // a negative size allocates nothing, like 0
    int capacity = RoundedCapacity(n, GetMemAlignSize());
    if (capacity) m_data = static_cast<unsigned char*>(zel_malloc(BlockFor(capacity)));
    if (m_data) {
        m_capacity = capacity;
        m_size = n;
    } else {
        m_capacity = 0;
        m_size = 0;
    }
    return m_data;
}

unsigned char* CMiniMem::Realloc(int n) {
    if (n == 0) {
        Free();
        return nullptr;
    }
    if (n < 0) return nullptr;  // nothing changes
    if (!m_data) return Alloc(n);
    int granule = GetMemAlignSize();
    if (n <= m_capacity && m_capacity - n <= granule) {
        m_size = n;
        return m_data;
    }
    if (n > m_capacity) {
        if (int capacity = CapacityInPlace(m_capacity, n, granule)) {
            m_capacity = capacity;
            m_size = n;
            return m_data;
        }
    }
    int capacity = RoundedCapacity(n, granule);
    if (!capacity) return nullptr;
    auto* data = static_cast<unsigned char*>(zel_realloc(m_data, BlockFor(capacity)));
    if (!data) return nullptr;
    m_data = data;
    m_capacity = capacity;
    m_size = n;
    return m_data;
}

void CMiniMem::Free() {
    if (m_data) zel_free(m_data);
    m_data = nullptr;
    m_capacity = 0;
    m_size = 0;
}

unsigned char* CMiniMem::Detach() {
    // A block with capacity but no contents stays with the buffer.
    if (m_size == 0) return nullptr;
    unsigned char* data = m_data;
    m_data = nullptr;
    m_capacity = 0;
    m_size = 0;
    return data;
}

void CMiniMem::xchg(CMiniMem& other) {
    std::swap(m_data, other.m_data);
    std::swap(m_capacity, other.m_capacity);
    std::swap(m_size, other.m_size);
}

bool CMiniMem::RaiseCapacity(int width) {
    if (!m_data || width < 0 || width > INT_MAX - m_size) return false;
    int capacity = CapacityInPlace(m_capacity, m_size + width, GetMemAlignSize());
    if (!capacity) return false;
    m_capacity = capacity;
    return true;
}

int CMiniMem::Append(void* src, int n) {
    if (n == 0) return 1;
    if (n < 0 || n > INT_MAX - m_size) return 0;
    // While the block does not move, even a source inside it stays valid.
    if (n <= m_capacity - m_size || RaiseCapacity(n)) {
        if (src)
            std::memmove(m_data + m_size, src, n);
        else
            std::memset(m_data + m_size, 0, n);
        m_size += n;
        return 1;
    }
    SourceCopy source(*this, src, n);
    if (source.Failed()) return 0;
    int oldSize = m_size;
    if (!Realloc(oldSize + n)) return 0;
    CopyOrZero(m_data + oldSize, source.Get(), n);
    return 1;
}

int CMiniMem::Append(CMiniMem& other) {
    if (other.m_size == 0) return 1;
    return Append(other.m_data, other.m_size);
}

int CMiniMem::Insert(int pos, void* src, int n) {
    if (n == 0) return 1;
    if (n < 0 || pos < 0) return 0;
    if (pos == m_size) return Append(src, n);
    int oldSize = m_size;
    int end = std::max(pos, oldSize);
    if (n > INT_MAX - end) return 0;
    SourceCopy source(*this, src, n);
    if (source.Failed() || !Realloc(end + n)) return 0;
    // Past the end, the bytes between the old end and pos stay as they are.
    if (pos < oldSize) std::memmove(m_data + pos + n, m_data + pos, oldSize - pos);
    CopyOrZero(m_data + pos, source.Get(), n);
    return 1;
}

// The bytes are already moved into place when the size drops; if the
// allocator refuses to shrink the block, the larger block is kept.
void CMiniMem::ShrinkTo(int n) {
    if (!Realloc(n)) m_size = n;
}

int CMiniMem::Remove(int pos, int n) {
    if (pos == -1) {
        if (n < 0) return 0;
        int newSize = std::max(0, m_size - n);
        if (newSize == 0) {
            Free();
            return 1;
        }
        return Realloc(newSize) != nullptr;
    }
    if (n == 0) return 1;
    if (!m_data || pos < 0 || n < 0 || pos >= m_size) return 0;
    int tail = m_size - pos;
    int removed = tail;
    if (n < tail) {
        std::memmove(m_data + pos, m_data + pos + n, tail - n);
        removed = n;
    }
    if (removed == m_size) {
        Free();
        return 1;
    }
    ShrinkTo(m_size - removed);
    return 1;
}

int CMiniMem::Replace(int pos, int n, unsigned char* src, int m) {
    if (pos < 0 || n < 0 || m < 0) return 0;  // no range before the start
    if (n == 0 || pos >= m_size) return Insert(pos, src, m);
    if (m == 0) return Remove(pos, n);
    n = std::min(n, m_size - pos);
    int rest = m_size - pos - n;
    SourceCopy source(*this, src, m);
    if (source.Failed()) return 0;
    if (m > n) {
        if (m - n > INT_MAX - m_size || !Realloc(m_size + (m - n))) return 0;
        std::memmove(m_data + pos + m, m_data + pos + n, rest);
    } else if (m < n) {
        std::memmove(m_data + pos + m, m_data + pos + n, rest);
        ShrinkTo(m_size - (n - m));
    }
    CopyOrZero(m_data + pos, source.Get(), m);
    return 1;
}

int CMiniMem::AddText(wchar_t* text) {
    int length = mystrlen(text);
    if (length == 0) return 1;
    return Append(text, length * static_cast<int>(sizeof(wchar_t)));
}

int CMiniMem::AddStr(wchar_t* text) {
    if (!text) return Append(nullptr, sizeof(wchar_t));
    return Append(text, (mystrlen(text) + 1) * static_cast<int>(sizeof(wchar_t)));
}

int CMiniMem::AddBin(unsigned char* bin) {
    int length = MGetZelBinLength(bin);
    if (length <= 0) return 1;  // null, empty or a corrupt negative length
    return Append(MGetZelBinData(bin), length);
}

int CMiniMem::AddSpecNumBytes(int n, ...) {
    if (n < 1) {
        Realloc(m_size + n);
        return 1;
    }
    int oldSize = m_size;
    // A failed growth stores nothing rather than writing past the block.
    if (n > INT_MAX - oldSize || !Realloc(oldSize + n)) return 0;
    va_list args;
    va_start(args, n);
    for (int i = 0; i < n; ++i) m_data[oldSize + i] = static_cast<unsigned char>(va_arg(args, int));
    va_end(args);
    return 1;
}

int CMiniMem::ReadFromFile(wchar_t* path, int n) {
    CMiniMem pathText;
    FILE* file = path ? std::fopen(GetMBSText(path, pathText), "rb") : nullptr;
    if (!file) {
        Free();
        return -1;
    }
    FileCloser closer(file);
    if (n == -1) {
        std::fseek(file, 0, SEEK_END);
        long end = std::ftell(file);
        n = end > INT_MAX ? -1 : static_cast<int>(end);  // too large reads as nothing
        std::fseek(file, 0, SEEK_SET);
    }
    if (n <= 0) {
        Free();
        return 0;
    }
    if (!Alloc(n)) {
        Free();
        return -1;
    }
    int count = static_cast<int>(std::fread(m_data, 1, n, file));
    if (std::ferror(file)) {
        Free();
        return -1;
    }
    if (count < n) Realloc(count);
    return count;
}

int CMiniMem::WriteIntoFile(wchar_t* path, int n) {
    CMiniMem pathText;
    FILE* file = path ? std::fopen(GetMBSText(path, pathText), "wb") : nullptr;
    if (!file) return 0;
    FileCloser closer(file);
    int count = WriteCount(n, m_size);
    if (count && std::fwrite(m_data, 1, count, file) < static_cast<size_t>(count)) return 0;
    return 1;
}

int CMiniMem::WriteIntoELFFile(wchar_t* path, int n) {
    CMiniMem pathText;
    int fd = path ? ::open(GetMBSText(path, pathText), O_WRONLY | O_CREAT | O_TRUNC, 0700) : -1;
    if (fd < 0) return 0;
    int count = WriteCount(n, m_size);
    bool complete = count == 0 || ::write(fd, m_data, count) == count;
    ::close(fd);
    return complete ? 1 : 0;
}

CAlignMem::~CAlignMem() = default;
int CAlignMem::GetMemAlignSize() { return m_granule; }

CMIntArray::~CMIntArray() = default;
CMPtrArray::~CMPtrArray() = default;

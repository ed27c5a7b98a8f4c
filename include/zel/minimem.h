// CMiniMem: the growable, owning byte buffer the library stands on, and its
// relatives that only differ in the granule by which capacity is rounded.
//
// Capacity is always rounded to n + A - (n mod A) for granule A, so a buffer
// holding data always has spare room. Growth is linear by the granule; the
// block beneath is larger and steps geometrically, and the granule step
// trusts that, so subclasses change the block only through the methods. The
// block comes from zel_malloc and is released with zel_free, also by whoever
// takes it with Detach(). Failed allocations leave the buffer as it was.
#pragma once

#include <cstring>

#include <zel/zel_types.h>

class ZEL_API CMiniMem {
public:
    CMiniMem() : m_data(nullptr), m_capacity(0), m_size(0) {}
    virtual ~CMiniMem();
    virtual int GetMemAlignSize();

    // Buffers are passed by reference and exchanged with xchg, never copied.
    CMiniMem(const CMiniMem&) = delete;
    CMiniMem& operator=(const CMiniMem&) = delete;

    unsigned char* GetData() const { return m_data; }
    int GetSize() const { return m_size; }
    int GetCapacity() const { return m_capacity; }

    unsigned char* Alloc(int n);
    unsigned char* Realloc(int n);
    void Free();
    unsigned char* Detach();
    void xchg(CMiniMem& other);

    int Append(void* src, int n);
    int Append(CMiniMem& other);
    int Insert(int pos, void* src, int n);
    int Remove(int pos, int n);
    int Replace(int pos, int n, unsigned char* src, int m);

    // Typed adders: a store and an add while the value fits in the spare room.
    int AddByte(unsigned char v) {
        if (m_capacity > m_size) {
            m_data[m_size] = v;
            return ++m_size;
        }
        if (!RaiseCapacity(1)) return Append(&v, 1);
        m_data[m_size++] = v;
        return 1;  // as Append
    }
    int AddWord(unsigned short v) { return AddValue(&v, sizeof v); }
    int AddDWord(unsigned int v) { return AddValue(&v, sizeof v); }
    void AddInt(int v) { AddValue(&v, sizeof v); }
    void AddBool(int v) { AddValue(&v, sizeof v); }
    int AddChar(wchar_t v) { return AddValue(&v, sizeof v); }
    void AddDouble(double v) { AddValue(&v, sizeof v); }

    int AddText(wchar_t* text);
    int AddStr(wchar_t* text);
    int AddBin(unsigned char* bin);
    int AddSpecNumBytes(int n, ...);

    int ReadFromFile(wchar_t* path, int n);
    int WriteIntoFile(wchar_t* path, int n);
    int WriteIntoELFFile(wchar_t* path, int n);

protected:
    // The granule step: when the block beneath already holds `width` more
    // bytes, only the capacity rises (by the granule rule) and it is true;
    // otherwise nothing changes. Cheap: no allocator call, no copy.
    __attribute__((visibility("hidden"))) bool RaiseCapacity(int width);

    unsigned char* m_data;
    int m_capacity;
    int m_size;

private:
    void ShrinkTo(int n);
    int AddValue(const void* v, int width) {
        if (m_capacity - m_size >= width) {
            std::memcpy(m_data + m_size, v, width);
            return m_size += width;
        }
        if (!RaiseCapacity(width)) return Append(const_cast<void*>(v), width);
        std::memcpy(m_data + m_size, v, width);
        m_size += width;
        return 1;  // as Append
    }
};

class ZEL_API CAlignMem : public CMiniMem {
public:
    // A granule below 1 would make the rounding divide by zero: it acts as 32.
    explicit CAlignMem(int granule = 32) : m_granule(granule > 0 ? granule : 32) {}
    ~CAlignMem() override;
    int GetMemAlignSize() override;

protected:
    int m_granule;
};

// The contents read as 32-bit signed integers.
class ZEL_API CMIntArray : public CAlignMem {
public:
    explicit CMIntArray(int granule = 32) : CAlignMem(granule) {}
    ~CMIntArray() override;
};

// The contents read as pointers.
class ZEL_API CMPtrArray : public CAlignMem {
public:
    explicit CMPtrArray(int granule = 32) : CAlignMem(granule) {}
    ~CMPtrArray() override;
};

static_assert(sizeof(CMiniMem) == 16, "vptr, data, capacity, size");
static_assert(sizeof(CAlignMem) == 20, "CMiniMem and the granule");
static_assert(sizeof(CMIntArray) == 20 && sizeof(CMPtrArray) == 20);

// CMemoryStream: the library's serialization stream. Values are appended at
// the end in little-endian form, packed, with no tags: the reader must know
// their order. Reading starts at the position, which writes never move.
//
//   integer, logical  4 bytes          double  8 bytes
//   text              UTF-32 units and a zero unit (no length prefix)
//   byte set          WriteBin: the whole block {0, 1, n, bytes}; WriteBinData: the bytes only
//                     (a null byte set is a single 4-byte 0 in both forms)
#pragma once

#include <cstring>

#include <zel/minimem.h>

class ZEL_API CMemoryStream : public CMiniMem {
public:
    CMemoryStream();
    CMemoryStream(const CMemoryStream& other);
    CMemoryStream& operator=(const CMemoryStream& other);
    ~CMemoryStream() override;

    void Init();
    int InitData(void* data, int n);
    int InitData(unsigned char* bin);

    int GetLength();
    unsigned char* GetData();
    unsigned char* GetCurrentPtr();
    // A negative count is never valid data.
    ZEL_API __attribute__((used)) int IsDataValid(int n) {
        return n >= 0 && m_position >= 0 && n <= m_size - m_position ? 1 : 0;  // no overflow: both are >= 0
    }

    // The integer reader and writer are inline where this header is seen
    // (the library still exports them): one value per call is their use.
    ZEL_API __attribute__((used)) int WriteInt(int v) {
        AddInt(v);
        return 1;
    }
    int WriteBool(int v);
    int WriteDouble(double v);
    int WriteText(wchar_t* text);
    int WriteBin(unsigned char* bin);
    int WriteBinData(unsigned char* bin);

    ZEL_API __attribute__((used)) int ReadInt() {
        if (!IsDataValid(4)) return -1;
        int v;
        Peek(&v, 0, 4);
        m_position += 4;
        return v;
    }
    int ReadBool();
    double ReadDouble();
    unsigned char* ReadText();
    unsigned char* ReadBin();
    unsigned char* Read(int n);

    int GetPosition() const { return m_position; }

protected:
    int m_position;

private:
    int Remaining() const { return m_size - m_position; }
    // Unaligned-safe copy of n bytes at position + offset (the caller checked them).
    void Peek(void* out, int offset, int n) const { std::memcpy(out, m_data + m_position + offset, n); }
};

static_assert(sizeof(CMemoryStream) == 20, "CMiniMem and the position");

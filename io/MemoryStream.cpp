#include "io/MemoryStream.h"
#include <zel/no_memory.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

#include <zel/memory.h>
#include <zel/services.h>
#include <zel/values.h>

CMemoryStream::CMemoryStream() { Init(); }

CMemoryStream::CMemoryStream(const CMemoryStream& other) : CMiniMem() {
    Init();
    Append(other.m_data, other.m_size);
}

// The position is the stream's own; only the bytes are copied.
CMemoryStream& CMemoryStream::operator=(const CMemoryStream& other) {
    if (this != &other) {
        m_size = 0;
        Append(other.m_data, other.m_size);
    }
    return *this;
}

CMemoryStream::~CMemoryStream() {}

void CMemoryStream::Init() {
    m_size = 0;
    m_position = 0;
}

int CMemoryStream::InitData(void* data, int n) {
    m_size = 0;
    if (n > 0) Append(data, n);
    return 1;
}

int CMemoryStream::InitData(unsigned char* bin) { return InitData(MGetZelBinData(bin), MGetZelBinLength(bin)); }

int CMemoryStream::GetLength() { return m_size; }

unsigned char* CMemoryStream::GetData() { return m_size > 0 ? m_data : nullptr; }

unsigned char* CMemoryStream::GetCurrentPtr() {
    return reinterpret_cast<unsigned char*>(reinterpret_cast<uintptr_t>(GetData()) + uintptr_t(m_position));
}

int CMemoryStream::WriteBool(int v) {
    AddBool(v);
    return 1;
}

int CMemoryStream::WriteDouble(double v) {
    AddDouble(v);
    return 1;
}

int CMemoryStream::WriteText(wchar_t* text) {
    AddStr(text);
    return 1;
}

int CMemoryStream::WriteBin(unsigned char* bin) {
    if (!bin) AddInt(0);
    else Append(bin, 12 + MGetZelBinLength(bin));
    return 1;
}

int CMemoryStream::WriteBinData(unsigned char* bin) {
    if (!bin) AddInt(0);
    else Append(MGetZelBinData(bin), MGetZelBinLength(bin));
    return 1;
}

int CMemoryStream::ReadBool() {
    if (!IsDataValid(4)) return 0;
    int v;
    Peek(&v, 0, 4);
    m_position += 4;
    return v;
}

double CMemoryStream::ReadDouble() {
    if (!IsDataValid(8)) return -1.0;
    double v;
    Peek(&v, 0, 8);
    m_position += 8;
    return v;
}

// A text missing its zero unit takes the whole units that are there and
// stops at them; the position never passes the length. Without memory for
// the text it gives the empty text and does not move.
unsigned char* CMemoryStream::ReadText() {
    return zel::NeutralOnNoMemory(zel::EmptyText(), [this] {
        std::wstring text;
        int units = std::max(0, Remaining()) / 4;
        int taken = 0;
        bool terminated = false;
        for (; taken < units; ++taken) {
            wchar_t c;
            Peek(&c, taken * 4, 4);
            if (c == 0) {
                terminated = true;
                break;
            }
            text.push_back(c);
        }
        m_position += taken * 4 + (terminated ? 4 : 0);
        return zel::NewText(text.c_str());
    });
}

// A byte set reads back from its block form, but the position advances by
// the count alone, not the 12 header bytes. A header or count running past
// the end gives what is there (the empty byte set without a count) and the
// position stops at the length.
unsigned char* CMemoryStream::ReadBin() {
    int remaining = std::max(0, Remaining());
    int marker = 0;
    if (remaining >= 8) Peek(&marker, 4, 4);
    if (marker == 0) {
        m_position += std::min(4, remaining);
        return zel::EmptyBin();
    }
    int count = 0;
    if (remaining >= 12) Peek(&count, 8, 4);
    count = std::max(0, count);
    int available = std::min(count, remaining - 12 < 0 ? 0 : remaining - 12);
    unsigned char* bin = available > 0 ? zel::NewBin(m_data + m_position + 12, available) : zel::EmptyBin();
    m_position += std::min(count, remaining);
    return bin;
}

// A count running past the end is clipped to what remains.
unsigned char* CMemoryStream::Read(int n) {
    if (n < 0) return nullptr;
    if (!IsDataValid(n)) {
        n = m_size - m_position;
        if (n < 0) return nullptr;
    }
    unsigned char* bin = MCloneZelBin(n > 0 ? m_data + m_position : nullptr, n);
    m_position += n;
    return bin;
}

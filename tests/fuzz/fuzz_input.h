// Helpers of the fuzz targets: the input read as a stream of choices, and a
// check that aborts (so both libFuzzer and the corpus replay report it).
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#define FUZZ_CHECK(condition)                                                         \
    do {                                                                              \
        if (!(condition)) {                                                           \
            std::fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                             \
        }                                                                             \
    } while (0)

class FuzzInput {
public:
    FuzzInput(const uint8_t* data, size_t size) : m_data(data), m_size(size) {}

    size_t Remaining() const { return m_size; }
    // 0 once the input is used up.
    uint8_t Byte() {
        if (!m_size) return 0;
        --m_size;
        return *m_data++;
    }
    uint32_t Word() {
        uint32_t v = 0;
        for (int i = 0; i < 4; ++i) v = v << 8 | Byte();
        return v;
    }
    // A value in [0, n).
    unsigned Pick(unsigned n) { return n ? Byte() % n : 0; }
    // The next `n` bytes (fewer at the end).
    std::string Bytes(size_t n) {
        if (n > m_size) n = m_size;
        std::string s(reinterpret_cast<const char*>(m_data), n);
        m_data += n;
        m_size -= n;
        return s;
    }
    std::string Rest() { return Bytes(m_size); }
    // Wide text: each code unit from 1, 2 or 4 bytes, so short inputs still
    // reach ASCII, the BMP and everything else (also units past U+10FFFF).
    std::wstring Wide(size_t maxUnits) {
        std::wstring s;
        while (m_size && s.size() < maxUnits) {
            uint8_t lead = Byte();
            uint32_t c;
            if (lead < 0xC0) c = lead;
            else if (lead < 0xF0) c = (lead & 0x3F) << 8 | Byte();
            else c = Word();
            s.push_back(static_cast<wchar_t>(c ? c : L'0'));
        }
        return s;
    }

private:
    const uint8_t* m_data;
    size_t m_size;
};

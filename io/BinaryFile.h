// The content test behind 工具.二进制文件流's 取文件类型.
#pragma once

#include <cstddef>

// Tells whether a UTF-8 text, fed in pieces of any size, is legal by the
// Unicode reference rules (no overlongs, surrogates or code points past
// U+10FFFF; every sequence whole). The text ends at its first zero byte or
// where the input ends.
class Utf8TextCheck {
public:
    // Takes the next piece; false once the answer is known (an illegal byte,
    // or the zero byte that ends the text), so the caller can stop reading.
    bool Feed(const unsigned char* s, size_t n);
    // The answer for the input fed so far, taken as the whole input.
    bool Legal() const { return m_done ? m_legal : m_need == 0; }

private:
    bool Stop(bool legal);
    bool Trail(unsigned char byte);

    int m_need = 0;  // trailing bytes still owed by a sequence cut at a piece's end
    unsigned char m_low = 0x80, m_high = 0xBF;  // the range of the next trailing byte
    bool m_done = false;
    bool m_legal = false;
};

// [s, end) as one piece.
bool IsLegalUtf8(const unsigned char* s, const unsigned char* end);

namespace zel {
// Test hook: 取文件类型 reads files in pieces of this many bytes (0: the
// usual size).
void SetFileTypeChunkSize(int bytes);
}  // namespace zel

// Streaming UTF-8 legality: ASCII runs are skipped a vector (or a word) at a
// time; each multibyte sequence is checked whole when it lies in the piece,
// byte by byte only when it is cut at the piece's end.
#include "io/BinaryFile.h"

#include <cstdint>
#include <cstring>

#if defined(__i386__) || defined(__x86_64__)
#include <emmintrin.h>
#define ZEL_HAVE_SSE2_PATH 1
#endif

namespace {

using AsciiSkip = const unsigned char* (*)(const unsigned char*, const unsigned char*);

// The first byte in [s, end) that is zero or above 7F; end when none is.
const unsigned char* SkipAsciiWords(const unsigned char* s, const unsigned char* end) {
    for (; end - s >= 4; s += 4) {
        uint32_t w;
        std::memcpy(&w, s, 4);
        // For bytes below 80, w - 01010101 sets a high bit only below a zero byte.
        if (((w - 0x01010101u) | w) & 0x80808080u) break;
    }
    while (s < end && *s && *s < 0x80) ++s;
    return s;
}

#ifdef ZEL_HAVE_SSE2_PATH
// Bytes 01..7F are exactly those greater than zero as signed bytes.
__attribute__((target("sse2"))) const unsigned char* SkipAsciiSse2(const unsigned char* s,
                                                                   const unsigned char* end) {
    const __m128i zero = _mm_setzero_si128();
    for (; end - s >= 32; s += 32) {
        __m128i a = _mm_cmpgt_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s)), zero);
        __m128i b = _mm_cmpgt_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s + 16)), zero);
        if (_mm_movemask_epi8(_mm_and_si128(a, b)) != 0xFFFF) break;
    }
    for (; end - s >= 16; s += 16) {
        int plain = _mm_movemask_epi8(_mm_cmpgt_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s)), zero));
        if (plain != 0xFFFF) return s + __builtin_ctz(~plain);
    }
    return SkipAsciiWords(s, end);
}
#endif

AsciiSkip ChooseAsciiSkip() {
#ifdef ZEL_HAVE_SSE2_PATH
    if (__builtin_cpu_supports("sse2")) return SkipAsciiSse2;
#endif
    return SkipAsciiWords;
}

const AsciiSkip g_skipAscii = ChooseAsciiSkip();

// The trailing count of a lead byte and the range of its first trailing
// byte; false for a byte that cannot start a sequence.
bool Lead(unsigned lead, int& need, unsigned char& low, unsigned char& high) {
    low = 0x80;
    high = 0xBF;
    if (lead < 0xC2) return false;
    if (lead < 0xE0) {
        need = 1;
    } else if (lead < 0xF0) {
        need = 2;
        if (lead == 0xE0) low = 0xA0;  // overlong
        if (lead == 0xED) high = 0x9F;  // surrogates
    } else if (lead < 0xF5) {
        need = 3;
        if (lead == 0xF0) low = 0x90;   // overlong
        if (lead == 0xF4) high = 0x8F;  // past U+10FFFF
    } else {
        return false;
    }
    return true;
}

bool IsTrail(unsigned char byte) { return (byte & 0xC0) == 0x80; }

}  // namespace

bool Utf8TextCheck::Stop(bool legal) {
    m_done = true;
    m_legal = legal;
    return false;
}

bool Utf8TextCheck::Trail(unsigned char byte) {
    if (byte < m_low || byte > m_high) return false;
    m_low = 0x80;
    m_high = 0xBF;
    --m_need;
    return true;
}

bool Utf8TextCheck::Feed(const unsigned char* s, size_t n) {
    if (m_done) return false;
    const unsigned char* end = s + n;
    while (m_need > 0 && s < end)
        if (!Trail(*s++)) return Stop(false);
    while (s < end) {
        if (*s < 0x80) {
            if (*s == 0) return Stop(true);
            s = g_skipAscii(s, end);
            continue;
        }
        int need;
        unsigned char low, high;
        if (!Lead(*s, need, low, high)) return Stop(false);
        if (end - s > need) {
            if (s[1] < low || s[1] > high) return Stop(false);
            for (int k = 2; k <= need; ++k)
                if (!IsTrail(s[k])) return Stop(false);
            s += need + 1;
            continue;
        }
        m_need = need;
        m_low = low;
        m_high = high;
        for (++s; s < end;)
            if (!Trail(*s++)) return Stop(false);
    }
    return true;
}

bool IsLegalUtf8(const unsigned char* s, const unsigned char* end) {
    Utf8TextCheck check;
    if (s && end > s) check.Feed(s, size_t(end - s));
    return check.Legal();
}

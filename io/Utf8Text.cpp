// Streaming UTF-8 legality: ASCII runs are skipped a vector (or a word) at a
// time; text with multibyte sequences is checked 16 bytes at a time where the
// processor has SSSE3, else each sequence whole when it lies in the piece;
// byte by byte only when a sequence is cut at the piece's end.
#include "io/BinaryFile.h"

#include <cstdint>
#include <cstring>

#if defined(__i386__) || defined(__x86_64__)
#include <emmintrin.h>
#include <tmmintrin.h>
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

// Whole 16-byte blocks checked together, by the known lookup method: the
// high and low nibble of each byte and the high nibble of the next one index
// three tables whose bits name the errors a pair can show; a byte two or
// three places after a three- or four-byte lead must be a trailing byte.
using BlockCheck = const unsigned char* (*)(const unsigned char*, const unsigned char*);

#ifdef ZEL_HAVE_SSE2_PATH
enum : unsigned char {
    kTooShort = 1 << 0,   // a lead not followed by a trailing byte
    kTooLong = 1 << 1,    // ASCII followed by a trailing byte
    kOverlong3 = 1 << 2,  // E0 80..9F
    kTooLarge = 1 << 3,   // F4 90..BF, F5..FF
    kSurrogate = 1 << 4,  // ED A0..BF
    kOverlong2 = 1 << 5,  // C0, C1
    kTooLarge1000 = 1 << 6,
    kOverlong4 = 1 << 6,  // F0 80..8F
    kTwoConts = 1 << 7,   // a trailing byte after a trailing byte
    kCarry = kTooShort | kTooLong | kTwoConts,
};

__attribute__((target("ssse3"))) inline __m128i Lookup(__m128i nibbles, const unsigned char (&table)[16]) {
    return _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(table)), nibbles);
}

// From s while whole blocks without a zero byte remain: where it stopped (at
// the start of any sequence cut there), or null when the text is illegal.
__attribute__((target("ssse3"))) const unsigned char* CheckBlocksSsse3(const unsigned char* s,
                                                                       const unsigned char* end) {
    alignas(16) static const unsigned char kFirstHigh[16] = {
        kTooLong, kTooLong, kTooLong, kTooLong, kTooLong, kTooLong, kTooLong, kTooLong,
        kTwoConts, kTwoConts, kTwoConts, kTwoConts,
        kTooShort | kOverlong2, kTooShort, kTooShort | kOverlong3 | kSurrogate,
        kTooShort | kTooLarge | kTooLarge1000 | kOverlong4};
    alignas(16) static const unsigned char kFirstLow[16] = {
        kCarry | kOverlong3 | kOverlong2 | kOverlong4, kCarry | kOverlong2, kCarry, kCarry,
        kCarry | kTooLarge, kCarry | kTooLarge | kTooLarge1000, kCarry | kTooLarge | kTooLarge1000,
        kCarry | kTooLarge | kTooLarge1000, kCarry | kTooLarge | kTooLarge1000, kCarry | kTooLarge | kTooLarge1000,
        kCarry | kTooLarge | kTooLarge1000, kCarry | kTooLarge | kTooLarge1000, kCarry | kTooLarge | kTooLarge1000,
        kCarry | kTooLarge | kTooLarge1000 | kSurrogate, kCarry | kTooLarge | kTooLarge1000,
        kCarry | kTooLarge | kTooLarge1000};
    alignas(16) static const unsigned char kSecondHigh[16] = {
        kTooShort, kTooShort, kTooShort, kTooShort, kTooShort, kTooShort, kTooShort, kTooShort,
        kTooLong | kOverlong2 | kTwoConts | kOverlong3 | kTooLarge1000 | kOverlong4,
        kTooLong | kOverlong2 | kTwoConts | kOverlong3 | kTooLarge,
        kTooLong | kOverlong2 | kTwoConts | kSurrogate | kTooLarge,
        kTooLong | kOverlong2 | kTwoConts | kSurrogate | kTooLarge,
        kTooShort, kTooShort, kTooShort, kTooShort};
    const __m128i zero = _mm_setzero_si128(), lowNibble = _mm_set1_epi8(0x0F);
    const __m128i third = _mm_set1_epi8(char(0xE0 - 0x80)), fourth = _mm_set1_epi8(char(0xF0 - 0x80));
    const unsigned char* start = s;
    __m128i previous = zero;
    for (; end - s >= 16; s += 16) {
        __m128i input = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s));
        if (_mm_movemask_epi8(_mm_cmpeq_epi8(input, zero))) break;  // the byte path ends the text
        __m128i prev1 = _mm_alignr_epi8(input, previous, 15);
        __m128i special = _mm_and_si128(
            _mm_and_si128(Lookup(_mm_and_si128(_mm_srli_epi16(prev1, 4), lowNibble), kFirstHigh),
                          Lookup(_mm_and_si128(prev1, lowNibble), kFirstLow)),
            Lookup(_mm_and_si128(_mm_srli_epi16(input, 4), lowNibble), kSecondHigh));
        __m128i prev2 = _mm_alignr_epi8(input, previous, 14), prev3 = _mm_alignr_epi8(input, previous, 13);
        __m128i mustTrail = _mm_or_si128(_mm_subs_epu8(prev2, third), _mm_subs_epu8(prev3, fourth));
        __m128i error = _mm_xor_si128(_mm_and_si128(mustTrail, _mm_set1_epi8(char(0x80))), special);
        if (_mm_movemask_epi8(_mm_cmpeq_epi8(error, zero)) != 0xFFFF) return nullptr;
        previous = input;
    }
    // A sequence cut at s is taken up again by the byte path.
    for (int back = 1; back <= 3 && s - back >= start; ++back) {
        unsigned char byte = s[-back];
        if ((byte & 0xC0) == 0x80) continue;
        int length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
        if (length > back) s -= back;
        break;
    }
    return s;
}
#endif

// The fastest paths this processor runs, chosen once at load (in this
// order: the processor is probed first).
#ifdef ZEL_HAVE_SSE2_PATH
const bool g_processorProbed = (__builtin_cpu_init(), true);
const AsciiSkip g_skipAscii = g_processorProbed && __builtin_cpu_supports("sse2") ? SkipAsciiSse2 : SkipAsciiWords;
const BlockCheck g_checkBlocks = __builtin_cpu_supports("ssse3") ? CheckBlocksSsse3 : nullptr;
#else
const AsciiSkip g_skipAscii = SkipAsciiWords;
const BlockCheck g_checkBlocks = nullptr;
#endif

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
        if (g_checkBlocks && end - s >= 64) {
            const unsigned char* next = g_checkBlocks(s, end);
            if (!next) return Stop(false);
            if (next != s) {
                s = next;
                continue;
            }
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

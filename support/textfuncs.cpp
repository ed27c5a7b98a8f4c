#include <zel/textfuncs.h>
#include <zel/no_memory.h>

#include <algorithm>
#include <charconv>
#include <cctype>
#include <climits>
#include <clocale>
#include <cstdlib>
#include <cwctype>
#include <string>

#include <zel/memory.h>
#include <zel/minimem.h>
#include <zel/mstring.h>

namespace {

const wchar_t* OrEmpty(const wchar_t* s) { return s ? s : L""; }

int Compare(wchar_t a, wchar_t b) {
    auto ua = static_cast<unsigned int>(a), ub = static_cast<unsigned int>(b);
    return ua < ub ? -1 : (ua > ub ? 1 : 0);
}

template <typename Fold>
int CompareN(const wchar_t* a, const wchar_t* b, long long n, Fold fold) {
    a = OrEmpty(a);
    b = OrEmpty(b);
    for (; n > 0; ++a, ++b, --n) {
        int order = Compare(fold(*a), fold(*b));
        if (order || !*a) return order;
    }
    return 0;
}

wchar_t Same(wchar_t c) { return c; }

bool IsBlank(wchar_t c) { return c == L' ' || c == L'\t'; }

// The numeric prefix of a wide text as ASCII, after leading white space and
// a '+' that std::from_chars does not take. Without memory for a long one it
// is empty, which reads as 0.
std::string AsciiNumber(const wchar_t* s) {
    s = OrEmpty(s);
    while (std::iswspace(static_cast<wint_t>(*s))) ++s;
    if (*s == L'+' && s[1] != L'-') ++s;
    return zel::NeutralOnNoMemory(std::string(), [s] {
        std::string text;
        for (const wchar_t* c = s; *c > 0 && *c < 0x80; ++c) text.push_back(static_cast<char>(*c));
        return text;
    });
}

const wchar_t kReplacement = 0xFFFD;

bool IsScalarValue(unsigned int c) { return c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF); }

int HexValue(wchar_t c) {
    if (c >= L'0' && c <= L'9') return c - L'0';
    if (c >= L'a' && c <= L'f') return c - L'a' + 10;
    if (c >= L'A' && c <= L'F') return c - L'A' + 10;
    return -1;
}

// Reads up to maxDigits hex digits; the number of digits read goes to *count.
unsigned int ReadHex(const wchar_t* s, int maxDigits, int* count) {
    unsigned int value = 0;
    int i = 0;
    for (; i < maxDigits && HexValue(s[i]) >= 0; ++i) value = value * 16 + HexValue(s[i]);
    *count = i;
    return value;
}

wchar_t SimpleEscape(wchar_t c) {
    switch (c) {
        case L'n': return L'\n';
        case L't': return L'\t';
        case L'r': return L'\r';
        case L'a': return L'\a';
        case L'b': return L'\b';
        case L'f': return L'\f';
        case L'v': return L'\v';
        case L'0': return 0;
        case L'\\': case L'"': case L'\'': return c;
        default: return -1;
    }
}

bool IsNameStart(wchar_t c) {
    auto u = static_cast<unsigned int>(c);
    return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || c == L'_' || (u >= 0x80 && u <= 0x10FFFF);
}

bool IsNameChar(wchar_t c) { return IsNameStart(c) || (c >= L'0' && c <= L'9'); }

// [begin, end) without blanks and tabs at either side.
void Trim(const wchar_t*& begin, const wchar_t*& end) {
    while (begin < end && IsBlank(*begin)) ++begin;
    while (end > begin && IsBlank(end[-1])) --end;
}

}  // namespace

int mystrlen(const wchar_t* s) {
    if (!s) return 0;
    const wchar_t* p = s;
    while (*p) ++p;
    return static_cast<int>(p - s);
}

int mystrcmp(const wchar_t* a, const wchar_t* b) { return CompareN(a, b, LLONG_MAX, Same); }
int mystricmp(const wchar_t* a, const wchar_t* b) { return CompareN(a, b, LLONG_MAX, mytolower); }
int mystrncmp(const wchar_t* a, const wchar_t* b, int n) { return CompareN(a, b, n, Same); }
int mystrnicmp(const wchar_t* a, const wchar_t* b, int n) { return CompareN(a, b, n, mytolower); }

wchar_t* mystrchr(const wchar_t* s, wchar_t c) {
    if (!s) return nullptr;
    for (;; ++s) {
        if (*s == c) return const_cast<wchar_t*>(s);
        if (!*s) return nullptr;
    }
}

wchar_t* mystrrchr(const wchar_t* s, wchar_t c) {
    if (!s) return nullptr;
    const wchar_t* found = nullptr;
    for (;; ++s) {
        if (*s == c) found = s;
        if (!*s) return const_cast<wchar_t*>(found);
    }
}

wchar_t* mystrstr(const wchar_t* s, const wchar_t* find) {
    if (!s) return nullptr;
    int n = mystrlen(find);
    if (n == 0) return const_cast<wchar_t*>(s);
    for (; *s; ++s)
        if (*s == *find && mystrncmp(s, find, n) == 0) return const_cast<wchar_t*>(s);
    return nullptr;
}

wchar_t* mystrtok(wchar_t* s, const wchar_t* delimiters) {
    // Like strtok: a null text continues the previous one (per thread).
    static thread_local wchar_t* next = nullptr;
    if (s) next = s;
    if (!next) return nullptr;
    wchar_t* token = next;
    while (*token && mystrchr(delimiters, *token)) ++token;
    if (!*token) {
        next = nullptr;
        return nullptr;
    }
    wchar_t* end = token;
    while (*end && !(delimiters && mystrchr(delimiters, *end))) ++end;
    if (*end) {
        *end = 0;
        next = end + 1;
    } else {
        next = nullptr;
    }
    return token;
}

wchar_t* mystrcpy(wchar_t* dst, const wchar_t* src) {
    if (!dst) return nullptr;
    src = OrEmpty(src);
    wchar_t* p = dst;
    while ((*p++ = *src++)) {
    }
    return dst;
}

wchar_t* mystrcat(wchar_t* dst, const wchar_t* src) {
    if (!dst) return nullptr;
    mystrcpy(dst + mystrlen(dst), src);
    return dst;
}

wchar_t mytoupper(wchar_t c) { return static_cast<wchar_t>(std::towupper(static_cast<wint_t>(c))); }
wchar_t mytolower(wchar_t c) { return static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c))); }

// Decimal only, independent of the locale; out-of-range values saturate.
int myatoi(const wchar_t* s) {
    std::string text = AsciiNumber(s);
    long long value = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc::result_out_of_range) return text[0] == '-' ? INT_MIN : INT_MAX;
    if (error != std::errc()) return 0;
    return static_cast<int>(std::clamp<long long>(value, INT_MIN, INT_MAX));
}

namespace {

// Digits, '.' and an exponent only: "inf", "nan" and hex text read as 0.
bool StartsDecimal(const std::string& text) {
    size_t i = !text.empty() && text[0] == '-';
    return i < text.size() && (std::isdigit(static_cast<unsigned char>(text[i])) || text[i] == '.');
}

// The "C" locale, made once: '.' is the decimal point whatever the process's locale says.
locale_t CLocale() {
    static const locale_t c = newlocale(LC_ALL_MASK, "C", locale_t(0));
    return c;
}

}  // namespace

// std::from_chars finds where the decimal number ends; strtod converts it,
// correctly rounded (from_chars is not on x87, where its fast path rounds
// twice) and ±infinity past the range of a double, ±0 below it.
double myatof(const wchar_t* s) {
    std::string text = AsciiNumber(s);
    if (!StartsDecimal(text)) return 0.0;
    double ignored = 0;
    const char* end = std::from_chars(text.data(), text.data() + text.size(), ignored).ptr;
    if (end == text.data()) return 0.0;
    text.resize(end - text.data());
    locale_t c = CLocale();
    return c ? strtod_l(text.c_str(), nullptr, c) : 0.0;
}

unsigned int GetTextHash(const wchar_t* s) {
    unsigned int hash = 0;
    for (; s && *s; ++s) hash += static_cast<unsigned int>(*s);
    return hash;
}

char* UCS_to_UTF8(const wchar_t* s, CMiniMem& out) {
    int length = mystrlen(s);
    if (length > (INT_MAX - 1) / 4) return nullptr;
    CMiniMem utf8;
    if (!utf8.Alloc(length * 4 + 1)) return nullptr;
    unsigned char* p = utf8.GetData();
    for (int i = 0; i < length; ++i) {
        auto c = static_cast<unsigned int>(s[i]);
        if (!IsScalarValue(c)) c = kReplacement;
        if (c < 0x80) {
            *p++ = static_cast<unsigned char>(c);
        } else if (c < 0x800) {
            *p++ = static_cast<unsigned char>(0xC0 | (c >> 6));
            *p++ = static_cast<unsigned char>(0x80 | (c & 0x3F));
        } else if (c < 0x10000) {
            *p++ = static_cast<unsigned char>(0xE0 | (c >> 12));
            *p++ = static_cast<unsigned char>(0x80 | ((c >> 6) & 0x3F));
            *p++ = static_cast<unsigned char>(0x80 | (c & 0x3F));
        } else {
            *p++ = static_cast<unsigned char>(0xF0 | (c >> 18));
            *p++ = static_cast<unsigned char>(0x80 | ((c >> 12) & 0x3F));
            *p++ = static_cast<unsigned char>(0x80 | ((c >> 6) & 0x3F));
            *p++ = static_cast<unsigned char>(0x80 | (c & 0x3F));
        }
    }
    *p++ = 0;
    utf8.Realloc(static_cast<int>(p - utf8.GetData()));
    out.xchg(utf8);
    return reinterpret_cast<char*>(out.GetData());
}

namespace {

// One code point from a UTF-8 sequence; a malformed sequence gives U+FFFD and
// consumes only its valid prefix, so reading stops at the terminator.
wchar_t DecodeUtf8(const unsigned char*& p) {
    unsigned char lead = *p++;
    if (lead < 0x80) return lead;
    int extra;
    unsigned int c, low = 0x80, high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        extra = 1;
        c = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        extra = 2;
        c = lead & 0x0F;
        if (lead == 0xE0) low = 0xA0;   // overlong
        if (lead == 0xED) high = 0x9F;  // surrogates
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        extra = 3;
        c = lead & 0x07;
        if (lead == 0xF0) low = 0x90;   // overlong
        if (lead == 0xF4) high = 0x8F;  // past U+10FFFF
    } else {
        return kReplacement;
    }
    for (int i = 0; i < extra; ++i, low = 0x80, high = 0xBF) {
        if (*p < low || *p > high) return kReplacement;
        c = (c << 6) | (*p++ & 0x3F);
    }
    return static_cast<wchar_t>(c);
}

}  // namespace

wchar_t* UTF8_to_UCS(const char* s, CMiniMem& out) {
    const auto* p = reinterpret_cast<const unsigned char*>(s ? s : "");
    size_t length = std::char_traits<char>::length(reinterpret_cast<const char*>(p));
    if (length >= INT_MAX / sizeof(wchar_t)) return nullptr;
    CMiniMem ucs;
    if (!ucs.Alloc(static_cast<int>((length + 1) * sizeof(wchar_t)))) return nullptr;
    auto* q = reinterpret_cast<wchar_t*>(ucs.GetData());
    while (*p) *q++ = DecodeUtf8(p);
    *q++ = 0;
    ucs.Realloc(static_cast<int>(reinterpret_cast<unsigned char*>(q) - ucs.GetData()));
    out.xchg(ucs);
    return reinterpret_cast<wchar_t*>(out.GetData());
}

int GetStringList(const wchar_t* text, CMStringArray& out, wchar_t separator) {
    out.RemoveAll();
    if (!text || !*text) return 0;
    for (const wchar_t* item = text;;) {
        const wchar_t* end = item;
        while (*end && *end != separator) ++end;
        const wchar_t* begin = item;
        const wchar_t* stop = end;
        Trim(begin, stop);
        wchar_t* clone = MCloneText(const_cast<wchar_t*>(begin), static_cast<int>(stop - begin));
        if (out.Add_NoClone(clone) < 0) {
            zel_free(clone);
            break;
        }
        if (!*end) break;
        item = end + 1;
    }
    return out.GetSize();
}

wchar_t* ConvertEscapeSequences(const wchar_t* s, CMiniMem& out) {
    int length = mystrlen(s);
    if (length >= INT_MAX / static_cast<int>(sizeof(wchar_t))) return nullptr;
    CMiniMem converted;
    // The result is never longer than the source.
    if (!converted.Alloc((length + 1) * static_cast<int>(sizeof(wchar_t)))) return nullptr;
    auto* q = reinterpret_cast<wchar_t*>(converted.GetData());
    for (int i = 0; i < length;) {
        wchar_t c = s[i++];
        if (c != L'\\' || i == length) {
            *q++ = c;
            continue;
        }
        wchar_t simple = SimpleEscape(s[i]);
        int digits = 0;
        if (simple != static_cast<wchar_t>(-1)) {
            *q++ = simple;
            ++i;
        } else if ((s[i] == L'x' || s[i] == L'u') && HexValue(s[i + 1]) >= 0) {
            unsigned int value = ReadHex(s + i + 1, s[i] == L'x' ? 8 : 4, &digits);
            *q++ = static_cast<wchar_t>(value);
            i += 1 + digits;
        } else {
            *q++ = c;  // an unknown escape stays as written
        }
    }
    *q++ = 0;
    converted.Realloc(static_cast<int>(reinterpret_cast<unsigned char*>(q) - converted.GetData()));
    out.xchg(converted);
    return reinterpret_cast<wchar_t*>(out.GetData());
}

bool IsValidName(const wchar_t* name) {
    if (!name || !IsNameStart(*name)) return false;
    for (++name; *name; ++name)
        if (!IsNameChar(*name)) return false;
    return true;
}

unsigned int GetFriendNameHash(const wchar_t* name) { return GetTextHash(name); }

bool GetExtendPropertyValue(const wchar_t* properties, const wchar_t* name, CMString& value) {
    int nameLength = mystrlen(name);
    if (!properties || nameLength == 0) return false;
    for (const wchar_t* item = properties;;) {
        const wchar_t* end = item;
        while (*end && *end != L';') ++end;
        const wchar_t* equals = item;
        while (equals < end && *equals != L'=') ++equals;
        const wchar_t* keyBegin = item;
        const wchar_t* keyEnd = equals;
        Trim(keyBegin, keyEnd);
        if (keyEnd - keyBegin == nameLength && mystrncmp(keyBegin, name, nameLength) == 0) {
            // An item without '=' is present with an empty value.
            const wchar_t* valueBegin = equals < end ? equals + 1 : end;
            const wchar_t* valueEnd = end;
            Trim(valueBegin, valueEnd);
            // Without memory for the value the item counts as not found.
            int length = static_cast<int>(valueEnd - valueBegin);
            value.SetText(valueBegin, length);
            return value.GetLength() == length;
        }
        if (!*end) return false;
        item = end + 1;
    }
}

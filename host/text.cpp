// Text helpers: UTF-8 <-> UTF-32, GetTextHash, type show names, value display.
#include <charconv>
#include <cstdio>
#include <cstring>

#include "host/host_internal.h"

namespace zelhost {

std::wstring FromUtf8(const std::string& s) {
    std::wstring out;
    size_t i = 0, n = s.size();
    while (i < n) {
        unsigned char c = static_cast<unsigned char>(s[i]);
        unsigned cp;
        int extra;
        if (c < 0x80) { cp = c; extra = 0; }
        else if ((c >> 5) == 6) { cp = c & 0x1F; extra = 1; }
        else if ((c >> 4) == 14) { cp = c & 0x0F; extra = 2; }
        else if ((c >> 3) == 30) { cp = c & 0x07; extra = 3; }
        else { out += wchar_t(0xFFFD); ++i; continue; }
        bool bad = false;
        for (int k = 1; k <= extra; ++k) {
            if (i + size_t(k) >= n) { bad = true; break; }
            unsigned char d = static_cast<unsigned char>(s[i + size_t(k)]);
            if ((d >> 6) != 2) { bad = true; break; }
            cp = (cp << 6) | (d & 0x3F);
        }
        if (bad) { out += wchar_t(0xFFFD); ++i; continue; }
        out += wchar_t(cp);
        i += size_t(extra) + 1;
    }
    return out;
}

std::string ToUtf8(const std::wstring& s) {
    std::string out;
    for (wchar_t wc : s) {
        unsigned cp = static_cast<unsigned>(wc);
        if (cp < 0x80) out += char(cp);
        else if (cp < 0x800) { out += char(0xC0 | (cp >> 6)); out += char(0x80 | (cp & 0x3F)); }
        else if (cp < 0x10000) {
            out += char(0xE0 | (cp >> 12)); out += char(0x80 | ((cp >> 6) & 0x3F)); out += char(0x80 | (cp & 0x3F));
        } else if (cp < 0x110000) {
            out += char(0xF0 | (cp >> 18)); out += char(0x80 | ((cp >> 12) & 0x3F));
            out += char(0x80 | ((cp >> 6) & 0x3F)); out += char(0x80 | (cp & 0x3F));
        } else out += "\xEF\xBF\xBD";
    }
    return out;
}

std::string ToUtf8(const wchar_t* s) { return s ? ToUtf8(std::wstring(s)) : std::string(); }

unsigned TextHash(const wchar_t* s) {
    unsigned h = 0;
    if (!s) return 0;
    for (; *s; ++s) h += static_cast<unsigned>(*s);
    return h;
}

bool IsDoubleType(const wchar_t* t) { return t && wcscmp(t, L"_db") == 0; }

std::string ShowTypeName(const wchar_t* type) {
    if (!type || !*type) return "";
    std::wstring t = type;
    static const struct { const wchar_t* type; const char* show; } table[] = {
        {L"_i", "整数"}, {L"_db", "小数"}, {L"_b", "逻辑"}, {L"_s", "文本"}, {L"_bn", "字节集"},
        {L"@_i", "整数数组"}, {L"@_db", "小数数组"}, {L"@_b", "逻辑型数组"}, {L"@_s", "文本数组"},
        {L"@_bn", "字节集数组"},
    };
    for (auto& r : table)
        if (t == r.type) return r.show;
    if (t[0] != L'_' && t[0] != L'@') return ToUtf8(t);
    if (t[0] == L'@' && t.size() > 1 && t[1] != L'_') return ToUtf8(t.substr(1)) + "[]";
    return ToUtf8(t);
}

namespace {
std::string QuoteText(const wchar_t* s) {
    std::string out = "\"";
    for (; *s; ++s) {
        wchar_t c = *s;
        switch (c) {
            case L'"': out += "\\\""; break;
            case L'\\': out += "\\\\"; break;
            case L'\n': out += "\\n"; break;
            case L'\t': out += "\\t"; break;
            case L'\r': out += "\\r"; break;
            default:
                if (unsigned(c) < 0x20 || c == 0x7F) {
                    char buf[16];
                    std::snprintf(buf, sizeof buf, "\\x%02x", unsigned(c));
                    out += buf;
                } else {
                    out += ToUtf8(std::wstring(1, c));
                }
        }
    }
    return out + "\"";
}
}  // namespace

std::string FormatValue(const Value& v) {
    char buf[64];
    switch (v.kind) {
        case VK::Void: return "(nothing)";
        case VK::Null: return "null";
        case VK::Int: return std::to_string(v.i);
        case VK::Bool:
            if (v.i == 0) return "假";
            if (v.i == 1) return "真";
            return "真(" + std::to_string(v.i) + ")";
        case VK::Double: {
            auto r = std::to_chars(buf, buf + sizeof buf, v.d);
            return std::string(buf, r.ptr);
        }
        case VK::Text: {
            if (!v.h) return "null";
            return QuoteText(reinterpret_cast<const wchar_t*>(static_cast<const char*>(v.h) + 8));
        }
        case VK::Bin: {
            if (!v.h) return "null";
            const int32_t* w = static_cast<const int32_t*>(v.h);
            int n = w[2] < 0 ? 0 : w[2];
            const unsigned char* b = static_cast<const unsigned char*>(v.h) + 12;
            std::string out = "x\"";
            for (int i = 0; i < n; ++i) {
                std::snprintf(buf, sizeof buf, "%02x", b[i]);
                out += buf;
            }
            return out + "\"";
        }
        case VK::Object: {
            if (!v.h) return "null";
            ClassInfo* c = ObjectClass(static_cast<ZelObject*>(v.h));
            if (c) return ToUtf8(c->name) + "#" + std::to_string(ObjectId(static_cast<ZelObject*>(v.h)));
            std::snprintf(buf, sizeof buf, "对象@%p", v.h);
            return buf;
        }
        case VK::Array: {
            if (!v.h) return "null";
            const int32_t* w = static_cast<const int32_t*>(v.h);
            std::string out = "数组[";
            for (int i = 0; i < w[1] && i < 8; ++i) out += (i ? "x" : "") + std::to_string(w[2 + i]);
            return out + "]";
        }
        case VK::Foreign:
            std::snprintf(buf, sizeof buf, "foreign@%p", v.h);
            return buf;
    }
    return "?";
}

}  // namespace zelhost

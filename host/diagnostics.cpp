// How the script language reports an error: the "FILE:LINE:COLUMN: error:"
// line, the source line and a caret under the offending token; the "did you
// mean" hints; the checks on raw text (UTF-8, look-alike punctuation).
#include <algorithm>
#include <cstdio>

#include "host/script_internal.h"

namespace zelhost::script {
namespace {

constexpr int kLongLine = 120;  // characters of a source line shown whole

// Terminal cells of a character: East Asian wide and full-width forms take two.
int CellWidth(wchar_t c) {
    unsigned u = static_cast<unsigned>(c);
    if (u == 0xFEFF || u == 0x200B) return 0;  // byte order mark, zero-width space
    bool wide = (u >= 0x1100 && u <= 0x115F) || (u >= 0x2E80 && u <= 0xA4CF && u != 0x303F) ||
                (u >= 0xAC00 && u <= 0xD7A3) || (u >= 0xF900 && u <= 0xFAFF) || (u >= 0xFE30 && u <= 0xFE4F) ||
                (u >= 0xFF00 && u <= 0xFF60) || (u >= 0xFFE0 && u <= 0xFFE6) || (u >= 0x20000 && u <= 0x3FFFD);
    return wide ? 2 : 1;
}

std::string CodePoint(wchar_t c) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "U+%04X", static_cast<unsigned>(c));
    return buf;
}

}  // namespace

std::string FormatDiagnostic(const std::string& file, int line, const std::wstring& source, int col, int width,
                             const std::string& message) {
    std::wstring shown = source;
    while (!shown.empty() && (shown.back() == L'\r' || shown.back() == L'\n')) shown.pop_back();
    // Tabs show as one blank so that the caret line lines up whatever the tab stops.
    std::replace(shown.begin(), shown.end(), L'\t', L' ');
    if (col < 0) {
        // No token to blame: mark the statement, from its first to its last non-blank.
        size_t a = shown.find_first_not_of(L' '), b = shown.find_last_not_of(L' ');
        col = a == std::wstring::npos ? 0 : int(a);
        width = a == std::wstring::npos ? 0 : int(b - a + 1);
    }
    col = std::min(col, int(shown.size()));
    width = std::max(1, std::min(width, int(shown.size()) - col));
    std::string out = file + ":" + std::to_string(line) + ":" + std::to_string(col + 1) + ": error: " + message + "\n";
    // A very long line shows only a window around the caret.
    if (shown.size() > size_t(kLongLine)) {
        int start = std::max(0, col - kLongLine / 2);
        int end = std::min(int(shown.size()), start + kLongLine);
        std::wstring window = (start > 0 ? L"..." : L"") + shown.substr(size_t(start), size_t(end - start)) +
                              (end < int(shown.size()) ? L"..." : L"");
        col = col - start + (start > 0 ? 3 : 0);
        width = std::min(width, end - start);
        shown = window;
    }
    if (shown.find_first_not_of(L' ') == std::wstring::npos) return out;
    std::string caret(4, ' ');
    for (int k = 0; k < col; ++k) caret.append(size_t(CellWidth(shown[size_t(k)])), ' ');
    int cells = 0;
    for (int k = col; k < col + width && k < int(shown.size()); ++k) cells += CellWidth(shown[size_t(k)]);
    caret += '^';
    caret.append(size_t(std::max(0, cells - 1)), '~');
    return out + "    " + ToUtf8(shown) + "\n" + caret + "\n";
}

// Edits to turn a into b: insertions, deletions, substitutions, and swaps of
// two neighbours (titel -> title is one).
int EditDistance(const std::wstring& a, const std::wstring& b) {
    size_t n = a.size(), m = b.size();
    std::vector<std::vector<int>> d(n + 1, std::vector<int>(m + 1));
    for (size_t i = 0; i <= n; ++i) d[i][0] = int(i);
    for (size_t j = 0; j <= m; ++j) d[0][j] = int(j);
    for (size_t i = 1; i <= n; ++i)
        for (size_t j = 1; j <= m; ++j) {
            d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
        }
    return d[n][m];
}

std::string DidYouMean(const std::wstring& name, const std::vector<std::wstring>& candidates) {
    // A third of the name may differ (at least one character): 文本累 finds 文本类, s finds s1.
    int limit = std::max(1, int(name.size()) / 3);
    const std::wstring* best = nullptr;
    int bestDistance = limit + 1;
    for (const std::wstring& c : candidates) {
        if (c == name || c.empty()) continue;
        int d = EditDistance(name, c);
        if (d < bestDistance || (d == bestDistance && best && c < *best)) {
            best = &c;
            bestDistance = d;
        }
    }
    return best ? "; did you mean " + ToUtf8(*best) + "?" : std::string();
}

// Strict UTF-8: no overlong forms, no surrogates, nothing past U+10FFFF.
bool FindBadUtf8(const std::string& s, size_t& badByte) {
    size_t i = 0, n = s.size();
    while (i < n) {
        unsigned char c = static_cast<unsigned char>(s[i]);
        size_t extra = c < 0x80 ? 0 : (c >> 5) == 6 ? 1 : (c >> 4) == 14 ? 2 : (c >> 3) == 30 ? 3 : 9;
        if (extra == 9 || c == 0xC0 || c == 0xC1 || c > 0xF4 || (extra && i + extra >= n)) {
            badByte = i;
            return true;
        }
        unsigned cp = extra ? c & (0x3F >> extra) : c;
        for (size_t k = 1; k <= extra; ++k) {
            unsigned char d = static_cast<unsigned char>(s[i + k]);
            if ((d >> 6) != 2) {
                badByte = i;
                return true;
            }
            cp = (cp << 6) | (d & 0x3F);
        }
        static const unsigned kMin[] = {0, 0x80, 0x800, 0x10000};
        if (cp < kMin[extra] || (cp >= 0xD800 && cp <= 0xDFFF) || cp > 0x10FFFF) {
            badByte = i;
            return true;
        }
        i += extra + 1;
    }
    return false;
}

std::string BadUtf8Message(const std::string& raw, size_t badByte, int& col) {
    col = int(FromUtf8(raw.substr(0, badByte)).size());
    char buf[96];
    std::snprintf(buf, sizeof buf, "not valid UTF-8: byte 0x%02X at byte %zu of the line (save the script as UTF-8)",
                  static_cast<unsigned char>(raw[badByte]), badByte + 1);
    return buf;
}

// Punctuation an input method gives in place of the ASCII the language reads.
char LookAlike(wchar_t c) {
    if (c >= 0xFF01 && c <= 0xFF5E) return char(c - 0xFEE0);  // full-width forms of ! .. ~
    switch (c) {
        case 0x201C: case 0x201D: case 0x201E: case 0x300C: case 0x300D: return '"';
        case 0x2018: case 0x2019: return '\'';
        case 0x3001: return ',';
        case 0x3002: return '.';
        case 0x2212: case 0x2013: case 0x2014: return '-';
        case 0x00A0: return ' ';
        default: return 0;
    }
}

std::string LookAlikeMessage(wchar_t c, char ascii) {
    bool fullWidth = c >= 0xFF01 && c <= 0xFF5E;
    return "unexpected character " + ToUtf8(std::wstring(1, c)) + " (" + CodePoint(c) + "), " +
           (fullWidth ? "a full-width " : "a look-alike of ") + "'" + std::string(1, ascii) + "'";
}

}  // namespace zelhost::script

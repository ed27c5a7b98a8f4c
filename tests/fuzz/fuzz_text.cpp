// String lists, escape sequences, names, extended property values and the
// wide string functions on arbitrary wide text, each checked against what it
// promises.
#include <cwchar>
#include <string>
#include <vector>

#include <zel/memory.h>
#include <zel/minimem.h>
#include <zel/mstring.h>
#include <zel/textfuncs.h>

#include "fuzz_input.h"

namespace {

bool IsBlank(wchar_t c) { return c == L' ' || c == L'\t'; }

void StringList(const std::wstring& text, wchar_t separator) {
    CMStringArray items;
    int n = GetStringList(text.c_str(), items, separator);
    FUZZ_CHECK(n == items.GetSize());
    size_t separators = 0;
    for (wchar_t c : text) separators += c == separator;
    FUZZ_CHECK(text.empty() ? n == 0 : n == int(separators) + 1);
    for (int i = 0; i < n; ++i) {
        const wchar_t* item = items.GetAt(i);
        size_t length = std::wcslen(item);
        FUZZ_CHECK(length == 0 || (!IsBlank(item[0]) && !IsBlank(item[length - 1])));
        FUZZ_CHECK(text.find(item) != std::wstring::npos);
    }
    items.RemoveAll();
}

void Escapes(const std::wstring& text) {
    CMiniMem out;
    const wchar_t* converted = ConvertEscapeSequences(text.c_str(), out);
    FUZZ_CHECK(converted);
    // The result is never longer than the source; "\0" may end it early.
    FUZZ_CHECK(std::wcslen(converted) <= text.size());
    if (text.find(L'\\') == std::wstring::npos) FUZZ_CHECK(text == converted);
}

void Names(const std::wstring& text) {
    bool valid = IsValidName(text.c_str());
    if (valid) FUZZ_CHECK(!text.empty() && !(text[0] >= L'0' && text[0] <= L'9'));
    FUZZ_CHECK(GetFriendNameHash(text.c_str()) == GetTextHash(text.c_str()));
}

void Property(const std::wstring& properties, const std::wstring& name) {
    CMString value(L"unchanged");
    bool found = GetExtendPropertyValue(properties.c_str(), name.c_str(), value);
    if (!found) FUZZ_CHECK(value == L"unchanged");
    if (found) FUZZ_CHECK(properties.find(name) != std::wstring::npos && properties.find(value.GetText()) != std::wstring::npos);
}

void Functions(std::wstring text, const std::wstring& other) {
    const wchar_t* s = text.c_str();
    FUZZ_CHECK(mystrlen(s) == int(text.size()));
    FUZZ_CHECK((mystrcmp(s, other.c_str()) == 0) == (text == other));
    FUZZ_CHECK(mystricmp(s, other.c_str()) == -mystricmp(other.c_str(), s));
    if (wchar_t* found = mystrstr(s, other.c_str())) FUZZ_CHECK(text.compare(found - s, other.size(), other) == 0);
    else FUZZ_CHECK(text.find(other) == std::wstring::npos);
    if (!other.empty()) {
        wchar_t* first = mystrchr(s, other[0]);
        wchar_t* last = mystrrchr(s, other[0]);
        FUZZ_CHECK((first == nullptr) == (text.find(other[0]) == std::wstring::npos));
        FUZZ_CHECK(!first || (first <= last && *first == other[0] && *last == other[0]));
    }
    // Tokens are the text's pieces between delimiters, none of them empty.
    std::wstring joined;
    for (wchar_t* token = mystrtok(text.data(), other.c_str()); token; token = mystrtok(nullptr, other.c_str())) {
        FUZZ_CHECK(*token);
        for (wchar_t* p = token; *p; ++p) FUZZ_CHECK(other.find(*p) == std::wstring::npos);
        joined += token;
    }
    CMString trimmed(text.c_str());
    trimmed.TrimLeft();
    trimmed.TrimRight();
    FUZZ_CHECK(trimmed.GetLength() <= int(text.size()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzInput in(data, size);
    unsigned choice = in.Pick(5);
    wchar_t separator = static_cast<wchar_t>(" ,;=|"[in.Pick(5)]);
    std::wstring first = in.Wide(in.Byte() + 1);
    std::wstring second = in.Wide(1024);
    switch (choice) {
        case 0: StringList(first + second, separator); break;
        case 1: Escapes(first + second); break;
        case 2: Names(first + second); break;
        case 3: Property(first, second); break;
        default: Functions(first, second); break;
    }
    return 0;
}

// CMString::Format and swprintf_linux with safe formats, against vswprintf:
// "%s" (a wide string in our formats) is "%ls" to the C library; everything
// else must come out exactly as the C library writes it.
#include <cwchar>
#include <string>
#include <vector>

#include <zel/errors.h>
#include <zel/mstring.h>

#include "fuzz_input.h"

namespace {

// Three conversions of at most 999 columns or 340 digits fit many times over.
constexpr int kRoom = 16384;
wchar_t g_expected[kRoom], g_ours[kRoom];

template <typename... Args>
void Compare(const std::wstring& ours, const std::wstring& theirs, Args... args) {
    int n = std::swprintf(g_expected, kRoom, theirs.c_str(), args...);
    CMString text(L"before");
    text.Format(ours.c_str(), args...);
    if (n < 0) {
        FUZZ_CHECK(text.IsEmpty());
        return;
    }
    FUZZ_CHECK(text == g_expected);
    FUZZ_CHECK(swprintf_linux(g_ours, const_cast<wchar_t*>(ours.c_str()), args...) == n);
    FUZZ_CHECK(std::wcscmp(g_ours, g_expected) == 0);
}

std::wstring Literal(FuzzInput& in) {
    std::wstring text = in.Wide(in.Pick(8));
    for (wchar_t& c : text)
        if (c == L'%' || static_cast<unsigned>(c) > 0x10FFFF) c = L'.';
    return text;
}

std::wstring Flags(FuzzInput& in, const wchar_t* allowed) {
    std::wstring spec = L"%";
    for (unsigned n = in.Pick(3); n; --n) spec += allowed[in.Pick(static_cast<unsigned>(std::wcslen(allowed)))];
    if (unsigned width = in.Pick(4)) spec += std::to_wstring(in.Word() % (width == 3 ? 1000 : 20));
    if (in.Pick(2)) spec += L"." + std::to_wstring(in.Pick(30));
    return spec;
}

// Appends `conversions` conversions to both formats, with an argument each.
template <int Conversions, typename... Args>
void Build(FuzzInput& in, std::wstring ours, std::wstring theirs, std::vector<std::wstring>& texts, Args... args) {
    std::wstring literal = Literal(in);
    ours += literal;
    theirs += literal;
    if constexpr (Conversions == 0) {
        Compare(ours, theirs, args...);
    } else {
        switch (in.Pick(5)) {
            case 0: {
                std::wstring spec = Flags(in, L"-+ #0") + L"diuxXo"[in.Pick(6)];
                Build<Conversions - 1>(in, ours + spec, theirs + spec, texts, args..., static_cast<int>(in.Word()));
                break;
            }
            case 1: {
                std::wstring spec = Flags(in, L"-+ #0") + L"feEgGaA"[in.Pick(7)];
                uint64_t bits = uint64_t(in.Word()) << 32 | in.Word();
                double d;
                std::memcpy(&d, &bits, sizeof d);
                Build<Conversions - 1>(in, ours + spec, theirs + spec, texts, args..., d);
                break;
            }
            case 2: {
                // Only the letter right after '%' is swapped: a wide string is "%s" alone.
                texts.push_back(in.Wide(in.Pick(64)));
                Build<Conversions - 1>(in, ours + L"%s", theirs + L"%ls", texts, args..., texts.back().c_str());
                break;
            }
            case 3: {
                std::wstring spec = Flags(in, L"-") + L"c";
                Build<Conversions - 1>(in, ours + spec, theirs + spec, texts, args..., 0x20 + in.Pick(0x5F));
                break;
            }
            default:
                Build<Conversions - 1>(in, ours + L"%%", theirs + L"%%", texts, args...);
                break;
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzInput in(data, size);
    std::vector<std::wstring> texts;
    texts.reserve(8);  // the arguments point into it
    switch (in.Pick(4)) {
        case 0: Build<0>(in, L"", L"", texts); break;
        case 1: Build<1>(in, L"", L"", texts); break;
        case 2: Build<2>(in, L"", L"", texts); break;
        default: Build<3>(in, L"", L"", texts); break;
    }
    return 0;
}

// UTF-8 <-> UTF-32 both ways, against iconv(3): where iconv accepts the input
// the library must give the same text; where it does not, the library still
// gives scalar values (U+FFFD for what is malformed) and stops at the terminator.
#include <string>

#include <zel/minimem.h>
#include <zel/textfuncs.h>

#include "fuzz_iconv.h"

namespace {

bool IsScalar(wchar_t c) {
    auto u = static_cast<uint32_t>(c);
    return u <= 0x10FFFF && (u < 0xD800 || u > 0xDFFF);
}

std::string AsBytes(const std::wstring& s) {
    return std::string(reinterpret_cast<const char*>(s.data()), s.size() * sizeof(wchar_t));
}

void Utf8ToUcs(const std::string& bytes) {
    std::string utf8 = bytes.substr(0, bytes.find('\0'));
    CMiniMem out;
    const wchar_t* ucs = UTF8_to_UCS(utf8.c_str(), out);
    FUZZ_CHECK(ucs);
    std::wstring got(ucs);
    FUZZ_CHECK(got.size() <= utf8.size());
    for (wchar_t c : got) FUZZ_CHECK(IsScalar(c));
    std::string expected;
    if (Iconv("UTF-32LE", "UTF-8", utf8, expected)) FUZZ_CHECK(AsBytes(got) == expected);

    // Back again: valid UTF-8 that decodes to the same text.
    CMiniMem back;
    const char* again = UCS_to_UTF8(ucs, back);
    FUZZ_CHECK(again);
    std::string check;
    FUZZ_CHECK(Iconv("UTF-32LE", "UTF-8", again, check) && check == AsBytes(got));
}

void UcsToUtf8(FuzzInput& in) {
    std::wstring ucs = in.Wide(4096);
    CMiniMem out;
    const char* utf8 = UCS_to_UTF8(ucs.c_str(), out);
    FUZZ_CHECK(utf8);
    // Units that are no scalar value are written as U+FFFD.
    std::wstring scalars = ucs;
    for (wchar_t& c : scalars)
        if (!IsScalar(c)) c = 0xFFFD;
    std::string expected;
    FUZZ_CHECK(Iconv("UTF-8", "UTF-32LE", AsBytes(scalars), expected));
    FUZZ_CHECK(expected == utf8);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzInput in(data, size);
    if (in.Byte() & 1) UcsToUtf8(in);
    else Utf8ToUcs(in.Rest());
    return 0;
}

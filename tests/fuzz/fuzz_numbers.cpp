// The number parsers and converters: myatoi and myatof against strtoll and
// strtod on decimal text, and the value <-> text <-> byte set conversions
// round-tripping.
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string>

#include <zel/converters.h>
#include <zel/memory.h>
#include <zel/textfuncs.h>

#include "fuzz_input.h"

namespace {

bool SameDouble(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }
// A double returned through the x87 stack loses a signalling NaN's payload
// bit: any NaN matches any NaN.
bool SameValue(double a, double b) { return SameDouble(a, b) || (std::isnan(a) && std::isnan(b)); }

// Decimal text from the characters a number is made of, plus leading blanks.
void DecimalText(FuzzInput& in) {
    static const char kAlphabet[] = " 0123456789.eE+-9";
    std::string ascii;
    for (size_t n = in.Pick(48); n; --n) ascii.push_back(kAlphabet[in.Pick(sizeof kAlphabet - 1)]);
    std::wstring wide(ascii.begin(), ascii.end());

    errno = 0;
    double expected = std::strtod(ascii.c_str(), nullptr);
    FUZZ_CHECK(SameDouble(myatof(wide.c_str()), expected));

    long long whole = std::strtoll(ascii.c_str(), nullptr, 10);
    int saturated = whole > INT_MAX ? INT_MAX : whole < INT_MIN ? INT_MIN : static_cast<int>(whole);
    FUZZ_CHECK(myatoi(wide.c_str()) == saturated);
}

// Any text: no crash, and the C-locale parsers agree with themselves.
void AnyText(FuzzInput& in) {
    std::wstring text = in.Wide(64);
    wchar_t* s = text.data();
    myatoi(s);
    double f = myatof(s);
    FUZZ_CHECK(!std::isnan(f));  // decimal text only: "nan" reads as 0
    MStringToInt(s);
    MStringToMDouble(s);
    unsigned char* bin = MStringToMBin(s);
    wchar_t* back = MBinToMString(bin);
    FUZZ_CHECK(std::wcscmp(back, s) == 0);
    zel_free(back);
    zel_free(bin);
}

void Values(FuzzInput& in) {
    int i = static_cast<int>(in.Word());
    wchar_t* text = MIntToMString(i);
    FUZZ_CHECK(myatoi(text) == i && MStringToInt(text) == i);
    zel_free(text);
    unsigned char* bin = MIntToMBin(i);
    FUZZ_CHECK(MBinToInt(bin) == i && MBinToMDouble(bin) == 0);
    zel_free(bin);

    uint64_t bits = uint64_t(in.Word()) << 32 | in.Word();
    double d;
    std::memcpy(&d, &bits, sizeof d);
    bin = MDoubleToMBin(d);
    FUZZ_CHECK(SameValue(MBinToMDouble(bin), d) && MBinToInt(bin) == 0);
    zel_free(bin);
    text = MDoubleToMString(d);
    FUZZ_CHECK(mystrlen(text) < 255);
    // "%f" keeps six decimals: the text reads back within half a unit of the last one.
    if (std::isfinite(d) && std::fabs(d) < 1e15) FUZZ_CHECK(std::fabs(myatof(text) - d) <= 5e-7 + 1e-15 * std::fabs(d));
    zel_free(text);
    text = MBoolToMString(i & 1);
    zel_free(text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzInput in(data, size);
    switch (in.Pick(3)) {
        case 0: DecimalText(in); break;
        case 1: AnyText(in); break;
        default: Values(in); break;
    }
    return 0;
}

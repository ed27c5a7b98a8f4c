// Conversions between the runtime's basic values. Byte sets hold values in
// memory order (little-endian); texts are UTF-32.
#include <zel/converters.h>

#include <climits>
#include <cstring>
#include <cwchar>

#include <zel/memory.h>
#include <zel/values.h>
#include <zel/textfuncs.h>

ZEL_API unsigned char* MStringToMBin(wchar_t* text) { return MCloneZelBin(text, mystrlen(text) * int(sizeof(wchar_t))); }

ZEL_API unsigned char* MDoubleToMBin(double value) { return MCloneZelBin(&value, sizeof value); }

ZEL_API unsigned char* MIntToMBin(int value) { return MCloneZelBin(&value, sizeof value); }

// The bytes of a byte set of exactly sizeof(T) bytes, else T().
template <typename T>
static T ReadExact(void* bin) {
    void* data = nullptr;
    T value{};
    if (MGetAryElementCount(static_cast<int*>(bin), &data) == int(sizeof(T))) std::memcpy(&value, data, sizeof(T));
    return value;
}

ZEL_API double MBinToMDouble(void* bin) { return ReadExact<double>(bin); }

ZEL_API int MBinToInt(void* bin) { return ReadExact<int>(bin); }

// Parsed in single precision: "0.1" gives the float nearest 0.1, widened.
ZEL_API double MStringToMDouble(wchar_t* text) {
    float value = 0;
    if (text) std::swscanf(text, L"%f", &value);
    return value;
}

ZEL_API int MStringToInt(wchar_t* text) {
    int value = 0;
    if (text) std::swscanf(text, L"%d", &value);
    return value;
}

// n bytes become a text of n + 1 code units: the bytes are copied in and the
// rest is zero, so nothing past the byte set is read, and the bytes of a text
// (MStringToMBin) read back as that text.
ZEL_API wchar_t* MBinToMString(void* bin) {
    void* data = nullptr;
    int n = MGetAryElementCount(static_cast<int*>(bin), &data);
    if (n < 0 || n >= INT_MAX / int(sizeof(wchar_t))) n = 0;  // no such byte set on this target
    int size = (n + 1) * int(sizeof(wchar_t));
    auto* text = static_cast<wchar_t*>(zel_malloc(size));
    if (!text) return zel::EmptyString();
    std::memset(text, 0, size);
    if (n > 0) std::memcpy(text, data, n);
    return text;
}

ZEL_API wchar_t* MBoolToMString(int value) { return MCloneText(value ? zelTrueLiteral : zelFalseLiteral); }

// Formats into a fixed buffer; a longer result is cut at the buffer's end.
template <int N, typename T>
static wchar_t* FormatNumber(const wchar_t* format, T value) {
    wchar_t buffer[N] = {};
    std::swprintf(buffer, N, format, value);
    buffer[N - 1] = 0;
    return MCloneText(buffer);
}

ZEL_API wchar_t* MDoubleToMString(double value) { return FormatNumber<255>(L"%f", value); }

ZEL_API wchar_t* MIntToMString(int value) { return FormatNumber<50>(L"%d", value); }

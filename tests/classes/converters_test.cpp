#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "classes/converters.h"
#include "runtime/memory.h"
#include "runtime/values.h"

namespace {
// Takes over a converter's new text.
std::wstring Take(wchar_t* text) {
    std::wstring s(text);
    zel_free(text);
    return s;
}
unsigned char* Bin(const void* data, int length) { return MCloneZelBin(const_cast<void*>(data), length); }
}  // namespace

TEST(Converters, NumbersThroughByteSets) {
    unsigned char* b = MDoubleToMBin(0.1);
    EXPECT_EQ(MGetZelBinLength(b), 8);
    EXPECT_EQ(MBinToMDouble(b), 0.1);
    EXPECT_EQ(MBinToInt(b), 0);  // 8 bytes are not an integer
    zel_free(b);

    b = MIntToMBin(-2);
    EXPECT_EQ(MGetZelBinLength(b), 4);
    EXPECT_EQ(MGetZelBinData(b)[0], 0xFE);  // little-endian
    EXPECT_EQ(MBinToInt(b), -2);
    EXPECT_EQ(MBinToMDouble(b), 0.0);
    zel_free(b);

    const unsigned char bytes[5] = {1, 0, 0, 0, 0};
    for (int length : {3, 5}) {
        b = Bin(bytes, length);
        EXPECT_EQ(MBinToInt(b), 0) << length;
        zel_free(b);
    }
    b = Bin(bytes, 4);
    EXPECT_EQ(MBinToInt(b), 1);
    zel_free(b);
    EXPECT_EQ(MBinToInt(nullptr), 0);
    EXPECT_EQ(MBinToMDouble(nullptr), 0.0);
}

TEST(Converters, ParsingTextIsSinglePrecision) {
    EXPECT_EQ(MStringToMDouble(const_cast<wchar_t*>(L"1.5")), 1.5);
    EXPECT_EQ(MStringToMDouble(const_cast<wchar_t*>(L"0.1")), double(0.1f));
    EXPECT_NE(MStringToMDouble(const_cast<wchar_t*>(L"0.1")), 0.1);
    EXPECT_EQ(MStringToMDouble(const_cast<wchar_t*>(L"abc")), 0.0);
    EXPECT_EQ(MStringToMDouble(nullptr), 0.0);
    EXPECT_EQ(MStringToInt(const_cast<wchar_t*>(L" 42x")), 42);
    EXPECT_EQ(MStringToInt(const_cast<wchar_t*>(L"")), 0);
    EXPECT_EQ(MStringToInt(nullptr), 0);
}

TEST(Converters, ValuesToText) {
    EXPECT_EQ(Take(MIntToMString(42)), L"42");
    EXPECT_EQ(Take(MIntToMString(-2147483647 - 1)), L"-2147483648");
    EXPECT_EQ(Take(MDoubleToMString(1.5)), L"1.500000");
    // 1e300 needs 307 units: the 255-unit buffer keeps the first 254.
    std::wstring huge = Take(MDoubleToMString(1e300));
    EXPECT_LE(huge.size(), 254u);
    EXPECT_EQ(huge.substr(0, 3), L"100");
    EXPECT_EQ(Take(MBoolToMString(5)), L"真");
    EXPECT_EQ(Take(MBoolToMString(0)), L"假");
}

TEST(Converters, TextRoundTripsThroughBytes) {
    unsigned char* b = MStringToMBin(const_cast<wchar_t*>(L"文本ab"));
    EXPECT_EQ(MGetZelBinLength(b), 16);
    EXPECT_EQ(Take(MBinToMString(b)), L"文本ab");
    zel_free(b);
    // Bytes that fill no whole code unit still stay inside the byte set.
    const unsigned char three[3] = {'a', 0, 0};
    b = Bin(three, 3);
    EXPECT_EQ(Take(MBinToMString(b)), L"a");
    zel_free(b);
    EXPECT_EQ(Take(MBinToMString(nullptr)), L"");
    EXPECT_EQ(MGetZelBinLength(MStringToMBin(nullptr)), 0);
}

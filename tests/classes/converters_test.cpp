#include <zel/converters.h>

#include <gtest/gtest.h>

#include <string>

#include <zel/memory.h>
#include <zel/values.h>

namespace {
std::wstring Take(wchar_t* text) {
    std::wstring s(text);
    zel_free(text);
    return s;
}
}  // namespace

TEST(Converters, ByteSetsConvertOnlyAtExactlyTheirSize) {
    unsigned char* b = MDoubleToMBin(0.1);
    EXPECT_EQ(MBinToMDouble(b), 0.1);
    EXPECT_EQ(MBinToInt(b), 0) << "8 bytes are not an integer";
    zel_free(b);
    // Bytes that fill no whole code unit still stay inside the byte set.
    b = MCloneZelBin(const_cast<char*>("a\0\0"), 3);
    EXPECT_EQ(MBinToInt(b), 0);
    EXPECT_EQ(Take(MBinToMString(b)), L"a");
    zel_free(b);
    // A length word that is negative or too large for any block: the empty text.
    for (int length : {-5, 0x40000000}) {
        int block[] = {0, 1, length, 0x41};
        EXPECT_EQ(Take(MBinToMString(reinterpret_cast<unsigned char*>(block))), L"") << length;
    }
}

TEST(Converters, TextsParseInSinglePrecisionAndPrintIntoABoundedBuffer) {
    EXPECT_EQ(MStringToMDouble(const_cast<wchar_t*>(L"0.1")), double(0.1f));
    // 1e300 needs 307 units: the 255-unit buffer keeps the first 254.
    std::wstring huge = Take(MDoubleToMString(1e300));
    EXPECT_LE(huge.size(), 254u);
    EXPECT_EQ(huge.substr(0, 3), L"100");
}

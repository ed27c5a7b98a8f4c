// CMemoryStream's byte format and its reads of short or malformed data.
#include <gtest/gtest.h>

#include <string>

#include "io/MemoryStream.h"
#include "io_test_util.h"

namespace {

std::string Bytes(CMemoryStream& s) { return std::string(reinterpret_cast<char*>(s.GetData()), s.GetLength()); }

TEST(MemoryStream, TheFormatIsPackedLittleEndianWithoutTags) {
    CMemoryStream s;
    EXPECT_TRUE(s.WriteInt(7) && s.WriteText(const_cast<wchar_t*>(L"ab")) && s.WriteDouble(1.5));
    const unsigned char expected[24] = {0x07, 0, 0, 0, 0x61, 0, 0, 0, 0x62, 0, 0, 0,
                                        0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xF8, 0x3F};
    EXPECT_EQ(Bytes(s), std::string(reinterpret_cast<const char*>(expected), 24));
    EXPECT_EQ(s.ReadInt(), 7);
    EXPECT_EQ(Owned(s.ReadText()).text(), L"ab");
    EXPECT_TRUE(s.ReadDouble() == 1.5 && s.GetPosition() == 24);
    Owned abc(MakeBin("abc"));
    s.WriteBinData(abc.h);  // the bytes alone, without the header
    EXPECT_EQ(s.GetLength(), 27);
}

// Malformed data never reads outside the buffer nor moves past the length.
TEST(MemoryStream, ShortAndMalformedDataTakeWhatIsThere) {
    CMemoryStream s;
    s.InitData(const_cast<char*>("0123456789ABCDEFGHIJ"), 20);
    Owned first(s.Read(10)), rest(s.Read(100));
    EXPECT_EQ(rest.bytes(), "ABCDEFGHIJ");
    s.InitData(const_cast<char*>("01"), 2);  // keeps the position, now past the end
    EXPECT_TRUE(s.Read(5) == nullptr && s.Read(-1) == nullptr);

    CMemoryStream text;
    text.InitData(const_cast<wchar_t*>(L"abc"), 12);  // no zero unit
    EXPECT_EQ(Owned(text.ReadText()).text(), L"abc");
    EXPECT_EQ(Owned(text.ReadText()).text(), L"");
    EXPECT_EQ(text.GetPosition(), 12);

    int header[] = {0, 1, 1000};  // a byte set announcing 1000 bytes
    for (int length : {2, 10, 16}) {
        CMemoryStream bin;
        bin.InitData(header, length < 12 ? length : 12);
        if (length > 12) bin.AddText(const_cast<wchar_t*>(L"x"));
        EXPECT_EQ(Owned(bin.ReadBin()).binLength(), length > 12 ? 4 : 0) << length;
        EXPECT_TRUE(length == 10 ? bin.GetPosition() <= 10 : bin.GetPosition() == bin.GetLength()) << length;
    }
}

TEST(MemoryStream, CopiesTakeBytesNotPositions) {
    CMemoryStream a, c;
    a.InitData(const_cast<char*>("\1\0\0\0\2\0\0\0"), 8);
    c.InitData(const_cast<char*>("\11\0\0\0"), 4);
    EXPECT_TRUE(a.ReadInt() == 1 && c.ReadInt() == 9);
    CMemoryStream b(a);  // a new stream reads from the start
    EXPECT_TRUE(b.GetPosition() == 0 && Bytes(b) == Bytes(a));
    c = a;  // an assigned one keeps its own position
    c = c;
    EXPECT_TRUE(c.ReadInt() == 2 && c.GetLength() == 8);
}

TEST(MemoryStream, EmptyDataAndAMissingByteSet) {
    CMemoryStream s;
    s.InitData(const_cast<char*>("abcd"), 4);
    s.InitData(const_cast<char*>("xyz"), 0);
    EXPECT_TRUE(s.GetLength() == 0 && s.GetData() == nullptr && !s.IsDataValid(-1));
    s.WriteBinData(nullptr);  // written as a zero length
    EXPECT_TRUE(s.GetLength() == 4 && s.ReadInt() == 0);
}

}  // namespace

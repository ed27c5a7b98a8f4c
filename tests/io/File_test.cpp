// CFile and CTextFile on real files in a private temporary directory.
#include <gtest/gtest.h>

#include <cstdio>
#include <new>

#include "io/File.h"
#include "io_test_util.h"

namespace {

class FileTest : public TempDirTest {
protected:
    static long BytePosition(const CFile& f) { return std::ftell(f.GetStream()); }
};

const std::string kWideLE = std::string("\xFF\xFE", 2) + std::string("a\0\0\0b\0\0\0c\0\0\0", 12);

// Modes outside the table open read-only; 取长度 rewinds; 置长度 only moves.
TEST_F(FileTest, ModesLengthAndSetLength) {
    std::wstring path = Make("f", "0123456789");
    for (int mode : {0, 7, -1}) EXPECT_EQ(CFile(path.c_str(), mode).Write("zz", 2), 0) << mode;  // "rb"
    EXPECT_TRUE(!CFile(dir.WPath("absent").c_str(), 0).GetStream() && !std::filesystem::exists(dir.Path("absent")));
    EXPECT_EQ(CFile(path.c_str(), 3).Write("ab", 2), 2);
    CFile f(path.c_str(), 4);
    EXPECT_EQ(f.Seek(7, SEEK_SET), 0);
    EXPECT_TRUE(f.GetLength() == 12 && f.GetPosition() == 0);
    EXPECT_TRUE(f.SetLength(25) == 0 && f.GetPosition() == 25);
    f.Close();
    EXPECT_EQ(ReadFileBytes(dir.Path("f")), "0123456789ab");

    CFile append(path.c_str(), 6);  // "ab+": writes go to the end, reads from anywhere
    char buf[16] = {};
    EXPECT_EQ(append.Write("cd", 2), 2);
    append.SeekToBegin();
    EXPECT_TRUE(append.Read(buf, 16) == 14 && std::string(buf, 14) == "0123456789abcd");
    EXPECT_EQ(CFile(path.c_str(), 2).GetLength(), 0);
}

// A closed or never opened file (a script may call on after 关闭) touches no
// null FILE*: neutral results throughout.
TEST_F(FileTest, UnopenedFileGivesNeutralResults) {
    CFile f;
    char buf[4];
    EXPECT_TRUE(f.GetPosition() == -1 && f.Seek(0, SEEK_SET) == -1 && f.SeekToEnd() == -1 && f.GetLength() == -1);
    EXPECT_TRUE(f.Read(buf, 4) == 0 && f.Write(buf, 4) == 0 && f.Fputc('a') == EOF && f.IsEOF() == 0 && f.Close() == 0);
    CTextFile t(dir.WPath("absent").c_str(), 1, 0);  // a wide default without a file
    EXPECT_TRUE(t.GetPosition() == -1 && t.Seek(1, SEEK_SET) == -1 && t.SeekToBegin() == -1 && t.GetLength() == -1);
    EXPECT_TRUE(t.Read(nullptr, 4) == 0 && t.Write(L"xab", 4) == 0 && t.Flush() == 0);
}

TEST_F(FileTest, RepeatedOpensLeakNoDescriptor) {
    std::wstring wide = Make("wide", kWideLE), plain = Make("plain", "abc");
    int before = OpenDescriptors();
    {
        CFile f;
        CTextFile t;
        for (int i = 0; i < 100; ++i) {
            ASSERT_TRUE(f.Open(plain.c_str(), 1) && t.Open(wide.c_str(), 1, 2) && t.GetEncoding() == 0);
            CTextFile owned(plain.c_str(), 4, 2);
        }
        EXPECT_EQ(OpenDescriptors(), before + 2);
    }
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(FileTest, EncodingComesFromTheWideSignaturesOnly) {
    struct Case {
        std::string bytes;
        int defaultEncoding, expected;
    } cases[] = {{"\xFF\xFE" "ab", 2, 0}, {"\xFE\xFF" "ab", 2, 1},
                 {"\xFF", 2, 2},               // one byte: the pair is FF 00
                 {"\xFE" "a", 2, 2},           // FE alone is no signature
                 {"", 3, 3},                   // nothing read keeps the default
                 {"\xEF\xBB\xBF" "ab", 2, 2}};  // the UTF-8 signature is not recognised
    for (const Case& c : cases) {
        std::wstring path = Make("enc", c.bytes);
        CTextFile t(path.c_str(), 1, c.defaultEncoding);
        EXPECT_TRUE(t.GetEncoding() == c.expected && t._GetFileEncoding(path.c_str(), c.defaultEncoding) == c.expected)
            << c.bytes;
    }
}

// Wide files count 4-byte characters behind the signature, big-endian ones
// scaled twice where the length is set; multibyte files count bytes; signed
// UTF-8 files never seek.
TEST_F(FileTest, SeeksScaleByTheEncoding) {
    CTextFile be(Make("be", std::string("\xFE\xFF", 2) + std::string(24, 'x')).c_str(), 1, 2);
    EXPECT_TRUE(be.GetEncoding() == 1 && be.Seek(5, SEEK_SET) == 0 && BytePosition(be) == 22);
    EXPECT_TRUE(be.SetLength(1) == 0 && BytePosition(be) == 18);  // 1 * 16 + 2
    EXPECT_EQ(be.SeekToEnd(), 26);  // bytes, not characters
    be.Seek(0, SEEK_SET);
    EXPECT_TRUE(be.GetLength() == -2 && BytePosition(be) == 26);  // 4294967294: from fseek's status

    CTextFile mb(Make("mb", "0123456789").c_str(), 1, 2);
    EXPECT_TRUE(mb.Seek(4, SEEK_SET) == 0 && mb.GetPosition() == 4);
    EXPECT_TRUE(mb.GetLength() == 0 && mb.GetPosition() == 10);

    CTextFile u8;  // Open, unlike the constructor, stands behind the signature
    ASSERT_TRUE(u8.Open(Make("u8", "\xEF\xBB\xBF" "abcdef").c_str(), 1, 3));
    EXPECT_TRUE(u8.Seek(2, SEEK_SET) == 0 && u8.SetLength(1) == 3 && u8.GetPosition() == 3);
}

// Read counts what was there and releases the caller's buffer; a multibyte
// write converts the text from 4 bytes past the pointer and counts its bytes.
TEST_F(FileTest, TextReadCountsAndMultibyteWriteSkipsTheFirstUnit) {
    CTextFile wide;
    ASSERT_EQ(wide.Open(Make("le", kWideLE).c_str(), 1, 2), 1);
    EXPECT_TRUE(wide.Read(::operator new(8), 2) == 2 && wide.Read(nullptr, 10) == 1);
    CTextFile bytes(Make("mb", "").c_str(), 2, 2);
    wchar_t text[] = {L'x', L'a', L'b', 0};
    EXPECT_EQ(bytes.Write(text, 0), 3);
    bytes.Close();
    EXPECT_EQ(ReadFileBytes(dir.Path("mb")), std::string("a\0\0", 3));
}

}  // namespace

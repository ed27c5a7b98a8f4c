// CFile and CTextFile on real files in a private temporary directory.
#include <gtest/gtest.h>

#include <cstdio>
#include <new>

#include "io/File.h"
#include "io_test_util.h"

namespace {

class FileTest : public ::testing::Test {
protected:
    TempDir dir;
    std::wstring Make(const std::string& name, const std::string& bytes) {
        WriteFileBytes(dir.Path(name), bytes);
        return dir.WPath(name);
    }
    static long BytePosition(const CFile& f) { return std::ftell(f.GetStream()); }
};

const std::string kWideLE = std::string("\xFF\xFE", 2) + std::string("a\0\0\0b\0\0\0c\0\0\0", 12);
const std::string kWideBE = std::string("\xFE\xFF", 2) + std::string(24, 'x');

TEST_F(FileTest, ModesMapToStdioModes) {
    std::wstring path = Make("f", "0123456789");
    for (int mode : {0, 1, 7, -1}) {  // "rb"
        CFile f;
        ASSERT_EQ(f.Open(path.c_str(), mode), 1) << mode;
        EXPECT_EQ(f.Write("zz", 2), 0) << mode;
    }
    EXPECT_EQ(CFile(dir.WPath("absent").c_str(), 0).GetStream(), nullptr);
    EXPECT_FALSE(std::filesystem::exists(dir.Path("absent")));
    EXPECT_EQ(CFile(path.c_str(), 3).Write("ab", 2), 2);
    EXPECT_EQ(ReadFileBytes(dir.Path("f")), "0123456789ab");
    EXPECT_EQ(CFile(path.c_str(), 2).GetLength(), 0);
}

TEST_F(FileTest, LengthRewindsAndSetLengthOnlyMoves) {
    std::wstring path = Make("ten", "0123456789");
    CFile f(path.c_str(), 4);
    EXPECT_EQ(f.Seek(7, SEEK_SET), 0);
    EXPECT_EQ(f.GetLength(), 10);
    EXPECT_EQ(f.GetPosition(), 0);
    EXPECT_EQ(f.SetLength(3), 0);
    EXPECT_EQ(f.GetPosition(), 3);
    f.SetLength(25);
    EXPECT_EQ(f.GetPosition(), 25);
    f.Close();
    EXPECT_EQ(ReadFileBytes(dir.Path("ten")).size(), 10u);
}

TEST_F(FileTest, SeekAnswersStatusAndReadsReportEnd) {
    CFile f(Make("ten", "0123456789").c_str(), 1);
    EXPECT_EQ(f.Seek(4, SEEK_SET), 0);
    EXPECT_EQ(f.Seek(-20, SEEK_SET), -1);
    EXPECT_EQ(f.SeekToEnd(), 10);
    EXPECT_EQ(f.SeekToBegin(), 0);
    char buf[16] = {};
    EXPECT_EQ(f.Read(buf, 0), 0);
    EXPECT_EQ(f.Read(buf, 16), 10);
    EXPECT_EQ(f.GetLastError(), 0);
    EXPECT_EQ(f.IsEOF(), 1);
    EXPECT_EQ(f.Fputc('x'), EOF);
    EXPECT_EQ(f.Flush(), 0);
}

// Without a stream nothing touches a null FILE*.
TEST_F(FileTest, UnopenedFileGivesNeutralResults) {
    CFile f;
    char buf[4];
    EXPECT_EQ(f.GetPosition(), -1);
    EXPECT_EQ(f.Seek(0, SEEK_SET), -1);
    EXPECT_EQ(f.SeekToEnd(), -1);
    EXPECT_EQ(f.GetLength(), -1);
    EXPECT_EQ(f.Read(buf, 4), 0);
    EXPECT_EQ(f.Write(buf, 4), 0);
    EXPECT_EQ(f.Fputc('a'), EOF);
    EXPECT_EQ(f.IsEOF(), 0);
    EXPECT_EQ(f.Close(), 0);
    CTextFile t;
    EXPECT_EQ(t.GetPosition(), -1);
    EXPECT_EQ(t.SeekToBegin(), -1);
    EXPECT_EQ(t.GetLength(), -1);
    EXPECT_EQ(t.Read(nullptr, 4), 0);
    EXPECT_EQ(t.Write(L"xab", 4), 0);
}

TEST_F(FileTest, RepeatedOpensLeakNoDescriptor) {
    std::wstring wide = Make("wide", kWideLE);
    std::wstring plain = Make("plain", "abc");
    int before = OpenDescriptors();
    {
        CFile f;
        CTextFile t;
        for (int i = 0; i < 100; ++i) {
            ASSERT_EQ(f.Open(plain.c_str(), 1), 1);
            ASSERT_EQ(t.Open(wide.c_str(), 1, 2), 1);
            ASSERT_EQ(t.GetEncoding(), 0);
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
    } cases[] = {
        {"\xFF\xFE" "ab", 2, 0},
        {"\xFE\xFF" "ab", 2, 1},
        {"\xFF", 2, 2},              // one byte: the pair is FF 00
        {"", 3, 3},                  // nothing read keeps the default
        {"\xEF\xBB\xBF" "ab", 2, 2}, // the UTF-8 signature is not recognised
        {"plain", 0, 0},
    };
    for (const Case& c : cases) {
        std::wstring path = Make("enc", c.bytes);
        CTextFile t;
        ASSERT_EQ(t.Open(path.c_str(), 1, c.defaultEncoding), 1);
        EXPECT_EQ(t.GetEncoding(), c.expected) << c.bytes;
        EXPECT_EQ(t._GetFileEncoding(path.c_str(), c.defaultEncoding), c.expected);
    }
    CTextFile t;
    EXPECT_EQ(t._GetFileEncoding(dir.WPath("absent").c_str(), 3), 3);
    EXPECT_EQ(t.Open(dir.WPath("absent").c_str(), 1, 0), 0);
}

TEST_F(FileTest, WidePositionsCountCharactersBehindTheSignature) {
    CTextFile le;
    ASSERT_EQ(le.Open(Make("le", kWideLE).c_str(), 1, 2), 1);
    EXPECT_EQ(le.GetPosition(), 0);
    EXPECT_EQ(BytePosition(le), 2);
    EXPECT_EQ(le.Seek(1, SEEK_CUR), 0);
    EXPECT_EQ(BytePosition(le), 6);
    EXPECT_EQ(le.GetPosition(), 1);

    CTextFile be(Make("be", kWideBE).c_str(), 1, 2);
    ASSERT_EQ(be.GetEncoding(), 1);
    EXPECT_EQ(be.Seek(5, SEEK_SET), 0);
    EXPECT_EQ(BytePosition(be), 22);
    EXPECT_EQ(be.SetLength(1), 0);  // scaled twice: 1 * 16 + 2
    EXPECT_EQ(BytePosition(be), 18);
    EXPECT_EQ(be.SeekToEnd(), 26);  // bytes, not characters
    be.Seek(0, SEEK_SET);
    EXPECT_EQ(be.GetLength(), -2);  // 4294967294: answered from fseek's status
    EXPECT_EQ(BytePosition(be), 26);
}

// Signed UTF-8 files never seek; multibyte files seek in bytes.
TEST_F(FileTest, ByteEncodingsSeekInBytesOrNotAtAll) {
    CTextFile u8;
    ASSERT_EQ(u8.Open(Make("u8", "\xEF\xBB\xBF" "abcdef").c_str(), 1, 3), 1);
    ASSERT_EQ(u8.GetEncoding(), 3);
    EXPECT_EQ(BytePosition(u8), 3);
    EXPECT_EQ(u8.Seek(2, SEEK_SET), 0);
    EXPECT_EQ(u8.SetLength(1), 3);
    EXPECT_EQ(u8.GetPosition(), 3);

    CTextFile mb(Make("mb", "0123456789").c_str(), 1, 2);
    EXPECT_EQ(mb.Seek(4, SEEK_SET), 0);
    EXPECT_EQ(mb.GetPosition(), 4);
    EXPECT_EQ(mb.SetLength(6), 0);
    EXPECT_EQ(mb.GetPosition(), 6);
    EXPECT_EQ(mb.GetLength(), 0);
    EXPECT_EQ(mb.GetPosition(), 10);
}

// Read counts what was there and releases the caller's buffer.
TEST_F(FileTest, TextReadCountsAndAdvances) {
    CTextFile wide;
    ASSERT_EQ(wide.Open(Make("le", kWideLE).c_str(), 1, 2), 1);
    EXPECT_EQ(wide.Read(::operator new(8), 2), 2);
    EXPECT_EQ(wide.GetPosition(), 2);
    EXPECT_EQ(wide.Read(nullptr, 10), 1);
    EXPECT_EQ(wide.GetLastError(), 0);

    CTextFile bytes;
    ASSERT_EQ(bytes.Open(Make("mb", "hello").c_str(), 1, 2), 1);
    EXPECT_EQ(bytes.Read(nullptr, 3), 3);
    EXPECT_EQ(bytes.GetPosition(), 3);
    EXPECT_EQ(bytes.Read(nullptr, 100), 2);
}

// Both forms write from 4 bytes past the pointer; the multibyte form counts
// the converted text's bytes.
TEST_F(FileTest, TextWriteTakesBytesPastTheFirstUnit) {
    wchar_t text[] = {L'x', L'a', L'b', 0};
    {
        CTextFile wide;
        ASSERT_EQ(wide.Open(Make("le", "\xFF\xFE").c_str(), 4, 2), 1);
        wide.Seek(0, SEEK_END);
        EXPECT_EQ(wide.Write(text, 8), 8);
    }
    EXPECT_EQ(ReadFileBytes(dir.Path("le")), std::string("\xFF\xFE" "a\0\0\0b\0\0\0", 10));
    {
        CTextFile bytes(Make("mb", "").c_str(), 2, 2);
        EXPECT_EQ(bytes.Write(text, 0), 3);
        EXPECT_EQ(bytes.Write(nullptr, 3), 0);
    }
    EXPECT_EQ(ReadFileBytes(dir.Path("mb")), std::string("a\0\0", 3));
}

}  // namespace

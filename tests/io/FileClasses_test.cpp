// The file classes through their method functions: what scripts cannot see
// (block bounds, missing state, descriptors, files not created, directories
// that open but cannot be read, short signatures, a clone that cannot be copied).
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "common/test_object.h"
#include "io/File.h"
#include "io/MemoryStream.h"
#include "file_class_methods.h"
#include "io_test_util.h"
#include <zel/services.h>
#include <zel/values.h>

extern "C" int MemoryStream_GetLength(ZelObject*);

namespace {

class FileClassTest : public TempDirTest {
protected:
    // A runtime text holding the path of `name` in the temporary directory.
    Owned PathText(const std::string& name) { return Owned(zel::NewText(dir.WPath(name).c_str())); }
    Owned Text(const std::wstring& s) { return Owned(zel::NewText(s.c_str())); }
    std::wstring MakeDir(const std::string& name) {
        std::filesystem::create_directory(dir.Path(name));
        return dir.WPath(name);
    }
};

// 写 takes the count from word 1, never reading past the block; 文本文件.写
// counts the non-zero units from word 1 on, inside the block.
TEST_F(FileClassTest, WritesStayInsideTheBlock) {
    TestObject file(&g_info_File, File_Init, File_Free, 2), text(&g_info_TextFile, TextFile_Init, TextFile_Free, 3);
    Owned path = PathText("w"), le = PathText("le");
    ASSERT_EQ(File_Open(file, path.h, 2), 1);
    int block[] = {0, 64, 2, 0};  // a count of 64 is clipped to the block's 4 + 2 bytes
    EXPECT_TRUE(File_Write(file, reinterpret_cast<unsigned char*>(block)) == 6 && File_Write(file, nullptr) == 0);
    File_Free(file);
    EXPECT_EQ(ReadFileBytes(dir.Path("w")), std::string("\2\0\0\0\0\0", 6));

    WriteFileBytes(dir.Path("le"), "\xFF\xFE");
    ASSERT_EQ(TextFile_Open(text, le.h, 4, 2), 1);
    _TextFile_GetData(text)->Seek(0, SEEK_END);
    // Words 1..4 are 1, 8, "abcd", "efgh": no zero unit. Words 1..3 are 1, 6, 0.
    Owned noZero(MakeBin("abcdefgh")), stopsAtZero(MakeBin(std::string("\0\0\0\0ab", 6)));
    EXPECT_TRUE(TextFile_Write(text, noZero.h) == 4 && TextFile_Write(text, stopsAtZero.h) == 2);
    TextFile_Free(text);
    EXPECT_EQ(ReadFileBytes(dir.Path("le")), std::string("\xFF\xFE\1\0\0\0\1\0", 8));
}

TEST_F(FileClassTest, BinaryFileRejectsTypesAndEmptyData) {
    TestObject bin(&g_info_BinaryFile, BinaryFile_Init, BinaryFile_Free);
    Owned path = PathText("none"), abc(MakeBin("abc"));
    EXPECT_TRUE(!BinaryFile_WriteFile(bin, abc.h, path.h, -1) && !BinaryFile_WriteFile(bin, nullptr, path.h, 1));
    EXPECT_EQ(BinaryFile_ReadFile(bin, path.h, -1), zel::EmptyBin());
    EXPECT_FALSE(std::filesystem::exists(dir.Path("none")));  // refused before opening

    EXPECT_EQ(BinaryFile_WriteFile(bin, zel::EmptyBin(), path.h, 4), 0);
    EXPECT_EQ(ReadFileBytes(dir.Path("none")), "");  // created, nothing written
    EXPECT_EQ(BinaryFile_ReadFile(bin, path.h, 4), zel::EmptyBin());
    WriteFileBytes(dir.Path("none"), "\xEF\xBB\xBF");  // a signature alone
    EXPECT_EQ(BinaryFile_ReadFile(bin, path.h, 4), zel::EmptyBin());
}

TEST_F(FileClassTest, MethodsHoldNoDescriptorAfterwards) {
    WriteFileBytes(dir.Path("bad"), "\xC0\x80");
    Owned bad = PathText("bad"), out = PathText("o");
    int before = OpenDescriptors();
    TestObject bin(&g_info_BinaryFile, BinaryFile_Init, BinaryFile_Free);
    for (int i = 0; i < 100; ++i) {
        BinaryFile_WriteFile(bin, zel::EmptyBin(), out.h, 1);  // leaves o empty
        BinaryFile_ReadFile(bin, out.h, 1);
        BinaryFile_GetFileType(bin, out.h);
        BinaryFile_GetFileType(bin, bad.h);
    }
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(FileClassTest, DirectoriesOpenButCannotBeRead) {
    std::wstring folder = MakeDir("d");
    CFile file(folder.c_str(), 1);
    ASSERT_TRUE(file.GetStream());
    char buf[4];
    EXPECT_EQ(file.Read(buf, 4), 0);
    EXPECT_NE(file.GetLastError(), 0);

    TestObject bin(&g_info_BinaryFile, BinaryFile_Init, BinaryFile_Free), fileObject(&g_info_File, File_Init, File_Free, 2);
    Owned name = Text(folder);
    EXPECT_EQ(BinaryFile_ReadFile(bin, name.h, 1), zel::EmptyBin());
    EXPECT_EQ(BinaryFile_GetFileType(bin, name.h), 0);
    ASSERT_EQ(File_Open(fileObject, name.h, 1), 1);
    int success = 1;
    EXPECT_EQ(File_Read(fileObject, 4, &success), nullptr);
    EXPECT_EQ(success, 0) << "the read error shows";
}

TEST_F(FileClassTest, ShortAndPartialSignatures) {
    TestObject bin(&g_info_BinaryFile, BinaryFile_Init, BinaryFile_Free);
    struct Case {
        std::string bytes;
        int type;
    } cases[] = {
        {"\xEF\xBB", 1},    {"\xEF\xBB" "a", 1}, {"\xEF" "ab", 1},  {"\xFF", 1},  {"\xFF" "a", 1},
        {"\xFE", 1},        {"\xFE" "a", 1},     {"\xFE\xFF", 3},   {"ab", 5},
    };
    for (const Case& c : cases) {
        Owned name = Text(Make("sig", c.bytes));
        EXPECT_EQ(BinaryFile_GetFileType(bin, name.h), c.type) << c.bytes;
    }
}

TEST_F(FileClassTest, BinaryFileWithoutObjectPathOrValidType) {
    TestObject bin(&g_info_BinaryFile, BinaryFile_Init, BinaryFile_Free);
    Owned data(MakeBin("abc")), path = Text(dir.WPath("out")), empty = Text(L"");
    EXPECT_EQ(BinaryFile_WriteFile(bin, data.h, path.h, 6), 0);
    EXPECT_EQ(BinaryFile_WriteFile(bin, data.h, nullptr, 1), 0);
    EXPECT_FALSE(std::filesystem::exists(dir.Path("out")));
    EXPECT_EQ(BinaryFile_WriteFile(bin, data.h, path.h, 2), 3);
    EXPECT_EQ(ReadFileBytes(dir.Path("out")), "\xFF\xFE" "abc");
    EXPECT_EQ(BinaryFile_ReadFile(nullptr, path.h, 1), zel::EmptyBin());
    EXPECT_EQ(BinaryFile_ReadFile(bin, nullptr, 1), zel::EmptyBin());
    EXPECT_EQ(BinaryFile_ReadFile(bin, empty.h, 1), zel::EmptyBin());
    EXPECT_EQ(BinaryFile_GetFileType(bin, empty.h), 0);
}

TEST_F(FileClassTest, FileMethodsWithoutObjectOrWithEmptyInput) {
    EXPECT_EQ(File_Write(nullptr, zel::EmptyBin()), 0);
    EXPECT_EQ(TextFile_Write(nullptr, zel::EmptyBin()), 0);
    EXPECT_EQ(TextFile_Seek(nullptr, nullptr, 0), -1);
    EXPECT_EQ(TextFile_SeekCurrent(nullptr, 0), -1);
    EXPECT_EQ(TextFile_SeekFromEnd(nullptr, 0), -1);

    TestObject file(&g_info_File, File_Init, File_Free, 2), text(&g_info_TextFile, TextFile_Init, TextFile_Free, 3);
    Owned path = Text(Make("abc", "abc"));
    ASSERT_EQ(File_Open(file, path.h, 4), 1);
    EXPECT_EQ(File_Read(file, 0, nullptr), zel::EmptyBin());
    int zeroCount[] = {0, 0, 4, 0};
    EXPECT_EQ(File_Write(file, reinterpret_cast<unsigned char*>(zeroCount)), 0) << "a count of 0 writes nothing";
    Owned read(File_Read(file, 5, nullptr));
    EXPECT_EQ(read.bytes(), std::string("abc\0\0", 5));

    EXPECT_EQ(TextFile_Open(text, nullptr, 1, 2), 0);
    ASSERT_EQ(TextFile_Open(text, path.h, 1, 2), 1);
    EXPECT_EQ(TextFile_Read(text, 0, nullptr), zel::EmptyBin());
    Owned something(TextFile_Read(text, 2, nullptr));
    EXPECT_EQ(something.text(), L"") << "something was there: an empty text";
    Owned rest(TextFile_Read(text, 5, nullptr));
    int success = 0;
    EXPECT_EQ(TextFile_Read(text, 5, &success), nullptr) << "nothing left";
    EXPECT_EQ(success, 1);
}

// The text file's seeks on a multibyte file move by bytes; a directory reads
// as an error; a failed buffer makes the plain file's read give nothing.
TEST_F(FileClassTest, TextFileMethodsOnOpenFiles) {
    TestObject text(&g_info_TextFile, TextFile_Init, TextFile_Free, 3), file(&g_info_File, File_Init, File_Free, 2);
    Owned path = Text(Make("ten", "0123456789")), folder = Text(MakeDir("d"));
    ASSERT_EQ(TextFile_Open(text, path.h, 1, 2), 1);
    EXPECT_TRUE(TextFile_Seek(text, reinterpret_cast<unsigned char*>(SEEK_SET), 4) == 0 && TextFile_GetPosition(text) == 4);
    EXPECT_TRUE(TextFile_SeekCurrent(text, 2) == 0 && TextFile_GetPosition(text) == 6);
    EXPECT_TRUE(TextFile_SeekFromEnd(text, -1) == 0 && TextFile_GetPosition(text) == 9);
    EXPECT_EQ(TextFile_Write(text, nullptr), 0);

    ASSERT_EQ(TextFile_Open(text, folder.h, 1, 2), 1);
    int success = 1;
    EXPECT_EQ(TextFile_Read(text, 4, &success), nullptr);
    EXPECT_EQ(success, 0);

    ASSERT_EQ(File_Open(file, path.h, 1), 1);
    EXPECT_EQ(File_Open(file, nullptr, 1), 0);
    zel::FailAllocationAfter(1);
    EXPECT_EQ(File_Read(file, 4, nullptr), nullptr);
    zel::FailAllocationAfter(0);
}

TEST(MemoryFile, NothingToReadWriteOrCopy) {
    EXPECT_EQ(MemoryFile_GetLength(nullptr), -1);
    EXPECT_EQ(MemoryStream_GetLength(nullptr), 0);
    TestObject file(&g_info_MemoryFile, MemoryFile_Init, MemoryFile_Free);
    EXPECT_EQ(MemoryFile_GetBytes(file), zel::EmptyBin());
    EXPECT_EQ(MemoryFile_Write(file, zel::EmptyBin()), 0);
    Owned abc(MakeBin("abc"));
    ASSERT_EQ(MemoryFile_Write(file, abc.h), 3);
    int success = 0;
    EXPECT_TRUE(MemoryFile_Read(file, 0, &success) == zel::EmptyBin() && success == 1);
    EXPECT_EQ(Owned(MemoryFile_GetBytes(file)).bytes(), "abc");
}

// The clone copies bytes and position (the sweep in tests/sweep fails each of
// its allocations: whole or null).
TEST(MemoryFile, CloneCopiesBytesAndPosition) {
    TestObject file(&g_info_MemoryFile, MemoryFile_Init, MemoryFile_Free);
    Owned abc(MakeBin("abc"));
    MemoryFile_Write(file, abc.h);
    MemoryFile_SeekFromBegin(file, 1);
    TestObject copy(&g_info_MemoryFile, nullptr, MemoryFile_Free);
    copy.word(1, 0) = MemoryFile_Clone(file);  // as the runtime installs the clone's state
    MemoryFile_Write(file, abc.h);
    EXPECT_EQ(MemoryFile_GetPosition(copy), 1);
    EXPECT_EQ(Owned(MemoryFile_GetBytes(copy)).bytes(), "abc");
}

}  // namespace

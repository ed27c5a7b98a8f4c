// The file classes through their method functions: what scripts cannot see
// (block bounds, descriptors, directories that open but cannot be read, short
// signatures, a failed buffer, the clone the runtime installs).
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "common/test_object.h"
#include "file_class_methods.h"
#include "io_test_util.h"
#include <zel/services.h>
#include <zel/values.h>

namespace {

class FileClassTest : public TempDirTest {
protected:
    // A runtime text holding the path of `name` in the temporary directory.
    Owned PathText(const std::string& name) { return Owned(zel::NewText(dir.WPath(name).c_str())); }
    TestObject bin{&g_info_BinaryFile, BinaryFile_Init, BinaryFile_Free};
    TestObject file{&g_info_File, File_Init, File_Free, 2};
    TestObject text{&g_info_TextFile, TextFile_Init, TextFile_Free, 3};
};

// 写 takes the count from word 1, never reading past the block; 文本文件.写
// counts the non-zero units from word 1 on, inside the block.
TEST_F(FileClassTest, WritesStayInsideTheBlock) {
    Owned path = PathText("w"), le = PathText("le");
    ASSERT_EQ(File_Open(file, path.h, 2), 1);
    int block[] = {0, 64, 2, 0};  // a count of 64 is clipped to the block's 4 + 2 bytes
    EXPECT_EQ(File_Write(file, reinterpret_cast<unsigned char*>(block)), 6);
    File_Free(file);
    EXPECT_EQ(ReadFileBytes(dir.Path("w")), std::string("\2\0\0\0\0\0", 6));

    WriteFileBytes(dir.Path("le"), "\xFF\xFE");
    ASSERT_EQ(TextFile_Open(text, le.h, 4, 2), 1);
    _TextFile_GetData(text)->Seek(0, SEEK_END);
    // Words 1..4 are 1, 8, "abcd", "efgh": no zero unit. Words 1..3 are 1, 6, 0.
    Owned noZero(MakeBin("abcdefgh")), stopsAtZero(MakeBin(std::string("\0\0\0\0ab", 6)));
    EXPECT_TRUE(TextFile_Write(text, noZero.h) == 4 && TextFile_Write(text, stopsAtZero.h) == 2);
    EXPECT_EQ(TextFile_Read(text, 0, nullptr), zel::EmptyBin());
    TextFile_Free(text);
    EXPECT_EQ(ReadFileBytes(dir.Path("le")), std::string("\xFF\xFE\1\0\0\0\1\0", 8));
}

TEST_F(FileClassTest, MethodsHoldNoDescriptorAfterwards) {
    WriteFileBytes(dir.Path("bad"), "\xC0\x80");
    Owned bad = PathText("bad"), out = PathText("o");
    int before = OpenDescriptors();
    for (int i = 0; i < 100; ++i) {
        BinaryFile_WriteFile(bin, zel::EmptyBin(), out.h, 1);  // leaves o empty
        BinaryFile_ReadFile(bin, out.h, 1);
        BinaryFile_GetFileType(bin, out.h);
        BinaryFile_GetFileType(bin, bad.h);
    }
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(FileClassTest, DirectoriesOpenButCannotBeRead) {
    std::filesystem::create_directory(dir.Path("d"));
    Owned folder = PathText("d");
    EXPECT_EQ(BinaryFile_ReadFile(bin, folder.h, 1), zel::EmptyBin());
    EXPECT_EQ(BinaryFile_GetFileType(bin, folder.h), 0);
    ASSERT_EQ(File_Open(file, folder.h, 1), 1);
    int success = 1;
    EXPECT_EQ(File_Read(file, 4, &success), nullptr);
    EXPECT_EQ(success, 0) << "the read error shows";
    ASSERT_EQ(TextFile_Open(text, folder.h, 1, 2), 1);
    success = 1;
    EXPECT_EQ(TextFile_Read(text, 4, &success), nullptr);
    EXPECT_EQ(success, 0);
}

TEST_F(FileClassTest, ShortAndPartialSignatures) {
    struct Case {
        std::string bytes;
        int type;
    } cases[] = {{"\xEF\xBB", 1}, {"\xEF\xBB" "a", 1}, {"\xEF" "ab", 1}, {"\xFF", 1},
                 {"\xFF" "a", 1},   {"\xFE" "a", 1},     {"\xFE\xFF", 3}, {"ab", 5}};
    for (const Case& c : cases) {
        Owned name(zel::NewText(Make("sig", c.bytes).c_str()));
        EXPECT_EQ(BinaryFile_GetFileType(bin, name.h), c.type) << c.bytes;
    }
    WriteFileBytes(dir.Path("sig"), "\xEF\xBB\xBF");  // a signature alone reads as nothing
    EXPECT_EQ(BinaryFile_ReadFile(bin, PathText("sig").h, 4), zel::EmptyBin());
}

// Reads of nothing and writes of a zero count change nothing; the text file
// on a multibyte file seeks by bytes; a failed buffer makes the plain file's
// read give nothing.
TEST_F(FileClassTest, EmptyReadsMultibyteSeeksAndAFailedBuffer) {
    Owned path(zel::NewText(Make("ten", "0123456789").c_str()));
    ASSERT_EQ(File_Open(file, path.h, 4), 1);
    int zeroCount[] = {0, 0, 4, 0};
    EXPECT_EQ(File_Write(file, reinterpret_cast<unsigned char*>(zeroCount)), 0);
    EXPECT_EQ(File_Read(file, 0, nullptr), zel::EmptyBin());
    ASSERT_EQ(TextFile_Open(text, path.h, 1, 2), 1);
    EXPECT_TRUE(TextFile_Seek(text, reinterpret_cast<unsigned char*>(SEEK_SET), 4) == 0 && TextFile_GetPosition(text) == 4);
    EXPECT_TRUE(TextFile_SeekCurrent(text, 2) == 0 && TextFile_GetPosition(text) == 6);
    EXPECT_TRUE(TextFile_SeekFromEnd(text, -1) == 0 && TextFile_GetPosition(text) == 9);

    ASSERT_EQ(File_Open(file, path.h, 1), 1);
    zel::FailAllocationAfter(1);
    EXPECT_EQ(File_Read(file, 4, nullptr), nullptr);
    zel::FailAllocationAfter(0);
}

// The clone copies bytes and position (the sweep in tests/sweep fails each of
// its allocations: whole or null).
TEST(MemoryFile, CloneCopiesBytesAndPosition) {
    TestObject file(&g_info_MemoryFile, MemoryFile_Init, MemoryFile_Free);
    int success = 0;  // an empty file: nothing to read, write or hand out
    EXPECT_TRUE(MemoryFile_Read(file, 0, &success) == zel::EmptyBin() && success == 1);
    EXPECT_TRUE(MemoryFile_Write(file, zel::EmptyBin()) == 0 && MemoryFile_GetBytes(file) == zel::EmptyBin());
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

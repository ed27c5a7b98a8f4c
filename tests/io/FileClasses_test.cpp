// The file classes through their method functions: what scripts cannot see
// (block bounds, missing state, descriptors, files not created, Clone).
#include <gtest/gtest.h>

#include <string>

#include "common/test_object.h"
#include "io/File.h"
#include "file_class_methods.h"
#include "io_test_util.h"
#include <zel/services.h>
#include <zel/values.h>

namespace {

class FileClassTest : public TempDirTest {
protected:
    // A runtime text holding the path of `name` in the temporary directory.
    Owned PathText(const std::string& name) { return Owned(zel::NewText(dir.WPath(name).c_str())); }
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

TEST_F(FileClassTest, MissingNativeFileGivesNeutralResults) {
    TestObject file(&g_info_File, nullptr, nullptr, 2), text(&g_info_TextFile, nullptr, nullptr, 3);
    int success = 0;
    EXPECT_TRUE(File_Read(file, 4, &success) == zel::EmptyBin() && success == 1);
    EXPECT_TRUE(File_Seek(file, nullptr, 0) == -1 && File_GetLength(file) == -1 && TextFile_GetPosition(text) == -1);
    EXPECT_EQ(File_Open(file, zel::EmptyText(), 1), 0);
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

}  // namespace

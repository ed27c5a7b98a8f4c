// 工具.文件, 工具.文本文件 and 工具.二进制文件流 through their method
// functions, on real files; the descriptor records of the file family.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "common/test_object.h"
#include "io/File.h"
#include "io_test_util.h"
#include "runtime/services.h"
#include "runtime/values.h"

extern "C" {
extern tagTInterfaceInfo g_info_AbstractFile;
extern tagTBaseTypeInfo g_info_File, g_info_TextFile, g_info_BinaryFile, g_info_FileTypeFlag;
void File_Init(ZelObject*);
void File_Free(ZelObject*);
unsigned char* File_Read(ZelObject*, int, int*);
int File_Write(ZelObject*, unsigned char*);
int File_Seek(ZelObject*, unsigned char*, int);
int File_GetLength(ZelObject*);
int File_Open(ZelObject*, unsigned char*, int);
void File_Close(ZelObject*);
void TextFile_Init(ZelObject*);
void TextFile_Free(ZelObject*);
CTextFile* _TextFile_GetData(ZelObject*);
int TextFile_Write(ZelObject*, unsigned char*);
int TextFile_SeekFromBegin(ZelObject*, int);
int TextFile_GetPosition(ZelObject*);
int TextFile_Open(ZelObject*, unsigned char*, int, int);
void BinaryFile_Init(ZelObject*);
void BinaryFile_Free(ZelObject*);
unsigned char* BinaryFile_ReadFile(ZelObject*, unsigned char*, int);
int BinaryFile_WriteFile(ZelObject*, unsigned char*, unsigned char*, int);
int BinaryFile_GetFileType(ZelObject*, unsigned char*);
}

namespace {

class FileClassTest : public ::testing::Test {
protected:
    TempDir dir;
    // A runtime text holding the path of `name` in the temporary directory.
    Owned PathText(const std::string& name) { return Owned(zel::NewText(dir.WPath(name).c_str())); }
};

unsigned char* Origin(int origin) { return reinterpret_cast<unsigned char*>(intptr_t(origin)); }

// 写 takes the count from word 1 and the bytes from byte 8 (for a runtime
// byte set: one byte, the low byte of the length), never past the block.
TEST_F(FileClassTest, FileWriteReadsTheTwoWordView) {
    TestObject file(&g_info_File, File_Init, File_Free, 2);
    Owned path = PathText("w");
    ASSERT_EQ(File_Open(file, path.h, 2), 1);
    Owned data(MakeBin("abc"));
    EXPECT_EQ(File_Write(file, data.h), 1);
    int block[] = {0, 64, 2, 0};  // a count of 64 is clipped to the block's 4 + 2 bytes
    EXPECT_EQ(File_Write(file, reinterpret_cast<unsigned char*>(block)), 6);
    EXPECT_EQ(File_Write(file, nullptr), 0);
    File_Close(file);
    EXPECT_EQ(ReadFileBytes(dir.Path("w")), std::string("\3\2\0\0\0\0\0", 7));
}

TEST_F(FileClassTest, MissingNativeFileGivesNeutralResults) {
    TestObject file(&g_info_File, nullptr, nullptr, 2);
    int success = 0;
    EXPECT_EQ(File_Read(file, 4, &success), zel::EmptyBin());
    EXPECT_EQ(success, 1);
    EXPECT_EQ(File_Seek(file, Origin(0), 0), -1);
    EXPECT_EQ(File_GetLength(file), -1);
    EXPECT_EQ(File_Open(file, zel::EmptyText(), 1), 0);
    TestObject text(&g_info_TextFile, nullptr, nullptr, 3);
    EXPECT_EQ(TextFile_SeekFromBegin(text, 1), -1);
    EXPECT_EQ(TextFile_GetPosition(text), -1);
}

// The count is the run of non-zero units from word 1 on, bounded by the
// block; a code-0 file then takes that many bytes from word 1.
TEST_F(FileClassTest, TextFileWriteCountsUnitsInsideTheBlock) {
    WriteFileBytes(dir.Path("le"), "\xFF\xFE");
    TestObject text(&g_info_TextFile, TextFile_Init, TextFile_Free, 3);
    Owned path = PathText("le");
    ASSERT_EQ(TextFile_Open(text, path.h, 4, 2), 1);
    _TextFile_GetData(text)->Seek(0, SEEK_END);
    Owned data(MakeBin("abcdefgh"));  // words 1..4 are 1, 8, "abcd", "efgh": no zero unit
    EXPECT_EQ(TextFile_Write(text, data.h), 4);
    Owned stopsAtZero(MakeBin(std::string("\0\0\0\0ab", 6)));  // words 1..3 are 1, 6, 0
    EXPECT_EQ(TextFile_Write(text, stopsAtZero.h), 2);
    TextFile_Free(text);
    EXPECT_EQ(ReadFileBytes(dir.Path("le")), std::string("\xFF\xFE\1\0\0\0\1\0", 8));
}

TEST_F(FileClassTest, BinaryFileRejectsTypesAndEmptyData) {
    TestObject bin(&g_info_BinaryFile, BinaryFile_Init, BinaryFile_Free);
    Owned path = PathText("none");
    Owned abc(MakeBin("abc"));
    for (int type : {0, 6, -1}) {
        EXPECT_EQ(BinaryFile_WriteFile(bin, abc.h, path.h, type), 0);
        EXPECT_EQ(BinaryFile_ReadFile(bin, path.h, type), zel::EmptyBin());
    }
    EXPECT_FALSE(std::filesystem::exists(dir.Path("none")));
    EXPECT_EQ(BinaryFile_WriteFile(bin, nullptr, path.h, 1), 0);
    EXPECT_EQ(BinaryFile_ReadFile(bin, path.h, 1), zel::EmptyBin());  // missing file

    EXPECT_EQ(BinaryFile_WriteFile(bin, zel::EmptyBin(), path.h, 4), 0);
    EXPECT_EQ(ReadFileBytes(dir.Path("none")), "");  // created, nothing written
    EXPECT_EQ(BinaryFile_ReadFile(bin, path.h, 4), zel::EmptyBin());
    WriteFileBytes(dir.Path("sig"), "\xEF\xBB\xBF");
    Owned sig = PathText("sig");
    EXPECT_EQ(BinaryFile_ReadFile(bin, sig.h, 4), zel::EmptyBin());
}

TEST_F(FileClassTest, MethodsHoldNoDescriptorAfterwards) {
    WriteFileBytes(dir.Path("e"), "");
    WriteFileBytes(dir.Path("bad"), "\xC0\x80");
    Owned empty = PathText("e"), bad = PathText("bad"), out = PathText("o");
    int before = OpenDescriptors();
    TestObject bin(&g_info_BinaryFile, BinaryFile_Init, BinaryFile_Free);
    for (int i = 0; i < 100; ++i) {
        BinaryFile_ReadFile(bin, empty.h, 1);
        BinaryFile_GetFileType(bin, empty.h);
        BinaryFile_GetFileType(bin, bad.h);
        BinaryFile_WriteFile(bin, zel::EmptyBin(), out.h, 1);
    }
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST(FileRecords, InterfaceAndClassesListTheTenMembersInSlotOrder) {
    EXPECT_EQ(g_info_AbstractFile.kind, 2);
    ASSERT_EQ(g_info_AbstractFile.methodCount, 10);
    const wchar_t* names[] = {L"读", L"写", L"定位", L"定位", L"首定位", L"尾定位",
                              L"定位到文件首", L"定位到文件尾", L"取长度", L"取读写位置"};
    for (int i = 0; i < 10; ++i) {
        EXPECT_STREQ(g_info_AbstractFile.methods[i].name, names[i]);
        EXPECT_STREQ(g_info_File.methods[i].name, names[i]);
        EXPECT_STREQ(g_info_TextFile.methods[i].description, g_info_AbstractFile.methods[i].description);
        EXPECT_EQ(g_info_File.interfaces[0].slots[i], g_info_File.methods[i].function);
    }
    EXPECT_STREQ(g_info_AbstractFile.methods[2].params[0].type, L"_bn");
    EXPECT_EQ(g_info_File.methodCount, 14);
    EXPECT_EQ(g_info_TextFile.methodCount, 11);
    EXPECT_STREQ(g_info_TextFile.baseName, L"工具.文件");
    EXPECT_STREQ(g_info_File.interfaces[0].name, L"工具.文件接口");
    EXPECT_EQ(g_info_File.interfaces[0].slotCount, 10);
}

TEST(FileRecords, FileTypeMembersCarryTheirValues) {
    ASSERT_EQ(g_info_FileTypeFlag.elementCount, 5);
    EXPECT_EQ(g_info_FileTypeFlag.methodCount, 0);
    const wchar_t* names[] = {L"无文件头UTF8", L"UTF8", L"大端Unicode", L"小端Unicode", L"未知"};
    for (int i = 0; i < 5; ++i) {
        EXPECT_STREQ(g_info_FileTypeFlag.elements[i].name, names[i]);
        EXPECT_STREQ(g_info_FileTypeFlag.elements[i].type, L"_i");
        EXPECT_EQ(g_info_FileTypeFlag.elements[i].reserved[0], 5 - i);
    }
}

}  // namespace

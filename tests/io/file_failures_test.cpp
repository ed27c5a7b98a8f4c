// Files that open but fail to read (directories), paths that are empty or
// missing, the read-write modes, short signatures, and the file classes'
// method functions without an object, a state or a path.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "common/test_object.h"
#include "io/File.h"
#include "file_class_methods.h"
#include "io_test_util.h"
#include <zel/services.h>
#include <zel/values.h>

namespace {

class FileFailures : public TempDirTest {
protected:
    std::wstring MakeDir(const std::string& name) {
        std::filesystem::create_directory(dir.Path(name));
        return dir.WPath(name);
    }
    Owned Text(const std::wstring& s) { return Owned(zel::NewText(s.c_str())); }
};

TEST_F(FileFailures, ReadWriteModesAndNullArguments) {
    std::wstring path = Make("f", "0123");
    CFile update(path.c_str(), 5);  // "wb+": truncated, then readable
    char buf[8] = {};
    EXPECT_TRUE(update.IsEOF() == 0 && update.Read(buf, 0) == 0);
    EXPECT_EQ(update.Write("ab", 2), 2);
    update.SeekToBegin();
    EXPECT_TRUE(update.Read(buf, 8) == 2 && std::string(buf) == "ab");
    EXPECT_EQ(update.IsEOF(), 1);
    EXPECT_TRUE(update.Read(nullptr, 4) == 0 && update.Write(nullptr, 4) == 0 && update.Flush() == 0);
    update.Close();

    CFile append(path.c_str(), 6);  // "ab+": writes go to the end, reads from anywhere
    EXPECT_EQ(append.Write("cd", 2), 2);
    append.SeekToBegin();
    EXPECT_TRUE(append.Read(buf, 8) == 4 && std::string(buf, 4) == "abcd");
    EXPECT_EQ(ReadFileBytes(dir.Path("f")), "abcd");

    CFile none;
    EXPECT_TRUE(none.Open(nullptr, 1) == 0 && none.Flush() == 0 && !none.GetStream());
}

TEST_F(FileFailures, DirectoriesOpenButCannotBeRead) {
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

// A wide default encoding without a file: the wide seeks and positions still
// answer -1.
TEST_F(FileFailures, WideTextFileWithoutAStream) {
    CTextFile halfSigned(Make("fe", "\xFE" "a").c_str(), 1, 2);
    EXPECT_EQ(halfSigned.GetEncoding(), 2) << "FE alone is no signature";
    CTextFile absent(dir.WPath("absent").c_str(), 1, 0);
    EXPECT_TRUE(absent.GetEncoding() == 0 && !absent.GetStream());
    EXPECT_EQ(absent.Seek(1, SEEK_SET), -1);
    EXPECT_EQ(absent.GetPosition(), -1);
}

TEST_F(FileFailures, ShortAndPartialSignatures) {
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

TEST_F(FileFailures, BinaryFileWithoutObjectPathOrValidType) {
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

TEST_F(FileFailures, FileMethodsWithoutObjectOrWithEmptyInput) {
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
TEST_F(FileFailures, TextFileMethodsOnOpenFiles) {
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

}  // namespace

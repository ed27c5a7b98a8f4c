// 工具.内存文件: the file members over bytes in memory.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>

#include "common/test_object.h"
#include "io_test_util.h"
#include "runtime/values.h"

extern "C" {
extern tagTBaseTypeInfo g_info_MemoryFile;
void MemoryFile_Init(ZelObject*);
void MemoryFile_Free(ZelObject*);
void* MemoryFile_Clone(ZelObject*);
void* _MemoryFile_GetData(ZelObject*);
unsigned char* MemoryFile_Read(ZelObject*, int, int*);
int MemoryFile_Write(ZelObject*, unsigned char*);
int MemoryFile_Seek(ZelObject*, unsigned char*, int);
int MemoryFile_SeekCurrent(ZelObject*, int);
int MemoryFile_SeekFromBegin(ZelObject*, int);
int MemoryFile_SeekFromEnd(ZelObject*, int);
void MemoryFile_SeekToBegin(ZelObject*);
int MemoryFile_SeekToEnd(ZelObject*);
int MemoryFile_GetLength(ZelObject*);
int MemoryFile_GetPosition(ZelObject*);
unsigned char* MemoryFile_GetBytes(ZelObject*);
}

namespace {

struct MemoryFileObject : TestObject {
    MemoryFileObject() : TestObject(&g_info_MemoryFile, MemoryFile_Init, MemoryFile_Free) {}
    int Write(const std::string& bytes) {
        Owned bin(MakeBin(bytes));
        return MemoryFile_Write(get(), bin.h);
    }
    std::string Read(int n) {
        int success = 0;
        Owned bin(MemoryFile_Read(get(), n, &success));
        EXPECT_EQ(success, 1);
        return bin.bytes();
    }
    std::string All() { return Owned(MemoryFile_GetBytes(get())).bytes(); }
};

TEST(MemoryFile, WritesOverwriteAndGrowFromThePosition) {
    MemoryFileObject f;
    EXPECT_EQ(f.All(), "");
    EXPECT_EQ(f.Write("hello"), 5);
    EXPECT_EQ(MemoryFile_GetPosition(f), 5);
    MemoryFile_SeekFromBegin(f, 3);
    EXPECT_EQ(f.Write("p!!"), 3);
    EXPECT_EQ(f.All(), "help!!");
    EXPECT_EQ(MemoryFile_GetLength(f), 6);
    EXPECT_EQ(MemoryFile_GetPosition(f), 6);  // the length leaves the position alone
    EXPECT_EQ(f.Write(""), 0);
    EXPECT_EQ(MemoryFile_Write(f, nullptr), 0);
}

TEST(MemoryFile, ReadsAreShortAtTheEnd) {
    MemoryFileObject f;
    f.Write("abcdef");
    MemoryFile_SeekToBegin(f);
    EXPECT_EQ(f.Read(4), "abcd");
    EXPECT_EQ(f.Read(10), "ef");
    EXPECT_EQ(f.Read(10), "");
    EXPECT_EQ(f.Read(0), "");
    EXPECT_EQ(MemoryFile_GetPosition(f), 6);
}

TEST(MemoryFile, SeeksClipAndAnswerThePosition) {
    MemoryFileObject f;
    f.Write("0123456789");
    EXPECT_EQ(MemoryFile_SeekFromBegin(f, 4), 4);
    EXPECT_EQ(MemoryFile_SeekCurrent(f, 3), 7);
    EXPECT_EQ(MemoryFile_SeekCurrent(f, -100), 0);
    EXPECT_EQ(MemoryFile_SeekFromEnd(f, -2), 8);
    EXPECT_EQ(MemoryFile_SeekFromEnd(f, 5), 10);
    EXPECT_EQ(MemoryFile_SeekFromBegin(f, 2147483647), 10);
    EXPECT_EQ(MemoryFile_Seek(f, reinterpret_cast<unsigned char*>(intptr_t(SEEK_SET)), 1), 1);
    EXPECT_EQ(MemoryFile_Seek(f, reinterpret_cast<unsigned char*>(intptr_t(9)), 1), -1);
    EXPECT_EQ(MemoryFile_GetPosition(f), 1);
    EXPECT_EQ(MemoryFile_SeekToEnd(f), 10);
}

TEST(MemoryFile, CloneCopiesBytesAndPosition) {
    MemoryFileObject f;
    f.Write("abc");
    MemoryFile_SeekFromBegin(f, 1);
    TestObject clone(&g_info_MemoryFile, nullptr, MemoryFile_Free);
    clone.word(1, 0) = MemoryFile_Clone(f);
    EXPECT_EQ(MemoryFile_GetPosition(clone), 1);
    EXPECT_EQ(Owned(MemoryFile_GetBytes(clone)).bytes(), "abc");
    f.Write("XY");
    EXPECT_EQ(Owned(MemoryFile_GetBytes(clone)).bytes(), "abc");
}

TEST(MemoryFile, MissingStateGivesNeutralResults) {
    TestObject f(&g_info_MemoryFile);
    int success = 0;
    EXPECT_EQ(MemoryFile_Read(f, 3, &success), zel::EmptyBin());
    EXPECT_EQ(MemoryFile_GetLength(f), -1);
    EXPECT_EQ(MemoryFile_SeekToEnd(f), -1);
    EXPECT_EQ(MemoryFile_GetBytes(f), zel::EmptyBin());
    MemoryFile_SeekToBegin(f);
    MemoryFile_Free(f);
    EXPECT_EQ(g_info_MemoryFile.methodCount, 11);
    EXPECT_STREQ(g_info_MemoryFile.methods[10].name, L"取数据");
}

}  // namespace

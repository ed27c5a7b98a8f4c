// 工具.内存文件: what scripts cannot reach (its Clone hook, a missing state).
#include <gtest/gtest.h>

#include "common/test_object.h"
#include "io_test_util.h"
#include "runtime/values.h"

extern "C" {
extern tagTBaseTypeInfo g_info_MemoryFile;
void MemoryFile_Init(ZelObject*);
void MemoryFile_Free(ZelObject*);
void* MemoryFile_Clone(ZelObject*);
unsigned char* MemoryFile_Read(ZelObject*, int, int*);
int MemoryFile_Write(ZelObject*, unsigned char*);
int MemoryFile_SeekFromBegin(ZelObject*, int);
void MemoryFile_SeekToBegin(ZelObject*);
int MemoryFile_SeekToEnd(ZelObject*);
int MemoryFile_GetLength(ZelObject*);
int MemoryFile_GetPosition(ZelObject*);
unsigned char* MemoryFile_GetBytes(ZelObject*);
}

namespace {

TEST(MemoryFile, CloneCopiesBytesAndPosition) {
    TestObject file(&g_info_MemoryFile, MemoryFile_Init, MemoryFile_Free);
    Owned abc(MakeBin("abc")), xy(MakeBin("XY"));
    MemoryFile_Write(file, abc.h);
    MemoryFile_SeekFromBegin(file, 1);
    TestObject clone(&g_info_MemoryFile, nullptr, MemoryFile_Free);
    clone.word(1, 0) = MemoryFile_Clone(file);
    MemoryFile_Write(file, xy.h);
    EXPECT_EQ(MemoryFile_GetPosition(clone), 1);
    EXPECT_EQ(Owned(MemoryFile_GetBytes(clone)).bytes(), "abc");
    EXPECT_EQ(Owned(MemoryFile_GetBytes(file)).bytes(), "aXY");
}

TEST(MemoryFile, MissingStateGivesNeutralResults) {
    TestObject file(&g_info_MemoryFile);
    int success = 0;
    EXPECT_EQ(MemoryFile_Read(file, 3, &success), zel::EmptyBin());
    EXPECT_EQ(success, 1);
    EXPECT_EQ(MemoryFile_GetLength(file), -1);
    EXPECT_EQ(MemoryFile_SeekToEnd(file), -1);
    EXPECT_EQ(MemoryFile_GetBytes(file), zel::EmptyBin());
    MemoryFile_SeekToBegin(file);
    MemoryFile_Free(file);
    EXPECT_EQ(MemoryFile_GetPosition(file), -1);
}

}  // namespace

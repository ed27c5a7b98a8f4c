// The memory file and stream classes without an object, with nothing to
// read or write, and a clone (bytes and position) whose bytes cannot be copied.
#include <gtest/gtest.h>

#include <string>

#include "common/test_object.h"
#include "io/MemoryStream.h"
#include "file_class_methods.h"
#include "io_test_util.h"
#include <zel/services.h>
#include <zel/values.h>

extern "C" int MemoryStream_GetLength(ZelObject*);

namespace {

TEST(MemoryFileEdges, NothingToReadWriteOrCopy) {
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

// The clone is either whole or null, whichever allocation fails.
TEST(MemoryFileEdges, CloneIsWholeOrNothing) {
    TestObject file(&g_info_MemoryFile, MemoryFile_Init, MemoryFile_Free);
    Owned abc(MakeBin("abc"));
    MemoryFile_Write(file, abc.h);
    MemoryFile_SeekFromBegin(file, 1);
    int refused = 0;
    for (int failing = 1; failing <= 3; ++failing) {
        zel::FailAllocationAfter(failing);
        void* state = MemoryFile_Clone(file);
        zel::FailAllocationAfter(0);
        if (!state) {
            ++refused;
            continue;
        }
        TestObject copy(&g_info_MemoryFile);
        copy.word(1, 0) = state;  // as the runtime installs the clone's state
        EXPECT_EQ(Owned(MemoryFile_GetBytes(copy)).bytes(), "abc") << failing;
        EXPECT_EQ(MemoryFile_GetPosition(copy), 1) << failing;
        MemoryFile_Free(copy);
    }
    EXPECT_GE(refused, 1);
}

TEST(MemoryStreamEdges, EmptyDataAndMissingByteSets) {
    CMemoryStream s;
    s.InitData(const_cast<char*>("abcd"), 4);
    s.InitData(const_cast<char*>("xyz"), 0);
    EXPECT_EQ(s.GetLength(), 0);
    s.WriteBinData(nullptr);  // a missing byte set is written as a zero length
    EXPECT_EQ(s.GetLength(), 4);
    EXPECT_EQ(s.ReadInt(), 0);
    EXPECT_FALSE(s.IsDataValid(-1));
    Owned abc(MakeBin("abc"));
    s.WriteBinData(abc.h);  // the bytes alone, without the header
    EXPECT_EQ(s.GetLength(), 7);
}

}  // namespace

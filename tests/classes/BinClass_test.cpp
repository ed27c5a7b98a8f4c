#include <gtest/gtest.h>

#include <cstring>

#include "common/test_object.h"
#include "runtime/memory.h"
#include "runtime/values.h"

extern "C" {
extern tagTBaseTypeInfo g_info_BinClass;
void BinClass_Init(ZelObject*);
void BinClass_Free(ZelObject*);
unsigned char* BinClass_GetValue(ZelObject*);
void BinClass_SetValue(ZelObject*, unsigned char*);
int BinClass_GetLength(ZelObject*);
}

namespace {
std::string Bytes(unsigned char* bin) {
    return std::string(reinterpret_cast<char*>(MGetZelBinData(bin)), MGetZelBinLength(bin));
}
unsigned char* Bin(const char* s) { return MCloneZelBin(const_cast<char*>(s), int(std::strlen(s))); }
}  // namespace

TEST(BinClass, HoldsAPrivateCopyOfEachAssignment) {
    TestObject t(&g_info_BinClass, BinClass_Init, BinClass_Free);
    BinClass_SetValue(t, nullptr);
    EXPECT_EQ(t.word(1, 0), nullptr);
    EXPECT_EQ(BinClass_GetValue(t), zel::EmptyBin());
    unsigned char* first = Bin("abcdef");
    BinClass_SetValue(t, first);  // a never-assigned object takes the first one
    std::memset(MGetZelBinData(first), 'x', 6);
    zel_free(first);
    EXPECT_EQ(BinClass_GetLength(t), 6);
    unsigned char* read = BinClass_GetValue(t);
    EXPECT_NE(read, t.word(1, 0));  // a new byte set, not the held block
    EXPECT_EQ(Bytes(read), "abcdef");
    zel_free(read);

    unsigned char* second = Bin("xy");
    BinClass_SetValue(t, second);  // the old copy is released (ASan checks)
    BinClass_SetValue(t, nullptr);
    zel_free(second);
    read = BinClass_GetValue(t);
    EXPECT_EQ(Bytes(read), "xy");
    zel_free(read);

    BinClass_SetValue(t, zel::EmptyBin());
    EXPECT_EQ(BinClass_GetLength(t), 0);
    EXPECT_EQ(BinClass_GetValue(t), zel::EmptyBin());
}

TEST(BinClass, IgnoresANegativeLength) {
    TestObject t(&g_info_BinClass, BinClass_Init, BinClass_Free);
    int bogus[3] = {0, 1, -5};
    BinClass_SetValue(t, reinterpret_cast<unsigned char*>(bogus));
    EXPECT_EQ(t.word(1, 0), nullptr);
}

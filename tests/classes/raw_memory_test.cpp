// 工具.地址 and 工具.指针 below tests/scripts/raw_memory.zs: the storage of
// arrays they point into, unsigned and wrapping arithmetic, unaligned widths
// and lengths that stay inside their blocks.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "common/test_object.h"
#include "owned_values.h"

extern "C" {
extern tagTBaseTypeInfo g_info_Address, g_info_Pointer;
void Address_SetValue(ZelObject*, int), Address_Offset(ZelObject*, int);
void Address_FromIntArray(ZelObject*, int*), Address_FromDoubleArray(ZelObject*, int*);
void Address_FromTextArray(ZelObject*, int*), Address_FromBinArray(ZelObject*, int*);
void Pointer_SetAddress(ZelObject*, int), Pointer_SetStep(ZelObject*, int), Pointer_Forward(ZelObject*);
void Pointer_Fill(ZelObject*, int, int), Pointer_SetShort(ZelObject*, int), Pointer_SetFloat(ZelObject*, double);
void Pointer_SetDouble(ZelObject*, double), Pointer_WriteText(ZelObject*, unsigned char*);
void Pointer_WriteBin(ZelObject*, unsigned char*);
int Address_GetValue(ZelObject*), Address_IsNull(ZelObject*), Address_Equals(ZelObject*, ZelObject*);
int Address_Compare(ZelObject*, ZelObject*), Pointer_GetShort(ZelObject*);
unsigned char *Address_ToString(ZelObject*), *Pointer_ReadBin(ZelObject*, int), *Pointer_ReadText(ZelObject*, int);
double Pointer_GetDouble(ZelObject*);
}

namespace {
int AsInt(const void* p) { return int(reinterpret_cast<uintptr_t>(p)); }
}  // namespace

// Arrays are a header word, the dimension count, the dimensions, the items.
TEST(Address, PointsAtTheItemsOfArraysAndComparesUnsigned) {
    TestObject a(&g_info_Address), b(&g_info_Address);  // neither class allocates: its words are the whole state
    std::vector<int> row = {0, 1, 3, 7, 8, 9}, grid = {0, 2, 2, 3, 1, 2, 3, 4, 5, 6};
    for (auto from : {Address_FromIntArray, Address_FromDoubleArray, Address_FromTextArray, Address_FromBinArray}) {
        from(a, row.data());
        EXPECT_EQ(Address_GetValue(a), AsInt(&row[3]));
        from(a, grid.data());
        EXPECT_EQ(Address_GetValue(a), AsInt(&grid[4]));
    }
    std::vector<int> zeroSize = {0, 1, 0};  // no elements, no address
    Address_FromIntArray(a, zeroSize.data());
    EXPECT_TRUE(Address_IsNull(a));

    Address_SetValue(a, 0x1000);
    Address_SetValue(b, int(0x80000000u));
    EXPECT_EQ(Address_Compare(b, a), 1) << "above 2 GiB is above, not negative";
    Address_SetValue(b, -1);
    Owned high{Address_ToString(b)};
    EXPECT_STREQ(zel::TextChars(high.p), L"0xffffffff");
    Address_Offset(b, 2);
    EXPECT_EQ(Address_GetValue(b), 1);
    EXPECT_EQ(Address_Compare(a, nullptr), 1) << "a missing address object is the null address";
    Address_SetValue(a, 0);
    EXPECT_TRUE(Address_Equals(a, nullptr));
}

TEST(Pointer, UnalignedWidthsAndBoundedBlocks) {
    std::vector<int> words(4, 0);
    auto* bytes = reinterpret_cast<unsigned char*>(words.data());
    TestObject p(&g_info_Pointer);
    Pointer_SetAddress(p, AsInt(bytes));
    Pointer_Fill(p, 0x1ab, 6);
    EXPECT_TRUE(words[0] == int(0xabababab) && words[1] == 0xabab) << "the low byte, 6 times";
    Pointer_Fill(p, 0, -1);  // a negative length fills nothing
    EXPECT_EQ(words[0], int(0xabababab));
    EXPECT_EQ(Pointer_ReadBin(p, -3), zel::EmptyBin());
    Pointer_SetShort(p, 0x18000);
    EXPECT_EQ(Pointer_GetShort(p), -32768) << "the low bits, read back signed";
    EXPECT_EQ(bytes[2], 0xab) << "untouched beyond the short";

    Pointer_SetStep(p, 1);
    Pointer_Forward(p);
    Pointer_SetDouble(p, -2.5);
    EXPECT_EQ(Pointer_GetDouble(p), -2.5);
    Pointer_SetFloat(p, 0.1);
    float f;
    std::memcpy(&f, bytes + 1, 4);
    EXPECT_EQ(f, 0.1f);

    Owned text{MCloneZelText(const_cast<wchar_t*>(L"文本"))};
    Pointer_SetAddress(p, AsInt(bytes));
    Pointer_WriteText(p, text.p);
    EXPECT_TRUE(words[0] == L'文' && words[2] == 0) << "the terminator is written too";
}

// The null address reads nothing and writes nothing; a zero first unit reads
// as the empty text.
TEST(Pointer, NullAddressAndEmptyTextsTouchNothing) {
    TestObject p(&g_info_Pointer);
    Owned bin{MCloneZelBin(const_cast<char*>("ab"), 2)}, text{MCloneZelText(const_cast<wchar_t*>(L"ab"))};
    Pointer_WriteBin(p, bin.p);
    Pointer_WriteText(p, text.p);
    Pointer_Fill(p, 0, 8);
    EXPECT_EQ(Pointer_ReadText(p, 4), zel::EmptyText());
    wchar_t buffer[4] = {0, L'a', L'b', 0};
    Pointer_SetAddress(p, AsInt(buffer));
    Pointer_WriteBin(p, zel::EmptyBin());
    EXPECT_TRUE(buffer[0] == 0 && Pointer_ReadText(p, 3) == zel::EmptyText());
}

// 工具.地址 and 工具.指针 below tests/scripts/raw_memory.zs: the storage they point into, unsigned
// and wrapping arithmetic, and the null address that reads 0 and writes nothing.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "common/test_object.h"
#include "owned_values.h"

extern "C" {
extern tagTBaseTypeInfo g_info_Address, g_info_Pointer;
void Address_SetValue(ZelObject*, int), Address_Offset(ZelObject*, int), Address_FromText(ZelObject*, unsigned char*);
void Address_FromBin(ZelObject*, unsigned char*), Address_FromIntArray(ZelObject*, int*);
void Address_FromDoubleArray(ZelObject*, int*), Address_FromTextArray(ZelObject*, int*);
void Address_FromBinArray(ZelObject*, int*), Pointer_SetAddress(ZelObject*, int), Pointer_SetStep(ZelObject*, int);
void Pointer_PointTo(ZelObject*, ZelObject*), Pointer_Forward(ZelObject*), Pointer_Fill(ZelObject*, int, int);
void Pointer_SetByte(ZelObject*, int), Pointer_SetShort(ZelObject*, int), Pointer_SetInt(ZelObject*, int);
void Pointer_SetFloat(ZelObject*, double), Pointer_SetDouble(ZelObject*, double);
void Pointer_WriteBin(ZelObject*, unsigned char*), Pointer_WriteText(ZelObject*, unsigned char*);
int Address_GetValue(ZelObject*), Address_IsNull(ZelObject*), Address_Equals(ZelObject*, ZelObject*);
int Address_Compare(ZelObject*, ZelObject*), Pointer_IsNull(ZelObject*);
int Pointer_GetByte(ZelObject*), Pointer_GetShort(ZelObject*), Pointer_GetInt(ZelObject*);
unsigned char *Address_ToString(ZelObject*), *Pointer_ReadBin(ZelObject*, int), *Pointer_ReadText(ZelObject*, int);
double Pointer_GetFloat(ZelObject*), Pointer_GetDouble(ZelObject*);
}

namespace {

int AsInt(const void* p) { return int(reinterpret_cast<uintptr_t>(p)); }

}  // namespace

TEST(Address, PointsAtTheStorageOfTextsByteSetsAndArrays) {
    TestObject a(&g_info_Address);  // neither class allocates: its words are the whole state
    Address_SetValue(a, -1);
    Owned high{Address_ToString(a)};
    EXPECT_STREQ(zel::TextChars(high.p), L"0xffffffff");

    Owned text{MCloneZelText(const_cast<wchar_t*>(L"ab"))};
    Address_FromText(a, text.p);
    EXPECT_EQ(Address_GetValue(a), AsInt(text.p + 8));
    Address_FromText(a, zel::EmptyText());  // still a terminator to point at
    EXPECT_EQ(Address_GetValue(a), AsInt(zel::EmptyText() + 8));
    Address_FromText(a, nullptr);
    EXPECT_TRUE(Address_IsNull(a));
    Owned bin{MCloneZelBin(const_cast<char*>("abc"), 3)};
    Address_FromBin(a, bin.p);
    EXPECT_EQ(Address_GetValue(a), AsInt(bin.p + 12));
    Address_FromBin(a, nullptr);
    EXPECT_TRUE(Address_IsNull(a));

    std::vector<int> row = {0, 1, 3, 7, 8, 9}, grid = {0, 2, 2, 3, 1, 2, 3, 4, 5, 6};
    for (auto from : {Address_FromIntArray, Address_FromDoubleArray, Address_FromTextArray, Address_FromBinArray}) {
        from(a, row.data());
        EXPECT_EQ(Address_GetValue(a), AsInt(&row[3]));
        from(a, grid.data());
        EXPECT_EQ(Address_GetValue(a), AsInt(&grid[4]));
    }
    // No elements, no address: a null array, no dimensions, a dimension of 0.
    std::vector<int> noDims = {0, 0}, zeroSize = {0, 1, 0};
    for (int* empty : {static_cast<int*>(nullptr), noDims.data(), zeroSize.data()}) {
        Address_SetValue(a, 1234);
        Address_FromIntArray(a, empty);
        EXPECT_TRUE(Address_IsNull(a));
    }
}

TEST(Address, ComparesUnsignedAndOffsetsWrap) {
    TestObject a(&g_info_Address), b(&g_info_Address);
    Address_SetValue(a, 0x1000);
    Address_SetValue(b, int(0x80000000u));
    EXPECT_EQ(Address_Compare(b, a), 1) << "above 2 GiB is above, not negative";
    Address_SetValue(b, -1);
    Address_Offset(b, 2);
    EXPECT_EQ(Address_GetValue(b), 1);
    // A missing address object counts as the null address.
    EXPECT_EQ(Address_Compare(a, nullptr), 1);
    EXPECT_FALSE(Address_Equals(a, nullptr));
    Address_SetValue(a, 0);
    EXPECT_TRUE(Address_Equals(a, nullptr));
}

TEST(Pointer, EveryWidthAlignedOrNot) {
    Owned bin{MCloneZelBin(std::vector<unsigned char>(16, 0).data(), 16)};
    unsigned char* bytes = bin.p + 12;
    TestObject a(&g_info_Address), p(&g_info_Pointer);
    Address_FromBin(a, bin.p);
    Pointer_PointTo(p, a);

    // Bytes read unsigned, shorts signed; writes keep the low bits.
    Pointer_SetInt(p, 0x01020304);
    Pointer_SetByte(p, 0x1ff);
    EXPECT_EQ(Pointer_GetByte(p), 255);
    Pointer_SetShort(p, 0x18000);
    EXPECT_EQ(Pointer_GetShort(p), -32768);
    EXPECT_EQ(bytes[2], 0x02) << "untouched beyond the short";

    Pointer_SetStep(p, 1);
    Pointer_Forward(p);
    Pointer_SetDouble(p, -2.5);
    EXPECT_EQ(Pointer_GetDouble(p), -2.5);
    Pointer_SetFloat(p, 0.1);
    EXPECT_EQ(Pointer_GetFloat(p), double(0.1f));
    float f;
    std::memcpy(&f, bytes + 1, 4);
    EXPECT_EQ(f, 0.1f);
    Pointer_SetStep(p, -1);  // a negative step walks the other way
    Pointer_Forward(p);
    EXPECT_EQ(Pointer_GetByte(p), 0x00) << "the short's low byte, still there";
}

TEST(Pointer, BlocksOfBytesAndTextStayInTheirLengths) {
    std::vector<int> words(4, 0);
    TestObject p(&g_info_Pointer);
    Pointer_SetAddress(p, AsInt(words.data()));
    Pointer_Fill(p, 0x1ab, 6);
    EXPECT_EQ(words[0], int(0xabababab));
    EXPECT_EQ(words[1], 0xabab);
    Pointer_Fill(p, 0, -1);  // a negative length fills nothing
    EXPECT_EQ(words[0], int(0xabababab));
    EXPECT_EQ(Pointer_ReadBin(p, 0), zel::EmptyBin());
    EXPECT_EQ(Pointer_ReadBin(p, -3), zel::EmptyBin());

    Owned text{MCloneZelText(const_cast<wchar_t*>(L"文本"))};
    Pointer_WriteText(p, text.p);
    EXPECT_EQ(words[2], 0) << "the terminator is written too";
    Pointer_WriteText(p, nullptr);
    EXPECT_EQ(words[0], L'文');
}

TEST(Pointer, NullAddressAndEmptyDataReadZeroAndWriteNothing) {
    TestObject p(&g_info_Pointer);
    Pointer_SetByte(p, 1), Pointer_SetShort(p, 1), Pointer_SetInt(p, 1), Pointer_SetFloat(p, 1), Pointer_SetDouble(p, 1);
    Owned bin{MCloneZelBin(const_cast<char*>("ab"), 2)}, text{MCloneZelText(const_cast<wchar_t*>(L"ab"))};
    Pointer_WriteBin(p, bin.p);
    Pointer_WriteText(p, text.p);
    Pointer_Fill(p, 0, 8);
    EXPECT_EQ(Pointer_GetByte(p) + Pointer_GetShort(p) + Pointer_GetInt(p), 0);
    EXPECT_EQ(Pointer_GetFloat(p) + Pointer_GetDouble(p), 0.0);
    EXPECT_EQ(Pointer_ReadBin(p, 4), zel::EmptyBin());
    EXPECT_EQ(Pointer_ReadText(p, 4), zel::EmptyText());
    // Writing nothing leaves the bytes; a zero first unit reads as the empty text.
    wchar_t buffer[4] = {0, L'a', L'b', 0};
    Pointer_SetAddress(p, AsInt(buffer));
    Pointer_WriteBin(p, zel::EmptyBin());
    EXPECT_EQ(buffer[0], 0);
    EXPECT_EQ(Pointer_ReadText(p, 0), zel::EmptyText());
    EXPECT_EQ(Pointer_ReadText(p, 3), zel::EmptyText());
    // A null address object points nowhere.
    Pointer_SetAddress(p, 64);
    Pointer_PointTo(p, nullptr);
    EXPECT_TRUE(Pointer_IsNull(p));
}

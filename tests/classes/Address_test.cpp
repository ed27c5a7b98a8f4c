#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "common/test_object.h"
#include "runtime/loader.h"
#include "runtime/memory.h"
#include "runtime/values.h"

extern "C" {
extern tagTBaseTypeInfo g_info_Address;
void Address_Free(ZelObject*);
unsigned char* Address_ToString(ZelObject*);
int Address_GetValue(ZelObject*);
void Address_SetValue(ZelObject*, int);
void Address_FromText(ZelObject*, unsigned char*);
void Address_FromBin(ZelObject*, unsigned char*);
void Address_FromIntArray(ZelObject*, int*);
void Address_FromDoubleArray(ZelObject*, int*);
void Address_FromTextArray(ZelObject*, int*);
void Address_FromBinArray(ZelObject*, int*);
int Address_IsNull(ZelObject*);
int Address_Equals(ZelObject*, ZelObject*);
int Address_Compare(ZelObject*, ZelObject*);
void Address_Offset(ZelObject*, int);
int Address_Distance(ZelObject*, ZelObject*);
}

namespace {

int AsInt(const void* p) { return int(reinterpret_cast<uintptr_t>(p)); }

// The text that Address_ToString hands back, freed after reading.
std::wstring Shown(ZelObject* obj) {
    unsigned char* text = Address_ToString(obj);
    std::wstring s = zel::TextChars(text);
    zel_free(text);
    return s;
}

}  // namespace

TEST(Address, NewObjectIsTheNullAddress) {
    TestObject a(&g_info_Address, nullptr, Address_Free);
    EXPECT_EQ(Address_GetValue(a), 0);
    EXPECT_TRUE(Address_IsNull(a));
    EXPECT_EQ(Shown(a), L"0x00000000");
}

TEST(Address, IntegerIsTheAddressItselfAndShowsInHex) {
    TestObject a(&g_info_Address, nullptr, Address_Free);
    Address_SetValue(a, 0x0804a000);
    EXPECT_EQ(Address_GetValue(a), 0x0804a000);
    EXPECT_FALSE(Address_IsNull(a));
    EXPECT_EQ(Shown(a), L"0x0804a000");
    Address_SetValue(a, -1);
    EXPECT_EQ(Shown(a), L"0xffffffff");
    Address_Free(a);
    EXPECT_TRUE(Address_IsNull(a));
}

TEST(Address, TextAndByteSetGiveTheirStorage) {
    TestObject a(&g_info_Address, nullptr, Address_Free);
    unsigned char* text = MCloneZelText(const_cast<wchar_t*>(L"ab"));
    Address_FromText(a, text);
    EXPECT_EQ(Address_GetValue(a), AsInt(text + 8));
    // The empty text still has a terminator to point at.
    Address_FromText(a, zel::EmptyText());
    EXPECT_EQ(Address_GetValue(a), AsInt(zel::EmptyText() + 8));
    Address_FromText(a, nullptr);
    EXPECT_TRUE(Address_IsNull(a));

    unsigned char bytes[] = {1, 2, 3};
    unsigned char* bin = MCloneZelBin(bytes, 3);
    Address_FromBin(a, bin);
    EXPECT_EQ(Address_GetValue(a), AsInt(bin + 12));
    // An empty byte set has no byte to point at.
    Address_FromBin(a, zel::EmptyBin());
    EXPECT_TRUE(Address_IsNull(a));
    Address_FromBin(a, nullptr);
    EXPECT_TRUE(Address_IsNull(a));
    zel_free(text);
    zel_free(bin);
}

TEST(Address, ArraysGiveTheirFirstElement) {
    TestObject a(&g_info_Address, nullptr, Address_Free);
    std::vector<int> row = {0, 1, 3, 7, 8, 9};
    std::vector<int> grid = {0, 2, 2, 3, 1, 2, 3, 4, 5, 6};
    for (auto from : {Address_FromIntArray, Address_FromDoubleArray, Address_FromTextArray, Address_FromBinArray}) {
        from(a, row.data());
        EXPECT_EQ(Address_GetValue(a), AsInt(&row[3]));
        from(a, grid.data());
        EXPECT_EQ(Address_GetValue(a), AsInt(&grid[4]));
    }
    // No elements, no address: a null array, no dimensions, a dimension of 0.
    std::vector<int> noDims = {0, 0};
    std::vector<int> zeroSize = {0, 1, 0};
    for (int* empty : {static_cast<int*>(nullptr), noDims.data(), zeroSize.data()}) {
        Address_SetValue(a, 1234);
        Address_FromIntArray(a, empty);
        EXPECT_TRUE(Address_IsNull(a));
    }
}

TEST(Address, ComparesAsUnsignedAndOffsetsWrap) {
    TestObject a(&g_info_Address, nullptr, Address_Free), b(&g_info_Address, nullptr, Address_Free);
    Address_SetValue(a, 0x1000);
    Address_SetValue(b, 0x1000);
    EXPECT_TRUE(Address_Equals(a, b));
    EXPECT_EQ(Address_Compare(a, b), 0);
    Address_Offset(b, 16);
    EXPECT_FALSE(Address_Equals(a, b));
    EXPECT_EQ(Address_Compare(a, b), -1);
    EXPECT_EQ(Address_Compare(b, a), 1);
    EXPECT_EQ(Address_Distance(a, b), 16);
    EXPECT_EQ(Address_Distance(b, a), -16);
    Address_Offset(b, -32);
    EXPECT_EQ(Address_GetValue(b), 0x0ff0);

    // Above 2 GiB is above, not negative.
    Address_SetValue(b, int(0x80000000u));
    EXPECT_EQ(Address_Compare(b, a), 1);
    Address_SetValue(b, -1);
    Address_Offset(b, 2);
    EXPECT_EQ(Address_GetValue(b), 1);

    // A missing address object counts as the null address.
    EXPECT_EQ(Address_Compare(a, nullptr), 1);
    EXPECT_FALSE(Address_Equals(a, nullptr));
    Address_SetValue(a, 0);
    EXPECT_TRUE(Address_Equals(a, nullptr));
}

TEST(Address, RecordHasOneElementAndWellFormedProperty) {
    EXPECT_STREQ(g_info_Address.name, L"工具.地址");
    EXPECT_STREQ(g_info_Address.description, L"地址类");
    EXPECT_EQ(g_info_Address.flags, 0x20000000u);
    EXPECT_EQ(g_info_Address.methodCount, 13);
    ASSERT_EQ(g_info_Address.elementCount, 1);
    EXPECT_STREQ(g_info_Address.elements[0].type, L"_i");
    EXPECT_TRUE(MethodIsReadProperty(&g_info_Address.methods[0]));
    EXPECT_TRUE(MethodIsWriteProperty(&g_info_Address.methods[1]));
    EXPECT_STREQ(g_info_Address.methods[1].params[0].name, L"值");
    for (int i = 0; i < g_info_Address.methodCount; ++i) EXPECT_NE(g_info_Address.methods[i].function, nullptr);
}

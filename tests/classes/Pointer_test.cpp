#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "common/test_object.h"
#include "runtime/loader.h"
#include "runtime/memory.h"
#include "runtime/values.h"

extern "C" {
extern tagTBaseTypeInfo g_info_Pointer;
extern tagTBaseTypeInfo g_info_Address;
void Address_Free(ZelObject*);
void Address_FromBin(ZelObject*, unsigned char*);
void Address_FromIntArray(ZelObject*, int*);
void Pointer_Free(ZelObject*);
int Pointer_GetAddress(ZelObject*);
void Pointer_SetAddress(ZelObject*, int);
int Pointer_GetStep(ZelObject*);
void Pointer_SetStep(ZelObject*, int);
void Pointer_PointTo(ZelObject*, ZelObject*);
void Pointer_Forward(ZelObject*);
void Pointer_Back(ZelObject*);
void Pointer_Move(ZelObject*, int);
int Pointer_IsNull(ZelObject*);
int Pointer_GetByte(ZelObject*);
void Pointer_SetByte(ZelObject*, int);
int Pointer_GetShort(ZelObject*);
void Pointer_SetShort(ZelObject*, int);
int Pointer_GetInt(ZelObject*);
void Pointer_SetInt(ZelObject*, int);
double Pointer_GetFloat(ZelObject*);
void Pointer_SetFloat(ZelObject*, double);
double Pointer_GetDouble(ZelObject*);
void Pointer_SetDouble(ZelObject*, double);
unsigned char* Pointer_ReadBin(ZelObject*, int);
void Pointer_WriteBin(ZelObject*, unsigned char*);
unsigned char* Pointer_ReadText(ZelObject*, int);
void Pointer_WriteText(ZelObject*, unsigned char*);
void Pointer_Fill(ZelObject*, int, int);
}

namespace {

struct Pointer : TestObject {
    Pointer() : TestObject(&g_info_Pointer, nullptr, Pointer_Free) {}
};
struct Address : TestObject {
    Address() : TestObject(&g_info_Address, nullptr, Address_Free) {}
};

// A runtime value owned by the test.
struct Owned {
    unsigned char* p;
    ~Owned() { zel_free(p); }
};

std::vector<unsigned char> BytesOf(unsigned char* bin) {
    unsigned char* data = MGetZelBinData(bin);
    return std::vector<unsigned char>(data, data + MGetZelBinLength(bin));
}

}  // namespace

TEST(Pointer, NewPointerIsNullWithNoStep) {
    Pointer p;
    EXPECT_TRUE(Pointer_IsNull(p));
    EXPECT_EQ(Pointer_GetAddress(p), 0);
    EXPECT_EQ(Pointer_GetStep(p), 0);
    Pointer_Forward(p);
    EXPECT_EQ(Pointer_GetAddress(p), 0);
}

TEST(Pointer, EveryWidthOverAByteSet) {
    Owned bin{MCloneZelBin(std::vector<unsigned char>(16, 0).data(), 16)};
    Address a;
    Address_FromBin(a, bin.p);
    Pointer p;
    Pointer_PointTo(p, a);
    ASSERT_EQ(Pointer_GetAddress(p), int(reinterpret_cast<uintptr_t>(bin.p + 12)));

    Pointer_SetInt(p, 0x01020304);
    EXPECT_EQ(BytesOf(bin.p)[0], 0x04);
    EXPECT_EQ(BytesOf(bin.p)[3], 0x01);
    EXPECT_EQ(Pointer_GetInt(p), 0x01020304);
    EXPECT_EQ(Pointer_GetShort(p), 0x0304);
    EXPECT_EQ(Pointer_GetByte(p), 0x04);

    // Bytes read unsigned, shorts signed; writes keep the low bits.
    Pointer_SetByte(p, 0x1ff);
    EXPECT_EQ(Pointer_GetByte(p), 255);
    Pointer_SetShort(p, 0x18000);
    EXPECT_EQ(Pointer_GetShort(p), -32768);
    EXPECT_EQ(BytesOf(bin.p)[2], 0x02);  // untouched beyond the short

    // Unaligned widths: one byte in.
    Pointer_SetStep(p, 1);
    Pointer_Forward(p);
    Pointer_SetDouble(p, -2.5);
    EXPECT_EQ(Pointer_GetDouble(p), -2.5);
    Pointer_SetFloat(p, 0.1);
    EXPECT_EQ(Pointer_GetFloat(p), double(0.1f));
    float f;
    std::memcpy(&f, bin.p + 13, 4);
    EXPECT_EQ(f, 0.1f);
    Pointer_Back(p);
    EXPECT_EQ(Pointer_GetByte(p), 0x00);  // the short's low byte, still there
}

TEST(Pointer, SteppingOverAnIntegerArrayBothWays) {
    std::vector<int> array = {0, 1, 4, 10, 20, 30, 40};
    Address a;
    Address_FromIntArray(a, array.data());
    Pointer p;
    Pointer_PointTo(p, a);
    Pointer_SetStep(p, 4);
    std::vector<int> forward, back;
    for (int i = 0; i < 4; ++i, Pointer_Forward(p)) forward.push_back(Pointer_GetInt(p));
    EXPECT_EQ(forward, (std::vector<int>{10, 20, 30, 40}));
    for (int i = 0; i < 4; ++i) {
        Pointer_Back(p);
        back.push_back(Pointer_GetInt(p));
    }
    EXPECT_EQ(back, (std::vector<int>{40, 30, 20, 10}));

    Pointer_Move(p, 3);
    Pointer_SetInt(p, -7);
    EXPECT_EQ(array[6], -7);
    Pointer_Move(p, -2);
    EXPECT_EQ(Pointer_GetInt(p), 20);
    Pointer_SetStep(p, -4);  // a negative step walks the other way
    Pointer_Forward(p);
    EXPECT_EQ(Pointer_GetInt(p), 10);
}

TEST(Pointer, NullAddressReadsZeroAndWritesNothing) {
    Pointer p;
    Pointer_SetByte(p, 1);
    Pointer_SetShort(p, 1);
    Pointer_SetInt(p, 1);
    Pointer_SetFloat(p, 1);
    Pointer_SetDouble(p, 1);
    Owned bin{MCloneZelBin(const_cast<char*>("ab"), 2)};
    Pointer_WriteBin(p, bin.p);
    Owned text{MCloneZelText(const_cast<wchar_t*>(L"ab"))};
    Pointer_WriteText(p, text.p);
    Pointer_Fill(p, 0, 8);
    EXPECT_EQ(Pointer_GetByte(p), 0);
    EXPECT_EQ(Pointer_GetShort(p), 0);
    EXPECT_EQ(Pointer_GetInt(p), 0);
    EXPECT_EQ(Pointer_GetFloat(p), 0.0);
    EXPECT_EQ(Pointer_GetDouble(p), 0.0);
    EXPECT_EQ(Pointer_ReadBin(p, 4), zel::EmptyBin());
    EXPECT_EQ(Pointer_ReadText(p, 4), zel::EmptyText());
    // A null address object points nowhere.
    Pointer_SetAddress(p, 64);
    Pointer_PointTo(p, nullptr);
    EXPECT_TRUE(Pointer_IsNull(p));
}

TEST(Pointer, BlocksOfBytesAndText) {
    std::vector<int> words(4, 0);
    Pointer p;
    Pointer_SetAddress(p, int(reinterpret_cast<uintptr_t>(words.data())));
    Pointer_Fill(p, 0x1ab, 6);
    EXPECT_EQ(words[0], int(0xabababab));
    EXPECT_EQ(words[1], 0xabab);
    Pointer_Fill(p, 0, -1);  // a negative length fills nothing
    EXPECT_EQ(words[0], int(0xabababab));

    Owned bin{MCloneZelBin(const_cast<char*>("\x01\x02\x03"), 3)};
    Pointer_WriteBin(p, bin.p);
    Owned back{Pointer_ReadBin(p, 5)};
    EXPECT_EQ(BytesOf(back.p), (std::vector<unsigned char>{1, 2, 3, 0xab, 0xab}));
    EXPECT_EQ(Pointer_ReadBin(p, 0), zel::EmptyBin());
    EXPECT_EQ(Pointer_ReadBin(p, -3), zel::EmptyBin());

    Owned text{MCloneZelText(const_cast<wchar_t*>(L"文本"))};
    Pointer_WriteText(p, text.p);
    EXPECT_EQ(words[2], 0);  // the terminator is written too
    Owned whole{Pointer_ReadText(p, 10)};
    EXPECT_STREQ(zel::TextChars(whole.p), L"文本");
    Owned first{Pointer_ReadText(p, 1)};
    EXPECT_STREQ(zel::TextChars(first.p), L"文");
    Pointer_WriteText(p, nullptr);
    EXPECT_EQ(words[0], L'文');
}

TEST(Pointer, FreeClearsBothWordsAndRecordIsWellFormed) {
    Pointer p;
    Pointer_SetAddress(p, 100);
    Pointer_SetStep(p, 8);
    EXPECT_EQ(p.word(1, 0), reinterpret_cast<void*>(100));
    EXPECT_EQ(p.word(1, 1), reinterpret_cast<void*>(8));
    Pointer_Free(p);
    EXPECT_EQ(p.word(1, 0), nullptr);
    EXPECT_EQ(p.word(1, 1), nullptr);

    EXPECT_STREQ(g_info_Pointer.name, L"工具.指针");
    EXPECT_STREQ(g_info_Pointer.description, L"指针类");
    EXPECT_EQ(g_info_Pointer.flags, 0x20000001u);
    ASSERT_EQ(g_info_Pointer.methodCount, 24);
    EXPECT_EQ(g_info_Pointer.elementCount, 2);
    for (int i = 0; i < 14; i += 2) {
        tagMethodItem* m = g_info_Pointer.methods;
        EXPECT_TRUE(MethodIsReadProperty(&m[i])) << i;
        EXPECT_TRUE(MethodIsWriteProperty(&m[i + 1])) << i;
        EXPECT_STREQ(m[i].name, m[i + 1].name);
        EXPECT_STREQ(m[i + 1].params[0].name, L"值");
    }
}

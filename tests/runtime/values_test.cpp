// Type codes, the value encodings and their clones.
#include <gtest/gtest.h>

#include <cstring>

#include <zel/memory.h>
#include <zel/minimem.h>
#include <zel/mstring.h>
#include <zel/textfuncs.h>
#include <zel/values.h>

namespace {
wchar_t* W(const wchar_t* s) { return const_cast<wchar_t*>(s); }
DATATYPE_TYPE TypeOf(const wchar_t* s) { return MGetDataTypeType(W(s), 0); }
std::wstring ShowName(const wchar_t* s) {
    CMString out;
    MGetDataTypeShowNameString(out, W(s), GetTextHash(s));
    return out.GetText();
}
}  // namespace

TEST(TypeCodes, ParseTypeStrings) {
    EXPECT_EQ(TypeOf(L"_db"), DATATYPE_DOUBLE);
    EXPECT_EQ(TypeOf(L"@_b"), DATATYPE_BOOL_ARRAY);
    EXPECT_EQ(TypeOf(L"工具.颜色"), DATATYPE_OBJECT);
    EXPECT_EQ(TypeOf(L"@系统.对象"), DATATYPE_OBJECT_ARRAY);
    EXPECT_EQ(TypeOf(L"@_q"), DATATYPE_UNKNOWN);
    // The caller's hash is trusted, but only together with the text it belongs to.
    EXPECT_EQ(MGetDataTypeType(W(L"_s"), 1), DATATYPE_UNKNOWN);
    EXPECT_EQ(MGetDataTypeType(W(L"_x"), GetTextHash(L"_i")), DATATYPE_UNKNOWN);
    EXPECT_EQ(MGetDataTypeSize(W(L"_db"), 0), 4);  // the caller's hash is not recomputed
}

TEST(TypeCodes, SizesAndShowNames) {
    EXPECT_EQ(MGetDataTypeSize(DATATYPE_DOUBLE_ARRAY), 4);
    EXPECT_EQ(MGetAryElementDataTypeSize(DATATYPE_DOUBLE_ARRAY), 8);
    EXPECT_EQ(MGetDataTypeSize(W(L"_db"), GetTextHash(L"_db")), 8);
    EXPECT_STREQ(MGetDataTypeTypeShowName(DATATYPE_OBJECT_ARRAY), L"对象/接口/枚举数组");
    EXPECT_STREQ(MGetDataTypeTypeShowName(DATATYPE_TYPE(99)), L"未知类型");
    EXPECT_EQ(ShowName(L"@工具.颜色"), L"工具.颜色[]");
    EXPECT_EQ(ShowName(L"@_b"), L"逻辑型数组");
    EXPECT_EQ(ShowName(L"_zz"), L"_zz");
}

TEST(TypeCodes, PureTypeCombinedAndFill) {
    int isArray = -1;
    EXPECT_STREQ(MGetPureDataType(W(L"@_i"), &isArray), L"_i");
    EXPECT_EQ(isArray, 1);
    EXPECT_TRUE(IsCmbDataType(W(L"_i,_s")) && !IsCmbDataType(W(L"_i")));
    tagZelDataTypeInfo info{7, W(L"x"), 7, 7};
    FillBaseTypeInfo(DATATYPE_TEXT, &info);
    EXPECT_TRUE(info.code == 4 && info.hash == GetTextHash(L"_s") && info.reserved == 0);
    EXPECT_STREQ(info.type, L"_s");
    info.type = W(L"kept");
    FillBaseTypeInfo(DATATYPE_OBJECT, &info);
    EXPECT_EQ(info.code, 0);
    EXPECT_STREQ(info.type, L"kept");
}

TEST(Values, ArraysBinsAndTexts) {
    int twoByThree[2 + 2 + 6] = {0, 2, 2, 3};
    void* data = nullptr;
    EXPECT_EQ(MGetAryElementCount(twoByThree, &data), 6);
    EXPECT_EQ(data, &twoByThree[4]);
    int emptyOneDim[3] = {0, 1, 0}, emptyTwoDim[4] = {0, 2, 0, 0};
    EXPECT_TRUE(IsEmptyZelArray(emptyOneDim));
    EXPECT_FALSE(IsEmptyZelArray(emptyTwoDim));  // more than one dimension is never empty

    int len = -1;
    EXPECT_EQ(GetBinData(nullptr, &len), zel::EmptyBin() + 12);  // null reads as the empty constant
    EXPECT_EQ(len, 0);
    unsigned char* text = MCloneZelText(W(L"甲"));
    zel::TextChars(text)[0] = 0;  // measured to the terminator, not by the stored length
    EXPECT_TRUE(IsEmptyZelText(text));
    zel_free(text);
}

TEST(Values, DoublesSpanTwoWords) {
    void* block[4] = {};
    ZelObject obj{nullptr, nullptr, nullptr};
    void* words[4] = {&obj, nullptr, nullptr, block};
    auto* o = reinterpret_cast<ZelObject*>(words);
    SetDoubleDataItem(o, 1, 1, 1.5);
    EXPECT_EQ(GetDoubleDataItem(o, 1, 1), 1.5);
    EXPECT_TRUE(block[0] == nullptr && block[3] == nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(block[2]), 0x3FF80000u);  // words 1 and 2 hold the double
}

TEST(Values, EmptyConstantsLayout) {
    auto* base = reinterpret_cast<unsigned char*>(&g_EmptyConst);
    EXPECT_EQ(g_EmptyConst.size, 44);
    EXPECT_EQ(zel::EmptyText(), base + 20);
    EXPECT_EQ(zel::EmptyBin(), base + 32);
    EXPECT_EQ(reinterpret_cast<int*>(zel::EmptyBin())[1], 1);
    EXPECT_TRUE(IsConstData(base + 43) && !IsConstData(base + 44));
    EXPECT_STREQ(zelTrueLiteral, L"真");
    EXPECT_STREQ(zelFalseLiteral, L"假");
}

TEST(Memory, ConstantsAreNeverFreedAndReallocCopiesThem) {
    zel_free(zel::EmptyText());  // must not crash or free
    EXPECT_EQ(zel_malloc(-5), nullptr);
    auto* copy = static_cast<int*>(zel_realloc(zel::EmptyBin(), 20));
    ASSERT_NE(copy, nullptr);
    EXPECT_TRUE(copy[0] == 0 && copy[1] == 1 && copy[2] == 0);  // the 12 bytes up to the end of the block
    zel_free(copy);
    EXPECT_EQ(reinterpret_cast<int*>(zel::EmptyBin())[1], 1);
}

TEST(Clones, TextsAndBins) {
    wchar_t* text = MCloneText(const_cast<wchar_t*>(L"abc"), 2);
    EXPECT_STREQ(text, L"ab");
    zel_free(text);
    // Null, empty or unconvertible input gives the shared empty constants.
    EXPECT_EQ(MCloneText(const_cast<wchar_t*>(L"x"), 0), zel::EmptyString());
    EXPECT_EQ(MCloneText(const_cast<char*>("ok\xff\xfe")), zel::EmptyString());  // not UTF-8
    EXPECT_EQ(MCloneZelText(const_cast<char*>("\xc3")), zel::EmptyText());
    EXPECT_EQ(MCloneZelBin(nullptr, 0), zel::EmptyBin());

    unsigned char* zt = MCloneZelText(const_cast<wchar_t*>(L"héllo"));
    EXPECT_EQ(reinterpret_cast<int*>(zt)[1], 5);
    wchar_t* plain = MCloneZelTextToString(zt);
    EXPECT_STREQ(plain, L"héllo");
    zel_free(zt);
    zel_free(plain);
    unsigned char* zeros = MCloneZelBin(nullptr, 4);
    unsigned char* copy = MCloneZelBin(zeros);
    EXPECT_EQ(MGetZelBinLength(copy), 4);
    EXPECT_EQ(std::memcmp(copy + 12, "\0\0\0\0", 4), 0);
    zel_free(zeros);
    zel_free(copy);
}

TEST(Clones, ArraysCopyValuesButNotObjects) {
    int objects[2 + 2 + 4] = {9, 2, 2, 2, 1, 2, 3, 4};
    int* copy = MCloneArray(objects, DATATYPE_OBJECT_ARRAY);
    EXPECT_TRUE(copy[0] == 0 && copy[1] == 2 && copy[3] == 2);
    for (int i = 4; i < 8; ++i) EXPECT_EQ(copy[i], 0);
    zel_free(copy);

    unsigned char* texts[2] = {MCloneZelText(const_cast<wchar_t*>(L"a")), nullptr};
    int textArray[2 + 1 + 2] = {0, 1, 2};
    std::memcpy(&textArray[3], texts, sizeof texts);
    copy = MCloneArray(textArray, DATATYPE_TEXT_ARRAY);
    auto** cloned = reinterpret_cast<unsigned char**>(&copy[3]);
    EXPECT_NE(cloned[0], texts[0]);
    EXPECT_STREQ(zel::TextChars(cloned[0]), L"a");
    EXPECT_EQ(cloned[1], zel::EmptyText());
    zel_free(cloned[0]);
    zel_free(copy);
    zel_free(texts[0]);

    int empty[3] = {5, 1, 0};  // no elements: a copy of the header all the same
    copy = MCloneArray(empty, DATATYPE_TEXT_ARRAY);
    EXPECT_TRUE(copy != reinterpret_cast<int*>(zel::EmptyBin()) && copy[0] == 0 && copy[1] == 1 && copy[2] == 0);
    zel_free(copy);
}

TEST(Clones, MultibyteText) {
    CMiniMem buffer;
    EXPECT_STREQ(GetMBSText(const_cast<wchar_t*>(L"abc"), buffer), "abc");
    wchar_t lone[] = {L'a', wchar_t(0xD800), L'b', 0};  // a lone surrogate has no UTF-8 form
    EXPECT_STREQ(GetMBSText(lone, buffer), "");
}

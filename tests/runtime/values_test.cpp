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

TEST(TypeCodes, ParseSizesAndShowNames) {
    EXPECT_EQ(TypeOf(L"工具.颜色"), DATATYPE_OBJECT);
    EXPECT_EQ(TypeOf(L"@系统.对象"), DATATYPE_OBJECT_ARRAY);
    EXPECT_EQ(TypeOf(L"@_q"), DATATYPE_UNKNOWN);
    // The caller's hash is trusted, but only together with the text it belongs to.
    EXPECT_EQ(MGetDataTypeType(W(L"_s"), 1), DATATYPE_UNKNOWN);
    EXPECT_EQ(MGetDataTypeType(W(L"_x"), GetTextHash(L"_i")), DATATYPE_UNKNOWN);
    EXPECT_EQ(MGetDataTypeSize(W(L"_db"), 0), 4);  // the caller's hash is not recomputed
    EXPECT_EQ(MGetDataTypeSize(W(L"_db"), GetTextHash(L"_db")), 8);
    EXPECT_EQ(MGetAryElementDataTypeSize(DATATYPE_DOUBLE_ARRAY), 8);
    EXPECT_STREQ(MGetDataTypeTypeShowName(DATATYPE_TYPE(99)), L"未知类型");
    EXPECT_EQ(ShowName(L"@工具.颜色"), L"工具.颜色[]");
    EXPECT_EQ(ShowName(L"@_b"), L"逻辑型数组");
    EXPECT_EQ(ShowName(L"_zz"), L"_zz");
    int isArray = -1;
    EXPECT_STREQ(MGetPureDataType(W(L"@_i"), &isArray), L"_i");
    EXPECT_TRUE(isArray == 1 && IsCmbDataType(W(L"_i,_s")) && !IsCmbDataType(W(L"_i")));
}

// Null and empty type texts are unknown, of no size and show as nothing.
TEST(TypeCodes, NullAndEmptyTypes) {
    int isArray = -1;
    EXPECT_TRUE(MGetDataTypeType(nullptr, 0) == DATATYPE_UNKNOWN && TypeOf(L"") == DATATYPE_UNKNOWN);
    EXPECT_TRUE(MGetDataTypeSize(nullptr, 0) == 0 && MGetDataTypeSize(W(L""), 0) == 0);
    EXPECT_TRUE(MGetPureDataType(nullptr, &isArray) == nullptr && isArray == 0);
    EXPECT_STREQ(MGetPureDataType(W(L"工具.颜色"), nullptr), L"工具.颜色");
    EXPECT_TRUE(ShowName(L"").empty() && ShowName(L"工具.颜色") == L"工具.颜色");
    CMString shown(L"old");
    MGetDataTypeShowNameString(shown, nullptr, 0);
    EXPECT_TRUE(shown.IsEmpty());
    EXPECT_EQ(MGetDataTypeSize(W(L"_dx"), GetTextHash(L"_db")), 4);  // a hash without its text
    EXPECT_TRUE(MGetDataTypeSize(DATATYPE_DOUBLE) == 8 && MGetAryElementDataTypeSize(DATATYPE_DOUBLE) == 8);
    EXPECT_STREQ(MGetDataTypeTypeShowName(DATATYPE_OBJECT), L"对象/接口/枚举");
    EXPECT_STREQ(MGetDataTypeTypeShowName(DATATYPE_BOOL_ARRAY), L"逻辑型数组");
}

TEST(TypeCodes, FillKeepsTheTypeOfAnObject) {
    tagZelDataTypeInfo info{7, W(L"x"), 7, 7};
    FillBaseTypeInfo(DATATYPE_TEXT, &info);
    EXPECT_TRUE(info.code == 4 && info.hash == GetTextHash(L"_s") && info.reserved == 0);
    EXPECT_STREQ(info.type, L"_s");
    wchar_t kept[] = L"kept";
    info.type = kept;
    FillBaseTypeInfo(DATATYPE_OBJECT, &info);
    EXPECT_TRUE(info.code == 0 && info.type == kept);
}

TEST(Values, ArraysBinsAndTexts) {
    int twoByThree[2 + 2 + 6] = {0, 2, 2, 3};
    void* data = nullptr;
    EXPECT_EQ(MGetAryElementCount(twoByThree, &data), 6);
    EXPECT_EQ(data, &twoByThree[4]);
    int emptyOneDim[3] = {0, 1, 0}, emptyTwoDim[4] = {0, 2, 0, 0};
    EXPECT_TRUE(IsEmptyZelArray(emptyOneDim));
    EXPECT_FALSE(IsEmptyZelArray(emptyTwoDim));  // more than one dimension is never empty

    // Null reads as the empty value.
    int three[3 + 3] = {0, 1, 3, 7, 8, 9}, len = -1, count = -1;
    auto* bin = reinterpret_cast<unsigned char*>(three);  // also a byte set of 3 bytes
    EXPECT_EQ(GetBinData(nullptr, &len), zel::EmptyBin() + 12);
    EXPECT_TRUE(len == 0 && GetBinData(bin, nullptr) == bin + 12);
    EXPECT_TRUE(IsEmptyBin(nullptr) && IsEmptyBin(zel::EmptyBin()) && !IsEmptyBin(bin));
    EXPECT_TRUE(IsEmptyZelArray(nullptr) && !IsEmptyZelArray(three) && GetZelArrayDim(nullptr) == 0 && GetZelArrayDim(three) == 1);
    EXPECT_TRUE(MGetAryElementCount(nullptr, &data) == 0 && data == nullptr && MGetAryElementCount(three, nullptr) == 3);
    EXPECT_TRUE(GetZelArrayData(nullptr, &count) == nullptr && count == 0 && GetZelArrayData(three, nullptr) == &three[3]);
    unsigned char* text = MCloneZelText(W(L"甲"));
    EXPECT_TRUE(!IsEmptyZelText(text) && IsEmptyZelText(nullptr));
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
    EXPECT_TRUE(IsConstData(base + 43) && !IsConstData(base + 44) && !IsConstData(nullptr) && !zel::ConstBlockOf(nullptr));
    EXPECT_STREQ(zelTrueLiteral, L"真");
    EXPECT_STREQ(zelFalseLiteral, L"假");
}

TEST(Clones, ConstantsAreNeverFreedOrResizedAndBadInputGivesThem) {
    zel_free(zel::EmptyText());  // must not crash or free
    EXPECT_EQ(zel_malloc(-5), nullptr);
    auto* copy = static_cast<int*>(zel_realloc(zel::EmptyBin(), 20));
    ASSERT_NE(copy, nullptr);
    EXPECT_TRUE(copy[0] == 0 && copy[1] == 1 && copy[2] == 0);  // the 12 bytes up to the end of the block
    zel_free(copy);
    EXPECT_EQ(reinterpret_cast<int*>(zel::EmptyBin())[1], 1);

    // Null, empty or unconvertible input gives the shared empty constants.
    wchar_t* none = nullptr;
    for (wchar_t* s : {MCloneText(none), MCloneText(none, 3), MCloneText(W(L"x"), 0), MCloneText(static_cast<char*>(nullptr)),
                       MCloneText(const_cast<char*>("")), MCloneText(const_cast<char*>("ok\xff\xfe")), MCloneZelTextToString(nullptr)})
        EXPECT_EQ(s, zel::EmptyString());
    for (unsigned char* s : {MCloneZelText(none), MCloneZelText(none, 2), MCloneZelText(const_cast<char*>("\xc3"))})
        EXPECT_EQ(s, zel::EmptyText());
    EXPECT_TRUE(MCloneZelBin(nullptr, 0) == zel::EmptyBin() && MCloneZelBin(static_cast<unsigned char*>(nullptr)) == zel::EmptyBin());
    EXPECT_EQ(MCloneArray(nullptr, DATATYPE_INT_ARRAY), reinterpret_cast<int*>(zel::EmptyBin()));
    CMiniMem buffer;
    EXPECT_STREQ(GetMBSText(nullptr, buffer), "");
    wchar_t lone[] = {L'a', wchar_t(0xD800), L'b', 0};  // a lone surrogate has no UTF-8 form
    EXPECT_STREQ(GetMBSText(lone, buffer), "");
}

TEST(Clones, TextsBinsAndArrays) {
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

    int objects[2 + 2 + 4] = {9, 2, 2, 2, 1, 2, 3, 4};  // objects are not copied, numbers are
    int* array = MCloneArray(objects, DATATYPE_OBJECT_ARRAY);
    EXPECT_TRUE(array[0] == 0 && array[1] == 2 && array[3] == 2 && array[4] == 0 && array[7] == 0);
    zel_free(array);
    array = MCloneArray(objects, DATATYPE_INT_ARRAY);
    EXPECT_TRUE(array[0] == 0 && array[4] == 1 && array[7] == 4);
    zel_free(array);

    unsigned char* texts[2] = {MCloneZelText(const_cast<wchar_t*>(L"a")), nullptr};
    int textArray[2 + 1 + 2] = {0, 1, 2};
    std::memcpy(&textArray[3], texts, sizeof texts);
    array = MCloneArray(textArray, DATATYPE_TEXT_ARRAY);
    auto** cloned = reinterpret_cast<unsigned char**>(&array[3]);
    EXPECT_NE(cloned[0], texts[0]);
    EXPECT_STREQ(zel::TextChars(cloned[0]), L"a");
    EXPECT_EQ(cloned[1], zel::EmptyText());
    zel_free(cloned[0]);
    zel_free(array);
    zel_free(texts[0]);

    int empty[3] = {5, 1, 0};  // no elements: a copy of the header all the same
    array = MCloneArray(empty, DATATYPE_TEXT_ARRAY);
    EXPECT_TRUE(array != reinterpret_cast<int*>(zel::EmptyBin()) && array[0] == 0 && array[1] == 1 && array[2] == 0);
    zel_free(array);
}

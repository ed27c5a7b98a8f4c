#include <gtest/gtest.h>

#include <zel/memory.h>
#include <zel/values.h>
#include <zel/mstring.h>
#include <zel/textfuncs.h>

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
    EXPECT_EQ(TypeOf(L"_i"), DATATYPE_INT);
    EXPECT_EQ(TypeOf(L"_db"), DATATYPE_DOUBLE);
    EXPECT_EQ(TypeOf(L"_s"), DATATYPE_TEXT);
    EXPECT_EQ(TypeOf(L"_bn"), DATATYPE_BIN);
    EXPECT_EQ(TypeOf(L"@_b"), DATATYPE_BOOL_ARRAY);
    EXPECT_EQ(TypeOf(L"工具.颜色"), DATATYPE_OBJECT);
    EXPECT_EQ(TypeOf(L"@系统.对象"), DATATYPE_OBJECT_ARRAY);
    EXPECT_EQ(TypeOf(L"_x"), DATATYPE_UNKNOWN);
    EXPECT_EQ(TypeOf(L"@_q"), DATATYPE_UNKNOWN);
    EXPECT_EQ(TypeOf(L""), DATATYPE_UNKNOWN);
    EXPECT_EQ(MGetDataTypeType(nullptr, 0), DATATYPE_UNKNOWN);
    // A wrong hash argument makes a known string unknown: the hash is trusted,
    // but only together with the text it belongs to.
    EXPECT_EQ(MGetDataTypeType(W(L"_s"), 1), DATATYPE_UNKNOWN);
    EXPECT_EQ(MGetDataTypeType(W(L"_x"), GetTextHash(L"_i")), DATATYPE_UNKNOWN);
    EXPECT_EQ(MGetDataTypeSize(W(L"_dx"), GetTextHash(L"_db")), 4);
    CMString shown;
    MGetDataTypeShowNameString(shown, W(L"_q"), GetTextHash(L"_s"));
    EXPECT_STREQ(shown.GetText(), L"_q");
    MGetDataTypeShowNameString(shown, nullptr, 0);
    EXPECT_TRUE(shown.IsEmpty());
}

TEST(TypeCodes, SizesAndShowNames) {
    EXPECT_EQ(MGetDataTypeSize(DATATYPE_DOUBLE), 8);
    EXPECT_EQ(MGetDataTypeSize(DATATYPE_DOUBLE_ARRAY), 4);
    EXPECT_EQ(MGetAryElementDataTypeSize(DATATYPE_DOUBLE_ARRAY), 8);
    EXPECT_EQ(MGetDataTypeSize(W(L"_db"), GetTextHash(L"_db")), 8);
    EXPECT_EQ(MGetDataTypeSize(W(L"_db"), 0), 4);  // the caller's hash is not recomputed
    EXPECT_EQ(MGetDataTypeSize(W(L""), 0), 0);
    EXPECT_EQ(MGetDataTypeSize(nullptr, 0), 0);
    EXPECT_EQ(MGetAryElementDataTypeSize(DATATYPE_DOUBLE), 8);
    EXPECT_EQ(MGetAryElementDataTypeSize(DATATYPE_INT_ARRAY), 4);
    EXPECT_STREQ(MGetDataTypeTypeShowName(DATATYPE_OBJECT_ARRAY), L"对象/接口/枚举数组");
    EXPECT_STREQ(MGetDataTypeTypeShowName(DATATYPE_BOOL_ARRAY), L"逻辑型数组");
    EXPECT_STREQ(MGetDataTypeTypeShowName(DATATYPE_OBJECT), L"对象/接口/枚举");
    EXPECT_STREQ(MGetDataTypeTypeShowName(DATATYPE_TYPE(99)), L"未知类型");
    EXPECT_EQ(ShowName(L"@工具.颜色"), L"工具.颜色[]");
    EXPECT_EQ(ShowName(L"@_b"), L"逻辑型数组");
    EXPECT_EQ(ShowName(L"工具.颜色"), L"工具.颜色");
    EXPECT_EQ(ShowName(L"_zz"), L"_zz");
    EXPECT_EQ(ShowName(L""), L"");
}

TEST(TypeCodes, PureTypeCombinedAndFill) {
    int isArray = -1;
    EXPECT_STREQ(MGetPureDataType(W(L"@_i"), &isArray), L"_i");
    EXPECT_EQ(isArray, 1);
    EXPECT_STREQ(MGetPureDataType(W(L""), &isArray), L"");
    EXPECT_EQ(isArray, 0);
    isArray = -1;
    EXPECT_EQ(MGetPureDataType(nullptr, &isArray), nullptr);
    EXPECT_EQ(isArray, 0);
    EXPECT_STREQ(MGetPureDataType(W(L"@工具.颜色"), nullptr), L"工具.颜色");
    EXPECT_TRUE(IsCmbDataType(W(L"_i,_s")));
    EXPECT_FALSE(IsCmbDataType(W(L"_i")));
    tagZelDataTypeInfo info{7, W(L"x"), 7, 7};
    FillBaseTypeInfo(DATATYPE_TEXT, &info);
    EXPECT_EQ(info.code, 4);
    EXPECT_STREQ(info.type, L"_s");
    EXPECT_EQ(info.hash, GetTextHash(L"_s"));
    EXPECT_EQ(info.reserved, 0);
    info.type = W(L"kept");
    FillBaseTypeInfo(DATATYPE_OBJECT, &info);
    EXPECT_EQ(info.code, 0);
    EXPECT_STREQ(info.type, L"kept");
}

TEST(Values, ArraysCountTheirElements) {
    int twoByThree[2 + 2 + 6] = {0, 2, 2, 3};
    void* data = nullptr;
    EXPECT_EQ(MGetAryElementCount(twoByThree, &data), 6);
    EXPECT_EQ(data, &twoByThree[4]);
    int noDims[2] = {0, 0};
    EXPECT_EQ(GetZelArraySize(noDims), 0);
    EXPECT_EQ(MGetAryElementCount(nullptr, &data), 0);
    EXPECT_EQ(data, nullptr);
    int emptyOneDim[3] = {0, 1, 0};
    int emptyTwoDim[4] = {0, 2, 0, 0};
    EXPECT_TRUE(IsEmptyZelArray(emptyOneDim));
    EXPECT_FALSE(IsEmptyZelArray(emptyTwoDim));  // more than one dimension is never empty
    EXPECT_TRUE(IsEmptyZelArray(nullptr));
    int three[3 + 3] = {0, 1, 3, 7, 8, 9};
    EXPECT_FALSE(IsEmptyZelArray(three));
    EXPECT_TRUE(GetZelArrayDim(three) == 1 && GetZelArrayDim(nullptr) == 0);
    EXPECT_EQ(MGetAryElementCount(nullptr, nullptr), 0);
    EXPECT_EQ(GetZelArrayData(three, nullptr), &three[3]);
    int count = -1;
    EXPECT_EQ(GetZelArrayData(nullptr, &count), nullptr);
    EXPECT_EQ(count, 0);
}

TEST(Values, EmptinessOfBinsAndTexts) {
    int len = -1;
    EXPECT_EQ(GetBinData(nullptr, &len), zel::EmptyBin() + 12);  // null reads as the empty constant
    EXPECT_EQ(len, 0);
    EXPECT_EQ(MGetZelBinData(nullptr), nullptr);
    int bin[4] = {0, 1, 3, 0};
    auto* bytes = reinterpret_cast<unsigned char*>(bin);
    EXPECT_TRUE(IsEmptyBin(nullptr) && IsEmptyBin(zel::EmptyBin()) && !IsEmptyBin(bytes));
    EXPECT_EQ(GetBinData(bytes, nullptr), bytes + 12);  // no length asked for

    unsigned char* text = MCloneZelText(W(L"甲"));
    EXPECT_FALSE(IsEmptyZelText(text));
    zel::TextChars(text)[0] = 0;  // measured to the terminator, not by the stored length
    EXPECT_TRUE(IsEmptyZelText(text) && IsEmptyZelText(zel::EmptyText()) && IsEmptyZelText(nullptr));
    zel_free(text);
}

TEST(Values, DataItemsAndDoubles) {
    void* block[4] = {};
    ZelObject obj{nullptr, nullptr, nullptr};
    void* words[4] = {&obj, nullptr, nullptr, block};
    auto* o = reinterpret_cast<ZelObject*>(words);
    SetDoubleDataItem(o, 1, 1, 1.5);
    EXPECT_EQ(GetDoubleDataItem(o, 1, 1), 1.5);
    EXPECT_EQ(block[0], nullptr);
    EXPECT_EQ(block[3], nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(block[2]), 0x3FF80000u);  // words 1 and 2 hold the double
    SetDataItemData(o, 1, 0, &obj);
    EXPECT_EQ(GetDataItemData(o, 1, 0), &obj);
    EXPECT_EQ(_DataObject_GetData(o), block);
}

TEST(Values, EmptyConstantsLayout) {
    auto* base = reinterpret_cast<unsigned char*>(&g_EmptyConst);
    EXPECT_EQ(g_EmptyConst.size, 44);
    EXPECT_EQ(zel::EmptyText(), base + 20);
    EXPECT_EQ(zel::EmptyBin(), base + 32);
    EXPECT_EQ(reinterpret_cast<int*>(zel::EmptyBin())[1], 1);
    EXPECT_TRUE(IsConstData(base + 43));
    EXPECT_FALSE(IsConstData(base + 44));
    EXPECT_STREQ(zelTrueLiteral, L"真");
    EXPECT_STREQ(zelFalseLiteral, L"假");
    EXPECT_EQ(zel::ConstBlockOf(nullptr), nullptr);
    EXPECT_FALSE(IsConstData(nullptr));
}

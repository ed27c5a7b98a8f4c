// The value queries on null, empty and odd input, and type strings whose
// hash matches a known type while the text does not.
#include <gtest/gtest.h>

#include <zel/memory.h>
#include <zel/mstring.h>
#include <zel/textfuncs.h>
#include <zel/values.h>

namespace {
wchar_t* W(const wchar_t* s) { return const_cast<wchar_t*>(s); }

TEST(Values, EmptinessOfBinsTextsAndArrays) {
    int bin[4] = {0, 1, 3, 0};
    auto* bytes = reinterpret_cast<unsigned char*>(bin);
    EXPECT_TRUE(IsEmptyBin(nullptr));
    EXPECT_TRUE(IsEmptyBin(zel::EmptyBin()));
    EXPECT_FALSE(IsEmptyBin(bytes));
    EXPECT_EQ(GetBinData(bytes, nullptr), bytes + 12);  // no length asked for

    unsigned char* text = MCloneZelText(W(L"甲"));
    EXPECT_FALSE(IsEmptyZelText(text));
    zel::TextChars(text)[0] = 0;  // measured to the terminator, not by the stored length
    EXPECT_TRUE(IsEmptyZelText(text));
    EXPECT_TRUE(IsEmptyZelText(zel::EmptyText()));
    EXPECT_TRUE(IsEmptyZelText(nullptr));
    zel_free(text);

    int three[3 + 3] = {0, 1, 3, 7, 8, 9};
    EXPECT_FALSE(IsEmptyZelArray(three));
    EXPECT_EQ(GetZelArrayDim(three), 1);
    EXPECT_EQ(GetZelArrayDim(nullptr), 0);
    EXPECT_EQ(MGetAryElementCount(nullptr, nullptr), 0);
    EXPECT_EQ(GetZelArrayData(three, nullptr), &three[3]);
    int count = -1;
    EXPECT_EQ(GetZelArrayData(nullptr, &count), nullptr);
    EXPECT_EQ(count, 0);
}

TEST(TypeCodes, MatchingHashWithOtherTextIsNoMatch) {
    // Hashes are trusted only together with the text they belong to.
    EXPECT_EQ(MGetDataTypeType(W(L"_x"), GetTextHash(L"_i")), DATATYPE_UNKNOWN);
    EXPECT_EQ(MGetDataTypeSize(W(L"_dx"), GetTextHash(L"_db")), 4);
    CMString shown;
    MGetDataTypeShowNameString(shown, W(L"_q"), GetTextHash(L"_s"));
    EXPECT_STREQ(shown.GetText(), L"_q");
}

TEST(TypeCodes, NullAndArrayOddities) {
    EXPECT_EQ(MGetAryElementDataTypeSize(DATATYPE_DOUBLE), 8);
    EXPECT_EQ(MGetAryElementDataTypeSize(DATATYPE_INT_ARRAY), 4);
    EXPECT_EQ(MGetDataTypeSize(nullptr, 0), 0);
    EXPECT_STREQ(MGetDataTypeTypeShowName(DATATYPE_OBJECT_ARRAY), L"对象/接口/枚举数组");
    int isArray = -1;
    EXPECT_EQ(MGetPureDataType(nullptr, &isArray), nullptr);
    EXPECT_EQ(isArray, 0);
    EXPECT_STREQ(MGetPureDataType(W(L"@工具.颜色"), nullptr), L"工具.颜色");
    CMString shown(L"旧");
    MGetDataTypeShowNameString(shown, nullptr, 0);
    EXPECT_TRUE(shown.IsEmpty());
    EXPECT_EQ(zel::ConstBlockOf(nullptr), nullptr);
    EXPECT_FALSE(IsConstData(nullptr));
}

}  // namespace

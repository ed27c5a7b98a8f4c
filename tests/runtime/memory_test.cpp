#include <gtest/gtest.h>

#include <cstring>

#include <zel/memory.h>
#include <zel/values.h>
#include <zel/minimem.h>

TEST(Memory, ConstantsAreNeverFreedAndReallocCopiesThem) {
    zel_free(zel::EmptyText());  // must not crash or free
    zel_free(nullptr);
    EXPECT_EQ(zel_malloc(0), nullptr);
    EXPECT_EQ(zel_malloc(-5), nullptr);
    auto* copy = static_cast<int*>(zel_realloc(zel::EmptyBin(), 20));
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(static_cast<void*>(copy), zel::EmptyBin());
    EXPECT_EQ(copy[0], 0);
    EXPECT_EQ(copy[1], 1);
    EXPECT_EQ(copy[2], 0);  // only the 12 bytes up to the end of the block were copied
    zel_free(copy);
    EXPECT_EQ(reinterpret_cast<int*>(zel::EmptyBin())[1], 1);
}

TEST(Clones, TextsAndBins) {
    wchar_t* text = MCloneText(const_cast<wchar_t*>(L"abc"), 2);
    EXPECT_STREQ(text, L"ab");
    zel_free(text);
    // Null, empty or unconvertible input gives the shared empty constants.
    EXPECT_EQ(MCloneText(static_cast<wchar_t*>(nullptr)), zel::EmptyString());
    EXPECT_EQ(MCloneText(static_cast<wchar_t*>(nullptr), 3), zel::EmptyString());
    EXPECT_EQ(MCloneText(const_cast<wchar_t*>(L"x"), 0), zel::EmptyString());
    EXPECT_EQ(MCloneText(static_cast<char*>(nullptr)), zel::EmptyString());
    EXPECT_EQ(MCloneText(const_cast<char*>("")), zel::EmptyString());
    EXPECT_EQ(MCloneText(const_cast<char*>("ok\xff\xfe")), zel::EmptyString());  // not UTF-8
    EXPECT_EQ(MCloneZelText(static_cast<wchar_t*>(nullptr)), zel::EmptyText());
    EXPECT_EQ(MCloneZelText(static_cast<wchar_t*>(nullptr), 2), zel::EmptyText());
    EXPECT_EQ(MCloneZelText(const_cast<char*>("\xc3")), zel::EmptyText());
    EXPECT_EQ(MCloneZelTextToString(nullptr), zel::EmptyString());
    EXPECT_EQ(MCloneZelBin(static_cast<unsigned char*>(nullptr)), zel::EmptyBin());

    unsigned char* zt = MCloneZelText(const_cast<wchar_t*>(L"héllo"));
    EXPECT_EQ(reinterpret_cast<int*>(zt)[1], 5);
    EXPECT_STREQ(zel::TextChars(zt), L"héllo");
    wchar_t* plain = MCloneZelTextToString(zt);
    EXPECT_STREQ(plain, L"héllo");
    zel_free(zt);
    zel_free(plain);
    EXPECT_EQ(MCloneZelText(static_cast<unsigned char*>(nullptr)), zel::EmptyText());

    unsigned char* zeros = MCloneZelBin(nullptr, 4);
    EXPECT_EQ(MGetZelBinLength(zeros), 4);
    EXPECT_EQ(std::memcmp(zeros + 12, "\0\0\0\0", 4), 0);
    unsigned char* copy = MCloneZelBin(zeros);
    EXPECT_EQ(MGetZelBinLength(copy), 4);
    zel_free(zeros);
    zel_free(copy);
    EXPECT_EQ(MCloneZelBin(nullptr, 0), zel::EmptyBin());
}

TEST(Clones, ArraysCopyValuesButNotObjects) {
    int ints[2 + 1 + 3] = {9, 1, 3, 10, 20, 30};
    int* copy = MCloneArray(ints, DATATYPE_INT_ARRAY);
    EXPECT_EQ(copy[0], 0);
    EXPECT_EQ(copy[2], 3);
    EXPECT_EQ(copy[5], 30);
    zel_free(copy);

    int objects[2 + 2 + 4] = {0, 2, 2, 2, 1, 2, 3, 4};
    copy = MCloneArray(objects, DATATYPE_OBJECT_ARRAY);
    EXPECT_EQ(copy[1], 2);
    EXPECT_EQ(copy[3], 2);
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

    EXPECT_EQ(MCloneArray(nullptr, DATATYPE_INT_ARRAY), reinterpret_cast<int*>(zel::EmptyBin()));
    int empty[3] = {5, 1, 0};  // no elements: a copy of the header all the same
    for (DATATYPE_TYPE type : {DATATYPE_INT_ARRAY, DATATYPE_TEXT_ARRAY}) {
        copy = MCloneArray(empty, type);
        ASSERT_NE(copy, reinterpret_cast<int*>(zel::EmptyBin()));
        EXPECT_TRUE(copy[0] == 0 && copy[1] == 1 && copy[2] == 0);
        zel_free(copy);
    }
}

TEST(Clones, MultibyteText) {
    CMiniMem buffer;
    EXPECT_STREQ(GetMBSText(const_cast<wchar_t*>(L"abc"), buffer), "abc");
    EXPECT_GE(buffer.GetSize(), 16);
    CMiniMem empty;
    EXPECT_STREQ(GetMBSText(const_cast<wchar_t*>(L""), empty), "");
    EXPECT_STREQ(GetMBSText(nullptr, empty), "");
    EXPECT_EQ(empty.GetData(), nullptr);
    wchar_t lone[] = {L'a', wchar_t(0xD800), L'b', 0};  // a lone surrogate has no UTF-8 form
    EXPECT_STREQ(GetMBSText(lone, buffer), "");
}

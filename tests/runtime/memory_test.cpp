#include <gtest/gtest.h>

#include <cstring>

#include <zel/memory.h>
#include <zel/minimem.h>
#include <zel/values.h>

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

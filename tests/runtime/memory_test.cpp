#include <gtest/gtest.h>

#include <cstring>

#include "common/counting_runtime.h"
#include <zel/errors.h>
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

TEST(Memory, InjectedFailureReturnsNull) {
    zel::FailAllocationAfter(2);
    void* first = zel_malloc(8);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(zel_malloc(8), nullptr);
    void* third = zel_malloc(8);
    EXPECT_NE(third, nullptr);
    zel_free(first);
    zel_free(third);
}

TEST(Memory, ExhaustionWithoutRuntimeIsFatal) {
    EXPECT_EXIT(MReportError(const_cast<wchar_t*>(L""), -20001, const_cast<wchar_t*>(L"分配内存失败")),
                testing::ExitedWithCode(255), "");
}

TEST(Clones, TextsAndBins) {
    wchar_t* text = MCloneText(const_cast<wchar_t*>(L"abc"), 2);
    EXPECT_STREQ(text, L"ab");
    zel_free(text);
    EXPECT_EQ(MCloneText(static_cast<wchar_t*>(nullptr)), zel::EmptyString());
    EXPECT_EQ(MCloneText(const_cast<wchar_t*>(L"x"), 0), zel::EmptyString());
    EXPECT_EQ(MCloneText(static_cast<char*>(nullptr)), zel::EmptyString());

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
}

TEST(Clones, MultibyteText) {
    CMiniMem buffer;
    EXPECT_STREQ(GetMBSText(const_cast<wchar_t*>(L"abc"), buffer), "abc");
    EXPECT_GE(buffer.GetSize(), 16);
    CMiniMem empty;
    EXPECT_STREQ(GetMBSText(const_cast<wchar_t*>(L""), empty), "");
    EXPECT_EQ(empty.GetData(), nullptr);
}

TEST(Wrappers, VariablesShareAndReleaseThroughTheRuntime) {
    CountingRuntime runtime;
    int* var = nullptr;
    SetCloneIntoArrayVar(&var, nullptr);
    EXPECT_EQ(var, reinterpret_cast<int*>(zel::EmptyBin()));
    unsigned char* text = nullptr;
    SetCloneIntoTextVar(&text, nullptr);
    EXPECT_EQ(text, zel::EmptyText());
    ZelObject* obj = nullptr;
    ZelObject other{&other, nullptr, nullptr};
    SetCloneIntoObjectVar(&obj, &other);
    EXPECT_EQ(obj, &other);
    EXPECT_EQ(runtime.Net(&other), 1);
    SetCloneIntoObjectVar(&obj, nullptr);
    EXPECT_EQ(obj, nullptr);
    EXPECT_EQ(runtime.Net(&other), 0);
    {
        ZelDataWrapper wrapper(&other);  // adopts without a reference ...
        wrapper.AddRef();
        EXPECT_EQ(runtime.Net(&other), 1);
    }
    EXPECT_EQ(runtime.Net(&other), 0);  // ... and releases when it dies
    {
        ZelTextWrapper made(const_cast<wchar_t*>(L"甲"));
        EXPECT_STREQ(made.GetText(), L"甲");
        EXPECT_EQ(runtime.LiveValues(), 1);
    }
    EXPECT_EQ(runtime.LiveValues(), 0);
}

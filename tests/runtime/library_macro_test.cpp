// The record ZEL_LIBRARY makes: every word of the 88 bytes, and its version.
#include <gtest/gtest.h>

#include <cstring>

#include <zel/library.h>
#include <zel/loader.h>

namespace {

TEST(LibraryMacro, RecordWordsOfTools) {
    const ZelLibInfo& lib = g_zellib_info;
    EXPECT_EQ(lib.flags, 0u);
    EXPECT_STREQ(lib.text, L"");
    EXPECT_EQ(lib.fixed20, 1);
    EXPECT_EQ(lib.fixed24, 0);
    EXPECT_EQ(lib.fixed28, 7);
    EXPECT_EQ(lib.version, 1.0);
    EXPECT_EQ(lib.fixed40, 1);
    for (wchar_t* t : lib.texts44) EXPECT_STREQ(t, L"");
    for (wchar_t* t : lib.texts68) EXPECT_STREQ(t, L"");
    EXPECT_EQ(lib.reserved64, 0);
    for (int w : lib.reserved76) EXPECT_EQ(w, 0);
    EXPECT_EQ(lib.enumClasses, &zel::EnumClassRecords);
    EXPECT_EQ(lib.findClass, &zel::FindClassRecord);
}

TEST(LibraryMacro, VersionWrittenAsMajorDotMinor) {
    static_assert(zel::RecordVersion(1, 0) == 1.0);
    EXPECT_DOUBLE_EQ(zel::RecordVersion(1, 5), 1.5);
    EXPECT_DOUBLE_EQ(zel::RecordVersion(1, 12), 1.12);
    EXPECT_DOUBLE_EQ(zel::RecordVersion(2, 10), 2.1);
    EXPECT_EQ(ZEL_VERSION_NUMBER, zel::RecordVersion(ZEL_VERSION_MAJOR, ZEL_VERSION_MINOR));
    EXPECT_STREQ(ZEL_VERSION_STRING, "1.0.0");
}

}  // namespace

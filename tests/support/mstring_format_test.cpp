// Strings grown from nothing, suffixes that differ only in the end, and
// formats that the C library rejects or that run out of memory midway.
#include <gtest/gtest.h>

#include <string>

#include <zel/memory.h>
#include <zel/mstring.h>

namespace {

TEST(MStringFormat, AddingToEmptyAndAddingNothing) {
    CMString s;
    s.AddText(L"", 3);
    s.AddText(nullptr);
    EXPECT_TRUE(s.IsEmpty() && s.GetText()[0] == 0);
    s.AddText(L"abcdef", 3);  // an empty string takes the text as its own
    s.AddText(L"XY", 0);
    EXPECT_EQ(s, L"abc");
    EXPECT_TRUE(s.IEndOf(L"BC") && !s.IEndOf(L"BD") && !s.IEndOf(L"xBC"));
}

TEST(MStringFormat, RejectedAndEmptyResultsLeaveTheStringEmpty) {
    for (const wchar_t* format : {L"abc%", L""}) {
        CMString s(L"old");
        s.Format(format);
        EXPECT_TRUE(s.IsEmpty()) << format;
    }
}

// Whichever allocation fails, the string holds either its old text or the
// whole new one.
TEST(MStringFormat, FailedAllocationKeepsTheOldText) {
    bool sawOld = false, sawNew = false;
    for (int failing = 1; failing <= 6; ++failing) {
        CMString s(L"old");
        zel::FailAllocationAfter(failing);
        s.Format(L"%d-%d", 12, 34);
        zel::FailAllocationAfter(0);
        EXPECT_TRUE(s == L"old" || s == L"12-34") << failing << ": " << s.GetText();
        sawOld |= s == L"old";
        sawNew |= s == L"12-34";
    }
    EXPECT_TRUE(sawOld && sawNew);
}

}  // namespace

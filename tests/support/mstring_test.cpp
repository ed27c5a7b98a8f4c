// The wide string and the string array: edits from their own text, bounds,
// formats that fail, and positions checked before anything moves (the sweep
// in tests/sweep fails each of their allocations).
#include <gtest/gtest.h>

#include <string>

#include <zel/memory.h>
#include <zel/values.h>
#include <zel/mstring.h>
#include <zel/textfuncs.h>

TEST(MString, EditsFromItsOwnTextAndBounds) {
    CMString s;
    s.AddText(L"abcdef", 3);  // an empty string takes the text as its own
    EXPECT_EQ(s, L"abc");
    s.SetText(L"hello world", 5);
    s += L" 中文";
    s.AddChar(0);  // would cut the text: ignored
    s += s;
    EXPECT_EQ(std::wstring(s), L"hello 中文hello 中文");
    EXPECT_EQ(s.GetHash(), GetTextHash(L"hello 中文hello 中文"));
    s.SetText(s.GetText() + 6, 2);
    EXPECT_EQ(s, L"中文");
    EXPECT_TRUE(s.Left(0).IsEmpty() && s.Right(-1).IsEmpty() && s.Left(9) == s && s.Right(1) == L"文");

    std::wstring longText(1000, L'x');  // %s takes wide texts, %S narrow ones
    s.Format(L"%s=%d, %S [%s]", L"宽", 42, "narrow", longText.c_str());
    EXPECT_EQ(s, (L"宽=42, narrow [" + longText + L"]").c_str());
    zel_free(s.Detach());
    EXPECT_EQ(s.Detach(), zel::EmptyString());  // an empty string hands over the shared constant
}

TEST(MString, CaseTrimAndSuffixes) {
    CMString s(L" \t\n Ab工Cd \r\n ");
    s.TrimLeft();  // white space at one side only
    EXPECT_EQ(s, L"Ab工Cd \r\n ");
    s.TrimRight();
    s.MakeUpper();
    EXPECT_EQ(s, L"AB工CD");
    s.MakeLower();
    EXPECT_TRUE(s.EndOf(L"cd") && !s.EndOf(L"CD") && s.IEndOf(L"工CD") && s.EndOf(L""));
    EXPECT_FALSE(s.EndOf(L"xab工cd"));  // longer than the text
    CMString narrow("abc");
    EXPECT_TRUE(narrow < CMString(L"abd") && narrow != CMString(L"ab"));
}

TEST(MString, RejectedAndEmptyFormatsLeaveTheStringEmpty) {
    for (const wchar_t* format : {L"abc%", L""}) {
        CMString s(L"old");
        s.Format(format);
        EXPECT_TRUE(s.IsEmpty()) << format;
    }
}

TEST(MStringArray, PositionsAreCheckedBeforeAnythingMoves) {
    CMStringArray array;
    wchar_t own[] = L"own";
    EXPECT_TRUE(array.Add(L"b") == 0 && array.InsertAt(0, L"a") && array.Add_NoClone(own) == 2 && array.InsertAt(3, L"c"));
    EXPECT_FALSE(array.InsertAt(5, L"gap") || array.InsertAt(-1, L"x"));  // no holes of stray pointers
    EXPECT_TRUE(array[2] == own && !array.GetAt(4) && !array.GetAt(-1));
    EXPECT_TRUE(array.Find(L"c") == 3 && array.Find(L"x") == -1);
    EXPECT_TRUE(array.RemoveAt_NotDelete(2) && !array.RemoveAt(3) && !array.RemoveAt(-1));  // keeps the caller's text
    EXPECT_TRUE(array.RemoveAt(1));
    EXPECT_EQ(std::wstring(array[0]) + array[1], L"ac");
    array.RemoveAll();
    EXPECT_EQ(array.GetSize(), 0);
}

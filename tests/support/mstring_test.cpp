// The wide string and the string array: edits from their own text, bounds,
// formats that fail, and positions checked before anything moves.
#include <gtest/gtest.h>

#include <string>

#include <zel/memory.h>
#include <zel/mstring.h>
#include <zel/textfuncs.h>
#include <zel/values.h>

TEST(MString, EditsFromItsOwnTextAndBounds) {
    CMString s;
    s.AddText(L"abcdef", 3);  // an empty string takes the text as its own
    s.AddText(L"XY", 0);
    s += L" 中文";
    s.AddChar(0);  // would cut the text: ignored
    s += s;
    EXPECT_EQ(std::wstring(s), L"abc 中文abc 中文");
    EXPECT_EQ(s.GetHash(), GetTextHash(L"abc 中文abc 中文"));
    s.SetText(s.GetText() + 4, 2);
    EXPECT_EQ(s, L"中文");
    EXPECT_TRUE(s.Left(0).IsEmpty() && s.Right(-1).IsEmpty() && s.Left(9) == s && s.Right(9) == s && s.Right(1) == L"文");

    std::wstring longText(1000, L'x');  // %s takes wide texts, %S narrow ones
    s.Format(L"%s=%d, %S [%s]", L"宽", 42, "narrow", longText.c_str());
    EXPECT_EQ(s, (L"宽=42, narrow [" + longText + L"]").c_str());
    zel_free(s.Detach());
    for (const wchar_t* format : {L"abc%", L""}) {  // a format the C library rejects leaves the string empty
        s.Format(format);
        EXPECT_TRUE(s.IsEmpty());
    }
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
    EXPECT_TRUE(s.EndOf(L"cd") && !s.EndOf(L"CD") && s.IEndOf(L"工CD") && !s.EndOf(L"xab工cd") && !s.IEndOf(L"xAB工CD"));
    CMString copy(s), blank(L" \t ");
    EXPECT_TRUE(copy == s && CMString("abc") < CMString(L"abd"));
    blank.TrimLeft();
    copy = L" ";
    copy.TrimRight();
    EXPECT_TRUE(blank.IsEmpty() && copy.IsEmpty());
}

TEST(MStringArray, PositionsAreCheckedBeforeAnythingMoves) {
    CMStringArray array;
    wchar_t own[] = L"own";
    EXPECT_TRUE(array.Add(L"b") == 0 && array.InsertAt(0, L"a") && array.Add_NoClone(own) == 2);
    EXPECT_FALSE(array.InsertAt(4, L"gap") || array.InsertAt(-1, L"x"));  // no holes of stray pointers
    EXPECT_TRUE(array[2] == own && !array.GetAt(3) && !array.GetAt(-1) && array.Find(L"b") == 1 && array.Find(L"x") == -1);
    EXPECT_TRUE(array.RemoveAt_NotDelete(2) && !array.RemoveAt(2) && !array.RemoveAt(-1));  // keeps the caller's text
    EXPECT_EQ(std::wstring(array[0]) + array[1], L"ab");
    array.RemoveAll();
}

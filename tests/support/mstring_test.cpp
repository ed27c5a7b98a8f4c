#include <gtest/gtest.h>

#include <string>

#include <zel/memory.h>
#include <zel/values.h>
#include <zel/mstring.h>
#include <zel/textfuncs.h>

TEST(MString, EditsFromItsOwnTextAndBounds) {
    CMString s;
    s.SetText(L"hello world", 5);
    s += L" 中文";
    s.AddChar(0);  // would cut the text: ignored
    s += s;
    EXPECT_EQ(std::wstring(s), L"hello 中文hello 中文");
    EXPECT_EQ(s.GetHash(), GetTextHash(L"hello 中文hello 中文"));
    s.SetText(s.GetText() + 6, 2);
    EXPECT_EQ(s, L"中文");
    EXPECT_TRUE(s.Left(0).IsEmpty() && s.Right(-1).IsEmpty() && s.Left(9) == s && s.Right(9) == s);
    EXPECT_FALSE(s.EndOf(L"长中文") || s.IEndOf(L"长中文"));

    std::wstring longText(1000, L'x');  // %s takes wide texts, %S narrow ones
    s.Format(L"%s=%d, %S [%s]", L"宽", 42, "narrow", longText.c_str());
    EXPECT_EQ(s, (L"宽=42, narrow [" + longText + L"]").c_str());
    zel_free(s.Detach());
    EXPECT_EQ(s.Detach(), zel::EmptyString());  // an empty string hands over the shared constant
}

TEST(MStringArray, ClonesAndRemoves) {
    CMStringArray array;
    wchar_t own[] = L"own";
    EXPECT_TRUE(array.Add(L"one") == 0 && array.Add_NoClone(own) == 1 && array.InsertAt(2, L"end"));
    EXPECT_FALSE(array.InsertAt(9, L"gap"));  // no holes of stray pointers
    EXPECT_TRUE(array[1] == own && !array.GetAt(3) && !array.GetAt(-1));
    EXPECT_TRUE(array.RemoveAt_NotDelete(1) && !array.RemoveAt(5));  // keeps the caller's text
    EXPECT_EQ(std::wstring(array[0]) + array[1], L"oneend");
    array.RemoveAll();
}

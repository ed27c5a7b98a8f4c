#include <gtest/gtest.h>

#include <string>

#include "runtime/memory.h"
#include "runtime/values.h"
#include "support/mstring.h"
#include "support/textfuncs.h"

TEST(MString, BuildAndEdit) {
    CMString s;
    EXPECT_TRUE(s.IsEmpty());
    EXPECT_EQ(s.GetText(), zel::EmptyString());
    s.SetText(L"hello world", 5);
    s += L' ';
    s += L"中文";
    s.AddText(L"xyz", 1);
    s.AddChar(0);  // would cut the text: ignored
    EXPECT_EQ(s, L"hello 中文x");
    EXPECT_EQ(s.GetLength(), 9);
    EXPECT_EQ(s.GetHash(), GetTextHash(L"hello 中文x"));

    s += s;  // appending itself
    EXPECT_EQ(std::wstring(s), L"hello 中文xhello 中文x");
    s.SetText(s.GetText() + 6, 2);  // from its own text
    EXPECT_EQ(s, L"中文");
    s.SetText("narrow");
    EXPECT_EQ(s, L"narrow");
    s.SetText(static_cast<const wchar_t*>(nullptr));
    EXPECT_TRUE(s.IsEmpty());
}

TEST(MString, PiecesCaseAndSuffixes) {
    CMString s(L"  Mixed Case\t ");
    s.TrimLeft();
    s.TrimRight();
    EXPECT_EQ(s, L"Mixed Case");
    EXPECT_EQ(s.Left(5), L"Mixed");
    EXPECT_EQ(s.Right(4), L"Case");
    EXPECT_EQ(s.Left(99), s);
    EXPECT_EQ(s.Right(99), s);
    EXPECT_TRUE(s.Left(0).IsEmpty());
    EXPECT_TRUE(s.Right(-1).IsEmpty());
    EXPECT_TRUE(s.EndOf(L"Case"));
    EXPECT_FALSE(s.EndOf(L"case"));
    EXPECT_TRUE(s.IEndOf(L"CASE"));
    EXPECT_FALSE(s.EndOf(L"Longer than Mixed Case"));
    s.MakeUpper();
    EXPECT_EQ(s, L"MIXED CASE");
    s.MakeLower();
    EXPECT_EQ(s, L"mixed case");

    CMString a(L"a"), b(L"b"), copy(a);
    EXPECT_TRUE(a < b);
    EXPECT_TRUE(b > L"a");
    EXPECT_TRUE(copy == a);
    EXPECT_TRUE(copy != b);
}

TEST(MString, FormatTakesWideStringsForPercentS) {
    CMString s;
    s.Format(L"%s=%d, %S", L"宽", 42, "narrow");
    EXPECT_EQ(s, L"宽=42, narrow");
    std::wstring longText(1000, L'x');
    s.Format(L"[%s]", longText.c_str());
    EXPECT_EQ(s.GetLength(), 1002);
    s.Format(L"");
    EXPECT_TRUE(s.IsEmpty());
}

TEST(MString, DetachHandsOverTheTextOrTheConstant) {
    CMString s(L"abc");
    wchar_t* text = s.Detach();
    EXPECT_EQ(std::wstring(text), L"abc");
    EXPECT_TRUE(s.IsEmpty());
    zel_free(text);
    EXPECT_EQ(s.Detach(), zel::EmptyString());
}

TEST(MStringArray, ClonesAndRemoves) {
    CMStringArray array;
    wchar_t own[] = L"own";
    EXPECT_EQ(array.Add(L"one"), 0);
    EXPECT_EQ(array.Add_NoClone(own), 1);
    EXPECT_TRUE(array.InsertAt(0, L"zero"));
    EXPECT_TRUE(array.InsertAt(3, L"end"));
    EXPECT_FALSE(array.InsertAt(9, L"gap"));  // no holes of stray pointers
    ASSERT_EQ(array.GetSize(), 4);
    EXPECT_EQ(std::wstring(array[0]), L"zero");
    EXPECT_EQ(array[2], own);
    EXPECT_EQ(array.GetAt(4), nullptr);
    EXPECT_EQ(array.GetAt(-1), nullptr);
    EXPECT_EQ(array.Find(L"end"), 3);
    EXPECT_EQ(array.Find(L"none"), -1);

    EXPECT_TRUE(array.RemoveAt_NotDelete(2));  // the caller's own text
    EXPECT_TRUE(array.RemoveAt(0));
    EXPECT_FALSE(array.RemoveAt(5));
    EXPECT_EQ(array.GetSize(), 2);
    EXPECT_EQ(std::wstring(array[0]), L"one");
    array.RemoveAll();
    EXPECT_EQ(array.GetSize(), 0);
}

// Edges of the wide strings, the string array and the byte buffer that the
// other suites leave out: case and suffix tests, positions at and past the
// ends, refusals that must leave everything as it was, and file writes.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <string>

#include <zel/memory.h>
#include <zel/minimem.h>
#include <zel/mstring.h>
#include <zel/textfuncs.h>

namespace {
std::string Bytes(const CMiniMem& m) { return std::string(reinterpret_cast<const char*>(m.GetData()), m.GetSize()); }
}  // namespace

TEST(StringEdges, CaseTrimSuffixesAndEnds) {
    CMString s(L" \t\n Ab工Cd \r\n ");
    s.TrimLeft();  // white space at one side only
    EXPECT_EQ(s, L"Ab工Cd \r\n ");
    s.TrimRight();
    s.MakeUpper();
    EXPECT_EQ(s, L"AB工CD");
    s.MakeLower();
    EXPECT_EQ(s, L"ab工cd");
    EXPECT_TRUE(s.EndOf(L"cd") && !s.EndOf(L"CD") && s.IEndOf(L"工CD"));
    EXPECT_FALSE(s.EndOf(L"xab工cd") || s.IEndOf(L"xAB工CD"));  // longer than the text
    EXPECT_TRUE(s.EndOf(L""));
    EXPECT_EQ(s.Right(2), L"cd");
    EXPECT_EQ(s.Right(99), L"ab工cd");
    EXPECT_TRUE(s.Right(0).IsEmpty() && s.Left(-1).IsEmpty());
    CMString copy(s);
    copy += copy;  // appending itself
    EXPECT_EQ(copy, L"ab工cdab工cd");
    copy.AddChar(0);  // a zero would cut the text: not added
    EXPECT_EQ(copy.GetLength(), 10);
    CMString blank(L" \t ");
    blank.TrimRight();
    CMString empty;
    empty.TrimLeft();
    EXPECT_TRUE(blank.IsEmpty() && empty.IsEmpty());
    CMString narrow("abc");
    EXPECT_EQ(narrow, L"abc");
    EXPECT_TRUE(narrow < CMString(L"abd") && narrow != CMString(L"ab"));
}

TEST(StringEdges, ArrayPositionsAreCheckedBeforeAnythingMoves) {
    CMStringArray a;
    EXPECT_EQ(a.Add(L"b"), 0);
    EXPECT_TRUE(a.InsertAt(0, L"a"));
    EXPECT_TRUE(a.InsertAt(2, L"c"));   // at the end
    EXPECT_FALSE(a.InsertAt(4, L"x"));  // past it: the gap would hold no texts
    EXPECT_FALSE(a.InsertAt(-1, L"x"));
    ASSERT_EQ(a.GetSize(), 3);
    EXPECT_EQ(a.Find(L"c"), 2);
    EXPECT_EQ(a.Find(L"x"), -1);
    EXPECT_FALSE(a.RemoveAt(3) || a.RemoveAt(-1));
    EXPECT_TRUE(a.RemoveAt(1));
    EXPECT_STREQ(a.GetAt(1), L"c");
    EXPECT_EQ(a.GetAt(2), nullptr);
    wchar_t* kept = a.GetAt(0);
    EXPECT_TRUE(a.RemoveAt_NotDelete(0));  // the text stays the caller's
    EXPECT_STREQ(kept, L"a");
    zel_free(kept);
    a.RemoveAll();
    EXPECT_EQ(a.GetSize(), 0);
}

TEST(StringEdges, BufferRefusalsLeaveTheBytesAsTheyWere) {
    CMiniMem m;
    ASSERT_TRUE(m.Append(const_cast<char*>("abcdef"), 6));
    EXPECT_EQ(m.Insert(-1, const_cast<char*>("x"), 1), 0);
    EXPECT_EQ(m.Insert(0, const_cast<char*>("x"), -1), 0);
    EXPECT_EQ(m.Remove(6, 1), 0);  // at the end: nothing to remove
    EXPECT_EQ(m.Remove(-2, 1), 0);
    EXPECT_EQ(m.Replace(-1, 1, nullptr, 0), 0);
    EXPECT_EQ(m.Append(nullptr, -1), 0);
    EXPECT_EQ(Bytes(m), "abcdef");

    // Past the end, an insert leaves the bytes between as they are: only the size is checked.
    EXPECT_EQ(m.Insert(8, const_cast<char*>("yz"), 2), 1);
    EXPECT_EQ(m.GetSize(), 10);
    EXPECT_EQ(Bytes(m).substr(8), "yz");
    EXPECT_EQ(m.Remove(4, 100), 1);  // a count past the end stops there
    EXPECT_EQ(Bytes(m), "abcd");
    EXPECT_EQ(m.Replace(1, 2, reinterpret_cast<unsigned char*>(const_cast<char*>("XYZ")), 3), 1);
    EXPECT_EQ(Bytes(m), "aXYZd");
    EXPECT_EQ(m.Replace(1, 3, reinterpret_cast<unsigned char*>(const_cast<char*>("Q")), 1), 1);
    EXPECT_EQ(Bytes(m), "aQd");
    EXPECT_EQ(m.Replace(1, 1, nullptr, 0), 1);  // nothing in its place: a removal
    EXPECT_EQ(Bytes(m), "ad");
    // A source inside the buffer itself is copied before the buffer moves.
    EXPECT_EQ(m.Insert(1, m.GetData(), 2), 1);
    EXPECT_EQ(Bytes(m), "aadd");
    EXPECT_EQ(m.Remove(-1, 3), 1);  // -1: from the end
    EXPECT_EQ(Bytes(m), "a");
    EXPECT_EQ(m.Remove(-1, 5), 1);
    EXPECT_EQ(m.GetSize(), 0);
}

TEST(StringEdges, BufferFileWritesAndReads) {
    char pattern[] = "/tmp/zel_edges_XXXXXX";
    int fd = mkstemp(pattern);
    ASSERT_GE(fd, 0);
    close(fd);
    std::wstring path(pattern, pattern + sizeof pattern - 1);
    CMiniMem m;
    m.Append(const_cast<char*>("hello"), 5);
    EXPECT_EQ(m.WriteIntoFile(path.data(), 3), 1);
    CMiniMem back;
    EXPECT_EQ(back.ReadFromFile(path.data(), -1), 3);
    EXPECT_EQ(Bytes(back), "hel");
    std::remove(pattern);
    EXPECT_EQ(m.WriteIntoELFFile(path.data(), -1), 1);
    EXPECT_EQ(access(pattern, X_OK), 0);  // made executable
    EXPECT_EQ(back.ReadFromFile(path.data(), 2), 2);
    EXPECT_EQ(Bytes(back), "he");
    EXPECT_EQ(back.ReadFromFile(path.data(), 0), 0);
    EXPECT_EQ(back.GetSize(), 0);
    std::remove(pattern);

    wchar_t missing[] = L"/nonexistent-dir/file";
    EXPECT_EQ(back.ReadFromFile(missing, -1), -1);
    EXPECT_EQ(m.WriteIntoFile(missing, -1), 0);
    EXPECT_EQ(m.WriteIntoELFFile(missing, -1), 0);
    EXPECT_EQ(m.WriteIntoFile(nullptr, -1), 0);
    EXPECT_EQ(back.ReadFromFile(nullptr, -1), -1);
}

TEST(StringEdges, TextFunctionsOnTheirBoundaries) {
    const wchar_t* hay = L"aaab";
    EXPECT_EQ(mystrstr(hay, L"aab"), hay + 1);  // a partial match first
    EXPECT_EQ(mystrstr(hay, L""), hay);
    EXPECT_EQ(mystrstr(nullptr, L"a"), nullptr);
    EXPECT_EQ(mystrrchr(nullptr, L'a'), nullptr);
    EXPECT_EQ(mystrchr(hay, 0), hay + 4);  // the terminator is part of the text
    wchar_t buf[8] = L"ab";
    EXPECT_EQ(mystrcat(buf, nullptr), buf);
    EXPECT_STREQ(mystrcat(buf, L"cd"), L"abcd");
    EXPECT_EQ(mystrcpy(nullptr, L"x"), nullptr);
    EXPECT_EQ(mystrcat(nullptr, L"x"), nullptr);
    EXPECT_STREQ(mystrcpy(buf, nullptr), L"");
    EXPECT_EQ(mystrnicmp(L"ABc", L"abD", 2), 0);
    EXPECT_LT(mystrnicmp(L"ABc", L"abD", 3), 0);

    // Names: letters, '_' and anything beyond ASCII first; digits after.
    for (const wchar_t* name : {L"a", L"Z9", L"_x", L"名字1", L"aZ_09"}) EXPECT_TRUE(IsValidName(name)) << name;
    for (const wchar_t* name : {L"", L"9a", L"a-b", L"a b", L"$"}) EXPECT_FALSE(IsValidName(name)) << name;
    EXPECT_FALSE(IsValidName(nullptr));

    CMiniMem out;
    EXPECT_STREQ(ConvertEscapeSequences(L"\\a\\b\\f\\v\\'\\\"\\xG\\u4e2D\\", out), L"\a\b\f\v'\"\\xG中\\");
    EXPECT_STREQ(ConvertEscapeSequences(L"\\xaBcD", out), L"\xabcd");

    CMString value(L"old");
    EXPECT_FALSE(GetExtendPropertyValue(L"a=1", L"", value));
    EXPECT_FALSE(GetExtendPropertyValue(nullptr, L"a", value));
    EXPECT_TRUE(GetExtendPropertyValue(L"x=1; a ;b=2", L"a", value));  // present without '='
    EXPECT_TRUE(value.IsEmpty());
}

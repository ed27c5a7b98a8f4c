// The value classes as tests/scripts/values_*.zs cannot show them: beside an
// object without its state, at the edges of 32-bit arithmetic, what they hand
// to the runtime and take back, and rectangles related edge by edge.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>

#include "classes/geometry.h"
#include "common/test_object.h"
#include "common/counting_runtime.h"
#include "owned_values.h"

extern "C" {
extern tagTBaseTypeInfo g_info_Color, g_info_Font, g_info_Size, g_info_Rect, g_info_BinClass;
void Color_Init(ZelObject*), Color_Free(ZelObject*), Font_Init(ZelObject*), Font_Free(ZelObject*);
void Font_SetName(ZelObject*, unsigned char*), Font_FromText(ZelObject*, unsigned char*);
int Color_Compare(ZelObject*, ZelObject*), Font_Compare(ZelObject*, ZelObject*), Font_SaveToStream(ZelObject*, ZelObject*);
int Font_GetWeight(ZelObject*), Size_Equals(ZelObject*, ZelObject*);
unsigned char* Font_ToText(ZelObject*);
void Rect_Init(ZelObject*), Rect_Free(ZelObject*), Rect_Set(ZelObject*, int, int, int, int);
void Rect_Union(ZelObject*, ZelObject*), Rect_Intersect(ZelObject*, ZelObject*), Rect_Normalize(ZelObject*);
void* Rect_Clone(ZelObject*);
int Rect_GetWidth(ZelObject*), Rect_GetCenterX(ZelObject*), Rect_IsEmpty(ZelObject*), Rect_Equals(ZelObject*, ZelObject*);
int Rect_Intersects(ZelObject*, ZelObject*), Rect_ContainsRect(ZelObject*, ZelObject*);
void BinClass_Init(ZelObject*), BinClass_Free(ZelObject*), BinClass_SetValue(ZelObject*, unsigned char*);
unsigned char* BinClass_GetValue(ZelObject*);
}

namespace {
struct Rect : TestObject {
    Rect(int l = 0, int t = 0, int r = 0, int b = 0) : TestObject(&g_info_Rect, Rect_Init, Rect_Free) {
        Rect_Set(get(), l, t, r, b);
    }
    bool Is(int l, int t, int r, int b) {
        RectState* s = _Rect_GetData(get());
        return s->left == l && s->top == t && s->right == r && s->bottom == b;
    }
};
struct Font : TestObject {
    explicit Font(const wchar_t* text) : TestObject(&g_info_Font, Font_Init, Font_Free) { Font_FromText(get(), Text(text)); }
};
}  // namespace

// A missing other object (scripts may pass null) or one without its state
// leaves the receiver alone, or empties it where the result is "in common".
TEST(Values, AMissingOrStatelessOtherIsNeutral) {
    TestObject bare(&g_info_Rect, Rect_Init), color(&g_info_Color, Color_Init, Color_Free),
        font(&g_info_Font, Font_Init, Font_Free), size(&g_info_Size);
    Rect_Free(bare);
    Rect r(0, 0, 2, 2), reversed(5, 5, 1, 1);
    Rect_Union(r, nullptr);
    Rect_Union(r, bare);
    Rect_Union(r, reversed);
    EXPECT_TRUE(r.Is(0, 0, 2, 2));
    EXPECT_FALSE(Rect_Intersects(r, bare) || Rect_Equals(r, bare));
    Rect_Intersect(r, nullptr);
    EXPECT_TRUE(r.Is(0, 0, 0, 0));
    EXPECT_FALSE(Rect_Equals(r, Rect(5, 5, 5, 5))) << "both empty, elsewhere";
    EXPECT_EQ(Color_Compare(color, nullptr), 0);
    EXPECT_EQ(Font_Compare(font, nullptr), -1);
    EXPECT_FALSE(Size_Equals(size, nullptr));
}

TEST(Values, RectanglesAtTheEdgesOfTheIntegersAndTheirClones) {
    Rect r(INT_MIN, 0, INT_MAX, 1), s(INT_MAX - 1, 0, INT_MAX, 1);
    EXPECT_EQ(Rect_GetCenterX(r), 0);
    EXPECT_EQ(Rect_GetWidth(r), -1) << "wraps";
    EXPECT_FALSE(Rect_IsEmpty(r));
    EXPECT_EQ(Rect_GetCenterX(s), INT_MAX - 1);

    Rect a(1, 2, 3, 4), b;
    auto* copy = static_cast<RectState*>(Rect_Clone(a));
    delete _Rect_GetData(b);
    b.word(1, 0) = copy;  // as the runtime installs the clone's state
    copy->left = 0;
    EXPECT_TRUE(a.Is(1, 2, 3, 4) && b.Is(0, 2, 3, 4));
}

TEST(Values, FontTextsNeverOverrunAndTemporariesGoBack) {
    CountingRuntime runtime;
    TestObject font(&g_info_Font, Font_Init, Font_Free);
    std::wstring name(3000, L'字');
    Font_SetName(font, Text(name.c_str()));
    unsigned char* text = Font_ToText(font);
    EXPECT_EQ(zel::TextChars(text), name + L", 0, 0, 0, 90, 0, 90");
    zel::Release(text);  // as the runtime drops what it was handed
    Font_FromText(font, Text(L"Mono, 1"));
    EXPECT_EQ(Font_SaveToStream(font, nullptr), 1);
    EXPECT_EQ(runtime.LiveValues(), 0);
}

TEST(Values, TheByteSetBoxKeepsItsOwnCopy) {
    TestObject bin(&g_info_BinClass, BinClass_Init, BinClass_Free);
    unsigned char* first = MCloneZelBin(const_cast<char*>("abc"), 3);
    BinClass_SetValue(bin, first);
    std::memset(MGetZelBinData(first), 'x', 3);
    zel_free(first);
    Owned read{BinClass_GetValue(bin)};
    EXPECT_NE(read.p, bin.word(1, 0)) << "a new byte set, not the held block";
    EXPECT_EQ(std::memcmp(MGetZelBinData(read.p), "abc", 3), 0);
    int bogus[3] = {0, 1, -5};
    BinClass_SetValue(bin, reinterpret_cast<unsigned char*>(bogus));  // a negative length is ignored
    EXPECT_EQ(MGetZelBinLength(static_cast<unsigned char*>(bin.word(1, 0))), 3);
}

// The base is (0, 0)-(10, 10); each case moves edges of the other rectangle.
TEST(Values, RectangleRelationsEdgeByEdge) {
    struct Case {
        RectState other;
        bool intersects, contains, equals;
    } cases[] = {
        {{0, 0, 10, 10}, true, true, true},
        {{-1, 0, 10, 10}, true, false, false},  // left outside
        {{0, -1, 10, 10}, true, false, false},  // top outside
        {{0, 0, 11, 10}, true, false, false},   // right outside
        {{0, 0, 10, 9}, true, true, false},     // only the bottom differs
        {{2, 10, 8, 20}, false, false, false},  // beside it vertically
        {{10, 2, 20, 8}, false, false, false},  // beside it horizontally
        {{2, 5, 8, 4}, false, false, false},    // empty by its height alone
    };
    for (const Case& c : cases) {
        Rect base(0, 0, 10, 10), other(c.other.left, c.other.top, c.other.right, c.other.bottom);
        std::string where = std::to_string(c.other.left) + "," + std::to_string(c.other.top) + "," +
                            std::to_string(c.other.right) + "," + std::to_string(c.other.bottom);
        EXPECT_EQ(bool(Rect_Intersects(base, other)), c.intersects) << where;
        EXPECT_EQ(bool(Rect_ContainsRect(base, other)), c.contains) << where;
        EXPECT_EQ(bool(Rect_Equals(base, other)), c.equals) << where;
        Rect_Intersect(other, base);  // an empty other stays empty, the rest is clipped
        EXPECT_EQ(Rect_IsEmpty(other), !c.intersects) << where;
    }
}

TEST(Values, NormalizeSwapsOnlyReversedPairs) {
    Rect across(3, 2, 1, 4), down(1, 4, 3, 2);
    Rect_Normalize(across);
    Rect_Normalize(down);
    EXPECT_TRUE(across.Is(1, 2, 3, 4) && down.Is(1, 2, 3, 4));
}

// Fonts compare as 0 only when their names differ and all six attributes
// agree; one differing attribute, whichever, gives -1.
TEST(Values, FontsDifferByAnyOneAttribute) {
    CountingRuntime runtime;  // the runtime takes back the items' texts
    Font base(L"宋体, 1, 2, 3, 4, 5, 6");
    const wchar_t* differing[] = {L"黑体, 9, 2, 3, 4, 5, 6", L"黑体, 1, 9, 3, 4, 5, 6", L"黑体, 1, 2, 9, 4, 5, 6",
                                  L"黑体, 1, 2, 3, 9, 5, 6", L"黑体, 1, 2, 3, 4, 9, 6", L"黑体, 1, 2, 3, 4, 5, 9"};
    for (const wchar_t* text : differing) EXPECT_EQ(Font_Compare(base, Font(text)), -1) << text;
    EXPECT_EQ(Font_GetWeight(Font(L"楷体, 1, 2, 3, 4, 5, 6, 77, 88")), 6) << "items past the seventh are ignored";
    EXPECT_EQ(runtime.LiveValues(), 0);
}

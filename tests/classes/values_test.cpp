// The value classes as tests/scripts/values_*.zs cannot show them: without their state or the
// other object, at the edges of 32-bit arithmetic, what they hand to the runtime and take back,
// rectangles related edge by edge and fonts that differ in one attribute at a time.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <utility>

#include "classes/geometry.h"
#include "common/test_object.h"
#include "common/counting_runtime.h"
#include "owned_values.h"

extern "C" {
extern tagTBaseTypeInfo g_info_Color, g_info_Font, g_info_Size, g_info_Point, g_info_Rect;
extern tagTBaseTypeInfo g_info_BinClass, g_info_BoolClass, g_info_DoubleClass;
void Color_Init(ZelObject*), Color_Free(ZelObject*), Color_SetRGB(ZelObject*, int, int, int);
void Color_FromText(ZelObject*, unsigned char*);
int Color_GetRed(ZelObject*), Color_Compare(ZelObject*, ZelObject*);
void Font_Init(ZelObject*), Font_Free(ZelObject*), Font_SetName(ZelObject*, unsigned char*);
void Font_FromText(ZelObject*, unsigned char*);
int Font_GetStyle(ZelObject*), Font_GetUnderline(ZelObject*), Font_Compare(ZelObject*, ZelObject*), Font_GetWeight(ZelObject*);
int Font_SaveToStream(ZelObject*, ZelObject*);
unsigned char *Color_ToText(ZelObject*), *Font_GetName(ZelObject*), *Font_ToText(ZelObject*);
void Size_Init(ZelObject*), Size_Free(ZelObject*), Size_FromText(ZelObject*, unsigned char*);
int Size_IsEmpty(ZelObject*), Size_Equals(ZelObject*, ZelObject*);
void Point_Init(ZelObject*), Point_Free(ZelObject*), Point_Set(ZelObject*, int, int);
int Point_Serialize(ZelObject*, ZelObject*), Point_Unserialize(ZelObject*, ZelObject*);
void Rect_Init(ZelObject*), Rect_Free(ZelObject*), Rect_Set(ZelObject*, int, int, int, int), Rect_FromText(ZelObject*, unsigned char*);
void Rect_Union(ZelObject*, ZelObject*), Rect_Intersect(ZelObject*, ZelObject*);
void* Rect_Clone(ZelObject*);
int Rect_GetWidth(ZelObject*), Rect_GetCenterX(ZelObject*), Rect_IsEmpty(ZelObject*), Rect_Equals(ZelObject*, ZelObject*);
int Rect_Intersects(ZelObject*, ZelObject*), Rect_ContainsPoint(ZelObject*, ZelObject*), Rect_ContainsXY(ZelObject*, int, int);
int Rect_ContainsRect(ZelObject*, ZelObject*);
void Rect_Normalize(ZelObject*);
void BinClass_Init(ZelObject*), BinClass_Free(ZelObject*), BinClass_SetValue(ZelObject*, unsigned char*);
unsigned char* BinClass_GetValue(ZelObject*);
void BoolClass_Init(ZelObject*), BoolClass_Free(ZelObject*), BoolClass_SetValue(ZelObject*, int);
void DoubleClass_Init(ZelObject*), DoubleClass_Free(ZelObject*), DoubleClass_SetValue(ZelObject*, double);
int BoolClass_GetValue(ZelObject*);
double DoubleClass_GetValue(ZelObject*);
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

TEST(Values, WithoutTheirStateOrAnOtherObjectEveryMethodIsNeutral) {
    TestObject color(&g_info_Color, Color_Init), font(&g_info_Font, Font_Init), size(&g_info_Size, Size_Init),
        point(&g_info_Point, Point_Init, Point_Free), rect(&g_info_Rect, Rect_Init);
    Color_Free(color), Font_Free(font), Size_Free(size), Rect_Free(rect);
    Color_SetRGB(color, 1, 2, 3);
    Color_FromText(color, Text(L"1, 2, 3"));
    EXPECT_EQ(Color_GetRed(color) + Color_Compare(color, color), 0);
    EXPECT_EQ(Color_ToText(color), zel::EmptyText());
    Font_SetName(font, Text(L"x"));
    Font_FromText(font, Text(L"x, 1"));
    EXPECT_EQ(Font_GetName(font), zel::EmptyText());
    EXPECT_EQ(Font_GetStyle(font), -1);
    EXPECT_EQ(Font_GetUnderline(font), 0);
    EXPECT_EQ(Font_SaveToStream(font, nullptr), 1);
    Size_FromText(size, Text(L"1, 2"));
    EXPECT_TRUE(Size_IsEmpty(size));
    EXPECT_FALSE(Size_Equals(size, size));
    EXPECT_EQ(Rect_Clone(rect), nullptr);
    Rect_Set(rect, 1, 2, 3, 4);
    EXPECT_TRUE(Rect_IsEmpty(rect));
    Rect full(0, 0, 9, 9);
    Rect_Union(rect, full);
    Rect_Intersect(rect, full);
    EXPECT_FALSE(Rect_Intersects(full, rect));
    Rect_Union(full, rect);
    EXPECT_TRUE(full.Is(0, 0, 9, 9));

    TestObject color2(&g_info_Color, Color_Init, Color_Free), font2(&g_info_Font, Font_Init, Font_Free);
    EXPECT_EQ(Color_Compare(color2, nullptr), 0);
    EXPECT_EQ(Font_Compare(font2, nullptr), -1);
    EXPECT_FALSE(Size_Equals(size, nullptr));
    Point_Set(point, 1, 2);
    // A point is no stream: nothing is read or written.
    EXPECT_EQ(Point_Serialize(point, point) + Point_Serialize(point, nullptr) + Point_Unserialize(point, point) +
                  Point_Unserialize(point, nullptr),
              0);
    EXPECT_EQ(_Point_GetData(point)->y, 2);
    Rect r(0, 0, 2, 2), reversed(5, 5, 1, 1);
    Rect_Union(r, nullptr);
    Rect_Union(r, reversed);
    EXPECT_TRUE(r.Is(0, 0, 2, 2));
    EXPECT_FALSE(Rect_ContainsPoint(r, nullptr));
    Rect_Intersect(r, nullptr);
    EXPECT_TRUE(r.Is(0, 0, 0, 0));
    EXPECT_FALSE(Rect_Equals(r, Rect(5, 5, 5, 5))) << "both empty, elsewhere";
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
    EXPECT_TRUE(b.Is(1, 2, 3, 4));
    copy->left = 0;
    EXPECT_TRUE(a.Is(1, 2, 3, 4));
}

// Items past the fields are ignored; one differing field decides.
TEST(Values, SizesAndRectanglesFromText) {
    TestObject a(&g_info_Size, Size_Init, Size_Free), b(&g_info_Size, Size_Init, Size_Free);
    Size_FromText(a, Text(L"3, 4"));
    Size_FromText(b, Text(L"3, 5"));
    EXPECT_FALSE(Size_Equals(a, b));
    Size_FromText(b, Text(L"3, 4, 99"));
    EXPECT_TRUE(Size_Equals(a, b));
    TestObject bareSize(&g_info_Size), bare(&g_info_Rect);  // no state
    EXPECT_FALSE(Size_Equals(a, bareSize));
    Rect rect;
    Rect_FromText(rect, Text(L"1, 2, 3, 4, 5"));
    EXPECT_TRUE(rect.Is(1, 2, 3, 4));
    EXPECT_FALSE(Rect_Equals(rect, bare));
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

TEST(Values, BoxedValuesKeepTheirOwnCopies) {
    TestObject bin(&g_info_BinClass, BinClass_Init, BinClass_Free);
    unsigned char* first = MCloneZelBin(const_cast<char*>("abc"), 3);
    BinClass_SetValue(bin, first);
    std::memset(MGetZelBinData(first), 'x', 3);
    zel_free(first);
    unsigned char* read = BinClass_GetValue(bin);
    EXPECT_NE(read, bin.word(1, 0)) << "a new byte set, not the held block";
    EXPECT_EQ(std::memcmp(MGetZelBinData(read), "abc", 3), 0);
    zel_free(read);
    int bogus[3] = {0, 1, -5};
    BinClass_SetValue(bin, reinterpret_cast<unsigned char*>(bogus));  // a negative length is ignored
    EXPECT_EQ(MGetZelBinLength(static_cast<unsigned char*>(bin.word(1, 0))), 3);

    TestObject logical(&g_info_BoolClass, BoolClass_Init, BoolClass_Free);
    BoolClass_SetValue(logical, 2);
    EXPECT_EQ(BoolClass_GetValue(logical), 2) << "not folded to 1";
    TestObject number(&g_info_DoubleClass, DoubleClass_Init, DoubleClass_Free);
    BoolClass_Free(logical), DoubleClass_Free(number);
    DoubleClass_SetValue(number, 1.0);
    EXPECT_EQ(DoubleClass_GetValue(number) + BoolClass_GetValue(logical), 0.0) << "no cell: neutral";
}

// The base is (0, 0)-(10, 10); each case moves edges of the other rectangle.
TEST(RectRelations, EachEdgeDecides) {
    struct Case {
        RectState other;
        bool intersects, contains, equals;
    } cases[] = {
        {{0, 0, 10, 10}, true, true, true},
        {{2, 2, 8, 8}, true, true, false},
        {{-1, 0, 10, 10}, true, false, false},  // left outside
        {{0, -1, 10, 10}, true, false, false},  // top outside
        {{0, 0, 11, 10}, true, false, false},   // right outside
        {{0, 0, 10, 11}, true, false, false},   // bottom outside
        {{0, 0, 10, 9}, true, true, false},     // only the bottom differs
        {{0, 0, 9, 10}, true, true, false},     // only the right
        {{0, 1, 10, 10}, true, true, false},    // only the top
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
    Rect base(0, 0, 10, 10), empty(4, 4, 4, 4);
    Rect_Intersect(base, empty);
    EXPECT_TRUE(base.Is(0, 0, 0, 0)) << "nothing in common: all edges 0";
}

TEST(RectRelations, ContainsXYTestsEveryEdgeHalfOpen) {
    Rect box(0, 0, 10, 10);
    std::pair<int, int> inside[] = {{0, 0}, {9, 9}}, outside[] = {{-1, 5}, {10, 5}, {5, -1}, {5, 10}};
    for (auto [x, y] : inside) EXPECT_TRUE(Rect_ContainsXY(box, x, y)) << x << "," << y;
    for (auto [x, y] : outside) EXPECT_FALSE(Rect_ContainsXY(box, x, y)) << x << "," << y;
}

TEST(RectRelations, NormalizeSwapsOnlyReversedPairs) {
    std::pair<RectState, RectState> cases[] = {
        {{1, 2, 3, 4}, {1, 2, 3, 4}},
        {{3, 2, 1, 4}, {1, 2, 3, 4}},
        {{1, 4, 3, 2}, {1, 2, 3, 4}},
        {{5, 5, 5, 5}, {5, 5, 5, 5}},
    };
    for (auto& [given, expected] : cases) {
        Rect box(given.left, given.top, given.right, given.bottom);
        Rect_Normalize(box);
        EXPECT_TRUE(box.Is(expected.left, expected.top, expected.right, expected.bottom)) << given.left << "," << given.top;
    }
}

// Fonts compare as 0 only when their names differ and all six attributes
// agree; one differing attribute, whichever, gives -1.
TEST(FontRelations, OneDifferingAttributeIsEnough) {
    CountingRuntime runtime;
    Font base(L"宋体, 1, 2, 3, 4, 5, 6");
    EXPECT_EQ(Font_Compare(base, Font(L"黑体, 1, 2, 3, 4, 5, 6")), 0);
    const wchar_t* differing[] = {L"黑体, 9, 2, 3, 4, 5, 6", L"黑体, 1, 9, 3, 4, 5, 6", L"黑体, 1, 2, 9, 4, 5, 6",
                                  L"黑体, 1, 2, 3, 9, 5, 6", L"黑体, 1, 2, 3, 4, 9, 6", L"黑体, 1, 2, 3, 4, 5, 9"};
    for (const wchar_t* text : differing) EXPECT_EQ(Font_Compare(base, Font(text)), -1) << text;

    Font extra(L"楷体, 1, 2, 3, 4, 5, 6, 77, 88");
    EXPECT_EQ(Font_GetWeight(extra), 6) << "items past the seventh are ignored";
    Font_SetName(extra, nullptr);
    unsigned char* name = Font_GetName(extra);
    EXPECT_STREQ(zel::TextChars(name), L"楷体") << "a null name changes nothing";
    zel::Release(name);
    EXPECT_EQ(runtime.LiveValues(), 0);
}

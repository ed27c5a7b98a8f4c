// Rectangles related edge by edge (each edge alone decides once), normalising
// what is already in order, and fonts that differ in one attribute at a time.
#include <gtest/gtest.h>

#include <string>

#include "classes/geometry.h"
#include "common/counting_runtime.h"
#include "common/test_object.h"
#include "owned_values.h"

extern "C" {
extern tagTBaseTypeInfo g_info_Rect, g_info_Font;
void Rect_Init(ZelObject*), Rect_Free(ZelObject*), Rect_Set(ZelObject*, int, int, int, int);
void Rect_Normalize(ZelObject*), Rect_Intersect(ZelObject*, ZelObject*);
int Rect_Intersects(ZelObject*, ZelObject*), Rect_ContainsXY(ZelObject*, int, int);
int Rect_ContainsRect(ZelObject*, ZelObject*), Rect_Equals(ZelObject*, ZelObject*), Rect_IsEmpty(ZelObject*);
void Font_Init(ZelObject*), Font_Free(ZelObject*), Font_SetName(ZelObject*, unsigned char*);
void Font_FromText(ZelObject*, unsigned char*);
int Font_Compare(ZelObject*, ZelObject*), Font_GetWeight(ZelObject*);
unsigned char* Font_GetName(ZelObject*);
}

namespace {

struct Box : TestObject {
    Box(int l, int t, int r, int b) : TestObject(&g_info_Rect, Rect_Init, Rect_Free) { Rect_Set(get(), l, t, r, b); }
    RectState edges() { return *_Rect_GetData(get()); }
};

bool operator==(const RectState& a, const RectState& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
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
        Box base(0, 0, 10, 10), other(c.other.left, c.other.top, c.other.right, c.other.bottom);
        std::string where = std::to_string(c.other.left) + "," + std::to_string(c.other.top) + "," +
                            std::to_string(c.other.right) + "," + std::to_string(c.other.bottom);
        EXPECT_EQ(bool(Rect_Intersects(base, other)), c.intersects) << where;
        EXPECT_EQ(bool(Rect_ContainsRect(base, other)), c.contains) << where;
        EXPECT_EQ(bool(Rect_Equals(base, other)), c.equals) << where;
        Rect_Intersect(other, base);  // an empty other stays empty, the rest is clipped
        EXPECT_EQ(Rect_IsEmpty(other), !c.intersects) << where;
    }
    Box base(0, 0, 10, 10), empty(4, 4, 4, 4);
    Rect_Intersect(base, empty);
    EXPECT_TRUE(base.edges() == RectState{}) << "nothing in common: all edges 0";
}

TEST(RectRelations, ContainsXYTestsEveryEdgeHalfOpen) {
    Box box(0, 0, 10, 10);
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
        Box box(given.left, given.top, given.right, given.bottom);
        Rect_Normalize(box);
        EXPECT_TRUE(box.edges() == expected) << given.left << "," << given.top;
    }
}

struct Font : TestObject {
    explicit Font(const wchar_t* text) : TestObject(&g_info_Font, Font_Init, Font_Free) { Font_FromText(get(), Text(text)); }
};

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

}  // namespace

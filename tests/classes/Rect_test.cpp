#include <gtest/gtest.h>

#include <climits>

#include "classes/geometry.h"
#include "common/test_object.h"
#include "runtime/memory.h"
#include "runtime/values.h"

extern "C" {
extern tagTBaseTypeInfo g_info_Rect;
extern tagTBaseTypeInfo g_info_Point;
void Rect_Init(ZelObject*);
void Rect_Free(ZelObject*);
void* Rect_Clone(ZelObject*);
void Point_Init(ZelObject*);
void Point_Free(ZelObject*);
void Point_Set(ZelObject*, int, int);
int Rect_GetWidth(ZelObject*);
void Rect_Set(ZelObject*, int, int, int, int);
void Rect_Normalize(ZelObject*);
void Rect_Union(ZelObject*, ZelObject*);
void Rect_Intersect(ZelObject*, ZelObject*);
int Rect_Intersects(ZelObject*, ZelObject*);
int Rect_ContainsXY(ZelObject*, int, int);
int Rect_ContainsPoint(ZelObject*, ZelObject*);
int Rect_ContainsRect(ZelObject*, ZelObject*);
int Rect_IsEmpty(ZelObject*);
int Rect_Equals(ZelObject*, ZelObject*);
int Rect_GetCenterX(ZelObject*);
void Rect_FromText(ZelObject*, unsigned char*);
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
}  // namespace

TEST(Rect, ContainmentIsHalfOpen) {
    Rect r(0, 0, 10, 5), inner(2, 1, 10, 5), wider(2, 1, 11, 5), empty(3, 3, 3, 3);
    EXPECT_TRUE(Rect_ContainsXY(r, 0, 0));
    EXPECT_TRUE(Rect_ContainsXY(r, 9, 4));
    EXPECT_FALSE(Rect_ContainsXY(r, 10, 0));
    EXPECT_FALSE(Rect_ContainsXY(r, 0, 5));
    TestObject p(&g_info_Point, Point_Init, Point_Free);
    Point_Set(p, 9, 5);
    EXPECT_FALSE(Rect_ContainsPoint(r, p));
    EXPECT_FALSE(Rect_ContainsPoint(r, nullptr));
    EXPECT_TRUE(Rect_ContainsRect(r, inner));
    EXPECT_FALSE(Rect_ContainsRect(r, wider));
    EXPECT_FALSE(Rect_ContainsRect(r, empty));  // empty rectangles are inside nothing
}

TEST(Rect, ReversedEdgesAreEmptyUntilNormalised) {
    Rect r(10, 8, 0, 2);
    EXPECT_TRUE(Rect_IsEmpty(r));
    EXPECT_FALSE(Rect_ContainsXY(r, 5, 5));
    Rect_Normalize(r);
    EXPECT_TRUE(r.Is(0, 2, 10, 8));
    EXPECT_TRUE(Rect_ContainsXY(r, 5, 5));
}

TEST(Rect, EmptyRectangleIsTheIdentityOfUnion) {
    Rect r(0, 0, 2, 2), far(10, 10, 12, 13), empty(50, 50, 50, 60), reversed(5, 5, 1, 1);
    Rect_Union(r, empty);
    Rect_Union(r, reversed);
    Rect_Union(r, nullptr);
    EXPECT_TRUE(r.Is(0, 0, 2, 2));
    Rect_Union(r, far);
    EXPECT_TRUE(r.Is(0, 0, 12, 13));
    Rect_Union(empty, far);  // an empty receiver takes the other
    EXPECT_TRUE(empty.Is(10, 10, 12, 13));
}

TEST(Rect, TouchingEdgesDoNotIntersect) {
    Rect a(0, 0, 10, 10), b(5, 5, 20, 20), touching(10, 0, 20, 10);
    EXPECT_TRUE(Rect_Intersects(a, b));
    EXPECT_FALSE(Rect_Intersects(a, touching));
    Rect_Intersect(a, b);
    EXPECT_TRUE(a.Is(5, 5, 10, 10));
    Rect_Intersect(a, touching);
    EXPECT_TRUE(a.Is(0, 0, 0, 0));
    Rect c(1, 1, 3, 3), d(1, 1, 3, 3);
    EXPECT_TRUE(Rect_Equals(c, d));
    Rect_Intersect(c, nullptr);
    EXPECT_TRUE(c.Is(0, 0, 0, 0));
    EXPECT_FALSE(Rect_Equals(c, Rect(5, 5, 5, 5)));  // both empty, elsewhere
}

TEST(Rect, ExtremeEdgesNeitherOverflowNorLookEmpty) {
    Rect r(INT_MIN, 0, INT_MAX, 1), s(INT_MAX - 1, 0, INT_MAX, 1);
    EXPECT_EQ(Rect_GetCenterX(r), 0);
    EXPECT_EQ(Rect_GetWidth(r), -1);  // wraps
    EXPECT_FALSE(Rect_IsEmpty(r));
    EXPECT_EQ(Rect_GetCenterX(s), INT_MAX - 1);
}

TEST(Rect, ShortTextKeepsTheOtherEdges) {
    Rect r(1, 2, 30, 40);
    unsigned char* text = MCloneZelText(const_cast<wchar_t*>(L"7 ,8"));
    Rect_FromText(r, text);
    zel_free(text);
    EXPECT_TRUE(r.Is(7, 8, 30, 40));
}

TEST(Rect, CloneIsAnIndependentCopy) {
    Rect a(1, 2, 3, 4), b;
    auto* copy = static_cast<RectState*>(Rect_Clone(a));
    ASSERT_NE(copy, _Rect_GetData(a));
    delete _Rect_GetData(b);
    b.word(1, 0) = copy;  // as the runtime installs the clone's state
    EXPECT_TRUE(b.Is(1, 2, 3, 4));
    copy->left = 0;
    EXPECT_TRUE(a.Is(1, 2, 3, 4));
}

TEST(Rect, WithoutStateNothingHappens) {
    Rect r(1, 1, 5, 5), other(0, 0, 9, 9);
    Rect_Free(r);
    EXPECT_EQ(Rect_Clone(r), nullptr);
    Rect_Set(r, 1, 2, 3, 4);
    Rect_Union(r, other);
    Rect_Intersect(r, other);
    EXPECT_TRUE(Rect_IsEmpty(r));
    EXPECT_FALSE(Rect_ContainsXY(r, 0, 0));
    EXPECT_FALSE(Rect_Intersects(other, r));
    Rect_Union(other, r);
    EXPECT_TRUE(other.Is(0, 0, 9, 9));
}

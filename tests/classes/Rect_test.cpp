#include <gtest/gtest.h>

#include <climits>
#include <string>

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
int Rect_GetLeft(ZelObject*);
void Rect_SetRight(ZelObject*, int);
int Rect_GetWidth(ZelObject*);
void Rect_SetWidth(ZelObject*, int);
int Rect_GetHeight(ZelObject*);
void Rect_SetHeight(ZelObject*, int);
void Rect_Set(ZelObject*, int, int, int, int);
void Rect_SetBounds(ZelObject*, int, int, int, int);
void Rect_SetEmpty(ZelObject*);
void Rect_Offset(ZelObject*, int, int);
void Rect_MoveTo(ZelObject*, int, int);
void Rect_Inflate(ZelObject*, int, int);
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
int Rect_GetCenterY(ZelObject*);
unsigned char* Rect_ToText(ZelObject*);
void Rect_FromText(ZelObject*, unsigned char*);
}

namespace {
struct Rect : TestObject {
    Rect(int l = 0, int t = 0, int r = 0, int b = 0) : TestObject(&g_info_Rect, Rect_Init, Rect_Free) {
        Rect_Set(get(), l, t, r, b);
    }
};
std::wstring Edges(ZelObject* obj) {
    unsigned char* text = Rect_ToText(obj);
    std::wstring s = zel::TextChars(text);
    if (text != zel::EmptyText()) zel_free(text);
    return s;
}
void FromText(ZelObject* obj, const wchar_t* s) {
    unsigned char* text = MCloneZelText(const_cast<wchar_t*>(s));
    Rect_FromText(obj, text);
    zel_free(text);
}
}  // namespace

TEST(Rect, WidthHeightAndPlacement) {
    Rect r(10, 20, 40, 60);
    EXPECT_EQ(Rect_GetWidth(r), 30);
    EXPECT_EQ(Rect_GetHeight(r), 40);
    Rect_SetWidth(r, 5);
    Rect_SetHeight(r, -5);  // moves the bottom edge above the top
    EXPECT_EQ(Edges(r), L"10, 20, 15, 15");
    EXPECT_TRUE(Rect_IsEmpty(r));
    Rect_SetBounds(r, -2, -3, 4, 6);
    EXPECT_EQ(Edges(r), L"-2, -3, 2, 3");
    EXPECT_EQ(Rect_GetCenterX(r), 0);
    Rect_Offset(r, 1, 1);
    EXPECT_EQ(Edges(r), L"-1, -2, 3, 4");
    EXPECT_EQ(Rect_GetCenterX(r), 1);
    EXPECT_EQ(Rect_GetCenterY(r), 1);
    Rect_MoveTo(r, 100, 200);
    EXPECT_EQ(Edges(r), L"100, 200, 104, 206");
    Rect_Inflate(r, 1, -2);
    EXPECT_EQ(Edges(r), L"99, 202, 105, 204");
    Rect_SetEmpty(r);
    EXPECT_EQ(Edges(r), L"0, 0, 0, 0");
}

TEST(Rect, CentreAndWidthOfExtremeEdgesDoNotOverflow) {
    Rect r(INT_MIN, INT_MIN, INT_MAX, INT_MAX);
    EXPECT_EQ(Rect_GetCenterX(r), 0);
    EXPECT_EQ(Rect_GetWidth(r), -1);  // wraps
    EXPECT_FALSE(Rect_IsEmpty(r));
    Rect s(INT_MAX - 1, INT_MAX - 1, INT_MAX, INT_MAX);
    EXPECT_EQ(Rect_GetCenterX(s), INT_MAX - 1);
    Rect_Offset(s, 2, 0);
    EXPECT_EQ(Rect_GetLeft(s), INT_MIN);
}

TEST(Rect, ContainmentIsHalfOpen) {
    Rect r(0, 0, 10, 5);
    EXPECT_TRUE(Rect_ContainsXY(r, 0, 0));
    EXPECT_TRUE(Rect_ContainsXY(r, 9, 4));
    EXPECT_FALSE(Rect_ContainsXY(r, 10, 0));
    EXPECT_FALSE(Rect_ContainsXY(r, 0, 5));
    EXPECT_FALSE(Rect_ContainsXY(r, -1, 2));

    TestObject p(&g_info_Point, Point_Init, Point_Free);
    Point_Set(p, 9, 4);
    EXPECT_TRUE(Rect_ContainsPoint(r, p));
    Point_Set(p, 9, 5);
    EXPECT_FALSE(Rect_ContainsPoint(r, p));
    EXPECT_FALSE(Rect_ContainsPoint(r, nullptr));

    Rect inner(2, 1, 10, 5), outside(2, 1, 11, 5), empty(3, 3, 3, 3);
    EXPECT_TRUE(Rect_ContainsRect(r, r));
    EXPECT_TRUE(Rect_ContainsRect(r, inner));
    EXPECT_FALSE(Rect_ContainsRect(r, outside));
    EXPECT_FALSE(Rect_ContainsRect(r, empty));  // empty rectangles are inside nothing
    EXPECT_FALSE(Rect_ContainsRect(empty, empty));
}

TEST(Rect, ReversedEdgesAreEmptyUntilNormalised) {
    Rect r(10, 8, 0, 2);
    EXPECT_TRUE(Rect_IsEmpty(r));
    EXPECT_FALSE(Rect_ContainsXY(r, 5, 5));
    EXPECT_EQ(Rect_GetWidth(r), -10);
    Rect_Normalize(r);
    EXPECT_EQ(Edges(r), L"0, 2, 10, 8");
    EXPECT_TRUE(Rect_ContainsXY(r, 5, 5));
    Rect_Normalize(r);
    EXPECT_EQ(Edges(r), L"0, 2, 10, 8");
}

TEST(Rect, EmptyRectangleIsTheIdentityOfUnion) {
    Rect r(0, 0, 2, 2), far(10, 10, 12, 13), empty(50, 50, 50, 60), reversed(5, 5, 1, 1);
    Rect_Union(r, empty);
    Rect_Union(r, reversed);
    Rect_Union(r, nullptr);
    EXPECT_EQ(Edges(r), L"0, 0, 2, 2");
    Rect_Union(r, far);
    EXPECT_EQ(Edges(r), L"0, 0, 12, 13");
    Rect_Union(empty, far);  // an empty receiver takes the other
    EXPECT_EQ(Edges(empty), L"10, 10, 12, 13");
    Rect_Union(r, r);
    EXPECT_EQ(Edges(r), L"0, 0, 12, 13");
}

TEST(Rect, IntersectionAndTouchingEdges) {
    Rect a(0, 0, 10, 10), b(5, 5, 20, 20), touching(10, 0, 20, 10), empty;
    EXPECT_TRUE(Rect_Intersects(a, b));
    EXPECT_FALSE(Rect_Intersects(a, touching));  // sharing an edge is not overlapping
    EXPECT_FALSE(Rect_Intersects(a, empty));
    EXPECT_FALSE(Rect_Intersects(a, nullptr));
    Rect_Intersect(a, b);
    EXPECT_EQ(Edges(a), L"5, 5, 10, 10");
    Rect_Intersect(a, touching);
    EXPECT_EQ(Edges(a), L"0, 0, 0, 0");
    Rect c(1, 1, 3, 3);
    Rect_Intersect(c, nullptr);
    EXPECT_EQ(Edges(c), L"0, 0, 0, 0");
}

TEST(Rect, EqualityComparesEdges) {
    Rect a(1, 2, 3, 4), b(1, 2, 3, 4), e1(0, 0, 0, 0), e2(5, 5, 5, 5);
    EXPECT_TRUE(Rect_Equals(a, b));
    Rect_SetRight(b, 9);
    EXPECT_FALSE(Rect_Equals(a, b));
    EXPECT_FALSE(Rect_Equals(e1, e2));  // both empty, different places
    EXPECT_FALSE(Rect_Equals(a, nullptr));
}

TEST(Rect, TextRoundTripAndShortTexts) {
    Rect a(-1, 2, 30, 40), b;
    unsigned char* text = Rect_ToText(a);
    Rect_FromText(b, text);
    zel_free(text);
    EXPECT_TRUE(Rect_Equals(a, b));
    FromText(b, L"7 ,8");
    EXPECT_EQ(Edges(b), L"7, 8, 30, 40");
    Rect_FromText(b, nullptr);
    EXPECT_EQ(Edges(b), L"7, 8, 30, 40");
}

TEST(Rect, CloneIsAnIndependentCopy) {
    Rect a(1, 2, 3, 4);
    auto* copy = static_cast<RectState*>(Rect_Clone(a));
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, _Rect_GetData(a));
    EXPECT_EQ(copy->right, 3);
    EXPECT_EQ(copy->bottom, 4);
    Rect b;
    delete _Rect_GetData(b);
    b.word(1, 0) = copy;  // as the runtime installs the clone's data
    Rect_Offset(b, 10, 0);
    EXPECT_EQ(Edges(a), L"1, 2, 3, 4");
    EXPECT_EQ(Edges(b), L"11, 2, 13, 4");
}

TEST(Rect, WithoutStateNothingHappens) {
    Rect r(1, 1, 5, 5), other(0, 0, 9, 9);
    Rect_Free(r);
    EXPECT_EQ(_Rect_GetData(r), nullptr);
    EXPECT_EQ(Rect_Clone(r), nullptr);
    Rect_Set(r, 1, 2, 3, 4);
    Rect_Offset(r, 1, 1);
    Rect_Union(r, other);
    Rect_Intersect(r, other);
    Rect_Normalize(r);
    FromText(r, L"1, 2, 3, 4");
    EXPECT_EQ(Rect_GetWidth(r), 0);
    EXPECT_TRUE(Rect_IsEmpty(r));
    EXPECT_FALSE(Rect_ContainsXY(r, 0, 0));
    EXPECT_FALSE(Rect_ContainsRect(other, r));
    EXPECT_FALSE(Rect_Intersects(other, r));
    EXPECT_EQ(Edges(r), L"");
    Rect_Union(other, r);
    EXPECT_EQ(Edges(other), L"0, 0, 9, 9");
}

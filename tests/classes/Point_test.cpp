#include <gtest/gtest.h>

#include <climits>
#include <vector>

#include "classes/geometry.h"
#include "common/test_object.h"
#include "runtime/class_table.h"
#include "runtime/values.h"

extern "C" {
extern tagTBaseTypeInfo g_info_Point;
void Point_Init(ZelObject*);
void Point_Free(ZelObject*);
int Point_Serialize(ZelObject*, ZelObject*);
int Point_Unserialize(ZelObject*, ZelObject*);
int Point_GetX(ZelObject*);
void Point_SetX(ZelObject*, int);
int Point_GetY(ZelObject*);
void Point_SetY(ZelObject*, int);
void Point_Set(ZelObject*, int, int);
void Point_Offset(ZelObject*, int, int);
}

namespace {
// A stream of 32-bit words that offers the integer slots of both stream
// interfaces; reading past the end gives -1 like the memory stream.
struct FakeStream {
    std::vector<int> words;
    size_t position = 0;
};
FakeStream& StateOf(ZelObject* stream) { return *static_cast<FakeStream*>(GetDataItemData(stream, 1, 0)); }
int WriteInt(ZelObject* stream, int v) {
    StateOf(stream).words.push_back(v);
    return 1;
}
int ReadInt(ZelObject* stream) {
    FakeStream& s = StateOf(stream);
    return s.position < s.words.size() ? s.words[s.position++] : -1;
}
void* g_outputSlots[6] = {reinterpret_cast<void*>(WriteInt)};
void* g_inputSlots[6] = {reinterpret_cast<void*>(ReadInt)};
tagInterfaceEntry g_streamInterfaces[] = {zel::Interface(L"系统.输出流", g_outputSlots),
                                          zel::Interface(L"系统.输入流", g_inputSlots)};
tagElementItem g_streamElements[] = {zel::HiddenState()};
tagTBaseTypeInfo g_streamRecord = zel::MakeClassRecord(L"测试.流", L"", nullptr, 0, g_streamElements, 1,
                                                       L"系统.对象", g_streamInterfaces, 2, ZEL_CLASS_FLAGS);
// A class without any interface.
tagTBaseTypeInfo g_plainRecord = zel::MakeClassRecord(L"测试.对象", L"", nullptr, 0, g_streamElements, 1,
                                                      L"系统.对象", nullptr, 0, ZEL_CLASS_FLAGS);

struct Stream : TestObject {
    FakeStream state;
    Stream() : TestObject(&g_streamRecord) { word(1, 0) = &state; }
};
struct Point : TestObject {
    Point(int x = 0, int y = 0) : TestObject(&g_info_Point, Point_Init, Point_Free) { Point_Set(get(), x, y); }
};
}  // namespace

TEST(Point, CoordinatesAndOffset) {
    Point p;
    EXPECT_EQ(Point_GetX(p), 0);
    EXPECT_EQ(Point_GetY(p), 0);
    Point_SetX(p, -3);
    Point_SetY(p, 8);
    Point_Offset(p, 10, -10);
    EXPECT_EQ(Point_GetX(p), 7);
    EXPECT_EQ(Point_GetY(p), -2);
    EXPECT_EQ(_Point_GetData(p)->y, -2);
    Point_Set(p, INT_MAX, INT_MIN);
    Point_Offset(p, 1, -1);  // wraps like 32-bit arithmetic
    EXPECT_EQ(Point_GetX(p), INT_MIN);
    EXPECT_EQ(Point_GetY(p), INT_MAX);
}

TEST(Point, SerializesTwoIntegersXFirstAndReadsThemBack) {
    Stream stream;
    Point a(5, -6), b;
    EXPECT_EQ(Point_Serialize(a, stream), 1);
    EXPECT_EQ(stream.state.words, (std::vector<int>{5, -6}));
    EXPECT_EQ(Point_Unserialize(b, stream), 1);
    EXPECT_EQ(Point_GetX(b), 5);
    EXPECT_EQ(Point_GetY(b), -6);
    EXPECT_EQ(stream.state.position, 2u);
}

TEST(Point, StreamWithoutTheInterfaceChangesNothing) {
    TestObject plain(&g_plainRecord);
    Point p(1, 2);
    EXPECT_EQ(Point_Serialize(p, plain), 0);
    EXPECT_EQ(Point_Unserialize(p, plain), 0);
    EXPECT_EQ(Point_Serialize(p, nullptr), 0);
    EXPECT_EQ(Point_Unserialize(p, nullptr), 0);
    EXPECT_EQ(Point_GetX(p), 1);
    EXPECT_EQ(Point_GetY(p), 2);
}

TEST(Point, WithoutStateNothingHappens) {
    Stream stream;
    Point p(1, 2);
    Point_Free(p);
    EXPECT_EQ(_Point_GetData(p), nullptr);
    Point_Set(p, 3, 4);
    Point_Offset(p, 1, 1);
    EXPECT_EQ(Point_GetX(p), 0);
    EXPECT_EQ(Point_Serialize(p, stream), 0);
    EXPECT_EQ(Point_Unserialize(p, stream), 0);
    EXPECT_TRUE(stream.state.words.empty());
}

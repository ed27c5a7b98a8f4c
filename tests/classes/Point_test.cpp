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
void Point_Set(ZelObject*, int, int);
void Point_Offset(ZelObject*, int, int);
}

namespace {
// A stream of 32-bit words offering the integer slots of both interfaces.
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
tagInterfaceEntry g_interfaces[] = {zel::Interface(L"系统.输出流", g_outputSlots),
                                    zel::Interface(L"系统.输入流", g_inputSlots)};
tagElementItem g_elements[] = {zel::HiddenState()};
tagTBaseTypeInfo g_streamRecord =
    zel::MakeClassRecord(L"测试.流", L"", nullptr, 0, g_elements, 1, L"系统.对象", g_interfaces, 2, ZEL_CLASS_FLAGS);
tagTBaseTypeInfo g_plainRecord =
    zel::MakeClassRecord(L"测试.对象", L"", nullptr, 0, g_elements, 1, L"系统.对象", nullptr, 0, ZEL_CLASS_FLAGS);

struct Stream : TestObject {
    FakeStream state;
    Stream() : TestObject(&g_streamRecord) { word(1, 0) = &state; }
};
struct Point : TestObject {
    Point(int x = 0, int y = 0) : TestObject(&g_info_Point, Point_Init, Point_Free) { Point_Set(get(), x, y); }
    PointState& state() { return *_Point_GetData(get()); }
};
}  // namespace

TEST(Point, OffsetWrapsLike32BitArithmetic) {
    Point p(INT_MAX, 3);
    Point_Offset(p, 1, -5);
    EXPECT_EQ(p.state().x, INT_MIN);
    EXPECT_EQ(p.state().y, -2);
}

TEST(Point, SerializesTwoIntegersXFirstAndReadsThemBack) {
    Stream stream;
    Point a(5, -6), b;
    EXPECT_EQ(Point_Serialize(a, stream), 1);
    EXPECT_EQ(stream.state.words, (std::vector<int>{5, -6}));
    EXPECT_EQ(Point_Unserialize(b, stream), 1);
    EXPECT_EQ(b.state().x, 5);
    EXPECT_EQ(b.state().y, -6);
}

TEST(Point, StreamWithoutTheInterfaceOrPointWithoutStateChangesNothing) {
    TestObject plain(&g_plainRecord);
    Stream stream;
    Point p(1, 2);
    EXPECT_EQ(Point_Serialize(p, plain), 0);
    EXPECT_EQ(Point_Unserialize(p, plain), 0);
    EXPECT_EQ(Point_Unserialize(p, nullptr), 0);
    EXPECT_EQ(p.state().x, 1);
    EXPECT_EQ(p.state().y, 2);
    Point_Free(p);
    Point_Offset(p, 1, 1);
    EXPECT_EQ(Point_Serialize(p, stream), 0);
    EXPECT_TRUE(stream.state.words.empty());
}

#include <gtest/gtest.h>

#include <cstdint>

#include "common/test_object.h"
#include "counting_runtime.h"
#include "runtime/class_table.h"

ZEL_EXPORT tagTBaseTypeInfo g_info_Map;
ZEL_EXPORT void Map_Init(ZelObject*);
ZEL_EXPORT void Map_Free(ZelObject*);
ZEL_EXPORT int Map_GetValue(ZelObject*, ZelObject*, ZelObject*);
ZEL_EXPORT void Map_SetValue(ZelObject*, ZelObject*, ZelObject*);
ZEL_EXPORT int Map_HasKey(ZelObject*, ZelObject*);
ZEL_EXPORT int Map_GetCount(ZelObject*);

namespace {

int Value(ZelObject* o) { return int(reinterpret_cast<intptr_t>(GetDataItemData(o, 1, 0))); }
tagMethodItem kIntMethods[] = {zel::Getter(L"整数", L"_i", Value)};
tagElementItem kElements[] = {zel::HiddenState()};
tagTBaseTypeInfo kInt = zel::ClassRecord(L"工具.整数类", L"", kIntMethods, kElements);
tagTBaseTypeInfo kDatetime = zel::ClassRecord(L"工具.日期时间类", L"", nullptr, kElements);
tagTBaseTypeInfo kPlain = zel::ClassRecord(L"测试.对象", L"", nullptr, kElements);

struct Int : TestObject {
    explicit Int(int v) : TestObject(&kInt) { word(1, 0) = reinterpret_cast<void*>(intptr_t(v)); }
};

class MapTest : public ::testing::Test {
protected:
    CountingRuntime runtime;
    TestObject map{&g_info_Map, Map_Init, Map_Free};
};

TEST_F(MapTest, WrappedIntegersMatchByValue) {
    Int seven(7), seven2(7), eight(8);
    TestObject v1(&kPlain), v2(&kPlain);
    EXPECT_EQ(Map_GetCount(map), 0);
    EXPECT_EQ(Map_HasKey(map, seven), 0);
    Map_SetValue(map, seven, v1);
    EXPECT_EQ(Map_HasKey(map, seven2), 1);
    EXPECT_EQ(Map_HasKey(map, eight), 0);
    Map_SetValue(map, seven2, v2);
    EXPECT_EQ(Map_GetCount(map), 1) << "one key, the second value";
    EXPECT_EQ(runtime.Net(v1), 0);
    EXPECT_EQ(runtime.Net(v2), 1);
    EXPECT_EQ(runtime.Net(seven), 1) << "the first key object stays the key";
    EXPECT_EQ(runtime.Net(seven2), 0);
    Map_SetValue(map, eight, v1);
    EXPECT_EQ(Map_GetCount(map), 2);
}

TEST_F(MapTest, GetValueAddsAbsentKeysAndLeaksNothing) {
    Int key(3);
    TestObject value(&kPlain), out(&kPlain);
    EXPECT_EQ(Map_GetValue(map, key, out), 1);
    EXPECT_EQ(Map_GetCount(map), 1);
    EXPECT_EQ(Map_HasKey(map, key), 1);
    Map_SetValue(map, key, value);
    EXPECT_EQ(Map_GetValue(map, key, out), 1);
    EXPECT_EQ(runtime.Net(value), 1);
    EXPECT_EQ(runtime.Net(out), 0) << "the value argument is never written";
    Map_Free(map);
    EXPECT_EQ(runtime.Net(key), 0);
    EXPECT_EQ(runtime.Net(value), 0);
    EXPECT_EQ(Map_GetCount(map), 0);
    EXPECT_EQ(Map_GetValue(map, key, out), 0) << "no table: nothing added";
    Map_SetValue(map, key, value);
    EXPECT_EQ(Map_HasKey(map, key), 0);
}

TEST_F(MapTest, DatetimesShareOneKeyAndOtherObjectsGoByIdentity) {
    TestObject d1(&kDatetime), d2(&kDatetime), p(&kPlain), q(&kPlain);
    Map_SetValue(map, d1, p);
    Map_SetValue(map, d2, q);
    EXPECT_EQ(Map_GetCount(map), 1);
    TestObject plain(&g_info_Map, Map_Init, Map_Free);
    Map_SetValue(plain, p, q);
    Map_SetValue(plain, q, p);
    Map_SetValue(plain, p, p);
    EXPECT_EQ(Map_GetCount(plain), 2);
    EXPECT_EQ(Map_HasKey(plain, q), 1);
}

}  // namespace

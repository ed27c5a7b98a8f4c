#include <gtest/gtest.h>

#include <set>

#include "common/counting_runtime.h"
#include <zel/class_table.h>
#include <zel/errors.h>
#include <zel/loader.h>
#include <zel/services.h>
#include <zel/values.h>
#include <zel/textfuncs.h>

using namespace zel;

namespace {
int Answer(ZelObject*) { return 42; }
int constructed = 0;
void DefaultConstructor(ZelObject*) { ++constructed; }

tagParamItem kValue[] = {Param(L"值", L"_i")};
tagMethodItem kMethods[] = {
    Getter(L"整数", L"_i", Answer),
    Setter(L"整数", kValue, nullptr),
    MakeMethod(ZEL_CONSTRUCTOR, L"构造", L"", nullptr, 0, reinterpret_cast<void*>(DefaultConstructor), L""),
};
tagElementItem kElements[] = {HiddenState()};
tagTBaseTypeInfo g_testClass = ClassRecord(L"测试.甲", L"测试类", kMethods, kElements);
tagMethodItem kStatics[] = {Static(L"静态", L"_i", nullptr)};
tagTBaseTypeInfo g_noElements = ClassRecord(L"测试.乙", L"", kStatics, nullptr);

struct ChainObject {
    explicit ChainObject(tagTBaseTypeInfo* own) : chain{2, 0, 0, int(reinterpret_cast<intptr_t>(own)), 0} {
        words[0] = words;
        words[1] = chain;
    }
    ZelObject* get() { return reinterpret_cast<ZelObject*>(words); }
    int chain[5];
    void* words[4] = {};
};

void Collect(tagMethodItem* m, void* out) { static_cast<std::vector<tagMethodItem*>*>(out)->push_back(m); }
}  // namespace

TEST(Descriptors, PreparedRecordsCarryTheirHashes) {
    PrepareClassRecord(&g_testClass);
    EXPECT_EQ(g_testClass.nameHash, GetTextHash(L"测试.甲"));
    EXPECT_EQ(g_testClass.baseNameHash, GetTextHash(L"系统.对象"));
    EXPECT_EQ(g_testClass.methods[0].returnTypeHash, GetTextHash(L"_i"));
    EXPECT_EQ(g_testClass.methods[1].params[0].typeHash, GetTextHash(L"_i"));
    EXPECT_EQ(g_testClass.elements[0].typeHash, GetTextHash(L"_i"));
}

TEST(Descriptors, PropertyTests) {
    EXPECT_TRUE(MethodIsReadProperty(&kMethods[0]));
    EXPECT_FALSE(MethodIsWriteProperty(&kMethods[0]));
    EXPECT_FALSE(MethodIsReadProperty(&kMethods[1]));
    EXPECT_TRUE(MethodIsWriteProperty(&kMethods[1]));
    EXPECT_TRUE(MethodIsProperty(&kMethods[1]));
    EXPECT_FALSE(MethodIsProperty(&kMethods[2]));
    EXPECT_FALSE(MethodIsReadProperty(nullptr));
}

TEST(Descriptors, EnumerationSkipsClassesWithoutElementTable) {
    ChainObject withElements(&g_testClass);
    std::vector<tagMethodItem*> seen;
    EnumObjectAllMethods(withElements.get(), Collect, &seen);
    EXPECT_EQ(seen.size(), 3u);
    ChainObject withoutElements(&g_noElements);
    seen.clear();
    EnumObjectAllMethods(withoutElements.get(), Collect, &seen);
    EXPECT_TRUE(seen.empty());
    EnumObjectAllMethods(withElements.get(), nullptr, &seen);  // a null callback does nothing
}

TEST(Descriptors, ClassNameAndDefaultConstructor) {
    ChainObject obj(&g_testClass);
    EXPECT_STREQ(MGetClassName(obj.get()), L"测试.甲");
    constructed = 0;
    MCallClassDefaultConstructor(obj.get(), -1);
    EXPECT_EQ(constructed, 0);
    MCallClassDefaultConstructor(obj.get(), 1);
    EXPECT_EQ(constructed, 1);
}

TEST(LibraryRecord, LayoutAndRegistry) {
    ZelLibInfo* lib = ZelGetLibInfo();
    EXPECT_EQ(lib, &g_zellib_info);
    EXPECT_STREQ(lib->name, L"工具");
    EXPECT_STREQ(lib->description, L"本类库提供系统工具类");
    EXPECT_EQ(lib->nameHash, GetTextHash(L"工具"));
    EXPECT_EQ(lib->fixed28, 7);
    EXPECT_EQ(lib->version, 1.0);

    int count = lib->enumClasses(lib, nullptr, 0);
    EXPECT_GT(count, 0);
    std::vector<tagTBaseTypeInfo*> records(count + 2);
    EXPECT_EQ(lib->enumClasses(lib, records.data(), 0), 0);
    EXPECT_EQ(lib->enumClasses(lib, records.data(), int(records.size())), count);
    std::set<tagTBaseTypeInfo*> distinct(records.begin(), records.begin() + count);
    EXPECT_EQ(int(distinct.size()), count);
    for (int i = 0; i < count; ++i) EXPECT_EQ(lib->findClass(lib, records[i]->name), records[i]);
    EXPECT_EQ(lib->findClass(lib, const_cast<wchar_t*>(L"文本类")), nullptr);
    EXPECT_EQ(lib->findClass(lib, nullptr), nullptr);
}

TEST(LibraryRecord, HandOverStepsAndOtherCodes) {
    EXPECT_EQ(ZelNotifyLib(ZelGetLibInfo(), NOTIFY_LIB_CODE(2), 1234, 0), -1);
    EXPECT_EQ(g_pRuntimeObject, nullptr);
    CountingRuntime runtime;  // hands itself over with code 1
    EXPECT_EQ(g_pRuntimeObject, runtime.object());
    EXPECT_STREQ(g_pRuntimeClassInfo->name, L"系统.运行时");
    EXPECT_NE(g_pGCClassInfo, nullptr);
    EXPECT_EQ(g_EmptyConst.library, ZelGetLibInfo());
    ASSERT_EQ(runtime.registered.size(), 1u);
    EXPECT_EQ(runtime.registered[0], &g_EmptyConst);
    // With a runtime, errors go to its service and nothing is printed.
    EXPECT_EQ(MReportError(const_cast<wchar_t*>(L"工具"), -3, const_cast<wchar_t*>(L"坏")), 7);
    EXPECT_EQ(runtime.lastReport, L"工具|坏");
    EXPECT_EQ(runtime.lastCode, -3);
}

TEST(LibraryRecord, ConstantChainsOfOtherLibraries) {
    int other[4] = {16, 0, 0, 0};
    int third[3] = {12, 0, 0};
    {
        CountingRuntime runtime;
        g_EmptyConst.next = other;
        g_EmptyConst.next2 = third;
        EXPECT_TRUE(IsConstData(&other[3]));
        EXPECT_TRUE(IsConstData(&third[2]));
        EXPECT_FALSE(IsConstData(&other[4]));
        EXPECT_GT(runtime.locks, 0);
    }
    EXPECT_FALSE(IsConstData(&other[3]));  // without a runtime only our own block counts
}

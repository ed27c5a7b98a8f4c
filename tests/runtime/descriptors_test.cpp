// The library record and the hand-over of a runtime, the class table, and
// what the descriptor predicates and enumeration read.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include <zel/class_table.h>
#include <zel/errors.h>
#include <zel/library.h>
#include <zel/loader.h>
#include <zel/registry.h>
#include <zel/services.h>
#include <zel/values.h>

#include "common/counting_runtime.h"
#include "runtime/chained_object.h"

namespace {
using namespace zel;

tagMethodItem kMethods[] = {Static(L"静态", L"_i", nullptr), Static(L"又一个", L"_i", nullptr)};
tagElementItem kElements[] = {HiddenState()};

void Collect(tagMethodItem* m, void* out) { static_cast<std::vector<tagMethodItem*>*>(out)->push_back(m); }
void CountElement(tagElementItem*, void* n) { ++*static_cast<int*>(n); }

// A class without an element table adds no methods either.
TEST(Descriptors, EnumerationSkipsClassesWithoutElementTable) {
    tagTBaseTypeInfo with = ClassRecord(L"测试.甲", L"", kMethods, kElements);
    tagTBaseTypeInfo without = ClassRecord(L"测试.乙", L"", kMethods, nullptr);
    ChainedObject object({&without, nullptr, &with});  // a level without a record is passed over
    std::vector<tagMethodItem*> seen;
    EnumObjectAllMethods(object.get(), Collect, &seen);
    EXPECT_EQ(seen, (std::vector<tagMethodItem*>{&kMethods[0], &kMethods[1]}));
    int elements = 0;
    EnumObjectAllElements(object.get(), CountElement, &elements);
    EnumObjectAllElements(object.get(), nullptr, &elements);  // no callback, nothing done
    EnumObjectAllMethods(object.get(), nullptr, &seen);
    EnumObjectAllMethods(nullptr, Collect, &seen);  // no object, nothing visited
    EnumObjectAllElements(nullptr, CountElement, &elements);
    EXPECT_EQ(seen.size(), 2u);
    EXPECT_EQ(elements, 1);
}

// A getter takes nothing and returns a type; a setter takes one value and
// returns none.
TEST(Descriptors, PropertyPredicates) {
    auto item = [](unsigned flags, int params, const wchar_t* type) {
        tagMethodItem m{};
        m.flags = flags;
        m.paramCount = params;
        m.returnType = const_cast<wchar_t*>(type);
        return m;
    };
    tagMethodItem getter = item(ZEL_PROPERTY, 0, L"_i"), setter = item(ZEL_PROPERTY, 1, nullptr);
    EXPECT_TRUE(MethodIsReadProperty(&getter) && !MethodIsWriteProperty(&getter) && MethodIsProperty(&getter));
    EXPECT_TRUE(!MethodIsReadProperty(&setter) && MethodIsWriteProperty(&setter) && MethodIsProperty(&setter));
    for (tagMethodItem odd : {item(ZEL_PROPERTY, 0, L""), item(ZEL_PROPERTY, 1, L"_i"), item(ZEL_METHOD, 0, L"_i")})
        EXPECT_FALSE(MethodIsProperty(&odd));
    EXPECT_FALSE(MethodIsProperty(nullptr));
}

// A runtime offering no services: values are the library's own blocks.
TEST(LibraryRecord, ARuntimeOfferingNoServices) {
    tagTBaseTypeInfo bare{};
    bare.methodCount = 40;  // a count without a table
    ChainedObject runtime({&bare});
    ZelNotifyLib(&g_zellib_info, NOTIFY_LIB_RUNTIME, unsigned(reinterpret_cast<uintptr_t>(runtime.get())), 0);
    EXPECT_TRUE(g_pRuntimeClassInfo == &bare && g_pGCClassInfo == nullptr);
    EXPECT_TRUE(ServiceFunction(&bare, 99) == nullptr && ServiceFunction(&bare, -1) == nullptr && ServiceFunction(nullptr, 1) == nullptr);
    unsigned char* text = NewText(L"甲");
    EXPECT_EQ(TakeOverBlock(text), text);
    zel_free(text);
    ZelNotifyLib(&g_zellib_info, NOTIFY_LIB_RUNTIME, 0, 0);
    g_EmptyConst.next = g_EmptyConst.next2 = nullptr;
}

TEST(LibraryRecord, HandOverStepsAndOtherCodes) {
    EXPECT_EQ(ZelNotifyLib(ZelGetLibInfo(), NOTIFY_LIB_CODE(2), 1234, 0), -1);
    EXPECT_EQ(g_pRuntimeObject, nullptr);
    CountingRuntime runtime;  // hands itself over with code 1
    EXPECT_EQ(g_pRuntimeObject, runtime.object());
    EXPECT_STREQ(g_pRuntimeClassInfo->name, L"系统.运行时");
    EXPECT_EQ(g_EmptyConst.library, ZelGetLibInfo());
    EXPECT_EQ(runtime.registered, std::vector<void*>{&g_EmptyConst});
    // With a runtime, errors go to its service and nothing is printed.
    EXPECT_EQ(MReportError(const_cast<wchar_t*>(L"工具"), -3, const_cast<wchar_t*>(L"坏")), 7);
    EXPECT_EQ(runtime.lastReport, L"工具|坏");
    EXPECT_EQ(runtime.lastCode, -3);

    // Handing over no runtime: the old runtime's memory manager must not serve on.
    ASSERT_NE(g_pGCClassInfo, nullptr);
    EXPECT_EQ(ZelNotifyLib(&g_zellib_info, NOTIFY_LIB_RUNTIME, 0, 0), 0);
    EXPECT_TRUE(g_pRuntimeObject == nullptr && g_pRuntimeClassInfo == nullptr && g_pGCClassInfo == nullptr);
    unsigned char* text = NewText(L"x");
    EXPECT_EQ(runtime.LiveValues(), 0);
    zel_free(text);
}

// The record ZEL_LIBRARY makes: every word of the 88 bytes, and its version.
TEST(LibraryRecord, EveryWordOfTools) {
    const ZelLibInfo& lib = g_zellib_info;
    EXPECT_TRUE(lib.flags == 0u && lib.fixed20 == 1 && lib.fixed24 == 0 && lib.fixed28 == 7 && lib.fixed40 == 1);
    EXPECT_EQ(lib.version, 1.0);
    EXPECT_STREQ(lib.text, L"");
    for (wchar_t* t : lib.texts44) EXPECT_STREQ(t, L"");
    for (wchar_t* t : lib.texts68) EXPECT_STREQ(t, L"");
    EXPECT_EQ(lib.reserved64, 0);
    for (int w : lib.reserved76) EXPECT_EQ(w, 0);
    EXPECT_TRUE(lib.enumClasses == &EnumClassRecords && lib.findClass == &FindClassRecord);
    EXPECT_DOUBLE_EQ(RecordVersion(1, 12), 1.12);  // the minor as decimals
    EXPECT_DOUBLE_EQ(RecordVersion(2, 10), 2.1);
}

// The class table is swapped out for the test and put back after it.
struct OwnClassTable {
    OwnClassTable() { CBaseTypeInfoRecorder::sm_pBaseTypeInfoTable = nullptr; }
    ~OwnClassTable() { CBaseTypeInfoRecorder::sm_pBaseTypeInfoTable = saved; }
    CText2PtrHashmap* saved = CBaseTypeInfoRecorder::sm_pBaseTypeInfoTable;
};

TEST(Registry, TableMadeAtFirstRegistrationReplacedByNameAndCleanedUp) {
    OwnClassTable own;
    tagTBaseTypeInfo first{}, second{}, again{};
    first.name = again.name = const_cast<wchar_t*>(L"测试.甲");
    second.name = const_cast<wchar_t*>(L"测试.乙");
    tagTBaseTypeInfo* out[3] = {};
    FailAllocationAfter(1);
    CBaseTypeInfoRecorder unlisted(&first);  // no memory for the table: simply not listed
    FailAllocationAfter(0);
    EXPECT_TRUE(EnumClassRecords(nullptr, out, 3) == 0 && FindClassRecord(nullptr, first.name) == nullptr);

    for (tagTBaseTypeInfo* record : {&first, &second, &again}) CBaseTypeInfoRecorder{record};
    EXPECT_EQ(FindClassRecord(nullptr, first.name), &again);  // the later record of a name wins
    EXPECT_EQ(EnumClassRecords(nullptr, out, 1), 1);          // no more than asked for
    EXPECT_TRUE(out[1] == nullptr && (out[0] == &again || out[0] == &second));
    EXPECT_EQ(FindClassRecord(nullptr, const_cast<wchar_t*>(L"乙")), nullptr);  // the short name is no name
    EXPECT_EQ(FindClassRecord(nullptr, nullptr), nullptr);
    CBaseTypeInfoRecorder::CleanUp();
    CBaseTypeInfoRecorder::CleanUp();  // a second clean-up finds nothing to do
    EXPECT_EQ(EnumClassRecords(nullptr, nullptr, 0), 0);
}

}  // namespace

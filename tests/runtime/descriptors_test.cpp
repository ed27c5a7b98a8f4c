#include <gtest/gtest.h>

#include <vector>

#include "common/counting_runtime.h"
#include "runtime/chained_object.h"
#include <zel/class_table.h>
#include <zel/errors.h>
#include <zel/library.h>
#include <zel/loader.h>
#include <zel/services.h>
#include <zel/values.h>

using namespace zel;

namespace {
int Answer(ZelObject*) { return 42; }
void DefaultConstructor(ZelObject*) {}

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

void Collect(tagMethodItem* m, void* out) { static_cast<std::vector<tagMethodItem*>*>(out)->push_back(m); }
}  // namespace

TEST(Descriptors, EnumerationSkipsClassesWithoutElementTable) {
    ChainedObject withElements({nullptr, &g_testClass});  // a level without a record is passed over
    std::vector<tagMethodItem*> seen;
    EnumObjectAllMethods(withElements.get(), Collect, &seen);
    EXPECT_EQ(seen.size(), 3u);
    ChainedObject withoutElements({&g_noElements});
    seen.clear();
    EnumObjectAllMethods(withoutElements.get(), Collect, &seen);
    EXPECT_TRUE(seen.empty());
    EnumObjectAllMethods(withElements.get(), nullptr, &seen);  // a null callback does nothing
}

// ncl check walks every record the library hands out; here, the odd requests.
TEST(LibraryRecord, RegistryAnswersOddRequests) {
    ZelLibInfo* lib = ZelGetLibInfo();
    EXPECT_EQ(lib, &g_zellib_info);
    tagTBaseTypeInfo* records[1] = {};
    EXPECT_EQ(lib->enumClasses(lib, records, 0), 0);
    EXPECT_EQ(records[0], nullptr);
    EXPECT_EQ(lib->findClass(lib, const_cast<wchar_t*>(L"文本类")), nullptr);  // the short name is no name
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

// The record ZEL_LIBRARY makes: every word of the 88 bytes, and its version.
TEST(LibraryRecord, EveryWordOfTools) {
    const ZelLibInfo& lib = g_zellib_info;
    EXPECT_EQ(lib.flags, 0u);
    EXPECT_STREQ(lib.text, L"");
    EXPECT_EQ(lib.fixed20, 1);
    EXPECT_EQ(lib.fixed24, 0);
    EXPECT_EQ(lib.fixed28, 7);
    EXPECT_EQ(lib.version, 1.0);
    EXPECT_EQ(lib.fixed40, 1);
    for (wchar_t* t : lib.texts44) EXPECT_STREQ(t, L"");
    for (wchar_t* t : lib.texts68) EXPECT_STREQ(t, L"");
    EXPECT_EQ(lib.reserved64, 0);
    for (int w : lib.reserved76) EXPECT_EQ(w, 0);
    EXPECT_EQ(lib.enumClasses, &zel::EnumClassRecords);
    EXPECT_EQ(lib.findClass, &zel::FindClassRecord);
}

TEST(LibraryRecord, VersionWrittenAsMajorDotMinor) {
    static_assert(zel::RecordVersion(1, 0) == 1.0);
    EXPECT_DOUBLE_EQ(zel::RecordVersion(1, 5), 1.5);
    EXPECT_DOUBLE_EQ(zel::RecordVersion(1, 12), 1.12);
    EXPECT_DOUBLE_EQ(zel::RecordVersion(2, 10), 2.1);
    EXPECT_EQ(ZEL_VERSION_NUMBER, zel::RecordVersion(ZEL_VERSION_MAJOR, ZEL_VERSION_MINOR));
    EXPECT_STREQ(ZEL_VERSION_STRING, "1.0.0");
}

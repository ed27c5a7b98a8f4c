// Runtimes that offer only some services, or none: the hand-over, what each
// service falls back to, and the class table and descriptor predicates.
#include <gtest/gtest.h>

#include <cstdint>
#include <cwchar>
#include <vector>

#include <zel/hashkv.h>
#include <zel/loader.h>
#include <zel/memory.h>
#include <zel/registry.h>
#include <zel/services.h>
#include <zel/values.h>

#include "common/counting_runtime.h"
#include "runtime/chained_object.h"

namespace {

// Puts the runtime globals back as they were before the test handed one over.
struct NoRuntimeAfterwards {
    ~NoRuntimeAfterwards() {
        g_pRuntimeObject = nullptr;
        g_pRuntimeClassInfo = nullptr;
        g_pGCClassInfo = nullptr;
        g_EmptyConst.next = g_EmptyConst.next2 = nullptr;
    }
};

unsigned Handle(void* p) { return unsigned(reinterpret_cast<uintptr_t>(p)); }

ZelObject g_made{&g_made, nullptr, nullptr};
std::vector<std::wstring> g_asked;
ZelObject* MakeObject(wchar_t* className, int one) {
    g_asked.push_back(std::wstring(className) + L"/" + std::to_wstring(one));
    return &g_made;
}

TEST(Services, ARuntimeThatOnlyMakesObjects) {
    NoRuntimeAfterwards restore;
    tagMethodItem methods[ZEL_RT_NEW_OBJECT + 1] = {};
    methods[ZEL_RT_NEW_OBJECT].function = reinterpret_cast<void*>(MakeObject);
    tagTBaseTypeInfo runtimeClass{};
    runtimeClass.methodCount = ZEL_RT_NEW_OBJECT + 1;
    runtimeClass.methods = methods;
    ChainedObject runtime({&runtimeClass});
    EXPECT_EQ(ZelNotifyLib(&g_zellib_info, NOTIFY_LIB_RUNTIME, Handle(runtime), 0), 0);
    EXPECT_EQ(g_pRuntimeClassInfo, &runtimeClass);
    EXPECT_EQ(g_pGCClassInfo, nullptr);  // no memory manager offered
    EXPECT_EQ(g_EmptyConst.library, &g_zellib_info);

    g_asked.clear();
    {
        ZelObjectWrapper object(const_cast<wchar_t*>(L"工具.坐标点"));
        EXPECT_EQ(static_cast<ZelObject*>(object), &g_made);
    }  // releasing it needs no memory manager
    EXPECT_EQ(g_asked, std::vector<std::wstring>{L"工具.坐标点/1"});
    EXPECT_EQ(zel::AddRef(&g_made), &g_made);
    zel::Release(&g_made);

    // Without a memory manager values are the library's own blocks.
    unsigned char* text = zel::NewText(L"甲乙");
    EXPECT_STREQ(zel::TextChars(text), L"甲乙");
    unsigned char* bin = zel::NewBin("ab", 2);
    EXPECT_EQ(MGetZelBinLength(bin), 2);
    EXPECT_EQ(zel::TakeOverBlock(bin), bin);
    zel_free(text);
    zel_free(bin);
}

TEST(Services, HandingOverNoRuntimeLeavesNoServices) {
    ChainedObject headless({nullptr});
    for (ZelObject* runtime : {static_cast<ZelObject*>(nullptr), headless.get()}) {
        CountingRuntime again;  // a working runtime first
        ASSERT_NE(g_pGCClassInfo, nullptr);
        EXPECT_EQ(ZelNotifyLib(&g_zellib_info, NOTIFY_LIB_RUNTIME, Handle(runtime), 0), 0);
        EXPECT_EQ(g_pRuntimeObject, runtime);
        EXPECT_EQ(g_pRuntimeClassInfo, nullptr);
        // The old runtime's memory manager must not serve on.
        EXPECT_EQ(g_pGCClassInfo, nullptr);
        unsigned char* text = zel::NewText(L"x");
        EXPECT_EQ(again.LiveValues(), 0);
        zel_free(text);
    }
}

TEST(Services, ServiceNumbersOutsideTheTable) {
    tagMethodItem methods[2] = {};
    methods[1].function = reinterpret_cast<void*>(MakeObject);
    tagTBaseTypeInfo cls{};
    cls.methodCount = 2;
    cls.methods = methods;
    EXPECT_EQ(zel::ServiceFunction(&cls, 1), methods[1].function);
    EXPECT_EQ(zel::ServiceFunction(&cls, 0), nullptr);
    EXPECT_EQ(zel::ServiceFunction(&cls, 2), nullptr);
    EXPECT_EQ(zel::ServiceFunction(&cls, -1), nullptr);
    EXPECT_EQ(zel::ServiceFunction(nullptr, 1), nullptr);
    cls.methods = nullptr;  // a count without a table
    EXPECT_EQ(zel::ServiceFunction(&cls, 1), nullptr);
}

TEST(Descriptors, PropertyPredicatesOnOddItems) {
    struct Case {
        unsigned flags;
        int params;
        const wchar_t* type;
        bool read, write;
    } cases[] = {
        {ZEL_PROPERTY, 0, L"_i", true, false},
        {ZEL_PROPERTY, 0, nullptr, false, false},  // a getter needs a type
        {ZEL_PROPERTY, 0, L"", false, false},
        {ZEL_PROPERTY, 1, nullptr, false, true},   // a setter has none, null or empty
        {ZEL_PROPERTY, 1, L"_i", false, false},
        {ZEL_PROPERTY, 2, L"", false, false},
        {ZEL_METHOD, 1, L"", false, false},
        {ZEL_METHOD, 0, L"_i", false, false},
    };
    for (const Case& c : cases) {
        tagMethodItem m{};
        m.flags = c.flags;
        m.paramCount = c.params;
        m.returnType = const_cast<wchar_t*>(c.type);
        EXPECT_EQ(MethodIsReadProperty(&m), c.read) << c.flags << "/" << c.params;
        EXPECT_EQ(MethodIsWriteProperty(&m), c.write) << c.flags << "/" << c.params;
        EXPECT_EQ(MethodIsProperty(&m), c.read || c.write);
    }
    EXPECT_FALSE(MethodIsWriteProperty(nullptr) || MethodIsProperty(nullptr));
}

void CountElement(tagElementItem*, void* n) { ++*static_cast<int*>(n); }

TEST(Descriptors, ElementTableOfNoItemsGivesNone) {
    tagElementItem items[1] = {};
    tagTBaseTypeInfo none{}, one{}, bare{};
    none.elements = items;  // a table, but a count of 0
    one.elements = items;
    one.elementCount = 1;
    ChainedObject object({&one, nullptr, &none, &bare});  // levels without a record or a table add none
    int seen = 0;
    EnumObjectAllElements(object, CountElement, &seen);
    EXPECT_EQ(seen, 1);
    EnumObjectAllElements(object, nullptr, &seen);
    EXPECT_EQ(seen, 1);
}

// The class table is swapped out for the test and put back after it.
struct OwnClassTable {
    OwnClassTable() { CBaseTypeInfoRecorder::sm_pBaseTypeInfoTable = nullptr; }
    ~OwnClassTable() {
        CBaseTypeInfoRecorder::CleanUp();
        CBaseTypeInfoRecorder::sm_pBaseTypeInfoTable = saved;
    }
    CText2PtrHashmap* saved = CBaseTypeInfoRecorder::sm_pBaseTypeInfoTable;
};

tagTBaseTypeInfo Named(const wchar_t* name) {
    tagTBaseTypeInfo r{};
    r.name = const_cast<wchar_t*>(name);
    return r;
}

TEST(Registry, TableMadeAtFirstRegistrationReplacedByNameAndCleanedUp) {
    OwnClassTable own;
    tagTBaseTypeInfo first = Named(L"测试.甲"), second = Named(L"测试.乙"), again = Named(L"测试.甲");
    tagTBaseTypeInfo* out[3] = {};
    wchar_t* name = const_cast<wchar_t*>(L"测试.甲");

    zel::FailAllocationAfter(1);
    CBaseTypeInfoRecorder unlisted(&first);  // no memory for the table: simply not listed
    zel::FailAllocationAfter(0);
    EXPECT_EQ(CBaseTypeInfoRecorder::sm_pBaseTypeInfoTable, nullptr);
    EXPECT_EQ(zel::EnumClassRecords(nullptr, nullptr, 0), 0);
    EXPECT_EQ(zel::EnumClassRecords(nullptr, out, 3), 0);
    EXPECT_EQ(zel::FindClassRecord(nullptr, name), nullptr);

    for (tagTBaseTypeInfo* record : {&first, &second, &again}) CBaseTypeInfoRecorder{record};
    EXPECT_EQ(zel::EnumClassRecords(nullptr, nullptr, 0), 2);
    EXPECT_EQ(zel::FindClassRecord(nullptr, name), &again);  // the later record of a name wins
    EXPECT_EQ(zel::EnumClassRecords(nullptr, out, 1), 1);   // no more than asked for
    EXPECT_TRUE(out[0] == &again || out[0] == &second);
    EXPECT_EQ(out[1], nullptr);

    CBaseTypeInfoRecorder::CleanUp();
    CBaseTypeInfoRecorder::CleanUp();  // a second clean-up finds nothing to do
    EXPECT_EQ(zel::EnumClassRecords(nullptr, nullptr, 0), 0);
    EXPECT_EQ(zel::FindClassRecord(nullptr, name), nullptr);
}

}  // namespace

// What the library reads from an object's class chain: its class name and
// the default constructor found from a level downwards; and the system
// library found where it is.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include <zel/class_table.h>
#include <zel/loader.h>
#include <zel/mstring.h>

#include "common/child_process.h"
#include "runtime/chained_object.h"

namespace {
using zel::MakeMethod;

std::vector<std::string> g_ran;
void Lowest(ZelObject*) { g_ran.push_back("lowest"); }
void Middle(ZelObject*) { g_ran.push_back("middle"); }
void WithParameter(ZelObject*) { g_ran.push_back("with parameter"); }
void StaticOne(ZelObject*) { g_ran.push_back("static"); }

tagParamItem kOne[] = {zel::Param(L"值", L"_i")};
// None of these is a default constructor.
tagMethodItem kTopMethods[] = {
    MakeMethod(ZEL_CONSTRUCTOR | ZEL_METHOD_STATIC_BIT, L"静态构造", L"", nullptr, 0, zel::Fn2Ptr(StaticOne), L""),
    MakeMethod(ZEL_CONSTRUCTOR, L"带参构造", L"", kOne, 1, zel::Fn2Ptr(WithParameter), L""),
    MakeMethod(ZEL_CONSTRUCTOR, L"空构造", L"", nullptr, 0, nullptr, L""),
    MakeMethod(ZEL_METHOD, L"方法", L"", nullptr, 0, zel::Fn2Ptr(Middle), L""),
};
tagMethodItem kMiddleMethods[] = {MakeMethod(ZEL_CONSTRUCTOR, L"构造", L"", nullptr, 0, zel::Fn2Ptr(Middle), L"")};
tagMethodItem kLowestMethods[] = {MakeMethod(ZEL_CONSTRUCTOR, L"构造", L"", nullptr, 0, zel::Fn2Ptr(Lowest), L"")};

tagTBaseTypeInfo Record(const wchar_t* name, tagMethodItem* methods, int count) {
    tagTBaseTypeInfo r{};
    r.name = const_cast<wchar_t*>(name);
    r.kind = ZEL_KIND_CLASS;
    r.methods = methods;
    r.methodCount = count;
    return r;
}

TEST(ClassChain, DefaultConstructorIsTheFirstFoundFromTheLevelDown) {
    tagTBaseTypeInfo lowest = Record(L"测试.底", kLowestMethods, 1);
    tagTBaseTypeInfo middle = Record(L"测试.中", kMiddleMethods, 1);
    tagTBaseTypeInfo noTable = Record(L"测试.无表", nullptr, 3);
    tagTBaseTypeInfo top = Record(L"测试.顶", kTopMethods, 4);
    ChainedObject object({&lowest, &middle, nullptr, &noTable, &top});

    // From 9: past levels above the chain, the top's non-defaults, the absent
    // and the table-less levels.
    for (int level : {9, 0, -1}) MCallClassDefaultConstructor(object.get(), level);
    ChainedObject none({&noTable, &top});
    MCallClassDefaultConstructor(none.get(), 1);
    MCallClassDefaultConstructor(nullptr, 3);
    EXPECT_EQ(g_ran, (std::vector<std::string>{"middle", "lowest"}));
}

TEST(ClassChain, NameOfTheOwnClassAndTheEventShortName) {
    tagTBaseTypeInfo own = Record(L"测试.自己", nullptr, 0);
    ChainedObject object({nullptr, &own}), unnamed({&own, nullptr});
    EXPECT_STREQ(MGetClassName(object.get()), L"测试.自己");
    EXPECT_EQ(MGetClassName(unnamed.get()), nullptr);

    CMString shortName;
    GetEventShortName(shortName, object.get());
    EXPECT_STREQ(shortName.GetText(), L"自己");
    // After the last slash the dots are kept; one word alone has no short name.
    const std::pair<const wchar_t*, const wchar_t*> names[] = {{L"界面/按钮.单击事件", L"按钮.单击"}, {L"事件", L""}, {nullptr, L""}};
    for (auto [name, expected] : names) {
        shortName = L"旧";
        GetEventShortName(shortName, const_cast<wchar_t*>(name));
        EXPECT_STREQ(shortName.GetText(), expected);
    }
}

TEST(SystemLibrary, SearchPathsSplitAndEndInOneSlash) {
    setenv("ZELCLS_PATHS", "/a;/b/,,/c", 1);
    CMStringArray paths;
    GetZelLibSearchPaths(paths);
    unsetenv("ZELCLS_PATHS");
    ASSERT_EQ(paths.GetSize(), 3);
    EXPECT_EQ(std::wstring(paths[0]) + paths[1] + paths[2], L"/a//b//c/");
    paths.RemoveAll();
}

TEST(SystemLibrary, ReportedMissingOrFoundInALaterFolder) {
    setenv("ZELCLS_PATHS", "/nonexistent-zel-dir", 1);
    ChildResult r = RunInChild([] {
        SysLibLoader loader;
        return loader.GetRuntimeObject() || loader.GetLibInfo() ? 1 : 0;
    });
    EXPECT_EQ(r.status, 0);
    EXPECT_NE(r.out.find("[错误]：无法加载Zel语言系统类库(系统.ncl)！"), std::string::npos);

    const char* build = std::getenv("ZEL_TEST_BUILD_DIR");
    if (!build || access((std::string(build) + "/系统.ncl").c_str(), R_OK) != 0) {
        unsetenv("ZELCLS_PATHS");
        GTEST_SKIP() << "the runtime host is not built";
    }
    setenv("ZELCLS_PATHS", ("/nonexistent-zel-dir;" + std::string(build)).c_str(), 1);
    SysLibLoader loader;
    unsetenv("ZELCLS_PATHS");
    ASSERT_TRUE(loader.GetLibInfo() && loader.GetRuntimeObject());
    EXPECT_STREQ(loader.GetLibInfo()->name, L"系统");
    EXPECT_NE(MGetClassName(loader.GetRuntimeObject()), nullptr);  // its runtime belongs to it
}

}  // namespace

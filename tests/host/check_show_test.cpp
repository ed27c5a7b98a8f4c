// ncl check, show, list and doc on libraries whose records are broken in
// groups (tests/host/check_fault_groups.cpp): each finding names the class and
// the item, and describing a broken library never crashes.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "host/host_api.h"

using namespace zelhost;

namespace {

Library* Open(const std::string& name) {
    std::string e;
    Library* lib = OpenLibrary(std::string(ZEL_FAULTS_DIR) + "/" + name + ".ncl", &e);
    EXPECT_NE(lib, nullptr) << e;
    return lib;
}

struct Described { int check; std::string findings; };

// Every description of the library runs over the broken records; the check's
// findings are kept.
Described Describe(Library* lib) {
    std::ostringstream out, err, ignored;
    int check = CheckLibrary(lib, out, err);
    ListLibrary(lib, ignored, ignored);
    DocLibrary(lib, ignored, ignored);
    return {check, out.str()};
}

std::string Show(Library* lib, const wchar_t* cls) {
    std::ostringstream out, err;
    EXPECT_EQ(ShowClass(lib, cls, out, err), 0) << err.str();
    return out.str();
}

}  // namespace

TEST(CheckGroups, EachFindingNamesItsClassAndItem) {
    const struct {
        const char* library;
        std::vector<const char*> findings;
    } cases[] = {
        {"哈希",
         {"library: name hash 0x", "哈希.接口: base hash 0x00000007 != 0x00000000",
          "哈希.类: base hash 0x", "哈希.类: method #1 取: return type hash 0x",
          "哈希.类: method #1 取: parameter 1 甲: name hash 0x", "哈希.类: method #1 取: parameter 2 乙: type hash 0x",
          "哈希.类: method #1 取: parameter 4 丁: unknown type \"_i,_x\"",
          "哈希.类: method #1 取: parameter 5 戊: unknown type \"@@_i\"", "哈希.类: element 1 元素: name hash 0x",
          "哈希.类: element 1 元素: type hash 0x", "哈希.类: interface 哈希.接口: name hash 0x"}},
        {"接口",
         {"接口.类: interface 系统.输出流: 2 slots, the interface has 6",
          "接口.类: interface 接口.甲: slot 1 is null",
          "接口.类: interface 接口.没有: unknown interface (unknown class 接口.没有 (not in 接口))",
          "接口.类: interface : empty name", "接口.类: interface 系统.输入流: slot count is negative",
          "接口.类: interface 接口.甲: slots but no slot table", "接口.无表: interfaces but no interface table",
          "接口.负数: interface count is negative",
          "接口.孤儿: base class of 接口.孤儿: unknown class 接口.无基 (not in 接口)",
          "接口.自身: base class of 接口.自身: class 接口.自身 derives from itself"}},
        {"表",
         {"表.类: method #1 年: no function (bound export DatetimeClass_GetYear missing)",
          "表.类: method #2 负参数: parameter count -1 is negative",
          "表.类: method #3 缺参数表: parameters but no parameter table",
          "表.类: method #4 无返回: null return type (use \"\")", "表.类: method #5 : empty name",
          "表.类: method #6 无类型: parameter 1 参: no type", "表.类: elements but no element table",
          "表.负数: method count -1 is negative", "表.无表: 2 methods but no method table",
          "表.怪: no g_info_<Record> export names this record",
          "表.怪: kind 3 is neither 1 (class) nor 2 (interface)"}},
        {"回调",
         {"library: ZelNotifyLib(1) returned -1", "library: enumerate counts 4 records but hands out 3",
          "library: enumerate handed out a null record", "回调.类: find callback does not return this record",
          "(unnamed record): empty name"}},
        {"空名",
         {"library: empty name", "library: no enumerate callback (byte 56)", "library: no find callback (byte 60)",
          "library: no class registered"}},
        {"负数",
         {"library: enumerate returned -1", "library: enumerate counts -1 records but hands out 0",
          "library: no class registered"}},
    };
    for (const auto& c : cases) {
        Library* lib = Open(c.library);
        ASSERT_NE(lib, nullptr);
        Described d = Describe(lib);
        EXPECT_EQ(d.check, 1) << c.library;
        for (const char* f : c.findings)
            EXPECT_NE(d.findings.find(std::string(f)), std::string::npos) << c.library << ": " << f << "\n" << d.findings;
        EXPECT_EQ(d.findings.find("ok: "), std::string::npos) << d.findings;
    }
    // Lists of types and arrays of basic types are known types.
    EXPECT_EQ(Describe(Open("哈希")).findings.find("乙: unknown type"), std::string::npos);
    EXPECT_EQ(Describe(Open("哈希")).findings.find("丙: unknown type"), std::string::npos);
}

TEST(CheckGroups, ShowDescribesInterfacesFlagsAndUnknownLevels) {
    Library* ifaces = Open("接口");
    ASSERT_NE(ifaces, nullptr);
    std::string cls = Show(ifaces, L"接口.类");
    for (const char* part : {"interfaces:\n", "  系统.输出流  (2 slots)", "  接口.甲  (1 slots): 成员() → 整数"})
        EXPECT_NE(cls.find(part), std::string::npos) << part << "\n" << cls;
    EXPECT_NE(Show(ifaces, L"接口.孤儿").find("levels: unknown (base class of 接口.孤儿: unknown class 接口.无基"),
              std::string::npos);
    EXPECT_NE(Show(ifaces, L"接口.甲").find("interface 接口.甲  (record Iface"), std::string::npos);

    Library* tables = Open("表");
    ASSERT_NE(tables, nullptr);
    std::string flags = Show(tables, L"表.类");
    for (const char* part : {"bound to DatetimeClass_GetYear (missing)", "[static constructor]",
                             "(no method mark) other 0x00000100"})
        EXPECT_NE(flags.find(part), std::string::npos) << part << "\n" << flags;
    std::ostringstream out, err;
    EXPECT_EQ(ShowClass(tables, L"表.没有", out, err), 1);
    EXPECT_NE(err.str().find("no class 表.没有 in "), std::string::npos);
}

// Counts that promise a table the record does not have: calls, bindings,
// enumeration members and completion read nothing through the missing table.
TEST(CheckGroups, MissingTablesAreNeverRead) {
    Library* tables = Open("表");
    ASSERT_NE(tables, nullptr);
    std::string e;
    ClassInfo* noMethods = ClassOfRecord(tables, tables->Find(L"表.无表"), &e);
    ASSERT_NE(noMethods, nullptr) << e;
    EXPECT_EQ(CallMethod(nullptr, noMethods, 0, {}).error, "no such method item");
    EXPECT_EQ(BindMethod(noMethods, 0).function, nullptr);

    std::ostringstream out, err;
    ScriptSession session("m.zs", out, err);
    ASSERT_TRUE(session.RunLine("load \"" + tables->path + "\"", false)) << err.str();
    EXPECT_FALSE(session.RunLine("print 表.无元素.甲", false));
    EXPECT_NE(err.str().find("m.zs:2:13: error: static member 表.无元素.甲 needs ()"), std::string::npos) << err.str();
    EXPECT_TRUE(session.Complete("表.无元素.").empty());
    std::vector<Finding> findings;
    EXPECT_TRUE(session.End(findings));
}

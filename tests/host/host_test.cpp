// Unit tests of the runtime host 系统.ncl, driven through its C++ API and
// the fixture library 测试.ncl.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>

#include "host/host_api.h"
#include "runtime/services.h"

using namespace zelhost;

namespace {

struct Env : ::testing::Environment {
    void SetUp() override { setenv("ZELCLS_PATHS", ZEL_FIXTURE_DIR, 1); }
};
const auto* g_env = ::testing::AddGlobalTestEnvironment(new Env);

struct ScriptRun {
    int status;
    std::string out, err;
};

ScriptRun RunText(const std::string& script, bool audit = false) {
    std::istringstream in(script);
    std::ostringstream out, err;
    RunOptions o;
    o.audit = audit;
    int s = RunScript(in, "t.zs", o, out, err);
    return {s, out.str(), err.str()};
}

ClassInfo* Cls(const wchar_t* name) {
    std::string e;
    ClassInfo* c = FindClass(name, &e);
    EXPECT_NE(c, nullptr) << e;
    return c;
}

Library* Fixture() {
    std::string e;
    Library* lib = LibraryForClass(L"测试.计数器", &e);
    EXPECT_NE(lib, nullptr) << e;
    return lib;
}

std::string FixtureLog() {
    auto fn = reinterpret_cast<const char* (*)()>(Fixture()->Export("Fixture_Log"));
    return fn ? fn() : "";
}
void ClearLog() {
    auto fn = reinterpret_cast<void (*)()>(Fixture()->Export("Fixture_ClearLog"));
    if (fn) fn();
}

int MethodIndex(ClassInfo* c, const wchar_t* name, int argc) {
    for (int k = 0; k < c->methodCount(); ++k)
        if (wcscmp(c->methods()[k].name, name) == 0 && c->methods()[k].paramCount == argc) return k;
    return -1;
}

bool HasFinding(const std::vector<Finding>& f, const std::string& kind, const std::string& part) {
    for (auto& x : f)
        if (x.kind == kind && x.message.find(part) != std::string::npos) return true;
    return false;
}

}  // namespace

// ------------------------------------------------------------ runtime object and services
TEST(Runtime, ObjectChainEndsWithTheRuntimeClass) {
    ZelObject* rt = ZelInitSysLib();
    ASSERT_NE(rt, nullptr);
    int n = rt->classChain[0];
    ASSERT_EQ(n, 2);
    auto* cls = reinterpret_cast<tagTBaseTypeInfo*>(rt->classChain[1 + 2 * (n - 1)]);
    EXPECT_STREQ(ToUtf8(cls->name).c_str(), "系统.运行时");
    EXPECT_EQ(cls->methodCount, 17);
    auto* mm = reinterpret_cast<tagTBaseTypeInfo* (*)()>(cls->methods[ZEL_RT_MEMORY_MANAGER].function)();
    EXPECT_STREQ(ToUtf8(mm->name).c_str(), "系统.内存管理器");
    // The library record hangs from byte 20 of the runtime class (SysLibLoader::GetLibInfo).
    auto* li = static_cast<ZelLibInfo*>(cls->library);
    EXPECT_STREQ(ToUtf8(li->name).c_str(), "系统");
}

TEST(Runtime, ServicesMakeTextsAndByteSets) {
    ZelObject* rt = ZelInitSysLib();
    auto* cls = reinterpret_cast<tagTBaseTypeInfo*>(rt->classChain[3]);
    auto* mm = reinterpret_cast<tagTBaseTypeInfo* (*)()>(cls->methods[4].function)();
    BeginStatement("svc:1");
    auto* text = reinterpret_cast<unsigned char* (*)(const wchar_t*)>(mm->methods[ZEL_MM_NEW_TEXT].function)(L"abc");
    const int32_t* w = reinterpret_cast<const int32_t*>(text);
    EXPECT_EQ(w[0], 0);
    EXPECT_EQ(w[1], 3);
    EXPECT_EQ(std::wstring(reinterpret_cast<const wchar_t*>(text + 8)), L"abc");
    auto* bin = reinterpret_cast<unsigned char* (*)(const void*, int)>(mm->methods[ZEL_MM_NEW_BIN].function)("xy", 2);
    const int32_t* b = reinterpret_cast<const int32_t*>(bin);
    EXPECT_EQ(b[1], 1);
    EXPECT_EQ(b[2], 2);
    EXPECT_EQ(std::memcmp(bin + 12, "xy", 2), 0);
    EXPECT_EQ(RefCount(text), 0);
    EndStatement();  // fresh handles of the statement go
    EXPECT_EQ(RefCount(text), -2);
    EXPECT_TRUE(AuditAndReset().empty());
}

TEST(Runtime, ReportErrorUsesThePart15Formats) {
    EXPECT_EQ(FormatReport(L"", 3, L""), "发生错误码为3的错误");
    EXPECT_EQ(FormatReport(L"", -3, L""), "发生错误码为-3的严重错误");
    EXPECT_EQ(FormatReport(L"", 3, L"坏"), "错误(3): 坏");
    EXPECT_EQ(FormatReport(nullptr, -3, L"坏"), "严重错误(-3): 坏");
    EXPECT_EQ(FormatReport(L"工具", 3, L""), "类库\"工具\"中发生错误码为3的错误");
    EXPECT_EQ(FormatReport(L"工具", -20001, L""), "类库\"工具\"中发生错误码为-20001的严重错误");
    EXPECT_EQ(FormatReport(L"工具", 3, L"坏"), "类库\"工具\"中发生错误(3): 坏");
    EXPECT_EQ(FormatReport(L"工具", -20001, L"分配内存失败"), "类库\"工具\"中发生严重错误(-20001): 分配内存失败");
}

TEST(Runtime, ConstantBlocksAreChainedAndIgnored) {
    Cls(L"测试.计数器");  // loads the fixture, which registers its block
    ZelObject* rt = ZelInitSysLib();
    auto* cls = reinterpret_cast<tagTBaseTypeInfo*>(rt->classChain[3]);
    static int blockA[5] = {20, 0, 0, 0, 0}, blockB[5] = {20, 0, 0, 0, 0};
    auto reg = reinterpret_cast<void (*)(void*)>(cls->methods[ZEL_RT_REGISTER_CONST].function);
    reg(blockA);
    reg(blockB);
    EXPECT_EQ(reinterpret_cast<void*>(blockB[1]), static_cast<void*>(blockA));  // B links back to A
    EXPECT_EQ(reinterpret_cast<void*>(blockA[2]), static_cast<void*>(blockB));  // A links forward to B
    EXPECT_TRUE(IsConstant(&blockA[4]));
    Release(&blockA[3]);  // ignored: no finding
    EXPECT_EQ(AddRef(&blockB[3]), static_cast<void*>(&blockB[3]));
    EXPECT_TRUE(AuditAndReset().empty());
}

// ------------------------------------------------------------ loading and layout
TEST(Layout, RecordNamesAndHooksComeFromTheExports) {
    ClassInfo* c = Cls(L"测试.计数器");
    EXPECT_EQ(c->recordName, "Counter");
    EXPECT_NE(c->hooks[HOOK_INIT], nullptr);
    EXPECT_NE(c->hooks[HOOK_FREE], nullptr);
    EXPECT_NE(c->hooks[HOOK_SERIALIZE], nullptr);
    EXPECT_EQ(c->hooks[HOOK_CLONE], nullptr);
}

TEST(Layout, ObjectWordsChainAndZeroedBlocks) {
    ClassInfo* c = Cls(L"测试.计数器");
    ASSERT_EQ(c->levels.size(), 2u);
    EXPECT_EQ(c->levels[1].words, 4);  // _i, _db (two words), _i
    std::string e;
    BeginStatement("layout:1");
    ZelObject* o = NewObject(c, &e);
    ASSERT_NE(o, nullptr) << e;
    void** w = ZelObjectWords(o);
    EXPECT_EQ(w[0], static_cast<void*>(o));  // word 0: the object itself
    int* chain = o->classChain;
    EXPECT_EQ(chain[0], 2);
    EXPECT_STREQ(ToUtf8(reinterpret_cast<tagTBaseTypeInfo*>(chain[1])->name).c_str(), "系统.对象");
    EXPECT_STREQ(ToUtf8(reinterpret_cast<tagTBaseTypeInfo*>(chain[3])->name).c_str(), "测试.计数器");
    int* block = static_cast<int*>(w[3]);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(block[i], 0);
    EndStatement();
    EXPECT_TRUE(AuditAndReset().empty());
}

TEST(Layout, LibraryInterfaceTakesALevel) {
    ClassInfo* f = Cls(L"测试.文件");
    ASSERT_EQ(f->levels.size(), 3u);  // 系统.对象, 测试.接口, 测试.文件
    EXPECT_EQ(f->levels[1].record->kind, ZEL_KIND_INTERFACE);
    ClassInfo* s = Cls(L"测试.子文件");
    ASSERT_EQ(s->levels.size(), 4u);  // state of 测试.子文件 at level 3
    EXPECT_EQ(s->levels[3].words, 2);
    ClassInfo* st = Cls(L"测试.流");  // host interfaces take no level
    EXPECT_EQ(st->levels.size(), 2u);
    ScriptRun r = RunText("f = new 测试.子文件\nprint f.状态(), f.子状态()\n", true);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "2 3\n");
}

TEST(Layout, InitBaseFirstFreeDerivedFirst) {
    Cls(L"测试.子文件");
    ClearLog();
    ScriptRun r = RunText("f = new 测试.子文件\nf = null\n", true);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(FixtureLog(), "FileLike_Init;SubFile_Init;SubFile_Free;FileLike_Free;");
}

// ------------------------------------------------------------ reference counts and audit
TEST(Refs, AddAndReleaseFreeAtZero) {
    BeginStatement("refs:1");
    unsigned char* t = NewText(L"x");
    EXPECT_EQ(RefCount(t), 0);
    EXPECT_EQ(AddRef(t), static_cast<void*>(t));
    EXPECT_EQ(AddRef(t), static_cast<void*>(t));
    EXPECT_EQ(RefCount(t), 2);
    Release(t);
    EXPECT_EQ(RefCount(t), 1);
    Release(t);
    EXPECT_EQ(RefCount(t), -2);
    Release(t);  // over-release
    EndStatement();
    auto f = AuditAndReset();
    EXPECT_TRUE(HasFinding(f, "over-release", "文本 \"x\" made at refs:1")) << (f.empty() ? "" : f[0].message);
}

TEST(Refs, ObjectCopiesResolveToTheirObject) {
    ClassInfo* c = Cls(L"测试.计数器");
    std::string e;
    BeginStatement("copy:1");
    ZelObject* o = NewObject(c, &e);
    AddRef(o);
    int copy[3];
    std::memcpy(copy, o, 12);
    EXPECT_EQ(AddRef(copy), static_cast<void*>(o));
    EXPECT_EQ(RefCount(o), 2);
    Release(copy);
    Release(o);
    EXPECT_EQ(RefCount(o), -2);
    EndStatement();
    EXPECT_TRUE(AuditAndReset().empty());
}

TEST(Refs, UnknownHandlesAreReported) {
    static int notAHandle[4] = {0, 0, 0, 0};
    Release(notAHandle);
    AddRef(notAHandle);
    auto f = AuditAndReset();
    EXPECT_TRUE(HasFinding(f, "unknown-release", "never made"));
    EXPECT_TRUE(HasFinding(f, "unknown-addref", "never made"));
}

TEST(Audit, LeakIsReportedWithItsOrigin) {
    ScriptRun r = RunText("c = new 测试.计数器\nc.泄漏()\n", true);
    EXPECT_NE(r.status, 0);
    EXPECT_NE(r.err.find("t.zs: audit: leak: 文本 \"漏掉的文本\" made by library at t.zs:2"), std::string::npos)
        << r.err;
    ScriptRun plain = RunText("c = new 测试.计数器\nc.泄漏()\n", false);
    EXPECT_EQ(plain.status, 0);  // without --audit findings are printed but do not fail
    EXPECT_NE(plain.err.find("leak"), std::string::npos);
}

TEST(Audit, OverReleaseIsReported) {
    ScriptRun r = RunText("c = new 测试.计数器\nt = \"abc\"\nc.多释放(t)\n", true);
    EXPECT_NE(r.status, 0);
    EXPECT_NE(r.err.find("over-release"), std::string::npos) << r.err;
    EXPECT_NE(r.err.find("文本 \"abc\" made at t.zs:2"), std::string::npos) << r.err;
}

TEST(Audit, FreedValuesAreNotTouched) {
    ScriptRun r = RunText("c = new 测试.计数器\nt = \"abc\"\nc.多释放(t)\nprint t\nc.多释放(t)\n", true);
    EXPECT_NE(r.status, 0);
    EXPECT_NE(r.err.find("t.zs:4: variable t holds a freed value"), std::string::npos) << r.err;
    EXPECT_NE(r.err.find("t.zs:5: variable t holds a freed value"), std::string::npos) << r.err;
}

TEST(Audit, TakenOverBlocksAndConstantsAreClean) {
    ScriptRun r = RunText("c = new 测试.计数器\nb = c.读(3)\nprint b, c.空文本()\nexpect ok\nprint c.读(-1), ok\n", true);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "x\"616161\" \"\"\nnull 假\n");
}

TEST(Audit, ForeignResultIsReported) {
    ScriptRun r = RunText("c = new 测试.计数器\nprint c.外来()\n", true);
    EXPECT_NE(r.status, 0);
    EXPECT_EQ(r.out, "\"x\"\n");
    EXPECT_NE(r.err.find("测试.计数器.外来 returned a 文本 the host never made"), std::string::npos) << r.err;
}

TEST(Audit, VariantStyleCopiesKeepObjectsAlive) {
    ScriptRun r = RunText(
        "a = new 测试.计数器\nb = new 测试.计数器\nb.值 = 9\na.保留(b)\nb = null\nx = a.取保留()\nprint x.值\n"
        "x = null\na.丢弃()\n",
        true);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "9\n");
}

// ------------------------------------------------------------ calls
TEST(Calls, IntDoubleAndPointerSignatures) {
    ClassInfo* c = Cls(L"测试.计数器");
    std::string e;
    BeginStatement("calls:1");
    ZelObject* o = NewObject(c, &e);
    StatementHold(o);
    CallResult r = CallMethod(o, c, MethodIndex(c, L"加", 1), {Value::Int(5)});
    ASSERT_TRUE(r.ok) << r.error;
    EXPECT_EQ(r.value.kind, VK::Int);
    EXPECT_EQ(r.value.i, 5);
    r = CallMethod(o, c, MethodIndex(c, L"加", 2), {Value::Int(1), Value::Int(2)});
    EXPECT_EQ(r.value.i, 8);
    r = CallMethod(o, c, MethodIndex(c, L"缩放", 1), {Value::Double(2.5)});
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.value.kind, VK::Double);
    EXPECT_DOUBLE_EQ(r.value.d, 2.5);
    r = CallMethod(o, c, MethodIndex(c, L"缩放", 1), {Value::Int(2)});  // integer promoted to double
    EXPECT_DOUBLE_EQ(r.value.d, 5.0);
    unsigned char* a = NewText(L"甲乙");
    unsigned char* b = NewText(L"丙");
    r = CallMethod(o, c, MethodIndex(c, L"拼接", 2), {Value::Handle(VK::Text, a), Value::Handle(VK::Text, b)});
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(FormatValue(r.value), "\"甲乙丙\"");
    r = CallMethod(nullptr, c, MethodIndex(c, L"静态加", 2), {Value::Int(40), Value::Int(2)});
    EXPECT_EQ(r.value.i, 42);
    r = CallMethod(o, c, MethodIndex(c, L"序列化", 1), {Value::Null()});  // bound to Counter_Serialize
    ASSERT_TRUE(r.ok) << r.error;
    EXPECT_EQ(r.value.i, 7);
    EndStatement();
    EXPECT_TRUE(AuditAndReset().empty());
}

TEST(Calls, RawFfiCall) {
    auto add = +[](int a, double b, const char* c) -> double { return a + b + std::strlen(c); };
    Value s;
    s.kind = VK::Text;
    s.h = const_cast<char*>("abc");
    CallResult r = CallFunction(reinterpret_cast<void*>(add), {L"_i", L"_db", L"_s"},
                                {Value::Int(1), Value::Double(0.5), s}, L"_db", false);
    ASSERT_TRUE(r.ok);
    EXPECT_DOUBLE_EQ(r.value.d, 4.5);
}

TEST(Calls, LeadingWordIrregularity) {
    ScriptRun r = RunText("print 测试.数学.求极限(1.2)\n");
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "2\n");
}

TEST(Calls, SuccessWordIsPresetAndWritten) {
    ScriptRun r = RunText("c = new 测试.计数器\nc.读(2)\nprint ok\nc.读(-1)\nprint ok\n");
    EXPECT_EQ(r.out, "真\n假\n");
}

TEST(Calls, InterfaceSlots) {
    ScriptRun r = RunText("s = new 测试.流\ns.写整数(7)\ns.写小数(1.5)\ns.写文本(\"ab\")\nprint s.取长度()\n"
                    "print s.读整数(), s.读小数(), s.读文本()\n", true);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "24\n7 1.5 \"ab\"\n");
}

TEST(Calls, ObjectsByClassNameAndObjectParameters) {
    ScriptRun r = RunText("a = new 测试.计数器\nb = a.新对象()\nprint b\nexpect a.相同(b)\nb.值 = 3\n"
                    "expect a.相同(b) == 假\nexpect a.相同(null) == 假\ns = new 测试.流\na.相同(s)\n",
                    true);
    EXPECT_EQ(r.out, "测试.计数器#2\n");
    EXPECT_NE(r.err.find("t.zs:9: 测试.计数器.相同: argument 1 (另一个): 测试.流 is not a 测试.计数器"),
              std::string::npos)
        << r.err;
}

TEST(Calls, ExceptionsBecomeReports) {
    ScriptRun r = RunText("c = new 测试.计数器\nc.抛出(0)\nc.抛出(1)\nc.抛出(2)\nprint c.值\n");
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.err.find("t.zs:2: 测试.计数器.抛出 raised an exception: basic_string::erase"), std::string::npos)
        << r.err;
    EXPECT_NE(r.err.find("t.zs:3: 测试.计数器.抛出 raised an exception: narrow message"), std::string::npos);
    EXPECT_NE(r.err.find("t.zs:4: 测试.计数器.抛出 raised an exception: unknown exception"), std::string::npos);
    EXPECT_EQ(r.out, "0\n");  // the run goes on after a failed line
    ScriptRun ok = RunText("c = new 测试.计数器\nexpect error c.抛出(0)\n", true);
    EXPECT_EQ(ok.status, 0) << ok.err;
    EXPECT_EQ(ok.err, "");
    ScriptRun bad = RunText("c = new 测试.计数器\nexpect error c.加(1)\n");
    EXPECT_NE(bad.err.find("t.zs:2: expect failed: expect error c.加(1) did not raise (it gave 1)"),
              std::string::npos)
        << bad.err;
}

TEST(Calls, ReportedErrorsFailTheRun) {
    ScriptRun r = RunText("c = new 测试.计数器\nc.报错()\n");
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.err.find("t.zs:2: error reported: 类库\"测试\"中发生错误(3): 出错了"), std::string::npos) << r.err;
    ScriptRun e = RunText("c = new 测试.计数器\nexpect error c.报错()\n");
    EXPECT_EQ(e.status, 0) << e.err;
}

// ------------------------------------------------------------ scripts
TEST(Script, ValuesPrintAsDocumented) {
    ScriptRun r = RunText("# comment\nprint 1, -2, 2.5, -0.1, 1e21, 真, 假, \"a\\n\\\"b\\\\\", x\"00ff\", null\n"
                    "t = \"x\"   # trailing comment\nprint t\n");
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "1 -2 2.5 -0.1 1e+21 真 假 \"a\\n\\\"b\\\\\" x\"00ff\" null\n\"x\"\n");
}

TEST(Script, PropertiesReadAndWrite) {
    ScriptRun r = RunText("c = new 测试.计数器\nc.值 = 41\nx = c.值\nprint x, c.加(1)\nexpect c.值 == 42\n"
                    "expect c.值 != 41\nexpect c.值 > 41\nexpect c.值 <= 42\n",
                    true);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "41 42\n");
}

TEST(Script, BadScriptsGiveFileAndLine) {
    ScriptRun r = RunText("c = new 测试.计数器\n"
                    "c.加(\n"                    // 2 syntax
                    "d = new 测试.没有\n"        // 3 unknown class
                    "c.没有()\n"                 // 4 unknown method
                    "c.加(\"x\")\n"              // 5 wrong type
                    "c.加(1, 2, 3)\n"            // 6 wrong count
                    "expect c.值 == 1\n"         // 7 failed expect
                    "print nothing\n"            // 8 unknown variable
                    "e = new 没有.类\n"          // 9 no library
                    "print c.值\n");
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, "0\n");
    const char* expected[] = {
        "t.zs:2: syntax error:",
        "t.zs:3: unknown class 测试.没有",
        "t.zs:4: unknown method 测试.计数器.没有",
        "t.zs:5: 测试.计数器.加: argument 1 (增量): expected 整数, got 文本",
        "t.zs:6: 测试.计数器.加 takes 1 or 2 arguments, got 3",
        "t.zs:7: expect failed: expect c.值 == 1 (left 0, right 1)",
        "t.zs:8: unknown variable nothing",
        "t.zs:9: no class library 没有.ncl in ZELCLS_PATHS",
    };
    for (const char* e : expected) EXPECT_NE(r.err.find(e), std::string::npos) << e << "\n" << r.err;
}

TEST(Script, TemporariesAndVariablesAreReleased) {
    ScriptRun r = RunText("c = new 测试.计数器\nprint c.名字()\nprint c.拼接(\"a\", \"b\")\nn = c.名字()\nn = c.名字()\n"
                    "print new 测试.计数器\n",
                    true);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.err, "");
}

// ------------------------------------------------------------ describe
TEST(Describe, CheckPassesOnTheFixtureAndTheHost) {
    std::ostringstream out, err;
    EXPECT_EQ(CheckLibrary(Fixture(), out, err), 0) << out.str();
    std::ostringstream out2, err2;
    EXPECT_EQ(CheckLibrary(HostLibrary(), out2, err2), 0) << out2.str();
}

TEST(Describe, ShowPairsPropertiesAndNamesTypes) {
    std::ostringstream out, err;
    ASSERT_EQ(ShowClass(Fixture(), L"测试.计数器", out, err), 0);
    std::string s = out.str();
    EXPECT_NE(s.find("值: 整数  (get #1, set #2)"), std::string::npos) << s;
    EXPECT_NE(s.find("#4 缩放(因子: 小数) → 小数  [method]"), std::string::npos) << s;
    EXPECT_NE(s.find("#11 静态加(甲: 整数, 乙: 整数) → 整数  [static]"), std::string::npos) << s;
    EXPECT_NE(s.find("bound to Counter_Serialize"), std::string::npos) << s;
    EXPECT_NE(s.find("hooks: Counter_Init, Counter_Free, Counter_Serialize"), std::string::npos) << s;
}

TEST(Describe, CheckFindsDescriptorFaults) {
    std::string e;
    Library* lib = OpenLibrary(std::string(ZEL_FIXTURE_DIR) + "/坏.ncl", &e);
    ASSERT_NE(lib, nullptr) << e;
    std::ostringstream out, err;
    EXPECT_EQ(CheckLibrary(lib, out, err), 1);
    std::string s = out.str();
    const char* expected[] = {
        "坏.类: name hash",
        "坏.类: method #1 坏属性: property item is neither a getter",
        "坏.类: method #2 无函数: no function and no bound export",
        "坏.类: method #3 错哈希: name hash 0x00003039",
        "坏.类: element count is negative",
    };
    for (const char* x : expected) EXPECT_NE(s.find(x), std::string::npos) << x << "\n" << s;
}

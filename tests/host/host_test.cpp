// Unit tests of the runtime host 系统.ncl, driven through its C++ API and the
// fixture library 测试.ncl. Literals, variables and the ncl command line are
// covered end to end by tests/scripts/host_basics.zs and the ncl_cli tests.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>

#include "host/host_api.h"
#include "script_run.h"
#include <zel/services.h>

using namespace zelhost;

namespace {

using hosttest::Cls;
using hosttest::RunText;
using hosttest::ScriptRun;

void ExpectAll(const std::string& text, std::initializer_list<const char*> parts) {
    for (const char* p : parts) EXPECT_NE(text.find(p), std::string::npos) << p << "\n" << text;
}

std::string FindingLines(const std::vector<Finding>& findings) {  // "kind: message" lines
    std::string s;
    for (auto& f : findings) s += f.kind + ": " + f.message + "\n";
    return s;
}

}  // namespace

// ------------------------------------------------------------ runtime object and services
TEST(Runtime, ObjectChainServicesAndConstantBlocks) {
    ASSERT_EQ(ZelInitSysLib()->classChain[0], 2);
    auto* cls = reinterpret_cast<tagTBaseTypeInfo*>(ZelInitSysLib()->classChain[3]);
    EXPECT_EQ(ToUtf8(cls->name), "系统.运行时");
    EXPECT_EQ(cls->methodCount, 17);
    EXPECT_EQ(ToUtf8(static_cast<ZelLibInfo*>(cls->library)->name), "系统");  // the library hangs from byte 20
    auto* mm = reinterpret_cast<tagTBaseTypeInfo* (*)()>(cls->methods[ZEL_RT_MEMORY_MANAGER].function)();
    EXPECT_EQ(ToUtf8(mm->name), "系统.内存管理器");
    BeginStatement("svc:1");  // (the byte layouts are read by the class libraries in every script test)
    auto* text = reinterpret_cast<unsigned char* (*)(const wchar_t*)>(mm->methods[ZEL_MM_NEW_TEXT].function)(L"abc");
    auto* bin = reinterpret_cast<unsigned char* (*)(const void*, int)>(mm->methods[ZEL_MM_NEW_BIN].function)("xy", 2);
    EXPECT_EQ(FormatValue(Value::Handle(VK::Text, text)) + FormatValue(Value::Handle(VK::Bin, bin)), "\"abc\"x\"7879\"");
    EXPECT_EQ(RefCount(text), 0);
    EndStatement();  // fresh handles of the statement go
    EXPECT_EQ(RefCount(text), -2);
    Cls(L"测试.计数器");  // loads the fixture, which registers its block
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

TEST(Runtime, ReportFormats) {
    EXPECT_EQ(FormatReport(L"", 3, L""), "发生错误码为3的错误");
    EXPECT_EQ(FormatReport(L"", -3, L""), "发生错误码为-3的严重错误");
    EXPECT_EQ(FormatReport(L"", 3, L"坏"), "错误(3): 坏");
    EXPECT_EQ(FormatReport(nullptr, -3, L"坏"), "严重错误(-3): 坏");
    EXPECT_EQ(FormatReport(L"工具", 3, L""), "类库\"工具\"中发生错误码为3的错误");
    EXPECT_EQ(FormatReport(L"工具", -20001, L""), "类库\"工具\"中发生错误码为-20001的严重错误");
    EXPECT_EQ(FormatReport(L"工具", 3, L"坏"), "类库\"工具\"中发生错误(3): 坏");
    EXPECT_EQ(FormatReport(L"工具", -20001, L"分配内存失败"), "类库\"工具\"中发生严重错误(-20001): 分配内存失败");
}

// ------------------------------------------------------------ layout
TEST(Layout, ObjectWordsChainAndZeroedBlocks) {
    ClassInfo* c = Cls(L"测试.计数器");
    ASSERT_EQ(c->levels.size(), 2u);
    EXPECT_EQ(c->levels[1].words, 4);  // _i, _db (two words), _i
    BeginStatement("layout:1");
    ZelObject* o = NewObject(c, nullptr);
    ASSERT_NE(o, nullptr);
    void** w = ZelObjectWords(o);
    EXPECT_EQ(w[0], static_cast<void*>(o));  // word 0: the object itself
    int* chain = o->classChain;
    EXPECT_EQ(chain[0], 2);
    EXPECT_EQ(ToUtf8(reinterpret_cast<tagTBaseTypeInfo*>(chain[1])->name), "系统.对象");
    EXPECT_EQ(ToUtf8(reinterpret_cast<tagTBaseTypeInfo*>(chain[3])->name), "测试.计数器");
    for (int i = 0; i < 4; ++i) EXPECT_EQ(static_cast<int*>(w[3])[i], 0);
    EndStatement();
    EXPECT_TRUE(AuditAndReset().empty());
}

TEST(Layout, LibraryInterfaceTakesALevelAndHooksRunInOrder) {
    ClassInfo* f = Cls(L"测试.文件");
    ASSERT_EQ(f->levels.size(), 3u);  // 系统.对象, 测试.接口, 测试.文件; 系统.输出流 takes none
    EXPECT_EQ(f->levels[1].record->kind, ZEL_KIND_INTERFACE);
    ClassInfo* s = Cls(L"测试.子文件");
    ASSERT_EQ(s->levels.size(), 4u);  // state of 测试.子文件 at level 3
    EXPECT_EQ(s->levels[3].words, 2);
    auto log = reinterpret_cast<const char* (*)(int)>(s->lib->Export("Fixture_Log"));
    ASSERT_NE(log, nullptr);
    log(1);
    ScriptRun r = RunText("f = new 测试.子文件\nprint f.状态(), f.子状态()\nf = null\n", true);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "2 3\n");
    EXPECT_STREQ(log(0), "FileLike_Init;SubFile_Init;SubFile_Free;FileLike_Free;");
}

// ------------------------------------------------------------ reference counts and audit
TEST(Refs, CountsFreeAtZeroAndMisusesAreReported) {
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
    static int notAHandle[4] = {0, 0, 0, 0};
    Release(notAHandle);
    AddRef(notAHandle);
    ExpectAll(FindingLines(AuditAndReset()), {"over-release: over-release: release of a freed 文本 \"x\" made at refs:1",
                                       "unknown-release: unknown handle: release of a handle the host never made",
                                       "unknown-addref: unknown handle: add-reference of a handle the host never made"});
}

TEST(Refs, ObjectCopiesResolveToTheirObject) {
    BeginStatement("copy:1");
    ZelObject* o = NewObject(Cls(L"测试.计数器"), nullptr);
    ASSERT_NE(o, nullptr);
    AddRef(o);
    int copy[3];  // the first three words, as a variant keeps them
    std::memcpy(copy, o, 12);
    EXPECT_EQ(AddRef(copy), static_cast<void*>(o));
    EXPECT_EQ(RefCount(o), 2);
    Release(copy);
    Release(o);
    EXPECT_EQ(RefCount(o), -2);
    EndStatement();
    EXPECT_TRUE(AuditAndReset().empty());
}

// The deliberate leak is pinned by the ncl_cli.run_leak_* tests.
TEST(Audit, OverReleaseAndForeignResultsAreReported) {
    ScriptRun r = RunText("c = new 测试.计数器\nt = \"abc\"\nc.多释放(t)\nprint t\n", true);
    EXPECT_NE(r.status, 0);
    EXPECT_EQ(r.out, "");  // the freed value is not touched
    ExpectAll(r.err, {"over-release", "文本 \"abc\" made at t.zs:2", "t.zs:4:7: error: variable t holds a freed value"});
    ScriptRun foreign = RunText("c = new 测试.计数器\nprint c.外来()\n", true);
    EXPECT_NE(foreign.status, 0);
    EXPECT_EQ(foreign.out, "\"x\"\n");
    ExpectAll(foreign.err, {"测试.计数器.外来 returned a 文本 the host never made"});
}

TEST(Audit, TakenOverBlocksConstantsTemporariesAndNewObjectsAreClean) {
    ScriptRun r = RunText("c = new 测试.计数器\nb = c.读(3)\nprint b, c.空文本()\nexpect ok\nprint c.读(-1), ok\n"
                          "print c.拼接(\"a\", \"b\")\nn = c.拼接(\"a\", \"b\")\nn = c.拼接(\"c\", \"d\")\n"
                          "d = c.新对象()\nprint d\nexpect c.相同(d)\nd.值 = 3\nexpect c.相同(d) == 假\n"
                          "expect c.相同(null) == 假\nprint new 测试.计数器\n",
                          true);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(r.out, "x\"616161\" \"\"\nnull 假\n\"ab\"\n测试.计数器#2\n测试.计数器#3\n");
}

// ------------------------------------------------------------ calls
// Each call goes through libffi: ints, doubles (an integer argument promoted),
// texts, a static item, an overload by count, and an item bound to an export.
TEST(Calls, IntDoubleAndPointerSignatures) {
    ScriptRun r = RunText("c = new 测试.计数器\nprint c.加(5), c.加(1, 2), c.缩放(2.5), c.缩放(2), c.拼接(\"甲乙\", \"丙\"), "
                          "测试.计数器.静态加(40, 2), c.序列化(null)\n", true);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "5 8 6.25 5 \"甲乙丙\" 42 真(7)\n");  // 序列化 is bound to Counter_Serialize
}

TEST(Calls, ExceptionsAndReportedErrorsFailTheLine) {
    const std::pair<const char*, const char*> cases[] = {
        {"c.抛出(0)", "t.zs:2:3: error: 测试.计数器.抛出 raised an exception: basic_string::erase"},
        {"c.抛出(1)", "t.zs:2:3: error: 测试.计数器.抛出 raised an exception: narrow message\n    c.抛出(1)\n      ^~~~\n"},
        {"c.抛出(2)", "t.zs:2:3: error: 测试.计数器.抛出 raised an exception: unknown exception"},
        {"c.报错()", "t.zs:2:3: error: error reported: 类库\"测试\"中发生错误(3): 出错了"},
    };
    for (auto& [line, message] : cases) {
        // The first error ends the run: the last line never prints.
        ScriptRun r = RunText(std::string("c = new 测试.计数器\n") + line + "\nprint c.值\n");
        EXPECT_EQ(r.status, 1) << line;
        EXPECT_EQ(r.out, "") << line;
        ExpectAll(r.err, {message});
    }
    ScriptRun ok = RunText("c = new 测试.计数器\nexpect error c.抛出(0)\nexpect error c.报错()\n", true);
    EXPECT_EQ(ok.status, 0) << ok.err;
    EXPECT_EQ(ok.err, "");
}

// ------------------------------------------------------------ scripts and descriptions
// Text that is not UTF-8 (overlong, surrogate, cut short) is refused whole,
// before its first line runs; look-alike punctuation is fine inside literals.
TEST(Script, RefusesTextThatIsNotUtf8) {
    for (const char* bad : {"\xED\xA0\x80", "\xE4\xB8"}) {  // a surrogate, a cut sequence
        ScriptRun r = RunText(std::string("print 1\nprint \"") + bad + "\"\n");
        EXPECT_EQ(r.status, 1) << r.err;
        EXPECT_EQ(r.out, "");
        ExpectAll(r.err, {"t.zs:2:8: error: not valid UTF-8: byte 0x", " at byte 8 of the line"});
    }
    ScriptRun ok = RunText("\xEF\xBB\xBFprint \"（，）“”\"\n");
    EXPECT_EQ(ok.status, 0) << ok.err;
    EXPECT_EQ(ok.out, "\"（，）“”\"\n");
}

// Parentheses, arguments and member chains nest 200 deep at most; deeper
// lines are refused before anything runs instead of exhausting the stack
// (tests/scripts/errors/nested_too_deeply.zs refuses 201 parentheses).
TEST(Script, NestingHasALimit) {
    ScriptRun ok = RunText("print " + std::string(200, '(') + "7" + std::string(200, ')') + "\n");
    EXPECT_EQ(ok.status, 0) << ok.err;
    EXPECT_EQ(ok.out, "7\n");
    std::string chain = "print c";
    for (int k = 0; k < 201; ++k) chain += ".值";
    ScriptRun links = RunText(chain + "\n");
    EXPECT_EQ(links.status, 1);
    ExpectAll(links.err, {"t.zs:1:408: error: syntax error: nested too deeply"});
}

TEST(Describe, CheckFindsDescriptorFaults) {
    std::string e;
    Library* lib = OpenLibrary(std::string(ZEL_FIXTURE_DIR) + "/坏.ncl", &e);
    ASSERT_NE(lib, nullptr) << e;
    std::ostringstream out, err;
    EXPECT_EQ(CheckLibrary(lib, out, err), 1);
    ExpectAll(out.str(), {"坏.类: name hash", "坏.类: method #1 坏属性: property item is neither a getter",
                          "坏.类: method #2 无函数: no function and no bound export",
                          "坏.类: method #3 错哈希: name hash 0x00003039", "坏.类: element count is negative"});
}

namespace {
// The folder of 系统.ncl (the build folder here) follows those of ZELCLS_PATHS,
// once, so a library beside the host is found without any setting.
TEST(Paths, HostFolderComesLastAndOnce) {
    std::string host = SearchPaths().back();
    ASSERT_FALSE(host.empty());
    EXPECT_EQ(host.back(), '/');
    setenv("ZELCLS_PATHS", ("/nowhere;" + host + ",/elsewhere/").c_str(), 1);
    EXPECT_EQ(SearchPaths(), (std::vector<std::string>{"/nowhere/", host, "/elsewhere/"}));
    unsetenv("ZELCLS_PATHS");
    EXPECT_EQ(SearchPaths(), std::vector<std::string>{host});
    setenv("ZELCLS_PATHS", ZEL_FIXTURE_DIR, 1);
    EXPECT_EQ(SearchPaths(), (std::vector<std::string>{std::string(ZEL_FIXTURE_DIR) + "/", host}));
}
}  // namespace

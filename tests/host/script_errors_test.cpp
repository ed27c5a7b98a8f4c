// Script lines the interpreter refuses: each stops the run with one diagnostic
// that names the fault and points at it; nothing after it runs. Lines that
// must pass (comparisons, literals) run beside them.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>

#include "host/host_api.h"
#include "script_run.h"

using namespace zelhost;

namespace {

using hosttest::RunText;
using hosttest::ScriptRun;

// Each case runs after `c = new 测试.计数器`; the run must stop at it with the
// diagnostic (line, column and message) given.
template <size_t N>
void ExpectRefused(const std::pair<const char*, const char*> (&cases)[N]) {
    for (const auto& [line, diagnostic] : cases) {
        ScriptRun r = RunText(std::string("c = new 测试.计数器\n") + line + "\nprint 1\n");
        EXPECT_EQ(r.status, 1) << line;
        EXPECT_EQ(r.out.find("1\n"), std::string::npos) << line << ": the line after the error ran";
        EXPECT_NE(r.err.find(std::string("t.zs:") + diagnostic), std::string::npos)
            << line << "\nwant: " << diagnostic << "\ngot:  " << r.err;
    }
}

}  // namespace

TEST(ScriptErrors, LiteralsThatDoNotScan) {
    static const std::pair<const char*, const char*> cases[] = {
        {"print \"a\\qb\"", "2:9: error: syntax error: unknown escape \\q"},
        {"print \"abc", "2:7: error: syntax error: unterminated text literal"},
        {"print x\"abc\"", "2:7: error: syntax error: byte set literal needs an even number of hex digits"},
        {"print x\"zz\"", "2:7: error: syntax error: bad hex digit in byte set literal"},
        {"print 2147483648", "2:7: error: syntax error: integer out of range: 2147483648"},
        {"print 1.2.3", "2:7: error: syntax error: bad number: 1.2.3"},
        {"print !c", "2:7: error: syntax error: unexpected '!'"},
    };
    ExpectRefused(cases);
}

TEST(ScriptErrors, LinesThatDoNotParse) {
    static const std::pair<const char*, const char*> cases[] = {
        {"print )", "2:7: error: syntax error: unexpected ')'"},
        {"print (1", "2:9: error: syntax error: expected ')' at end of line"},
        {"print c.", "2:9: error: syntax error: expected a name at end of line"},
        {"print new", "2:10: error: syntax error: expected a name at end of line"},
        {"print print", "2:7: error: syntax error: unexpected 'print'"},
        {"print 1 != 2", "2:9: error: syntax error: unexpected text near '!='"},
        {"expect c.值 = 1", "2:12: error: syntax error: use '==' to compare"},
        {"load 1", "2:6: error: syntax error: load needs a path in quotes"},
        {"c.加(1) = 3", "2:3: error: syntax error: cannot assign to this"},
        {"c.加(1,", "2:7: error: syntax error: expected a value at end of line"},
    };
    ExpectRefused(cases);
}

TEST(ScriptErrors, CallsAndPropertiesThatCannotRun) {
    static const std::pair<const char*, const char*> cases[] = {
        {"print c.加(c.抛出(5))", "2:9: error: an argument yields no value"},
        {"d = null\nprint d.值", "3:7: error: null object"},
        {"print new 测试.接口", "2:11: error: 测试.接口 is an interface"},
        {"print 测试.计数器.值", "2:14: error: static member 测试.计数器.值 needs ()"},
        {"print 测试.计数器.加(1)", "2:14: error: 测试.计数器.加 is not static: call it on an object"},
        {"print c.加", "2:9: error: 测试.计数器.加 is not a readable property (call it with ())"},
        {"c.加 = 1", "2:3: error: 测试.计数器.加 is not a writable property"},
        {"print c.值(1, 2)", "2:9: error: 测试.计数器.值 takes 0 or 1 arguments, got 2"},
        {"print c.泄漏(1)", "2:9: error: 测试.计数器.泄漏 takes 0 arguments, got 1"},
        {"x = c.抛出(5)", "2:1: error: the right side yields no value"},
        {"测试.计数器.值 = 1", "2:8: error: cannot assign to a static member"},
        {"c.值 = \"x\"", "2:3: error: 测试.计数器.值: argument 1 (数): expected 整数, got 文本"},
        {"print c.拼接(\"a\", null)", "2:17: error: 测试.计数器.拼接: argument 2 (乙): null is not a 文本 (pass \"\" for an empty text)"},
        {"print c.缩放(真)", "2:12: error: 测试.计数器.缩放: argument 1 (因子): expected 小数, got 逻辑"},
        {"print c.抛出(5)", "2:9: error: nothing to print: the call yields no value"},
        {"f = new 测试.文件\nf.写整数()", "3:3: error: 写整数 takes 1 argument, got 0"},
        {"f = new 测试.文件\nf.写整数(\"x\")", "3:7: error: 写整数: argument 1: expected 整数, got 文本"},
        {"load \"/no/such/lib.ncl\"", "2:1: error: cannot open /no/such/lib.ncl: No such file or directory"},
        {"c.没有()", "2:3: error: unknown method 测试.计数器.没有\n"},
        {"c.加(1, 2, 3)", "2:3: error: 测试.计数器.加 takes 1 or 2 arguments, got 3"},
        {"print c.加(1).值", "2:9: error: not an object: 1\n"},
        {"c.相同(new 测试.文件)", "2:10: error: 测试.计数器.相同: argument 1 (另一个): 测试.文件 is not a 测试.计数器"},
    };
    ExpectRefused(cases);
}

TEST(ScriptErrors, ExpectationsThatFail) {
    static const std::pair<const char*, const char*> cases[] = {
        {"expect c.抛出(5)", "2:8: error: nothing to compare: the call yields no value"},
        {"expect 0", "2:8: error: expect failed: expect 0 (value 0)"},
        {"expect null", "2:8: error: expect failed: expect null (value null)"},
        {"expect \"a\" < 1", "2:8: error: cannot order \"a\" and 1"},
        {"expect c < new 测试.计数器", "2:8: error: cannot order 测试.计数器#"},
        {"expect null < null", "2:8: error: expect failed"},
        {"expect error c.加(1)", "2:14: error: expect failed: expect error c.加(1) did not raise (it gave 1)"},
        {"expect error c.抛出(5)", "2:14: error: expect failed: expect error c.抛出(5) did not raise\n"},
        {"expect error cc.加(1)", "2:14: error: unknown variable cc; did you mean c?"},  // not a raise
        {"expect c.值 == 1", "2:8: error: expect failed: expect c.值 == 1 (left 0, right 1)\n"},
    };
    ExpectRefused(cases);
}

// Comparisons across kinds, escapes and byte sets that hold.
TEST(ScriptErrors, ComparisonsAndLiteralsThatHold) {
    ScriptRun r = RunText(
        "c = new 测试.计数器\n"
        "d = c\n"
        "expect c == d\n"
        "expect c != new 测试.计数器\n"
        "expect null == null\n"
        "expect null != c\n"
        "expect 1 == 1.0\n"
        "expect 真 == 1\n"
        "expect 2.5 > 2\n"
        "expect \"a\" < \"b\"\n"
        "expect x\"01\" < x\"0102\"\n"
        "expect x\"02\" > x\"0102\"\n"
        "expect x\"61 62\" == x\"6162\"\n"
        "expect \"1\" != 1\n"
        "expect -1.5e1 == -15\n"
        "expect c\n"
        "expect 0.5\n"
        "print \"\\\"\\\\\\t\\r\x01\"\n"
        "print c.空文本(), c.读(2)\n");
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "\"\\\"\\\\\\t\\r\\x01\"\n\"\" x\"6161\"\n");
}

// Hooks that raise: the object is not made; a Free hook's failure is reported
// on the line that released the object, or at the end of the script.
TEST(ScriptErrors, HooksThatRaise) {
    const struct { const char* script; const char* out; const char* diagnostic; } cases[] = {
        {"expect error new 抛.初始化\nx = new 抛.初始化\nprint 1\n", "",
         "t.zs:2:9: error: 抛.初始化_Init raised an exception: no state"},
        {"y = new 抛.释放\ny = null\nprint 1\n", "",
         "t.zs:2:1: error: error reported: 抛.释放 Free hook raised an exception: state lost"},
        {"z = new 抛.释放\nprint 1\n", "1\n",
         "t.zs:end: error: error reported: 抛.释放 Free hook raised an exception: state lost"},
    };
    for (const auto& c : cases) {
        ScriptRun r = RunText(c.script);
        EXPECT_EQ(r.status, 1) << c.script;
        EXPECT_EQ(r.out, c.out) << c.script;
        EXPECT_NE(r.err.find(c.diagnostic), std::string::npos) << c.script << "\n" << r.err;
    }
}

// A very long line shows a window around the fault, marked "..." on each side
// it cuts, with the caret still under the fault.
TEST(ScriptErrors, LongLinesShowAWindowAroundTheFault) {
    std::string many;
    for (int k = 0; k < 150; ++k) many += "1, ";
    std::istringstream err(RunText("print " + many + "cc, " + many + "1\n").err);
    std::string message, shown, caret;
    std::getline(err, message), std::getline(err, shown), std::getline(err, caret);
    EXPECT_TRUE(shown.rfind("    ...", 0) == 0 && shown.size() < 200 && shown.substr(shown.size() - 3) == "...") << shown;
    EXPECT_EQ(caret.find('^'), shown.find("cc")) << shown << "\n" << caret;
    EXPECT_EQ(caret.substr(caret.find('^')), "^~");
}

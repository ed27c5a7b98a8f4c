// The script language of `ncl run`, shared by its three parts: script_syntax.cpp
// (tokens and parsing), script_eval.cpp (expressions) and script.cpp (statements).
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/host_internal.h"

namespace zelhost::script {

struct ScriptError {
    std::string message;
    bool raised = false;    // a method raised
    bool reported = false;  // a method reported an error (service 5)
};

// ------------------------------------------------------------ syntax
struct Expr {
    enum Kind { Lit, TextLit, BinLit, Var, New, Ok, Member } kind = Lit;
    Value lit;
    std::wstring text;   // TextLit, Var name, New class name, Member name
    std::string bytes;   // BinLit
    std::unique_ptr<Expr> base;
    bool call = false;
    std::vector<std::unique_ptr<Expr>> args;
};
using ExprP = std::unique_ptr<Expr>;

enum class StmtKind { Empty, Print, Expect, ExpectError, Assign, Eval, Load };

struct Statement {
    StmtKind kind = StmtKind::Empty;
    std::vector<ExprP> exprs;  // print: values; expect: lhs (, rhs); assign: target, value; eval: the expression
    std::wstring op;           // expect's comparison
    std::string path;          // load
};

bool IsKeyword(const std::wstring& s);
// One line of a script; throws ScriptError on a syntax error.
Statement Parse(const std::wstring& line);
// The line without its surrounding blanks, in UTF-8 (for messages).
std::string Trim(const std::wstring& line);

// ------------------------------------------------------------ evaluation
struct Interp {
    std::map<std::wstring, Value> vars;
    std::vector<std::wstring> order;  // first definition order
    int32_t lastSuccess = 1;
    int reportMark = 0;

    bool IsHandle(const Value& v) const;
    // Throws the error reports made since the last check.
    void CheckReports();
    Value Eval(const Expr& e);
    void Assign(const Expr& target, const Expr& valueExpr);

private:
    bool ClassPath(const Expr& e, std::wstring& out) const;
    Value Hold(Value v);
    bool Resolve(ClassInfo* cls, const std::wstring& name, int argc, int mode, ClassInfo*& owner, int& index,
                 std::string& err);
    bool ResolveSlot(ClassInfo* cls, const std::wstring& name, void*& fn, const tagMethodItem*& member);
    Value Finish(CallResult r);
    std::vector<Value> EvalArgs(const Expr& e);
    ZelObject* ObjectOf(const Expr& base, ClassInfo*& cls);
};

}  // namespace zelhost::script

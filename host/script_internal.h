// The script language of `ncl run`, shared by its three parts: script_syntax.cpp
// (tokens and parsing), script_eval.cpp (expressions) and script.cpp (statements).
#pragma once

#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "host/host_internal.h"

namespace zelhost::script {

struct ScriptError {
    std::string message;
    bool raised = false;    // a method raised
    bool reported = false;  // a method reported an error (service 5)
    int col = -1;           // the offending token: first character (0-based) and length; -1: the statement
    int width = 0;
};

// ------------------------------------------------------------ diagnostics
// "FILE:LINE:COLUMN: error: message", the source line and a caret line under
// columns [col, col + width) of it; columns count characters.
std::string FormatDiagnostic(const std::string& file, int line, const std::wstring& source, int col, int width,
                             const std::string& message);
int EditDistance(const std::wstring& a, const std::wstring& b);
// "; did you mean X?" for the closest candidate, or "" when none is close.
std::string DidYouMean(const std::wstring& name, const std::vector<std::wstring>& candidates);
// The first byte of raw text that is not part of valid UTF-8.
bool FindBadUtf8(const std::string& s, size_t& badByte);
std::string BadUtf8Message(const std::string& raw, size_t badByte, int& col);
// The ASCII character a full-width or look-alike character stands for, or 0.
char LookAlike(wchar_t c);
std::string LookAlikeMessage(wchar_t c, char ascii);

// ------------------------------------------------------------ syntax
struct Expr {
    enum Kind { Lit, TextLit, BinLit, Var, New, Ok, Member } kind = Lit;
    Value lit;
    std::wstring text;   // TextLit, Var name, New class name, Member name
    int col = 0;         // the token errors point at: a literal, a name, a member's name
    int width = 0;
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
    int col = -1;              // what an expect's failure points at
    int width = 0;
};

bool IsKeyword(const std::wstring& s);
extern const wchar_t* const kKeywords[];  // null-terminated
// One line of a script; throws ScriptError on a syntax error.
Statement Parse(const std::wstring& line);
// The line without its surrounding blanks, in UTF-8 (for messages).
std::string Trim(const std::wstring& line);

// ------------------------------------------------------------ evaluation
// The member names of a class and its bases; properties only when `propertiesOnly`.
std::vector<std::wstring> MemberNames(ClassInfo* cls, bool propertiesOnly);
// 系统 and the name of every class library found in the search folders.
std::vector<std::wstring> Namespaces();

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
    std::vector<std::wstring> VariableNames() const;

private:
    bool ClassPath(const Expr& e, std::wstring& out) const;
    Value Hold(Value v);
    bool Resolve(ClassInfo* cls, const std::wstring& name, int argc, int mode, ClassInfo*& owner, int& index,
                 std::string& err);
    Value EvalNode(const Expr& e);
    bool ResolveSlot(ClassInfo* cls, const std::wstring& name, void*& fn, const tagMethodItem*& member);
    Value Finish(CallResult r);
    std::vector<Value> EvalArgs(const Expr& e);
    ZelObject* ObjectOf(const Expr& base, ClassInfo*& cls);
};

}  // namespace zelhost::script

namespace zelhost {

struct ScriptSession::State {
    std::string file;
    std::ostream& out;
    std::ostream& err;
    std::ostringstream reportSink;  // service 5's own printing; the reports reach err as diagnostics
    script::Interp interp;
    int lineNo = 0;
    State(const std::string& f, std::ostream& o, std::ostream& e) : file(f), out(o), err(e) {}
};

}  // namespace zelhost

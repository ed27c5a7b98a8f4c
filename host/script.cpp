// Scripts, part three: running the statements of a script (print, expect,
// assignments, load) one line at a time, and the audit at its end.
#include <algorithm>
#include <cstring>
#include <istream>
#include <ostream>
#include <sstream>

#include "host/script_internal.h"

namespace zelhost {

using namespace script;

namespace {

// -1, 0 or 1; 2 when unequal without an order (`ordered` false) or not comparable at all.
int Compare(const Value& a, const Value& b, bool& comparable, bool& ordered) {
    comparable = true;
    ordered = true;
    auto numeric = [](const Value& v) { return v.kind == VK::Int || v.kind == VK::Bool || v.kind == VK::Double; };
    if (numeric(a) && numeric(b)) {
        if (a.kind != VK::Double && b.kind != VK::Double) return a.i < b.i ? -1 : a.i > b.i ? 1 : 0;
        double x = a.kind == VK::Double ? a.d : a.i, y = b.kind == VK::Double ? b.d : b.i;
        if (x != x || y != y) { ordered = false; return x == y ? 0 : 2; }
        return x < y ? -1 : x > y ? 1 : 0;
    }
    if (a.kind == VK::Text && b.kind == VK::Text) {
        int c = wcscmp(reinterpret_cast<const wchar_t*>(static_cast<char*>(a.h) + 8),
                       reinterpret_cast<const wchar_t*>(static_cast<char*>(b.h) + 8));
        return c < 0 ? -1 : c > 0 ? 1 : 0;
    }
    if (a.kind == VK::Bin && b.kind == VK::Bin) {
        const int32_t* x = static_cast<const int32_t*>(a.h);
        const int32_t* y = static_cast<const int32_t*>(b.h);
        int n = std::min(x[2], y[2]);
        int c = n > 0 ? std::memcmp(x + 3, y + 3, size_t(n)) : 0;
        if (c) return c < 0 ? -1 : 1;
        return x[2] < y[2] ? -1 : x[2] > y[2] ? 1 : 0;
    }
    ordered = false;
    if (a.kind == VK::Null || b.kind == VK::Null) return a.kind == b.kind ? 0 : 2;
    if ((a.kind == VK::Object || a.kind == VK::Foreign || a.kind == VK::Array) && a.kind == b.kind)
        return a.h == b.h ? 0 : 2;
    comparable = false;
    return 2;
}
// One statement; throws ScriptError. `echo` prints an expression statement's value.
void Execute(Interp& it, const Statement& st, const std::string& src, bool echo, std::ostream& out) {
    auto failAt = [&st](const std::string& msg) { throw ScriptError{msg, false, false, st.col, st.width}; };
    switch (st.kind) {
        case StmtKind::Print: {
            std::string text;
            for (size_t k = 0; k < st.exprs.size(); ++k) {
                Value v = it.Eval(*st.exprs[k]);
                if (v.kind == VK::Void)
                    throw ScriptError{"nothing to print: the call yields no value", false, false, st.exprs[k]->col,
                                      st.exprs[k]->width};
                text += (k ? " " : "") + FormatValue(v);
            }
            out << text << '\n';
            out.flush();  // keep printed lines if a later call crashes the process
            break;
        }
        case StmtKind::Expect: {
            Value a = it.Eval(*st.exprs[0]);
            if (a.kind == VK::Void) failAt("nothing to compare: the call yields no value");
            if (st.exprs.size() == 1) {
                bool truth = (a.kind == VK::Int || a.kind == VK::Bool) ? a.i != 0 :
                             a.kind == VK::Double ? a.d != 0 : a.kind != VK::Null;
                if (!truth) failAt("expect failed: " + src + " (value " + FormatValue(a) + ")");
                break;
            }
            Value b = it.Eval(*st.exprs[1]);
            if (b.kind == VK::Void) failAt("nothing to compare: the call yields no value");
            bool comparable, ordered;
            int c = Compare(a, b, comparable, ordered);
            const std::wstring& op = st.op;
            bool pass;
            if (op == L"==") pass = c == 0;
            else if (op == L"!=") pass = c != 0;
            else {
                if (!ordered && comparable && c != 2) ordered = true;
                if (!comparable || !ordered) failAt("cannot order " + FormatValue(a) + " and " + FormatValue(b));
                pass = op == L"<" ? c < 0 : op == L">" ? c > 0 : op == L"<=" ? c <= 0 : c >= 0;
            }
            if (!pass) failAt("expect failed: " + src + " (left " + FormatValue(a) + ", right " + FormatValue(b) + ")");
            break;
        }
        case StmtKind::ExpectError: {
            bool raised = false;
            Value v;
            try {
                v = it.Eval(*st.exprs[0]);
            } catch (const ScriptError& e) {
                if (!e.raised && !e.reported) throw;
                raised = true;
            }
            if (!raised)
                failAt("expect failed: " + src + " did not raise" +
                       (v.kind == VK::Void ? std::string() : " (it gave " + FormatValue(v) + ")"));
            break;
        }
        case StmtKind::Assign: it.Assign(*st.exprs[0], *st.exprs[1]); break;
        case StmtKind::Eval: {
            Value v = it.Eval(*st.exprs[0]);
            if (echo && v.kind != VK::Void) {
                out << FormatValue(v) << '\n';
                out.flush();
            }
            break;
        }
        case StmtKind::Load: {
            std::string e;
            if (!OpenLibrary(st.path, &e)) failAt(e);
            break;
        }
        case StmtKind::Empty: break;
    }
}

}  // namespace

ScriptSession::ScriptSession(const std::string& file, std::ostream& out, std::ostream& err)
    : state_(new State(file, out, err)) {
    SetReportStream(&state_->reportSink);
    state_->interp.reportMark = ReportCount();
    TakeReports();
}

ScriptSession::~ScriptSession() {
    SetReportStream(nullptr);
    delete state_;
}

bool ScriptSession::RunLine(const std::string& raw, bool echo) {
    State& s = *state_;
    int lineNo = ++s.lineNo;
    std::wstring line = FromUtf8(raw);
    auto report = [&](const ScriptError& e) {
        s.out.flush();
        s.err << FormatDiagnostic(s.file, lineNo, line, e.col, e.width, e.message);
        s.err.flush();
        return false;
    };
    size_t bad = 0;
    if (FindBadUtf8(raw, bad)) {
        ScriptError e;
        e.message = BadUtf8Message(raw, bad, e.col);
        e.width = 1;
        return report(e);
    }
    Statement st;
    try {
        st = Parse(line);
    } catch (const ScriptError& e) {
        ScriptError syntax = e;
        syntax.message = "syntax error: " + e.message;
        return report(syntax);
    }
    if (st.kind == StmtKind::Empty) return true;
    bool ok = true;
    BeginStatement(s.file + ":" + std::to_string(lineNo));
    try {
        Execute(s.interp, st, Trim(line), echo, s.out);
    } catch (const ScriptError& e) {
        ok = report(e);
    }
    EndStatement();
    // Reports made by hooks when the statement's temporaries went.
    try {
        s.interp.CheckReports();
    } catch (const ScriptError& e) {
        if (ok) ok = report(e);
    }
    return ok;
}

void ScriptSession::SkipLine() { ++state_->lineNo; }

bool ScriptSession::End(std::vector<Finding>& findings) {
    State& s = *state_;
    Interp& it = s.interp;
    BeginStatement(s.file + ":end");
    for (size_t k = it.order.size(); k-- > 0;) {
        Value v = it.vars[it.order[k]];
        if (it.IsHandle(v)) Release(v.h);
    }
    it.vars.clear();
    it.order.clear();
    EndStatement();
    bool clean = true;
    try {
        it.CheckReports();
    } catch (const ScriptError& e) {
        s.err << s.file << ":end: error: " << e.message << std::endl;
        clean = false;
    }
    findings = AuditAndReset();
    it.lastSuccess = 1;
    return clean;
}

int RunScript(std::istream& in, const std::string& file, const RunOptions& options, std::ostream& out,
              std::ostream& err) {
    std::vector<std::string> lines;
    for (std::string raw; std::getline(in, raw);) lines.push_back(raw);
    // Text in another encoding would turn into wrong names and U+FFFD: refuse it whole.
    for (size_t k = 0; k < lines.size(); ++k) {
        size_t bad = 0;
        if (!FindBadUtf8(lines[k], bad)) continue;
        int col = 0;
        std::string msg = BadUtf8Message(lines[k], bad, col);
        err << FormatDiagnostic(file, int(k) + 1, FromUtf8(lines[k]), col, 1, msg);
        err.flush();
        return 1;
    }
    ScriptSession session(file, out, err);
    bool ok = true;
    for (const std::string& raw : lines)
        if (!(ok = session.RunLine(raw, false))) break;
    std::vector<Finding> findings;
    if (!session.End(findings)) ok = false;
    for (const Finding& f : findings) err << file << ": audit: " << f.message << std::endl;
    out.flush();
    err.flush();
    if (!ok) return 1;
    if (options.audit && !findings.empty()) return 1;
    return 0;
}

}  // namespace zelhost

// Scripts, part three: running the statements of a script (print, expect,
// assignments, load) and the audit at its end.
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

}  // namespace

int RunScript(std::istream& in, const std::string& file, const RunOptions& options, std::ostream& out,
              std::ostream& err) {
    std::ostringstream reportSink;
    SetReportStream(&reportSink);
    Interp it;
    it.reportMark = ReportCount();
    TakeReports();
    int failures = 0;
    std::string raw;
    int lineNo = 0;
    while (std::getline(in, raw)) {
        ++lineNo;
        std::wstring line = FromUtf8(raw);
        std::string where = file + ":" + std::to_string(lineNo);
        auto fail = [&](const std::string& msg) {
            out.flush();
            err << where << ": " << msg << std::endl;
            ++failures;
        };
        Statement st;
        try {
            st = Parse(line);
        } catch (const ScriptError& e) {
            fail("syntax error: " + e.message);
            continue;
        }
        if (st.kind == StmtKind::Empty) continue;
        std::string src = Trim(line);
        BeginStatement(where);
        try {
            switch (st.kind) {
                case StmtKind::Print: {
                    std::string text;
                    for (size_t k = 0; k < st.exprs.size(); ++k) {
                        Value v = it.Eval(*st.exprs[k]);
                        if (v.kind == VK::Void) throw ScriptError{"nothing to print: the call yields no value"};
                        text += (k ? " " : "") + FormatValue(v);
                    }
                    out << text << '\n';
                    out.flush();  // keep printed lines if a later call crashes the process
                    break;
                }
                case StmtKind::Expect: {
                    Value a = it.Eval(*st.exprs[0]);
                    if (a.kind == VK::Void) throw ScriptError{"nothing to compare: the call yields no value"};
                    if (st.exprs.size() == 1) {
                        bool truth = (a.kind == VK::Int || a.kind == VK::Bool) ? a.i != 0 :
                                     a.kind == VK::Double ? a.d != 0 : a.kind != VK::Null;
                        if (!truth) fail("expect failed: " + src + " (value " + FormatValue(a) + ")");
                        break;
                    }
                    Value b = it.Eval(*st.exprs[1]);
                    if (b.kind == VK::Void) throw ScriptError{"nothing to compare: the call yields no value"};
                    bool comparable, ordered;
                    int c = Compare(a, b, comparable, ordered);
                    const std::wstring& op = st.op;
                    bool pass;
                    if (op == L"==") pass = c == 0;
                    else if (op == L"!=") pass = c != 0;
                    else {
                        if (!ordered && comparable && c != 2) ordered = true;
                        if (!comparable || !ordered)
                            throw ScriptError{"cannot order " + FormatValue(a) + " and " + FormatValue(b)};
                        pass = op == L"<" ? c < 0 : op == L">" ? c > 0 : op == L"<=" ? c <= 0 : c >= 0;
                    }
                    if (!pass)
                        fail("expect failed: " + src + " (left " + FormatValue(a) + ", right " + FormatValue(b) + ")");
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
                        fail("expect failed: " + src + " did not raise" +
                             (v.kind == VK::Void ? std::string() : " (it gave " + FormatValue(v) + ")"));
                    break;
                }
                case StmtKind::Assign: it.Assign(*st.exprs[0], *st.exprs[1]); break;
                case StmtKind::Eval: it.Eval(*st.exprs[0]); break;
                case StmtKind::Load: {
                    std::string e;
                    if (!OpenLibrary(st.path, &e)) throw ScriptError{e};
                    break;
                }
                case StmtKind::Empty: break;
            }
        } catch (const ScriptError& e) {
            fail(e.message);
        }
        EndStatement();
        // Reports made by hooks when the statement's temporaries went.
        try {
            it.CheckReports();
        } catch (const ScriptError& e) {
            fail(e.message);
        }
    }
    // Drop the variables, last defined first, then audit.
    BeginStatement(file + ":end");
    for (size_t k = it.order.size(); k-- > 0;) {
        Value v = it.vars[it.order[k]];
        if (it.IsHandle(v)) Release(v.h);
    }
    it.vars.clear();
    EndStatement();
    try {
        it.CheckReports();
    } catch (const ScriptError& e) {
        err << file << ":end: " << e.message << std::endl;
        ++failures;
    }
    std::vector<Finding> findings = AuditAndReset();
    for (const Finding& f : findings) err << file << ": audit: " << f.message << std::endl;
    SetReportStream(nullptr);
    out.flush();
    err.flush();
    if (failures) return 1;
    if (options.audit && !findings.empty()) return 1;
    return 0;
}

}  // namespace zelhost

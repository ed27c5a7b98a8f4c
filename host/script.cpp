// The line-based script language of `ncl run` (see docs/runtime-abi.md,
// "Scripts").
#include <charconv>
#include <climits>
#include <cstring>
#include <istream>
#include <map>
#include <memory>
#include <ostream>
#include <sstream>

#include "host/host_internal.h"

namespace zelhost {
namespace {

// ------------------------------------------------------------ tokens
enum class T { Ident, Int, Double, Text, Bin, Op, End };

struct Token {
    T type = T::End;
    std::wstring text;   // identifier, operator, text literal
    std::string bytes;   // byte-set literal
    int32_t i = 0;
    double d = 0;
};

struct ScriptError {
    std::string message;
    bool raised = false;    // a method raised
    bool reported = false;  // a method reported an error (service 5)
};

bool IsOpChar(wchar_t c) { return wcschr(L".(),=!<>\"#", c) != nullptr; }
bool IsSpace(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\r' || c == L'\n' || c == 0x3000 || c == 0xFEFF; }
bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

int HexDigit(wchar_t c) {
    if (c >= L'0' && c <= L'9') return c - L'0';
    if (c >= L'a' && c <= L'f') return c - L'a' + 10;
    if (c >= L'A' && c <= L'F') return c - L'A' + 10;
    return -1;
}

std::vector<Token> Tokenize(const std::wstring& line) {
    std::vector<Token> out;
    size_t i = 0, n = line.size();
    while (i < n) {
        wchar_t c = line[i];
        if (IsSpace(c)) { ++i; continue; }
        if (c == L'#') break;
        Token t;
        if (c == L'"' || (c == L'x' && i + 1 < n && line[i + 1] == L'"')) {
            bool bin = c == L'x';
            i += bin ? 2 : 1;
            std::wstring s;
            bool closed = false;
            while (i < n) {
                wchar_t ch = line[i++];
                if (ch == L'"') { closed = true; break; }
                if (ch == L'\\' && !bin) {
                    if (i >= n) break;
                    wchar_t e = line[i++];
                    switch (e) {
                        case L'n': s += L'\n'; break;
                        case L't': s += L'\t'; break;
                        case L'r': s += L'\r'; break;
                        case L'0': s += L'\0'; break;
                        case L'"': s += L'"'; break;
                        case L'\\': s += L'\\'; break;
                        default: throw ScriptError{"unknown escape \\" + ToUtf8(std::wstring(1, e))};
                    }
                    continue;
                }
                s += ch;
            }
            if (!closed) throw ScriptError{"unterminated text literal"};
            if (bin) {
                std::wstring hex;
                for (wchar_t h : s)
                    if (!IsSpace(h)) hex += h;
                if (hex.size() % 2) throw ScriptError{"byte set literal needs an even number of hex digits"};
                for (size_t k = 0; k < hex.size(); k += 2) {
                    int a = HexDigit(hex[k]), b = HexDigit(hex[k + 1]);
                    if (a < 0 || b < 0) throw ScriptError{"bad hex digit in byte set literal"};
                    t.bytes += char(a * 16 + b);
                }
                t.type = T::Bin;
            } else {
                t.type = T::Text;
                t.text = s;
            }
            out.push_back(t);
            continue;
        }
        if (IsDigit(c) || ((c == L'-' || c == L'+') && i + 1 < n && (IsDigit(line[i + 1]) || line[i + 1] == L'.'))) {
            size_t start = i;
            ++i;
            bool isDouble = false;
            while (i < n && (IsDigit(line[i]) || line[i] == L'.' || line[i] == L'e' || line[i] == L'E' ||
                             ((line[i] == L'-' || line[i] == L'+') && (line[i - 1] == L'e' || line[i - 1] == L'E')))) {
                if (line[i] == L'.' || line[i] == L'e' || line[i] == L'E') isDouble = true;
                ++i;
            }
            std::string num = ToUtf8(line.substr(start, i - start));
            // from_chars: independent of the locale (a library may call setlocale).
            const char* first = num.c_str() + (num[0] == '+' ? 1 : 0);
            const char* last = num.c_str() + num.size();
            std::from_chars_result r;
            if (isDouble) {
                t.type = T::Double;
                r = std::from_chars(first, last, t.d);
            } else {
                t.type = T::Int;
                long long v = 0;
                r = std::from_chars(first, last, v);
                if (r.ec == std::errc::result_out_of_range || v < INT32_MIN || v > INT32_MAX)
                    throw ScriptError{"integer out of range: " + num};
                t.i = int32_t(v);
            }
            if (r.ec != std::errc() || r.ptr != last) throw ScriptError{"bad number: " + num};
            out.push_back(t);
            continue;
        }
        if (IsOpChar(c)) {
            t.type = T::Op;
            if ((c == L'=' || c == L'!' || c == L'<' || c == L'>') && i + 1 < n && line[i + 1] == L'=') {
                t.text = line.substr(i, 2);
                i += 2;
            } else {
                if (c == L'!') throw ScriptError{"unexpected '!'"};
                t.text = std::wstring(1, c);
                ++i;
            }
            out.push_back(t);
            continue;
        }
        size_t start = i;
        while (i < n && !IsSpace(line[i]) && !IsOpChar(line[i])) ++i;
        t.type = T::Ident;
        t.text = line.substr(start, i - start);
        out.push_back(t);
    }
    out.push_back(Token{});
    return out;
}

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

bool IsKeyword(const std::wstring& s) {
    return s == L"new" || s == L"print" || s == L"expect" || s == L"null" || s == L"真" || s == L"假" ||
           s == L"ok" || s == L"load";
}

struct Parser {
    std::vector<Token> toks;
    size_t pos = 0;
    const Token& Peek() const { return toks[pos]; }
    bool IsOp(const wchar_t* op) const { return Peek().type == T::Op && Peek().text == op; }
    bool IsIdent(const wchar_t* s) const { return Peek().type == T::Ident && Peek().text == s; }
    void Expect(const wchar_t* op) {
        if (!IsOp(op)) throw ScriptError{"expected '" + ToUtf8(op) + "'" + Near()};
        ++pos;
    }
    std::string Near() const {
        const Token& t = Peek();
        switch (t.type) {
            case T::End: return " at end of line";
            case T::Op: case T::Ident: return " near '" + ToUtf8(t.text) + "'";
            default: return "";
        }
    }
    std::wstring Name() {
        if (Peek().type != T::Ident) throw ScriptError{"expected a name" + Near()};
        return toks[pos++].text;
    }
    std::wstring DottedName() {
        std::wstring s = Name();
        while (IsOp(L".")) {
            ++pos;
            s += L"." + Name();
        }
        return s;
    }
    ExprP Primary() {
        const Token& t = Peek();
        auto e = std::make_unique<Expr>();
        switch (t.type) {
            case T::Int: e->lit = Value::Int(t.i); ++pos; return e;
            case T::Double: e->lit = Value::Double(t.d); ++pos; return e;
            case T::Text: e->kind = Expr::TextLit; e->text = t.text; ++pos; return e;
            case T::Bin: e->kind = Expr::BinLit; e->bytes = t.bytes; ++pos; return e;
            case T::Op:
                if (t.text == L"(") {
                    ++pos;
                    ExprP inner = Postfix();
                    Expect(L")");
                    return inner;
                }
                throw ScriptError{"unexpected '" + ToUtf8(t.text) + "'"};
            case T::End: throw ScriptError{"expected a value at end of line"};
            case T::Ident: break;
        }
        std::wstring w = t.text;
        ++pos;
        if (w == L"真") { e->lit = Value::Bool(1); return e; }
        if (w == L"假") { e->lit = Value::Bool(0); return e; }
        if (w == L"null") { e->lit = Value::Null(); return e; }
        if (w == L"ok") { e->kind = Expr::Ok; return e; }
        if (w == L"new") {
            e->kind = Expr::New;
            e->text = DottedName();
            return e;
        }
        if (IsKeyword(w)) throw ScriptError{"unexpected '" + ToUtf8(w) + "'"};
        e->kind = Expr::Var;
        e->text = w;
        return e;
    }
    ExprP Postfix() {
        ExprP e = Primary();
        while (IsOp(L".")) {
            ++pos;
            auto m = std::make_unique<Expr>();
            m->kind = Expr::Member;
            m->text = Name();
            m->base = std::move(e);
            if (IsOp(L"(")) {
                ++pos;
                m->call = true;
                if (!IsOp(L")")) {
                    for (;;) {
                        m->args.push_back(Postfix());
                        if (IsOp(L",")) { ++pos; continue; }
                        break;
                    }
                }
                Expect(L")");
            }
            e = std::move(m);
        }
        return e;
    }
};

enum class StmtKind { Empty, Print, Expect, ExpectError, Assign, Eval, Load };

struct Statement {
    StmtKind kind = StmtKind::Empty;
    std::vector<ExprP> exprs;  // print: values; expect: lhs (, rhs); assign: target, value; eval: the expression
    std::wstring op;           // expect's comparison
    std::string path;          // load
    std::string source;        // the line, for messages
};

Statement Parse(const std::wstring& line) {
    Statement st;
    Parser p;
    p.toks = Tokenize(line);
    if (p.Peek().type == T::End) return st;
    if (p.IsIdent(L"print")) {
        ++p.pos;
        st.kind = StmtKind::Print;
        for (;;) {
            st.exprs.push_back(p.Postfix());
            if (p.IsOp(L",")) { ++p.pos; continue; }
            break;
        }
    } else if (p.IsIdent(L"expect")) {
        ++p.pos;
        if (p.IsIdent(L"error")) {
            ++p.pos;
            st.kind = StmtKind::ExpectError;
            st.exprs.push_back(p.Postfix());
        } else {
            st.kind = StmtKind::Expect;
            st.exprs.push_back(p.Postfix());
            const Token& t = p.Peek();
            if (t.type == T::Op && (t.text == L"==" || t.text == L"!=" || t.text == L"<" || t.text == L">" ||
                                    t.text == L"<=" || t.text == L">=")) {
                st.op = t.text;
                ++p.pos;
                st.exprs.push_back(p.Postfix());
            } else if (t.type == T::Op && t.text == L"=") {
                throw ScriptError{"use '==' to compare"};
            }
        }
    } else if (p.IsIdent(L"load")) {
        ++p.pos;
        if (p.Peek().type != T::Text) throw ScriptError{"load needs a path in quotes"};
        st.kind = StmtKind::Load;
        st.path = ToUtf8(p.Peek().text);
        ++p.pos;
    } else {
        ExprP e = p.Postfix();
        if (p.IsOp(L"=")) {
            ++p.pos;
            bool ok = (e->kind == Expr::Var) || (e->kind == Expr::Member && !e->call);
            if (!ok) throw ScriptError{"cannot assign to this"};
            st.kind = StmtKind::Assign;
            st.exprs.push_back(std::move(e));
            st.exprs.push_back(p.Postfix());
        } else {
            st.kind = StmtKind::Eval;
            st.exprs.push_back(std::move(e));
        }
    }
    if (p.Peek().type != T::End) throw ScriptError{"unexpected text" + p.Near()};
    return st;
}

// ------------------------------------------------------------ evaluation
struct Interp {
    std::map<std::wstring, Value> vars;
    std::vector<std::wstring> order;  // first definition order
    int32_t lastSuccess = 1;
    int reportMark = 0;

    bool IsHandle(const Value& v) const {
        return !v.foreign && v.h &&
               (v.kind == VK::Text || v.kind == VK::Bin || v.kind == VK::Object || v.kind == VK::Array);
    }

    // The class path of an expression like 工具.数学运算 whose root is not a variable.
    bool ClassPath(const Expr& e, std::wstring& out) const {
        if (e.kind == Expr::Var) {
            if (vars.count(e.text)) return false;
            out = e.text;
            return true;
        }
        if (e.kind == Expr::Member && !e.call) {
            std::wstring b;
            if (!ClassPath(*e.base, b)) return false;
            out = b + L"." + e.text;
            return true;
        }
        return false;
    }

    void CheckReports() {
        if (ReportCount() != reportMark) {
            reportMark = ReportCount();
            std::vector<std::string> reps = TakeReports();
            std::string msg = "error reported";
            for (auto& r : reps) msg += ": " + r;
            throw ScriptError{msg, false, true};
        }
    }

    Value Hold(Value v) {
        if (IsHandle(v)) StatementHold(v.h);
        return v;
    }

    // Finds a method item by name and argument count along the chain.
    // mode: 0 call, 1 property read, 2 property write.
    bool Resolve(ClassInfo* cls, const std::wstring& name, int argc, int mode, ClassInfo*& owner, int& index,
                 std::string& err) {
        std::vector<int> counts;
        bool nameSeen = false;
        for (size_t L = cls->levels.size(); L-- > 0;) {
            ClassInfo* c = cls->levels[L].cls;
            if (!c || c->kind == ZEL_KIND_INTERFACE) continue;
            int n = c->methodCount();
            tagMethodItem* ms = c->methods();
            for (int k = 0; k < n && ms; ++k) {
                if (!ms[k].name || name != ms[k].name) continue;
                nameSeen = true;
                bool prop = (ms[k].flags & ZEL_METHOD_PROPERTY_BIT) != 0;
                bool hasRet = ms[k].returnType && *ms[k].returnType;
                if (mode == 1 && !(prop && ms[k].paramCount == 0 && hasRet)) continue;
                if (mode == 2 && !(prop && ms[k].paramCount == 1 && !hasRet)) continue;
                counts.push_back(ms[k].paramCount);
                if (ms[k].paramCount == argc) {
                    owner = c;
                    index = k;
                    return true;
                }
            }
        }
        std::string full = ToUtf8(cls->name) + "." + ToUtf8(name);
        if (!nameSeen)
            err = (mode == 0 ? "unknown method " : "unknown property ") + full;
        else if (mode == 1 && counts.empty())
            err = full + " is not a readable property (call it with ())";
        else if (mode == 2 && counts.empty())
            err = full + " is not a writable property";
        else {
            err = full + " takes ";
            for (size_t i = 0; i < counts.size(); ++i) err += (i ? " or " : "") + std::to_string(counts[i]);
            err += " argument" + std::string(counts.size() == 1 && counts[0] == 1 ? "" : "s") + ", got " +
                   std::to_string(argc);
        }
        return false;
    }

    // A member of 系统.输入流 / 系统.输出流 on an object that implements it.
    bool ResolveSlot(ClassInfo* cls, const std::wstring& name, void*& fn, const tagMethodItem*& member) {
        for (size_t L = cls->levels.size(); L-- > 0;) {
            tagTBaseTypeInfo* rec = cls->levels[L].record;
            if (!rec || rec->kind == ZEL_KIND_INTERFACE || !rec->interfaces) continue;
            for (int i = 0; i < rec->interfaceCount; ++i) {
                tagInterfaceEntry& e = rec->interfaces[i];
                if (!e.name) continue;
                tagTBaseTypeInfo* irec = HostFindRecord(e.name);
                if (!irec || irec->kind != ZEL_KIND_INTERFACE) continue;
                auto* ii = reinterpret_cast<tagTInterfaceInfo*>(irec);
                for (int k = 0; k < ii->methodCount && k < e.slotCount; ++k) {
                    if (name == ii->methods[k].name && e.slots && e.slots[k]) {
                        fn = e.slots[k];
                        member = &ii->methods[k];
                        return true;
                    }
                }
            }
        }
        return false;
    }

    Value Finish(CallResult r) {
        lastSuccess = r.success;
        if (!r.ok) {
            // A report made before the raise belongs to the same failure.
            if (ReportCount() != reportMark) {
                reportMark = ReportCount();
                for (auto& rep : TakeReports()) r.error += "; reported: " + rep;
            }
            throw ScriptError{r.error, r.raised};
        }
        CheckReports();
        return Hold(r.value);
    }

    std::vector<Value> EvalArgs(const Expr& e) {
        std::vector<Value> args;
        for (auto& a : e.args) {
            Value v = Eval(*a);
            if (v.kind == VK::Void) throw ScriptError{"an argument yields no value"};
            args.push_back(v);
        }
        return args;
    }

    ZelObject* ObjectOf(const Expr& base, ClassInfo*& cls) {
        Value b = Eval(base);
        if (b.kind == VK::Null) throw ScriptError{"null object"};
        if (b.kind != VK::Object) throw ScriptError{"not an object: " + FormatValue(b)};
        auto* obj = static_cast<ZelObject*>(b.h);
        cls = ObjectClass(obj);
        if (!cls) throw ScriptError{"the object is not one the host made"};
        if (!IsLive(obj)) throw ScriptError{"the object has been freed"};
        return obj;
    }

    Value Eval(const Expr& e) {
        switch (e.kind) {
            case Expr::Lit: return e.lit;
            case Expr::TextLit: return Hold(Value::Handle(VK::Text, NewText(e.text.c_str())));
            case Expr::BinLit:
                return Hold(Value::Handle(VK::Bin, NewBin(e.bytes.data(), int(e.bytes.size()))));
            case Expr::Ok: return Value::Bool(lastSuccess);
            case Expr::Var: {
                auto it = vars.find(e.text);
                if (it == vars.end()) throw ScriptError{"unknown variable " + ToUtf8(e.text)};
                if (IsHandle(it->second) && RefCount(it->second.h) == -2)
                    throw ScriptError{"variable " + ToUtf8(e.text) + " holds a freed value (released too often): " +
                                      DescribeHandle(it->second.h)};
                return it->second;
            }
            case Expr::New: {
                std::string err;
                ClassInfo* cls = FindClass(e.text, &err);
                if (!cls) throw ScriptError{err};
                if (cls->kind == ZEL_KIND_INTERFACE) throw ScriptError{ToUtf8(e.text) + " is an interface"};
                ZelObject* obj = NewObject(cls, &err);
                Value v = Hold(Value::Handle(VK::Object, obj));
                if (!err.empty()) throw ScriptError{err, true};
                CheckReports();
                return v;
            }
            case Expr::Member: break;
        }
        std::wstring path;
        if (ClassPath(*e.base, path)) {
            std::string err;
            ClassInfo* cls = FindClass(path, &err);
            if (!cls) {
                if (e.base->kind == Expr::Var && path.find(L'.') == std::wstring::npos)
                    throw ScriptError{"unknown variable " + ToUtf8(path)};
                throw ScriptError{err};
            }
            if (!e.call) {
                // An enumeration member: an element whose value is kept in its first reserved word.
                for (int k = 0; k < cls->elementCount(); ++k) {
                    const tagElementItem& el = cls->elements()[k];
                    if (el.name && e.text == el.name && cls->methodCount() == 0) return Value::Int(el.reserved[0]);
                }
                throw ScriptError{"static member " + ToUtf8(path + L"." + e.text) + " needs ()"};
            }
            std::vector<Value> args = EvalArgs(e);
            ClassInfo* owner = nullptr;
            int idx = -1;
            if (!Resolve(cls, e.text, int(args.size()), 0, owner, idx, err)) throw ScriptError{err};
            if (!(owner->methods()[idx].flags & ZEL_METHOD_STATIC_BIT))
                throw ScriptError{ToUtf8(owner->name + L"." + e.text) + " is not static: call it on an object"};
            return Finish(CallMethod(nullptr, owner, idx, args));
        }
        ClassInfo* cls = nullptr;
        ZelObject* obj = ObjectOf(*e.base, cls);
        std::vector<Value> args = EvalArgs(e);
        ClassInfo* owner = nullptr;
        int idx = -1;
        std::string err;
        if (Resolve(cls, e.text, int(args.size()), e.call ? 0 : 1, owner, idx, err))
            return Finish(CallMethod(obj, owner, idx, args));
        void* fn = nullptr;
        const tagMethodItem* member = nullptr;
        if (e.call && ResolveSlot(cls, e.text, fn, member)) return Finish(CallSlot(obj, fn, member, args));
        throw ScriptError{err};
    }

    void Assign(const Expr& target, const Expr& valueExpr) {
        if (target.kind == Expr::Var) {
            if (IsKeyword(target.text)) throw ScriptError{"cannot assign to " + ToUtf8(target.text)};
            Value v = Eval(valueExpr);
            if (v.kind == VK::Void) throw ScriptError{"the right side yields no value"};
            if (IsHandle(v)) v.h = AddRef(v.h);
            auto it = vars.find(target.text);
            if (it != vars.end()) {
                Value old = it->second;
                it->second = v;
                if (IsHandle(old)) Release(old.h);
            } else {
                vars[target.text] = v;
                order.push_back(target.text);
            }
            return;
        }
        // Property write.
        std::wstring path;
        if (ClassPath(*target.base, path)) throw ScriptError{"cannot assign to a static member"};
        ClassInfo* cls = nullptr;
        ZelObject* obj = ObjectOf(*target.base, cls);
        Value v = Eval(valueExpr);
        if (v.kind == VK::Void) throw ScriptError{"the right side yields no value"};
        ClassInfo* owner = nullptr;
        int idx = -1;
        std::string err;
        if (!Resolve(cls, target.text, 1, 2, owner, idx, err)) throw ScriptError{err};
        Finish(CallMethod(obj, owner, idx, {v}));
    }

    static int Compare(const Value& a, const Value& b, bool& comparable, bool& ordered) {
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
};

std::string Trim(const std::wstring& line) {
    size_t a = 0, b = line.size();
    while (a < b && IsSpace(line[a])) ++a;
    while (b > a && IsSpace(line[b - 1])) --b;
    return ToUtf8(line.substr(a, b - a));
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
                    int c = Interp::Compare(a, b, comparable, ordered);
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

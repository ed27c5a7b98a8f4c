// Scripts, part one: splitting a line into tokens and parsing it into a statement.
#include <charconv>
#include <climits>
#include <cstring>

#include "host/script_internal.h"

namespace zelhost::script {
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

// ------------------------------------------------------------ parsing
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

}  // namespace

bool IsKeyword(const std::wstring& s) {
    return s == L"new" || s == L"print" || s == L"expect" || s == L"null" || s == L"真" || s == L"假" ||
           s == L"ok" || s == L"load";
}

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

std::string Trim(const std::wstring& line) {
    size_t a = 0, b = line.size();
    while (a < b && IsSpace(line[a])) ++a;
    while (b > a && IsSpace(line[b - 1])) --b;
    return ToUtf8(line.substr(a, b - a));
}

}  // namespace zelhost::script

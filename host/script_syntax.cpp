// Scripts, part one: splitting a line into tokens and parsing it into a statement.
#include <charconv>
#include <climits>
#include <cstring>
#include <locale.h>
#include <stdlib.h>

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
    int col = 0;  // first character and length in the line
    int width = 0;
};

// Parentheses, arguments and member chains nest at most this deep, so that a
// hostile line cannot exhaust the stack of the parser or the evaluator.
constexpr int kMaxNesting = 200;

[[noreturn]] void Fail(const std::string& message, size_t col, size_t width) {
    throw ScriptError{message, false, false, int(col), int(width)};
}

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
    auto push = [&out](Token& t, size_t start, size_t end) {
        t.col = int(start);
        t.width = int(end - start);
        out.push_back(t);
    };
    auto checkLookAlike = [&line](size_t at) {
        if (char ascii = LookAlike(line[at])) Fail(LookAlikeMessage(line[at], ascii), at, 1);
    };
    while (i < n) {
        wchar_t c = line[i];
        if (IsSpace(c)) { ++i; continue; }
        if (c == L'#') break;
        checkLookAlike(i);
        Token t;
        size_t start = i;
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
                        default: Fail("unknown escape \\" + ToUtf8(std::wstring(1, e)), i - 2, 2);
                    }
                    continue;
                }
                s += ch;
            }
            if (!closed) Fail("unterminated text literal", start, 1);
            if (bin) {
                std::wstring hex;
                for (wchar_t h : s)
                    if (!IsSpace(h)) hex += h;
                if (hex.size() % 2) Fail("byte set literal needs an even number of hex digits", start, i - start);
                for (size_t k = 0; k < hex.size(); k += 2) {
                    int a = HexDigit(hex[k]), b = HexDigit(hex[k + 1]);
                    if (a < 0 || b < 0) Fail("bad hex digit in byte set literal", start, i - start);
                    t.bytes += char(a * 16 + b);
                }
                t.type = T::Bin;
            } else {
                t.type = T::Text;
                t.text = s;
            }
            push(t, start, i);
            continue;
        }
        if (IsDigit(c) || ((c == L'-' || c == L'+') && i + 1 < n && (IsDigit(line[i + 1]) || line[i + 1] == L'.'))) {
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
                // from_chars checks the form; strtod_l rounds correctly on x87,
                // where from_chars' fast path can round twice.
                static locale_t c = newlocale(LC_ALL_MASK, "C", locale_t(0));
                if (r.ec == std::errc() && c) t.d = strtod_l(first, nullptr, c);
            } else {
                t.type = T::Int;
                long long v = 0;
                r = std::from_chars(first, last, v);
                if (r.ec == std::errc::result_out_of_range || v < INT32_MIN || v > INT32_MAX)
                    Fail("integer out of range: " + num, start, i - start);
                t.i = int32_t(v);
            }
            if (r.ec != std::errc() || r.ptr != last) Fail("bad number: " + num, start, i - start);
            push(t, start, i);
            continue;
        }
        if (IsOpChar(c)) {
            t.type = T::Op;
            if ((c == L'=' || c == L'!' || c == L'<' || c == L'>') && i + 1 < n && line[i + 1] == L'=') {
                t.text = line.substr(i, 2);
                i += 2;
            } else {
                if (c == L'!') Fail("unexpected '!'", i, 1);
                t.text = std::wstring(1, c);
                ++i;
            }
            push(t, start, i);
            continue;
        }
        while (i < n && !IsSpace(line[i]) && !IsOpChar(line[i])) checkLookAlike(i++);
        t.type = T::Ident;
        t.text = line.substr(start, i - start);
        push(t, start, i);
    }
    Token end;
    push(end, n, n + 1);
    return out;
}

// ------------------------------------------------------------ parsing
struct Parser {
    std::vector<Token> toks;
    size_t pos = 0;
    int depth = -1;  // the statement's own expressions are level 0
    const Token& Peek() const { return toks[pos]; }
    bool IsOp(const wchar_t* op) const { return Peek().type == T::Op && Peek().text == op; }
    bool IsIdent(const wchar_t* s) const { return Peek().type == T::Ident && Peek().text == s; }
    void Expect(const wchar_t* op) {
        if (!IsOp(op)) FailHere("expected '" + ToUtf8(op) + "'" + Near());
        ++pos;
    }
    [[noreturn]] void FailHere(const std::string& message) const {
        Fail(message, size_t(Peek().col), size_t(Peek().width));
    }
    void CheckNesting(int level) const {
        if (level > kMaxNesting) FailHere("nested too deeply (more than " + std::to_string(kMaxNesting) + " levels)");
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
        if (Peek().type != T::Ident) FailHere("expected a name" + Near());
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
        e->col = t.col;
        e->width = t.width;
        switch (t.type) {
            case T::Int: e->lit = Value::Int(t.i); ++pos; return e;
            case T::Double: e->lit = Value::Double(t.d); ++pos; return e;
            case T::Text: e->kind = Expr::TextLit; e->text = t.text; ++pos; return e;
            case T::Bin: e->kind = Expr::BinLit; e->bytes = t.bytes; ++pos; return e;
            case T::Op:
                if (t.text == L"(") {
                    CheckNesting(depth + 1);
                    ++pos;
                    ExprP inner = Postfix();
                    Expect(L")");
                    return inner;
                }
                FailHere("unexpected '" + ToUtf8(t.text) + "'");
            case T::End: FailHere("expected a value at end of line");
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
            e->col = Peek().col;
            e->text = DottedName();
            e->width = toks[pos - 1].col + toks[pos - 1].width - e->col;
            return e;
        }
        if (IsKeyword(w)) Fail("unexpected '" + ToUtf8(w) + "'", size_t(e->col), size_t(e->width));
        e->kind = Expr::Var;
        e->text = w;
        return e;
    }
    ExprP Postfix() {
        CheckNesting(++depth);
        ExprP e = Primary();
        int links = 0;
        while (IsOp(L".")) {
            CheckNesting(depth + ++links);
            ++pos;
            auto m = std::make_unique<Expr>();
            m->kind = Expr::Member;
            m->col = Peek().col;
            m->width = Peek().width;
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
        --depth;
        return e;
    }
};

}  // namespace

const wchar_t* const kKeywords[] = {L"new", L"print", L"expect", L"null", L"真", L"假", L"ok", L"load", nullptr};

bool IsKeyword(const std::wstring& s) {
    for (const wchar_t* const* k = kKeywords; *k; ++k)
        if (s == *k) return true;
    return false;
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
                p.FailHere("use '==' to compare");
            }
        }
    } else if (p.IsIdent(L"load")) {
        ++p.pos;
        if (p.Peek().type != T::Text) p.FailHere("load needs a path in quotes");
        st.kind = StmtKind::Load;
        st.path = ToUtf8(p.Peek().text);
        ++p.pos;
    } else {
        ExprP e = p.Postfix();
        if (p.IsOp(L"=")) {
            ++p.pos;
            bool ok = (e->kind == Expr::Var) || (e->kind == Expr::Member && !e->call);
            if (!ok) Fail("cannot assign to this", size_t(e->col), size_t(e->width));
            st.kind = StmtKind::Assign;
            st.exprs.push_back(std::move(e));
            st.exprs.push_back(p.Postfix());
        } else {
            // A bare name followed by more text is a misspelt statement word: "prnt 1".
            if (e->kind == Expr::Var && p.Peek().type != T::End && p.Peek().type != T::Op) {
                std::string hint = DidYouMean(e->text, {L"print", L"expect", L"load"});
                if (!hint.empty())
                    Fail("unknown statement " + ToUtf8(e->text) + hint, size_t(e->col), size_t(e->width));
            }
            st.kind = StmtKind::Eval;
            st.exprs.push_back(std::move(e));
        }
    }
    if (p.Peek().type != T::End) p.FailHere("unexpected text" + p.Near());
    if (st.kind == StmtKind::Expect || st.kind == StmtKind::ExpectError) {
        size_t first = st.kind == StmtKind::Expect ? 1 : 2, last = p.pos - 1;
        st.col = p.toks[first].col;
        st.width = p.toks[last].col + p.toks[last].width - st.col;
    }
    return st;
}

std::string Trim(const std::wstring& line) {
    size_t a = 0, b = line.size();
    while (a < b && IsSpace(line[a])) ++a;
    while (b > a && IsSpace(line[b - 1])) --b;
    return ToUtf8(line.substr(a, b - a));
}

}  // namespace zelhost::script

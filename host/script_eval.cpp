// Scripts, part two: evaluating expressions: literals, variables, new objects,
// static and object method calls, property reads and writes.
#include <algorithm>
#include <cstdlib>

#include "host/script_internal.h"

namespace zelhost::script {
// The member names of a class and its bases; properties only when `propertiesOnly`.
std::vector<std::wstring> MemberNames(ClassInfo* cls, bool propertiesOnly) {
    std::vector<std::wstring> names;
    for (const Level& lv : cls->levels) {
        ClassInfo* c = lv.cls;
        if (!c || c->kind == ZEL_KIND_INTERFACE || !c->methods()) continue;
        for (int k = 0; k < c->methodCount(); ++k) {
            const tagMethodItem& m = c->methods()[k];
            if (m.name && (!propertiesOnly || (m.flags & ZEL_METHOD_PROPERTY_BIT))) names.push_back(m.name);
        }
    }
    return names;
}

namespace {

// FindClass's message, with the closest class of the namespace's library, or
// the closest library when there is none.
std::string ClassError(const std::wstring& name, const std::string& err) {
    Library* lib = LibraryForClass(name, nullptr);
    if (!lib) {
        std::wstring rest = name.substr(std::min(name.find(L'.'), name.size()));
        std::vector<std::wstring> names;
        for (const std::wstring& ns : Namespaces()) names.push_back(ns + rest);
        return err + DidYouMean(name, names);
    }
    if (lib->Find(name)) return err;
    std::vector<std::wstring> names;
    for (tagTBaseTypeInfo* rec : lib->Records())
        if (rec && rec->name) names.push_back(rec->name);
    return err + DidYouMean(name, names);
}

// A call refused for one of its arguments ("…: argument 2 (名): expected 整数,
// got 文本") points at that argument.
void PointAtArgument(ScriptError& x, const Expr& call) {
    static const char kTag[] = ": argument ";
    size_t at = x.message.find(kTag);
    if (x.raised || at == std::string::npos) return;
    int k = std::atoi(x.message.c_str() + at + sizeof kTag - 1);
    if (k < 1 || size_t(k) > call.args.size()) return;
    x.col = call.args[size_t(k) - 1]->col;
    x.width = call.args[size_t(k) - 1]->width;
}

}  // namespace

std::vector<std::wstring> Interp::VariableNames() const {
    std::vector<std::wstring> names;
    for (auto& v : vars) names.push_back(v.first);
    return names;
}

bool Interp::IsHandle(const Value& v) const {
    return !v.foreign && v.h &&
           (v.kind == VK::Text || v.kind == VK::Bin || v.kind == VK::Object || v.kind == VK::Array);
}

// The class path of an expression like 工具.数学运算 whose root is not a variable.
bool Interp::ClassPath(const Expr& e, std::wstring& out) const {
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

void Interp::CheckReports() {
    if (ReportCount() != reportMark) {
        reportMark = ReportCount();
        std::vector<std::string> reps = TakeReports();
        std::string msg = "error reported";
        for (auto& r : reps) msg += ": " + r;
        throw ScriptError{msg, false, true};
    }
}

Value Interp::Hold(Value v) {
    if (IsHandle(v)) StatementHold(v.h);
    return v;
}

// Finds a method item by name and argument count along the chain.
// mode: 0 call, 1 property read, 2 property write.
bool Interp::Resolve(ClassInfo* cls, const std::wstring& name, int argc, int mode, ClassInfo*& owner, int& index,
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
        err = (mode == 0 ? "unknown method " : "unknown property ") + full + DidYouMean(name, MemberNames(cls, mode != 0));
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
bool Interp::ResolveSlot(ClassInfo* cls, const std::wstring& name, void*& fn, const tagMethodItem*& member) {
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

Value Interp::Finish(CallResult r) {
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

std::vector<Value> Interp::EvalArgs(const Expr& e) {
    std::vector<Value> args;
    for (auto& a : e.args) {
        Value v = Eval(*a);
        if (v.kind == VK::Void) throw ScriptError{"an argument yields no value"};
        args.push_back(v);
    }
    return args;
}

ZelObject* Interp::ObjectOf(const Expr& base, ClassInfo*& cls) {
    Value b = Eval(base);
    if (b.kind == VK::Null) throw ScriptError{"null object", false, false, base.col, base.width};
    if (b.kind != VK::Object) throw ScriptError{"not an object: " + FormatValue(b), false, false, base.col, base.width};
    auto* obj = static_cast<ZelObject*>(b.h);
    cls = ObjectClass(obj);
    if (!cls) throw ScriptError{"the object is not one the host made"};
    if (!IsLive(obj)) throw ScriptError{"the object has been freed"};
    return obj;
}

// An error that names no token of its own points at the expression that failed.
Value Interp::Eval(const Expr& e) {
    try {
        return EvalNode(e);
    } catch (ScriptError& x) {
        if (x.col < 0 && e.kind == Expr::Member && e.call) PointAtArgument(x, e);
        if (x.col < 0) {
            x.col = e.col;
            x.width = e.width;
        }
        throw;
    }
}

Value Interp::EvalNode(const Expr& e) {
    switch (e.kind) {
        case Expr::Lit: return e.lit;
        case Expr::TextLit: return Hold(Value::Handle(VK::Text, NewText(e.text.c_str())));
        case Expr::BinLit:
            return Hold(Value::Handle(VK::Bin, NewBin(e.bytes.data(), int(e.bytes.size()))));
        case Expr::Ok: return Value::Bool(lastSuccess);
        case Expr::Var: {
            auto it = vars.find(e.text);
            if (it == vars.end()) throw ScriptError{"unknown variable " + ToUtf8(e.text) + DidYouMean(e.text, VariableNames())};
            if (IsHandle(it->second) && RefCount(it->second.h) == -2)
                throw ScriptError{"variable " + ToUtf8(e.text) + " holds a freed value (released too often): " +
                                  DescribeHandle(it->second.h)};
            return it->second;
        }
        case Expr::New: {
            std::string err;
            ClassInfo* cls = FindClass(e.text, &err);
            if (!cls) throw ScriptError{ClassError(e.text, err)};
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
            if (e.base->kind == Expr::Var)
                throw ScriptError{"unknown variable " + ToUtf8(path) + DidYouMean(path, VariableNames()), false, false,
                                  e.base->col, e.base->width};
            const Expr* root = e.base.get();
            while (root->base) root = root->base.get();
            throw ScriptError{ClassError(path, err), false, false, root->col, e.col - 1 - root->col};
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

void Interp::Assign(const Expr& target, const Expr& valueExpr) {
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
    if (ClassPath(*target.base, path)) {
        // A name that is neither a variable nor a class is a misspelt variable.
        if (target.base->kind == Expr::Var && !FindClass(path, nullptr))
            throw ScriptError{"unknown variable " + ToUtf8(path) + DidYouMean(path, VariableNames()), false, false,
                              target.base->col, target.base->width};
        throw ScriptError{"cannot assign to a static member", false, false, target.col, target.width};
    }
    ClassInfo* cls = nullptr;
    ZelObject* obj = ObjectOf(*target.base, cls);
    Value v = Eval(valueExpr);
    if (v.kind == VK::Void) throw ScriptError{"the right side yields no value"};
    ClassInfo* owner = nullptr;
    int idx = -1;
    std::string err;
    if (!Resolve(cls, target.text, 1, 2, owner, idx, err))
        throw ScriptError{err, false, false, target.col, target.width};
    try {
        Finish(CallMethod(obj, owner, idx, {v}));
    } catch (ScriptError& x) {
        if (x.col < 0) {
            x.col = target.col;
            x.width = target.width;
        }
        throw;
    }
}

}  // namespace zelhost::script

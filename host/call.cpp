// Calling native functions with libffi (cdecl), with argument checks and the
// treatment of results and exceptions.
#include <ffi.h>

#include <cstdio>
#include <cstring>
#include <exception>

#include "host/host_internal.h"

namespace zelhost {
namespace {

union Slot {
    int32_t i;
    double d;
    void* p;
};

ffi_type* FfiType(const std::wstring& t) {
    if (t == L"_db") return &ffi_type_double;
    if (t == L"_i" || t == L"_b") return &ffi_type_sint32;
    return &ffi_type_pointer;
}

VK KindOfType(const std::wstring& t) {
    if (t.empty()) return VK::Void;
    if (t == L"_i") return VK::Int;
    if (t == L"_b") return VK::Bool;
    if (t == L"_db") return VK::Double;
    if (t == L"_s") return VK::Text;
    if (t == L"_bn") return VK::Bin;
    if (t[0] == L'@') return VK::Array;
    if (t[0] == L'_') return VK::Int;  // unknown basic type: a 32-bit word
    return VK::Object;
}

bool ClassIs(ClassInfo* cls, const std::wstring& name) {
    if (!cls) return false;
    for (const Level& lv : cls->levels) {
        if (!lv.record) continue;
        if (lv.record->name && name == lv.record->name) return true;
        if (lv.record->kind != ZEL_KIND_INTERFACE && lv.record->interfaces) {
            for (int i = 0; i < lv.record->interfaceCount; ++i)
                if (lv.record->interfaces[i].name && name == lv.record->interfaces[i].name) return true;
        }
    }
    return false;
}

std::string Hex(const void* p) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%p", p);
    return buf;
}

}  // namespace

std::string CheckArgument(const std::wstring& type, const Value& v, Value& out) {
    VK want = KindOfType(type);
    out = v;
    if (v.h && !v.foreign && RefCount(v.h) == -2) return "the value has been freed: " + DescribeHandle(v.h);
    std::string show = ShowTypeName(type.c_str());
    switch (want) {
        case VK::Int:
        case VK::Bool:
            if (v.kind == VK::Int || v.kind == VK::Bool) { out.kind = want; return ""; }
            break;
        case VK::Double:
            if (v.kind == VK::Double) return "";
            if (v.kind == VK::Int) { out = Value::Double(double(v.i)); return ""; }
            break;
        case VK::Text:
            if (v.kind == VK::Text && v.h) return "";
            if (v.kind == VK::Null) return "null is not a 文本 (pass \"\" for an empty text)";
            break;
        case VK::Bin:
            if (v.kind == VK::Bin || v.kind == VK::Null) return "";
            break;
        case VK::Array:
            if (v.kind == VK::Array || v.kind == VK::Null) return "";
            break;
        case VK::Object:
            if (v.kind == VK::Null) return "";
            if (v.kind == VK::Object) {
                ClassInfo* c = ObjectClass(static_cast<ZelObject*>(v.h));
                if (!c) return "the object is not one the host made";
                if (type == L"系统.对象" || ClassIs(c, type)) return "";
                return ToUtf8(c->name) + " is not a " + show;
            }
            break;
        default:
            break;
    }
    const char* have = "?";
    switch (v.kind) {
        case VK::Void: have = "nothing"; break;
        case VK::Null: have = "null"; break;
        case VK::Int: have = "整数"; break;
        case VK::Double: have = "小数"; break;
        case VK::Bool: have = "逻辑"; break;
        case VK::Text: have = "文本"; break;
        case VK::Bin: have = "字节集"; break;
        case VK::Object: have = "对象"; break;
        case VK::Array: have = "数组"; break;
        case VK::Foreign: have = "foreign handle"; break;
    }
    return std::string("expected ") + show + ", got " + have;
}

CallResult CallFunction(void* fn, const std::vector<std::wstring>& types, const std::vector<Value>& args,
                        const std::wstring& resultType, bool passSuccessWord) {
    CallResult res;
    if (!fn) {
        res.error = "no function";
        return res;
    }
    size_t n = types.size() + (passSuccessWord ? 1 : 0);
    std::vector<ffi_type*> atypes(n);
    std::vector<Slot> slots(n);
    std::vector<void*> avalues(n);
    for (size_t k = 0; k < types.size(); ++k) {
        atypes[k] = FfiType(types[k]);
        const Value& v = k < args.size() ? args[k] : Value();
        if (atypes[k] == &ffi_type_double)
            slots[k].d = v.kind == VK::Int ? double(v.i) : v.d;
        else if (atypes[k] == &ffi_type_sint32)
            slots[k].i = v.i;
        else
            slots[k].p = v.h;
        avalues[k] = &slots[k];
    }
    if (passSuccessWord) {
        atypes[n - 1] = &ffi_type_pointer;
        slots[n - 1].p = &res.success;
        avalues[n - 1] = &slots[n - 1];
    }
    ffi_type* rtype = resultType.empty() ? &ffi_type_void : FfiType(resultType);
    ffi_cif cif;
    if (ffi_prep_cif(&cif, FFI_DEFAULT_ABI, unsigned(n), rtype, atypes.data()) != FFI_OK) {
        res.error = "ffi_prep_cif failed";
        return res;
    }
    union {
        ffi_arg a;
        double d;
        void* p;
        char pad[16];
    } ret{};
    try {
        ffi_call(&cif, FFI_FN(fn), &ret, avalues.data());
    } catch (const std::exception& e) {
        res.raised = true;
        res.error = e.what();
        return res;
    } catch (const char* s) {
        res.raised = true;
        res.error = s ? s : "(null message)";
        return res;
    } catch (const wchar_t* s) {
        res.raised = true;
        res.error = s ? ToUtf8(s) : "(null message)";
        return res;
    } catch (...) {
        res.raised = true;
        res.error = "unknown exception";
        return res;
    }
    res.ok = true;
    VK k = KindOfType(resultType);
    switch (k) {
        case VK::Void: res.value = Value(); break;
        case VK::Int: res.value = Value::Int(int32_t(ret.a)); break;
        case VK::Bool: res.value = Value::Bool(int32_t(ret.a)); break;
        case VK::Double: res.value = Value::Double(ret.d); break;
        default: res.value = Value::Handle(k, ret.p); break;
    }
    return res;
}

namespace {

char g_context[512];

struct ContextScope {
    char saved[sizeof g_context];
    explicit ContextScope(const std::string& who) {
        std::memcpy(saved, g_context, sizeof g_context);
        std::snprintf(g_context, sizeof g_context, "%s at %s", who.c_str(), CurrentWhere().c_str());
    }
    ~ContextScope() { std::memcpy(g_context, saved, sizeof g_context); }
};

CallResult Finish(CallResult r, const std::string& who) {
    if (!r.ok) {
        if (r.raised) r.error = who + " raised an exception: " + r.error;
        else r.error = who + ": " + r.error;
        return r;
    }
    Value& v = r.value;
    if ((v.kind == VK::Text || v.kind == VK::Bin || v.kind == VK::Array || v.kind == VK::Object) && v.h &&
        !IsConstant(v.h)) {
        int rc = RefCount(v.h);
        const char* what = v.kind == VK::Text ? "文本" : v.kind == VK::Bin ? "字节集" : v.kind == VK::Array ? "数组" : "对象";
        if (rc == -2) {
            AddFinding("foreign-result", "foreign result: " + who + " returned a freed " + DescribeHandle(v.h) + ", at " + CurrentWhere());
            v.kind = VK::Foreign;
            v.foreign = true;
        } else if (rc == -1) {
            AddFinding("foreign-result", "foreign result: " + who + " returned a " + what + " the host never made (" + Hex(v.h) +
                                             "), at " + CurrentWhere());
            v.foreign = true;
            if (v.kind == VK::Object || v.kind == VK::Array) v.kind = VK::Foreign;
        } else if (v.kind == VK::Object && !IsLive(v.h)) {
            // A copy of an object's first words: hand back the object itself.
            v.h = AddRef(v.h);
            Release(v.h);
        }
    }
    return r;
}

}  // namespace

CallResult CallMethod(ZelObject* obj, ClassInfo* owner, int itemIndex, const std::vector<Value>& args) {
    CallResult r;
    if (!owner || !owner->methods() || itemIndex < 0 || itemIndex >= owner->methodCount()) {
        r.error = "no such method item";
        return r;
    }
    tagMethodItem& m = owner->methods()[itemIndex];
    std::string who = ToUtf8(owner->name) + "." + ToUtf8(m.name);
    Binding b = BindMethod(owner, itemIndex);
    if (!b.function) {
        r.error = who + " has no function" + (b.boundTo.empty() ? "" : " (bound export " + b.boundTo + " missing)");
        return r;
    }
    if (int(args.size()) != m.paramCount) {
        r.error = who + " takes " + std::to_string(m.paramCount) + " argument" + (m.paramCount == 1 ? "" : "s") +
                  ", got " + std::to_string(args.size());
        return r;
    }
    bool isStatic = (m.flags & ZEL_METHOD_STATIC_BIT) != 0;
    std::vector<std::wstring> types;
    std::vector<Value> values;
    for (int k = 0; k < b.leadingWords; ++k) {
        types.push_back(L"_i");
        values.push_back(Value::Int(0));
    }
    if (!isStatic) {
        if (!obj) {
            r.error = who + " needs an object";
            return r;
        }
        types.push_back(L"系统.对象");
        values.push_back(Value::Handle(VK::Object, obj));
    }
    for (int k = 0; k < m.paramCount; ++k) {
        const tagParamItem& p = m.params[k];
        std::wstring t = p.type ? p.type : L"";
        Value conv;
        std::string err = CheckArgument(t, args[size_t(k)], conv);
        if (!err.empty()) {
            r.error = who + ": argument " + std::to_string(k + 1) + " (" + ToUtf8(p.name) + "): " + err;
            return r;
        }
        types.push_back(t);
        values.push_back(conv);
    }
    std::wstring rt = m.returnType ? m.returnType : L"";
    ContextScope context(who);
    return Finish(CallFunction(b.function, types, values, rt, true), who);
}

CallResult CallSlot(ZelObject* obj, void* function, const tagMethodItem* member, const std::vector<Value>& args) {
    CallResult r;
    std::string who = ToUtf8(member->name);
    if (int(args.size()) != member->paramCount) {
        r.error = who + " takes " + std::to_string(member->paramCount) + " argument" +
                  (member->paramCount == 1 ? "" : "s") + ", got " + std::to_string(args.size());
        return r;
    }
    std::vector<std::wstring> types{L"系统.对象"};
    std::vector<Value> values{Value::Handle(VK::Object, obj)};
    for (int k = 0; k < member->paramCount; ++k) {
        std::wstring t = member->params[k].type;
        Value conv;
        std::string err = CheckArgument(t, args[size_t(k)], conv);
        if (!err.empty()) {
            r.error = who + ": argument " + std::to_string(k + 1) + ": " + err;
            return r;
        }
        types.push_back(t);
        values.push_back(conv);
    }
    ContextScope context(who);
    return Finish(CallFunction(function, types, values, member->returnType ? member->returnType : L"", true), who);
}

const char* CallContext() { return g_context; }

}  // namespace zelhost

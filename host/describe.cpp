// ncl list / show / doc: descriptions of a class library.
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <ostream>
#include <set>

#include "host/host_internal.h"

namespace zelhost {
namespace {

std::string U(const wchar_t* s) { return ToUtf8(s); }

std::string Hex(unsigned v) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "0x%08x", v);
    return buf;
}

std::string Number(double d) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%g", d);
    return buf;
}

bool IsInterface(const tagTBaseTypeInfo* r) { return r->kind == ZEL_KIND_INTERFACE; }
const tagTInterfaceInfo* AsInterface(const tagTBaseTypeInfo* r) {
    return reinterpret_cast<const tagTInterfaceInfo*>(r);
}

int MethodCount(const tagTBaseTypeInfo* r) { return IsInterface(r) ? AsInterface(r)->methodCount : r->methodCount; }
tagMethodItem* Methods(const tagTBaseTypeInfo* r) { return IsInterface(r) ? AsInterface(r)->methods : r->methods; }
const wchar_t* BaseName(const tagTBaseTypeInfo* r) { return IsInterface(r) ? AsInterface(r)->baseName : r->baseName; }

std::vector<tagTBaseTypeInfo*> SortedRecords(Library* lib) {
    std::vector<tagTBaseTypeInfo*> recs = lib->Records();
    recs.erase(std::remove(recs.begin(), recs.end(), nullptr), recs.end());
    std::stable_sort(recs.begin(), recs.end(), [](tagTBaseTypeInfo* a, tagTBaseTypeInfo* b) {
        return std::wstring(a->name ? a->name : L"") < std::wstring(b->name ? b->name : L"");
    });
    return recs;
}

std::string Flags(unsigned f) {
    std::string s;
    auto add = [&](const char* w) { s += (s.empty() ? "" : " "); s += w; };
    if (f & ZEL_METHOD_PROPERTY_BIT) add("property");
    if (f & ZEL_METHOD_STATIC_BIT) add("static");
    if (f & ZEL_METHOD_CONSTRUCTOR_BIT) {
        add((f & ZEL_METHOD_STATIC_BIT) ? "constructor" : "constructor(default if no parameters)");
    }
    unsigned other = f & ~(ZEL_METHOD | ZEL_METHOD_PROPERTY_BIT | ZEL_METHOD_STATIC_BIT | ZEL_METHOD_CONSTRUCTOR_BIT);
    if (!(f & ZEL_METHOD)) add("(no method mark)");
    if (other) add(("other " + Hex(other)).c_str());
    if (s.empty()) s = "method";
    return s;
}

bool IsGetter(const tagMethodItem& m) {
    return (m.flags & 1) && m.paramCount == 0 && m.returnType && *m.returnType;
}
bool IsSetter(const tagMethodItem& m) {
    return (m.flags & 1) && m.paramCount == 1 && (!m.returnType || !*m.returnType);
}

std::string Signature(const tagMethodItem& m) {
    std::string s = U(m.name) + "(";
    for (int k = 0; k < m.paramCount && m.params; ++k) {
        if (k) s += ", ";
        s += U(m.params[k].name) + ": " + ShowTypeName(m.params[k].type);
    }
    s += ")";
    if (m.returnType && *m.returnType) s += " → " + ShowTypeName(m.returnType);
    return s;
}

ClassInfo* TryClass(Library* lib, tagTBaseTypeInfo* rec) {
    std::string err;
    return ClassOfRecord(lib, rec, &err);
}

std::string HooksText(ClassInfo* c, const char* sep) {
    std::string s;
    if (!c) return s;
    for (int h = 0; h < HOOK_COUNT; ++h) {
        if (!c->hooks[h]) continue;
        if (!s.empty()) s += sep;
        s += c->recordName + "_" + HookName(h);
    }
    return s;
}

std::string Binding_(ClassInfo* c, int k) {
    if (!c) return "";
    Binding b = BindMethod(c, k);
    std::string s;
    if (!b.boundTo.empty()) s = b.function ? "bound to " + b.boundTo : "bound to " + b.boundTo + " (missing)";
    else if (!b.function && c->kind != ZEL_KIND_INTERFACE) s = "no function";
    if (b.leadingWords) s += std::string(s.empty() ? "" : "; ") + "native takes " + std::to_string(b.leadingWords) +
                             " extra leading word (0)";
    return s;
}

}  // namespace

int ListLibrary(Library* lib, std::ostream& out, std::ostream& err) {
    ZelLibInfo* li = lib->info;
    std::vector<tagTBaseTypeInfo*> recs = SortedRecords(lib);
    out << "library " << U(li->name) << "  \"" << U(li->description) << "\"  version " << Number(li->version)
        << "  flags " << Hex(li->flags) << "  classes " << recs.size() << "  file " << lib->path << "\n";
    for (tagTBaseTypeInfo* r : recs) {
        std::string rn = lib->RecordName(r);
        if (IsInterface(r)) {
            out << "interface " << U(r->name) << "  record " << (rn.empty() ? "?" : rn) << "  members "
                << MethodCount(r) << "\n";
            continue;
        }
        ClassInfo* c = TryClass(lib, r);
        out << "class " << U(r->name) << "  record " << (rn.empty() ? "?" : rn) << "  base " << U(r->baseName)
            << "  methods " << r->methodCount << "  elements " << r->elementCount;
        if (r->interfaceCount > 0) out << "  interfaces " << r->interfaceCount;
        if (c) out << "  level " << (c->levels.size() - 1);
        std::string hooks = HooksText(c, ",");
        if (!hooks.empty()) out << "  hooks " << hooks;
        out << "\n";
    }
    if (!lib->notifyError.empty()) err << lib->path << ": " << lib->notifyError << "\n";
    return 0;
}

int ShowClass(Library* lib, const std::wstring& className, std::ostream& out, std::ostream& err) {
    tagTBaseTypeInfo* r = lib->Find(className);
    if (!r) {
        err << "no class " << ToUtf8(className) << " in " << lib->path << "\n";
        return 1;
    }
    std::string errText;
    ClassInfo* c = ClassOfRecord(lib, r, &errText);
    std::string rn = lib->RecordName(r);
    out << (IsInterface(r) ? "interface " : "class ") << U(r->name) << "  (record " << (rn.empty() ? "?" : rn)
        << ", flags " << Hex(r->flags) << ", version " << Number(r->version) << ")\n";
    if (r->description && *r->description) out << "  " << U(r->description) << "\n";
    if (IsInterface(r)) {
        if (BaseName(r) && *BaseName(r)) out << "base: " << U(BaseName(r)) << "\n";
    } else {
        out << "base: " << (r->baseName && *r->baseName ? U(r->baseName) : "(none: root class)") << "\n";
        if (r->interfaceCount > 0 && r->interfaces) {
            out << "interfaces:\n";
            for (int i = 0; i < r->interfaceCount; ++i) {
                const tagInterfaceEntry& e = r->interfaces[i];
                out << "  " << U(e.name) << "  (" << e.slotCount << " slots)";
                tagTBaseTypeInfo* irec = e.name ? HostFindRecord(e.name) : nullptr;
                if (!irec && e.name) irec = lib->Find(e.name);
                if (irec && irec->kind == ZEL_KIND_INTERFACE) {
                    const tagTInterfaceInfo* ii = AsInterface(irec);
                    for (int k = 0; k < ii->methodCount && ii->methods; ++k)
                        out << (k ? ", " : ": ") << Signature(ii->methods[k]);
                }
                out << "\n";
            }
        }
        if (c) {
            out << "levels:";
            for (size_t L = 0; L < c->levels.size(); ++L)
                out << (L ? ", " : " ") << L << " " << U(c->levels[L].record->name);
            out << "  (state of this class at level " << (c->levels.size() - 1) << ", "
                << c->levels.back().words << " words)\n";
        } else {
            out << "levels: unknown (" << errText << ")\n";
        }
        std::string hooks = HooksText(c, ", ");
        out << "hooks: " << (hooks.empty() ? "(none)" : hooks) << "\n";
        if (r->elementCount > 0 && r->elements) {
            out << "elements:\n";
            int word = 0;
            for (int i = 0; i < r->elementCount; ++i) {
                const tagElementItem& el = r->elements[i];
                out << "  [" << word << "] " << (el.name && *el.name ? U(el.name) : "(hidden)") << ": "
                    << ShowTypeName(el.type);
                if (el.reserved[0]) out << " = " << el.reserved[0];
                if (el.flags & ZEL_ELEMENT_HIDDEN) out << "  hidden";
                if (el.description && *el.description) out << "  — " << U(el.description);
                out << "\n";
                word += IsDoubleType(el.type) ? 2 : 1;
            }
        }
    }
    int n = MethodCount(r);
    tagMethodItem* ms = Methods(r);
    // Properties: getters and setters paired by name.
    std::vector<std::wstring> propNames;
    for (int k = 0; k < n && ms; ++k)
        if ((ms[k].flags & 1) && ms[k].name &&
            std::find(propNames.begin(), propNames.end(), std::wstring(ms[k].name)) == propNames.end())
            propNames.push_back(ms[k].name);
    if (!propNames.empty()) {
        out << "properties:\n";
        for (auto& pn : propNames) {
            int g = -1, s = -1;
            for (int k = 0; k < n; ++k) {
                if (!ms[k].name || pn != ms[k].name) continue;
                if (IsGetter(ms[k]) && g < 0) g = k;
                else if (IsSetter(ms[k]) && s < 0) s = k;
            }
            std::string type = g >= 0 ? ShowTypeName(ms[g].returnType)
                                      : s >= 0 ? ShowTypeName(ms[s].params[0].type) : "?";
            out << "  " << ToUtf8(pn) << ": " << type << "  ("
                << (g >= 0 ? "get #" + std::to_string(g + 1) : std::string("no getter")) << ", "
                << (s >= 0 ? "set #" + std::to_string(s + 1) : std::string("no setter")) << ")";
            std::string bind;
            if (g >= 0) bind = Binding_(c, g);
            if (!bind.empty()) out << "  get " << bind;
            if (s >= 0 && !(bind = Binding_(c, s)).empty()) out << "  set " << bind;
            if (s >= 0 && ms[s].params && ms[s].params[0].description && *ms[s].params[0].description)
                out << "  — " << U(ms[s].params[0].description);
            else if (g >= 0 && ms[g].description && *ms[g].description)
                out << "  — " << U(ms[g].description);
            out << "\n";
        }
    }
    out << (IsInterface(r) ? "members:\n" : "methods:\n");
    for (int k = 0; k < n && ms; ++k) {
        const tagMethodItem& m = ms[k];
        out << "  #" << (k + 1) << " " << Signature(m) << "  [" << Flags(m.flags) << "]";
        std::string bind = Binding_(c, k);
        if (!bind.empty()) out << "  " << bind;
        out << "\n";
        if (m.description && *m.description) out << "      " << U(m.description) << "\n";
        for (int p = 0; p < m.paramCount && m.params; ++p)
            if (m.params[p].description && *m.params[p].description)
                out << "      " << U(m.params[p].name) << ": " << U(m.params[p].description) << "\n";
    }
    if (n == 0) out << "  (none)\n";
    return 0;
}

// ------------------------------------------------------------ doc
namespace {
std::string Md(const std::string& s) {
    std::string o;
    for (char c : s) {
        if (c == '|') o += "\\|";
        else if (c == '\n') o += ' ';
        else o += c;
    }
    return o;
}
std::string Md(const wchar_t* s) { return Md(U(s)); }
}  // namespace

int DocLibrary(Library* lib, std::ostream& out, std::ostream& err) {
    ZelLibInfo* li = lib->info;
    std::vector<tagTBaseTypeInfo*> recs = SortedRecords(lib);
    out << "# " << U(li->name) << " class library reference\n\n";
    out << "<!-- Generated by `ncl doc` from the library's descriptors; do not edit. "
           "Rebuild with `cmake --build build --target reference`. -->\n\n";
    if (li->description && *li->description) out << Md(li->description) << "\n\n";
    out << "Version " << Number(li->version) << ", " << recs.size() << " classes and interfaces.\n\n";
    for (tagTBaseTypeInfo* r : recs) {
        std::string rn = lib->RecordName(r);
        std::string anchor;  // GitHub's: punctuation dropped, blanks as '-'
        for (char ch : U(r->name)) {
            if (ch == ' ') anchor += '-';
            else if (static_cast<unsigned char>(ch) >= 0x80 || std::isalnum(static_cast<unsigned char>(ch)) ||
                     ch == '-' || ch == '_')
                anchor += char(std::tolower(static_cast<unsigned char>(ch)));
        }
        out << "- [" << U(r->name) << "](#" << anchor << ")" << (IsInterface(r) ? " (interface)" : "") << "\n";
    }
    out << "\n";
    for (tagTBaseTypeInfo* r : recs) {
        std::string rn = lib->RecordName(r);
        out << "## " << U(r->name) << "\n\n";
        if (r->description && *r->description) out << Md(r->description) << "\n\n";
        ClassInfo* c = TryClass(lib, r);
        if (IsInterface(r)) {
            out << "Interface" << (rn.empty() ? "" : " (record `" + rn + "`)") << ".\n\n";
        } else {
            out << "- Base: " << (r->baseName && *r->baseName ? U(r->baseName) : "(root)") << "\n";
            if (r->interfaceCount > 0 && r->interfaces) {
                out << "- Implements:";
                for (int i = 0; i < r->interfaceCount; ++i) out << (i ? ", " : " ") << U(r->interfaces[i].name);
                out << "\n";
            }
            if (!rn.empty()) out << "- Record: `" << rn << "`\n";
            std::string hooks = HooksText(c, "`, `");
            if (!hooks.empty()) out << "- Hooks: `" << hooks << "`\n";
            if (c) out << "- State at level " << (c->levels.size() - 1) << "\n";
            out << "\n";
            if (r->elementCount > 0 && r->elements) {
                out << "| Element | Type | Value | Description |\n|---|---|---|---|\n";
                for (int i = 0; i < r->elementCount; ++i) {
                    const tagElementItem& el = r->elements[i];
                    out << "| " << (el.name && *el.name ? Md(el.name) : "(hidden)") << " | " << ShowTypeName(el.type)
                        << " | " << (el.reserved[0] ? std::to_string(el.reserved[0]) : "") << " | "
                        << Md(el.description) << " |\n";
                }
                out << "\n";
            }
        }
        int n = MethodCount(r);
        tagMethodItem* ms = Methods(r);
        bool anyProp = false;
        for (int k = 0; k < n && ms; ++k) anyProp |= (ms[k].flags & 1) != 0;
        if (anyProp) {
            out << "| Property | Type | Access | Description |\n|---|---|---|---|\n";
            std::vector<std::wstring> seen;
            for (int k = 0; k < n; ++k) {
                if (!(ms[k].flags & 1) || !ms[k].name) continue;
                if (std::find(seen.begin(), seen.end(), std::wstring(ms[k].name)) != seen.end()) continue;
                seen.push_back(ms[k].name);
                int g = -1, s = -1;
                for (int j = 0; j < n; ++j) {
                    if (!ms[j].name || wcscmp(ms[j].name, ms[k].name)) continue;
                    if (IsGetter(ms[j]) && g < 0) g = j;
                    else if (IsSetter(ms[j]) && s < 0) s = j;
                }
                std::string type = g >= 0 ? ShowTypeName(ms[g].returnType)
                                          : s >= 0 ? ShowTypeName(ms[s].params[0].type) : "?";
                std::string access = g >= 0 && s >= 0 ? "read, write" : g >= 0 ? "read" : s >= 0 ? "write" : "?";
                std::string desc = g >= 0 && ms[g].description && *ms[g].description ? Md(ms[g].description)
                                   : s >= 0 && ms[s].params[0].description ? Md(ms[s].params[0].description) : "";
                out << "| " << Md(ms[k].name) << " | " << type << " | " << access << " | " << desc << " |\n";
            }
            out << "\n";
        }
        bool anyMethod = false;
        for (int k = 0; k < n && ms; ++k) anyMethod |= !(ms[k].flags & 1);
        if (anyMethod) {
            out << "| # | " << (IsInterface(r) ? "Member" : "Method") << " | Returns | Flags | Description |\n"
                << "|---|---|---|---|---|\n";
            for (int k = 0; k < n; ++k) {
                const tagMethodItem& m = ms[k];
                if (m.flags & 1) continue;
                std::string sig = U(m.name) + "(";
                for (int p = 0; p < m.paramCount && m.params; ++p)
                    sig += (p ? ", " : "") + U(m.params[p].name) + ": " + ShowTypeName(m.params[p].type);
                sig += ")";
                std::string flags = (m.flags & ZEL_METHOD_STATIC_BIT) ? "static" : "";
                if (m.flags & ZEL_METHOD_CONSTRUCTOR_BIT) flags += flags.empty() ? "constructor" : ", constructor";
                std::string note;
                if (c && !IsInterface(r)) {
                    Binding b = BindMethod(c, k);
                    if (!b.boundTo.empty()) note = " (bound to `" + b.boundTo + "`)";
                }
                out << "| " << (k + 1) << " | " << Md(sig) << " | " << ShowTypeName(m.returnType) << " | " << flags
                    << " | " << Md(m.description) << note << " |\n";
            }
            out << "\n";
        }
    }
    (void)err;
    return 0;
}

}  // namespace zelhost

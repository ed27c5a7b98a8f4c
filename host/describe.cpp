// ncl list / show / doc: descriptions of a class library.
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <ostream>
#include <set>
#include <sstream>

#include "host/record_view.h"

namespace zelhost {

// The behaviour notes of a class of a library, or null (generated from the
// *.notes.md files beside the class sources).
const char* ClassNotes(const std::string& library, const std::string& record);

namespace {

std::string Number(double d) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%g", d);
    return buf;
}

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
    if (const char* notes = ClassNotes(U(lib->info->name), rn); notes && *notes) {
        out << "notes:\n";
        std::istringstream lines(notes);
        for (std::string line; std::getline(lines, line);) out << (line.empty() ? "" : "  ") << line << "\n";
    }
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

// GitHub's heading anchors: punctuation dropped, blanks as '-'.
std::string Anchor(const std::string& heading) {
    std::string a;
    for (char ch : heading) {
        unsigned char u = static_cast<unsigned char>(ch);
        if (ch == ' ') a += '-';
        else if (u >= 0x80 || std::isalnum(u) || ch == '-' || ch == '_') a += char(std::tolower(u));
    }
    return a;
}

// A class name, linked when the library being described defines it.
std::string ClassLink(Library* lib, const wchar_t* name) {
    std::string n = U(name);
    if (!name || !lib->Find(name)) return n;
    return "[" + n + "](#" + Anchor(n) + ")";
}

std::string Params(const tagMethodItem& m) {
    std::string s;
    for (int p = 0; p < m.paramCount && m.params; ++p)
        s += (p ? ", " : "") + U(m.params[p].name) + ": " + ShowTypeName(m.params[p].type);
    return s;
}

// A Markdown table without the columns that are empty in every row (the
// first column always stays).
void Table(std::ostream& out, const std::vector<std::string>& head, const std::vector<std::vector<std::string>>& rows) {
    std::vector<size_t> keep;
    for (size_t c = 0; c < head.size(); ++c) {
        bool used = c == 0;
        for (auto& r : rows) used |= !r[c].empty();
        if (used) keep.push_back(c);
    }
    std::string rule;
    for (size_t c : keep) {
        out << "| " << head[c] << " ";
        rule += "|---";
    }
    out << "|\n" << rule << "|\n";
    for (auto& r : rows) {
        for (size_t c : keep) out << "| " << r[c] << " ";
        out << "|\n";
    }
    out << "\n";
}

// The description cell of a method: its own text, then its parameters'.
std::string MethodText(const tagMethodItem& m) {
    std::string s = Md(m.description);
    for (int p = 0; p < m.paramCount && m.params; ++p) {
        if (!m.params[p].description || !*m.params[p].description) continue;
        s += (s.empty() ? "" : "<br>") + ("`" + U(m.params[p].name) + "`: ") + Md(m.params[p].description);
    }
    return s;
}

void PropertyTable(std::ostream& out, tagMethodItem* ms, int n) {
    std::vector<std::vector<std::string>> rows;
    std::vector<std::wstring> seen;
    for (int k = 0; k < n && ms; ++k) {
        if (!(ms[k].flags & ZEL_METHOD_PROPERTY_BIT) || !ms[k].name) continue;
        if (std::find(seen.begin(), seen.end(), std::wstring(ms[k].name)) != seen.end()) continue;
        seen.push_back(ms[k].name);
        int g = -1, s = -1;
        for (int j = 0; j < n; ++j) {
            if (!ms[j].name || wcscmp(ms[j].name, ms[k].name)) continue;
            if (IsGetter(ms[j]) && g < 0) g = j;
            else if (IsSetter(ms[j]) && s < 0) s = j;
        }
        std::string type = g >= 0 ? ShowTypeName(ms[g].returnType) : s >= 0 ? ShowTypeName(ms[s].params[0].type) : "?";
        std::string access = g >= 0 && s >= 0 ? "read, write" : g >= 0 ? "read" : s >= 0 ? "write" : "?";
        std::string desc = g >= 0 && ms[g].description && *ms[g].description ? Md(ms[g].description)
                           : s >= 0 && ms[s].params[0].description ? Md(ms[s].params[0].description) : "";
        rows.push_back({Md(ms[k].name), type, access, desc});
    }
    if (!rows.empty()) Table(out, {"Property", "Type", "Access", "Description"}, rows);
}

void MethodTable(std::ostream& out, tagTBaseTypeInfo* r, ClassInfo* c) {
    int n = MethodCount(r);
    tagMethodItem* ms = Methods(r);
    std::vector<std::vector<std::string>> rows;
    for (int k = 0; k < n && ms; ++k) {
        const tagMethodItem& m = ms[k];
        if (m.flags & ZEL_METHOD_PROPERTY_BIT) continue;
        std::string flags = (m.flags & ZEL_METHOD_STATIC_BIT) ? "static" : "";
        if (m.flags & ZEL_METHOD_CONSTRUCTOR_BIT) flags += flags.empty() ? "constructor" : ", constructor";
        std::string text = MethodText(m);
        if (c && !IsInterface(r)) {
            Binding b = BindMethod(c, k);
            if (!b.boundTo.empty()) text += (text.empty() ? "" : " ") + ("(bound to `" + b.boundTo + "`)");
        }
        rows.push_back({std::to_string(k + 1), Md(U(m.name) + "(" + Params(m) + ")"), ShowTypeName(m.returnType),
                        flags, text});
    }
    if (!rows.empty())
        Table(out, {"#", IsInterface(r) ? "Member" : "Method", "Returns", "Flags", "Description"}, rows);
}

// Members of the base classes that the class does not redefine (same name and
// parameter count), nearest base first.
void InheritedMembers(std::ostream& out, Library* lib, ClassInfo* c) {
    if (!c) return;
    std::vector<std::pair<std::wstring, int>> defined;
    for (size_t L = c->levels.size(); L-- > 0;) {
        ClassInfo* base = c->levels[L].cls;
        if (!base || base->kind == ZEL_KIND_INTERFACE) continue;
        std::vector<std::string> names;
        for (int k = 0; k < base->methodCount(); ++k) {
            const tagMethodItem& m = base->methods()[k];
            if (!m.name) continue;
            std::pair<std::wstring, int> key(m.name, (m.flags & ZEL_METHOD_PROPERTY_BIT) ? -1 : m.paramCount);
            if (std::find(defined.begin(), defined.end(), key) != defined.end()) continue;
            defined.push_back(key);
            if (L + 1 == c->levels.size()) continue;
            names.push_back((m.flags & ZEL_METHOD_PROPERTY_BIT) ? U(m.name) : U(m.name) + "(" + Params(m) + ")");
        }
        if (names.empty()) continue;
        out << "Inherited from " << ClassLink(lib, base->name.c_str()) << ":";
        for (size_t i = 0; i < names.size(); ++i) out << (i ? ", " : " ") << "`" << Md(names[i]) << "`";
        out << ".\n\n";
    }
}
}  // namespace

int DocLibrary(Library* lib, std::ostream& target, std::ostream& err) {
    std::ostringstream out;
    ZelLibInfo* li = lib->info;
    std::vector<tagTBaseTypeInfo*> recs = SortedRecords(lib);
    std::string libName = U(li->name);
    out << "# " << libName << " class library reference\n\n";
    out << "<!-- Generated by `ncl doc` from the library's descriptors and the behaviour notes beside the "
           "class sources; do not edit. Rebuild with `cmake --build build --target reference`. -->\n\n";
    if (li->description && *li->description) out << Md(li->description) << "\n\n";
    out << "Version " << Number(li->version) << ", " << recs.size() << " classes and interfaces.\n\n";
    for (tagTBaseTypeInfo* r : recs)
        out << "- " << ClassLink(lib, r->name) << (IsInterface(r) ? " (interface)" : "") << "\n";
    out << "\n";
    for (tagTBaseTypeInfo* r : recs) {
        std::string rn = lib->RecordName(r);
        out << "## " << U(r->name) << "\n\n";
        if (r->description && *r->description) out << Md(r->description) << "\n\n";
        ClassInfo* c = TryClass(lib, r);
        if (IsInterface(r)) {
            out << "Interface" << (rn.empty() ? "" : " (record `" + rn + "`)") << ".\n\n";
        } else {
            out << "- Base: " << (r->baseName && *r->baseName ? ClassLink(lib, r->baseName) : "(root)") << "\n";
            if (r->interfaceCount > 0 && r->interfaces) {
                out << "- Implements:";
                for (int i = 0; i < r->interfaceCount; ++i)
                    out << (i ? ", " : " ") << ClassLink(lib, r->interfaces[i].name);
                out << "\n";
            }
            if (!rn.empty()) out << "- Record: `" << rn << "`\n";
            std::string hooks = HooksText(c, "`, `");
            if (!hooks.empty()) out << "- Hooks: `" << hooks << "`\n";
            if (c) out << "- State at level " << (c->levels.size() - 1) << "\n";
            out << "\n";
            // The unnamed state words are the class's own business.
            std::vector<std::vector<std::string>> rows;
            for (int i = 0; i < r->elementCount && r->elements; ++i) {
                const tagElementItem& el = r->elements[i];
                if (!el.name || !*el.name) continue;
                rows.push_back({Md(el.name), ShowTypeName(el.type),
                                el.reserved[0] ? std::to_string(el.reserved[0]) : "", Md(el.description)});
            }
            if (!rows.empty()) Table(out, {"Element", "Type", "Value", "Description"}, rows);
        }
        PropertyTable(out, Methods(r), MethodCount(r));
        MethodTable(out, r, c);
        InheritedMembers(out, lib, c);
        if (const char* notes = ClassNotes(libName, rn); notes && *notes) out << "### Behaviour\n\n" << notes << "\n";
    }
    std::string text = out.str();
    while (text.ends_with("\n\n")) text.pop_back();  // one newline ends the file
    target << text;
    (void)err;
    return 0;
}

}  // namespace zelhost

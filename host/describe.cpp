// ncl list / show / check / doc: descriptions of a class library.
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <ostream>
#include <set>
#include <sstream>

#include "host/host_internal.h"

namespace zelhost {

// The behaviour notes of a class of a library, or null (generated from the
// *.notes.md files beside the class sources).
const char* ClassNotes(const std::string& library, const std::string& record);

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
    if (const char* notes = ClassNotes(U(lib->info->name), rn); notes && *notes) {
        out << "notes:\n";
        std::istringstream lines(notes);
        for (std::string line; std::getline(lines, line);) out << (line.empty() ? "" : "  ") << line << "\n";
    }
    return 0;
}

// ------------------------------------------------------------ check
int CheckLibrary(Library* lib, std::ostream& out, std::ostream& err) {
    std::vector<std::string> findings;
    auto find = [&](const std::string& s) { findings.push_back(s); };
    ZelLibInfo* li = lib->info;
    std::string libName = U(li->name);
    if (!li->name || !*li->name) find("library: empty name");
    if (li->nameHash != TextHash(li->name))
        find("library: name hash " + Hex(li->nameHash) + " != " + Hex(TextHash(li->name)));
    if (!li->enumClasses) find("library: no enumerate callback (byte 56)");
    if (!li->findClass) find("library: no find callback (byte 60)");
    if (!lib->notifyError.empty()) find("library: " + lib->notifyError);
    std::vector<tagTBaseTypeInfo*> recs = lib->Records();
    int declared = li->enumClasses ? li->enumClasses(li, nullptr, 0) : 0;
    if (declared < 0) find("library: enumerate returned " + std::to_string(declared));
    if (int(recs.size()) != declared)
        find("library: enumerate counts " + std::to_string(declared) + " records but hands out " +
             std::to_string(recs.size()));
    std::set<std::string> hookNames;
    for (int h = 0; h < HOOK_COUNT; ++h) hookNames.insert(HookName(h));

    auto checkItems = [&](const std::string& cname, tagMethodItem* ms, int n, ClassInfo* c, bool needFunction) {
        if (n < 0) { find(cname + ": method count " + std::to_string(n) + " is negative"); return; }
        if (n > 0 && !ms) { find(cname + ": " + std::to_string(n) + " methods but no method table"); return; }
        for (int k = 0; k < n; ++k) {
            const tagMethodItem& m = ms[k];
            std::string w = cname + ": method #" + std::to_string(k + 1) + " " + U(m.name);
            if (!m.name || !*m.name) find(w + ": empty name");
            if (m.nameHash != TextHash(m.name))
                find(w + ": name hash " + Hex(m.nameHash) + " != " + Hex(TextHash(m.name)));
            if (!m.returnType) find(w + ": null return type (use \"\")");
            if (m.returnTypeHash != TextHash(m.returnType))
                find(w + ": return type hash " + Hex(m.returnTypeHash) + " != " + Hex(TextHash(m.returnType)));
            if (m.paramCount < 0) find(w + ": parameter count " + std::to_string(m.paramCount) + " is negative");
            if (m.paramCount > 0 && !m.params) find(w + ": parameters but no parameter table");
            for (int p = 0; p < m.paramCount && m.params; ++p) {
                const tagParamItem& pi = m.params[p];
                std::string pw = w + ": parameter " + std::to_string(p + 1) + " " + U(pi.name);
                if (!pi.type || !*pi.type) find(pw + ": no type");
                if (pi.nameHash != TextHash(pi.name))
                    find(pw + ": name hash " + Hex(pi.nameHash) + " != " + Hex(TextHash(pi.name)));
                if (pi.typeHash != TextHash(pi.type))
                    find(pw + ": type hash " + Hex(pi.typeHash) + " != " + Hex(TextHash(pi.type)));
            }
            if (m.flags & 1) {
                if (!IsGetter(m) && !IsSetter(m))
                    find(w + ": property item is neither a getter (0 parameters, a type) nor a setter "
                             "(1 parameter, no type)");
                if (IsSetter(m) && m.params) {
                    for (int g = 0; g < n; ++g) {
                        if (g == k || !IsGetter(ms[g]) || !ms[g].name || !m.name || wcscmp(ms[g].name, m.name)) continue;
                        if (!m.params[0].type || wcscmp(ms[g].returnType, m.params[0].type) != 0)
                            find(w + ": setter takes " + U(m.params[0].type) + " but the getter gives " +
                                 U(ms[g].returnType));
                    }
                }
            }
            if (needFunction && c) {
                Binding b = BindMethod(c, k);
                if (!b.function)
                    find(w + ": no function" + (b.boundTo.empty() ? " and no bound export" :
                                                                    " (bound export " + b.boundTo + " missing)"));
            }
        }
    };

    for (tagTBaseTypeInfo* r : recs) {
        if (!r) { find("library: enumerate handed out a null record"); continue; }
        std::string cname = r->name ? U(r->name) : "(unnamed record)";
        if (!r->name || !*r->name) find(cname + ": empty name");
        if (r->nameHash != TextHash(r->name))
            find(cname + ": name hash " + Hex(r->nameHash) + " != " + Hex(TextHash(r->name)));
        if (r->name && lib->Find(r->name) != r) find(cname + ": find callback does not return this record");
        std::string rn = lib->RecordName(r);
        if (rn.empty()) find(cname + ": no g_info_<Record> export names this record (hooks cannot be found)");
        if (r->kind != ZEL_KIND_CLASS && r->kind != ZEL_KIND_INTERFACE)
            find(cname + ": kind " + std::to_string(r->kind) + " is neither 1 (class) nor 2 (interface)");
        if (IsInterface(r)) {
            const tagTInterfaceInfo* ir = AsInterface(r);
            if (ir->baseNameHash != TextHash(ir->baseName))
                find(cname + ": base hash " + Hex(ir->baseNameHash) + " != " + Hex(TextHash(ir->baseName)));
            checkItems(cname, ir->methods, ir->methodCount, nullptr, false);
            continue;
        }
        if (r->baseNameHash != TextHash(r->baseName))
            find(cname + ": base hash " + Hex(r->baseNameHash) + " != " + Hex(TextHash(r->baseName)));
        std::string errText;
        ClassInfo* c = ClassOfRecord(lib, r, &errText);
        if (!c) find(cname + ": " + errText);
        if (r->interfaceCount < 0) find(cname + ": interface count is negative");
        if (r->interfaceCount > 0 && !r->interfaces) find(cname + ": interfaces but no interface table");
        for (int i = 0; i < r->interfaceCount && r->interfaces; ++i) {
            const tagInterfaceEntry& e = r->interfaces[i];
            std::string w = cname + ": interface " + U(e.name);
            if (!e.name || !*e.name) find(w + ": empty name");
            if (e.nameHash != TextHash(e.name))
                find(w + ": name hash " + Hex(e.nameHash) + " != " + Hex(TextHash(e.name)));
            if (e.slotCount < 0) find(w + ": slot count is negative");
            if (e.slotCount > 0 && !e.slots) find(w + ": slots but no slot table");
            for (int s = 0; s < e.slotCount && e.slots; ++s)
                if (!e.slots[s]) find(w + ": slot " + std::to_string(s + 1) + " is null");
            if (e.name) {
                tagTBaseTypeInfo* irec = lib->Find(e.name);
                std::string ie;
                if (!irec && !FindClass(e.name, &ie)) find(w + ": unknown interface (" + ie + ")");
                tagTBaseTypeInfo* hostRec = HostFindRecord(e.name);
                if (hostRec && hostRec->kind == ZEL_KIND_INTERFACE &&
                    e.slotCount != reinterpret_cast<tagTInterfaceInfo*>(hostRec)->methodCount)
                    find(w + ": " + std::to_string(e.slotCount) + " slots, the interface has " +
                         std::to_string(reinterpret_cast<tagTInterfaceInfo*>(hostRec)->methodCount));
            }
        }
        if (r->elementCount < 0) find(cname + ": element count is negative");
        if (r->elementCount > 0 && !r->elements) find(cname + ": elements but no element table");
        for (int i = 0; i < r->elementCount && r->elements; ++i) {
            const tagElementItem& el = r->elements[i];
            std::string w = cname + ": element " + std::to_string(i + 1) + " " + U(el.name);
            if (!el.type || !*el.type) find(w + ": no type");
            if (el.nameHash != TextHash(el.name))
                find(w + ": name hash " + Hex(el.nameHash) + " != " + Hex(TextHash(el.name)));
            if (el.typeHash != TextHash(el.type))
                find(w + ": type hash " + Hex(el.typeHash) + " != " + Hex(TextHash(el.type)));
        }
        checkItems(cname, r->methods, r->methodCount, c, true);
        // Hooks the library exports for this record must resolve.
        if (!rn.empty() && !lib->isHost) {
            for (const std::string& e : lib->exports) {
                if (e.rfind(rn + "_", 0) != 0) continue;
                std::string h = e.substr(rn.size() + 1);
                if (!hookNames.count(h)) continue;
                if (!lib->Export(e)) find(cname + ": hook " + e + " is exported but does not resolve");
            }
        }
    }
    for (const std::string& f : findings) out << f << "\n";
    if (findings.empty()) {
        out << "ok: " << libName << ", " << recs.size() << " records, no findings\n";
        return 0;
    }
    err << findings.size() << " finding" << (findings.size() == 1 ? "" : "s") << " in " << lib->path << "\n";
    return 1;
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

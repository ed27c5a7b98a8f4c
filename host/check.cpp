// ncl check: conformance findings on a class library's descriptors.
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <map>
#include <ostream>
#include <set>
#include <utility>
#include <vector>

#include "host/record_view.h"

namespace zelhost {
namespace {

// A type string names a basic type ("_i" ...), an array of one ("@_i"), or a
// class or interface of a loaded library (or one found by its namespace);
// types joined by ',' are each checked.
bool KnownType(Library* lib, const std::wstring& type) {
    static const std::set<std::wstring> basic = {L"_i", L"_db", L"_b", L"_s", L"_bn"};
    if (type.find(L',') != std::wstring::npos) {
        size_t from = 0;
        for (size_t comma; (comma = type.find(L',', from)) != std::wstring::npos; from = comma + 1)
            if (!KnownType(lib, type.substr(from, comma - from))) return false;
        return KnownType(lib, type.substr(from));
    }
    std::wstring pure = type.size() > 1 && type[0] == L'@' ? type.substr(1) : type;
    if (pure.empty() || pure[0] == L'@') return false;
    if (pure[0] == L'_') return basic.count(pure) > 0;
    std::string ignored;
    return lib->Find(pure) || FindClass(pure, &ignored);
}

// Case-blind equal, or equal but for one letter left out or added: Init and
// init, Free and Fre. (A letter changed is not counted: Close is not Clone.)
bool NearlySame(std::string a, std::string b) {
    for (std::string* s : {&a, &b})
        for (char& c : *s) c = char(std::tolower(static_cast<unsigned char>(c)));
    if (a == b) return true;
    if (a.size() < b.size()) std::swap(a, b);
    if (a.size() != b.size() + 1) return false;
    size_t i = 0;
    while (i < b.size() && a[i] == b[i]) ++i;
    return a.compare(i + 1, std::string::npos, b, i, std::string::npos) == 0;
}

std::string ParamTypes(const tagMethodItem& m) {
    std::string s;
    for (int p = 0; p < m.paramCount && m.params; ++p) s += (p ? "," : "") + U(m.params[p].type);
    return s;
}

// The stem of a library's file: 示例 for /x/示例.ncl.
std::string FileStem(const std::string& path) {
    std::string name = path.substr(path.rfind('/') + 1);
    return name.size() > 4 && name.compare(name.size() - 4, 4, ".ncl") == 0 ? name.substr(0, name.size() - 4) : name;
}

// Exports of the form <Record>_<Hook> that the runtime will never call: a hook
// name misspelt (Counter_init, Counter_Fre) or a hook of no record.
void CheckHookNames(Library* lib, const std::map<std::string, std::string>& classOfRecord,
                    std::vector<std::string>& findings) {
    for (const std::string& e : lib->exports) {
        size_t cut = e.rfind('_');
        if (cut == std::string::npos || cut == 0 || e[0] == '_') continue;
        std::string record = e.substr(0, cut), hook = e.substr(cut + 1);
        for (int h = 0; h < HOOK_COUNT; ++h) {
            if (hook == HookName(h)) {
                if (!classOfRecord.count(record))
                    findings.push_back("library: export " + e + " is a hook of no class record " + record);
            } else if (classOfRecord.count(record) && NearlySame(hook, HookName(h))) {
                findings.push_back(classOfRecord.at(record) + ": export " + e + " looks like the hook " + record +
                                   "_" + HookName(h) + " misspelt; the runtime never calls it");
            }
        }
    }
}

}  // namespace

int CheckLibrary(Library* lib, std::ostream& out, std::ostream& err) {
    std::vector<std::string> findings, warnings;
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
    if (std::none_of(recs.begin(), recs.end(), [](tagTBaseTypeInfo* r) { return r && !IsInterface(r); }))
        find("library: no class registered");
    if (!libName.empty() && FileStem(lib->path) != libName)
        find("library: name " + libName + " does not match the file " + FileStem(lib->path) + ".ncl");
    std::set<std::string> hookNames;
    std::map<std::string, std::string> classOfRecord;
    for (int h = 0; h < HOOK_COUNT; ++h) hookNames.insert(HookName(h));
    auto checkType = [&](const std::string& where, const wchar_t* type) {
        if (type && *type && !KnownType(lib, type)) find(where + ": unknown type \"" + U(type) + "\"");
    };
    // Parameter and element items: a name and a type, each with its hash.
    auto checkTyped = [&](const std::string& w, const wchar_t* name, unsigned nameHash, const wchar_t* type,
                          unsigned typeHash) {
        if (!type || !*type) find(w + ": no type");
        checkType(w, type);
        if (nameHash != TextHash(name)) find(w + ": name hash " + Hex(nameHash) + " != " + Hex(TextHash(name)));
        if (typeHash != TextHash(type)) find(w + ": type hash " + Hex(typeHash) + " != " + Hex(TextHash(type)));
    };

    auto checkItems = [&](const std::string& cname, tagMethodItem* ms, int n, ClassInfo* c, bool needFunction) {
        if (n < 0) { find(cname + ": method count " + std::to_string(n) + " is negative"); return; }
        if (n > 0 && !ms) { find(cname + ": " + std::to_string(n) + " methods but no method table"); return; }
        for (int k = 0; k < n; ++k) {
            const tagMethodItem& m = ms[k];
            std::string w = cname + ": method #" + std::to_string(k + 1) + " " + U(m.name);
            checkType(w + ": return", m.returnType);
            for (int j = 0; j < k; ++j) {
                if (!m.name || !ms[j].name || wcscmp(m.name, ms[j].name) || ParamTypes(m) != ParamTypes(ms[j])) continue;
                find(w + "(" + ParamTypes(m) + "): same signature as method #" + std::to_string(j + 1));
                break;
            }
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
                checkTyped(w + ": parameter " + std::to_string(p + 1) + " " + U(pi.name), pi.name, pi.nameHash,
                           pi.type, pi.typeHash);
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
        if (r->name && !libName.empty() && U(r->name).rfind(libName + ".", 0) != 0)
            find(cname + ": outside the library's namespace " + libName);
        std::string rn = lib->RecordName(r);
        if (!rn.empty()) classOfRecord[rn] = cname;
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
            checkTyped(cname + ": element " + std::to_string(i + 1) + " " + U(el.name), el.name, el.nameHash,
                       el.type, el.typeHash);
        }
        checkItems(cname, r->methods, r->methodCount, c, true);
        if (c && c->hooks[HOOK_FREE] && !c->hooks[HOOK_INIT])
            warnings.push_back(cname + ": hook " + rn + "_Free without " + rn + "_Init (Free may see state it never made)");
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
    if (!lib->isHost) CheckHookNames(lib, classOfRecord, findings);
    for (const std::string& f : findings) out << f << "\n";
    for (const std::string& w : warnings) out << "warning: " << w << "\n";
    if (findings.empty()) {
        out << "ok: " << libName << ", " << recs.size() << " records, no findings";
        if (!warnings.empty()) out << ", " << warnings.size() << " warning" << (warnings.size() == 1 ? "" : "s");
        out << "\n";
        return 0;
    }
    err << findings.size() << " finding" << (findings.size() == 1 ? "" : "s") << " in " << lib->path << "\n";
    return 1;
}

}  // namespace zelhost

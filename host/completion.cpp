// Completion of the word before the cursor, for `ncl repl`: variables,
// keywords, namespaces, class names, and the members of a variable's class.
#include <algorithm>
#include <filesystem>

#include "host/script_internal.h"

namespace zelhost {

using namespace script;

std::vector<std::wstring> script::Namespaces() {
    std::vector<std::wstring> out{L"系统"};
    for (const std::string& dir : SearchPaths()) {
        std::error_code ec;
        for (std::filesystem::directory_iterator it(dir, ec), end; !ec && it != end; it.increment(ec)) {
            std::filesystem::path p = it->path();
            if (p.extension() == ".ncl") out.push_back(FromUtf8(p.stem().string()));
        }
    }
    return out;
}

namespace {

// Classes of the library that owns `prefix` ("工具" or "工具.文本类").
void AddClasses(const std::wstring& prefix, std::vector<std::wstring>& out) {
    Library* lib = LibraryForClass(prefix + L".x", nullptr);
    if (!lib) return;
    for (tagTBaseTypeInfo* rec : lib->Records())
        if (rec && rec->name) out.push_back(rec->name);
}

}  // namespace

std::vector<std::string> ScriptSession::Complete(const std::string& word) {
    Interp& it = state_->interp;
    std::wstring w = FromUtf8(word);
    std::vector<std::wstring> names;
    size_t dot = w.rfind(L'.');
    if (dot == std::wstring::npos) {
        names = it.VariableNames();
        for (const wchar_t* const* k = kKeywords; *k; ++k) names.push_back(*k);
        for (const std::wstring& ns : Namespaces()) names.push_back(ns + L".");
    } else {
        std::wstring head = w.substr(0, dot);
        auto var = it.vars.find(head);
        ClassInfo* cls = nullptr;
        if (var != it.vars.end() && var->second.kind == VK::Object && IsLive(var->second.h))
            cls = ObjectClass(static_cast<ZelObject*>(var->second.h));
        else if (var == it.vars.end() && head.find(L'.') != std::wstring::npos)
            cls = FindClass(head, nullptr);
        if (cls) {
            for (const std::wstring& m : MemberNames(cls, false)) names.push_back(head + L"." + m);
            for (int k = 0; cls->methodCount() == 0 && k < cls->elementCount(); ++k)  // enumeration members
                if (cls->elements()[k].name) names.push_back(head + L"." + cls->elements()[k].name);
        }
        if (var == it.vars.end()) AddClasses(head, names);
    }
    std::vector<std::string> out;
    for (const std::wstring& n : names)
        if (n.compare(0, w.size(), w) == 0) out.push_back(ToUtf8(n));
    std::sort(out.begin(), out.end());
    out.erase(std::unique(out.begin(), out.end()), out.end());
    return out;
}

}  // namespace zelhost

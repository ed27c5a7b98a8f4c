// Record builders for the host's fixture libraries. Like any outside class
// library they rely on the ABI header alone; every builder fills its hashes.
#pragma once

#include <algorithm>
#include <cwchar>
#include <iterator>

#include <zel/zel_types.h>

namespace fixture {

inline wchar_t* W(const wchar_t* s) { return const_cast<wchar_t*>(s); }
template <typename F> void* FP(F f) { return reinterpret_cast<void*>(f); }

inline unsigned Hash(const wchar_t* s) {
    unsigned h = 0;
    for (; s && *s; ++s) h += unsigned(*s);
    return h;
}

inline tagParamItem P(const wchar_t* name, const wchar_t* type) {
    return tagParamItem{0, W(name), W(L""), W(L""), Hash(name), W(type), Hash(type), {0, 0}};
}
inline tagMethodItem M(unsigned flags, const wchar_t* name, const wchar_t* ret, tagParamItem* params, int n,
                       void* fn) {
    return tagMethodItem{flags, W(name), W(L""), W(L""), Hash(name), W(L""), 0,
                         W(ret), Hash(ret), n, n ? params : nullptr, fn, {0, 0}};
}
inline tagElementItem E(const wchar_t* name, const wchar_t* type) {
    return tagElementItem{0, W(name), W(L""), W(L""), Hash(name), W(type), Hash(type), {0, 0, 0, 0, 0}};
}
inline tagInterfaceEntry I(const wchar_t* name, void** slots, int n) { return {W(name), Hash(name), n, slots}; }

inline tagTBaseTypeInfo Class(const wchar_t* name, const wchar_t* base, tagMethodItem* m, int nm, tagElementItem* e,
                              int ne, tagInterfaceEntry* interfaces = nullptr, int ni = 0) {
    return tagTBaseTypeInfo{ZEL_CLASS_FLAGS, W(name), W(L"测试类"), W(L""), Hash(name), nullptr, ZEL_KIND_CLASS, 1.0,
                            -1, 0, 3, W(base), Hash(base), ni, interfaces, {}, nm, m, ne, e, {}};
}

// The library record; its enumerator and finder serve the array `Records`.
template <auto& Records>
int EnumRecords(ZelLibInfo*, tagTBaseTypeInfo** out, int capacity) {
    int n = out ? std::clamp(capacity, 0, int(std::size(Records))) : int(std::size(Records));
    for (int i = 0; out && i < n; ++i) out[i] = Records[i];
    return n;
}
template <auto& Records>
tagTBaseTypeInfo* FindRecord(ZelLibInfo*, wchar_t* name) {
    for (auto* r : Records)
        if (name && wcscmp(r->name, name) == 0) return r;
    return nullptr;
}
template <auto& Records>
ZelLibInfo Library(const wchar_t* name, const wchar_t* description) {
    return ZelLibInfo{0, W(name), W(description), W(L""), Hash(name), 1, 0, 7, 1.0, 1, {W(L""), W(L""), W(L"")},
                      EnumRecords<Records>, FindRecord<Records>, 0, {W(L""), W(L"")}, {0, 0, 0}};
}

}  // namespace fixture

// Small readers of descriptor records shared by ncl's list, show, doc and check.
#pragma once

#include <cstdio>
#include <string>

#include "host/host_internal.h"

namespace zelhost {

inline std::string U(const wchar_t* s) { return ToUtf8(s); }

inline std::string Hex(unsigned v) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "0x%08x", v);
    return buf;
}

inline bool IsInterface(const tagTBaseTypeInfo* r) { return r->kind == ZEL_KIND_INTERFACE; }
inline const tagTInterfaceInfo* AsInterface(const tagTBaseTypeInfo* r) {
    return reinterpret_cast<const tagTInterfaceInfo*>(r);
}
inline int MethodCount(const tagTBaseTypeInfo* r) {
    return IsInterface(r) ? AsInterface(r)->methodCount : r->methodCount;
}
inline tagMethodItem* Methods(const tagTBaseTypeInfo* r) {
    return IsInterface(r) ? AsInterface(r)->methods : r->methods;
}
inline const wchar_t* BaseName(const tagTBaseTypeInfo* r) {
    return IsInterface(r) ? AsInterface(r)->baseName : r->baseName;
}

// Property accessors: a getter has no parameter and a type, a setter one
// parameter and none.
inline bool IsGetter(const tagMethodItem& m) {
    return (m.flags & 1) && m.paramCount == 0 && m.returnType && *m.returnType;
}
inline bool IsSetter(const tagMethodItem& m) {
    return (m.flags & 1) && m.paramCount == 1 && (!m.returnType || !*m.returnType);
}

}  // namespace zelhost

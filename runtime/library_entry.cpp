// The runtime's hand-over and the descriptor queries, shared by every class
// library; each library's own record comes from ZEL_LIBRARY.
#include <zel/library.h>
#include <zel/loader.h>
#include <zel/registry.h>
#include <zel/services.h>
#include <zel/values.h>
#include <zel/textfuncs.h>

ZelObject* g_pRuntimeObject = nullptr;
tagTBaseTypeInfo* g_pRuntimeClassInfo = nullptr;
tagTBaseTypeInfo* g_pGCClassInfo = nullptr;

namespace zel {

LibraryLifetime::LibraryLifetime(ZelLibInfo* lib) { lib->nameHash = GetTextHash(lib->name); }
LibraryLifetime::~LibraryLifetime() { CBaseTypeInfoRecorder::CleanUp(); }

int NotifyLibrary(ZelLibInfo* lib, NOTIFY_LIB_CODE code, unsigned int p1, unsigned int) {
    if (code != NOTIFY_LIB_RUNTIME) return -1;
    auto* runtime = reinterpret_cast<ZelObject*>(p1);
    g_pRuntimeObject = runtime;
    g_pRuntimeClassInfo = ZelOwnClass(runtime);
    // No runtime class: no runtime services, the memory manager's included.
    g_pGCClassInfo = nullptr;
    if (!g_pRuntimeClassInfo) return 0;
    auto memoryManager = reinterpret_cast<tagTBaseTypeInfo* (*)()>(ServiceFunction(g_pRuntimeClassInfo, ZEL_RT_MEMORY_MANAGER));
    g_pGCClassInfo = memoryManager ? memoryManager() : nullptr;
    g_EmptyConst.library = lib;
    RegisterConstBlock(&g_EmptyConst);
    return 0;
}

}  // namespace zel

// ---- descriptor queries ----------------------------------------------------

namespace {
// A null object, or one without a chain, has no classes to visit.
template <typename Visit>
void WalkChainFromOwnClass(ZelObject* obj, Visit visit) {
    if (!obj || !obj->classChain) return;
    for (int i = obj->classChain[0] - 1; i >= 0; --i) {
        if (tagTBaseTypeInfo* record = ZelChainClass(obj, i)) visit(record);
    }
}
}  // namespace

// Deliberately tests the element table before walking the methods: a class
// without elements contributes no methods.
void EnumObjectAllMethods(ZelObject* obj, void (*callback)(tagMethodItem*, void*), void* context) {
    if (!callback) return;
    WalkChainFromOwnClass(obj, [&](tagTBaseTypeInfo* r) {
        if (!r->elements) return;
        for (int i = 0; i < r->methodCount; ++i) callback(&r->methods[i], context);
    });
}

void EnumObjectAllElements(ZelObject* obj, void (*callback)(tagElementItem*, void*), void* context) {
    if (!callback) return;
    WalkChainFromOwnClass(obj, [&](tagTBaseTypeInfo* r) {
        if (!r->elements || r->elementCount <= 0) return;
        for (int i = 0; i < r->elementCount; ++i) callback(&r->elements[i], context);
    });
}

bool MethodIsReadProperty(tagMethodItem* m) {
    return m && (m->flags & ZEL_METHOD_PROPERTY_BIT) && m->paramCount == 0 && m->returnType && *m->returnType;
}

bool MethodIsWriteProperty(tagMethodItem* m) {
    return m && (m->flags & ZEL_METHOD_PROPERTY_BIT) && m->paramCount == 1 && (!m->returnType || !*m->returnType);
}

bool MethodIsProperty(tagMethodItem* m) { return MethodIsReadProperty(m) || MethodIsWriteProperty(m); }

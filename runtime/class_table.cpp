#include <zel/class_table.h>

#include <zel/textfuncs.h>

namespace zel {

tagTBaseTypeInfo MakeClassRecord(const wchar_t* name, const wchar_t* description, tagMethodItem* methods,
                                 int methodCount, tagElementItem* elements, int elementCount,
                                 const wchar_t* baseName, tagInterfaceEntry* interfaces, int interfaceCount,
                                 unsigned flags) {
    tagTBaseTypeInfo r{};
    r.flags = flags;
    r.name = W(name);
    r.description = W(description);
    r.text = W(L"");
    r.kind = ZEL_KIND_CLASS;
    r.version = 1.0;
    r.fixed36 = -1;
    r.fixed40 = 0;
    r.fixed44 = 3;
    r.baseName = W(baseName);
    r.interfaceCount = interfaceCount;
    r.interfaces = interfaces;
    r.methodCount = methodCount;
    r.methods = methods;
    r.elementCount = elementCount;
    r.elements = elements;
    return r;
}

static void PrepareMethods(tagMethodItem* methods, int count) {
    for (int i = 0; i < count; ++i) {
        tagMethodItem& m = methods[i];
        m.nameHash = GetTextHash(m.name);
        m.friendNameHash = GetFriendNameHash(m.friendName);
        m.returnTypeHash = GetTextHash(m.returnType);
        for (int p = 0; p < m.paramCount; ++p) {
            m.params[p].nameHash = GetTextHash(m.params[p].name);
            m.params[p].typeHash = GetTextHash(m.params[p].type);
        }
    }
}

tagTBaseTypeInfo* PrepareClassRecord(tagTBaseTypeInfo* r) {
    r->nameHash = GetTextHash(r->name);
    r->baseNameHash = GetTextHash(r->baseName);
    for (int i = 0; i < r->interfaceCount; ++i) r->interfaces[i].nameHash = GetTextHash(r->interfaces[i].name);
    PrepareMethods(r->methods, r->methodCount);
    for (int i = 0; i < r->elementCount; ++i) {
        r->elements[i].nameHash = GetTextHash(r->elements[i].name);
        r->elements[i].typeHash = GetTextHash(r->elements[i].type);
    }
    return r;
}

tagTInterfaceInfo* PrepareInterfaceRecord(tagTInterfaceInfo* r) {
    r->nameHash = GetTextHash(r->name);
    r->baseNameHash = GetTextHash(r->baseName);
    PrepareMethods(r->methods, r->methodCount);
    return r;
}

}  // namespace zel

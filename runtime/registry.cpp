#include <zel/registry.h>

#include <zel/hashkv.h>

#include <new>

// Zero until the first registration, whatever the order of module initialisers.
CText2PtrHashmap* CBaseTypeInfoRecorder::sm_pBaseTypeInfoTable = nullptr;

CBaseTypeInfoRecorder::CBaseTypeInfoRecorder(tagTBaseTypeInfo* record) {
    // Without memory the class is simply not listed.
    if (!sm_pBaseTypeInfoTable) sm_pBaseTypeInfoTable = new (std::nothrow) CText2PtrHashmap(300);
    if (sm_pBaseTypeInfoTable) sm_pBaseTypeInfoTable->Set(record->name, record);
}

void CBaseTypeInfoRecorder::CleanUp() {
    delete sm_pBaseTypeInfoTable;
    sm_pBaseTypeInfoTable = nullptr;
}

namespace zel {

int EnumClassRecords(ZelLibInfo*, tagTBaseTypeInfo** out, int capacity) {
    CText2PtrHashmap* table = CBaseTypeInfoRecorder::sm_pBaseTypeInfoTable;
    if (!out) return table ? table->GetCount() : 0;
    if (capacity < 1 || !table) return 0;
    // A private iterator: the table's cached one may be in use by a caller.
    HashKV_iterator it(table);
    int stored = 0;
    for (it.reset(); !it.IsEnd() && stored < capacity; it.skip()) {
        void* value = nullptr;
        it.GetValue(&value);
        out[stored++] = static_cast<tagTBaseTypeInfo*>(value);
    }
    return stored;
}

tagTBaseTypeInfo* FindClassRecord(ZelLibInfo*, wchar_t* name) {
    CText2PtrHashmap* table = CBaseTypeInfoRecorder::sm_pBaseTypeInfoTable;
    void* value = nullptr;
    if (!table || !name || !table->Get(name, &value)) return nullptr;
    return static_cast<tagTBaseTypeInfo*>(value);
}

}  // namespace zel

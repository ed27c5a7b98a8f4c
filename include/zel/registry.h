// The table of this library's class records, keyed by class name.
#pragma once

#include <zel/zel_types.h>

class CText2PtrHashmap;

class ZEL_API CBaseTypeInfoRecorder {
public:
    explicit CBaseTypeInfoRecorder(tagTBaseTypeInfo* record);
    static void CleanUp();
    static CText2PtrHashmap* sm_pBaseTypeInfoTable;
};

namespace zel {
// Callbacks of the library record.
int EnumClassRecords(ZelLibInfo* lib, tagTBaseTypeInfo** out, int capacity);
tagTBaseTypeInfo* FindClassRecord(ZelLibInfo* lib, wchar_t* name);
}  // namespace zel

// Internals shared by the host's source files (hidden in 系统.ncl).
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "host/host_api.h"
#include <zel/services.h>

extern "C" ZELHOST_API tagTBaseTypeInfo g_info_SystemObject;

namespace zelhost {

// The host's own class records (runtime.cpp).
extern ZelLibInfo g_sysLibInfo;
tagTBaseTypeInfo* HostFindRecord(const std::wstring& name);
ZelObject* RuntimeObject();

// Record names of the host's own records (for ncl show / check).
std::string HostRecordName(const void* record);

// Bindings (bindings.cpp).
// Export bound to item `index` (0-based) of a record without a function, or "".
std::string BoundExport(const std::string& recordName, int index);
// Extra leading 32-bit words of a calling irregularity.
int LeadingWords(const std::string& recordName, const wchar_t* itemName);

// Findings and the statement context (handles.cpp).
void AddFinding(const std::string& kind, const std::string& message);
std::string CurrentWhere();
std::string DescribeHandle(void* handle);  // "文本 \"ab\" made at f.zs:3"

// Error reports (runtime.cpp): how many so far, never reset.
int ReportCount();

// Type strings.
bool IsDoubleType(const wchar_t* t);

}  // namespace zelhost

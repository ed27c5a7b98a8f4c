// The library record and entry points of a class library, in one line:
//
//     ZEL_LIBRARY(L"示例", L"示例类库");
//
// written once in one source file of the library. It defines the exported
// record g_zellib_info, ZelGetLibInfo and ZelNotifyLib; the class modules
// register their records themselves (ZEL_REGISTER_CLASS). The name is the
// namespace of the library's classes and the stem of its file (示例.ncl).
#pragma once

#include <zel/zel_types.h>
#include <zel/registry.h>
#include <zel/version.h>

namespace zel {

// The record of a library with the given name, description and version; the
// name hash is filled in at load (LibraryLifetime).
constexpr ZelLibInfo LibraryRecord(const wchar_t* name, const wchar_t* description, double version) {
    wchar_t* empty = const_cast<wchar_t*>(L"");
    return ZelLibInfo{0,       const_cast<wchar_t*>(name), const_cast<wchar_t*>(description), empty, 0,
                      1,       0,   7,    version,        1,           {empty, empty, empty},
                      EnumClassRecords, FindClassRecord, 0, {empty, empty},    {0, 0, 0}};
}

// The runtime's hand-over (code 1): keeps the runtime object, its class and
// the memory manager's class, and registers the library's constant block.
// Every other code answers -1 and changes nothing.
int NotifyLibrary(ZelLibInfo* lib, NOTIFY_LIB_CODE code, unsigned int p1, unsigned int p2);

// Fills the record's name hash at load and drops the class table at unload.
class LibraryLifetime {
public:
    explicit LibraryLifetime(ZelLibInfo* lib);
    ~LibraryLifetime();
    LibraryLifetime(const LibraryLifetime&) = delete;
    LibraryLifetime& operator=(const LibraryLifetime&) = delete;
};

}  // namespace zel

#define ZEL_LIBRARY_VERSIONED(name, description, version)                                            \
    ZEL_RECORD(ZelLibInfo, g_zellib_info) = ::zel::LibraryRecord(name, description, version);       \
    ZEL_EXPORT ZelLibInfo* ZelGetLibInfo() { return &g_zellib_info; }                                \
    ZEL_EXPORT int ZelNotifyLib(ZelLibInfo* lib, NOTIFY_LIB_CODE code, unsigned int p1, unsigned int p2) { \
        return ::zel::NotifyLibrary(lib, code, p1, p2);                                              \
    }                                                                                                \
    static ::zel::LibraryLifetime zel_library_lifetime_(&g_zellib_info)

// A library whose record carries the SDK's version.
#define ZEL_LIBRARY(name, description) ZEL_LIBRARY_VERSIONED(name, description, ZEL_VERSION_NUMBER)

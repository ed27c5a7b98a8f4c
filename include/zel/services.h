// The runtime's services, reached through the two runtime classes handed over
// by ZelNotifyLib (or loaded by SysLibLoader). A service is the function of a
// method item, called by its index with no object argument (cdecl).
#pragma once

#include <zel/zel_types.h>

enum ZelRuntimeService {
    ZEL_RT_LOCK = 0,             // void ()
    ZEL_RT_UNLOCK = 1,           // void ()
    ZEL_RT_REGISTER_CONST = 2,   // void (void* constBlock)
    ZEL_RT_MEMORY_MANAGER = 4,   // tagTBaseTypeInfo* ()
    ZEL_RT_REPORT_ERROR = 5,     // int (int one, wchar_t* library, int code, wchar_t* message)
    ZEL_RT_NEW_OBJECT = 16,      // ZelObject* (wchar_t* className, int one)
};

enum ZelMemoryService {
    ZEL_MM_TAKE_OVER = 1,        // void* (void* block, int zero): the handle to keep
    ZEL_MM_NEW_TEXT = 2,         // unsigned char* (wchar_t* s)
    ZEL_MM_NEW_BIN = 3,          // unsigned char* (void* data, int length)
    ZEL_MM_ADD_REF = 4,          // void* (void* handle): the handle to keep
    ZEL_MM_RELEASE = 5,          // void (void* handle)
};

ZEL_API extern ZelObject* g_pRuntimeObject;
ZEL_API extern tagTBaseTypeInfo* g_pRuntimeClassInfo;
ZEL_API extern tagTBaseTypeInfo* g_pGCClassInfo;

// Thin typed calls of the services. Without a runtime each falls back to the
// nearest local behaviour: locks do nothing, new values are plain clones the
// caller owns, references are not counted.
namespace zel {
void RuntimeLock();
void RuntimeUnlock();
void RegisterConstBlock(void* block);
ZelObject* NewObject(const wchar_t* className);
void* TakeOverBlock(void* block);
unsigned char* NewText(const wchar_t* s);
unsigned char* NewBin(const void* data, int length);
void* AddRef(void* handle);
void Release(void* handle);
// The function of method item k of a class record, or null.
void* ServiceFunction(tagTBaseTypeInfo* cls, int k);
}  // namespace zel

// Loading the system class library and reaching the runtime through it.
#pragma once

#include <zel/zel_types.h>

class CMString;
class CMStringArray;

ZEL_API void GetZelLibSearchPaths(CMStringArray& paths);

class ZEL_API SysLibLoader {
public:
    SysLibLoader();
    ~SysLibLoader();
    ZelObject* GetRuntimeObject();
    ZelLibInfo* GetLibInfo();

private:
    unsigned int m_handle;
    ZelObject* m_runtime;
};

ZEL_API wchar_t* MGetClassName(ZelObject* obj);
ZEL_API void MCallClassDefaultConstructor(ZelObject* obj, int level);
ZEL_API void GetEventShortName(CMString& out, wchar_t* name);
ZEL_API void GetEventShortName(CMString& out, ZelObject* obj);

// Descriptor queries.
ZEL_API void EnumObjectAllMethods(ZelObject* obj, void (*callback)(tagMethodItem*, void*), void* context);
ZEL_API void EnumObjectAllElements(ZelObject* obj, void (*callback)(tagElementItem*, void*), void* context);
ZEL_API bool MethodIsReadProperty(tagMethodItem* item);
ZEL_API bool MethodIsWriteProperty(tagMethodItem* item);
ZEL_API bool MethodIsProperty(tagMethodItem* item);

extern "C" ZEL_API ZelLibInfo* ZelGetLibInfo();
extern "C" ZEL_API int ZelNotifyLib(ZelLibInfo* lib, NOTIFY_LIB_CODE code, unsigned int p1, unsigned int p2);
extern "C" ZEL_API ZelLibInfo g_zellib_info;

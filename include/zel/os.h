// The thin platform layer.
#pragma once

#include <zel/zel_types.h>

class CMString;

namespace OS {
ZEL_API unsigned int MLoadLibrary(const wchar_t* path);
ZEL_API void* MGetProcAddress(unsigned int handle, const char* name);
ZEL_API int MFreeLibrary(unsigned int handle);
ZEL_API CMString NormalizePath(wchar_t* path);

ZEL_API void information(const wchar_t* s);
ZEL_API void warning(const wchar_t* s);
ZEL_API void error(const wchar_t* s);
ZEL_API bool yesOrNo(const wchar_t* s);
ZEL_API void MExit(int code);
ZEL_API unsigned int milliseconds();
ZEL_API bool GetMemoryInfo(unsigned int& total, unsigned int& free);
ZEL_API unsigned int GetUsedMemoryPercent();

// The one static platform object.
class ZEL_API COS {
public:
    const wchar_t* Name() const { return L"linux"; }
};
ZEL_API COS* GetOS();
}  // namespace OS

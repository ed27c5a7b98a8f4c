// Error reports and the wide print family ("%s" means a wide string here).
#pragma once

#include <cstdarg>
#include <cstdio>

#include <zel/zel_types.h>

ZEL_API int wprintf_linux(wchar_t* fmt, ...);
ZEL_API int vwprintf_linux(wchar_t* fmt, va_list args);
ZEL_API int fwprintf_linux(FILE* stream, wchar_t* fmt, ...);
ZEL_API int vfwprintf_linux(FILE* stream, wchar_t* fmt, va_list args);
ZEL_API int swprintf_linux(wchar_t* buf, wchar_t* fmt, ...);
ZEL_API int vswprintf_linux(wchar_t* buf, wchar_t* fmt, va_list args);
ZEL_API int putws_linux(wchar_t* s);

// A negative code is fatal: without a runtime the process ends.
ZEL_API int MReportError(wchar_t* library, int code, wchar_t* message);

enum { ZEL_ERR_NO_MEMORY = -20001 };

class CMString;
namespace zel {
// The format as the C library wants it ("%s" and "%S" swapped); `copy` holds
// the changed text when anything changed.
const wchar_t* CLibraryFormat(const wchar_t* fmt, CMString& copy);
}  // namespace zel

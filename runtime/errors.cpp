#include <zel/errors.h>

#include <cstdlib>
#include <cwchar>

#include <zel/services.h>
#include <zel/mstring.h>

// "%s" in our formats is a wide string, which the C library spells "%S":
// swap the two, looking only at the character right after each '%'. The
// caller's format is never changed; `copy` takes the text at the first swap.
// Null when that copy cannot be allocated: nothing may be printed then.
const wchar_t* zel::CLibraryFormat(const wchar_t* fmt, CMString& copy) {
    if (!fmt) return L"";
    bool copied = false;
    for (int i = 0; fmt[i]; ++i) {
        if (fmt[i] != L'%') continue;
        wchar_t next = fmt[i + 1];
        if (next == L's' || next == L'S') {
            if (!copied) {
                copy.SetText(fmt);
                if (copy.IsEmpty()) return nullptr;
                copied = true;
            }
            copy.GetText()[i + 1] = next == L's' ? L'S' : L's';
        }
        if (next) ++i;
    }
    return copied ? copy.GetText() : fmt;
}

// Without memory for the format the print family prints nothing and fails
// (-1), leaving the output buffer as it was.
int vwprintf_linux(wchar_t* fmt, va_list args) {
    CMString copy;
    const wchar_t* format = zel::CLibraryFormat(fmt, copy);
    return format ? std::vwprintf(format, args) : -1;
}

int vfwprintf_linux(FILE* stream, wchar_t* fmt, va_list args) {
    CMString copy;
    const wchar_t* format = zel::CLibraryFormat(fmt, copy);
    return format ? std::vfwprintf(stream, format, args) : -1;
}

int vswprintf_linux(wchar_t* buf, wchar_t* fmt, va_list args) {
    CMString copy;
    const wchar_t* format = zel::CLibraryFormat(fmt, copy);
    return format ? std::vswprintf(buf, 0x1FFFFFFF, format, args) : -1;
}

int wprintf_linux(wchar_t* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    int n = vwprintf_linux(fmt, args);
    va_end(args);
    return n;
}

int fwprintf_linux(FILE* stream, wchar_t* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    int n = vfwprintf_linux(stream, fmt, args);
    va_end(args);
    return n;
}

int swprintf_linux(wchar_t* buf, wchar_t* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    int n = vswprintf_linux(buf, fmt, args);
    va_end(args);
    return n;
}

int putws_linux(wchar_t* s) { return std::wprintf(L"%S\r\n", s); }

int MReportError(wchar_t* library, int code, wchar_t* message) {
    if (g_pRuntimeClassInfo) {
        auto report = reinterpret_cast<int (*)(int, wchar_t*, int, wchar_t*)>(
            zel::ServiceFunction(g_pRuntimeClassInfo, ZEL_RT_REPORT_ERROR));
        if (report) return report(1, library, code, message);
    }
    bool fatal = code < 0;
    bool hasLibrary = library && *library;
    bool hasMessage = message && *message;
    int n;
    if (!hasLibrary && !hasMessage)
        n = fwprintf_linux(stderr, const_cast<wchar_t*>(fatal ? L"发生错误码为%d的严重错误\n" : L"发生错误码为%d的错误\n"), code);
    else if (!hasLibrary)
        n = fwprintf_linux(stderr, const_cast<wchar_t*>(fatal ? L"严重错误(%d): %s\n" : L"错误(%d): %s\n"), code, message);
    else if (!hasMessage)
        n = fwprintf_linux(stderr,
                           const_cast<wchar_t*>(fatal ? L"类库\"%s\"中发生错误码为%d的严重错误\n"
                                                      : L"类库\"%s\"中发生错误码为%d的错误\n"),
                           library, code);
    else
        n = fwprintf_linux(stderr,
                           const_cast<wchar_t*>(fatal ? L"类库\"%s\"中发生严重错误(%d): %s\n"
                                                      : L"类库\"%s\"中发生错误(%d): %s\n"),
                           library, code, message);
    if (fatal) std::exit(-1);
    return n;
}

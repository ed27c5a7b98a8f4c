#include <zel/os.h>

#include <dlfcn.h>
#include <sys/time.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>

#include <zel/errors.h>
#include <zel/memory.h>
#include <zel/minimem.h>
#include <zel/mstring.h>

namespace {
unsigned int NowMilliseconds() {
    timeval tv;
    gettimeofday(&tv, nullptr);
    return unsigned(tv.tv_sec) * 1000u + unsigned(tv.tv_usec) / 1000u;
}
const unsigned int g_loadedAt = NowMilliseconds();
OS::COS g_os;

void Framed(const wchar_t* frame, const wchar_t* s) { wprintf_linux(const_cast<wchar_t*>(frame), s); }
}  // namespace

namespace OS {

unsigned int MLoadLibrary(const wchar_t* path) {
    CMiniMem buffer;
    char* narrow = GetMBSText(const_cast<wchar_t*>(path), buffer);
    return unsigned(reinterpret_cast<uintptr_t>(dlopen(narrow, RTLD_LAZY)));
}

void* MGetProcAddress(unsigned int handle, const char* name) {
    return dlsym(reinterpret_cast<void*>(uintptr_t(handle)), name);
}

int MFreeLibrary(unsigned int handle) { return dlclose(reinterpret_cast<void*>(uintptr_t(handle))); }

// Paths need no normalising on this platform.
CMString NormalizePath(wchar_t* path) { return CMString(path); }

COS* GetOS() { return &g_os; }

void information(const wchar_t* s) { Framed(L"\n[信息]：%s\n", s); }
// The bell after a warning is deliberate.
void warning(const wchar_t* s) { Framed(L"\n[警告]：%s\n\a", s); }
void error(const wchar_t* s) { Framed(L"\n[错误]：%s\n", s); }

bool yesOrNo(const wchar_t* s) {
    Framed(L"\n[询问]：%s[Y/N]\n", s);
    for (;;) {
        wint_t c = getwchar();
        if (c == L'Y' || c == L'y') return true;
        // End of input answers no rather than waiting forever.
        if (c == L'N' || c == L'n' || c == 0 || c == WEOF) return false;
    }
}

void MExit(int code) { std::exit(code); }

unsigned int milliseconds() { return NowMilliseconds() - g_loadedAt; }

bool GetMemoryInfo(unsigned int& total, unsigned int& free) {
    total = free = 0;
    FILE* f = std::fopen("/proc/meminfo", "rb");
    if (!f) return false;
    char text[1025];
    size_t n = std::fread(text, 1, 1024, f);
    std::fclose(f);
    if (n == 0 || n >= 1024) return false;
    text[n] = 0;
    auto read = [&](const char* key, unsigned int& out) {
        const char* p = std::strstr(text, key);
        if (!p) return false;
        p += std::strlen(key);
        while (*p == ' ' || *p == '\t') ++p;
        int value = 0;
        if (std::sscanf(p, "%d", &value) != 1) return false;
        out = unsigned(value);
        return true;
    };
    bool hasTotal = read("MemTotal:", total);
    bool hasFree = read("MemFree:", free);
    return hasTotal && hasFree;
}

// Only meaningful after a successful GetMemoryInfo (a zero total is a fault).
unsigned int GetUsedMemoryPercent() {
    unsigned int total, free;
    GetMemoryInfo(total, free);
    return total ? (total - free) * 100u / total : 0u;
}

}  // namespace OS

#include <zel/loader.h>

#include <cstdlib>

#include <zel/os.h>
#include <zel/mstring.h>
#include <zel/textfuncs.h>

void GetZelLibSearchPaths(CMStringArray& paths) {
    CMString all(std::getenv("ZELCLS_PATHS"));
    const wchar_t* p = all.GetText();
    while (*p) {
        const wchar_t* end = p;
        while (*end && *end != L',' && *end != L';') ++end;
        if (end > p) {
            CMString entry;
            entry.SetText(p, int(end - p));
            if (!entry.EndOf(L"/")) entry.AddChar(L'/');
            paths.Add(entry.GetText());
        }
        p = *end ? end + 1 : end;
    }
}

SysLibLoader::SysLibLoader() : m_handle(0), m_runtime(nullptr) {
    CMStringArray paths;
    GetZelLibSearchPaths(paths);
    for (int i = 0; i < paths.GetSize() && !m_handle; ++i) {
        CMString file(paths[i]);
        file += L"系统";
        file += L".ncl";
        m_handle = OS::MLoadLibrary(file.GetText());
    }
    paths.RemoveAll();  // the array's destructor leaves its texts to us
    if (!m_handle) {
        OS::error(L"无法加载Zel语言系统类库(系统.ncl)！\n\n请检查该文件是否存在，或环境变量ZELCLS_PATHS是否已正确设置。");
        return;
    }
    if (auto init = reinterpret_cast<ZelObject* (*)()>(OS::MGetProcAddress(m_handle, "ZelInitSysLib")))
        m_runtime = init();
}

SysLibLoader::~SysLibLoader() {
    if (m_handle) OS::MFreeLibrary(m_handle);
}

ZelObject* SysLibLoader::GetRuntimeObject() { return m_runtime; }

ZelLibInfo* SysLibLoader::GetLibInfo() {
    tagTBaseTypeInfo* cls = ZelOwnClass(m_runtime);
    return cls ? static_cast<ZelLibInfo*>(cls->library) : nullptr;
}

// A null object (or one without a chain) has no class name.
wchar_t* MGetClassName(ZelObject* obj) {
    tagTBaseTypeInfo* cls = ZelOwnClass(obj);
    return cls ? cls->name : nullptr;
}

void MCallClassDefaultConstructor(ZelObject* obj, int level) {
    if (!obj || level < 0) return;
    for (int l = level; l >= 0; --l) {
        tagTBaseTypeInfo* cls = ZelChainClass(obj, l);
        if (!cls || !cls->methods) continue;
        for (int i = 0; i < cls->methodCount; ++i) {
            tagMethodItem& m = cls->methods[i];
            if ((m.flags & 0xA) == 0x8 && m.paramCount == 0 && m.function) {
                reinterpret_cast<void (*)(ZelObject*)>(m.function)(obj);
                return;
            }
        }
    }
}

void GetEventShortName(CMString& out, wchar_t* name) {
    const wchar_t* start = name ? name : L"";
    if (const wchar_t* slash = mystrrchr(start, L'/'))
        start = slash + 1;
    else if (const wchar_t* dot = mystrrchr(start, L'.'))
        start = dot + 1;
    out = start;
    if (out.EndOf(L"事件")) out = out.Left(out.GetLength() - 2);
}

void GetEventShortName(CMString& out, ZelObject* obj) { GetEventShortName(out, MGetClassName(obj)); }

// Loading class libraries, reading their exports, and building classes with
// their level layout.
#include <dlfcn.h>
#include <elf.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include "host/host_internal.h"

namespace zelhost {
namespace {

std::vector<std::unique_ptr<Library>> g_libraries;
std::map<std::wstring, Library*> g_byPrefix;
std::map<const void*, std::unique_ptr<ClassInfo>> g_classes;
std::set<const void*> g_building;
Library* g_host = nullptr;

// Defined dynamic symbols of an ELF32 file.
// The file is mapped, not read: only the pages of the headers and the
// dynamic symbol tables are touched.
class MappedFile {
public:
    explicit MappedFile(const std::string& path) {
        int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        if (fd < 0) return;
        struct stat st;
        if (fstat(fd, &st) == 0 && st.st_size > 0 && uint64_t(st.st_size) <= SIZE_MAX / 2) {
            void* p = mmap(nullptr, size_t(st.st_size), PROT_READ, MAP_PRIVATE, fd, 0);
            if (p != MAP_FAILED) {
                m_data = static_cast<const char*>(p);
                m_size = size_t(st.st_size);
            }
        }
        close(fd);
    }
    ~MappedFile() {
        if (m_data) munmap(const_cast<char*>(m_data), m_size);
    }
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;
    const char* data() const { return m_data; }
    size_t size() const { return m_size; }

private:
    const char* m_data = nullptr;
    size_t m_size = 0;
};

// Whether [offset, offset + length) lies in a file of `size` bytes, aligned
// for the records read there.
bool Fits(size_t offset, size_t length, size_t size, size_t align = 1) {
    return offset <= size && length <= size - offset && offset % align == 0;
}

std::vector<std::string> ReadDynamicSymbols(const std::string& path) {
    std::vector<std::string> out;
    MappedFile data(path);
    if (data.size() < sizeof(Elf32_Ehdr)) return out;
    const auto* eh = reinterpret_cast<const Elf32_Ehdr*>(data.data());
    if (std::memcmp(eh->e_ident, ELFMAG, SELFMAG) != 0 || eh->e_ident[EI_CLASS] != ELFCLASS32) return out;
    if (eh->e_shoff == 0 || eh->e_shentsize != sizeof(Elf32_Shdr)) return out;
    if (!Fits(eh->e_shoff, size_t(eh->e_shnum) * sizeof(Elf32_Shdr), data.size(), 4)) return out;
    const auto* sh = reinterpret_cast<const Elf32_Shdr*>(data.data() + eh->e_shoff);
    for (int i = 0; i < eh->e_shnum; ++i) {
        if (sh[i].sh_type != SHT_DYNSYM) continue;
        if (sh[i].sh_link >= eh->e_shnum) continue;
        const Elf32_Shdr& strtab = sh[sh[i].sh_link];
        if (!Fits(sh[i].sh_offset, sh[i].sh_size, data.size(), 4) ||
            !Fits(strtab.sh_offset, strtab.sh_size, data.size()))
            continue;
        size_t n = sh[i].sh_size / sizeof(Elf32_Sym);
        const auto* syms = reinterpret_cast<const Elf32_Sym*>(data.data() + sh[i].sh_offset);
        for (size_t k = 1; k < n; ++k) {
            if (syms[k].st_shndx == SHN_UNDEF) continue;
            int bind = ELF32_ST_BIND(syms[k].st_info);
            if (bind != STB_GLOBAL && bind != STB_WEAK) continue;
            if (ELF32_ST_VISIBILITY(syms[k].st_other) != STV_DEFAULT &&
                ELF32_ST_VISIBILITY(syms[k].st_other) != STV_PROTECTED)
                continue;
            if (syms[k].st_name >= strtab.sh_size) continue;
            const char* name = data.data() + strtab.sh_offset + syms[k].st_name;
            out.emplace_back(name, strnlen(name, strtab.sh_size - syms[k].st_name));
        }
    }
    return out;
}

void LearnRecordNames(Library* lib) {
    for (const std::string& s : lib->exports) {
        if (s.rfind("g_info_", 0) != 0) continue;
        void* addr = dlsym(lib->handle, s.c_str());
        if (!addr) continue;
        lib->recordNames.push_back({addr, s.substr(7)});
    }
}

std::string HostPath() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&ZelInitSysLib), &info) && info.dli_fname) return info.dli_fname;
    return "";
}

bool SameFile(const std::string& a, const std::string& b) {
    struct stat sa, sb;
    if (stat(a.c_str(), &sa) != 0 || stat(b.c_str(), &sb) != 0) return false;
    return sa.st_dev == sb.st_dev && sa.st_ino == sb.st_ino;
}

std::wstring Prefix(const std::wstring& className) {
    size_t dot = className.find(L'.');
    return dot == std::wstring::npos ? std::wstring() : className.substr(0, dot);
}

int ElementWords(tagTBaseTypeInfo* rec) {
    if (rec->kind == ZEL_KIND_INTERFACE || rec->elementCount <= 0 || !rec->elements) return 0;
    int words = 0;
    for (int i = 0; i < rec->elementCount; ++i) words += IsDoubleType(rec->elements[i].type) ? 2 : 1;
    return words;
}

}  // namespace

std::string Library::RecordName(const void* record) const {
    if (isHost) return HostRecordName(record);
    for (auto& [addr, name] : recordNames) {
        if (addr == record) return name;
    }
    // A g_info_ export that holds a pointer to the record.
    for (auto& [addr, name] : recordNames) {
        if (*static_cast<const void* const*>(addr) == record) return name;
    }
    return "";
}

void* Library::Export(const std::string& name) const {
    if (!handle) return nullptr;
    bool listed = false;
    for (auto& e : exports)
        if (e == name) { listed = true; break; }
    if (!listed && !exports.empty()) return nullptr;  // only the library's own exports
    return dlsym(handle, name.c_str());
}

std::vector<tagTBaseTypeInfo*> Library::Records() const {
    std::vector<tagTBaseTypeInfo*> out;
    if (!info || !info->enumClasses) return out;
    int n = info->enumClasses(info, nullptr, 0);
    if (n <= 0) return out;
    out.resize(size_t(n));
    int got = info->enumClasses(info, out.data(), n);
    out.resize(size_t(got < 0 ? 0 : got));
    return out;
}

tagTBaseTypeInfo* Library::Find(const std::wstring& name) const {
    if (!info || !info->findClass) return nullptr;
    std::wstring copy = name;
    return info->findClass(info, copy.data());
}

Library* HostLibrary() {
    if (g_host) return g_host;
    auto lib = std::make_unique<Library>();
    lib->isHost = true;
    lib->path = HostPath();
    lib->info = &g_sysLibInfo;
    lib->handle = dlopen(lib->path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    lib->exports = ReadDynamicSymbols(lib->path);
    g_host = lib.get();
    g_byPrefix[L"系统"] = g_host;
    g_libraries.push_back(std::move(lib));
    return g_host;
}

std::vector<std::string> SearchPaths() {
    std::vector<std::string> out;
    // Each folder once, with a trailing slash.
    auto add = [&](std::string dir) {
        if (dir.empty()) return;
        if (dir.back() != '/') dir += '/';
        if (std::find(out.begin(), out.end(), dir) == out.end()) out.push_back(dir);
    };
    const char* env = std::getenv("ZELCLS_PATHS");
    std::string cur;
    for (const char* p = env ? env : ""; *p; ++p) {
        if (*p == ',' || *p == ';')
            add(std::exchange(cur, std::string()));
        else
            cur += *p;
    }
    add(cur);
    // The folder of 系统.ncl comes last: a build folder, or the installed
    // lib/zel, holds 工具.ncl beside it.
    std::string host = HostPath();
    add(host.substr(0, host.rfind('/') + 1));
    return out;
}

Library* OpenLibrary(const std::string& pathArg, std::string* error) {
    Library* host = HostLibrary();
    // dlopen searches the library path for a name without '/': name the file.
    std::string path = pathArg.find('/') == std::string::npos ? "./" + pathArg : pathArg;
    if (SameFile(path, host->path)) return host;
    for (auto& l : g_libraries)
        if (SameFile(path, l->path)) return l.get();
    if (access(path.c_str(), R_OK) != 0) {
        if (error) *error = "cannot open " + path + ": " + std::strerror(errno);
        return nullptr;
    }
    void* handle = dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL);
    if (!handle) {
        if (error) *error = std::string("cannot load ") + path + ": " + dlerror();
        return nullptr;
    }
    if (handle == host->handle) {
        dlclose(handle);
        return host;
    }
    auto lib = std::make_unique<Library>();
    lib->path = path;
    lib->handle = handle;
    lib->exports = ReadDynamicSymbols(path);
    using GetInfo = ZelLibInfo* (*)();
    using Notify = int (*)(ZelLibInfo*, NOTIFY_LIB_CODE, unsigned, unsigned);
    using InitSys = ZelObject* (*)();
    if (auto get = reinterpret_cast<GetInfo>(dlsym(handle, "ZelGetLibInfo"))) {
        lib->info = get();
    } else if (auto init = reinterpret_cast<InitSys>(dlsym(handle, "ZelInitSysLib"))) {
        // Another system library: its record hangs from byte 20 of its runtime class.
        ZelObject* rt = init();
        if (rt && rt->classChain && rt->classChain[0] > 0) {
            int n = rt->classChain[0];
            auto* rec = reinterpret_cast<tagTBaseTypeInfo*>(rt->classChain[1 + 2 * (n - 1)]);
            lib->info = rec ? static_cast<ZelLibInfo*>(rec->library) : nullptr;
        }
    }
    if (!lib->info) {
        if (error) *error = path + " is not a class library (no ZelGetLibInfo)";
        dlclose(handle);
        return nullptr;
    }
    LearnRecordNames(lib.get());
    if (auto notify = reinterpret_cast<Notify>(dlsym(handle, "ZelNotifyLib"))) {
        int r = notify(lib->info, NOTIFY_LIB_RUNTIME, unsigned(reinterpret_cast<uintptr_t>(RuntimeObject())), 0);
        if (r != 0) lib->notifyError = "ZelNotifyLib(1) returned " + std::to_string(r);
    }
    Library* out = lib.get();
    g_libraries.push_back(std::move(lib));
    if (out->info->name) {
        std::wstring name = out->info->name;
        if (!g_byPrefix.count(name)) g_byPrefix[name] = out;
    }
    return out;
}

Library* LibraryForClass(const std::wstring& className, std::string* error) {
    HostLibrary();
    std::wstring prefix = Prefix(className);
    if (prefix.empty()) {
        if (error) *error = "class name " + ToUtf8(className) + " has no namespace prefix";
        return nullptr;
    }
    auto it = g_byPrefix.find(prefix);
    if (it != g_byPrefix.end()) return it->second;
    std::string file = ToUtf8(prefix) + ".ncl";
    std::vector<std::string> paths = SearchPaths();
    for (const std::string& dir : paths) {
        std::string p = dir + file;
        if (access(p.c_str(), F_OK) != 0) continue;
        Library* lib = OpenLibrary(p, error);
        if (!lib) return nullptr;
        g_byPrefix[prefix] = lib;
        return lib;
    }
    if (error) {
        if (paths.empty())
            *error = "no class library " + file + ": ZELCLS_PATHS is not set";
        else {
            *error = "no class library " + file + " in ZELCLS_PATHS; searched";
            for (size_t k = 0; k < paths.size(); ++k) *error += (k ? ", " : " ") + paths[k];
        }
    }
    return nullptr;
}

int ClassInfo::methodCount() const {
    if (kind == ZEL_KIND_INTERFACE) return reinterpret_cast<tagTInterfaceInfo*>(record)->methodCount;
    return record->methodCount;
}
tagMethodItem* ClassInfo::methods() const {
    if (kind == ZEL_KIND_INTERFACE) return reinterpret_cast<tagTInterfaceInfo*>(record)->methods;
    return record->methods;
}
int ClassInfo::elementCount() const { return kind == ZEL_KIND_INTERFACE ? 0 : record->elementCount; }
tagElementItem* ClassInfo::elements() const { return kind == ZEL_KIND_INTERFACE ? nullptr : record->elements; }

const char* HookName(int hook) {
    static const char* names[] = {"Init", "Free", "Clone", "Serialize", "Unserialize", "ToString"};
    return hook >= 0 && hook < HOOK_COUNT ? names[hook] : "?";
}

ClassInfo* ClassOfRecord(Library* lib, tagTBaseTypeInfo* rec, std::string* error) {
    if (!rec) {
        if (error) *error = "no class record";
        return nullptr;
    }
    auto found = g_classes.find(rec);
    if (found != g_classes.end()) return found->second.get();
    if (g_building.count(rec)) {
        if (error) *error = "class " + ToUtf8(rec->name) + " derives from itself";
        return nullptr;
    }
    g_building.insert(rec);
    struct Done {
        const void* r;
        ~Done() { g_building.erase(r); }
    } done{rec};

    auto cls = std::make_unique<ClassInfo>();
    cls->name = rec->name ? rec->name : L"";
    cls->lib = lib;
    cls->record = rec;
    cls->kind = rec->kind;
    cls->recordName = lib->RecordName(rec);
    if (!cls->recordName.empty() && !lib->isHost) {
        for (int h = 0; h < HOOK_COUNT; ++h) cls->hooks[h] = lib->Export(cls->recordName + "_" + HookName(h));
    }
    if (cls->kind != ZEL_KIND_INTERFACE) {
        std::wstring base = rec->baseName ? rec->baseName : L"";
        if (!base.empty()) {
            ClassInfo* b = nullptr;
            tagTBaseTypeInfo* brec = lib->Find(base);
            if (brec && brec != rec)
                b = ClassOfRecord(lib, brec, error);
            else
                b = FindClass(base, error);
            if (!b) {
                if (error) *error = "base class of " + ToUtf8(cls->name) + ": " + *error;
                return nullptr;
            }
            cls->levels = b->levels;
        } else if (rec != &g_info_SystemObject) {
            ClassInfo* root = FindClass(L"系统.对象", error);
            if (root) cls->levels = root->levels;
        }
        // Interface records that the class's own library defines take a level.
        if (rec->interfaceCount > 0 && rec->interfaces) {
            for (int i = 0; i < rec->interfaceCount; ++i) {
                const wchar_t* iname = rec->interfaces[i].name;
                if (!iname) continue;
                tagTBaseTypeInfo* irec = lib->Find(iname);
                if (!irec || irec->kind != ZEL_KIND_INTERFACE) continue;
                bool present = false;
                for (auto& lv : cls->levels)
                    if (lv.record == irec) present = true;
                if (present) continue;
                ClassInfo* ic = ClassOfRecord(lib, irec, error);
                if (!ic) return nullptr;
                cls->levels.push_back(Level{irec, ic, 0});
            }
        }
    }
    cls->levels.push_back(Level{rec, cls.get(), ElementWords(rec)});
    cls->chain.push_back(int(cls->levels.size()));
    for (auto& lv : cls->levels) {
        cls->chain.push_back(int(reinterpret_cast<intptr_t>(lv.record)));
        cls->chain.push_back(int(reinterpret_cast<intptr_t>(lv.cls ? lv.cls->lib->info : nullptr)));
    }
    ClassInfo* out = cls.get();
    g_classes[rec] = std::move(cls);
    return out;
}

ClassInfo* FindClass(const std::wstring& name, std::string* error) {
    Library* lib = LibraryForClass(name, error);
    if (!lib) return nullptr;
    tagTBaseTypeInfo* rec = lib->Find(name);
    if (!rec) {
        if (error) *error = "unknown class " + ToUtf8(name) + " (not in " + ToUtf8(lib->info->name) + ")";
        return nullptr;
    }
    return ClassOfRecord(lib, rec, error);
}

}  // namespace zelhost

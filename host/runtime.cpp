// The 系统 library itself: the runtime object, the records of its classes
// (系统.对象, the stream interfaces, 系统.运行时, 系统.内存管理器), the services
// behind the runtime and memory-manager methods, and the error reports.
#include <algorithm>
#include <cstring>
#include <iostream>

#include "host/handle_table.h"

namespace zelhost {
namespace {

wchar_t* W(const wchar_t* s) { return const_cast<wchar_t*>(s); }

std::vector<std::string> g_reports;  // guarded by g_tableLock
int g_reportCount = 0;
std::ostream* g_reportStream = nullptr;

std::recursive_mutex g_runtimeLock;  // services 0 and 1

}  // namespace

// ------------------------------------------------------------ reports
void AddReport(const std::string& text) {
    {
        std::lock_guard<std::recursive_mutex> g(g_tableLock);
        g_reports.push_back(text);
        ++g_reportCount;
    }
    (g_reportStream ? *g_reportStream : std::cerr) << text << std::endl;
}

std::vector<std::string> TakeReports() {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    std::vector<std::string> r;
    r.swap(g_reports);
    return r;
}
int ReportCount() { return g_reportCount; }

void SetReportStream(std::ostream* out) { g_reportStream = out; }

std::string FormatReport(const wchar_t* library, int code, const wchar_t* message) {
    bool hasLib = library && *library;
    bool hasMsg = message && *message;
    bool fatal = code < 0;
    std::string lib = ToUtf8(library), msg = ToUtf8(message), c = std::to_string(code);
    if (!hasLib && !hasMsg) return fatal ? "发生错误码为" + c + "的严重错误" : "发生错误码为" + c + "的错误";
    if (!hasLib) return (fatal ? "严重错误(" : "错误(") + c + "): " + msg;
    if (!hasMsg)
        return "类库\"" + lib + "\"中发生错误码为" + c + (fatal ? "的严重错误" : "的错误");
    return "类库\"" + lib + "\"中发生" + (fatal ? "严重错误(" : "错误(") + c + "): " + msg;
}

// ------------------------------------------------------------ the services
namespace {

void RtLock() { g_runtimeLock.lock(); }
void RtUnlock() { g_runtimeLock.unlock(); }
void RtRegisterConst(void* block) { RegisterConstBlock(block); }

int RtReserved() { return 0; }

tagTBaseTypeInfo* RtMemoryManager();

int RtReportError(int one, wchar_t* library, int code, wchar_t* message) {
    AddReport(FormatReport(library, code, message));
    return 0;
}

ZelObject* RtNewObject(wchar_t* className, int one) {
    ServiceScope s;
    std::string err;
    ClassInfo* cls = FindClass(className ? className : L"", &err);
    if (!cls) {
        std::string msg = "创建对象失败: " + err;
        RtReportError(1, W(L"系统"), 16, W(FromUtf8(msg).c_str()));
        return nullptr;
    }
    ZelObject* obj = NewObject(cls, &err);
    if (!err.empty()) RtReportError(1, W(L"系统"), 16, W(FromUtf8(err).c_str()));
    return obj;
}

void* MmTakeOver(void* block, int zero) {
    ServiceScope s;
    return TakeOverBlock(block);
}

unsigned char* MmNewText(wchar_t* s) {
    ServiceScope sc;
    return NewText(s);
}

unsigned char* MmNewBin(void* data, int length) {
    ServiceScope sc;
    return NewBin(data, length);
}

void* MmAddRef(void* h) { return AddRef(h); }
void MmRelease(void* h) { Release(h); }

// ------------------------------------------------------------ records
tagParamItem P(const wchar_t* name, const wchar_t* type, const wchar_t* desc = L"") {
    return tagParamItem{0, W(name), W(desc), W(L""), 0, W(type), 0, {0, 0}};
}
tagMethodItem M(unsigned flags, const wchar_t* name, const wchar_t* ret, tagParamItem* params, int n, void* fn,
                const wchar_t* desc) {
    return tagMethodItem{flags, W(name), W(desc), W(L""), 0, W(L""), 0, W(ret), 0, n, n ? params : nullptr, fn, {0, 0}};
}
template <typename F>
void* FP(F f) {
    return reinterpret_cast<void*>(f);
}

tagParamItem kRegisterParams[] = {P(L"常量块", L"_i", L"常量块的地址")};
tagParamItem kReportParams[] = {P(L"一", L"_i", L"总是1"), P(L"类库名", L"_i", L"宽字符文本的地址"),
                                P(L"错误码", L"_i", L"负数为严重错误"), P(L"错误信息", L"_i", L"宽字符文本的地址")};
tagParamItem kNewObjectParams[] = {P(L"类名", L"_i", L"宽字符类名的地址"), P(L"一", L"_i", L"总是1")};

const unsigned S = ZEL_STATIC;
tagMethodItem kRuntimeMethods[17] = {
    M(S, L"加锁", L"", nullptr, 0, FP(RtLock), L"进入运行时的锁（可重入）"),
    M(S, L"解锁", L"", nullptr, 0, FP(RtUnlock), L"离开运行时的锁"),
    M(S, L"登记常量块", L"", kRegisterParams, 1, FP(RtRegisterConst), L"登记类库的常量块并填写其两个链接"),
    M(S, L"保留3", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"取内存管理器", L"_i", nullptr, 0, FP(RtMemoryManager), L"返回内存管理器的类记录"),
    M(S, L"报告错误", L"_i", kReportParams, 4, FP(RtReportError), L"报告错误，运行因此失败"),
    M(S, L"保留6", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"保留7", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"保留8", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"保留9", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"保留10", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"保留11", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"保留12", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"保留13", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"保留14", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"保留15", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"创建对象", L"系统.对象", kNewObjectParams, 2, FP(RtNewObject), L"按类名创建一个新对象"),
};

tagParamItem kTakeOverParams[] = {P(L"内存块", L"_i", L"以zel_malloc分配的内存块"), P(L"零", L"_i", L"总是0")};
tagParamItem kNewTextParams[] = {P(L"文本", L"_i", L"宽字符文本的地址")};
tagParamItem kNewBinParams[] = {P(L"数据", L"_i", L"数据的地址"), P(L"长度", L"_i", L"字节数")};
tagParamItem kHandleParams[] = {P(L"句柄", L"_i", L"文本、字节集、数组或对象")};

tagMethodItem kMemoryMethods[6] = {
    M(S, L"保留0", L"_i", nullptr, 0, FP(RtReserved), L"保留，返回0"),
    M(S, L"接管内存块", L"_i", kTakeOverParams, 2, FP(MmTakeOver), L"接管内存块，返回应保留的句柄"),
    M(S, L"新建文本", L"_s", kNewTextParams, 1, FP(MmNewText), L"从宽字符文本新建文本值"),
    M(S, L"新建字节集", L"_bn", kNewBinParams, 2, FP(MmNewBin), L"从数据和长度新建字节集值"),
    M(S, L"增加引用", L"_i", kHandleParams, 1, FP(MmAddRef), L"增加一个引用，返回应保留的句柄"),
    M(S, L"释放引用", L"", kHandleParams, 1, FP(MmRelease), L"释放一个引用，为零时释放"),
};

tagTBaseTypeInfo ClassRec(const wchar_t* name, const wchar_t* desc, const wchar_t* base, tagMethodItem* methods,
                          int nMethods) {
    tagTBaseTypeInfo r{};
    r.flags = ZEL_CLASS_FLAGS;
    r.name = W(name);
    r.description = W(desc);
    r.text = W(L"");
    r.library = &g_sysLibInfo;
    r.kind = ZEL_KIND_CLASS;
    r.version = 1.0;
    r.fixed36 = -1;
    r.fixed40 = 0;
    r.fixed44 = 3;
    r.baseName = W(base);
    r.interfaceCount = 0;
    r.interfaces = nullptr;
    r.methodCount = nMethods;
    r.methods = methods;
    r.elementCount = 0;
    r.elements = nullptr;
    return r;
}

// The stream interfaces, in their slot order.
tagParamItem kWriteInt[] = {P(L"整数", L"_i")};
tagParamItem kWriteDouble[] = {P(L"小数", L"_db")};
tagParamItem kWriteBool[] = {P(L"逻辑", L"_b")};
tagParamItem kWriteText[] = {P(L"文本", L"_s")};
tagParamItem kWriteBin[] = {P(L"字节集", L"_bn")};
const unsigned MF = ZEL_METHOD;
tagMethodItem kInputMembers[6] = {
    M(MF, L"读整数", L"_i", nullptr, 0, nullptr, L"读一个整数"),
    M(MF, L"读小数", L"_db", nullptr, 0, nullptr, L"读一个小数"),
    M(MF, L"读逻辑", L"_b", nullptr, 0, nullptr, L"读一个逻辑值"),
    M(MF, L"读文本", L"_s", nullptr, 0, nullptr, L"读一个文本"),
    M(MF, L"读字节集", L"_bn", nullptr, 0, nullptr, L"读一个字节集"),
    M(MF, L"保留", L"_i", nullptr, 0, nullptr, L"保留，返回0"),
};
tagMethodItem kOutputMembers[6] = {
    M(MF, L"写整数", L"_b", kWriteInt, 1, nullptr, L"写一个整数"),
    M(MF, L"写小数", L"_b", kWriteDouble, 1, nullptr, L"写一个小数"),
    M(MF, L"写逻辑", L"_b", kWriteBool, 1, nullptr, L"写一个逻辑值"),
    M(MF, L"写文本", L"_b", kWriteText, 1, nullptr, L"写一个文本"),
    M(MF, L"写字节集", L"_b", kWriteBin, 1, nullptr, L"写一个字节集"),
    M(MF, L"保留", L"_i", nullptr, 0, nullptr, L"保留，返回0"),
};

tagTInterfaceInfo InterfaceRec(const wchar_t* name, const wchar_t* desc, tagMethodItem* methods, int n) {
    return tagTInterfaceInfo{ZEL_CLASS_FLAGS, W(name), W(desc), W(L""), 0, &g_sysLibInfo, ZEL_KIND_INTERFACE, 1.0,
                             -1, 0, W(L""), 0, n, methods};
}

int SysEnum(ZelLibInfo*, tagTBaseTypeInfo** out, int capacity);
tagTBaseTypeInfo* SysFind(ZelLibInfo*, wchar_t* name);

}  // namespace

ZelLibInfo g_sysLibInfo = {0,       W(L"系统"), W(L"系统类库：运行时宿主 (ncl)"), W(L""), 0, 1, 0, 7, 1.0, 1,
                           {W(L""), W(L""), W(L"")}, SysEnum, SysFind, 0, {W(L""), W(L"")}, {0, 0, 0}};

}  // namespace zelhost

// The host's records, exported as g_info_<Record> like any class library's.
using namespace zelhost;
extern "C" {
ZELHOST_API tagTBaseTypeInfo g_info_SystemObject =
    ClassRec(L"系统.对象", L"所有类的根类", L"", nullptr, 0);
ZELHOST_API tagTInterfaceInfo g_info_InputStream =
    InterfaceRec(L"系统.输入流", L"输入流接口", kInputMembers, 6);
ZELHOST_API tagTInterfaceInfo g_info_OutputStream =
    InterfaceRec(L"系统.输出流", L"输出流接口", kOutputMembers, 6);
ZELHOST_API tagTBaseTypeInfo g_info_Runtime =
    ClassRec(L"系统.运行时", L"运行时类：其方法按序号提供运行时服务（无对象参数）", L"系统.对象", kRuntimeMethods, 17);
ZELHOST_API tagTBaseTypeInfo g_info_MemoryManager =
    ClassRec(L"系统.内存管理器", L"内存管理器类：其方法按序号提供内存服务（无对象参数）", L"系统.对象",
             kMemoryMethods, 6);
}

namespace zelhost {
namespace {

tagTBaseTypeInfo* kHostRecords[] = {
    &g_info_SystemObject,
    reinterpret_cast<tagTBaseTypeInfo*>(&g_info_InputStream),
    reinterpret_cast<tagTBaseTypeInfo*>(&g_info_OutputStream),
    &g_info_Runtime,
    &g_info_MemoryManager,
};

tagTBaseTypeInfo* RtMemoryManager() { return &g_info_MemoryManager; }

int SysEnum(ZelLibInfo*, tagTBaseTypeInfo** out, int capacity) {
    int n = int(sizeof kHostRecords / sizeof kHostRecords[0]);
    if (!out) return n;
    if (capacity < 1) return 0;
    int k = std::min(n, capacity);
    for (int i = 0; i < k; ++i) out[i] = kHostRecords[i];
    return k;
}

tagTBaseTypeInfo* SysFind(ZelLibInfo*, wchar_t* name) {
    if (!name) return nullptr;
    for (auto* r : kHostRecords)
        if (wcscmp(r->name, name) == 0) return r;
    return nullptr;
}

void FillHashes(tagMethodItem* m, int n) {
    for (int i = 0; i < n; ++i) {
        m[i].nameHash = TextHash(m[i].name);
        m[i].friendNameHash = 0;
        m[i].returnTypeHash = TextHash(m[i].returnType);
        for (int k = 0; k < m[i].paramCount; ++k) {
            m[i].params[k].nameHash = TextHash(m[i].params[k].name);
            m[i].params[k].typeHash = TextHash(m[i].params[k].type);
        }
    }
}

// The runtime object: chain [系统.对象, 系统.运行时], no data.
int g_runtimeChain[5];
int g_runtimeBlocks[2][1];
void* g_runtimeWords[4];

struct HostInit {
    HostInit() {
        g_sysLibInfo.nameHash = TextHash(g_sysLibInfo.name);
        for (auto* r : kHostRecords) {
            r->nameHash = TextHash(r->name);
            if (r->kind == ZEL_KIND_INTERFACE) {
                auto* ir = reinterpret_cast<tagTInterfaceInfo*>(r);
                ir->baseNameHash = TextHash(ir->baseName);
                FillHashes(ir->methods, ir->methodCount);
            } else {
                r->baseNameHash = TextHash(r->baseName);
                FillHashes(r->methods, r->methodCount);
            }
        }
        g_runtimeChain[0] = 2;
        g_runtimeChain[1] = int(reinterpret_cast<intptr_t>(&g_info_SystemObject));
        g_runtimeChain[2] = int(reinterpret_cast<intptr_t>(&g_sysLibInfo));
        g_runtimeChain[3] = int(reinterpret_cast<intptr_t>(&g_info_Runtime));
        g_runtimeChain[4] = int(reinterpret_cast<intptr_t>(&g_sysLibInfo));
        g_runtimeWords[0] = g_runtimeWords;
        g_runtimeWords[1] = g_runtimeChain;
        g_runtimeWords[2] = g_runtimeBlocks[0];
        g_runtimeWords[3] = g_runtimeBlocks[1];
    }
} g_hostInit;

}  // namespace

ZelObject* RuntimeObject() { return reinterpret_cast<ZelObject*>(g_runtimeWords); }

tagTBaseTypeInfo* HostFindRecord(const std::wstring& name) { return SysFind(nullptr, const_cast<wchar_t*>(name.c_str())); }

std::string HostRecordName(const void* record) {
    if (record == &g_info_SystemObject) return "SystemObject";
    if (record == &g_info_InputStream) return "InputStream";
    if (record == &g_info_OutputStream) return "OutputStream";
    if (record == &g_info_Runtime) return "Runtime";
    if (record == &g_info_MemoryManager) return "MemoryManager";
    return "";
}

}  // namespace zelhost

extern "C" ZELHOST_API ZelObject* ZelInitSysLib() { return zelhost::RuntimeObject(); }

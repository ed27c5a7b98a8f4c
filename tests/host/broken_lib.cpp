// 坏.ncl: a class library with deliberate descriptor faults, for `ncl check`.
#include "runtime/zel_types.h"

namespace {
wchar_t* W(const wchar_t* s) { return const_cast<wchar_t*>(s); }
unsigned Hash(const wchar_t* s) {
    unsigned h = 0;
    for (; s && *s; ++s) h += unsigned(*s);
    return h;
}
int Get(ZelObject*) { return 0; }

tagParamItem kParam[] = {{0, W(L"值"), W(L""), W(L""), 0, W(L"_i"), 0, {0, 0}}};
tagMethodItem kMethods[] = {
    // 1: a property item with a parameter and a type: neither getter nor setter.
    {ZEL_PROPERTY, W(L"坏属性"), W(L""), W(L""), 0, W(L""), 0, W(L"_i"), 0, 1, kParam, reinterpret_cast<void*>(Get), {0, 0}},
    // 2: no function and no binding.
    {ZEL_METHOD, W(L"无函数"), W(L""), W(L""), 0, W(L""), 0, W(L""), 0, 0, nullptr, nullptr, {0, 0}},
    // 3: a wrong name hash (fixed below).
    {ZEL_METHOD, W(L"错哈希"), W(L""), W(L""), 0, W(L""), 0, W(L"_i"), 0, 0, nullptr, reinterpret_cast<void*>(Get), {0, 0}},
};
}  // namespace

extern "C" {
ZEL_API tagTBaseTypeInfo g_info_Broken = [] {
    tagTBaseTypeInfo r{};
    r.flags = ZEL_CLASS_FLAGS;
    r.name = W(L"坏.类");
    r.description = W(L"");
    r.text = W(L"");
    r.kind = ZEL_KIND_CLASS;
    r.version = 1.0;
    r.baseName = W(L"系统.对象");
    r.methodCount = 3;
    r.methods = kMethods;
    r.elementCount = -1;  // negative count
    return r;
}();
ZEL_API int Broken_Init(ZelObject*) { return 0; }
}

namespace {
tagTBaseTypeInfo* kRecords[] = {&g_info_Broken};
int Enum(ZelLibInfo*, tagTBaseTypeInfo** out, int capacity) {
    if (!out) return 1;
    if (capacity < 1) return 0;
    out[0] = kRecords[0];
    return 1;
}
tagTBaseTypeInfo* Find(ZelLibInfo*, wchar_t* name) {
    return name && Hash(name) == Hash(L"坏.类") ? kRecords[0] : nullptr;
}
ZelLibInfo g_lib = {0, W(L"坏"), W(L""), W(L""), 0, 1, 0, 7, 1.0, 1, {W(L""), W(L""), W(L"")},
                    Enum, Find, 0, {W(L""), W(L"")}, {0, 0, 0}};
struct Init {
    Init() {
        g_lib.nameHash = Hash(g_lib.name);
        g_info_Broken.nameHash = Hash(g_info_Broken.name) + 1;  // wrong class hash
        g_info_Broken.baseNameHash = Hash(g_info_Broken.baseName);
        for (auto& m : kMethods) {
            m.nameHash = Hash(m.name);
            m.returnTypeHash = Hash(m.returnType);
            for (int k = 0; k < m.paramCount; ++k) {
                m.params[k].nameHash = Hash(m.params[k].name);
                m.params[k].typeHash = Hash(m.params[k].type);
            }
        }
        kMethods[2].nameHash = 12345;
    }
} g_init;
}  // namespace

extern "C" ZEL_API ZelLibInfo* ZelGetLibInfo() { return &g_lib; }

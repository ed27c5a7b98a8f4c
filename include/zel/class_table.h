// Builders for the static descriptor tables of a class module, and the
// registration that every module ends with:
//
//   static tagParamItem kFindParams[] = {Param(L"欲查找文本", L"_s"), Param(L"起始查找位置", L"_i")};
//   static tagMethodItem kMethods[] = {
//       Getter(L"文本", L"_s", String_GetText),
//       Method(L"查找", L"_i", kFindParams, String_Find),
//   };
//   static tagElementItem kElements[] = {HiddenState()};
//   ZEL_RECORD(tagTBaseTypeInfo, g_info_String) = ClassRecord(L"工具.文本类", L"文本类", kMethods, kElements);
//   ZEL_REGISTER_CLASS(g_info_String);
//
// Hashes are left 0 by the builders and filled in by the registration.
#pragma once

#include <cstddef>

#include <zel/zel_types.h>

namespace zel {

inline wchar_t* W(const wchar_t* s) { return const_cast<wchar_t*>(s); }

template <typename Fn>
inline void* Fn2Ptr(Fn fn) { return reinterpret_cast<void*>(fn); }
inline void* Fn2Ptr(std::nullptr_t) { return nullptr; }

inline tagParamItem Param(const wchar_t* name, const wchar_t* type, const wchar_t* description = L"") {
    return tagParamItem{0, W(name), W(description), W(L""), 0, W(type), 0, {0, 0}};
}

inline tagMethodItem MakeMethod(unsigned flags, const wchar_t* name, const wchar_t* returnType,
                                tagParamItem* params, int paramCount, void* function,
                                const wchar_t* description) {
    return tagMethodItem{flags, W(name), W(description), W(L""), 0, W(L""), 0, W(returnType), 0,
                         paramCount, paramCount > 0 ? params : nullptr, function, {0, 0}};
}

// A plain method without parameters; "" as return type means none.
template <typename Fn>
tagMethodItem Method(const wchar_t* name, const wchar_t* returnType, Fn fn, const wchar_t* description = L"") {
    return MakeMethod(ZEL_METHOD, name, returnType, nullptr, 0, Fn2Ptr(fn), description);
}
template <std::size_t N, typename Fn>
tagMethodItem Method(const wchar_t* name, const wchar_t* returnType, tagParamItem (&params)[N], Fn fn,
                     const wchar_t* description = L"") {
    return MakeMethod(ZEL_METHOD, name, returnType, params, int(N), Fn2Ptr(fn), description);
}

// Static methods (no object argument).
template <typename Fn>
tagMethodItem Static(const wchar_t* name, const wchar_t* returnType, Fn fn, const wchar_t* description = L"") {
    return MakeMethod(ZEL_STATIC, name, returnType, nullptr, 0, Fn2Ptr(fn), description);
}
template <std::size_t N, typename Fn>
tagMethodItem Static(const wchar_t* name, const wchar_t* returnType, tagParamItem (&params)[N], Fn fn,
                     const wchar_t* description = L"") {
    return MakeMethod(ZEL_STATIC, name, returnType, params, int(N), Fn2Ptr(fn), description);
}

// A constructor (flag bit 3), e.g. the colour's 初始化.
template <std::size_t N, typename Fn>
tagMethodItem Constructor(const wchar_t* name, tagParamItem (&params)[N], Fn fn, const wchar_t* description = L"") {
    return MakeMethod(ZEL_CONSTRUCTOR, name, L"", params, int(N), Fn2Ptr(fn), description);
}

// Property accessors: a getter (no parameter, a type) and a setter (one
// parameter, no type) that share one name.
template <typename Fn>
tagMethodItem Getter(const wchar_t* name, const wchar_t* type, Fn fn, const wchar_t* description = L"") {
    return MakeMethod(ZEL_PROPERTY, name, type, nullptr, 0, Fn2Ptr(fn), description);
}
template <typename Fn>
tagMethodItem Setter(const wchar_t* name, tagParamItem (&param)[1], Fn fn, const wchar_t* description = L"") {
    return MakeMethod(ZEL_PROPERTY, name, L"", param, 1, Fn2Ptr(fn), description);
}

inline tagElementItem Element(const wchar_t* name, const wchar_t* type, unsigned flags = 0,
                              const wchar_t* description = L"") {
    return tagElementItem{flags, W(name), W(description), W(L""), 0, W(type), 0, {0, 0, 0, 0, 0}};
}
// The hidden word 0 that holds a class's native state.
inline tagElementItem HiddenState() { return Element(L"", L"_i", ZEL_ELEMENT_HIDDEN); }

template <std::size_t N>
tagInterfaceEntry Interface(const wchar_t* name, void* (&slots)[N]) {
    return tagInterfaceEntry{W(name), 0, int(N), slots};
}

// The stream parameters of 序列化 and 反序列化. One copy serves every class;
// each registration fills in the same hashes.
inline tagParamItem kSerializeParams[] = {Param(L"流对象", L"系统.输出流", L"本参数提供接收对象数据的流对象")};
inline tagParamItem kUnserializeParams[] = {Param(L"流对象", L"系统.输入流", L"本参数为提供对象数据的流对象")};

// The language's usual 序列化 and 反序列化 items.
template <typename Fn>
tagMethodItem SerializeMethod(Fn fn) {
    return Method(L"序列化", L"_b", kSerializeParams, fn, L"把对象内所有需要保存的数据序列化到一个流对象中");
}
template <typename Fn>
tagMethodItem UnserializeMethod(Fn fn) {
    return Method(L"反序列化", L"_b", kUnserializeParams, fn,
                  L"根据流对象中的序列化数据来重置当前对象。成功返回真，失败返回假");
}

tagTBaseTypeInfo MakeClassRecord(const wchar_t* name, const wchar_t* description, tagMethodItem* methods,
                                 int methodCount, tagElementItem* elements, int elementCount,
                                 const wchar_t* baseName, tagInterfaceEntry* interfaces, int interfaceCount,
                                 unsigned flags);

// A class record; arrays give their own counts. A class without elements or
// methods passes nullptr.
template <std::size_t M, std::size_t E>
tagTBaseTypeInfo ClassRecord(const wchar_t* name, const wchar_t* description, tagMethodItem (&methods)[M],
                             tagElementItem (&elements)[E], const wchar_t* baseName = L"系统.对象",
                             unsigned flags = ZEL_CLASS_FLAGS) {
    return MakeClassRecord(name, description, methods, int(M), elements, int(E), baseName, nullptr, 0, flags);
}
template <std::size_t M>
tagTBaseTypeInfo ClassRecord(const wchar_t* name, const wchar_t* description, tagMethodItem (&methods)[M],
                             std::nullptr_t, const wchar_t* baseName = L"系统.对象",
                             unsigned flags = ZEL_CLASS_FLAGS) {
    return MakeClassRecord(name, description, methods, int(M), nullptr, 0, baseName, nullptr, 0, flags);
}
template <std::size_t E>
tagTBaseTypeInfo ClassRecord(const wchar_t* name, const wchar_t* description, std::nullptr_t,
                             tagElementItem (&elements)[E], const wchar_t* baseName = L"系统.对象",
                             unsigned flags = ZEL_CLASS_FLAGS) {
    return MakeClassRecord(name, description, nullptr, 0, elements, int(E), baseName, nullptr, 0, flags);
}

// Adds the implemented interfaces to a record built by ClassRecord.
template <std::size_t I>
tagTBaseTypeInfo WithInterfaces(tagTBaseTypeInfo record, tagInterfaceEntry (&interfaces)[I]) {
    record.interfaceCount = int(I);
    record.interfaces = interfaces;
    return record;
}

// The 60-byte record of an interface that this library defines itself.
template <std::size_t M>
tagTInterfaceInfo InterfaceRecord(const wchar_t* name, tagMethodItem (&methods)[M]) {
    return tagTInterfaceInfo{ZEL_CLASS_FLAGS, W(name), W(L""), W(L""), 0, nullptr, ZEL_KIND_INTERFACE, 1.0,
                             -1, 0, W(L""), 0, int(M), methods};
}

// Fills every hash of a record and its items; returns the record.
tagTBaseTypeInfo* PrepareClassRecord(tagTBaseTypeInfo* record);
tagTInterfaceInfo* PrepareInterfaceRecord(tagTInterfaceInfo* record);

}  // namespace zel

#include <zel/registry.h>

#define ZEL_REGISTER_CLASS(record) \
    static CBaseTypeInfoRecorder record##_recorder(zel::PrepareClassRecord(&record))
// The interface record is registered beside the classes (its 60 bytes are a
// prefix-compatible view for name lookups).
#define ZEL_REGISTER_INTERFACE(record) \
    static CBaseTypeInfoRecorder record##_recorder( \
        reinterpret_cast<tagTBaseTypeInfo*>(zel::PrepareInterfaceRecord(&record)))

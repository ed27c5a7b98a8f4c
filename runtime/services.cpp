#include <zel/services.h>

#include <zel/memory.h>
#include <zel/values.h>

namespace zel {

void* ServiceFunction(tagTBaseTypeInfo* cls, int k) {
    if (!cls || k < 0 || k >= cls->methodCount || !cls->methods) return nullptr;
    return cls->methods[k].function;
}

template <typename Fn>
static Fn Runtime(int k) {
    return reinterpret_cast<Fn>(ServiceFunction(g_pRuntimeClassInfo, k));
}
template <typename Fn>
static Fn Memory(int k) {
    return reinterpret_cast<Fn>(ServiceFunction(g_pGCClassInfo, k));
}

void RuntimeLock() {
    if (auto fn = Runtime<void (*)()>(ZEL_RT_LOCK)) fn();
}

void RuntimeUnlock() {
    if (auto fn = Runtime<void (*)()>(ZEL_RT_UNLOCK)) fn();
}

void RegisterConstBlock(void* block) {
    if (auto fn = Runtime<void (*)(void*)>(ZEL_RT_REGISTER_CONST)) fn(block);
}

ZelObject* NewObject(const wchar_t* className) {
    auto fn = Runtime<ZelObject* (*)(wchar_t*, int)>(ZEL_RT_NEW_OBJECT);
    return fn ? fn(const_cast<wchar_t*>(className), 1) : nullptr;
}

void* TakeOverBlock(void* block) {
    auto fn = Memory<void* (*)(void*, int)>(ZEL_MM_TAKE_OVER);
    return fn ? fn(block, 0) : block;
}

unsigned char* NewText(const wchar_t* s) {
    if (auto fn = Memory<unsigned char* (*)(wchar_t*)>(ZEL_MM_NEW_TEXT)) return fn(const_cast<wchar_t*>(s));
    return MCloneZelText(const_cast<wchar_t*>(s));
}

unsigned char* NewBin(const void* data, int length) {
    if (auto fn = Memory<unsigned char* (*)(void*, int)>(ZEL_MM_NEW_BIN)) return fn(const_cast<void*>(data), length);
    return MCloneZelBin(const_cast<void*>(data), length);
}

void* AddRef(void* handle) {
    auto fn = Memory<void* (*)(void*)>(ZEL_MM_ADD_REF);
    return fn ? fn(handle) : handle;
}

void Release(void* handle) {
    if (auto fn = Memory<void (*)(void*)>(ZEL_MM_RELEASE)) fn(handle);
}

}  // namespace zel

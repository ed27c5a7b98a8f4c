#include "fake_runtime.h"

#include <cstring>

#include "runtime/loader.h"
#include "runtime/services.h"
#include "runtime/values.h"

FakeRuntime* FakeRuntime::current = nullptr;

namespace {
void Lock() { ++FakeRuntime::current->locks; }
void Unlock() {}
void RegisterConst(void* block) { FakeRuntime::current->registered.push_back(block); }
tagTBaseTypeInfo* memoryClass = nullptr;
tagTBaseTypeInfo* MemoryManager() { return memoryClass; }
int Report(int, wchar_t* library, int code, wchar_t* message) {
    FakeRuntime::current->lastReport = std::wstring(library) + L"|" + message;
    FakeRuntime::current->lastCode = code;
    return 7;
}
void* AddRef(void* h) {
    FakeRuntime::current->referenced.push_back(h);
    return h;
}
void Release(void* h) { FakeRuntime::current->released.push_back(h); }
}  // namespace

FakeRuntime::FakeRuntime() {
    std::memset(m_runtimeMethods, 0, sizeof m_runtimeMethods);
    std::memset(m_memoryMethods, 0, sizeof m_memoryMethods);
    m_runtimeMethods[0].function = reinterpret_cast<void*>(Lock);
    m_runtimeMethods[1].function = reinterpret_cast<void*>(Unlock);
    m_runtimeMethods[2].function = reinterpret_cast<void*>(RegisterConst);
    m_runtimeMethods[4].function = reinterpret_cast<void*>(MemoryManager);
    m_runtimeMethods[5].function = reinterpret_cast<void*>(Report);
    m_memoryMethods[4].function = reinterpret_cast<void*>(AddRef);
    m_memoryMethods[5].function = reinterpret_cast<void*>(Release);
    m_runtimeClass = tagTBaseTypeInfo{};
    m_runtimeClass.name = const_cast<wchar_t*>(L"系统.运行时");
    m_runtimeClass.methodCount = 17;
    m_runtimeClass.methods = m_runtimeMethods;
    m_memoryClass = tagTBaseTypeInfo{};
    m_memoryClass.methodCount = 6;
    m_memoryClass.methods = m_memoryMethods;
    m_chain[0] = 1;
    m_chain[1] = int(reinterpret_cast<intptr_t>(&m_runtimeClass));
    m_chain[2] = 0;
    m_object = ZelObject{&m_object, m_chain, nullptr};
    memoryClass = &m_memoryClass;
    current = this;
}

FakeRuntime::~FakeRuntime() {
    Detach();
    current = nullptr;
}

void FakeRuntime::Attach() {
    ZelNotifyLib(ZelGetLibInfo(), NOTIFY_LIB_RUNTIME, unsigned(reinterpret_cast<uintptr_t>(&m_object)), 0);
}

void FakeRuntime::Detach() {
    g_pRuntimeObject = nullptr;
    g_pRuntimeClassInfo = nullptr;
    g_pGCClassInfo = nullptr;
    g_EmptyConst.next = g_EmptyConst.next2 = nullptr;
}

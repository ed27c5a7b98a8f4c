// A stand-in runtime for unit tests. While it lives it is the library's
// runtime (handed over through ZelNotifyLib): it counts the references taken
// and dropped on each object, resolving a copy of an object's first words to
// the object through word 0 (as the host does; a TestObject's word 0 is its
// own address), makes texts and byte sets as plain blocks that it frees on
// release, and records locks, registered constant blocks and error reports.
#pragma once

#include <cstdint>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <zel/loader.h>
#include <zel/memory.h>
#include <zel/services.h>
#include <zel/values.h>

// The runtime is not the library: while one of its services runs, no
// allocation is failed on purpose.
class UncountedAllocations {
public:
    UncountedAllocations() { zel::FailAllocationAfter(0); }
    ~UncountedAllocations() { zel::FailAllocationAfter(m_saved); }
    UncountedAllocations(const UncountedAllocations&) = delete;
    UncountedAllocations& operator=(const UncountedAllocations&) = delete;

private:
    int m_saved = zel::AllocationCountdown();
};

class CountingRuntime {
public:
    CountingRuntime() {
        s_current = this;
        m_runtimeMethods[ZEL_RT_LOCK].function = reinterpret_cast<void*>(Lock);
        m_runtimeMethods[ZEL_RT_UNLOCK].function = reinterpret_cast<void*>(Unlock);
        m_runtimeMethods[ZEL_RT_REGISTER_CONST].function = reinterpret_cast<void*>(RegisterConst);
        m_runtimeMethods[ZEL_RT_REPORT_ERROR].function = reinterpret_cast<void*>(Report);
        m_runtimeMethods[ZEL_RT_MEMORY_MANAGER].function = reinterpret_cast<void*>(MemoryManager);
        m_memoryMethods[ZEL_MM_NEW_TEXT].function = reinterpret_cast<void*>(NewText);
        m_memoryMethods[ZEL_MM_NEW_BIN].function = reinterpret_cast<void*>(NewBin);
        m_memoryMethods[ZEL_MM_ADD_REF].function = reinterpret_cast<void*>(AddRef);
        m_memoryMethods[ZEL_MM_RELEASE].function = reinterpret_cast<void*>(Release);
        m_runtimeClass.methodCount = int(std::size(m_runtimeMethods));
        m_runtimeClass.methods = m_runtimeMethods;
        m_memoryClass.methodCount = int(std::size(m_memoryMethods));
        m_memoryClass.methods = m_memoryMethods;
        m_chain[0] = 1;
        m_chain[1] = int(reinterpret_cast<intptr_t>(&m_runtimeClass));
        m_runtimeClass.name = const_cast<wchar_t*>(L"系统.运行时");
        m_object.runtimeWord = &m_object;
        m_object.classChain = m_chain;
        ZelNotifyLib(&g_zellib_info, NOTIFY_LIB_RUNTIME, unsigned(reinterpret_cast<uintptr_t>(&m_object)), 0);
    }
    ~CountingRuntime() {
        for (void* value : m_values) zel_free(value);
        g_pRuntimeObject = nullptr;
        g_pRuntimeClassInfo = nullptr;
        g_pGCClassInfo = nullptr;
        g_EmptyConst.next = g_EmptyConst.next2 = nullptr;
        s_current = nullptr;
    }
    CountingRuntime(const CountingRuntime&) = delete;

    // References taken minus references dropped on the object.
    int Net(ZelObject* obj) const { return m_net.count(obj) ? m_net.at(obj) : 0; }
    // Texts and byte sets made and not yet released.
    int LiveValues() const { return int(m_values.size()); }
    ZelObject* object() { return &m_object; }

    int locks = 0;
    std::vector<void*> registered;
    std::wstring lastReport;  // "library|message"
    int lastCode = 0;

private:
    static void Lock() { ++s_current->locks; }
    static void Unlock() {}
    static void RegisterConst(void* block) {
        UncountedAllocations uncounted;
        s_current->registered.push_back(block);
    }
    static int Report(int, wchar_t* library, int code, wchar_t* message) {
        UncountedAllocations uncounted;
        s_current->lastReport = std::wstring(library) + L"|" + message;
        s_current->lastCode = code;
        return 7;
    }
    static tagTBaseTypeInfo* MemoryManager() { return &s_current->m_memoryClass; }
    static unsigned char* NewText(wchar_t* s) {
        UncountedAllocations uncounted;
        return s_current->Track(MCloneZelText(s));
    }
    static unsigned char* NewBin(void* data, int length) {
        UncountedAllocations uncounted;
        return s_current->Track(MCloneZelBin(data, length));
    }
    static void* AddRef(void* handle) {
        UncountedAllocations uncounted;
        if (!handle || IsConstData(handle) || s_current->m_values.count(handle)) return handle;
        ZelObject* obj = *static_cast<ZelObject**>(handle);
        ++s_current->m_net[obj];
        return obj;
    }
    static void Release(void* handle) {
        UncountedAllocations uncounted;
        if (!handle || IsConstData(handle)) return;
        if (s_current->m_values.erase(handle)) return zel_free(handle);
        --s_current->m_net[*static_cast<ZelObject**>(handle)];
    }
    unsigned char* Track(unsigned char* value) {
        if (!IsConstData(value)) m_values.insert(value);
        return value;
    }

    static inline CountingRuntime* s_current = nullptr;
    tagMethodItem m_runtimeMethods[17]{};
    tagMethodItem m_memoryMethods[6]{};
    tagTBaseTypeInfo m_runtimeClass{}, m_memoryClass{};
    int m_chain[3] = {};
    ZelObject m_object{};
    std::map<ZelObject*, int> m_net;
    std::set<void*> m_values;
};

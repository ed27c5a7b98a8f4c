// A minimal runtime object for tests of the hand-over and the services: its
// class's method items record what the library asks of them.
#pragma once

#include <string>
#include <vector>

#include "runtime/zel_types.h"

struct FakeRuntime {
    FakeRuntime();
    ~FakeRuntime();
    // Hands this runtime to the library (ZelNotifyLib with code 1).
    void Attach();
    // Takes the runtime away again, as before any hand-over.
    static void Detach();

    ZelObject* object() { return &m_object; }

    static FakeRuntime* current;
    std::vector<void*> registered;
    std::vector<void*> released;
    std::vector<void*> referenced;
    std::wstring lastReport;
    int lastCode = 0;
    int locks = 0;

private:
    tagMethodItem m_runtimeMethods[17];
    tagMethodItem m_memoryMethods[6];
    tagTBaseTypeInfo m_runtimeClass;
    tagTBaseTypeInfo m_memoryClass;
    int m_chain[3];
    ZelObject m_object;
};

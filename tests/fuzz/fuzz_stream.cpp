// Memory-stream reads and every class's Unserialize hook on arbitrary stream
// bytes: reads stay inside the data, the position only moves forward, and
// every value handed out is released again.
#include <cwchar>
#include <iterator>

#include <zel/memory.h>
#include <zel/registry.h>
#include <zel/services.h>
#include <zel/values.h>

#include "common/counting_runtime.h"
#include "common/test_object.h"
#include "io/MemoryStream.h"

#include "fuzz_input.h"

extern "C" {
using Hook = void (*)(ZelObject*);
using Unserialize = int (*)(ZelObject*, ZelObject*);
extern tagTBaseTypeInfo g_info_MemoryIStream, g_info_String, g_info_Point, g_info_Color, g_info_Font, g_info_List, g_info_Stack;
void MemoryIStream_Init(ZelObject*), MemoryIStream_Free(ZelObject*);
void Point_Init(ZelObject*), Point_Free(ZelObject*), Color_Init(ZelObject*), Color_Free(ZelObject*);
void Font_Init(ZelObject*), Font_Free(ZelObject*), List_Init(ZelObject*), List_Free(ZelObject*);
void Stack_Init(ZelObject*), Stack_Free(ZelObject*), String_Init(ZelObject*), String_Free(ZelObject*);
int String_Unserialize(ZelObject*, ZelObject*), Point_Unserialize(ZelObject*, ZelObject*), Color_LoadFromStream(ZelObject*, ZelObject*);
int Font_LoadFromStream(ZelObject*, ZelObject*), List_LoadFromStream(ZelObject*, ZelObject*);
int Stack_LoadFromStream(ZelObject*, ZelObject*);
CMemoryStream* _MemoryStream_GetData(ZelObject*);
}

namespace {

struct Reader {
    tagTBaseTypeInfo* record;
    Hook init, free;
    Unserialize unserialize;
};

// The exported <Record>_Unserialize hooks and the 反序列化 methods.
const Reader kReaders[] = {
    {&g_info_String, String_Init, String_Free, String_Unserialize},
    {&g_info_Point, Point_Init, Point_Free, Point_Unserialize},
    {&g_info_Color, Color_Init, Color_Free, Color_LoadFromStream},
    {&g_info_Font, Font_Init, Font_Free, Font_LoadFromStream},
    {&g_info_List, List_Init, List_Free, List_LoadFromStream},
    {&g_info_Stack, Stack_Init, Stack_Free, Stack_LoadFromStream},
};

// Every class with a 反序列化 method is in kReaders, so none escapes the fuzzer.
bool ReadsFromStreams(const tagTBaseTypeInfo* record) {
    if (record->kind != ZEL_KIND_CLASS) return false;  // interface records are shorter
    for (int m = 0; m < record->methodCount; ++m)
        if (record->methods[m].function && std::wcscmp(record->methods[m].name, L"反序列化") == 0) return true;
    return false;
}

bool ReadersComplete() {
    tagTBaseTypeInfo* records[256];
    int n = zel::EnumClassRecords(&g_zellib_info, records, int(std::size(records)));
    for (int i = 0; i < n; ++i) {
        if (!ReadsFromStreams(records[i])) continue;
        bool listed = false;
        for (const Reader& r : kReaders) listed |= r.record == records[i];
        if (!listed) {
            std::fprintf(stderr, "fuzz_stream: %ls is not fuzzed\n", records[i]->name);
            return false;
        }
    }
    return true;
}

void Reads(CMemoryStream& stream, FuzzInput& ops) {
    while (ops.Remaining()) {
        int before = stream.GetPosition();
        switch (ops.Pick(7)) {
            case 0: stream.ReadInt(); break;
            case 1: stream.ReadBool(); break;
            case 2: stream.ReadDouble(); break;
            case 3: zel::Release(stream.ReadText()); break;
            case 4: zel::Release(stream.ReadBin()); break;
            case 5: {
                int n = static_cast<int>(ops.Word());
                unsigned char* bin = stream.Read(n);
                if (n < 0) FUZZ_CHECK(!bin && stream.GetPosition() == before);
                zel_free(bin);  // a block of its own, not a runtime value
                break;
            }
            default: stream.IsDataValid(static_cast<int>(ops.Word())); break;
        }
        FUZZ_CHECK(stream.GetPosition() >= before);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool complete = ReadersComplete();
    FUZZ_CHECK(complete);
    CountingRuntime runtime;
    FuzzInput in(data, size);
    std::string ops = in.Bytes(in.Byte() % 32);
    std::string bytes = in.Rest();
    {
        CMemoryStream stream;
        stream.InitData(bytes.data(), int(bytes.size()));
        FuzzInput opsInput(reinterpret_cast<const uint8_t*>(ops.data()), ops.size());
        Reads(stream, opsInput);
    }
    for (const Reader& r : kReaders) {
        TestObject object(r.record, r.init, r.free);
        TestObject stream(&g_info_MemoryIStream, MemoryIStream_Init, MemoryIStream_Free);
        _MemoryStream_GetData(stream)->InitData(bytes.data(), int(bytes.size()));
        int ok = r.unserialize(object, stream);
        FUZZ_CHECK(ok == 0 || ok == 1);
    }
    FUZZ_CHECK(runtime.LiveValues() == 0);
    return 0;
}

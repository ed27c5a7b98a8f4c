// The script parser on arbitrary lines (UTF-8, as scripts are read): a
// statement or a syntax error (ScriptError), nothing else.
#include <string>

#include <zel/minimem.h>
#include <zel/textfuncs.h>

#include "host/script_internal.h"

// host/text.cpp (the parser's UTF-8 messages) also formats objects, which no
// parse reaches: this program has no objects.
namespace zelhost {
ClassInfo* ObjectClass(ZelObject*) { return nullptr; }
int ObjectId(ZelObject*) { return 0; }
}  // namespace zelhost

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string bytes(reinterpret_cast<const char*>(data), size);
    CMiniMem decoded;
    std::wstring line = UTF8_to_UCS(bytes.c_str(), decoded);
    try {
        zelhost::script::Parse(line);
    } catch (const zelhost::script::ScriptError&) {
    }
    return 0;
}

// File-type detection and whole-file reads on arbitrary contents: the type
// follows the signature, else whether the text up to its first zero byte is
// UTF-8 (iconv's opinion); a read gives the bytes behind the signature.
#include <string>

#include <zel/memory.h>
#include <zel/minimem.h>
#include <zel/services.h>
#include <zel/values.h>

#include "common/counting_runtime.h"
#include "common/test_object.h"
#include "fuzz_iconv.h"
#include "fuzz_input.h"
#include "fuzz_temp_file.h"

extern "C" {
extern tagTBaseTypeInfo g_info_BinaryFile;
void BinaryFile_Init(ZelObject*), BinaryFile_Free(ZelObject*);
unsigned char* BinaryFile_ReadFile(ZelObject*, unsigned char* name, int type);
int BinaryFile_GetFileType(ZelObject*, unsigned char* name);
}

namespace {

bool IconvTakesUtf8(const std::string& text) {
    std::string ignored;
    return Iconv("UTF-32LE", "UTF-8", text, ignored);
}

int ExpectedType(const std::string& bytes) {
    if (bytes.compare(0, 3, "\xEF\xBB\xBF") == 0) return 4;
    if (bytes.compare(0, 2, "\xFF\xFE") == 0) return 2;
    if (bytes.compare(0, 2, "\xFE\xFF") == 0) return 3;
    if (bytes.empty()) return 0;
    return IconvTakesUtf8(bytes.substr(0, bytes.find('\0'))) ? 5 : 1;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static FuzzTempFile file;
    CountingRuntime runtime;
    std::string bytes(reinterpret_cast<const char*>(data), size);
    file.Write(bytes);
    unsigned char* name = zel::NewText(file.Path());
    {
        TestObject binary(&g_info_BinaryFile, BinaryFile_Init, BinaryFile_Free);
        FUZZ_CHECK(BinaryFile_GetFileType(binary, name) == ExpectedType(bytes));
        for (int type = 0; type <= 6; ++type) {
            unsigned char* bin = BinaryFile_ReadFile(binary, name, type);
            size_t skip = type == 4 ? 3 : type == 2 || type == 3 ? 2 : 0;
            if (type < 1 || type > 5 || bytes.size() <= skip) {
                FUZZ_CHECK(MGetZelBinLength(bin) == 0);
            } else {
                FUZZ_CHECK(MGetZelBinLength(bin) == int(bytes.size() - skip));
                FUZZ_CHECK(bytes.compare(skip, std::string::npos,
                                         reinterpret_cast<const char*>(MGetZelBinData(bin)), MGetZelBinLength(bin)) == 0);
            }
            // The whole file is a block handed to the runtime to take over;
            // this runtime takes over none, so it stays a plain block.
            if (!IsConstData(bin)) zel_free(bin);
        }
    }
    zel::Release(name);

    int limit = size ? data[0] - 16 : 0;  // also negative and short
    CMiniMem whole;
    int got = whole.ReadFromFile(const_cast<wchar_t*>(file.Path()), limit);
    FUZZ_CHECK(got <= int(size) && (limit <= 0 || got <= limit));
    if (got > 0) FUZZ_CHECK(bytes.compare(0, got, reinterpret_cast<const char*>(whole.GetData()), got) == 0);
    FUZZ_CHECK(runtime.LiveValues() == 0);
    return 0;
}

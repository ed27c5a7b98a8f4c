// The text file in every encoding, on arbitrary contents: open (each default
// encoding, read and update modes), then reads, seeks, lengths and writes in
// any order. Nothing may read or write outside its buffers.
#include <string>

#include "io/File.h"

#include "fuzz_input.h"
#include "fuzz_temp_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static FuzzTempFile temp;
    FuzzInput in(data, size);
    int encoding = static_cast<int>(in.Pick(5));  // 4: none of the codes
    int mode = in.Pick(2) ? 4 : 1;
    std::string ops = in.Bytes(in.Pick(24));
    std::string contents = in.Rest();
    temp.Write(contents);

    CTextFile file;
    if (!file.Open(temp.Path(), mode, encoding)) return 0;
    // A signature decides a wide encoding; without one the default stays.
    if (contents.compare(0, 2, "\xFF\xFE") == 0) FUZZ_CHECK(file.GetEncoding() == 0);
    else if (contents.compare(0, 2, "\xFE\xFF") == 0) FUZZ_CHECK(file.GetEncoding() == 1);
    else FUZZ_CHECK(file.GetEncoding() == encoding);

    FuzzInput op(reinterpret_cast<const uint8_t*>(ops.data()), ops.size());
    while (op.Remaining()) {
        switch (op.Pick(8)) {
            case 0: {
                unsigned n = op.Byte() * 7u;  // characters in wide files, else bytes
                FUZZ_CHECK(file.Read(nullptr, n) <= int(n));
                break;
            }
            case 1: file.Seek(static_cast<int8_t>(op.Byte()), op.Pick(3)); break;
            case 2: file.GetPosition(); break;
            case 3: file.GetLength(); break;
            case 4: file.SetLength(op.Byte()); break;
            case 5: file.SeekToBegin(); break;
            case 6: {
                std::wstring text = op.Wide(op.Pick(16));
                file.Write(text.c_str(), unsigned(text.size()) * 4u);
                break;
            }
            default: file.IsEOF(); break;
        }
    }
    file.Close();
    return 0;
}

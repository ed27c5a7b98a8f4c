// 工具.二进制文件流: reads and writes whole files, with the text signature of
// a 工具.文件类型选项 type, and tells a file's type from its content.
#include <memory>
#include <new>

#include "io/BinaryFile.h"
#include "io/File.h"
#include <zel/class_table.h>
#include <zel/no_memory.h>
#include <zel/services.h>
#include <zel/values.h>

enum FileType { kNoSignatureUtf8 = 5, kUtf8 = 4, kBigEndian = 3, kLittleEndian = 2, kUnknown = 1 };

ZEL_EXPORT CFile* _GetBinaryFilePtr(ZelObject* obj) {
    return obj ? static_cast<CFile*>(GetDataItemData(obj, 1, 0)) : nullptr;
}

ZEL_EXPORT void BinaryFile_Init(ZelObject* obj) { SetDataItemData(obj, 1, 0, zel::NewOrNull<CFile>()); }

ZEL_EXPORT void BinaryFile_Free(ZelObject* obj) {
    if (CFile* file = _GetBinaryFilePtr(obj)) {
        delete file;
        SetDataItemData(obj, 1, 0, nullptr);
    }
}

static bool IsFileType(int type) { return type >= kUnknown && type <= kNoSignatureUtf8; }

static int SignatureSize(int type) {
    if (type == kUtf8) return 3;
    return type == kLittleEndian || type == kBigEndian ? 2 : 0;
}

// Every path closes the file it opened: nothing could use the stream again,
// and it would hold a descriptor until the object goes.
ZEL_EXPORT unsigned char* BinaryFile_ReadFile(ZelObject* obj, unsigned char* name, int type) {
    CFile* file = _GetBinaryFilePtr(obj);
    if (!IsFileType(type) || !file || !name || !file->Open(zel::TextChars(name), 1)) return zel::EmptyBin();
    file->Seek(0, SEEK_END);
    int size = file->GetPosition();
    unsigned char* result = zel::EmptyBin();
    std::unique_ptr<unsigned char[]> buffer(size > 0 ? new (std::nothrow) unsigned char[size + 1] : nullptr);
    if (buffer) {
        file->Seek(SignatureSize(type), SEEK_SET);
        int got = file->Read(buffer.get(), unsigned(size));
        if (got > 0) result = zel::NewBin(buffer.get(), got);
    }
    file->Close();
    return result;
}

// Answers the count of data bytes written; the signature is not counted.
ZEL_EXPORT int BinaryFile_WriteFile(ZelObject* obj, unsigned char* data, unsigned char* name, int type) {
    CFile* file = _GetBinaryFilePtr(obj);
    if (!file || !data || !name || !IsFileType(type)) return 0;
    if (!file->Open(zel::TextChars(name), 2)) return 0;
    int written = 0;
    int length = MGetZelBinLength(data);
    if (length > 0) {
        static const unsigned char kSignatures[][3] = {{}, {}, {0xFF, 0xFE}, {0xFE, 0xFF}, {0xEF, 0xBB, 0xBF}};
        for (int i = 0; i < SignatureSize(type); ++i) file->Fputc(kSignatures[type][i]);
        written = file->Write(MGetZelBinData(data), unsigned(length));
    }
    file->Close();
    return written;
}

// Legal UTF-8 by the Unicode reference rules: the trailing count comes from
// the lead byte, every sequence fits in [s, end), trailing bytes are 80..BF
// and the second byte is narrowed after E0, ED, F0 and F4.
bool IsLegalUtf8(const unsigned char* s, const unsigned char* end) {
    while (s < end) {
        unsigned char lead = *s;
        int trailing = lead < 0xC0 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : lead < 0xF8 ? 3 : lead < 0xFC ? 4 : 5;
        if (trailing > 3 || end - s <= trailing) return false;
        if ((lead >= 0x80 && lead < 0xC2) || lead > 0xF4) return false;
        for (int i = 1; i <= trailing; ++i)
            if (s[i] < 0x80 || s[i] > 0xBF) return false;
        if (trailing > 0) {
            unsigned char second = s[1];
            if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
                (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F))
                return false;
        }
        s += trailing + 1;
    }
    return true;
}

static int SignatureType(CFile* file) {
    unsigned char head[3] = {0, 0, 0};
    if (file->Read(head, 3) == 3 && head[0] == 0xEF && head[1] == 0xBB && head[2] == 0xBF) return kUtf8;
    file->Seek(0, SEEK_SET);
    if (file->Read(head, 2) == 2) {
        if (head[0] == 0xFF && head[1] == 0xFE) return kLittleEndian;
        if (head[0] == 0xFE && head[1] == 0xFF) return kBigEndian;
    }
    return 0;
}

// Content legal as UTF-8 up to its first zero byte (an empty text included)
// is 无文件头UTF8, anything else 未知; an empty file is 0.
static int ContentType(CFile* file) {
    file->Seek(0, SEEK_END);
    int size = file->GetPosition();
    std::unique_ptr<unsigned char[]> content(size > 0 ? new (std::nothrow) unsigned char[size + 1] : nullptr);
    if (!content) return 0;
    file->Seek(0, SEEK_SET);
    int got = file->Read(content.get(), unsigned(size));
    content[got] = 0;
    const unsigned char* end = content.get();
    while (*end) ++end;
    return IsLegalUtf8(content.get(), end) ? kNoSignatureUtf8 : kUnknown;
}

ZEL_EXPORT int BinaryFile_GetFileType(ZelObject* obj, unsigned char* name) {
    CFile* file = _GetBinaryFilePtr(obj);
    if (!file || !name || !file->Open(zel::TextChars(name), 1)) return 0;
    int type = SignatureType(file);
    if (type == 0) type = ContentType(file);
    file->Close();
    return type;
}

using namespace zel;

static tagParamItem kReadFile[] = {Param(L"文件名", L"_s"), Param(L"文件类型", L"_i")};
static tagParamItem kWriteFile[] = {Param(L"欲写入的数据", L"_bn"), Param(L"文件名", L"_s"), Param(L"文件类型", L"_i")};
static tagParamItem kGetFileType[] = {Param(L"文件名", L"_s")};

static tagMethodItem kMethods[] = {
    Method(L"读入文件", L"_bn", kReadFile, BinaryFile_ReadFile),
    Method(L"写到文件", L"_i", kWriteFile, BinaryFile_WriteFile),
    Method(L"取文件类型", L"_i", kGetFileType, BinaryFile_GetFileType),
};
static tagElementItem kElements[] = {HiddenState()};

ZEL_RECORD(tagTBaseTypeInfo, g_info_BinaryFile) = ClassRecord(L"工具.二进制文件流", L"", kMethods, kElements);
ZEL_REGISTER_CLASS(g_info_BinaryFile);

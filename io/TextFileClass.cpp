// 工具.文本文件: a text file over a CTextFile, derived from 工具.文件. Its state
// sits at level 3. Positions and seeks follow the file's encoding.
#include <cstdint>
#include <cstring>

#include "io/File.h"
#include "io/FileInterface.h"
#include <zel/class_table.h>
#include <zel/no_memory.h>
#include <zel/services.h>
#include <zel/values.h>

static const int kLevel = 3;

ZEL_EXPORT CTextFile* _TextFile_GetData(ZelObject* obj) {
    return obj ? static_cast<CTextFile*>(GetDataItemData(obj, kLevel, 0)) : nullptr;
}

ZEL_EXPORT void TextFile_Init(ZelObject* obj) { SetDataItemData(obj, kLevel, 0, zel::NewOrNull<CTextFile>()); }

ZEL_EXPORT void TextFile_Free(ZelObject* obj) {
    if (CTextFile* file = _TextFile_GetData(obj)) {
        delete file;
        SetDataItemData(obj, kLevel, 0, nullptr);
    }
}

// Reading only reports whether anything was there: the result is an empty
// text when it was, null when not.
ZEL_EXPORT unsigned char* TextFile_Read(ZelObject* obj, int length, int* success) {
    CTextFile* file = _TextFile_GetData(obj);
    if (success) *success = 1;
    if (!file || length <= 0) return zel::EmptyBin();
    int got = file->Read(nullptr, unsigned(length));
    if (success) *success = file->GetLastError() == 0 ? 1 : 0;
    return got > 0 ? zel::NewText(L"") : nullptr;
}

// The count is the number of non-zero 32-bit units from word 1 of the block
// on, counted no further than the block's end.
ZEL_EXPORT int TextFile_Write(ZelObject* obj, unsigned char* bin) {
    CTextFile* file = _TextFile_GetData(obj);
    if (!file || !bin) return 0;
    int units = (12 + MGetZelBinLength(bin)) / 4;
    int count = 0;
    for (int i = 1; i < units; ++i, ++count) {
        int unit;
        std::memcpy(&unit, bin + i * 4, 4);
        if (unit == 0) break;
    }
    return file->Write(bin, unsigned(count));
}

// Unlike 工具.文件 these seeks never had a guard; a missing file gives -1 all
// the same.
ZEL_EXPORT int TextFile_Seek(ZelObject* obj, unsigned char* origin, int offset) {
    CTextFile* file = _TextFile_GetData(obj);
    return file ? file->Seek(offset, int(reinterpret_cast<intptr_t>(origin))) : -1;
}

ZEL_EXPORT int TextFile_SeekCurrent(ZelObject* obj, int offset) {
    CTextFile* file = _TextFile_GetData(obj);
    return file ? file->Seek(offset, SEEK_CUR) : -1;
}

ZEL_EXPORT int TextFile_SeekFromBegin(ZelObject* obj, int offset) {
    CTextFile* file = _TextFile_GetData(obj);
    return file ? file->Seek(offset, SEEK_SET) : -1;
}

ZEL_EXPORT int TextFile_SeekFromEnd(ZelObject* obj, int offset) {
    CTextFile* file = _TextFile_GetData(obj);
    return file ? file->Seek(offset, SEEK_END) : -1;
}

ZEL_EXPORT void TextFile_SeekToBegin(ZelObject* obj) {
    if (CTextFile* file = _TextFile_GetData(obj)) file->SeekToBegin();
}

ZEL_EXPORT int TextFile_SeekToEnd(ZelObject* obj) {
    CTextFile* file = _TextFile_GetData(obj);
    return file ? file->SeekToEnd() : -1;
}

ZEL_EXPORT int TextFile_GetLength(ZelObject* obj) {
    CTextFile* file = _TextFile_GetData(obj);
    return file ? file->GetLength() : -1;
}

ZEL_EXPORT int TextFile_GetPosition(ZelObject* obj) {
    CTextFile* file = _TextFile_GetData(obj);
    return file ? file->GetPosition() : -1;
}

// The encoding given is the default for files without a wide signature.
ZEL_EXPORT int TextFile_Open(ZelObject* obj, unsigned char* path, int mode, int encoding) {
    CTextFile* file = _TextFile_GetData(obj);
    return file && path ? file->Open(zel::TextChars(path), mode, encoding) : 0;
}

using namespace zel;

static tagParamItem kOpen[] = {Param(L"文件位置", L"_s"), Param(L"打开方式", L"_i"), Param(L"编码", L"_i")};

static tagMethodItem kMethods[] = {
    FileMember(kFileRead, Fn2Ptr(TextFile_Read)),
    FileMember(kFileWrite, Fn2Ptr(TextFile_Write)),
    FileMember(kFileSeek, Fn2Ptr(TextFile_Seek)),
    FileMember(kFileSeekCurrent, Fn2Ptr(TextFile_SeekCurrent)),
    FileMember(kFileSeekFromBegin, Fn2Ptr(TextFile_SeekFromBegin)),
    FileMember(kFileSeekFromEnd, Fn2Ptr(TextFile_SeekFromEnd)),
    FileMember(kFileSeekToBegin, Fn2Ptr(TextFile_SeekToBegin)),
    FileMember(kFileSeekToEnd, Fn2Ptr(TextFile_SeekToEnd)),
    FileMember(kFileGetLength, Fn2Ptr(TextFile_GetLength)),
    FileMember(kFileGetPosition, Fn2Ptr(TextFile_GetPosition)),
    Method(L"打开", L"_b", kOpen, TextFile_Open, L"打开指定的文件"),
};
static tagElementItem kElements[] = {HiddenState()};

ZEL_RECORD(tagTBaseTypeInfo, g_info_TextFile) =
    ClassRecord(L"工具.文本文件", L"文本文件", kMethods, kElements, L"工具.文件");
ZEL_REGISTER_CLASS(g_info_TextFile);

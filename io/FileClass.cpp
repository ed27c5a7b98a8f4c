// 工具.文件: a byte file over a CFile, implementing 工具.文件接口. Its state
// sits at level 2, above the interface's level.
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "io/File.h"
#include "io/FileInterface.h"
#include <zel/class_table.h>
#include <zel/no_memory.h>
#include <zel/services.h>
#include <zel/values.h>

static const int kLevel = 2;

ZEL_EXPORT CFile* _GetFilePtr(ZelObject* obj) {
    return obj ? static_cast<CFile*>(GetDataItemData(obj, kLevel, 0)) : nullptr;
}

ZEL_EXPORT void File_Init(ZelObject* obj) { SetDataItemData(obj, kLevel, 0, zel::NewOrNull<CFile>()); }

ZEL_EXPORT void File_Free(ZelObject* obj) {
    if (CFile* file = _GetFilePtr(obj)) {
        delete file;
        SetDataItemData(obj, kLevel, 0, nullptr);
    }
}

// The result has the full requested length even after a short read; the
// unread tail is zero.
ZEL_EXPORT unsigned char* File_Read(ZelObject* obj, int length, int* success) {
    CFile* file = _GetFilePtr(obj);
    if (success) *success = 1;
    if (!file || length <= 0) return zel::EmptyBin();
    std::unique_ptr<unsigned char[]> buffer(new (std::nothrow) unsigned char[length]());
    if (!buffer) {
        if (success) *success = 0;
        return nullptr;
    }
    int got = file->Read(buffer.get(), unsigned(length));
    if (success) *success = file->GetLastError() == 0 ? 1 : 0;
    return got > 0 ? zel::NewBin(buffer.get(), length) : nullptr;
}

// Reads the byte set through its two-word view: the count is word 1 and the
// bytes start at byte 8. The count never reaches past the block.
ZEL_EXPORT int File_Write(ZelObject* obj, unsigned char* bin) {
    CFile* file = _GetFilePtr(obj);
    if (!file || !bin) return 0;
    int count;
    std::memcpy(&count, bin + 4, 4);
    if (count <= 0) return 0;
    int room = 4 + MGetZelBinLength(bin);
    return file->Write(bin + 8, unsigned(count < room ? count : room));
}

// The seeks answer the native Seek's status, not the new position.
ZEL_EXPORT int File_Seek(ZelObject* obj, unsigned char* origin, int offset) {
    CFile* file = _GetFilePtr(obj);
    return file ? file->Seek(offset, int(reinterpret_cast<intptr_t>(origin))) : -1;
}

ZEL_EXPORT int File_SeekCurrent(ZelObject* obj, int offset) {
    CFile* file = _GetFilePtr(obj);
    return file ? file->Seek(offset, SEEK_CUR) : -1;
}

ZEL_EXPORT int File_SeekFromBegin(ZelObject* obj, int offset) {
    CFile* file = _GetFilePtr(obj);
    return file ? file->Seek(offset, SEEK_SET) : -1;
}

ZEL_EXPORT int File_SeekFromEnd(ZelObject* obj, int offset) {
    CFile* file = _GetFilePtr(obj);
    return file ? file->Seek(offset, SEEK_END) : -1;
}

ZEL_EXPORT void File_SeekToBegin(ZelObject* obj) {
    if (CFile* file = _GetFilePtr(obj)) file->SeekToBegin();
}

ZEL_EXPORT int File_SeekToEnd(ZelObject* obj) {
    CFile* file = _GetFilePtr(obj);
    return file ? file->SeekToEnd() : -1;
}

ZEL_EXPORT int File_GetLength(ZelObject* obj) {
    CFile* file = _GetFilePtr(obj);
    return file ? file->GetLength() : -1;
}

ZEL_EXPORT int File_GetPosition(ZelObject* obj) {
    CFile* file = _GetFilePtr(obj);
    return file ? file->GetPosition() : -1;
}

ZEL_EXPORT int File_Open(ZelObject* obj, unsigned char* path, int mode) {
    CFile* file = _GetFilePtr(obj);
    return file && path ? file->Open(zel::TextChars(path), mode) : 0;
}

ZEL_EXPORT void File_Close(ZelObject* obj) {
    if (CFile* file = _GetFilePtr(obj)) file->Close();
}

ZEL_EXPORT void File_Flush(ZelObject* obj) {
    if (CFile* file = _GetFilePtr(obj)) file->Flush();
}

ZEL_EXPORT int File_IsEOF(ZelObject* obj) {
    CFile* file = _GetFilePtr(obj);
    return file ? file->IsEOF() : 0;
}

using namespace zel;

static void* kFileSlots[] = {
    Fn2Ptr(File_Read),          Fn2Ptr(File_Write),       Fn2Ptr(File_Seek),
    Fn2Ptr(File_SeekCurrent),   Fn2Ptr(File_SeekFromBegin), Fn2Ptr(File_SeekFromEnd),
    Fn2Ptr(File_SeekToBegin),   Fn2Ptr(File_SeekToEnd),   Fn2Ptr(File_GetLength),
    Fn2Ptr(File_GetPosition),
};
static_assert(sizeof kFileSlots / sizeof kFileSlots[0] == kFileMemberCount);

static tagParamItem kOpen[] = {Param(L"欲打开的文件名", L"_s"), Param(L"打开模式", L"_i")};

static tagMethodItem kMethods[] = {
    FileMember(kFileRead, Fn2Ptr(File_Read)),
    FileMember(kFileWrite, Fn2Ptr(File_Write)),
    FileMember(kFileSeek, Fn2Ptr(File_Seek)),
    FileMember(kFileSeekCurrent, Fn2Ptr(File_SeekCurrent)),
    FileMember(kFileSeekFromBegin, Fn2Ptr(File_SeekFromBegin)),
    FileMember(kFileSeekFromEnd, Fn2Ptr(File_SeekFromEnd)),
    FileMember(kFileSeekToBegin, Fn2Ptr(File_SeekToBegin)),
    FileMember(kFileSeekToEnd, Fn2Ptr(File_SeekToEnd)),
    FileMember(kFileGetLength, Fn2Ptr(File_GetLength)),
    FileMember(kFileGetPosition, Fn2Ptr(File_GetPosition)),
    Method(L"打开", L"_b", kOpen, File_Open, L"打开指定的文件"),
    Method(L"关闭", L"", File_Close, L"关闭指定的文件"),
    Method(L"刷新", L"", File_Flush, L"刷新指定的文件"),
    Method(L"是否在文件尾", L"_b", File_IsEOF),
};
static tagElementItem kElements[] = {HiddenState()};
static tagInterfaceEntry kInterfaces[] = {Interface(L"工具.文件接口", kFileSlots)};

ZEL_RECORD(tagTBaseTypeInfo, g_info_File) =
    WithInterfaces(ClassRecord(L"工具.文件", L"文件基类", kMethods, kElements), kInterfaces);
ZEL_REGISTER_CLASS(g_info_File);

// 工具.内存文件: the members of 工具.文件接口 over a growable byte set in
// memory with one read-write position. Reads stop at the end, writes past
// the end grow the data, seeks clip to [0, length] and answer the new
// position.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <new>

#include "io/FileInterface.h"
#include <zel/class_table.h>
#include <zel/no_memory.h>
#include <zel/services.h>
#include <zel/values.h>
#include <zel/minimem.h>

struct MemoryFile {
    CMiniMem bytes;
    int position = 0;
};

ZEL_EXPORT MemoryFile* _MemoryFile_GetData(ZelObject* obj) {
    return obj ? static_cast<MemoryFile*>(GetDataItemData(obj, 1, 0)) : nullptr;
}

ZEL_EXPORT void MemoryFile_Init(ZelObject* obj) { SetDataItemData(obj, 1, 0, zel::NewOrNull<MemoryFile>()); }

ZEL_EXPORT void MemoryFile_Free(ZelObject* obj) {
    delete _MemoryFile_GetData(obj);
    SetDataItemData(obj, 1, 0, nullptr);
}

// The clone's state: the same bytes and position (null when out of memory).
ZEL_EXPORT void* MemoryFile_Clone(ZelObject* obj) {
    MemoryFile* file = _MemoryFile_GetData(obj);
    MemoryFile* copy = new (std::nothrow) MemoryFile;
    if (!file || !copy) return copy;
    if (!copy->bytes.Append(file->bytes.GetData(), file->bytes.GetSize())) {
        delete copy;
        return nullptr;
    }
    copy->position = file->position;
    return copy;
}

static int MoveTo(MemoryFile* file, int64_t position) {
    file->position = int(std::clamp<int64_t>(position, 0, file->bytes.GetSize()));
    return file->position;
}

static int SeekFrom(ZelObject* obj, int origin, int offset) {
    MemoryFile* file = _MemoryFile_GetData(obj);
    if (!file) return -1;
    switch (origin) {
    case SEEK_SET: return MoveTo(file, offset);
    case SEEK_CUR: return MoveTo(file, int64_t(file->position) + offset);
    case SEEK_END: return MoveTo(file, int64_t(file->bytes.GetSize()) + offset);
    default: return -1;
    }
}

// Up to the requested count from the position; at the end, the empty byte
// set. Nothing can fail, so the success flag stays 1.
ZEL_EXPORT unsigned char* MemoryFile_Read(ZelObject* obj, int length, int* success) {
    MemoryFile* file = _MemoryFile_GetData(obj);
    if (success) *success = 1;
    if (!file || length <= 0) return zel::EmptyBin();
    int count = std::min(length, file->bytes.GetSize() - file->position);
    if (count <= 0) return zel::EmptyBin();
    unsigned char* bin = zel::NewBin(file->bytes.GetData() + file->position, count);
    file->position += count;
    return bin;
}

// Overwrites from the position and grows past the end; answers the count
// written (0 when memory runs out, nothing changed).
ZEL_EXPORT int MemoryFile_Write(ZelObject* obj, unsigned char* bin) {
    MemoryFile* file = _MemoryFile_GetData(obj);
    int length = MGetZelBinLength(bin);
    if (!file || length <= 0) return 0;
    int overwritten = std::min(length, file->bytes.GetSize() - file->position);
    if (!file->bytes.Replace(file->position, overwritten, MGetZelBinData(bin), length)) return 0;
    file->position += length;
    return length;
}

ZEL_EXPORT int MemoryFile_Seek(ZelObject* obj, unsigned char* origin, int offset) {
    return SeekFrom(obj, int(reinterpret_cast<intptr_t>(origin)), offset);
}
ZEL_EXPORT int MemoryFile_SeekCurrent(ZelObject* obj, int offset) { return SeekFrom(obj, SEEK_CUR, offset); }
ZEL_EXPORT int MemoryFile_SeekFromBegin(ZelObject* obj, int offset) { return SeekFrom(obj, SEEK_SET, offset); }
ZEL_EXPORT int MemoryFile_SeekFromEnd(ZelObject* obj, int offset) { return SeekFrom(obj, SEEK_END, offset); }
ZEL_EXPORT void MemoryFile_SeekToBegin(ZelObject* obj) { SeekFrom(obj, SEEK_SET, 0); }
ZEL_EXPORT int MemoryFile_SeekToEnd(ZelObject* obj) { return SeekFrom(obj, SEEK_END, 0); }

// The length leaves the position where it is.
ZEL_EXPORT int MemoryFile_GetLength(ZelObject* obj) {
    MemoryFile* file = _MemoryFile_GetData(obj);
    return file ? file->bytes.GetSize() : -1;
}

ZEL_EXPORT int MemoryFile_GetPosition(ZelObject* obj) {
    MemoryFile* file = _MemoryFile_GetData(obj);
    return file ? file->position : -1;
}

ZEL_EXPORT unsigned char* MemoryFile_GetBytes(ZelObject* obj) {
    MemoryFile* file = _MemoryFile_GetData(obj);
    if (!file || file->bytes.GetSize() == 0) return zel::EmptyBin();
    return zel::NewBin(file->bytes.GetData(), file->bytes.GetSize());
}

using namespace zel;

static tagMethodItem kMethods[] = {
    FileMember(kFileRead, Fn2Ptr(MemoryFile_Read)),
    FileMember(kFileWrite, Fn2Ptr(MemoryFile_Write)),
    FileMember(kFileSeek, Fn2Ptr(MemoryFile_Seek)),
    FileMember(kFileSeekCurrent, Fn2Ptr(MemoryFile_SeekCurrent)),
    FileMember(kFileSeekFromBegin, Fn2Ptr(MemoryFile_SeekFromBegin)),
    FileMember(kFileSeekFromEnd, Fn2Ptr(MemoryFile_SeekFromEnd)),
    FileMember(kFileSeekToBegin, Fn2Ptr(MemoryFile_SeekToBegin)),
    FileMember(kFileSeekToEnd, Fn2Ptr(MemoryFile_SeekToEnd)),
    FileMember(kFileGetLength, Fn2Ptr(MemoryFile_GetLength)),
    FileMember(kFileGetPosition, Fn2Ptr(MemoryFile_GetPosition)),
    Method(L"取数据", L"_bn", MemoryFile_GetBytes, L"取得内存文件中的当前全部数据"),
};
static tagElementItem kElements[] = {HiddenState()};

ZEL_RECORD(tagTBaseTypeInfo, g_info_MemoryFile) =
    ClassRecord(L"工具.内存文件", L"本类描述一个内存文件对象", kMethods, kElements);
ZEL_REGISTER_CLASS(g_info_MemoryFile);

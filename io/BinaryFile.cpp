// 工具.二进制文件流: reads and writes whole files, with the text signature of
// a 工具.文件类型选项 type, and tells a file's type from its content.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>

#include "io/BinaryFile.h"
#include "io/File.h"
#include <zel/class_table.h>
#include <zel/memory.h>
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

// Files are read with 64-bit offsets, so a file past 2 GiB opens and
// streams like any other.
namespace {
class Descriptor {
public:
    explicit Descriptor(unsigned char* name) {
        CMiniMem narrow;
        const char* path = name ? GetMBSText(zel::TextChars(name), narrow) : nullptr;
        m_fd = path && *path ? open(path, O_RDONLY | O_LARGEFILE | O_CLOEXEC) : -1;
    }
    ~Descriptor() {
        if (m_fd >= 0) close(m_fd);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int Get() const { return m_fd; }

private:
    int m_fd;
};

// Reads until n bytes are in or the file ends; -1 on an error.
long ReadFully(int fd, unsigned char* buffer, size_t n) {
    size_t got = 0;
    while (got < n) {
        ssize_t r = read(fd, buffer + got, n - got);
        if (r < 0 && errno == EINTR) continue;
        if (r < 0) return -1;
        if (r == 0) break;
        got += size_t(r);
    }
    return long(got);
}
}  // namespace

// The byte set is built in the block that the file is read into, and handed
// to the runtime as it is. A file too large for a byte set gives the empty one.
ZEL_EXPORT unsigned char* BinaryFile_ReadFile(ZelObject* obj, unsigned char* name, int type) {
    if (!IsFileType(type) || !_GetBinaryFilePtr(obj)) return zel::EmptyBin();
    Descriptor file(name);
    struct stat64 info;
    if (file.Get() < 0 || fstat64(file.Get(), &info) != 0) return zel::EmptyBin();
    long long size = (long long)info.st_size - SignatureSize(type);
    if (size <= 0 || size > INT_MAX - 12) return zel::EmptyBin();
    if (lseek64(file.Get(), SignatureSize(type), SEEK_SET) < 0) return zel::EmptyBin();
    ZelMallocer block(int(size) + 12);
    auto* bin = static_cast<unsigned char*>(block.GetData());
    if (!bin) return zel::EmptyBin();
    long got = ReadFully(file.Get(), bin + 12, size_t(size));
    if (got <= 0) return zel::EmptyBin();
    int* words = reinterpret_cast<int*>(bin);
    words[0] = 0;
    words[1] = 1;
    words[2] = int(got);
    return static_cast<unsigned char*>(zel::TakeOverBlock(block.Detach()));
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

namespace {
int g_chunkBytes = 0;

int SignatureType(const unsigned char* head, long n) {
    if (n >= 3 && head[0] == 0xEF && head[1] == 0xBB && head[2] == 0xBF) return kUtf8;
    if (n >= 2 && head[0] == 0xFF && head[1] == 0xFE) return kLittleEndian;
    if (n >= 2 && head[0] == 0xFE && head[1] == 0xFF) return kBigEndian;
    return 0;
}
}  // namespace

void zel::SetFileTypeChunkSize(int bytes) { g_chunkBytes = bytes > 0 ? bytes : 0; }

// A signature decides; otherwise content legal as UTF-8 up to its first zero
// byte (an empty text included) is 无文件头UTF8, anything else 未知. An
// empty or unreadable file is 0. The file is read in fixed pieces, so its
// size does not matter.
ZEL_EXPORT int BinaryFile_GetFileType(ZelObject* obj, unsigned char* name) {
    if (!_GetBinaryFilePtr(obj)) return 0;
    Descriptor file(name);
    if (file.Get() < 0) return 0;
    int chunk = g_chunkBytes > 0 ? std::max(g_chunkBytes, 3) : 128 * 1024;
    ZelMallocer buffer(chunk);
    auto* piece = static_cast<unsigned char*>(buffer.GetData());
    if (!piece) return 0;
    long got = ReadFully(file.Get(), piece, size_t(chunk));
    if (got <= 0) return 0;
    if (int type = SignatureType(piece, got)) return type;
    Utf8TextCheck check;
    while (got > 0 && check.Feed(piece, size_t(got))) got = ReadFully(file.Get(), piece, size_t(chunk));
    if (got < 0) return 0;
    return check.Legal() ? kNoSignatureUtf8 : kUnknown;
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

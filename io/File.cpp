#include "io/File.h"

#include <algorithm>
#include <clocale>
#include <cstdint>
#include <cstring>

#include <zel/memory.h>
#include <zel/textfuncs.h>

namespace {

const char* ModeString(int mode) {
    switch (mode) {
    case 2: return "wb";
    case 3: return "ab";
    case 4: return "rb+";
    case 5: return "wb+";
    case 6: return "ab+";
    default: return "rb";
    }
}

FILE* OpenNarrow(const wchar_t* path, const char* mode) {
    if (!path) return nullptr;
    CMiniMem narrow;
    const char* name = GetMBSText(const_cast<wchar_t*>(path), narrow);
    return name ? std::fopen(name, mode) : nullptr;
}

bool IsWide(int encoding) { return encoding == 0 || encoding == 1; }

int SignatureSize(int encoding) {
    if (IsWide(encoding)) return 2;
    return encoding == 3 ? 3 : 0;
}

}  // namespace

// ---------------------------------------------------------------- CFile

CFile::CFile() : m_lastError(0), m_isOpen(0), m_stream(nullptr) {}

CFile::CFile(const wchar_t* path, int mode) : CFile() { Open(path, mode); }

CFile::~CFile() {
    if (m_stream && m_isOpen == 1) std::fclose(m_stream);
}

int CFile::Open(const wchar_t* path, int mode) {
    // Reopening closes the old stream: nothing could reach it again, and it
    // would keep its descriptor until the process ends.
    if (m_stream) std::fclose(m_stream);
    m_stream = nullptr;
    m_isOpen = 0;
    m_path.SetText(path);
    std::setlocale(LC_ALL, "");
    m_stream = OpenNarrow(path, ModeString(mode));
    m_isOpen = m_stream ? 1 : 0;
    return m_isOpen;
}

int CFile::Close() {
    int closed = 0;
    if (m_stream) {
        std::fclose(m_stream);
        closed = 1;
    }
    m_stream = nullptr;
    m_isOpen = 0;
    m_path.Empty();
    return closed;
}

// Without a stream every operation is a neutral no-op: -1 for positions and
// seeks, 0 for counts.
int CFile::Seek(int offset, int origin) { return m_stream ? std::fseek(m_stream, offset, origin) : -1; }

int CFile::GetPosition() const { return m_stream ? int(std::ftell(m_stream)) : -1; }

int CFile::SeekToBegin() { return Seek(0, SEEK_SET); }

// The size in bytes, whatever the virtual GetPosition counts.
int CFile::SeekToEnd() {
    Seek(0, SEEK_END);
    return m_stream ? int(std::ftell(m_stream)) : -1;
}

int CFile::SetLength(unsigned int n) { return Seek(int(n), SEEK_SET); }

// Seek(0, current) answers the status 0, so the position always ends at the
// start of the file.
int CFile::GetLength() const {
    CFile* self = const_cast<CFile*>(this);
    int status = self->Seek(0, SEEK_CUR);
    int size = self->SeekToEnd();
    self->Seek(status, SEEK_SET);
    return size;
}

int CFile::Read(void* buf, unsigned int n) {
    if (n == 0 || !m_stream || !buf) return 0;
    size_t got = std::fread(buf, 1, n, m_stream);
    m_lastError = got < n ? std::ferror(m_stream) : 0;
    return int(got);
}

int CFile::Write(const void* buf, unsigned int n) {
    if (n == 0 || !m_stream || !buf) return 0;
    return int(std::fwrite(buf, 1, n, m_stream));
}

int CFile::Fputc(int c) { return m_stream ? std::fputc(c, m_stream) : EOF; }

int CFile::Flush() { return m_stream ? std::fflush(m_stream) : 0; }

int CFile::IsEOF() { return m_stream && std::feof(m_stream) ? 1 : 0; }

// ---------------------------------------------------------------- CTextFile

// Until Open finds the encoding, the file counts as multibyte text.
CTextFile::CTextFile() : m_encoding(2) {}

CTextFile::CTextFile(const wchar_t* path, int mode, int defaultEncoding) : m_encoding(defaultEncoding) {
    if (CFile::Open(path, mode)) m_encoding = _GetFileEncoding(path, defaultEncoding);
}

CTextFile::~CTextFile() {}

int CTextFile::Open(const wchar_t* path, int mode, int defaultEncoding) {
    if (!CFile::Open(path, mode)) return 0;
    m_encoding = _GetFileEncoding(path, defaultEncoding);
    SeekToBegin();
    return 1;
}

// The UTF-8 signature is only tested when not even one byte could be read,
// so a file signed EF BB BF keeps the default encoding.
int CTextFile::_GetFileEncoding(const wchar_t* path, int defaultEncoding) {
    FILE* probe = OpenNarrow(path, "rb");
    if (!probe) return defaultEncoding;
    int encoding = defaultEncoding;
    unsigned char head[3] = {0, 0, 0};
    std::fseek(probe, 0, SEEK_SET);
    if (std::fread(head, 1, 2, probe) > 0) {
        if (head[0] == 0xFF && head[1] == 0xFE) encoding = 0;
        else if (head[0] == 0xFE && head[1] == 0xFF) encoding = 1;
    } else {
        std::fseek(probe, 0, SEEK_SET);
        if (std::fread(head, 1, 2, probe) > 0 && head[0] == 0xEF && head[1] == 0xBB && head[2] == 0xBF)
            encoding = 3;
    }
    // The probe is closed here, so repeated opens hold no extra descriptor.
    std::fclose(probe);
    return encoding;
}

int CTextFile::SeekToBegin() {
    return m_stream ? std::fseek(m_stream, SignatureSize(m_encoding), SEEK_SET) : -1;
}

// Wide files count characters behind the signature; signed UTF-8 files do
// not move at all.
int CTextFile::Seek(int offset, int origin) {
    if (IsWide(m_encoding)) {
        if (!m_stream) return -1;
        unsigned int bytes = unsigned(offset) * 4u;
        if (origin == SEEK_SET) bytes += 2u;
        return std::fseek(m_stream, long(int(bytes)), origin);
    }
    if (m_encoding == 2) return CFile::Seek(offset, origin);
    return 0;
}

int CTextFile::GetPosition() const {
    if (!IsWide(m_encoding)) return CFile::GetPosition();
    int p = CFile::GetPosition();
    if (p == -1) return -1;
    return int((unsigned(p) - 2u) >> 2);
}

// Wide files go through Seek, which scales once more: n * 16 + 2.
int CTextFile::SetLength(unsigned int n) {
    if (IsWide(m_encoding)) return Seek(int(n * 4u), SEEK_SET);
    if (m_encoding == 3) return 3;
    return Seek(int(n), SEEK_SET);
}

// Answers from fseek's status values, not from positions: 0 for byte files
// and 4294967294 for wide files, with the position left at the end.
int CTextFile::GetLength() const {
    if (!m_stream) return -1;
    int start = std::fseek(m_stream, 0, SEEK_CUR);
    int end = std::fseek(m_stream, 0, SEEK_END);
    std::fseek(m_stream, start, SEEK_CUR);
    if (IsWide(m_encoding)) return int(unsigned(end) / 4u - 2u);
    return end;
}

// Reading only advances the stream and counts what was there (characters for
// wide files, bytes otherwise); the text read is not handed back. A caller's
// buffer is released as a single block.
int CTextFile::Read(void* buf, unsigned int n) {
    if (buf) ::operator delete(buf);
    uint64_t want = IsWide(m_encoding) ? uint64_t(n) * 4u : n;
    uint64_t total = 0;
    unsigned char chunk[4096];
    while (total < want) {
        unsigned int part = unsigned(std::min<uint64_t>(sizeof chunk, want - total));
        int got = CFile::Read(chunk, part);
        total += unsigned(got);
        if (unsigned(got) < part) break;
    }
    return int(IsWide(m_encoding) ? total / 4u : total);
}

// Both forms take their bytes from 4 bytes past the given pointer.
int CTextFile::Write(const void* text, unsigned int n) {
    if (!text) return 0;
    const unsigned char* bytes = static_cast<const unsigned char*>(text) + 4;
    if (IsWide(m_encoding)) return CFile::Write(bytes, n);
    const wchar_t* wide = static_cast<const wchar_t*>(text);
    CMiniMem narrow;
    const char* converted = GetMBSText(const_cast<wchar_t*>(wide), narrow);
    size_t count = converted ? std::strlen(converted) : 0;
    // Never more than the wide text's own storage behind that point.
    count = std::min(count, size_t(mystrlen(wide)) * 4u);
    return CFile::Write(bytes, unsigned(count));
}

// CFile: a thin polymorphic wrapper over a stdio stream that remembers its
// path. CTextFile: a CFile that knows the text encoding of its file (found
// from the leading signature) and counts positions in characters for the
// wide encodings. Other class libraries derive from both: the field order and
// the order of the virtual functions are part of the interface.
#pragma once

#include <cstdio>

#include <zel/mstring.h>

// Open modes: 2 "wb", 3 "ab", 4 "rb+", 5 "wb+", 6 "ab+", anything else "rb".
class ZEL_API CFile {
public:
    CFile();
    CFile(const wchar_t* path, int mode);

    // Virtual slots, in this order.
    virtual int GetPosition() const;
    virtual int Open(const wchar_t* path, int mode);
    virtual int Close();
    virtual int SeekToEnd();
    virtual int SeekToBegin();
    virtual int Seek(int offset, int origin);  // fseek's status, not the position
    virtual int SetLength(unsigned int n);     // moves only; the file keeps its size
    virtual int GetLength() const;             // the size; leaves the position at the start
    virtual int Read(void* buf, unsigned int n);
    virtual int Write(const void* buf, unsigned int n);
    virtual int Fputc(int c);
    virtual ~CFile();

    int Flush();
    int IsEOF();
    int GetLastError() const { return m_lastError; }
    FILE* GetStream() const { return m_stream; }

    CFile(const CFile&) = delete;
    CFile& operator=(const CFile&) = delete;

protected:
    int m_lastError;
    int m_isOpen;
    CMString m_path;
    FILE* m_stream;
};

// Encoding codes: 0 wide text signed FF FE, 1 wide text signed FE FF (stored
// in host order all the same), 2 multibyte text of the locale, 3 UTF-8 signed
// EF BB BF. Wide positions count 4-byte characters behind the signature.
// Read only advances and counts; it releases a non-null buffer it is given
// with ::operator delete.
class ZEL_API CTextFile : public CFile {
public:
    CTextFile();
    CTextFile(const wchar_t* path, int mode, int defaultEncoding);

    int GetPosition() const override;
    int SeekToBegin() override;
    int Seek(int offset, int origin) override;
    int SetLength(unsigned int n) override;
    int GetLength() const override;
    int Read(void* buf, unsigned int n) override;
    int Write(const void* text, unsigned int n) override;
    ~CTextFile() override;

    using CFile::Open;
    int Open(const wchar_t* path, int mode, int defaultEncoding);
    int _GetFileEncoding(const wchar_t* path, int defaultEncoding);

    int GetEncoding() const { return m_encoding; }

protected:
    int m_encoding;
};

static_assert(sizeof(CFile) == 32, "vptr, last error, open flag, path, stream");
static_assert(sizeof(CTextFile) == 36, "CFile and the encoding");

// CMString: a wide string kept in a CMiniMem as UTF-32 code units including
// the terminating zero unit. An empty string owns no block: its text is the
// shared empty constant. CMStringArray: an array of wide-text pointers.
#pragma once

#include <cstdarg>

#include <zel/minimem.h>

class ZEL_API CMString {
public:
    CMString();
    CMString(const wchar_t* s);
    CMString(const char* s);
    CMString(const CMString& other);
    ~CMString();

    CMString& operator=(const CMString& other);
    CMString& operator=(const wchar_t* s);

    // n < 0: the whole text. A null text empties the string.
    void SetText(const wchar_t* s, int n = -1);
    void SetText(const char* s);
    void AddText(const wchar_t* s, int n = -1);
    void AddChar(wchar_t c);
    CMString& operator+=(const wchar_t* s);
    CMString& operator+=(wchar_t c);
    CMString& operator+=(const CMString& other);

    CMString Left(int n) const;
    CMString Right(int n) const;
    void TrimLeft();
    void TrimRight();
    void MakeLower();
    void MakeUpper();
    bool EndOf(const wchar_t* suffix) const;
    bool IEndOf(const wchar_t* suffix) const;

    int GetLength() const;
    bool IsEmpty() const;
    unsigned int GetHash() const;
    void Empty();
    // The text, never null (the shared empty string when empty).
    wchar_t* GetText() const;
    operator wchar_t*() const { return GetText(); }
    // Hands the text to the caller (release with zel_free); an empty string
    // detaches as the shared empty constant.
    wchar_t* Detach();

    void Format(const wchar_t* fmt, ...);
    void FormatV(const wchar_t* fmt, va_list args);

    bool operator==(const wchar_t* s) const;
    bool operator!=(const wchar_t* s) const;
    bool operator<(const wchar_t* s) const;
    bool operator>(const wchar_t* s) const;
    bool operator==(const CMString& s) const;
    bool operator!=(const CMString& s) const;
    bool operator<(const CMString& s) const;
    // Non-const texts would otherwise also match the built-in pointer
    // comparison through operator wchar_t*.
    bool operator==(wchar_t* s) const { return *this == static_cast<const wchar_t*>(s); }
    bool operator!=(wchar_t* s) const { return *this != static_cast<const wchar_t*>(s); }
    bool operator<(wchar_t* s) const { return *this < static_cast<const wchar_t*>(s); }
    bool operator>(wchar_t* s) const { return *this > static_cast<const wchar_t*>(s); }

private:
    CMiniMem m_mem;
};

class ZEL_API CMStringArray : public CMiniMem {
public:
    CMStringArray();
    // Releases the pointer block only; RemoveAll() first frees the texts.
    ~CMStringArray() override;

    int GetSize() const;
    wchar_t* GetAt(int i) const;           // null outside 0..size-1
    wchar_t* operator[](int i) const { return GetAt(i); }
    int Add(const wchar_t* s);             // stores MCloneText(s); returns its index or -1
    int Add_NoClone(wchar_t* s);
    bool InsertAt(int i, const wchar_t* s);
    bool InsertAt_NoClone(int i, wchar_t* s);
    bool RemoveAt(int i);                  // frees the text with zel_free
    bool RemoveAt_NotDelete(int i);
    void RemoveAll();                      // frees every text
    int Find(const wchar_t* s) const;      // index of an equal text, or -1
};

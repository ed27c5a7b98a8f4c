#include <zel/mstring.h>

#include <zel/errors.h>

#include <cwchar>
#include <cwctype>
#include <string>

#include <zel/memory.h>
#include <zel/values.h>
#include <zel/textfuncs.h>

namespace {

const int kUnit = sizeof(wchar_t);

// Units of s up to n (n < 0: all), stopping at a terminator either way.
int CountUnits(const wchar_t* s, int n) {
    if (!s) return 0;
    int count = 0;
    while ((n < 0 || count < n) && s[count]) ++count;
    return count;
}

bool IsSpace(wchar_t c) { return std::iswspace(static_cast<wint_t>(c)) != 0; }

}  // namespace

CMString::CMString() = default;
CMString::CMString(const wchar_t* s) { SetText(s); }
CMString::CMString(const char* s) { SetText(s); }
CMString::CMString(const CMString& other) { SetText(other.GetText()); }
CMString::~CMString() = default;

CMString& CMString::operator=(const CMString& other) {
    SetText(other.GetText());
    return *this;
}

CMString& CMString::operator=(const wchar_t* s) {
    SetText(s);
    return *this;
}

void CMString::SetText(const wchar_t* s, int n) {
    int count = CountUnits(s, n);
    CMiniMem text;  // built aside: s may point into this string
    if (count && text.Alloc((count + 1) * kUnit)) {
        std::wmemcpy(reinterpret_cast<wchar_t*>(text.GetData()), s, count);
        reinterpret_cast<wchar_t*>(text.GetData())[count] = 0;
    }
    if (count == 0 || text.GetData()) m_mem.xchg(text);
}

void CMString::SetText(const char* s) {
    wchar_t* wide = MCloneText(const_cast<char*>(s));
    SetText(wide);
    zel_free(wide);
}

void CMString::AddText(const wchar_t* s, int n) {
    int count = CountUnits(s, n);
    if (count == 0) return;
    if (IsEmpty()) return SetText(s, count);
    m_mem.Insert(m_mem.GetSize() - kUnit, const_cast<wchar_t*>(s), count * kUnit);
}

// A zero character would cut the text short: it is not added.
void CMString::AddChar(wchar_t c) {
    if (c) AddText(&c, 1);
}

CMString& CMString::operator+=(const wchar_t* s) {
    AddText(s);
    return *this;
}

CMString& CMString::operator+=(wchar_t c) {
    AddChar(c);
    return *this;
}

CMString& CMString::operator+=(const CMString& other) {
    AddText(other.GetText(), other.GetLength());
    return *this;
}

CMString CMString::Left(int n) const {
    CMString result;
    if (n > 0) result.SetText(GetText(), n);
    return result;
}

CMString CMString::Right(int n) const {
    CMString result;
    int length = GetLength();
    if (n > 0) result.SetText(GetText() + (n < length ? length - n : 0));
    return result;
}

void CMString::TrimLeft() {
    const wchar_t* text = GetText();
    int skip = 0;
    while (text[skip] && IsSpace(text[skip])) ++skip;
    if (skip) SetText(text + skip);
}

void CMString::TrimRight() {
    const wchar_t* text = GetText();
    int length = GetLength();
    int keep = length;
    while (keep > 0 && IsSpace(text[keep - 1])) --keep;
    if (keep < length) SetText(text, keep);
}

void CMString::MakeLower() {
    for (wchar_t* p = GetText(); *p; ++p) *p = mytolower(*p);
}

void CMString::MakeUpper() {
    for (wchar_t* p = GetText(); *p; ++p) *p = mytoupper(*p);
}

bool CMString::EndOf(const wchar_t* suffix) const {
    int length = GetLength(), n = mystrlen(suffix);
    return n <= length && mystrcmp(GetText() + length - n, suffix) == 0;
}

bool CMString::IEndOf(const wchar_t* suffix) const {
    int length = GetLength(), n = mystrlen(suffix);
    return n <= length && mystricmp(GetText() + length - n, suffix) == 0;
}

int CMString::GetLength() const { return m_mem.GetSize() ? m_mem.GetSize() / kUnit - 1 : 0; }
bool CMString::IsEmpty() const { return GetLength() == 0; }
unsigned int CMString::GetHash() const { return GetTextHash(GetText()); }
void CMString::Empty() { m_mem.Free(); }

wchar_t* CMString::GetText() const {
    return m_mem.GetData() ? reinterpret_cast<wchar_t*>(m_mem.GetData()) : zel::EmptyString();
}

wchar_t* CMString::Detach() {
    unsigned char* data = m_mem.Detach();
    return data ? reinterpret_cast<wchar_t*>(data) : zel::EmptyString();
}

void CMString::Format(const wchar_t* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    FormatV(fmt, args);
    va_end(args);
}

// Grows the buffer until the text fits; a format the C library rejects
// (or a result beyond 16M characters) leaves the string empty. Without
// memory the string stays as it was.
void CMString::FormatV(const wchar_t* fmt, va_list args) {
    CMString copy;
    const wchar_t* format = zel::CLibraryFormat(fmt, copy);
    if (!format) return;
    CMiniMem text;
    for (int room = 256; room <= (1 << 24); room *= 4) {
        if (!text.Realloc(room * kUnit)) return;
        va_list attempt;
        va_copy(attempt, args);
        int n = std::vswprintf(reinterpret_cast<wchar_t*>(text.GetData()), room, format, attempt);
        va_end(attempt);
        if (n >= 0) {
            if (n == 0)
                text.Free();
            else if (!text.Realloc((n + 1) * kUnit))
                return;
            m_mem.xchg(text);
            return;
        }
    }
    Empty();
}

bool CMString::operator==(const wchar_t* s) const { return mystrcmp(GetText(), s) == 0; }
bool CMString::operator!=(const wchar_t* s) const { return mystrcmp(GetText(), s) != 0; }
bool CMString::operator<(const wchar_t* s) const { return mystrcmp(GetText(), s) < 0; }
bool CMString::operator>(const wchar_t* s) const { return mystrcmp(GetText(), s) > 0; }
bool CMString::operator==(const CMString& s) const { return mystrcmp(GetText(), s.GetText()) == 0; }
bool CMString::operator!=(const CMString& s) const { return mystrcmp(GetText(), s.GetText()) != 0; }
bool CMString::operator<(const CMString& s) const { return mystrcmp(GetText(), s.GetText()) < 0; }

CMStringArray::CMStringArray() = default;

// Like every buffer, the array releases only its own block: texts still held
// are the owner's to free (RemoveAll) before it goes.
CMStringArray::~CMStringArray() = default;

int CMStringArray::GetSize() const { return m_size / static_cast<int>(sizeof(wchar_t*)); }

wchar_t* CMStringArray::GetAt(int i) const {
    if (i < 0 || i >= GetSize()) return nullptr;
    return reinterpret_cast<wchar_t**>(m_data)[i];
}

int CMStringArray::Add(const wchar_t* s) {
    wchar_t* clone = MCloneText(const_cast<wchar_t*>(s));
    int index = Add_NoClone(clone);
    if (index < 0) zel_free(clone);
    return index;
}

int CMStringArray::Add_NoClone(wchar_t* s) {
    int index = GetSize();
    return Append(&s, sizeof s) ? index : -1;
}

bool CMStringArray::InsertAt(int i, const wchar_t* s) {
    wchar_t* clone = MCloneText(const_cast<wchar_t*>(s));
    bool inserted = InsertAt_NoClone(i, clone);
    if (!inserted) zel_free(clone);
    return inserted;
}

// Positions past the end are refused: the gap would hold no valid pointers.
bool CMStringArray::InsertAt_NoClone(int i, wchar_t* s) {
    if (i < 0 || i > GetSize()) return false;
    return Insert(i * static_cast<int>(sizeof s), &s, sizeof s) != 0;
}

bool CMStringArray::RemoveAt(int i) {
    wchar_t* text = GetAt(i);
    if (!RemoveAt_NotDelete(i)) return false;
    zel_free(text);
    return true;
}

bool CMStringArray::RemoveAt_NotDelete(int i) {
    if (i < 0 || i >= GetSize()) return false;
    return Remove(i * static_cast<int>(sizeof(wchar_t*)), sizeof(wchar_t*)) != 0;
}

void CMStringArray::RemoveAll() {
    for (int i = 0; i < GetSize(); ++i) zel_free(GetAt(i));
    Free();
}

int CMStringArray::Find(const wchar_t* s) const {
    for (int i = 0; i < GetSize(); ++i)
        if (mystrcmp(GetAt(i), s) == 0) return i;
    return -1;
}

// Wide-text functions: the UTF-32 counterparts of the C string functions, and
// the conversions and parsers the library shares. A null text reads as empty.
#pragma once

#include <zel/zel_types.h>

class CMiniMem;
class CMString;
class CMStringArray;

ZEL_API int mystrlen(const wchar_t* s);
ZEL_API int mystrcmp(const wchar_t* a, const wchar_t* b);
ZEL_API int mystricmp(const wchar_t* a, const wchar_t* b);
ZEL_API int mystrncmp(const wchar_t* a, const wchar_t* b, int n);
ZEL_API int mystrnicmp(const wchar_t* a, const wchar_t* b, int n);
ZEL_API wchar_t* mystrchr(const wchar_t* s, wchar_t c);
ZEL_API wchar_t* mystrrchr(const wchar_t* s, wchar_t c);
ZEL_API wchar_t* mystrstr(const wchar_t* s, const wchar_t* find);
ZEL_API wchar_t* mystrtok(wchar_t* s, const wchar_t* delimiters);
ZEL_API wchar_t* mystrcpy(wchar_t* dst, const wchar_t* src);
ZEL_API wchar_t* mystrcat(wchar_t* dst, const wchar_t* src);
ZEL_API wchar_t mytoupper(wchar_t c);
ZEL_API wchar_t mytolower(wchar_t c);
ZEL_API int myatoi(const wchar_t* s);
ZEL_API double myatof(const wchar_t* s);

// The unsigned 32-bit sum of the code units; 0 for null or empty.
ZEL_API unsigned int GetTextHash(const wchar_t* s);

// UTF-32 <-> UTF-8 into a buffer; the result is terminated and returned.
ZEL_API char* UCS_to_UTF8(const wchar_t* s, CMiniMem& out);
ZEL_API wchar_t* UTF8_to_UCS(const char* s, CMiniMem& out);

// Splits at a separator, trimming blanks and tabs around each item; the
// array's previous texts are freed. Returns the item count (0 for an empty text).
ZEL_API int GetStringList(const wchar_t* text, CMStringArray& out, wchar_t separator = L',');

// \n \t \r \\ \" \' \0 and \xHH..., \uHHHH sequences to their characters.
ZEL_API wchar_t* ConvertEscapeSequences(const wchar_t* s, CMiniMem& out);

// A valid name: a letter, '_' or any non-ASCII character first, then those or digits.
ZEL_API bool IsValidName(const wchar_t* name);
// The hash of a friend (alias) name; 0 for an empty one.
ZEL_API unsigned int GetFriendNameHash(const wchar_t* name);

// Reads the value of `name` from extended properties written as
// "name1=value1;name2=value2"; false when absent.
ZEL_API bool GetExtendPropertyValue(const wchar_t* properties, const wchar_t* name, CMString& value);

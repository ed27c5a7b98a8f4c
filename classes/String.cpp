// 工具.文本类: a mutable wide text. Positions and counts are code units,
// zero-based, taken as unsigned: a negative start acts as a huge one.
#include <algorithm>
#include <cwchar>
#include <new>
#include <string>

#include <zel/class_table.h>
#include <zel/no_memory.h>
#include <zel/services.h>
#include <zel/values.h>

using zel::TextChars;

ZEL_EXPORT std::wstring* _String_GetData(ZelObject* obj) {
    return static_cast<std::wstring*>(GetDataItemData(obj, 1, 0));
}

// Without memory for the state the object stays without one, and every
// method answers as for an empty text and changes nothing.
ZEL_EXPORT void String_Init(ZelObject* obj) { SetDataItemData(obj, 1, 0, zel::NewOrNull<std::wstring>()); }

ZEL_EXPORT void String_Free(ZelObject* obj) {
    delete _String_GetData(obj);
    SetDataItemData(obj, 1, 0, nullptr);
}

// The content is not part of the stream: both hooks succeed doing nothing.
ZEL_EXPORT int String_Serialize(ZelObject*, ZelObject*) { return 1; }
ZEL_EXPORT int String_Unserialize(ZelObject*, ZelObject*) { return 1; }

ZEL_EXPORT unsigned char* String_GetText(ZelObject* obj) {
    std::wstring* s = _String_GetData(obj);
    return zel::NewText(s ? s->c_str() : L"");
}

// Growing the text may throw std::bad_alloc, for the runtime to report; the
// text is then as it was.
ZEL_EXPORT void String_SetText(ZelObject* obj, unsigned char* text) {
    const wchar_t* chars = TextChars(text);
    if (std::wstring* s = _String_GetData(obj)) s->assign(chars ? chars : L"");
}

ZEL_EXPORT int String_GetLength(ZelObject* obj) {
    std::wstring* s = _String_GetData(obj);
    return s ? int(s->size()) : 0;
}

ZEL_EXPORT void String_Append(ZelObject* obj, unsigned char* text) {
    std::wstring* s = _String_GetData(obj);
    if (const wchar_t* chars = TextChars(text); chars && s) s->append(chars);
}

// A position past the end throws std::out_of_range, for the runtime to report.
ZEL_EXPORT void String_Insert(ZelObject* obj, int position, unsigned char* text) {
    std::wstring* s = _String_GetData(obj);
    if (const wchar_t* chars = TextChars(text); chars && s) s->insert(unsigned(position), chars);
}

// Removes min(start + count, length - start) units: the sum, wrapping at
// 2^32, stands where a plain count would, so the number removed grows with
// the start. A start past the end throws out_of_range ("basic_string::erase").
ZEL_EXPORT void String_Delete(ZelObject* obj, int start, int count) {
    std::wstring* s = _String_GetData(obj);
    if (!s) return;
    unsigned from = unsigned(start);
    unsigned sum = from + unsigned(count);
    s->erase(from, from > s->size() ? 0 : std::min<unsigned>(sum, s->size() - from));
}

// Not found (npos) comes back as -1.
ZEL_EXPORT int String_Find(ZelObject* obj, unsigned char* text, int start) {
    const wchar_t* chars = TextChars(text);
    std::wstring* s = _String_GetData(obj);
    return chars && s ? int(s->find(chars, unsigned(start))) : -1;
}

ZEL_EXPORT int String_ReverseFind(ZelObject* obj, unsigned char* text, int start) {
    const wchar_t* chars = TextChars(text);
    std::wstring* s = _String_GetData(obj);
    return chars && s ? int(s->rfind(chars, unsigned(start))) : -1;
}

// Kept as an operation that changes nothing; its second parameter is an integer.
ZEL_EXPORT int String_Replace(ZelObject*, unsigned char*, int) { return 0; }

// The first differing unit decides; with equal prefixes the result is the
// length difference, so a proper prefix compares below the longer text.
ZEL_EXPORT int String_Compare(ZelObject* obj, unsigned char* text) {
    static const std::wstring kNone;
    const std::wstring* s = _String_GetData(obj);
    if (!s) s = &kNone;
    const wchar_t* chars = TextChars(text);
    if (!chars) chars = L"";
    std::size_t length = std::wcslen(chars);
    if (int order = std::wmemcmp(s->data(), chars, std::min(s->size(), length))) return order;
    return int(s->size() - length);
}

ZEL_EXPORT int String_Equals(ZelObject* obj, unsigned char* text) { return String_Compare(obj, text) == 0; }

// Declared "_b", it hands back the same new text as the 文本 property.
ZEL_EXPORT unsigned char* String_ToText(ZelObject* obj) { return String_GetText(obj); }

using namespace zel;

static tagParamItem kText[] = {Param(L"文本", L"_s")};
static tagParamItem kAppend[] = {Param(L"欲添加的文本", L"_s")};
static tagParamItem kInsert[] = {Param(L"插入位置", L"_i"), Param(L"欲插入的文本", L"_s")};
static tagParamItem kDelete[] = {Param(L"起始删除位置", L"_i"), Param(L"欲删除的字符数", L"_i")};
static tagParamItem kFind[] = {Param(L"欲查找文本", L"_s"), Param(L"起始查找位置", L"_i")};
static tagParamItem kReplace[] = {Param(L"欲被替换文本", L"_s"), Param(L"欲替换为文本", L"_i")};
static tagParamItem kCompare[] = {Param(L"被比较文本", L"_s")};
static tagMethodItem kMethods[] = {
    Getter(L"文本", L"_s", String_GetText),
    Setter(L"文本", kText, String_SetText),
    Method(L"取长度", L"_i", String_GetLength),
    Method(L"添加", L"", kAppend, String_Append),
    Method(L"插入", L"", kInsert, String_Insert),
    Method(L"删除", L"", kDelete, String_Delete),
    Method(L"查找", L"_i", kFind, String_Find),
    Method(L"倒找", L"_i", kFind, String_ReverseFind),
    Method(L"替换", L"_i", kReplace, String_Replace),
    Method(L"比较", L"_i", kCompare, String_Compare),
    Method(L"相等于", L"_b", kCompare, String_Equals),
    Method(L"序列化", L"_b", kSerializeParams, nullptr),
    Method(L"反序列化", L"_b", kUnserializeParams, nullptr),
    Method(L"到文本", L"_b", String_ToText),
};
static tagElementItem kElements[] = {HiddenState()};
ZEL_RECORD(tagTBaseTypeInfo, g_info_String) = ClassRecord(L"工具.文本类", L"文本类", kMethods, kElements);
ZEL_REGISTER_CLASS(g_info_String);

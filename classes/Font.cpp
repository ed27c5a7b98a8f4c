// 工具.字体: a font description, a name and six integer attributes.
#include <algorithm>
#include <vector>

#include "classes/value_object.h"
#include <zel/class_table.h>
#include <zel/errors.h>
#include <zel/services.h>
#include <zel/values.h>
#include <zel/mstring.h>
#include <zel/textfuncs.h>

struct FontRecord {
    CMString name;
    int charset = 0;
    int size = 0;
    int family = 0;
    int style = 90;
    int underline = 0;
    int weight = 90;
};
static_assert(sizeof(CMString) == 16);
static_assert(sizeof(FontRecord) == 40);

ZEL_EXPORT FontRecord* _Font_GetData(ZelObject* obj) { return zel::StateOf<FontRecord>(obj); }

ZEL_EXPORT void Font_Init(ZelObject* obj) { zel::NewState<FontRecord>(obj); }
ZEL_EXPORT void Font_Free(ZelObject* obj) { zel::DeleteState<FontRecord>(obj); }

ZEL_EXPORT unsigned char* Font_GetName(ZelObject* obj) {
    FontRecord* f = _Font_GetData(obj);
    return f ? zel::NewText(f->name.GetText()) : zel::EmptyText();
}
ZEL_EXPORT void Font_SetName(ZelObject* obj, unsigned char* value) {
    FontRecord* f = _Font_GetData(obj);
    if (f && value) f->name.SetText(zel::TextChars(value));
}

// The integer attributes read -1 without a record (the underline flag 0).
using zel::GetField, zel::SetField;
ZEL_EXPORT int Font_GetCharset(ZelObject* obj) { return GetField<&FontRecord::charset, -1>(obj); }
ZEL_EXPORT void Font_SetCharset(ZelObject* obj, int value) { SetField<&FontRecord::charset>(obj, value); }
ZEL_EXPORT int Font_GetSize(ZelObject* obj) { return GetField<&FontRecord::size, -1>(obj); }
ZEL_EXPORT void Font_SetSize(ZelObject* obj, int value) { SetField<&FontRecord::size>(obj, value); }
ZEL_EXPORT int Font_GetFamily(ZelObject* obj) { return GetField<&FontRecord::family, -1>(obj); }
ZEL_EXPORT void Font_SetFamily(ZelObject* obj, int value) { SetField<&FontRecord::family>(obj, value); }
ZEL_EXPORT int Font_GetStyle(ZelObject* obj) { return GetField<&FontRecord::style, -1>(obj); }
ZEL_EXPORT void Font_SetStyle(ZelObject* obj, int value) { SetField<&FontRecord::style>(obj, value); }
ZEL_EXPORT int Font_GetUnderline(ZelObject* obj) { return GetField<&FontRecord::underline>(obj); }
ZEL_EXPORT void Font_SetUnderline(ZelObject* obj, int value) { SetField<&FontRecord::underline>(obj, value); }
ZEL_EXPORT int Font_GetWeight(ZelObject* obj) { return GetField<&FontRecord::weight, -1>(obj); }
ZEL_EXPORT void Font_SetWeight(ZelObject* obj, int value) { SetField<&FontRecord::weight>(obj, value); }

// Saving reads the name and drops it: nothing reaches the stream.
ZEL_EXPORT int Font_SaveToStream(ZelObject* obj, ZelObject*) {
    unsigned char* name = Font_GetName(obj);
    if (name != zel::EmptyText()) zel::Release(name);
    return 1;
}
ZEL_EXPORT int Font_LoadFromStream(ZelObject*, ZelObject*) { return 1; }

ZEL_EXPORT unsigned char* Font_ToText(ZelObject* obj) {
    FontRecord* f = _Font_GetData(obj);
    if (!f) return zel::EmptyText();
    // At least 1,024 units; more for a long name, so it never overruns.
    return zel::NeutralOnNoMemory(zel::EmptyText(), [f] {
        std::vector<wchar_t> buf(std::max(1024, f->name.GetLength() + 128), 0);
        swprintf_linux(buf.data(), const_cast<wchar_t*>(L"%s, %d, %d, %d, %d, %d, %d"), f->name.GetText(),
                       f->charset, f->size, f->family, f->style, f->underline, f->weight);
        return zel::NewText(buf.data());
    });
}

// Items beyond the end of the text leave their field unchanged.
ZEL_EXPORT void Font_FromText(ZelObject* obj, unsigned char* text) {
    FontRecord* f = _Font_GetData(obj);
    if (!f) return;
    CMStringArray items;
    int n = GetStringList(zel::TextChars(text), items);
    if (n > 0) {
        unsigned char* name = zel::NewText(items[0]);
        Font_SetName(obj, name);
        zel::Release(name);
    }
    int* fields[] = {&f->charset, &f->size, &f->family, &f->style, &f->underline, &f->weight};
    for (int i = 1; i < n && i <= 6; ++i) *fields[i - 1] = myatoi(items[i]);
    items.RemoveAll();  // the array leaves its texts to us
}

// Equal names never give 0: two fonts compare as 0 only when their names
// differ and all six attributes agree; every other case is -1.
ZEL_EXPORT int Font_Compare(ZelObject* obj, ZelObject* other) {
    FontRecord* a = _Font_GetData(obj);
    FontRecord* b = other ? _Font_GetData(other) : nullptr;
    if (!a || !b) return -1;
    int c = mystrcmp(a->name.GetText(), b->name.GetText());
    bool sameAttributes = a->charset == b->charset && a->size == b->size && a->family == b->family &&
                          a->style == b->style && a->underline == b->underline && a->weight == b->weight;
    return c != 0 && sameAttributes ? 0 : -1;
}

using namespace zel;

static tagParamItem kName[] = {Param(L"名称", L"_s", L"字体的名称")};
static tagParamItem kCharset[] = {Param(L"编码", L"_i", L"字体的编码")};
static tagParamItem kSize[] = {Param(L"尺寸", L"_i", L"字体的尺寸")};
static tagParamItem kFamily[] = {Param(L"字族", L"_i", L"字体的字族")};
static tagParamItem kStyle[] = {Param(L"风格", L"_i", L"字体的风格")};
static tagParamItem kUnderline[] = {Param(L"下划线", L"_b", L"字体的下划线")};
static tagParamItem kWeight[] = {Param(L"字重", L"_i", L"字体的字重")};
static tagParamItem kText[] = {Param(L"字体文本", L"_s")};
static tagParamItem kOther[] = {OtherParam(L"工具.字体")};
static tagMethodItem kMethods[] = {
    Getter(L"名称", L"_s", Font_GetName),
    Setter(L"名称", kName, Font_SetName),
    Getter(L"编码", L"_i", Font_GetCharset),
    Setter(L"编码", kCharset, Font_SetCharset),
    Getter(L"尺寸", L"_i", Font_GetSize),
    Setter(L"尺寸", kSize, Font_SetSize),
    Getter(L"字族", L"_i", Font_GetFamily),
    Setter(L"字族", kFamily, Font_SetFamily),
    Getter(L"风格", L"_i", Font_GetStyle),
    Setter(L"风格", kStyle, Font_SetStyle),
    Getter(L"下划线", L"_b", Font_GetUnderline),
    Setter(L"下划线", kUnderline, Font_SetUnderline),
    Getter(L"字重", L"_i", Font_GetWeight),
    Setter(L"字重", kWeight, Font_SetWeight),
    SerializeMethod(Font_SaveToStream),
    UnserializeMethod(Font_LoadFromStream),
    ToTextMethod(Font_ToText),
    Method(L"到对象", L"", kText, Font_FromText, L"根据文本方式表达的对象生成字体对象。"),
    CompareMethod(kOther, Font_Compare),
};
static_assert(sizeof(kMethods) / sizeof(kMethods[0]) == 19);
static tagElementItem kElements[] = {HiddenState()};
ZEL_RECORD(tagTBaseTypeInfo, g_info_Font) = ClassRecord(L"工具.字体", L"字体对象", kMethods, kElements);
ZEL_REGISTER_CLASS(g_info_Font);

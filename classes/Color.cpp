// 工具.颜色: a red-green-blue colour of three bytes. Components are stored
// modulo 256: every setter keeps the low 8 bits of what it is given.
#include "classes/value_object.h"

struct ColorRecord {
    unsigned char red, green, blue;
};
static_assert(sizeof(ColorRecord) == 3);
static_assert(offsetof(ColorRecord, green) == 1 && offsetof(ColorRecord, blue) == 2);

ZEL_EXPORT ColorRecord* _Color_GetData(ZelObject* obj) { return zel::StateOf<ColorRecord>(obj); }

ZEL_EXPORT void Color_Init(ZelObject* obj) { zel::NewState<ColorRecord>(obj); }
ZEL_EXPORT void Color_Free(ZelObject* obj) { zel::DeleteState<ColorRecord>(obj); }

ZEL_EXPORT void Color_SetRGB(ZelObject* obj, int red, int green, int blue) {
    if (ColorRecord* c = _Color_GetData(obj)) *c = {(unsigned char)red, (unsigned char)green, (unsigned char)blue};
}

ZEL_EXPORT int Color_GetRed(ZelObject* obj) { return zel::GetField<&ColorRecord::red>(obj); }
ZEL_EXPORT void Color_SetRed(ZelObject* obj, int value) { zel::SetField<&ColorRecord::red>(obj, value); }
ZEL_EXPORT int Color_GetGreen(ZelObject* obj) { return zel::GetField<&ColorRecord::green>(obj); }
ZEL_EXPORT void Color_SetGreen(ZelObject* obj, int value) { zel::SetField<&ColorRecord::green>(obj, value); }
ZEL_EXPORT int Color_GetBlue(ZelObject* obj) { return zel::GetField<&ColorRecord::blue>(obj); }
ZEL_EXPORT void Color_SetBlue(ZelObject* obj, int value) { zel::SetField<&ColorRecord::blue>(obj, value); }

// A colour keeps nothing in a stream; both directions succeed.
ZEL_EXPORT int Color_SaveToStream(ZelObject*, ZelObject*) { return 1; }
ZEL_EXPORT int Color_LoadFromStream(ZelObject*, ZelObject*) { return 1; }

ZEL_EXPORT unsigned char* Color_ToText(ZelObject* obj) {
    ColorRecord* c = _Color_GetData(obj);
    return c ? zel::NumbersText(L"%d, %d, %d", c->red, c->green, c->blue) : zel::EmptyText();
}

ZEL_EXPORT void Color_FromText(ZelObject* obj, unsigned char* text) {
    if (ColorRecord* c = _Color_GetData(obj)) zel::ReadNumberItems(text, {&c->red, &c->green, &c->blue});
}

static int ColorKey(const ColorRecord* c) { return c->red + 256 * c->green + 65536 * c->blue; }

// Blue weighs most. A missing record on either side compares as equal.
ZEL_EXPORT int Color_Compare(ZelObject* obj, ZelObject* other) {
    ColorRecord* a = _Color_GetData(obj);
    ColorRecord* b = other ? _Color_GetData(other) : nullptr;
    if (!a || !b) return 0;
    int ka = ColorKey(a), kb = ColorKey(b);
    return ka == kb ? 0 : (ka < kb ? -1 : 1);
}

using namespace zel;

static tagParamItem kRGB[] = {Param(L"红", L"_i"), Param(L"绿", L"_i"), Param(L"蓝", L"_i")};
static tagParamItem kRed[] = {Param(L"红", L"_i")};
static tagParamItem kGreen[] = {Param(L"绿", L"_i")};
static tagParamItem kBlue[] = {Param(L"蓝", L"_i")};
static tagParamItem kText[] = {Param(L"颜色文本", L"_s")};
static tagParamItem kOther[] = {OtherParam(L"工具.颜色")};
static tagMethodItem kMethods[] = {
    Constructor(L"初始化", kRGB, Color_SetRGB),
    Getter(L"红", L"_i", Color_GetRed),
    Setter(L"红", kRed, Color_SetRed),
    Getter(L"绿", L"_i", Color_GetGreen),
    Setter(L"绿", kGreen, Color_SetGreen),
    Getter(L"蓝", L"_i", Color_GetBlue),
    Setter(L"蓝", kBlue, Color_SetBlue),
    SerializeMethod(Color_SaveToStream),
    UnserializeMethod(Color_LoadFromStream),
    ToTextMethod(Color_ToText),
    Method(L"到对象", L"", kText, Color_FromText, L"根据文本方式表达的对象生成颜色对象。"),
    CompareMethod(kOther, Color_Compare),
};
static_assert(sizeof(kMethods) / sizeof(kMethods[0]) == 12);
static tagElementItem kElements[] = {HiddenState()};
ZEL_RECORD(tagTBaseTypeInfo, g_info_Color) = ClassRecord(L"工具.颜色", L"颜色对象", kMethods, kElements);
ZEL_REGISTER_CLASS(g_info_Color);

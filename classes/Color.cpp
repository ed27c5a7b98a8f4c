// 工具.颜色: a red-green-blue colour of three bytes. Components are stored
// modulo 256: every setter keeps the low 8 bits of what it is given.
#include "runtime/class_table.h"
#include "runtime/errors.h"
#include "runtime/services.h"
#include "runtime/values.h"
#include "support/mstring.h"
#include "support/textfuncs.h"

struct ColorRecord {
    unsigned char red, green, blue;
};
static_assert(sizeof(ColorRecord) == 3);
static_assert(offsetof(ColorRecord, green) == 1 && offsetof(ColorRecord, blue) == 2);

ZEL_EXPORT ColorRecord* _Color_GetData(ZelObject* obj) {
    return static_cast<ColorRecord*>(GetDataItemData(obj, 1, 0));
}

ZEL_EXPORT void Color_Init(ZelObject* obj) { SetDataItemData(obj, 1, 0, new ColorRecord{}); }

ZEL_EXPORT void Color_Free(ZelObject* obj) {
    delete _Color_GetData(obj);
    SetDataItemData(obj, 1, 0, nullptr);
}

ZEL_EXPORT void Color_SetRGB(ZelObject* obj, int red, int green, int blue) {
    if (ColorRecord* c = _Color_GetData(obj)) *c = {(unsigned char)red, (unsigned char)green, (unsigned char)blue};
}

ZEL_EXPORT int Color_GetRed(ZelObject* obj) {
    ColorRecord* c = _Color_GetData(obj);
    return c ? c->red : 0;
}
ZEL_EXPORT void Color_SetRed(ZelObject* obj, int value) {
    if (ColorRecord* c = _Color_GetData(obj)) c->red = (unsigned char)value;
}

ZEL_EXPORT int Color_GetGreen(ZelObject* obj) {
    ColorRecord* c = _Color_GetData(obj);
    return c ? c->green : 0;
}
ZEL_EXPORT void Color_SetGreen(ZelObject* obj, int value) {
    if (ColorRecord* c = _Color_GetData(obj)) c->green = (unsigned char)value;
}

ZEL_EXPORT int Color_GetBlue(ZelObject* obj) {
    ColorRecord* c = _Color_GetData(obj);
    return c ? c->blue : 0;
}
ZEL_EXPORT void Color_SetBlue(ZelObject* obj, int value) {
    if (ColorRecord* c = _Color_GetData(obj)) c->blue = (unsigned char)value;
}

// A colour keeps nothing in a stream; both directions succeed.
ZEL_EXPORT int Color_SaveToStream(ZelObject*, ZelObject*) { return 1; }
ZEL_EXPORT int Color_LoadFromStream(ZelObject*, ZelObject*) { return 1; }

ZEL_EXPORT unsigned char* Color_ToText(ZelObject* obj) {
    ColorRecord* c = _Color_GetData(obj);
    if (!c) return zel::EmptyText();
    wchar_t buf[1024] = {};
    swprintf_linux(buf, const_cast<wchar_t*>(L"%d, %d, %d"), c->red, c->green, c->blue);
    return zel::NewText(buf);
}

// Items beyond the end of the text leave their component unchanged.
ZEL_EXPORT void Color_FromText(ZelObject* obj, unsigned char* text) {
    ColorRecord* c = _Color_GetData(obj);
    if (!c) return;
    CMStringArray items;
    int n = GetStringList(zel::TextChars(text), items);
    unsigned char* fields[] = {&c->red, &c->green, &c->blue};
    for (int i = 0; i < n && i < 3; ++i) *fields[i] = (unsigned char)myatoi(items[i]);
    items.RemoveAll();  // the array leaves its texts to us
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
static tagParamItem kSerialize[] = {Param(L"流对象", L"系统.输出流", L"本参数提供接收对象数据的流对象")};
static tagParamItem kUnserialize[] = {Param(L"流对象", L"系统.输入流", L"本参数为提供对象数据的流对象")};
static tagParamItem kText[] = {Param(L"颜色文本", L"_s")};
static tagParamItem kOther[] = {Param(L"欲比较的对象", L"工具.颜色", L"本参数提供欲与当前对象进行比较的对象")};
static tagMethodItem kMethods[] = {
    Constructor(L"初始化", kRGB, Color_SetRGB),
    Getter(L"红", L"_i", Color_GetRed),
    Setter(L"红", kRed, Color_SetRed),
    Getter(L"绿", L"_i", Color_GetGreen),
    Setter(L"绿", kGreen, Color_SetGreen),
    Getter(L"蓝", L"_i", Color_GetBlue),
    Setter(L"蓝", kBlue, Color_SetBlue),
    Method(L"序列化", L"_b", kSerialize, Color_SaveToStream, L"把对象内所有需要保存的数据序列化到一个流对象中"),
    Method(L"反序列化", L"_b", kUnserialize, Color_LoadFromStream,
           L"根据流对象中的序列化数据来重置当前对象。成功返回真，失败返回假"),
    Method(L"到文本", L"_s", Color_ToText, L"返回以文本方式表达的对象当前内容"),
    Method(L"到对象", L"", kText, Color_FromText, L"根据文本方式表达的对象生成颜色对象。"),
    Method(L"比较", L"_i", kOther, Color_Compare, L"确定两个对象谁大谁小"),
};
static_assert(sizeof(kMethods) / sizeof(kMethods[0]) == 12);
static tagElementItem kElements[] = {HiddenState()};
ZEL_RECORD(tagTBaseTypeInfo, g_info_Color) = ClassRecord(L"工具.颜色", L"颜色对象", kMethods, kElements);
ZEL_REGISTER_CLASS(g_info_Color);

// 工具.尺寸: a width and a height. A size is empty unless both are positive.
#include "classes/geometry.h"
#include "classes/value_object.h"

ZEL_EXPORT SizeState* _Size_GetData(ZelObject* obj) { return zel::StateOf<SizeState>(obj); }

ZEL_EXPORT void Size_Init(ZelObject* obj) { zel::NewState<SizeState>(obj); }
ZEL_EXPORT void Size_Free(ZelObject* obj) { zel::DeleteState<SizeState>(obj); }

ZEL_EXPORT int Size_GetWidth(ZelObject* obj) { return zel::GetField<&SizeState::width>(obj); }
ZEL_EXPORT void Size_SetWidth(ZelObject* obj, int value) { zel::SetField<&SizeState::width>(obj, value); }
ZEL_EXPORT int Size_GetHeight(ZelObject* obj) { return zel::GetField<&SizeState::height>(obj); }
ZEL_EXPORT void Size_SetHeight(ZelObject* obj, int value) { zel::SetField<&SizeState::height>(obj, value); }

ZEL_EXPORT void Size_Set(ZelObject* obj, int width, int height) {
    if (SizeState* s = _Size_GetData(obj)) *s = {width, height};
}

ZEL_EXPORT int Size_IsEmpty(ZelObject* obj) {
    SizeState* s = _Size_GetData(obj);
    return !s || s->width <= 0 || s->height <= 0;
}

ZEL_EXPORT int Size_Equals(ZelObject* obj, ZelObject* other) {
    SizeState* a = _Size_GetData(obj);
    SizeState* b = other ? _Size_GetData(other) : nullptr;
    return a && b && a->width == b->width && a->height == b->height;
}

// Negative amounts shrink.
ZEL_EXPORT void Size_Inflate(ZelObject* obj, int dw, int dh) {
    if (SizeState* s = _Size_GetData(obj)) *s = {zel::WrapAdd(s->width, dw), zel::WrapAdd(s->height, dh)};
}

ZEL_EXPORT unsigned char* Size_ToText(ZelObject* obj) {
    SizeState* s = _Size_GetData(obj);
    return s ? zel::NumbersText(L"%d, %d", s->width, s->height) : zel::EmptyText();
}

ZEL_EXPORT void Size_FromText(ZelObject* obj, unsigned char* text) {
    if (SizeState* s = _Size_GetData(obj)) zel::ReadNumberItems(text, {&s->width, &s->height});
}

using namespace zel;

static tagParamItem kValue[] = {Param(L"值", L"_i")};
static tagParamItem kWidthHeight[] = {Param(L"宽度", L"_i"), Param(L"高度", L"_i")};
static tagParamItem kOther[] = {OtherParam(L"工具.尺寸")};
static tagParamItem kInflate[] = {Param(L"宽度增量", L"_i", L"为负时缩小"), Param(L"高度增量", L"_i", L"为负时缩小")};
static tagParamItem kText[] = {Param(L"尺寸文本", L"_s", L"以逗号分隔的宽度和高度")};
static tagMethodItem kMethods[] = {
    Getter(L"宽度", L"_i", Size_GetWidth, L"尺寸的宽度"),
    Setter(L"宽度", kValue, Size_SetWidth, L"尺寸的宽度"),
    Getter(L"高度", L"_i", Size_GetHeight, L"尺寸的高度"),
    Setter(L"高度", kValue, Size_SetHeight, L"尺寸的高度"),
    Constructor(L"初始化", kWidthHeight, Size_Set, L"同时设置宽度和高度"),
    Method(L"是否为空", L"_b", Size_IsEmpty, L"宽度或高度不大于零时返回真"),
    Method(L"相等", L"_b", kOther, Size_Equals, L"宽度和高度都相同时返回真"),
    Method(L"扩大", L"", kInflate, Size_Inflate, L"把宽度和高度分别加上指定的增量"),
    ToTextMethod(Size_ToText),
    Method(L"到对象", L"", kText, Size_FromText, L"根据文本方式表达的对象生成尺寸对象。"),
};
static_assert(sizeof(kMethods) / sizeof(kMethods[0]) == 10);
static tagElementItem kElements[] = {HiddenState()};
ZEL_RECORD(tagTBaseTypeInfo, g_info_Size) = ClassRecord(L"工具.尺寸", L"本类描述一个尺寸大小对象", kMethods, kElements);
ZEL_REGISTER_CLASS(g_info_Size);

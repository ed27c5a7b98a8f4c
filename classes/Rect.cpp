// 工具.矩形: a rectangle of four edges, half-open: it holds the points with
// left <= x < right and top <= y < bottom. It is empty when right <= left or
// bottom <= top, reversed edges included (规格化 puts those in order). An
// empty rectangle contains nothing, is contained in nothing, meets nothing
// and leaves a union unchanged.
#include <algorithm>

#include "classes/geometry.h"
#include "classes/value_object.h"

ZEL_EXPORT RectState* _Rect_GetData(ZelObject* obj) { return zel::StateOf<RectState>(obj); }

static RectState* OtherRect(ZelObject* other) { return other ? _Rect_GetData(other) : nullptr; }

static bool IsEmpty(const RectState* r) { return !r || r->right <= r->left || r->bottom <= r->top; }

ZEL_EXPORT void Rect_Init(ZelObject* obj) { zel::NewState<RectState>(obj); }
ZEL_EXPORT void Rect_Free(ZelObject* obj) { zel::DeleteState<RectState>(obj); }

// The clone's state: a copy of the edges.
ZEL_EXPORT void* Rect_Clone(ZelObject* obj) {
    RectState* r = _Rect_GetData(obj);
    return r ? new (std::nothrow) RectState(*r) : nullptr;
}

ZEL_EXPORT int Rect_GetLeft(ZelObject* obj) { return zel::GetField<&RectState::left>(obj); }
ZEL_EXPORT void Rect_SetLeft(ZelObject* obj, int value) { zel::SetField<&RectState::left>(obj, value); }
ZEL_EXPORT int Rect_GetTop(ZelObject* obj) { return zel::GetField<&RectState::top>(obj); }
ZEL_EXPORT void Rect_SetTop(ZelObject* obj, int value) { zel::SetField<&RectState::top>(obj, value); }
ZEL_EXPORT int Rect_GetRight(ZelObject* obj) { return zel::GetField<&RectState::right>(obj); }
ZEL_EXPORT void Rect_SetRight(ZelObject* obj, int value) { zel::SetField<&RectState::right>(obj, value); }
ZEL_EXPORT int Rect_GetBottom(ZelObject* obj) { return zel::GetField<&RectState::bottom>(obj); }
ZEL_EXPORT void Rect_SetBottom(ZelObject* obj, int value) { zel::SetField<&RectState::bottom>(obj, value); }

// Width and height are right - left and bottom - top (negative when
// reversed); setting them moves the right or bottom edge.
ZEL_EXPORT int Rect_GetWidth(ZelObject* obj) {
    RectState* r = _Rect_GetData(obj);
    return r ? zel::WrapSub(r->right, r->left) : 0;
}
ZEL_EXPORT void Rect_SetWidth(ZelObject* obj, int value) {
    if (RectState* r = _Rect_GetData(obj)) r->right = zel::WrapAdd(r->left, value);
}

ZEL_EXPORT int Rect_GetHeight(ZelObject* obj) {
    RectState* r = _Rect_GetData(obj);
    return r ? zel::WrapSub(r->bottom, r->top) : 0;
}
ZEL_EXPORT void Rect_SetHeight(ZelObject* obj, int value) {
    if (RectState* r = _Rect_GetData(obj)) r->bottom = zel::WrapAdd(r->top, value);
}

ZEL_EXPORT void Rect_Set(ZelObject* obj, int left, int top, int right, int bottom) {
    if (RectState* r = _Rect_GetData(obj)) *r = {left, top, right, bottom};
}

ZEL_EXPORT void Rect_SetBounds(ZelObject* obj, int left, int top, int width, int height) {
    if (RectState* r = _Rect_GetData(obj)) *r = {left, top, zel::WrapAdd(left, width), zel::WrapAdd(top, height)};
}

ZEL_EXPORT void Rect_SetEmpty(ZelObject* obj) {
    if (RectState* r = _Rect_GetData(obj)) *r = {};
}

ZEL_EXPORT void Rect_Offset(ZelObject* obj, int dx, int dy) {
    if (RectState* r = _Rect_GetData(obj))
        *r = {zel::WrapAdd(r->left, dx), zel::WrapAdd(r->top, dy), zel::WrapAdd(r->right, dx),
              zel::WrapAdd(r->bottom, dy)};
}

ZEL_EXPORT void Rect_MoveTo(ZelObject* obj, int left, int top) {
    if (RectState* r = _Rect_GetData(obj)) Rect_Offset(obj, zel::WrapSub(left, r->left), zel::WrapSub(top, r->top));
}

// Every edge moves outwards by the amount (inwards when negative).
ZEL_EXPORT void Rect_Inflate(ZelObject* obj, int dx, int dy) {
    if (RectState* r = _Rect_GetData(obj))
        *r = {zel::WrapSub(r->left, dx), zel::WrapSub(r->top, dy), zel::WrapAdd(r->right, dx),
              zel::WrapAdd(r->bottom, dy)};
}

ZEL_EXPORT void Rect_Normalize(ZelObject* obj) {
    RectState* r = _Rect_GetData(obj);
    if (!r) return;
    if (r->left > r->right) std::swap(r->left, r->right);
    if (r->top > r->bottom) std::swap(r->top, r->bottom);
}

ZEL_EXPORT void Rect_Union(ZelObject* obj, ZelObject* other) {
    RectState* r = _Rect_GetData(obj);
    RectState* o = OtherRect(other);
    if (!r || IsEmpty(o)) return;
    if (IsEmpty(r)) {
        *r = *o;
        return;
    }
    *r = {std::min(r->left, o->left), std::min(r->top, o->top), std::max(r->right, o->right),
          std::max(r->bottom, o->bottom)};
}

// The common part; when there is none the rectangle becomes 0, 0, 0, 0.
ZEL_EXPORT void Rect_Intersect(ZelObject* obj, ZelObject* other) {
    RectState* r = _Rect_GetData(obj);
    if (!r) return;
    RectState* o = OtherRect(other);
    RectState common{};
    if (!IsEmpty(r) && !IsEmpty(o))
        common = {std::max(r->left, o->left), std::max(r->top, o->top), std::min(r->right, o->right),
                  std::min(r->bottom, o->bottom)};
    *r = IsEmpty(&common) ? RectState{} : common;
}

ZEL_EXPORT int Rect_Intersects(ZelObject* obj, ZelObject* other) {
    RectState* r = _Rect_GetData(obj);
    RectState* o = OtherRect(other);
    if (IsEmpty(r) || IsEmpty(o)) return 0;
    return std::max(r->left, o->left) < std::min(r->right, o->right) &&
           std::max(r->top, o->top) < std::min(r->bottom, o->bottom);
}

ZEL_EXPORT int Rect_ContainsXY(ZelObject* obj, int x, int y) {
    RectState* r = _Rect_GetData(obj);
    return r && r->left <= x && x < r->right && r->top <= y && y < r->bottom;
}

ZEL_EXPORT int Rect_ContainsPoint(ZelObject* obj, ZelObject* point) {
    PointState* p = point ? _Point_GetData(point) : nullptr;
    return p && Rect_ContainsXY(obj, p->x, p->y);
}

ZEL_EXPORT int Rect_ContainsRect(ZelObject* obj, ZelObject* other) {
    RectState* r = _Rect_GetData(obj);
    RectState* o = OtherRect(other);
    if (IsEmpty(r) || IsEmpty(o)) return 0;
    return r->left <= o->left && o->right <= r->right && r->top <= o->top && o->bottom <= r->bottom;
}

ZEL_EXPORT int Rect_IsEmpty(ZelObject* obj) { return IsEmpty(_Rect_GetData(obj)); }

// Edge by edge: two empty rectangles at different places differ.
ZEL_EXPORT int Rect_Equals(ZelObject* obj, ZelObject* other) {
    RectState* r = _Rect_GetData(obj);
    RectState* o = OtherRect(other);
    return r && o && r->left == o->left && r->top == o->top && r->right == o->right && r->bottom == o->bottom;
}

// Halfway between the edges, rounded toward zero.
ZEL_EXPORT int Rect_GetCenterX(ZelObject* obj) {
    RectState* r = _Rect_GetData(obj);
    return r ? int((int64_t(r->left) + r->right) / 2) : 0;
}
ZEL_EXPORT int Rect_GetCenterY(ZelObject* obj) {
    RectState* r = _Rect_GetData(obj);
    return r ? int((int64_t(r->top) + r->bottom) / 2) : 0;
}

ZEL_EXPORT unsigned char* Rect_ToText(ZelObject* obj) {
    RectState* r = _Rect_GetData(obj);
    return r ? zel::NumbersText(L"%d, %d, %d, %d", r->left, r->top, r->right, r->bottom) : zel::EmptyText();
}

ZEL_EXPORT void Rect_FromText(ZelObject* obj, unsigned char* text) {
    if (RectState* r = _Rect_GetData(obj)) zel::ReadNumberItems(text, {&r->left, &r->top, &r->right, &r->bottom});
}

using namespace zel;

static tagParamItem kValue[] = {Param(L"值", L"_i")};
static tagParamItem kEdges[] = {Param(L"左", L"_i"), Param(L"上", L"_i"), Param(L"右", L"_i"), Param(L"下", L"_i")};
static tagParamItem kBounds[] = {Param(L"左", L"_i"), Param(L"上", L"_i"), Param(L"宽度", L"_i"), Param(L"高度", L"_i")};
static tagParamItem kOffset[] = {Param(L"横向偏移", L"_i", L"向右为正"), Param(L"纵向偏移", L"_i", L"向下为正")};
static tagParamItem kMoveTo[] = {Param(L"左", L"_i", L"新的左边"), Param(L"上", L"_i", L"新的上边")};
static tagParamItem kInflate[] = {Param(L"横向增量", L"_i", L"左边和右边各向外移动的距离，为负时向内"),
                                  Param(L"纵向增量", L"_i", L"上边和下边各向外移动的距离，为负时向内")};
static tagParamItem kRect[] = {Param(L"矩形", L"工具.矩形", L"本参数提供另一个矩形对象")};
static tagParamItem kXY[] = {Param(L"横坐标", L"_i"), Param(L"纵坐标", L"_i")};
static tagParamItem kPoint[] = {Param(L"坐标点", L"工具.坐标点", L"本参数提供欲测试的坐标点对象")};
static tagParamItem kText[] = {Param(L"矩形文本", L"_s", L"以逗号分隔的左、上、右、下")};
static tagMethodItem kMethods[] = {
    Getter(L"左", L"_i", Rect_GetLeft, L"矩形的左边，属于矩形"),
    Setter(L"左", kValue, Rect_SetLeft, L"矩形的左边，属于矩形"),
    Getter(L"上", L"_i", Rect_GetTop, L"矩形的上边，属于矩形"),
    Setter(L"上", kValue, Rect_SetTop, L"矩形的上边，属于矩形"),
    Getter(L"右", L"_i", Rect_GetRight, L"矩形的右边，不属于矩形"),
    Setter(L"右", kValue, Rect_SetRight, L"矩形的右边，不属于矩形"),
    Getter(L"下", L"_i", Rect_GetBottom, L"矩形的下边，不属于矩形"),
    Setter(L"下", kValue, Rect_SetBottom, L"矩形的下边，不属于矩形"),
    Getter(L"宽度", L"_i", Rect_GetWidth, L"右边减左边"),
    Setter(L"宽度", kValue, Rect_SetWidth, L"设置宽度时移动右边"),
    Getter(L"高度", L"_i", Rect_GetHeight, L"下边减上边"),
    Setter(L"高度", kValue, Rect_SetHeight, L"设置高度时移动下边"),
    Constructor(L"初始化", kEdges, Rect_Set, L"同时设置四条边"),
    Method(L"置位置尺寸", L"", kBounds, Rect_SetBounds, L"根据左上角和宽度、高度设置矩形"),
    Method(L"置空", L"", Rect_SetEmpty, L"把四条边都置为零"),
    Method(L"偏移", L"", kOffset, Rect_Offset, L"把矩形移动指定的距离，尺寸不变"),
    Method(L"移动到", L"", kMoveTo, Rect_MoveTo, L"把矩形的左上角移动到指定位置，尺寸不变"),
    Method(L"扩大", L"", kInflate, Rect_Inflate, L"把四条边向外移动指定的距离"),
    Method(L"规格化", L"", Rect_Normalize, L"交换颠倒的左右边和上下边，使宽度和高度不为负"),
    Method(L"合并", L"", kRect, Rect_Union, L"把当前矩形扩大为同时包含两个矩形的最小矩形。空矩形不参与合并"),
    Method(L"求交集", L"", kRect, Rect_Intersect, L"把当前矩形缩小为两个矩形的公共部分；没有公共部分时置空"),
    Method(L"是否相交", L"_b", kRect, Rect_Intersects, L"两个矩形有公共部分时返回真；只有边相接不算相交"),
    Method(L"包含点", L"_b", kXY, Rect_ContainsXY, L"点在矩形内时返回真；右边和下边上的点不在矩形内"),
    Method(L"包含坐标点", L"_b", kPoint, Rect_ContainsPoint, L"坐标点在矩形内时返回真；右边和下边上的点不在矩形内"),
    Method(L"包含矩形", L"_b", kRect, Rect_ContainsRect, L"另一个矩形不为空且完全在当前矩形内时返回真"),
    Method(L"是否为空", L"_b", Rect_IsEmpty, L"宽度或高度不大于零时返回真"),
    Method(L"相等", L"_b", kRect, Rect_Equals, L"四条边都相同时返回真"),
    Method(L"取中心横坐标", L"_i", Rect_GetCenterX, L"左边和右边的中点，向零取整"),
    Method(L"取中心纵坐标", L"_i", Rect_GetCenterY, L"上边和下边的中点，向零取整"),
    ToTextMethod(Rect_ToText),
    Method(L"到对象", L"", kText, Rect_FromText, L"根据文本方式表达的对象生成矩形对象。"),
};
static_assert(sizeof(kMethods) / sizeof(kMethods[0]) == 31);
static tagElementItem kElements[] = {HiddenState()};
ZEL_RECORD(tagTBaseTypeInfo, g_info_Rect) = ClassRecord(L"工具.矩形", L"本类描述一个矩形区域对象", kMethods, kElements);
ZEL_REGISTER_CLASS(g_info_Rect);

// 工具.坐标点: a point of two integer coordinates. It is the one geometry
// class that persists: its two integers go to a stream, x first.
#include "classes/geometry.h"
#include "classes/value_object.h"
#include <zel/stream_calls.h>

ZEL_EXPORT PointState* _Point_GetData(ZelObject* obj) { return zel::StateOf<PointState>(obj); }

ZEL_EXPORT void Point_Init(ZelObject* obj) { zel::NewState<PointState>(obj); }
ZEL_EXPORT void Point_Free(ZelObject* obj) { zel::DeleteState<PointState>(obj); }

ZEL_EXPORT int Point_Serialize(ZelObject* obj, ZelObject* stream) {
    PointState* p = _Point_GetData(obj);
    if (!p || !stream || !zel::InterfaceSlot(stream, L"系统.输出流", 1)) return 0;
    zel::StreamWriteInt(stream, p->x);
    zel::StreamWriteInt(stream, p->y);
    return 1;
}

ZEL_EXPORT int Point_Unserialize(ZelObject* obj, ZelObject* stream) {
    PointState* p = _Point_GetData(obj);
    if (!p || !stream || !zel::InterfaceSlot(stream, L"系统.输入流", 1)) return 0;
    int x = zel::StreamReadInt(stream);
    int y = zel::StreamReadInt(stream);
    *p = {x, y};
    return 1;
}

ZEL_EXPORT int Point_GetX(ZelObject* obj) { return zel::GetField<&PointState::x>(obj); }
ZEL_EXPORT void Point_SetX(ZelObject* obj, int value) { zel::SetField<&PointState::x>(obj, value); }
ZEL_EXPORT int Point_GetY(ZelObject* obj) { return zel::GetField<&PointState::y>(obj); }
ZEL_EXPORT void Point_SetY(ZelObject* obj, int value) { zel::SetField<&PointState::y>(obj, value); }

ZEL_EXPORT void Point_Set(ZelObject* obj, int x, int y) {
    if (PointState* p = _Point_GetData(obj)) *p = {x, y};
}

ZEL_EXPORT void Point_Offset(ZelObject* obj, int dx, int dy) {
    if (PointState* p = _Point_GetData(obj)) *p = {zel::WrapAdd(p->x, dx), zel::WrapAdd(p->y, dy)};
}

using namespace zel;

static tagParamItem kValue[] = {Param(L"值", L"_i")};
static tagParamItem kXY[] = {Param(L"横坐标", L"_i"), Param(L"纵坐标", L"_i")};
static tagParamItem kOffset[] = {Param(L"横向偏移", L"_i", L"向右为正"), Param(L"纵向偏移", L"_i", L"向下为正")};
static tagMethodItem kMethods[] = {
    Getter(L"横坐标", L"_i", Point_GetX, L"坐标点的横坐标"),
    Setter(L"横坐标", kValue, Point_SetX, L"坐标点的横坐标"),
    Getter(L"纵坐标", L"_i", Point_GetY, L"坐标点的纵坐标"),
    Setter(L"纵坐标", kValue, Point_SetY, L"坐标点的纵坐标"),
    Constructor(L"初始化", kXY, Point_Set, L"同时设置横坐标和纵坐标"),
    Method(L"偏移", L"", kOffset, Point_Offset, L"把坐标点移动指定的距离"),
    SerializeMethod(nullptr),
    UnserializeMethod(nullptr),
};
static_assert(sizeof(kMethods) / sizeof(kMethods[0]) == 8);
static tagElementItem kElements[] = {HiddenState()};
ZEL_RECORD(tagTBaseTypeInfo, g_info_Point) = ClassRecord(L"工具.坐标点", L"本类描述一个坐标点对象", kMethods, kElements);
ZEL_REGISTER_CLASS(g_info_Point);

// 工具.坐标点: a point of two integer coordinates. It is the one geometry
// class that persists: its two integers go to a stream, x first.
#include "classes/geometry.h"
#include "runtime/class_table.h"
#include "runtime/stream_calls.h"
#include "runtime/values.h"

ZEL_EXPORT PointState* _Point_GetData(ZelObject* obj) { return static_cast<PointState*>(GetDataItemData(obj, 1, 0)); }

ZEL_EXPORT void Point_Init(ZelObject* obj) { SetDataItemData(obj, 1, 0, new PointState{}); }

ZEL_EXPORT void Point_Free(ZelObject* obj) {
    delete _Point_GetData(obj);
    SetDataItemData(obj, 1, 0, nullptr);
}

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

ZEL_EXPORT int Point_GetX(ZelObject* obj) {
    PointState* p = _Point_GetData(obj);
    return p ? p->x : 0;
}
ZEL_EXPORT void Point_SetX(ZelObject* obj, int value) {
    if (PointState* p = _Point_GetData(obj)) p->x = value;
}

ZEL_EXPORT int Point_GetY(ZelObject* obj) {
    PointState* p = _Point_GetData(obj);
    return p ? p->y : 0;
}
ZEL_EXPORT void Point_SetY(ZelObject* obj, int value) {
    if (PointState* p = _Point_GetData(obj)) p->y = value;
}

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
static tagParamItem kSerialize[] = {Param(L"流对象", L"系统.输出流", L"本参数提供接收对象数据的流对象")};
static tagParamItem kUnserialize[] = {Param(L"流对象", L"系统.输入流", L"本参数为提供对象数据的流对象")};
static tagMethodItem kMethods[] = {
    Getter(L"横坐标", L"_i", Point_GetX, L"坐标点的横坐标"),
    Setter(L"横坐标", kValue, Point_SetX, L"坐标点的横坐标"),
    Getter(L"纵坐标", L"_i", Point_GetY, L"坐标点的纵坐标"),
    Setter(L"纵坐标", kValue, Point_SetY, L"坐标点的纵坐标"),
    Constructor(L"初始化", kXY, Point_Set, L"同时设置横坐标和纵坐标"),
    Method(L"偏移", L"", kOffset, Point_Offset, L"把坐标点移动指定的距离"),
    Method(L"序列化", L"_b", kSerialize, nullptr, L"把对象内所有需要保存的数据序列化到一个流对象中"),
    Method(L"反序列化", L"_b", kUnserialize, nullptr,
           L"根据流对象中的序列化数据来重置当前对象。成功返回真，失败返回假"),
};
static_assert(sizeof(kMethods) / sizeof(kMethods[0]) == 8);
static tagElementItem kElements[] = {HiddenState()};
ZEL_RECORD(tagTBaseTypeInfo, g_info_Point) = ClassRecord(L"工具.坐标点", L"本类描述一个坐标点对象", kMethods, kElements);
ZEL_REGISTER_CLASS(g_info_Point);

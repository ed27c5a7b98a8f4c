// The states of the geometry classes 工具.坐标点, 工具.尺寸 and 工具.矩形.
// Coordinates are 32-bit integers; sums and differences wrap around as in
// 32-bit machine arithmetic, while comparisons are exact.
#pragma once

#include <cstdint>

#include <zel/zel_types.h>

struct PointState {
    int x, y;
};
struct SizeState {
    int width, height;
};
// Half-open: the left and top edges belong to the rectangle, the right and
// bottom edges do not.
struct RectState {
    int left, top, right, bottom;
};
static_assert(sizeof(PointState) == 8 && offsetof(PointState, y) == 4);
static_assert(sizeof(SizeState) == 8 && offsetof(SizeState, height) == 4);
static_assert(sizeof(RectState) == 16 && offsetof(RectState, right) == 8 && offsetof(RectState, bottom) == 12);

ZEL_EXPORT PointState* _Point_GetData(ZelObject* obj);
ZEL_EXPORT SizeState* _Size_GetData(ZelObject* obj);
ZEL_EXPORT RectState* _Rect_GetData(ZelObject* obj);

namespace zel {
inline int WrapAdd(int a, int b) { return int(uint32_t(a) + uint32_t(b)); }
inline int WrapSub(int a, int b) { return int(uint32_t(a) - uint32_t(b)); }
}  // namespace zel

// The ten members of the interface 工具.文件接口, in slot order. A class that
// implements it lists them first in its own method table, bound to its own
// functions, so names, parameters and descriptions stay the same everywhere.
#pragma once

#include <zel/zel_types.h>

enum FileMemberSlot {
    kFileRead,          // 读
    kFileWrite,         // 写
    kFileSeek,          // 定位(定位方式, 偏移量)
    kFileSeekCurrent,   // 定位(偏移量)
    kFileSeekFromBegin, // 首定位
    kFileSeekFromEnd,   // 尾定位
    kFileSeekToBegin,   // 定位到文件首
    kFileSeekToEnd,     // 定位到文件尾
    kFileGetLength,     // 取长度
    kFileGetPosition,   // 取读写位置
    kFileMemberCount
};

// The member's item with `function` as its implementation.
tagMethodItem FileMember(FileMemberSlot slot, void* function);

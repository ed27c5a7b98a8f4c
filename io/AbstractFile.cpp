// 工具.文件接口: the interface of the library's file classes.
#include "io/FileInterface.h"
#include <zel/class_table.h>

using namespace zel;

using FileMembers = tagMethodItem[kFileMemberCount];

// Built on first use: other modules copy these items while they initialise.
static FileMembers& Members() {
    static tagParamItem kLength[] = {Param(L"欲读取的长度", L"_i")};
    static tagParamItem kData[] = {Param(L"欲写入的数据", L"_bn")};
    static tagParamItem kSeek[] = {Param(L"定位方式", L"_bn"), Param(L"偏移量", L"_i")};
    static tagParamItem kOffset[] = {Param(L"偏移量", L"_i")};
    static tagMethodItem kMembers[] = {
        Method(L"读", L"_bn", kLength, nullptr),
        Method(L"写", L"_i", kData, nullptr),
        Method(L"定位", L"_i", kSeek, nullptr, L"定位文件读写位置。成功返回定位后读写位置，失败返回-1"),
        Method(L"定位", L"_i", kOffset, nullptr, L"相对当前位置定位读写位置。成功返回定位后读写位置，失败返回-1"),
        Method(L"首定位", L"_i", kOffset, nullptr, L"相对文件首定位读写位置。成功返回定位后读写位置，失败返回-1"),
        Method(L"尾定位", L"_i", kOffset, nullptr, L"相对文件尾定位读写位置。成功返回定位后读写位置，失败返回-1"),
        Method(L"定位到文件首", L"", nullptr),
        Method(L"定位到文件尾", L"_i", nullptr),
        Method(L"取长度", L"_i", nullptr, L"取文件长度"),
        Method(L"取读写位置", L"_i", nullptr),
    };
    static_assert(sizeof kMembers == sizeof(FileMembers));
    return kMembers;
}

tagMethodItem FileMember(FileMemberSlot slot, void* function) {
    tagMethodItem item = Members()[slot];
    item.function = function;
    return item;
}

ZEL_RECORD(tagTInterfaceInfo, g_info_AbstractFile) = InterfaceRecord(L"工具.文件接口", Members());
ZEL_REGISTER_INTERFACE(g_info_AbstractFile);

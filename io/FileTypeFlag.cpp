// 工具.文件类型选项: the text signatures that 工具.二进制文件流 reads, writes
// and detects. An enumeration has no methods; each member is an element of
// type "_i" (with the element flag 0x80000000 like every element item) whose
// value is kept in the first reserved word of its item (byte 28), members
// listed from the highest value down.
#include <zel/class_table.h>

using namespace zel;

static tagElementItem Member(const wchar_t* name, int value) {
    tagElementItem item = Element(name, L"_i", ZEL_ELEMENT_HIDDEN);
    item.reserved[0] = value;
    return item;
}

static tagElementItem kMembers[] = {
    Member(L"无文件头UTF8", 5),
    Member(L"UTF8", 4),
    Member(L"大端Unicode", 3),
    Member(L"小端Unicode", 2),
    Member(L"未知", 1),
};

ZEL_RECORD(tagTBaseTypeInfo, g_info_FileTypeFlag) = ClassRecord(L"工具.文件类型选项", L"", nullptr, kMembers);
ZEL_REGISTER_CLASS(g_info_FileTypeFlag);

// The runtime's binding table: method items that carry no function of their
// own and are bound to exports of their library, and the calling
// irregularities the runtime knows about. See docs/runtime-abi.md.
#include <cstring>

#include "host/host_internal.h"

namespace zelhost {
namespace {

struct BoundItem {
    const char* record;
    int item;  // 1-based index in the record's method items
    const char* exportName;
};

// 工具.日期时间类: the twelve property items and 到文本.
const BoundItem kBound[] = {
    {"DatetimeClass", 1, "DatetimeClass_GetYear"},   {"DatetimeClass", 2, "DatetimeClass_GetMonth"},
    {"DatetimeClass", 3, "DatetimeClass_GetDay"},    {"DatetimeClass", 4, "DatetimeClass_GetHour"},
    {"DatetimeClass", 5, "DatetimeClass_GetMinute"}, {"DatetimeClass", 6, "DatetimeClass_GetSecond"},
    {"DatetimeClass", 7, "DatetimeClass_SetYear"},   {"DatetimeClass", 8, "DatetimeClass_SetMonth"},
    {"DatetimeClass", 9, "DatetimeClass_SetDay"},    {"DatetimeClass", 10, "DatetimeClass_SetHour"},
    {"DatetimeClass", 11, "DatetimeClass_SetMinute"}, {"DatetimeClass", 12, "DatetimeClass_SetSecond"},
    {"DatetimeClass", 13, "DatetimeClass_ToString"},
};

struct Irregular {
    const char* record;
    const wchar_t* item;
    int leadingWords;
};

// 工具.数学运算.求极限: the native function takes one 32-bit word
// (the runtime passes 0) ahead of its double.
const Irregular kIrregular[] = {
    {"Math", L"求极限", 1},
};

}  // namespace

std::string BoundExport(const std::string& recordName, int index) {
    for (const BoundItem& b : kBound)
        if (recordName == b.record && index + 1 == b.item) return b.exportName;
    return "";
}

int LeadingWords(const std::string& recordName, const wchar_t* itemName) {
    if (!itemName) return 0;
    for (const Irregular& i : kIrregular)
        if (recordName == i.record && wcscmp(itemName, i.item) == 0) return i.leadingWords;
    return 0;
}

Binding BindMethod(ClassInfo* cls, int itemIndex) {
    Binding b;
    if (!cls || !cls->methods() || itemIndex < 0 || itemIndex >= cls->methodCount()) return b;
    tagMethodItem& m = cls->methods()[itemIndex];
    b.leadingWords = LeadingWords(cls->recordName, m.name);
    if (m.function) {
        b.function = m.function;
        return b;
    }
    if (m.name && cls->kind != ZEL_KIND_INTERFACE && !cls->recordName.empty()) {
        if (wcscmp(m.name, L"序列化") == 0 && cls->hooks[HOOK_SERIALIZE]) {
            b.function = cls->hooks[HOOK_SERIALIZE];
            b.boundTo = cls->recordName + "_Serialize";
            return b;
        }
        if (wcscmp(m.name, L"反序列化") == 0 && cls->hooks[HOOK_UNSERIALIZE]) {
            b.function = cls->hooks[HOOK_UNSERIALIZE];
            b.boundTo = cls->recordName + "_Unserialize";
            return b;
        }
        std::string name = BoundExport(cls->recordName, itemIndex);
        if (!name.empty()) {
            b.function = cls->lib->Export(name);
            b.boundTo = name;
        }
    }
    return b;
}

}  // namespace zelhost

// 工具.列表: a doubly linked list of objects addressed by zero-based position.
// The list holds one reference on every object it stores and drops it when
// the object leaves the list. The count is not kept: it is walked each time.
#include <iterator>
#include <list>

#include <zel/class_table.h>
#include <zel/memory.h>
#include <zel/no_memory.h>
#include <zel/services.h>
#include <zel/values.h>

using ObjectList = std::list<ZelObject*>;

ZEL_EXPORT ObjectList* _List_GetData(ZelObject* obj) { return static_cast<ObjectList*>(GetDataItemData(obj, 1, 0)); }

static ZelObject* Keep(ZelObject* item) { return item ? static_cast<ZelObject*>(zel::AddRef(item)) : nullptr; }
static void Drop(ZelObject* item) {
    if (item) zel::Release(item);
}
static int Count(const ObjectList& items) { return int(std::distance(items.begin(), items.end())); }
static ObjectList::iterator At(ObjectList& items, int position) { return std::next(items.begin(), position); }

static void DropAll(ObjectList* items) {
    if (!items) return;
    for (ZelObject* item : *items) Drop(item);
    items->clear();
}

// Without memory for the state every method answers as for no list.
ZEL_EXPORT void List_Init(ZelObject* obj) { SetDataItemData(obj, 1, 0, zel::NewOrNull<ObjectList>()); }

// The node is made before the reference is taken: without memory the list
// and the item are left as they were.
static void Store(ObjectList& items, ObjectList::iterator before, ZelObject* item) {
    zel::NeutralOnNoMemory([&] {
        auto node = items.insert(before, nullptr);
        *node = Keep(item);
    });
}

ZEL_EXPORT void List_Free(ZelObject* obj) {
    ObjectList* items = _List_GetData(obj);
    DropAll(items);
    delete items;
    SetDataItemData(obj, 1, 0, nullptr);
}

// The argument is only lent for the call: the stored item takes its own reference.
ZEL_EXPORT void List_AddItem(ZelObject* obj, ZelObject* item, int atEnd) {
    ObjectList* items = _List_GetData(obj);
    if (items) Store(*items, atEnd ? items->end() : items->begin(), item);
}

ZEL_EXPORT void List_InsertItem(ZelObject* obj, int position, ZelObject* item) {
    ObjectList* items = _List_GetData(obj);
    if (!items || position < 0 || position > Count(*items)) return;
    Store(*items, At(*items, position), item);
}

ZEL_EXPORT void List_RemoveItem(ZelObject* obj, int position) {
    ObjectList* items = _List_GetData(obj);
    if (!items || position < 0 || items->empty() || position >= Count(*items)) return;
    auto it = At(*items, position);
    Drop(*it);
    items->erase(it);
}

// Lent to the caller: no reference is taken.
ZEL_EXPORT ZelObject* List_GetItem(ZelObject* obj, int position) {
    ObjectList* items = _List_GetData(obj);
    if (!items || position < 0 || position >= Count(*items)) return nullptr;
    return *At(*items, position);
}

// The object replaced keeps the reference the list held on it, as designed.
ZEL_EXPORT void List_SetItem(ZelObject* obj, int position, ZelObject* item) {
    ObjectList* items = _List_GetData(obj);
    if (!items || position < 0) return;
    int count = Count(*items);
    if (position == count) return Store(*items, items->end(), item);
    if (position > count) return;
    ZelObject* clone = nullptr;
    SetCloneIntoObjectVar(&clone, item);
    *At(*items, position) = clone;
}

ZEL_EXPORT void List_Clear(ZelObject* obj) { DropAll(_List_GetData(obj)); }

ZEL_EXPORT int List_IsEmpty(ZelObject* obj) {
    ObjectList* items = _List_GetData(obj);
    return items && items->empty();
}

ZEL_EXPORT int List_GetCount(ZelObject* obj) {
    ObjectList* items = _List_GetData(obj);
    return items ? Count(*items) : -1;
}

// The items are not written to the stream; reading one back empties the list.
ZEL_EXPORT int List_SaveToStream(ZelObject*, ZelObject*) { return 1; }

ZEL_EXPORT int List_LoadFromStream(ZelObject* obj, ZelObject*) {
    List_Clear(obj);
    return 1;
}

using namespace zel;

static tagParamItem kAdd[] = {
    Param(L"项目", L"系统.对象", L"欲加入到列表中的项目"),
    Param(L"加到尾部", L"_b", L"欲加入到列表中的位置。真为加到尾部；假为加到头部"),
};
static tagParamItem kInsert[] = {
    Param(L"位置", L"_i", L"欲插入到列表中的位置"),
    Param(L"项目", L"系统.对象", L"欲插入到列表中的项目"),
};
static tagParamItem kRemove[] = {Param(L"位置", L"_i", L"欲删除项目的位置")};
static tagParamItem kGet[] = {Param(L"位置", L"_i", L"欲取项目的位置")};
static tagParamItem kSet[] = {
    Param(L"位置", L"_i", L"欲置项目的位置"),
    Param(L"项目", L"系统.对象", L"欲置入的项目"),
};

static tagMethodItem kMethods[] = {
    Method(L"加入项目", L"", kAdd, List_AddItem, L"加入指定项目到列表的尾部或头部"),
    Method(L"插入项目", L"", kInsert, List_InsertItem, L"插入指定项目到列表的指定位置"),
    Method(L"删除项目", L"", kRemove, List_RemoveItem, L"删除指定位置的项目"),
    Method(L"取项目", L"系统.对象", kGet, List_GetItem, L"取指定位置的项目"),
    Method(L"置项目", L"", kSet, List_SetItem, L"设置指定位置的项目"),
    Method(L"清空", L"", List_Clear, L"删除列表中的所有数据"),
    Method(L"是否为空", L"_b", List_IsEmpty, L"测试列表是否为空"),
    Method(L"取项目数", L"_i", List_GetCount, L"取列表中所有项目的数量。失败返回-1"),
    SerializeMethod(List_SaveToStream),
    UnserializeMethod(List_LoadFromStream),
};
static tagElementItem kElements[] = {HiddenState()};
ZEL_RECORD(tagTBaseTypeInfo, g_info_List) = ClassRecord(L"工具.列表", L"列表容器类", kMethods, kElements);
ZEL_REGISTER_CLASS(g_info_List);

// 工具.映射表: an ordered table from objects to objects. Keys and values are
// object nodes, so wrapped integers, doubles, logicals, texts and byte sets
// match by value and other objects by identity; each node holds a reference.
#include <map>

#include <zel/node.h>
#include <zel/no_memory.h>
#include <zel/class_table.h>
#include <zel/services.h>
#include <zel/values.h>

using NodeMap = std::map<CNode, CNode>;

ZEL_EXPORT NodeMap* _Map_GetData(ZelObject* obj) { return static_cast<NodeMap*>(GetDataItemData(obj, 1, 0)); }

static CNode ObjectNode(ZelObject* object) {
    CNode node;
    node.SetObject(object);
    return node;
}

// Keys equivalent in the node order are one key.
static bool Found(const NodeMap& map, NodeMap::const_iterator it, const CNode& key) {
    return it != map.end() && !(key < it->first);
}

// The entry of the key, added with an empty value when the key is new.
static NodeMap::iterator Entry(NodeMap& map, const CNode& key) {
    auto it = map.lower_bound(key);
    if (!Found(map, it, key)) it = map.emplace_hint(it, key, CNode());
    return it;
}

// Without memory for the state every method answers as for no table.
ZEL_EXPORT void Map_Init(ZelObject* obj) { SetDataItemData(obj, 1, 0, zel::NewOrNull<NodeMap>()); }

ZEL_EXPORT void Map_Free(ZelObject* obj) {
    delete _Map_GetData(obj);
    SetDataItemData(obj, 1, 0, nullptr);
}

// Looks the key up, adding it when absent, and hands nothing back: the value
// argument is never written, as designed. Without a table, or without
// memory for the new key, it returns 0.
ZEL_EXPORT int Map_GetValue(ZelObject* obj, ZelObject* key, ZelObject* value) {
    NodeMap* map = _Map_GetData(obj);
    if (!map) return 0;
    return zel::NeutralOnNoMemory(0, [&] {
        CNode entryValue(Entry(*map, ObjectNode(key))->second);
        if (ZelObject* unused = entryValue.GetObject()) zel::Release(unused);
        return 1;
    });
}

// Without memory the table stays as it was.
ZEL_EXPORT void Map_SetValue(ZelObject* obj, ZelObject* key, ZelObject* value) {
    NodeMap* map = _Map_GetData(obj);
    if (!map) return;
    zel::NeutralOnNoMemory([&] {
        CNode keyNode = ObjectNode(key);
        CNode valueNode = ObjectNode(value);
        auto it = map->lower_bound(keyNode);
        if (Found(*map, it, keyNode))
            it->second = valueNode;
        else
            map->emplace_hint(it, keyNode, valueNode);
    });
}

ZEL_EXPORT int Map_HasKey(ZelObject* obj, ZelObject* key) {
    NodeMap* map = _Map_GetData(obj);
    if (!map) return 0;
    return zel::NeutralOnNoMemory(0, [&] {
        CNode keyNode = ObjectNode(key);
        return int(Found(*map, map->lower_bound(keyNode), keyNode));
    });
}

// Declared "_b" though it yields the count, as it stands.
ZEL_EXPORT int Map_GetCount(ZelObject* obj) {
    NodeMap* map = _Map_GetData(obj);
    return map ? int(map->size()) : 0;
}

using namespace zel;

static tagParamItem kKeyValue[] = {Param(L"键", L"系统.对象"), Param(L"值", L"系统.对象")};
static tagParamItem kKey[] = {Param(L"键", L"系统.对象")};

static tagMethodItem kMethods[] = {
    Method(L"取键值", L"_b", kKeyValue, Map_GetValue),
    Method(L"置键值", L"", kKeyValue, Map_SetValue),
    Method(L"键是否存在", L"_b", kKey, Map_HasKey),
    Method(L"取个数", L"_b", Map_GetCount),
};
static tagElementItem kElements[] = {HiddenState()};
ZEL_RECORD(tagTBaseTypeInfo, g_info_Map) =
    ClassRecord(L"工具.映射表", L"本类描述一个映射表（Map）对象，其键和值均为对象。", kMethods, kElements);
ZEL_REGISTER_CLASS(g_info_Map);

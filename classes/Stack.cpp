// 工具.栈: a last-in, first-out stack of objects on a deque whose back is the
// top. It keeps the pointers exactly as pushed: no clone, no reference taken,
// none released.
#include <deque>

#include <zel/class_table.h>
#include <zel/no_memory.h>
#include <zel/values.h>

using ObjectDeque = std::deque<ZelObject*>;

ZEL_EXPORT ObjectDeque* _Stack_GetData(ZelObject* obj) { return static_cast<ObjectDeque*>(GetDataItemData(obj, 1, 0)); }

// Without memory for the state every method answers as for no stack.
ZEL_EXPORT void Stack_Init(ZelObject* obj) { SetDataItemData(obj, 1, 0, zel::NewOrNull<ObjectDeque>()); }

ZEL_EXPORT void Stack_Free(ZelObject* obj) {
    delete _Stack_GetData(obj);
    SetDataItemData(obj, 1, 0, nullptr);
}

// A shallow copy: the same pointers in the same order. A stack without a
// deque clones to an empty one; without memory there is no clone (null).
ZEL_EXPORT ObjectDeque* Stack_Clone(ZelObject* obj) {
    return zel::NeutralOnNoMemory<ObjectDeque*>(nullptr, [&] {
        ObjectDeque* items = _Stack_GetData(obj);
        return items ? new ObjectDeque(*items) : new ObjectDeque;
    });
}

// Without memory the stack stays as it was.
ZEL_EXPORT void Stack_Push(ZelObject* obj, ZelObject* item) {
    if (ObjectDeque* items = _Stack_GetData(obj)) zel::NeutralOnNoMemory([&] { items->push_back(item); });
}

// Popping an empty stack does nothing.
ZEL_EXPORT void Stack_Pop(ZelObject* obj) {
    ObjectDeque* items = _Stack_GetData(obj);
    if (items && !items->empty()) items->pop_back();
}

// An empty stack has no top: null.
ZEL_EXPORT ZelObject* Stack_Top(ZelObject* obj) {
    ObjectDeque* items = _Stack_GetData(obj);
    return items && !items->empty() ? items->back() : nullptr;
}

ZEL_EXPORT int Stack_IsEmpty(ZelObject* obj) {
    ObjectDeque* items = _Stack_GetData(obj);
    return items && items->empty();
}

ZEL_EXPORT int Stack_GetCount(ZelObject* obj) {
    ObjectDeque* items = _Stack_GetData(obj);
    return items ? int(items->size()) : -1;
}

// The stack cannot be stored: both directions report failure.
ZEL_EXPORT int Stack_SaveToStream(ZelObject*, ZelObject*) { return 0; }
ZEL_EXPORT int Stack_LoadFromStream(ZelObject*, ZelObject*) { return 0; }

using namespace zel;

static tagParamItem kPush[] = {Param(L"项目", L"系统.对象", L"欲加入到栈顶的项目")};

static tagMethodItem kMethods[] = {
    Method(L"加入", L"", kPush, Stack_Push, L"加入指定项目到栈的顶部"),
    Method(L"删除", L"", Stack_Pop, L"删除栈顶项目"),
    Method(L"取项目", L"系统.对象", Stack_Top, L"取栈顶项目"),
    Method(L"是否为空", L"_b", Stack_IsEmpty, L"测试栈是否为空"),
    Method(L"取项目数", L"_i", Stack_GetCount, L"取栈中所有项目的数量"),
    SerializeMethod(Stack_SaveToStream),
    UnserializeMethod(Stack_LoadFromStream),
};
static tagElementItem kElements[] = {HiddenState()};
ZEL_RECORD(tagTBaseTypeInfo, g_info_Stack) = ClassRecord(L"工具.栈", L"栈类", kMethods, kElements);
ZEL_REGISTER_CLASS(g_info_Stack);

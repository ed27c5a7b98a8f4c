// Objects: the words and level data blocks of a new object, and the Init and
// Free hooks of its levels.
#include <algorithm>
#include <cstdlib>

#include "host/handle_table.h"

namespace zelhost {
namespace {

// Runs the Init or Free hook of one level of an object; "" when it succeeded
// or the level has none, else how it failed.
std::string RunHook(const Level& lv, HookKind hook, ZelObject* obj) {
    if (!lv.cls || lv.cls->kind == ZEL_KIND_INTERFACE || !lv.cls->hooks[hook]) return "";
    CallResult r = CallFunction(lv.cls->hooks[hook], {L"系统.对象"}, {Value::Handle(VK::Object, obj)}, L"_i", false);
    if (r.ok) return "";
    return (r.raised ? "raised an exception: " : "failed: ") + r.error;
}

}  // namespace

void FreeObjectState(ZelObject* obj, HandleRec& rec) {
    ClassInfo* cls = rec.cls;
    std::vector<void*> blocks = rec.blocks;
    // Free hooks, derived first.
    for (size_t i = cls ? cls->levels.size() : 0; i-- > 0;) {
        std::string failure = RunHook(cls->levels[i], HOOK_FREE, obj);
        if (!failure.empty() && !g_tearingDown) AddReport(ToUtf8(cls->levels[i].cls->name) + " Free hook " + failure);
    }
    for (void* b : blocks) std::free(b);
}

ZelObject* NewObject(ClassInfo* cls, std::string* error) {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    if (!cls || cls->kind == ZEL_KIND_INTERFACE) {
        if (error) *error = "cannot create an object of an interface";
        return nullptr;
    }
    size_t n = cls->levels.size();
    size_t size = (2 + n) * sizeof(void*);
    void** words = static_cast<void**>(std::calloc(1, size));
    words[0] = words;
    words[1] = cls->chain.data();
    std::vector<void*> blocks;
    for (size_t i = 0; i < n; ++i) {
        int nw = std::max(cls->levels[i].words, 1);
        void* b = std::calloc(size_t(nw), 4);
        words[2 + i] = b;
        blocks.push_back(b);
    }
    HandleRec& rec = Track(words, H_OBJECT, size);
    rec.cls = cls;
    rec.id = NextObjectId();
    rec.blocks = blocks;
    rec.chain = words[1];
    rec.block0 = words[2];
    ZelObject* obj = reinterpret_cast<ZelObject*>(words);
    // Init hooks, base first.
    for (size_t i = 0; i < n; ++i) {
        std::string failure = RunHook(cls->levels[i], HOOK_INIT, obj);
        if (failure.empty()) continue;
        if (error) *error = ToUtf8(cls->levels[i].cls->name) + "_Init " + failure;
        return obj;  // still tracked; the statement frees it
    }
    return obj;
}

ClassInfo* ObjectClass(ZelObject* obj) {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    HandleRec* r = FindHandle(obj);
    return r && r->kind == H_OBJECT ? r->cls : nullptr;
}

int ObjectId(ZelObject* obj) {
    std::lock_guard<std::recursive_mutex> g(g_tableLock);
    HandleRec* r = FindHandle(obj);
    return r ? r->id : 0;
}

}  // namespace zelhost

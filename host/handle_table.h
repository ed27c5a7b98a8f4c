// The handle table, shared by handles.cpp, objects.cpp and the services in
// runtime.cpp (hidden in 系统.ncl).
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "host/host_internal.h"

namespace zelhost {

enum HKind { H_TEXT, H_BIN, H_OBJECT, H_BLOCK };

struct HandleRec {
    HKind kind = H_TEXT;
    int refs = 0;
    bool dead = false;
    bool byLibrary = false;  // made through a service
    long statement = 0;      // statement that made it (0: none)
    long serial = 0;         // creation order
    std::string where;
    std::string preview;  // content shown in findings, kept when the handle dies
    ClassInfo* cls = nullptr;
    int id = 0;
    size_t size = 0;                  // bytes of the handle block (for poisoning)
    std::vector<void*> blocks;        // object: its level data blocks
    void* chain = nullptr;            // object: word 1
    void* block0 = nullptr;           // object: word 2
};

extern std::recursive_mutex g_tableLock;  // guards the handle table and the reports
extern bool g_tearingDown;                // the audit is freeing everything: nothing more is reported

// Records a new handle made by the current statement (handles.cpp).
HandleRec& Track(void* p, HKind kind, size_t size);
// The record of exactly this handle, live or dead; null when the host never made it.
HandleRec* FindHandle(void* p);
int NextObjectId();  // 1, 2, ... until the audit resets the table

// While one lives, new handles count as made by a library (through a service).
struct ServiceScope {
    ServiceScope();
    ~ServiceScope();
};
void RegisterConstBlock(void* block);  // service 2
void* TakeOverBlock(void* block);      // memory service 1

// Runs the Free hooks of a dying object and frees its data blocks (objects.cpp).
void FreeObjectState(ZelObject* obj, HandleRec& rec);

// Prints and keeps an error report (runtime.cpp).
void AddReport(const std::string& text);

}  // namespace zelhost

// Runtime-visible memory, the owning wrappers of runtime handles, and clones.
#pragma once

#include <cstddef>

#include <zel/zel_types.h>

class CMiniMem;

ZEL_API void* zel_malloc(int size);
ZEL_API void* zel_realloc(void* p, int size);
ZEL_API void zel_free(void* p);

namespace zel {
// Test hooks. Every allocation of the library passes AllocationFails, so a
// test can make the Nth following one fail (1 = the next one; 0 turns it off).
void FailAllocationAfter(int n);
// Allocations left before the injected failure; 0 when none is pending.
int AllocationCountdown();
// Counts one allocation made for `site` (the caller's address); true when it
// is the one to fail.
bool AllocationFails(const void* site);
// Calls `watch` with the site of every allocation counted from now on (null: stop).
void WatchAllocations(void (*watch)(const void* site));
}  // namespace zel

class ZEL_API ZelMallocer {
public:
    ZelMallocer();
    explicit ZelMallocer(int size);
    ~ZelMallocer();
    void Atach(void* p, int size);
    void* Detach();
    void* GetData();
    operator void*();
    int GetSize();

private:
    void* m_data;
    int m_size;
};

class ZEL_API ZelDataWrapper {
public:
    ZelDataWrapper();
    explicit ZelDataWrapper(void* handle);
    virtual ~ZelDataWrapper();
    void* GetData();
    void* Detach();
    void Atach(void* handle);
    void AddRef();

protected:
    void* m_handle;
};

class ZEL_API ZelTextWrapper : public ZelDataWrapper {
public:
    explicit ZelTextWrapper(unsigned char* text);
    explicit ZelTextWrapper(wchar_t* s);
    wchar_t* GetText();
    operator wchar_t*();
};

class ZEL_API ZelBinWrapper : public ZelDataWrapper {
public:
    ZelBinWrapper(void* data, int len);
    explicit ZelBinWrapper(int len);
    unsigned char* GetCData(int* len);
    int GetCDataLength();
};

class ZEL_API ZelObjectWrapper : public ZelDataWrapper {
public:
    explicit ZelObjectWrapper(wchar_t* className);
    operator ZelObject*();
};

ZEL_API wchar_t* MCloneText(wchar_t* s, int n);
ZEL_API wchar_t* MCloneText(wchar_t* s);
ZEL_API wchar_t* MCloneText(char* s);
ZEL_API unsigned char* MCloneZelText(wchar_t* s, int n);
ZEL_API unsigned char* MCloneZelText(wchar_t* s);
ZEL_API unsigned char* MCloneZelText(unsigned char* text);
ZEL_API unsigned char* MCloneZelText(char* s);
ZEL_API wchar_t* MCloneZelTextToString(unsigned char* text);
ZEL_API unsigned char* MCloneZelBin(void* data, int len);
ZEL_API unsigned char* MCloneZelBin(unsigned char* bin);
ZEL_API int* MCloneArray(int* ary, DATATYPE_TYPE type);
ZEL_API char* GetMBSText(wchar_t* s, CMiniMem& buf);

ZEL_API void SetCloneIntoTextVar(unsigned char** var, unsigned char* v);
ZEL_API void SetCloneIntoBinVar(unsigned char** var, unsigned char* v);
ZEL_API void SetCloneIntoArrayVar(int** var, int* v);
ZEL_API void SetCloneIntoObjectVar(ZelObject** var, ZelObject* v);

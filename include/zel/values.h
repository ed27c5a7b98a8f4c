// Reading and writing the runtime's value encodings: object data blocks,
// ZelText, ZelBin, ZelArray, and the type codes of type strings.
#pragma once

#include <zel/zel_types.h>

class CMString;

// The shared block of empty constants (44 bytes).
struct ZelEmptyConst {
    int size;                 // 44
    void* next;               // chain links, filled by the runtime
    void* next2;
    ZelLibInfo* library;      // stored by ZelNotifyLib
    wchar_t emptyString[1];   // the empty wide string
    int emptyText[3];         // ZelText: 0, 0, terminator
    int emptyBin[3];          // ZelBin: 0, 1, 0
};
static_assert(sizeof(ZelEmptyConst) == 44);
static_assert(offsetof(ZelEmptyConst, emptyText) == 20);
static_assert(offsetof(ZelEmptyConst, emptyBin) == 32);

extern "C" ZEL_API ZelEmptyConst g_EmptyConst;
extern "C" ZEL_API wchar_t* zelTrueLiteral;
extern "C" ZEL_API wchar_t* zelFalseLiteral;

namespace zel {
inline wchar_t* EmptyString() { return g_EmptyConst.emptyString; }
inline unsigned char* EmptyText() { return reinterpret_cast<unsigned char*>(g_EmptyConst.emptyText); }
inline unsigned char* EmptyBin() { return reinterpret_cast<unsigned char*>(g_EmptyConst.emptyBin); }
// The characters of a ZelText (word 2), or null for a null handle.
inline wchar_t* TextChars(unsigned char* text) {
    return text ? reinterpret_cast<wchar_t*>(text + 8) : nullptr;
}
}  // namespace zel

// Object data.
ZEL_API void* GetDataItemData(ZelObject* obj, int level, int index);
ZEL_API void SetDataItemData(ZelObject* obj, int level, int index, void* value);
ZEL_API double GetDoubleDataItem(ZelObject* obj, int level, int index);
ZEL_API void SetDoubleDataItem(ZelObject* obj, int level, int index, double value);
ZEL_API int GetIntByIndex(void* p, int i);
ZEL_API void SetIntByIndex(void* p, int i, int v);
ZEL_API void* GetPointerByIntIndex(void* p, int i);
extern "C" ZEL_API void* _DataObject_GetData(ZelObject* obj);

// Values.
ZEL_API int MGetZelBinLength(unsigned char* bin);
ZEL_API unsigned char* MGetZelBinData(unsigned char* bin);
ZEL_API unsigned char* GetBinData(unsigned char* bin, int* len);
ZEL_API bool IsEmptyBin(unsigned char* bin);
ZEL_API bool IsEmptyZelText(unsigned char* text);
ZEL_API bool IsEmptyZelArray(int* ary);
ZEL_API int GetZelArrayDim(int* ary);
ZEL_API int MGetAryElementCount(int* ary, void** data);
ZEL_API int GetZelArraySize(int* ary);
ZEL_API void* GetZelArrayData(int* ary, int* count);

// Types.
ZEL_API int MGetDataTypeSize(DATATYPE_TYPE type);
ZEL_API int MGetAryElementDataTypeSize(DATATYPE_TYPE type);
ZEL_API int MGetDataTypeSize(wchar_t* type, unsigned int hash);
ZEL_API DATATYPE_TYPE MGetDataTypeType(wchar_t* type, unsigned int hash);
ZEL_API wchar_t* MGetPureDataType(wchar_t* type, int* isArray);
ZEL_API bool IsCmbDataType(wchar_t* type);
ZEL_API const wchar_t* MGetDataTypeTypeShowName(DATATYPE_TYPE type);
ZEL_API void MGetDataTypeShowNameString(CMString& out, wchar_t* type, unsigned int hash);
ZEL_API void FillBaseTypeInfo(DATATYPE_TYPE type, tagZelDataTypeInfo* info);

// True when p lies inside a registered constant block (this library's own,
// and the blocks the runtime chained to it).
ZEL_API bool IsConstData(void* p);
namespace zel {
// The constant block holding p, or null.
void* ConstBlockOf(void* p);
}  // namespace zel

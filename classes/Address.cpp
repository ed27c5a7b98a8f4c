// 工具.地址: a raw memory address, taken from the storage of a runtime value.
// The class has no Init hook, so its one data word holds the address itself
// (a new object is the null address 0) rather than a pointer to state.
// What is and is not checked is told in docs/classes/raw-memory.md.
#include <cstdint>
#include <cwchar>

#include <zel/class_table.h>
#include <zel/services.h>
#include <zel/values.h>

static uint32_t AddressOf(ZelObject* obj) {
    return obj ? uint32_t(reinterpret_cast<uintptr_t>(GetDataItemData(obj, 1, 0))) : 0;
}
static void SetAddress(ZelObject* obj, uint32_t address) {
    SetDataItemData(obj, 1, 0, reinterpret_cast<void*>(uintptr_t(address)));
}
static void SetAddress(ZelObject* obj, const void* p) { SetAddress(obj, uint32_t(reinterpret_cast<uintptr_t>(p))); }

// The first element of an array, or null when it has none to point at.
static void* FirstElement(int* array) {
    void* data = nullptr;
    return MGetAryElementCount(array, &data) > 0 ? data : nullptr;
}

ZEL_EXPORT void Address_Free(ZelObject* obj) { SetAddress(obj, 0u); }

ZEL_EXPORT unsigned char* Address_ToString(ZelObject* obj) {
    wchar_t buf[16];
    swprintf(buf, 16, L"0x%08x", unsigned(AddressOf(obj)));
    return zel::NewText(buf);
}

ZEL_EXPORT int Address_GetValue(ZelObject* obj) { return int(AddressOf(obj)); }
ZEL_EXPORT void Address_SetValue(ZelObject* obj, int value) { SetAddress(obj, uint32_t(value)); }

// A text's characters; the empty text still has its terminator to point at.
ZEL_EXPORT void Address_FromText(ZelObject* obj, unsigned char* text) { SetAddress(obj, zel::TextChars(text)); }

// A byte set's bytes; an empty one has none, so it gives the null address.
ZEL_EXPORT void Address_FromBin(ZelObject* obj, unsigned char* bin) {
    SetAddress(obj, MGetZelBinLength(bin) > 0 ? MGetZelBinData(bin) : nullptr);
}

ZEL_EXPORT void Address_FromIntArray(ZelObject* obj, int* array) { SetAddress(obj, FirstElement(array)); }
ZEL_EXPORT void Address_FromDoubleArray(ZelObject* obj, int* array) { SetAddress(obj, FirstElement(array)); }
ZEL_EXPORT void Address_FromTextArray(ZelObject* obj, int* array) { SetAddress(obj, FirstElement(array)); }
ZEL_EXPORT void Address_FromBinArray(ZelObject* obj, int* array) { SetAddress(obj, FirstElement(array)); }

ZEL_EXPORT int Address_IsNull(ZelObject* obj) { return AddressOf(obj) == 0; }

// A null address object compares as the null address.
ZEL_EXPORT int Address_Equals(ZelObject* obj, ZelObject* other) { return AddressOf(obj) == AddressOf(other); }

// Addresses order as unsigned numbers: -1, 0 or 1.
ZEL_EXPORT int Address_Compare(ZelObject* obj, ZelObject* other) {
    uint32_t a = AddressOf(obj), b = AddressOf(other);
    return a < b ? -1 : a > b ? 1 : 0;
}

// Address arithmetic wraps around at 32 bits.
ZEL_EXPORT void Address_Offset(ZelObject* obj, int bytes) { SetAddress(obj, AddressOf(obj) + uint32_t(bytes)); }
ZEL_EXPORT int Address_Distance(ZelObject* obj, ZelObject* other) { return int(AddressOf(other) - AddressOf(obj)); }

using namespace zel;

static tagParamItem kValue[] = {Param(L"值", L"_i", L"地址的整数值，0为空地址")};
static tagParamItem kText[] = {Param(L"文本", L"_s", L"取其字符所在的地址")};
static tagParamItem kBin[] = {Param(L"字节集", L"_bn", L"取其字节所在的地址")};
static tagParamItem kIntArray[] = {Param(L"数组", L"@_i", L"取其首个成员所在的地址")};
static tagParamItem kDoubleArray[] = {Param(L"数组", L"@_db", L"取其首个成员所在的地址")};
static tagParamItem kTextArray[] = {Param(L"数组", L"@_s", L"取其首个成员所在的地址")};
static tagParamItem kBinArray[] = {Param(L"数组", L"@_bn", L"取其首个成员所在的地址")};
static tagParamItem kOther[] = {Param(L"地址", L"工具.地址", L"另一个地址")};
static tagParamItem kBytes[] = {Param(L"字节数", L"_i", L"可为负数")};

static tagMethodItem kMethods[] = {
    Getter(L"值", L"_i", Address_GetValue, L"地址的整数值"),
    Setter(L"值", kValue, Address_SetValue, L"以整数值作为地址"),
    Method(L"置为文本地址", L"", kText, Address_FromText, L"指向文本的字符"),
    Method(L"置为字节集地址", L"", kBin, Address_FromBin, L"指向字节集的字节，空字节集为空地址"),
    Method(L"置为整数数组地址", L"", kIntArray, Address_FromIntArray, L"指向整数数组的首个成员"),
    Method(L"置为小数数组地址", L"", kDoubleArray, Address_FromDoubleArray, L"指向小数数组的首个成员"),
    Method(L"置为文本数组地址", L"", kTextArray, Address_FromTextArray, L"指向文本数组的首个成员"),
    Method(L"置为字节集数组地址", L"", kBinArray, Address_FromBinArray, L"指向字节集数组的首个成员"),
    Method(L"是否为空", L"_b", Address_IsNull, L"是否为空地址"),
    Method(L"等于", L"_b", kOther, Address_Equals, L"两个地址是否相同"),
    Method(L"比较", L"_i", kOther, Address_Compare, L"小于、等于、大于另一个地址时分别返回-1、0、1"),
    Method(L"偏移", L"", kBytes, Address_Offset, L"将地址移动若干字节"),
    Method(L"取距离", L"_i", kOther, Address_Distance, L"另一个地址减去本地址的字节数"),
};
static_assert(sizeof(kMethods) / sizeof(kMethods[0]) == 13);

static tagElementItem kElements[] = {HiddenState()};

ZEL_RECORD(tagTBaseTypeInfo, g_info_Address) = ClassRecord(L"工具.地址", L"地址类", kMethods, kElements);
ZEL_REGISTER_CLASS(g_info_Address);

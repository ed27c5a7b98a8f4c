// 工具.字节集类: a byte set boxed in an object. The object holds a private
// copy of the last byte set assigned to it (header and bytes, ZelBin layout)
// and releases it when it is reassigned or freed.
#include <cstring>
#include <new>

#include <zel/class_table.h>
#include <zel/services.h>
#include <zel/values.h>

static unsigned char* HeldBin(ZelObject* obj) { return static_cast<unsigned char*>(GetDataItemData(obj, 1, 0)); }

ZEL_EXPORT void BinClass_Init(ZelObject* obj) { SetDataItemData(obj, 1, 0, nullptr); }

ZEL_EXPORT void BinClass_Free(ZelObject* obj) {
    delete[] HeldBin(obj);
    SetDataItemData(obj, 1, 0, nullptr);
}

// The runtime counts only handles it made: hand it a new byte set of the held
// bytes. Until a byte set is stored there is none: null.
ZEL_EXPORT unsigned char* BinClass_GetValue(ZelObject* obj) {
    unsigned char* held = HeldBin(obj);
    return held ? zel::NewBin(MGetZelBinData(held), MGetZelBinLength(held)) : nullptr;
}

// A null or malformed (negative length) argument, or a failed allocation,
// leaves the held copy as it was.
ZEL_EXPORT void BinClass_SetValue(ZelObject* obj, unsigned char* value) {
    int length = MGetZelBinLength(value);
    if (!value || length < 0) return;
    auto* copy = new (std::nothrow) unsigned char[std::size_t(length) + 12];
    if (!copy) return;
    std::memcpy(copy, value, std::size_t(length) + 12);
    delete[] HeldBin(obj);
    SetDataItemData(obj, 1, 0, copy);
}

ZEL_EXPORT int BinClass_GetLength(ZelObject* obj) { return MGetZelBinLength(HeldBin(obj)); }

using namespace zel;

static tagParamItem kValue[] = {Param(L"值", L"_bn")};
static tagMethodItem kMethods[] = {
    Getter(L"字节集", L"_bn", BinClass_GetValue),
    Setter(L"字节集", kValue, BinClass_SetValue),
    Method(L"取数据长度", L"_i", BinClass_GetLength, L"取字节集数据的长度"),
};
static tagElementItem kElements[] = {HiddenState()};
ZEL_RECORD(tagTBaseTypeInfo, g_info_BinClass) = ClassRecord(L"工具.字节集类", L"字节集型的包装类", kMethods, kElements);
ZEL_REGISTER_CLASS(g_info_BinClass);

// 工具.指针: a typed cursor over raw memory. Its two data words are the
// address it points at (0 = null) and the step in bytes by which 前进 and
// 后退 move it; both start at 0, as the class has no Init hook.
// Memory access is trusted: a null address reads 0 and writes nothing, and
// nothing else is checked (docs/classes/raw-memory.md).
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <string>

#include <zel/class_table.h>
#include <zel/no_memory.h>
#include <zel/services.h>
#include <zel/values.h>

namespace {

uint32_t AddressOf(ZelObject* obj) { return uint32_t(reinterpret_cast<uintptr_t>(GetDataItemData(obj, 1, 0))); }
int StepOf(ZelObject* obj) { return int(reinterpret_cast<intptr_t>(GetDataItemData(obj, 1, 1))); }
void SetAddress(ZelObject* obj, uint32_t address) {
    SetDataItemData(obj, 1, 0, reinterpret_cast<void*>(uintptr_t(address)));
}
void* Target(ZelObject* obj) { return reinterpret_cast<void*>(uintptr_t(AddressOf(obj))); }

// Copies go through memcpy: the address need not be aligned for the width.
template <typename T>
T Load(ZelObject* obj) {
    T value{};
    if (void* p = Target(obj)) std::memcpy(&value, p, sizeof value);
    return value;
}
template <typename T>
void Store(ZelObject* obj, T value) {
    if (void* p = Target(obj)) std::memcpy(p, &value, sizeof value);
}

}  // namespace

ZEL_EXPORT void Pointer_Free(ZelObject* obj) {
    SetDataItemData(obj, 1, 0, nullptr);
    SetDataItemData(obj, 1, 1, nullptr);
}

ZEL_EXPORT int Pointer_GetAddress(ZelObject* obj) { return int(AddressOf(obj)); }
ZEL_EXPORT void Pointer_SetAddress(ZelObject* obj, int value) { SetAddress(obj, uint32_t(value)); }
ZEL_EXPORT int Pointer_GetStep(ZelObject* obj) { return StepOf(obj); }
ZEL_EXPORT void Pointer_SetStep(ZelObject* obj, int value) {
    SetDataItemData(obj, 1, 1, reinterpret_cast<void*>(intptr_t(value)));
}

// Takes the address held by a 工具.地址 object (its one data word); a null
// object gives the null address.
ZEL_EXPORT void Pointer_PointTo(ZelObject* obj, ZelObject* address) {
    SetAddress(obj, address ? uint32_t(reinterpret_cast<uintptr_t>(GetDataItemData(address, 1, 0))) : 0);
}

// Moves wrap around at 32 bits, like the machine's own address arithmetic.
ZEL_EXPORT void Pointer_Forward(ZelObject* obj) { SetAddress(obj, AddressOf(obj) + uint32_t(StepOf(obj))); }
ZEL_EXPORT void Pointer_Back(ZelObject* obj) { SetAddress(obj, AddressOf(obj) - uint32_t(StepOf(obj))); }
ZEL_EXPORT void Pointer_Move(ZelObject* obj, int steps) {
    SetAddress(obj, AddressOf(obj) + uint32_t(steps) * uint32_t(StepOf(obj)));
}
ZEL_EXPORT int Pointer_IsNull(ZelObject* obj) { return AddressOf(obj) == 0; }

// Bytes read unsigned (0 to 255), shorts signed; writes keep the low bits.
ZEL_EXPORT int Pointer_GetByte(ZelObject* obj) { return Load<uint8_t>(obj); }
ZEL_EXPORT void Pointer_SetByte(ZelObject* obj, int value) { Store(obj, uint8_t(value)); }
ZEL_EXPORT int Pointer_GetShort(ZelObject* obj) { return Load<int16_t>(obj); }
ZEL_EXPORT void Pointer_SetShort(ZelObject* obj, int value) { Store(obj, int16_t(value)); }
ZEL_EXPORT int Pointer_GetInt(ZelObject* obj) { return Load<int32_t>(obj); }
ZEL_EXPORT void Pointer_SetInt(ZelObject* obj, int value) { Store(obj, int32_t(value)); }
ZEL_EXPORT double Pointer_GetFloat(ZelObject* obj) { return Load<float>(obj); }
ZEL_EXPORT void Pointer_SetFloat(ZelObject* obj, double value) { Store(obj, float(value)); }
ZEL_EXPORT double Pointer_GetDouble(ZelObject* obj) { return Load<double>(obj); }
ZEL_EXPORT void Pointer_SetDouble(ZelObject* obj, double value) { Store(obj, value); }

ZEL_EXPORT unsigned char* Pointer_ReadBin(ZelObject* obj, int length) {
    void* p = Target(obj);
    return p && length > 0 ? zel::NewBin(p, length) : zel::EmptyBin();
}

ZEL_EXPORT void Pointer_WriteBin(ZelObject* obj, unsigned char* bin) {
    void* p = Target(obj);
    int length = MGetZelBinLength(bin);
    if (p && length > 0) std::memcpy(p, MGetZelBinData(bin), size_t(length));
}

// Reads at most `count` wide characters, stopping early at a zero unit.
ZEL_EXPORT unsigned char* Pointer_ReadText(ZelObject* obj, int count) {
    auto* p = static_cast<const wchar_t*>(Target(obj));
    if (!p || count <= 0) return zel::EmptyText();
    return zel::NeutralOnNoMemory(zel::EmptyText(), [p, count] {
        std::wstring text(p, wcsnlen(p, size_t(count)));
        return text.empty() ? zel::EmptyText() : zel::NewText(text.c_str());
    });
}

// Writes the characters and their terminator; a null text writes nothing.
ZEL_EXPORT void Pointer_WriteText(ZelObject* obj, unsigned char* text) {
    void* p = Target(obj);
    const wchar_t* chars = zel::TextChars(text);
    if (p && chars) std::memcpy(p, chars, (wcslen(chars) + 1) * sizeof(wchar_t));
}

ZEL_EXPORT void Pointer_Fill(ZelObject* obj, int value, int length) {
    void* p = Target(obj);
    if (p && length > 0) std::memset(p, value & 0xff, size_t(length));
}

using namespace zel;

static tagParamItem kAddress[] = {Param(L"值", L"_i", L"地址的整数值，0为空地址")};
static tagParamItem kStep[] = {Param(L"值", L"_i", L"前进或后退一步的字节数")};
static tagParamItem kInt[] = {Param(L"值", L"_i")};
static tagParamItem kDouble[] = {Param(L"值", L"_db")};
static tagParamItem kTarget[] = {Param(L"地址", L"工具.地址", L"要指向的地址")};
static tagParamItem kSteps[] = {Param(L"步数", L"_i", L"正数前进，负数后退")};
static tagParamItem kLength[] = {Param(L"长度", L"_i", L"字节数")};
static tagParamItem kBin[] = {Param(L"字节集", L"_bn")};
static tagParamItem kCount[] = {Param(L"字符数", L"_i", L"最多读取的字符数")};
static tagParamItem kText[] = {Param(L"文本", L"_s")};
static tagParamItem kFill[] = {Param(L"值", L"_i", L"每个字节的值"), Param(L"长度", L"_i", L"字节数")};

static tagMethodItem kMethods[] = {
    Getter(L"地址", L"_i", Pointer_GetAddress, L"所指向的地址"),
    Setter(L"地址", kAddress, Pointer_SetAddress, L"以整数值作为所指向的地址"),
    Getter(L"步长", L"_i", Pointer_GetStep, L"每一步的字节数"),
    Setter(L"步长", kStep, Pointer_SetStep, L"设置每一步的字节数"),
    Getter(L"字节", L"_i", Pointer_GetByte, L"读取所指向的字节（0到255）"),
    Setter(L"字节", kInt, Pointer_SetByte, L"写入一个字节"),
    Getter(L"短整数", L"_i", Pointer_GetShort, L"读取所指向的16位有符号整数"),
    Setter(L"短整数", kInt, Pointer_SetShort, L"写入一个16位整数"),
    Getter(L"整数", L"_i", Pointer_GetInt, L"读取所指向的32位整数"),
    Setter(L"整数", kInt, Pointer_SetInt, L"写入一个32位整数"),
    Getter(L"单精度数", L"_db", Pointer_GetFloat, L"读取所指向的单精度小数"),
    Setter(L"单精度数", kDouble, Pointer_SetFloat, L"写入一个单精度小数"),
    Getter(L"双精度数", L"_db", Pointer_GetDouble, L"读取所指向的双精度小数"),
    Setter(L"双精度数", kDouble, Pointer_SetDouble, L"写入一个双精度小数"),
    Method(L"指向", L"", kTarget, Pointer_PointTo, L"指向地址对象所持有的地址"),
    Method(L"前进", L"", Pointer_Forward, L"向高地址移动一个步长"),
    Method(L"后退", L"", Pointer_Back, L"向低地址移动一个步长"),
    Method(L"移动", L"", kSteps, Pointer_Move, L"移动若干个步长"),
    Method(L"是否为空", L"_b", Pointer_IsNull, L"是否指向空地址"),
    Method(L"读字节集", L"_bn", kLength, Pointer_ReadBin, L"读取若干字节"),
    Method(L"写字节集", L"", kBin, Pointer_WriteBin, L"写入字节集的全部字节"),
    Method(L"读文本", L"_s", kCount, Pointer_ReadText, L"读取以0结尾的文本，最多读取字符数个字符"),
    Method(L"写文本", L"", kText, Pointer_WriteText, L"写入文本的字符及结尾的0"),
    Method(L"填充", L"", kFill, Pointer_Fill, L"将若干字节置为同一个值"),
};
static_assert(sizeof(kMethods) / sizeof(kMethods[0]) == 24);

static tagElementItem kElements[] = {
    Element(L"地址", L"_i", ZEL_ELEMENT_HIDDEN),
    Element(L"步长", L"_i", ZEL_ELEMENT_HIDDEN),
};

ZEL_RECORD(tagTBaseTypeInfo, g_info_Pointer) =
    ClassRecord(L"工具.指针", L"指针类", kMethods, kElements, L"系统.对象", 0x20000001u);
ZEL_REGISTER_CLASS(g_info_Pointer);

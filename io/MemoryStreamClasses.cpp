// 工具.内存流, 工具.内存输入流 and 工具.内存输出流: a CMemoryStream in the
// hidden word, served through the system's stream interfaces 系统.输入流 and
// 系统.输出流 (six slots each, the stream object first).
#include "io/MemoryStream.h"
#include <zel/class_table.h>
#include <zel/no_memory.h>
#include <zel/services.h>
#include <zel/values.h>

// The stream is the hidden word of the class's own level (level 1, item 0).
// The slots run once per value, so they read it in place, without a call.
static inline CMemoryStream* StreamOf(ZelObject* obj) {
    return obj ? static_cast<CMemoryStream*>(ZelLevelBlock(obj, 1)[0]) : nullptr;
}

ZEL_EXPORT CMemoryStream* _MemoryStream_GetData(ZelObject* obj) { return StreamOf(obj); }

static void InitStream(ZelObject* obj) { SetDataItemData(obj, 1, 0, zel::NewOrNull<CMemoryStream>()); }

static void FreeStream(ZelObject* obj) {
    if (CMemoryStream* stream = _MemoryStream_GetData(obj)) {
        stream->Free();
        delete stream;
        SetDataItemData(obj, 1, 0, nullptr);
    }
}

ZEL_EXPORT void MemoryStream_Init(ZelObject* obj) { InitStream(obj); }
ZEL_EXPORT void MemoryStream_Free(ZelObject* obj) { FreeStream(obj); }
ZEL_EXPORT void MemoryIStream_Init(ZelObject* obj) { InitStream(obj); }
ZEL_EXPORT void MemoryIStream_Free(ZelObject* obj) { FreeStream(obj); }
ZEL_EXPORT void MemoryOStream_Init(ZelObject* obj) { InitStream(obj); }
ZEL_EXPORT void MemoryOStream_Free(ZelObject* obj) { FreeStream(obj); }

// ---------------------------------------------------------------- methods

ZEL_EXPORT int MemoryStream_GetLength(ZelObject* obj) {
    CMemoryStream* stream = _MemoryStream_GetData(obj);
    return stream ? stream->GetLength() : 0;
}

ZEL_EXPORT unsigned char* MemoryStream_GetBytes(ZelObject* obj) {
    CMemoryStream* stream = _MemoryStream_GetData(obj);
    if (!stream || stream->GetLength() == 0) return zel::EmptyBin();
    return zel::NewBin(stream->GetData(), stream->GetLength());
}

ZEL_EXPORT int MemoryStream_InitData(ZelObject* obj, unsigned char* bin) {
    CMemoryStream* stream = _MemoryStream_GetData(obj);
    if (stream) stream->InitData(MGetZelBinData(bin), MGetZelBinLength(bin));
    return 1;
}

// ---------------------------------------------------------------- interface slots

// Without a stream the reads give their sentinels and the writes do nothing.
static int ReadIntSlot(ZelObject* obj) {
    CMemoryStream* stream = StreamOf(obj);
    return stream ? stream->ReadInt() : -1;
}
static double ReadDoubleSlot(ZelObject* obj) {
    CMemoryStream* stream = StreamOf(obj);
    return stream ? stream->ReadDouble() : -1.0;
}
static int ReadBoolSlot(ZelObject* obj) {
    CMemoryStream* stream = StreamOf(obj);
    return stream ? stream->ReadBool() : 0;
}
static unsigned char* ReadTextSlot(ZelObject* obj) {
    CMemoryStream* stream = StreamOf(obj);
    return stream ? stream->ReadText() : zel::NewText(L"");
}
static unsigned char* ReadBinSlot(ZelObject* obj) {
    CMemoryStream* stream = StreamOf(obj);
    return stream ? stream->ReadBin() : zel::EmptyBin();
}
static int WriteIntSlot(ZelObject* obj, int v) {
    CMemoryStream* stream = StreamOf(obj);
    return stream ? stream->WriteInt(v) : 0;
}
static int WriteDoubleSlot(ZelObject* obj, double v) {
    CMemoryStream* stream = StreamOf(obj);
    return stream ? stream->WriteDouble(v) : 0;
}
static int WriteBoolSlot(ZelObject* obj, int v) {
    CMemoryStream* stream = StreamOf(obj);
    return stream ? stream->WriteBool(v) : 0;
}
static int WriteTextSlot(ZelObject* obj, unsigned char* text) {
    CMemoryStream* stream = StreamOf(obj);
    return stream ? stream->WriteText(zel::TextChars(text)) : 0;
}
static int WriteBinSlot(ZelObject* obj, unsigned char* bin) {
    CMemoryStream* stream = StreamOf(obj);
    return stream ? stream->WriteBin(bin) : 0;
}
static int NothingSlot(ZelObject*) { return 0; }

// ---------------------------------------------------------------- records

using namespace zel;

static void* kInputSlots[] = {
    Fn2Ptr(ReadIntSlot),  Fn2Ptr(ReadDoubleSlot), Fn2Ptr(ReadBoolSlot),
    Fn2Ptr(ReadTextSlot), Fn2Ptr(ReadBinSlot),    Fn2Ptr(NothingSlot),
};
static void* kOutputSlots[] = {
    Fn2Ptr(WriteIntSlot),  Fn2Ptr(WriteDoubleSlot), Fn2Ptr(WriteBoolSlot),
    Fn2Ptr(WriteTextSlot), Fn2Ptr(WriteBinSlot),    Fn2Ptr(NothingSlot),
};

static tagParamItem kInitData[] = {Param(L"欲初始化的字节集数据", L"_bn")};

static tagMethodItem kStreamMethods[] = {
    Method(L"取长度", L"_i", MemoryStream_GetLength, L"取流的数据长度"),
    Method(L"取数据", L"_bn", MemoryStream_GetBytes, L"取流的数据"),
    Method(L"初始化数据", L"_b", kInitData, MemoryStream_InitData),
};
static tagMethodItem kIStreamMethods[] = {
    Method(L"初始化数据", L"_b", kInitData, MemoryStream_InitData),
};
static tagMethodItem kOStreamMethods[] = {
    Method(L"取长度", L"_i", MemoryStream_GetLength, L"取流的数据长度"),
    Method(L"取数据", L"_bn", MemoryStream_GetBytes, L"取流的数据"),
};

static tagElementItem kStreamElements[] = {HiddenState()};
static tagElementItem kIStreamElements[] = {HiddenState()};
static tagElementItem kOStreamElements[] = {HiddenState()};

static tagInterfaceEntry kStreamInterfaces[] = {
    Interface(L"系统.输入流", kInputSlots),
    Interface(L"系统.输出流", kOutputSlots),
};
static tagInterfaceEntry kIStreamInterfaces[] = {Interface(L"系统.输入流", kInputSlots)};
static tagInterfaceEntry kOStreamInterfaces[] = {Interface(L"系统.输出流", kOutputSlots)};

ZEL_RECORD(tagTBaseTypeInfo, g_info_MemoryStream) = WithInterfaces(
    ClassRecord(L"工具.内存流", L"基于内存的输入输出流", kStreamMethods, kStreamElements), kStreamInterfaces);
ZEL_RECORD(tagTBaseTypeInfo, g_info_MemoryIStream) = WithInterfaces(
    ClassRecord(L"工具.内存输入流", L"基于内存的输入流", kIStreamMethods, kIStreamElements), kIStreamInterfaces);
ZEL_RECORD(tagTBaseTypeInfo, g_info_MemoryOStream) = WithInterfaces(
    ClassRecord(L"工具.内存输出流", L"基于内存的输出流", kOStreamMethods, kOStreamElements), kOStreamInterfaces);

ZEL_REGISTER_CLASS(g_info_MemoryStream);
ZEL_REGISTER_CLASS(g_info_MemoryIStream);
ZEL_REGISTER_CLASS(g_info_MemoryOStream);

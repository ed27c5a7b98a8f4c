#include <zel/values.h>

#include <cstring>

#include <zel/services.h>
#include <zel/mstring.h>
#include <zel/textfuncs.h>

ZelEmptyConst g_EmptyConst = {44, nullptr, nullptr, nullptr, {0}, {0, 0, 0}, {0, 1, 0}};
wchar_t* zelTrueLiteral = const_cast<wchar_t*>(L"真");
wchar_t* zelFalseLiteral = const_cast<wchar_t*>(L"假");

// ---- object data -----------------------------------------------------------

void* GetDataItemData(ZelObject* obj, int level, int index) { return ZelLevelBlock(obj, level)[index]; }

void SetDataItemData(ZelObject* obj, int level, int index, void* value) { ZelLevelBlock(obj, level)[index] = value; }

double GetDoubleDataItem(ZelObject* obj, int level, int index) {
    double value;
    std::memcpy(&value, ZelLevelBlock(obj, level) + index, sizeof value);
    return value;
}

void SetDoubleDataItem(ZelObject* obj, int level, int index, double value) {
    std::memcpy(ZelLevelBlock(obj, level) + index, &value, sizeof value);
}

int GetIntByIndex(void* p, int i) { return static_cast<int*>(p)[i]; }
void SetIntByIndex(void* p, int i, int v) { static_cast<int*>(p)[i] = v; }
void* GetPointerByIntIndex(void* p, int i) { return static_cast<int*>(p) + i; }

void* _DataObject_GetData(ZelObject* obj) { return ZelObjectWords(obj)[3]; }

// ---- values ----------------------------------------------------------------

static int* Words(unsigned char* p) { return reinterpret_cast<int*>(p); }

int MGetZelBinLength(unsigned char* bin) { return bin ? Words(bin)[2] : 0; }

unsigned char* MGetZelBinData(unsigned char* bin) { return bin ? bin + 12 : nullptr; }

unsigned char* GetBinData(unsigned char* bin, int* len) {
    if (!bin) bin = zel::EmptyBin();
    if (len) *len = Words(bin)[2];
    return bin + 12;
}

bool IsEmptyBin(unsigned char* bin) { return !bin || Words(bin)[2] == 0; }

bool IsEmptyZelText(unsigned char* text) { return !text || mystrlen(zel::TextChars(text)) == 0; }

// Deliberately only a one-dimensional array of size 0 counts as empty.
bool IsEmptyZelArray(int* ary) { return !ary || (ary[1] == 1 && ary[2] == 0); }

int GetZelArrayDim(int* ary) { return ary ? ary[1] : 0; }

int MGetAryElementCount(int* ary, void** data) {
    if (!ary) {
        if (data) *data = nullptr;
        return 0;
    }
    int dims = ary[1];
    int count = 0;
    if (dims >= 1) {
        count = 1;
        for (int i = 0; i < dims; ++i) count *= ary[2 + i];
    }
    if (data) *data = ary + 2 + (dims > 0 ? dims : 0);
    return count;
}

int GetZelArraySize(int* ary) { return MGetAryElementCount(ary, nullptr); }

void* GetZelArrayData(int* ary, int* count) {
    void* data;
    int n = MGetAryElementCount(ary, &data);
    if (count) *count = n;
    return data;
}

// ---- type codes ------------------------------------------------------------

namespace {
struct TypeRow {
    int code;
    const wchar_t* type;
    unsigned int hash;
    const wchar_t* showName;
};

// Hashes are filled in before anything else runs (see TypeTableInit).
TypeRow g_typeTable[10] = {
    {DATATYPE_INT, L"_i", 0, L"整数"},
    {DATATYPE_DOUBLE, L"_db", 0, L"小数"},
    {DATATYPE_BOOL, L"_b", 0, L"逻辑"},
    {DATATYPE_TEXT, L"_s", 0, L"文本"},
    {DATATYPE_BIN, L"_bn", 0, L"字节集"},
    {DATATYPE_INT_ARRAY, L"@_i", 0, L"整数数组"},
    {DATATYPE_DOUBLE_ARRAY, L"@_db", 0, L"小数数组"},
    {DATATYPE_BOOL_ARRAY, L"@_b", 0, L"逻辑型数组"},
    {DATATYPE_TEXT_ARRAY, L"@_s", 0, L"文本数组"},
    {DATATYPE_BIN_ARRAY, L"@_bn", 0, L"字节集数组"},
};

__attribute__((constructor(101))) void TypeTableInit() {
    for (TypeRow& row : g_typeTable) row.hash = GetTextHash(row.type);
}

const TypeRow* FindRow(const wchar_t* type, unsigned int hash) {
    for (const TypeRow& row : g_typeTable)
        if (row.hash == hash && mystrcmp(row.type, type) == 0) return &row;
    return nullptr;
}

const TypeRow* RowOfCode(int code) {
    for (const TypeRow& row : g_typeTable)
        if (row.code == code) return &row;
    return nullptr;
}
}  // namespace

int MGetDataTypeSize(DATATYPE_TYPE type) { return type == DATATYPE_DOUBLE ? 8 : 4; }

int MGetAryElementDataTypeSize(DATATYPE_TYPE type) {
    return type == DATATYPE_DOUBLE || type == DATATYPE_DOUBLE_ARRAY ? 8 : 4;
}

// The caller passes the string's hash; it is not computed here.
int MGetDataTypeSize(wchar_t* type, unsigned int hash) {
    if (!type || !*type) return 0;
    return hash == g_typeTable[1].hash && mystrcmp(type, L"_db") == 0 ? 8 : 4;
}

DATATYPE_TYPE MGetDataTypeType(wchar_t* type, unsigned int hash) {
    if (!type || !*type) return DATATYPE_UNKNOWN;
    if (hash == 0) hash = GetTextHash(type);
    if (type[0] != L'_' && type[0] != L'@') return DATATYPE_OBJECT;
    if (type[0] == L'@' && type[1] != L'_') return DATATYPE_OBJECT_ARRAY;
    const TypeRow* row = FindRow(type, hash);
    return row ? DATATYPE_TYPE(row->code) : DATATYPE_UNKNOWN;
}

wchar_t* MGetPureDataType(wchar_t* type, int* isArray) {
    bool array = type && type[0] == L'@';
    if (isArray) *isArray = array ? 1 : 0;
    return array ? type + 1 : type;
}

bool IsCmbDataType(wchar_t* type) { return mystrchr(type, L',') != nullptr; }

const wchar_t* MGetDataTypeTypeShowName(DATATYPE_TYPE type) {
    if (type == DATATYPE_OBJECT) return L"对象/接口/枚举";
    if (type == DATATYPE_OBJECT_ARRAY) return L"对象/接口/枚举数组";
    const TypeRow* row = RowOfCode(type);
    return row ? row->showName : L"未知类型";
}

void MGetDataTypeShowNameString(CMString& out, wchar_t* type, unsigned int hash) {
    if (!type || !*type) {
        out = type;
        return;
    }
    if (type[0] != L'_' && type[0] != L'@') {
        out = type;
    } else if (type[0] == L'@' && type[1] != L'_') {
        out = type + 1;
        out += L"[]";
    } else if (const TypeRow* row = FindRow(type, hash)) {
        out = row->showName;
    } else {
        out = type;
    }
}

void FillBaseTypeInfo(DATATYPE_TYPE type, tagZelDataTypeInfo* info) {
    const TypeRow* row = RowOfCode(type);
    if (!row) {
        info->code = 0;
        return;
    }
    info->code = row->code;
    info->type = const_cast<wchar_t*>(row->type);
    info->hash = row->hash;
    info->reserved = 0;
}

// ---- constant blocks -------------------------------------------------------

namespace {
bool Inside(void* p, void* block) {
    auto* start = static_cast<unsigned char*>(block);
    int size = *static_cast<int*>(block);
    return p >= block && static_cast<unsigned char*>(p) < start + size;
}

// Walks one chain of constant blocks from ours; the link lies at `linkOffset`.
void* FindConstBlock(void* p, int linkOffset) {
    for (void* block = &g_EmptyConst; block;
         block = *reinterpret_cast<void**>(static_cast<unsigned char*>(block) + linkOffset)) {
        if (Inside(p, block)) return block;
    }
    return nullptr;
}
}  // namespace

namespace zel {
void* ConstBlockOf(void* p) {
    if (!p) return nullptr;
    if (!g_pRuntimeClassInfo) return Inside(p, &g_EmptyConst) ? &g_EmptyConst : nullptr;
    RuntimeLock();
    void* block = FindConstBlock(p, 4);
    if (!block) block = FindConstBlock(p, 8);
    RuntimeUnlock();
    return block;
}
}  // namespace zel

bool IsConstData(void* p) { return zel::ConstBlockOf(p) != nullptr; }

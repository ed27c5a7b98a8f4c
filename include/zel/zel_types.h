// Record layouts and value encodings shared with the language runtime.
// Every layout here is byte-exact on 32-bit x86 (words of 4 bytes, doubles
// aligned to 4 inside structures); the static_asserts below pin them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cwchar>

#define ZEL_API __attribute__((visibility("default")))
#define ZEL_EXPORT extern "C" ZEL_API
// Defines an exported record with C linkage: `ZEL_RECORD(tagTBaseTypeInfo, g_info_Color) = ...;`
#define ZEL_RECORD(type, name) \
    extern "C" ZEL_API type name; \
    type name

// The runtime's object handle. Word 0 belongs to the runtime; word 1 points
// to the class chain; word 2 + level points to that level's data block.
// Only the first three words are declared: the level blocks beyond level 0
// are reached by word arithmetic (see ZelObjectWords).
class ZelObject {
public:
    void* runtimeWord;
    int* classChain;
    void* levelData0;
};

// Type codes of the basic value types (see MGetDataTypeType).
enum DATATYPE_TYPE {
    DATATYPE_UNKNOWN = 0,
    DATATYPE_INT = 1,
    DATATYPE_DOUBLE = 2,
    DATATYPE_BOOL = 3,
    DATATYPE_TEXT = 4,
    DATATYPE_BIN = 5,
    DATATYPE_OBJECT = 6,
    DATATYPE_INT_ARRAY = 7,
    DATATYPE_DOUBLE_ARRAY = 8,
    DATATYPE_BOOL_ARRAY = 9,
    DATATYPE_TEXT_ARRAY = 10,
    DATATYPE_BIN_ARRAY = 11,
    DATATYPE_OBJECT_ARRAY = 12,
};

enum NOTIFY_LIB_CODE {
    NOTIFY_LIB_RUNTIME = 1,
};

struct tagZelDataTypeInfo {
    int code;
    wchar_t* type;
    unsigned int hash;
    int reserved;
};

// Parameter item (36 bytes).
struct tagParamItem {
    unsigned int flags;
    wchar_t* name;
    wchar_t* description;
    wchar_t* text;
    unsigned int nameHash;
    wchar_t* type;
    unsigned int typeHash;
    int reserved[2];
};

// Method item (56 bytes).
struct tagMethodItem {
    unsigned int flags;
    wchar_t* name;
    wchar_t* description;
    wchar_t* text;
    unsigned int nameHash;
    wchar_t* friendName;
    unsigned int friendNameHash;
    wchar_t* returnType;
    unsigned int returnTypeHash;
    int paramCount;
    tagParamItem* params;
    void* function;
    int reserved[2];
};

// Element (data member) item (48 bytes).
struct tagElementItem {
    unsigned int flags;
    wchar_t* name;
    wchar_t* description;
    wchar_t* text;
    unsigned int nameHash;
    wchar_t* type;
    unsigned int typeHash;
    int reserved[5];
};

// One implemented interface of a class (16 bytes).
struct tagInterfaceEntry {
    wchar_t* name;
    unsigned int nameHash;
    int slotCount;
    void** slots;
};

// Class record (104 bytes).
struct tagTBaseTypeInfo {
    unsigned int flags;
    wchar_t* name;
    wchar_t* description;
    wchar_t* text;
    unsigned int nameHash;
    void* library;
    int kind;
    double version;
    int fixed36;
    int fixed40;
    int fixed44;
    wchar_t* baseName;
    unsigned int baseNameHash;
    int interfaceCount;
    tagInterfaceEntry* interfaces;
    int reserved64[4];
    int methodCount;
    tagMethodItem* methods;
    int elementCount;
    tagElementItem* elements;
    int reserved96[2];
};

// Record of an interface that a class library defines itself (60 bytes).
struct tagTInterfaceInfo {
    unsigned int flags;
    wchar_t* name;
    wchar_t* description;
    wchar_t* text;
    unsigned int nameHash;
    void* library;
    int kind;
    double version;
    int fixed36;
    int fixed40;
    wchar_t* baseName;
    unsigned int baseNameHash;
    int methodCount;
    tagMethodItem* methods;
};

struct ZelLibInfo;
typedef int (*ZelEnumClassesFn)(ZelLibInfo* lib, tagTBaseTypeInfo** out, int capacity);
typedef tagTBaseTypeInfo* (*ZelFindClassFn)(ZelLibInfo* lib, wchar_t* name);

// Library record (88 bytes).
struct ZelLibInfo {
    unsigned int flags;
    wchar_t* name;
    wchar_t* description;
    wchar_t* text;
    unsigned int nameHash;
    int fixed20;
    int fixed24;
    int fixed28;
    double version;
    int fixed40;
    wchar_t* texts44[3];
    ZelEnumClassesFn enumClasses;
    ZelFindClassFn findClass;
    int reserved64;
    wchar_t* texts68[2];
    int reserved76[3];
};

// Flags of records and items.
enum : unsigned int {
    ZEL_CLASS_FLAGS = 0x20000000u,
    ZEL_METHOD = 0x20000000u,
    ZEL_PROPERTY = 0x20000001u,
    ZEL_STATIC = 0x20000002u,
    ZEL_CONSTRUCTOR = 0x20000008u,
    ZEL_METHOD_PROPERTY_BIT = 0x1u,
    ZEL_METHOD_STATIC_BIT = 0x2u,
    ZEL_METHOD_CONSTRUCTOR_BIT = 0x8u,
    ZEL_ELEMENT_HIDDEN = 0x80000000u,
};

enum { ZEL_KIND_CLASS = 1, ZEL_KIND_INTERFACE = 2 };

static_assert(sizeof(void*) == 4, "the library targets 32-bit x86 (-m32)");
static_assert(sizeof(wchar_t) == 4, "wide text is UTF-32");
static_assert(sizeof(ZelObject) == 12);
static_assert(sizeof(tagZelDataTypeInfo) == 16);
static_assert(sizeof(tagParamItem) == 36);
static_assert(sizeof(tagMethodItem) == 56);
static_assert(offsetof(tagMethodItem, returnType) == 28);
static_assert(offsetof(tagMethodItem, function) == 44);
static_assert(sizeof(tagElementItem) == 48);
static_assert(sizeof(tagInterfaceEntry) == 16);
static_assert(sizeof(tagTBaseTypeInfo) == 104);
static_assert(offsetof(tagTBaseTypeInfo, kind) == 24);
static_assert(offsetof(tagTBaseTypeInfo, version) == 28);
static_assert(offsetof(tagTBaseTypeInfo, fixed44) == 44);
static_assert(offsetof(tagTBaseTypeInfo, baseName) == 48);
static_assert(offsetof(tagTBaseTypeInfo, interfaceCount) == 56);
static_assert(offsetof(tagTBaseTypeInfo, methodCount) == 80);
static_assert(offsetof(tagTBaseTypeInfo, elementCount) == 88);
static_assert(sizeof(tagTInterfaceInfo) == 60);
static_assert(offsetof(tagTInterfaceInfo, baseName) == 44);
static_assert(offsetof(tagTInterfaceInfo, methodCount) == 52);
static_assert(offsetof(tagTInterfaceInfo, methods) == 56);
static_assert(sizeof(ZelLibInfo) == 88);
static_assert(offsetof(ZelLibInfo, version) == 32);
static_assert(offsetof(ZelLibInfo, enumClasses) == 56);
static_assert(offsetof(ZelLibInfo, findClass) == 60);
static_assert(offsetof(ZelLibInfo, texts68) == 68);

// Word view of an object: word 1 the class chain, word 2 + level a data block.
inline void** ZelObjectWords(ZelObject* obj) { return reinterpret_cast<void**>(obj); }
// The class record at one level of the object's class chain (0 = the root);
// null past either end or without a chain.
inline tagTBaseTypeInfo* ZelChainClass(ZelObject* obj, int level) {
    const int* chain = obj ? obj->classChain : nullptr;
    if (!chain || level < 0 || level >= chain[0]) return nullptr;
    return reinterpret_cast<tagTBaseTypeInfo*>(static_cast<intptr_t>(chain[1 + 2 * level]));
}
// The class the object was made of: the last level of its chain.
inline tagTBaseTypeInfo* ZelOwnClass(ZelObject* obj) {
    return obj && obj->classChain ? ZelChainClass(obj, obj->classChain[0] - 1) : nullptr;
}
// The data block of one level of the object's class chain.
inline void** ZelLevelBlock(ZelObject* obj, int level) { return static_cast<void**>(ZelObjectWords(obj)[2 + level]); }

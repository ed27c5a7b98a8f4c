#include <gtest/gtest.h>

#include <string>

#include "common/test_object.h"
#include "runtime/class_table.h"
#include "runtime/memory.h"
#include "runtime/services.h"
#include "runtime/values.h"

extern "C" {
extern tagTBaseTypeInfo g_info_Font;
void Font_Init(ZelObject*);
void Font_Free(ZelObject*);
void* _Font_GetData(ZelObject*);
unsigned char* Font_GetName(ZelObject*);
void Font_SetName(ZelObject*, unsigned char*);
int Font_GetCharset(ZelObject*);
void Font_SetCharset(ZelObject*, int);
int Font_GetSize(ZelObject*);
void Font_SetSize(ZelObject*, int);
int Font_GetFamily(ZelObject*);
int Font_GetStyle(ZelObject*);
int Font_GetUnderline(ZelObject*);
void Font_SetUnderline(ZelObject*, int);
int Font_GetWeight(ZelObject*);
void Font_SetWeight(ZelObject*, int);
int Font_SaveToStream(ZelObject*, ZelObject*);
int Font_LoadFromStream(ZelObject*, ZelObject*);
unsigned char* Font_ToText(ZelObject*);
void Font_FromText(ZelObject*, unsigned char*);
int Font_Compare(ZelObject*, ZelObject*);
}

namespace {
std::wstring TakeText(unsigned char* text) {
    std::wstring s = zel::TextChars(text);
    zel_free(text);
    return s;
}
unsigned char* Text(const std::wstring& s) { return MCloneZelText(const_cast<wchar_t*>(s.c_str())); }
void SetName(ZelObject* obj, const wchar_t* s) {
    unsigned char* text = Text(s);
    Font_SetName(obj, text);
    zel_free(text);
}
void FromText(ZelObject* obj, const std::wstring& s) {
    unsigned char* text = Text(s);
    Font_FromText(obj, text);
    zel_free(text);
}
struct FontObject : TestObject {
    FontObject() : TestObject(&g_info_Font, Font_Init, Font_Free) {}
};

// A memory manager that counts the texts it makes and releases.
int g_made = 0, g_released = 0;
unsigned char* CountingNewText(wchar_t* s) {
    ++g_made;
    return MCloneZelText(s);
}
void CountingRelease(void* handle) {
    ++g_released;
    zel_free(handle);
}
struct CountingMemoryManager {
    tagMethodItem items[6] = {};
    tagTBaseTypeInfo record = {};
    tagTBaseTypeInfo* saved = g_pGCClassInfo;
    CountingMemoryManager() {
        items[ZEL_MM_NEW_TEXT].function = reinterpret_cast<void*>(CountingNewText);
        items[ZEL_MM_RELEASE].function = reinterpret_cast<void*>(CountingRelease);
        record.methodCount = 6;
        record.methods = items;
        g_made = g_released = 0;
        g_pGCClassInfo = &record;
    }
    ~CountingMemoryManager() { g_pGCClassInfo = saved; }
};

// Every case runs with the counting manager, so texts handed to the
// "runtime" are freed when released.
class Font : public testing::Test {
    CountingMemoryManager memory;
};
}  // namespace

TEST_F(Font, NewFontHasTheDesignedDefaults) {
    FontObject f;
    EXPECT_EQ(TakeText(Font_GetName(f)), L"");
    EXPECT_EQ(Font_GetStyle(f), 90);
    EXPECT_EQ(Font_GetWeight(f), 90);
    EXPECT_EQ(TakeText(Font_ToText(f)), L", 0, 0, 0, 90, 0, 90");
}

TEST_F(Font, TextRoundTripKeepsNameAndAttributes) {
    FontObject a, b;
    SetName(a, L"宋体");
    Font_SetCharset(a, 134);
    Font_SetSize(a, -12);
    Font_SetUnderline(a, 1);
    Font_SetWeight(a, 700);
    unsigned char* text = Font_ToText(a);
    EXPECT_EQ(std::wstring(zel::TextChars(text)), L"宋体, 134, -12, 0, 90, 1, 700");
    Font_FromText(b, text);
    zel_free(text);
    EXPECT_EQ(TakeText(Font_GetName(b)), L"宋体");
    EXPECT_EQ(TakeText(Font_ToText(b)), L"宋体, 134, -12, 0, 90, 1, 700");
}

TEST_F(Font, ShortTextLeavesTheMissingFieldsAlone) {
    FontObject f;
    Font_SetWeight(f, 400);
    FromText(f, L"  Serif ,  9 ");
    EXPECT_EQ(TakeText(Font_ToText(f)), L"Serif, 9, 0, 0, 90, 0, 400");
    FromText(f, L"");
    Font_FromText(f, nullptr);
    EXPECT_EQ(TakeText(Font_ToText(f)), L"Serif, 9, 0, 0, 90, 0, 400");
}

TEST_F(Font, LongNameDoesNotOverrunTheText) {
    FontObject f;
    std::wstring name(3000, L'字');
    SetName(f, name.c_str());
    EXPECT_EQ(TakeText(Font_ToText(f)), name + L", 0, 0, 0, 90, 0, 90");
}

TEST_F(Font, CompareGivesZeroOnlyForDifferentNamesWithEqualAttributes) {
    FontObject a, b;
    EXPECT_EQ(Font_Compare(a, b), -1);  // equal (empty) names
    SetName(a, L"A");
    SetName(b, L"B");
    EXPECT_EQ(Font_Compare(a, b), 0);
    EXPECT_EQ(Font_Compare(b, a), 0);
    Font_SetSize(b, 10);
    EXPECT_EQ(Font_Compare(a, b), -1);
    EXPECT_EQ(Font_Compare(a, nullptr), -1);
}

TEST_F(Font, TemporaryTextsGoBackToTheRuntime) {
    FontObject f;
    g_made = g_released = 0;
    FromText(f, L"Mono, 1");
    EXPECT_EQ(g_made, 1);
    EXPECT_EQ(g_released, 1);
    EXPECT_EQ(Font_SaveToStream(f, nullptr), 1);
    EXPECT_EQ(g_made, 2);
    EXPECT_EQ(g_released, 2);
    EXPECT_EQ(Font_LoadFromStream(f, nullptr), 1);
    EXPECT_EQ(TakeText(Font_GetName(f)), L"Mono");
}

TEST_F(Font, WithoutRecordGettersGiveTheirNeutralValues) {
    FontObject f;
    Font_Free(f);
    EXPECT_EQ(_Font_GetData(f), nullptr);
    EXPECT_EQ(Font_GetName(f), zel::EmptyText());
    EXPECT_EQ(Font_GetCharset(f), -1);
    EXPECT_EQ(Font_GetSize(f), -1);
    EXPECT_EQ(Font_GetFamily(f), -1);
    EXPECT_EQ(Font_GetStyle(f), -1);
    EXPECT_EQ(Font_GetWeight(f), -1);
    EXPECT_EQ(Font_GetUnderline(f), 0);
    SetName(f, L"x");
    FromText(f, L"x, 1");
    Font_SetSize(f, 3);
    EXPECT_EQ(Font_ToText(f), zel::EmptyText());
    EXPECT_EQ(Font_SaveToStream(f, nullptr), 1);
}

#include <gtest/gtest.h>

#include <string>

#include "common/test_object.h"
#include "runtime/memory.h"
#include "runtime/services.h"
#include "runtime/values.h"

extern "C" {
extern tagTBaseTypeInfo g_info_Font;
void Font_Init(ZelObject*);
void Font_Free(ZelObject*);
unsigned char* Font_GetName(ZelObject*);
void Font_SetName(ZelObject*, unsigned char*);
void Font_SetSize(ZelObject*, int);
int Font_GetStyle(ZelObject*);
int Font_GetUnderline(ZelObject*);
void Font_SetUnderline(ZelObject*, int);
void Font_SetWeight(ZelObject*, int);
int Font_SaveToStream(ZelObject*, ZelObject*);
unsigned char* Font_ToText(ZelObject*);
void Font_FromText(ZelObject*, unsigned char*);
int Font_Compare(ZelObject*, ZelObject*);
}

namespace {
// A memory manager that counts the texts it makes and frees those released,
// as the runtime would.
int g_made = 0, g_released = 0;
unsigned char* CountingNewText(wchar_t* s) {
    ++g_made;
    return MCloneZelText(s);
}
void CountingRelease(void* handle) {
    ++g_released;
    zel_free(handle);
}

class Font : public testing::Test {
    tagMethodItem m_items[6] = {};
    tagTBaseTypeInfo m_record = {};
    tagTBaseTypeInfo* m_saved = g_pGCClassInfo;

protected:
    Font() {
        m_items[ZEL_MM_NEW_TEXT].function = reinterpret_cast<void*>(CountingNewText);
        m_items[ZEL_MM_RELEASE].function = reinterpret_cast<void*>(CountingRelease);
        m_record.methodCount = 6;
        m_record.methods = m_items;
        g_pGCClassInfo = &m_record;
        g_made = g_released = 0;
    }
    ~Font() override { g_pGCClassInfo = m_saved; }
};

struct FontObject : TestObject {
    FontObject() : TestObject(&g_info_Font, Font_Init, Font_Free) {}
    static std::wstring Take(unsigned char* text) {
        std::wstring s = zel::TextChars(text);
        zel_free(text);
        return s;
    }
    std::wstring Name() { return Take(Font_GetName(get())); }
    std::wstring Text() { return Take(Font_ToText(get())); }
    void SetName(const std::wstring& s) { With(s, Font_SetName); }
    void FromText(const std::wstring& s) { With(s, Font_FromText); }
    void With(const std::wstring& s, void (*fn)(ZelObject*, unsigned char*)) {
        unsigned char* text = MCloneZelText(const_cast<wchar_t*>(s.c_str()));
        fn(get(), text);
        zel_free(text);
    }
};
}  // namespace

TEST_F(Font, TextRoundTripFromTheDesignedDefaults) {
    FontObject a, b;
    EXPECT_EQ(a.Text(), L", 0, 0, 0, 90, 0, 90");
    a.SetName(L"宋体");
    Font_SetSize(a, -12);
    Font_SetUnderline(a, 1);
    Font_SetWeight(a, 700);
    EXPECT_EQ(a.Text(), L"宋体, 0, -12, 0, 90, 1, 700");
    b.FromText(a.Text());
    EXPECT_EQ(b.Name(), L"宋体");
    EXPECT_EQ(b.Text(), a.Text());
    b.FromText(L"  Serif ,  9 ");  // the four fields without an item stay
    EXPECT_EQ(b.Text(), L"Serif, 9, -12, 0, 90, 1, 700");
    b.FromText(L"");
    EXPECT_EQ(b.Name(), L"Serif");
}

TEST_F(Font, LongNameDoesNotOverrunTheText) {
    FontObject f;
    std::wstring name(3000, L'字');
    f.SetName(name);
    EXPECT_EQ(f.Text(), name + L", 0, 0, 0, 90, 0, 90");
}

TEST_F(Font, CompareGivesZeroOnlyForDifferentNamesWithEqualAttributes) {
    FontObject a, b;
    EXPECT_EQ(Font_Compare(a, b), -1);  // equal (empty) names
    a.SetName(L"A");
    b.SetName(L"B");
    EXPECT_EQ(Font_Compare(a, b), 0);
    Font_SetSize(b, 10);
    EXPECT_EQ(Font_Compare(a, b), -1);
    EXPECT_EQ(Font_Compare(a, nullptr), -1);
}

TEST_F(Font, TemporaryTextsGoBackToTheRuntime) {
    FontObject f;
    f.FromText(L"Mono, 1");
    EXPECT_EQ(g_made, 1);
    EXPECT_EQ(g_released, 1);
    EXPECT_EQ(Font_SaveToStream(f, nullptr), 1);
    EXPECT_EQ(g_made, 2);
    EXPECT_EQ(g_released, 2);
}

TEST_F(Font, WithoutRecordGettersGiveTheirNeutralValues) {
    FontObject f;
    Font_Free(f);
    EXPECT_EQ(Font_GetName(f), zel::EmptyText());
    EXPECT_EQ(Font_GetStyle(f), -1);
    EXPECT_EQ(Font_GetUnderline(f), 0);
    f.SetName(L"x");
    f.FromText(L"x, 1");
    EXPECT_EQ(Font_ToText(f), zel::EmptyText());
    EXPECT_EQ(Font_SaveToStream(f, nullptr), 1);
    EXPECT_EQ(g_made, 0);
}

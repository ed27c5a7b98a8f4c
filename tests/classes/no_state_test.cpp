// An object whose Init hook could not allocate its state answers every
// method with a neutral result: each method of each such class runs once on
// it, with zero and null arguments, and nothing crashes or leaks.
#include <gtest/gtest.h>

#include <cwchar>

#include "common/counting_runtime.h"
#include "common/test_object.h"
#include <zel/zel.h>

extern "C" {
extern tagTBaseTypeInfo g_info_List, g_info_Map, g_info_Stack, g_info_String, g_info_Font, g_info_Color;
extern tagTBaseTypeInfo g_info_Point, g_info_Size, g_info_Rect, g_info_DoubleClass, g_info_BoolClass;
extern tagTBaseTypeInfo g_info_BinaryFile, g_info_File, g_info_TextFile, g_info_MemoryFile, g_info_MemoryStream;
void List_Init(ZelObject*), List_Free(ZelObject*), Map_Init(ZelObject*), Map_Free(ZelObject*);
void Stack_Init(ZelObject*), Stack_Free(ZelObject*), String_Init(ZelObject*), String_Free(ZelObject*);
void Font_Init(ZelObject*), Font_Free(ZelObject*), Color_Init(ZelObject*), Color_Free(ZelObject*);
void Point_Init(ZelObject*), Point_Free(ZelObject*), Size_Init(ZelObject*), Size_Free(ZelObject*);
void Rect_Init(ZelObject*), Rect_Free(ZelObject*), DoubleClass_Init(ZelObject*), DoubleClass_Free(ZelObject*);
void BoolClass_Init(ZelObject*), BoolClass_Free(ZelObject*), BinaryFile_Init(ZelObject*), BinaryFile_Free(ZelObject*);
void File_Init(ZelObject*), File_Free(ZelObject*), TextFile_Init(ZelObject*), TextFile_Free(ZelObject*);
void MemoryFile_Init(ZelObject*), MemoryFile_Free(ZelObject*), MemoryStream_Init(ZelObject*), MemoryStream_Free(ZelObject*);
}

namespace {

struct StatefulClass {
    tagTBaseTypeInfo* record;
    TestObject::Hook init, free;
    int level;
};

const StatefulClass kClasses[] = {
    {&g_info_List, List_Init, List_Free, 1},          {&g_info_Map, Map_Init, Map_Free, 1},
    {&g_info_Stack, Stack_Init, Stack_Free, 1},       {&g_info_String, String_Init, String_Free, 1},
    {&g_info_Font, Font_Init, Font_Free, 1},          {&g_info_Color, Color_Init, Color_Free, 1},
    {&g_info_Point, Point_Init, Point_Free, 1},       {&g_info_Size, Size_Init, Size_Free, 1},
    {&g_info_Rect, Rect_Init, Rect_Free, 1},          {&g_info_DoubleClass, DoubleClass_Init, DoubleClass_Free, 1},
    {&g_info_BoolClass, BoolClass_Init, BoolClass_Free, 1},
    {&g_info_BinaryFile, BinaryFile_Init, BinaryFile_Free, 1},
    {&g_info_File, File_Init, File_Free, 2},          {&g_info_TextFile, TextFile_Init, TextFile_Free, 3},
    {&g_info_MemoryFile, MemoryFile_Init, MemoryFile_Free, 1},
    {&g_info_MemoryStream, MemoryStream_Init, MemoryStream_Free, 1},
};

// Every argument word is zero: integers 0, doubles 0.0, every pointer null.
void CallWithZeros(const tagMethodItem& method, ZelObject* obj) {
    if (std::wcscmp(method.returnType, L"_db") == 0)
        reinterpret_cast<double (*)(ZelObject*, int, int, int, int, int, int, int, int)>(method.function)(
            obj, 0, 0, 0, 0, 0, 0, 0, 0);
    else
        reinterpret_cast<void* (*)(ZelObject*, int, int, int, int, int, int, int, int)>(method.function)(
            obj, 0, 0, 0, 0, 0, 0, 0, 0);
}

TEST(NoState, EveryMethodOfAnObjectWithoutItsStateIsNeutral) {
    for (const StatefulClass& c : kClasses) {
        CountingRuntime runtime;
        TestObject obj(c.record, nullptr, c.free, c.level);
        zel::FailAllocationAfter(1);
        c.init(obj);
        zel::FailAllocationAfter(0);
        ASSERT_EQ(obj.word(c.level, 0), nullptr) << c.record->name;
        int called = 0;
        for (int i = 0; i < c.record->methodCount; ++i) {
            const tagMethodItem& method = c.record->methods[i];
            if (!method.function || (method.flags & ZEL_METHOD_STATIC_BIT)) continue;
            CallWithZeros(method, obj);
            ++called;
        }
        EXPECT_GT(called, 0) << c.record->name;
        EXPECT_EQ(obj.word(c.level, 0), nullptr) << c.record->name;
    }
}

}  // namespace

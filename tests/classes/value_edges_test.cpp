// Lists holding nulls and asked about positions past their end, stacks and
// sizes compared when not empty or not alike, texts with more items than
// fields, pointers reading and writing nothing, and absolute values at the
// edge of the integers.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>

#include "classes/geometry.h"
#include "common/counting_runtime.h"
#include "common/test_object.h"
#include "owned_values.h"
#include <zel/class_table.h>
#include <zel/converters.h>
#include <zel/memory.h>

extern "C" {
extern tagTBaseTypeInfo g_info_List, g_info_Stack, g_info_Size, g_info_Rect, g_info_Pointer, g_info_String;
void List_Init(ZelObject*), List_Free(ZelObject*), List_InsertItem(ZelObject*, int, ZelObject*);
void List_RemoveItem(ZelObject*, int), List_SetItem(ZelObject*, int, ZelObject*);
int List_GetCount(ZelObject*), List_IsEmpty(ZelObject*);
ZelObject* List_GetItem(ZelObject*, int);
void Stack_Init(ZelObject*), Stack_Free(ZelObject*), Stack_Push(ZelObject*, ZelObject*);
int Stack_IsEmpty(ZelObject*);
void Size_Init(ZelObject*), Size_Free(ZelObject*), Size_FromText(ZelObject*, unsigned char*);
int Size_Equals(ZelObject*, ZelObject*);
void Rect_Init(ZelObject*), Rect_Free(ZelObject*), Rect_FromText(ZelObject*, unsigned char*);
void Pointer_SetAddress(ZelObject*, int), Pointer_WriteBin(ZelObject*, unsigned char*);
unsigned char* Pointer_ReadText(ZelObject*, int);
int String_ReverseFind(ZelObject*, unsigned char*, int);
int Math_Abs(int), Rect_Equals(ZelObject*, ZelObject*);
extern tagTBaseTypeInfo g_info_Point;
void Point_Init(ZelObject*), Point_Free(ZelObject*);
int Point_Serialize(ZelObject*, ZelObject*);
}

namespace {

tagElementItem kElements[] = {zel::HiddenState()};
tagTBaseTypeInfo kThing = zel::ClassRecord(L"测试.物件", L"", nullptr, kElements);

TEST(ValueEdges, ListsHoldingNullsAndPositionsPastTheEnd) {
    CountingRuntime runtime;
    TestObject list(&g_info_List, List_Init, List_Free), thing(&kThing);
    List_InsertItem(list, 0, nullptr);
    List_InsertItem(list, 1, thing);
    EXPECT_TRUE(List_GetCount(list) == 2 && !List_IsEmpty(list) && List_GetItem(list, 0) == nullptr);
    List_RemoveItem(list, 2);
    List_SetItem(list, -1, thing);
    List_SetItem(list, 3, thing);
    EXPECT_EQ(List_GetCount(list), 2) << "positions outside the list change nothing";
    List_RemoveItem(list, 0);  // the null item goes without a release
    EXPECT_TRUE(List_GetCount(list) == 1 && List_GetItem(list, 0) == thing.get());
    EXPECT_EQ(runtime.Net(thing), 1);
    List_RemoveItem(list, 0);
    EXPECT_TRUE(List_IsEmpty(list) && runtime.Net(thing) == 0);
    List_RemoveItem(list, 0);
    EXPECT_EQ(List_GetCount(list), 0);
}

TEST(ValueEdges, NonEmptyStacksAndUnlikeSizes) {
    TestObject stack(&g_info_Stack, Stack_Init, Stack_Free);
    EXPECT_TRUE(Stack_IsEmpty(stack));
    Stack_Push(stack, reinterpret_cast<ZelObject*>(0x1000));
    EXPECT_FALSE(Stack_IsEmpty(stack));

    TestObject a(&g_info_Size, Size_Init, Size_Free), b(&g_info_Size, Size_Init, Size_Free), bare(&g_info_Size);
    Size_FromText(a, Text(L"3, 4"));
    Size_FromText(b, Text(L"3, 5"));
    EXPECT_FALSE(Size_Equals(a, b)) << "the heights differ";
    EXPECT_FALSE(Size_Equals(a, bare)) << "the other has no state";
    Size_FromText(b, Text(L"3, 4, 99"));
    EXPECT_TRUE(Size_Equals(a, b)) << "items past the fields are ignored";

    TestObject rect(&g_info_Rect, Rect_Init, Rect_Free);
    Rect_FromText(rect, Text(L"1, 2, 3, 4, 5"));
    RectState* edges = _Rect_GetData(rect);
    EXPECT_TRUE(edges->left == 1 && edges->top == 2 && edges->right == 3 && edges->bottom == 4);
    TestObject bareRect(&g_info_Rect);
    EXPECT_FALSE(Rect_Equals(rect, bareRect));
    TestObject point(&g_info_Point, Point_Init, Point_Free);
    EXPECT_EQ(Point_Serialize(point, nullptr), 0) << "no stream";
}

TEST(ValueEdges, PointersThatReadAndWriteNothing) {
    wchar_t buffer[4] = {0, L'a', L'b', 0};
    TestObject pointer(&g_info_Pointer);
    Pointer_SetAddress(pointer, int(reinterpret_cast<uintptr_t>(buffer)));
    Pointer_WriteBin(pointer, zel::EmptyBin());
    EXPECT_EQ(buffer[0], 0);
    EXPECT_EQ(Pointer_ReadText(pointer, 0), zel::EmptyText());
    EXPECT_EQ(Pointer_ReadText(pointer, 3), zel::EmptyText()) << "a zero first unit: the empty text";
}

// Byte sets whose length word is negative or too large for any block here
// read as the empty text.
TEST(ValueEdges, CorruptByteSetLengthsConvertToTheEmptyText) {
    for (int length : {-5, 0x40000000}) {
        int block[] = {0, 1, length, 0x41};
        wchar_t* text = MBinToMString(block);
        EXPECT_STREQ(text, L"") << length;
        zel_free(text);
    }
}

TEST(ValueEdges, ReverseFindWithoutStateAndAbsoluteValues) {
    TestObject bare(&g_info_String);
    EXPECT_EQ(String_ReverseFind(bare, Text(L"a"), 0), -1);
    EXPECT_EQ(Math_Abs(-7), 7);
    EXPECT_EQ(Math_Abs(7), 7);
    EXPECT_EQ(Math_Abs(INT_MIN), INT_MIN) << "wraps";
}

}  // namespace

#include "sweep/workloads.h"

#include <unistd.h>

#include <cstring>
#include <cwchar>
#include <deque>
#include <new>

#include "common/counting_runtime.h"
#include "common/test_object.h"
#include "io/File.h"
#include "io/MemoryStream.h"

using ObjectDeque = std::deque<ZelObject*>;
extern "C" {
extern tagTBaseTypeInfo g_info_List, g_info_Map, g_info_Stack, g_info_String, g_info_Font, g_info_Rect;
extern tagTBaseTypeInfo g_info_BinClass, g_info_MemoryFile, g_info_MemoryStream, g_info_BinaryFile, g_info_TextFile;
void List_Init(ZelObject*), List_Free(ZelObject*), List_AddItem(ZelObject*, ZelObject*, int);
void List_InsertItem(ZelObject*, int, ZelObject*), List_SetItem(ZelObject*, int, ZelObject*);
void List_RemoveItem(ZelObject*, int);
int List_GetCount(ZelObject*);
void Map_Init(ZelObject*), Map_Free(ZelObject*), Map_SetValue(ZelObject*, ZelObject*, ZelObject*);
int Map_GetValue(ZelObject*, ZelObject*, ZelObject*), Map_HasKey(ZelObject*, ZelObject*), Map_GetCount(ZelObject*);
void Stack_Init(ZelObject*), Stack_Free(ZelObject*), Stack_Push(ZelObject*, ZelObject*), Stack_Pop(ZelObject*);
ObjectDeque* Stack_Clone(ZelObject*);
int Stack_GetCount(ZelObject*);
void String_Init(ZelObject*), String_Free(ZelObject*), String_SetText(ZelObject*, unsigned char*);
void String_Append(ZelObject*, unsigned char*), String_Insert(ZelObject*, int, unsigned char*);
int String_GetLength(ZelObject*), String_Find(ZelObject*, unsigned char*, int);
unsigned char* String_GetText(ZelObject*);
void Font_Init(ZelObject*), Font_Free(ZelObject*), Font_SetName(ZelObject*, unsigned char*);
void Font_FromText(ZelObject*, unsigned char*);
unsigned char *Font_ToText(ZelObject*), *Font_GetName(ZelObject*);
void Rect_Init(ZelObject*), Rect_Free(ZelObject*), Rect_FromText(ZelObject*, unsigned char*);
void* Rect_Clone(ZelObject*);
unsigned char* Rect_ToText(ZelObject*);
void BinClass_Init(ZelObject*), BinClass_Free(ZelObject*), BinClass_SetValue(ZelObject*, unsigned char*);
unsigned char* BinClass_GetValue(ZelObject*);
int BinClass_GetLength(ZelObject*);
void MemoryFile_Init(ZelObject*), MemoryFile_Free(ZelObject*);
void* MemoryFile_Clone(ZelObject*);
int MemoryFile_Write(ZelObject*, unsigned char*), MemoryFile_GetLength(ZelObject*);
int MemoryFile_SeekFromBegin(ZelObject*, int);
unsigned char* MemoryFile_Read(ZelObject*, int, int*);
void MemoryStream_Init(ZelObject*), MemoryStream_Free(ZelObject*);
int MemoryStream_InitData(ZelObject*, unsigned char*), MemoryStream_GetLength(ZelObject*);
unsigned char* MemoryStream_GetBytes(ZelObject*);
void BinaryFile_Init(ZelObject*), BinaryFile_Free(ZelObject*);
unsigned char* BinaryFile_ReadFile(ZelObject*, unsigned char*, int);
int BinaryFile_WriteFile(ZelObject*, unsigned char*, unsigned char*, int), BinaryFile_GetFileType(ZelObject*, unsigned char*);
void TextFile_Init(ZelObject*), TextFile_Free(ZelObject*);
int TextFile_Open(ZelObject*, unsigned char*, int, int), TextFile_Write(ZelObject*, unsigned char*);
unsigned char* TextFile_Read(ZelObject*, int, int*);
extern tagTBaseTypeInfo g_info_Point, g_info_Size, g_info_Color, g_info_DoubleClass, g_info_BoolClass, g_info_File;
extern tagTBaseTypeInfo g_info_Pointer, g_info_DatetimeClass, g_info_IntClass, g_info_Address;
int Point_Serialize(ZelObject*, ZelObject*), Point_Unserialize(ZelObject*, ZelObject*);
void DatetimeClass_Init(ZelObject*), IntClass_Init(ZelObject*);
unsigned char *DatetimeClass_ToString(ZelObject*), *Address_ToString(ZelObject*);
void Point_Init(ZelObject*), Point_Free(ZelObject*), Size_Init(ZelObject*), Size_Free(ZelObject*);
void Size_FromText(ZelObject*, unsigned char*), Color_Init(ZelObject*), Color_Free(ZelObject*);
void Color_FromText(ZelObject*, unsigned char*);
unsigned char *Size_ToText(ZelObject*), *Color_ToText(ZelObject*);
void DoubleClass_Init(ZelObject*), DoubleClass_Free(ZelObject*), BoolClass_Init(ZelObject*), BoolClass_Free(ZelObject*);
void File_Init(ZelObject*), File_Free(ZelObject*), File_Close(ZelObject*), File_SeekToBegin(ZelObject*);
int File_Open(ZelObject*, unsigned char*, int), File_Write(ZelObject*, unsigned char*), File_GetLength(ZelObject*);
unsigned char* File_Read(ZelObject*, int, int*);
void Pointer_SetAddress(ZelObject*, int);
unsigned char *Pointer_ReadText(ZelObject*, int), *Pointer_ReadBin(ZelObject*, int);
}

namespace {

tagElementItem kElements[] = {zel::HiddenState()};
tagTBaseTypeInfo kItem = zel::ClassRecord(L"测试.项目", L"", nullptr, kElements);

// Values the workloads pass in, made before the sweep arms and freed after.
class Values {
public:
    ~Values() {
        for (int i = 0; i < m_count; ++i) zel_free(m_made[i]);
    }
    unsigned char* Text(const wchar_t* s) { return Keep(MCloneZelText(const_cast<wchar_t*>(s))); }
    unsigned char* Bin(const char* bytes) { return Keep(MCloneZelBin(const_cast<char*>(bytes), int(std::strlen(bytes)))); }

private:
    unsigned char* Keep(unsigned char* value) { return m_made[m_count++] = value; }
    unsigned char* m_made[16] = {};
    int m_count = 0;
};

// A file name of this process under /tmp; the file goes with it.
class TempFile {
public:
    explicit TempFile(const char* stem) {
        std::snprintf(m_path, sizeof m_path, "/tmp/zel_sweep_%s_%d", stem, int(getpid()));
        std::swprintf(m_wide, 64, L"%s", m_path);
    }
    ~TempFile() { std::remove(m_path); }
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;
    const char* path() const { return m_path; }
    const wchar_t* wide() const { return m_wide; }

private:
    char m_path[64];
    wchar_t m_wide[64];
};

struct RewindableStream : CMemoryStream {
    void Rewind() { m_position = 0; }
};

// A value a method handed over goes back to the runtime.
void Drop(unsigned char* value) {
    if (value) zel::Release(value);
}

// A block handed to the runtime to take over: this runtime takes over
// nothing, so it stays a plain block.
void DropTakenOver(unsigned char* block) {
    if (!IsConstData(block)) zel_free(block);
}

void ListWork(Sweep& s) {
    CountingRuntime rt;
    TestObject a(&kItem), b(&kItem);
    {
        TestObject list(&g_info_List, nullptr, List_Free);
        s.Arm();
        List_Init(list);
        List_AddItem(list, a, 1);
        List_AddItem(list, b, 0);
        List_InsertItem(list, 1, a);
        List_SetItem(list, List_GetCount(list), b);
        List_RemoveItem(list, 0);
        s.Disarm();
        int count = List_GetCount(list);
        // Every item held is one reference held, whichever step failed.
        SWEEP_CHECK(s, count == -1 || rt.Net(a) + rt.Net(b) == count);
        SWEEP_CHECK(s, count == 3 || s.Injected());
    }
    SWEEP_CHECK(s, rt.Net(a) == 0 && rt.Net(b) == 0);
}

void MapWork(Sweep& s) {
    CountingRuntime rt;
    TestObject k1(&kItem), k2(&kItem), v1(&kItem), v2(&kItem);
    {
        TestObject map(&g_info_Map, nullptr, Map_Free);
        s.Arm();
        Map_Init(map);
        Map_SetValue(map, k1, v1);
        int afterFirst = Map_GetCount(map);
        Map_SetValue(map, k1, v2);
        int afterSecond = Map_GetCount(map);
        SWEEP_CHECK(s, afterSecond == afterFirst || afterSecond == 1);
        Map_GetValue(map, k2, nullptr);
        int has = Map_HasKey(map, k1);
        s.Disarm();
        SWEEP_CHECK(s, has == 0 || afterSecond == 1);
        SWEEP_CHECK(s, Map_GetCount(map) <= 2);
        // A key is held once; a value at most once.
        SWEEP_CHECK(s, rt.Net(k1) <= 1 && rt.Net(k2) <= 1 && rt.Net(v1) + rt.Net(v2) <= 1);
        SWEEP_CHECK(s, (Map_GetCount(map) == 2 && rt.Net(v2) == 1) || s.Injected());
    }
    SWEEP_CHECK(s, rt.Net(k1) == 0 && rt.Net(k2) == 0 && rt.Net(v1) == 0 && rt.Net(v2) == 0);
}

void StackWork(Sweep& s) {
    TestObject a(&kItem), stack(&g_info_Stack, nullptr, Stack_Free);
    s.Arm();
    Stack_Init(stack);
    int pushed = 0;
    for (int i = 0; i < 300; ++i) {  // past the deque's first block
        Stack_Push(stack, a);
        pushed += Stack_GetCount(stack) == pushed + 1;
    }
    ObjectDeque* clone = Stack_Clone(stack);
    Stack_Pop(stack);
    s.Disarm();
    int count = Stack_GetCount(stack);
    SWEEP_CHECK(s, count == -1 || count == pushed - 1);
    SWEEP_CHECK(s, count == 299 || s.Injected());
    SWEEP_CHECK(s, clone || s.Injected());
    delete clone;
}

// The text class raises std::bad_alloc, for the runtime to report; the text
// is then as it was.
void StringWork(Sweep& s) {
    CountingRuntime rt;
    Values v;
    unsigned char* abc = v.Text(L"abc");
    unsigned char* longer = v.Text(L"a text long enough to need a block of its own");
    TestObject text(&g_info_String, nullptr, String_Free);
    s.Arm();
    String_Init(text);
    auto step = [&](auto call) {
        int before = String_GetLength(text);
        try {
            call();
        } catch (const std::bad_alloc&) {
            SWEEP_CHECK(s, String_GetLength(text) == before);
        }
    };
    step([&] { String_SetText(text, longer); });
    step([&] { String_SetText(text, abc); });
    step([&] { String_Append(text, longer); });
    step([&] { String_Insert(text, 1, longer); });
    Drop(String_GetText(text));
    int found = String_Find(text, abc, 0);
    s.Disarm();
    SWEEP_CHECK(s, found <= 0);
    SWEEP_CHECK(s, String_GetLength(text) == int(3 + 2 * std::wcslen(zel::TextChars(longer))) || s.Injected());
    SWEEP_CHECK(s, rt.LiveValues() == 0);
}

void ValueWork(Sweep& s) {
    CountingRuntime rt;
    Values v;
    unsigned char* name = v.Text(L"宋体");
    unsigned char* fontText = v.Text(L"Sans, 1, 2, 3, 4, 5, 6");
    unsigned char* edges = v.Text(L"1, 2, 30, 40");
    unsigned char* bytes = v.Bin("0123456789");
    TestObject font(&g_info_Font, nullptr, Font_Free), rect(&g_info_Rect, nullptr, Rect_Free);
    TestObject bin(&g_info_BinClass, nullptr, BinClass_Free);
    s.Arm();
    Font_Init(font);
    Font_SetName(font, name);
    Drop(Font_ToText(font));
    Font_FromText(font, fontText);
    Drop(Font_GetName(font));
    Rect_Init(rect);
    Rect_FromText(rect, edges);
    Drop(Rect_ToText(rect));
    void* rectClone = Rect_Clone(rect);
    BinClass_Init(bin);
    BinClass_SetValue(bin, bytes);
    unsigned char* held = BinClass_GetValue(bin);
    s.Disarm();
    int length = BinClass_GetLength(bin);
    SWEEP_CHECK(s, length == 0 || length == 10);
    SWEEP_CHECK(s, held ? length == 10 : length == 0);
    Drop(held);
    TestObject copy(&g_info_Rect, nullptr, Rect_Free);
    copy.word(1, 0) = rectClone;
    SWEEP_CHECK(s, rt.LiveValues() == 0);
}

// Nodes and the pointer list raise std::bad_alloc and stay as they were.
void SupportWork(Sweep& s) {
    CountingRuntime rt;
    TestObject a(&kItem);
    PtrList list;
    CText2PtrHashmap map;
    CMString text(L"x");
    CMStringArray names;
    CMiniMem mem;
    wchar_t out[64] = L"untouched";
    CNode node;
    s.Arm();
    try {
        node.SetObject(a);
        node.SetText(const_cast<wchar_t*>(L"a node's text"));
    } catch (const std::bad_alloc&) {
        SWEEP_CHECK(s, node.GetType() == CNode::NodeNone || node.GetType() == CNode::NodeObject);
    }
    try {
        CNode copy(node);
        SWEEP_CHECK(s, copy == node);
    } catch (const std::bad_alloc&) {
    }
    for (int i = 0; i < 3; ++i) {
        unsigned before = list.size();
        try {
            list.insert(list.end(), &list);
        } catch (const std::bad_alloc&) {
            SWEEP_CHECK(s, list.size() == before);
        }
    }
    map.Set(const_cast<wchar_t*>(L"键"), &map);
    void* found = nullptr;
    map.Get(const_cast<wchar_t*>(L"键"), &found);
    text.Format(L"%d-%s", 7, L"七");
    int printed = swprintf_linux(out, const_cast<wchar_t*>(L"ab %d%s"), 1, L"x");
    names.Add(L"一");
    names.Add(L"二");
    mem.Append(const_cast<char*>("0123456789"), 10);
    mem.Append(mem.GetData(), mem.GetSize());  // a source inside the buffer
    s.Disarm();
    SWEEP_CHECK(s, printed == 5 ? std::wcscmp(out, L"ab 1x") == 0 : std::wcscmp(out, L"untouched") == 0);
    SWEEP_CHECK(s, text == L"7-七" || text == L"x");
    SWEEP_CHECK(s, mem.GetSize() == 0 || mem.GetSize() == 10 || mem.GetSize() == 20);
    SWEEP_CHECK(s, !found || found == &map);
    SWEEP_CHECK(s, rt.Net(a) == (node.GetType() == CNode::NodeObject ? 1 : 0));
    node.ReleaseData();
    SWEEP_CHECK(s, rt.Net(a) == 0);
    names.RemoveAll();
}

void StreamWork(Sweep& s) {
    CountingRuntime rt;
    Values v;
    unsigned char* bytes = v.Bin("stream bytes");
    TestObject file(&g_info_MemoryFile, nullptr, MemoryFile_Free);
    TestObject stream(&g_info_MemoryStream, nullptr, MemoryStream_Free);
    RewindableStream raw;
    s.Arm();
    MemoryFile_Init(file);
    MemoryFile_Write(file, bytes);
    void* clone = MemoryFile_Clone(file);
    MemoryFile_SeekFromBegin(file, 0);
    int ok = 0;
    Drop(MemoryFile_Read(file, 6, &ok));
    MemoryStream_Init(stream);
    MemoryStream_InitData(stream, bytes);
    Drop(MemoryStream_GetBytes(stream));
    // Each write adds all its bytes or none.
    int lengths[4] = {raw.GetLength()};
    raw.WriteInt(5);
    lengths[1] = raw.GetLength();
    raw.WriteText(const_cast<wchar_t*>(L"流的文本"));
    lengths[2] = raw.GetLength();
    raw.WriteBin(bytes);
    lengths[3] = raw.GetLength();
    raw.Rewind();
    int five = raw.ReadInt();
    int atText = raw.GetPosition();
    Drop(raw.ReadText());
    int afterText = raw.GetPosition();
    Drop(raw.ReadBin());
    s.Disarm();
    int length = MemoryFile_GetLength(file);
    SWEEP_CHECK(s, length == -1 || length == 0 || length == 12);
    SWEEP_CHECK(s, lengths[1] - lengths[0] == 0 || lengths[1] - lengths[0] == 4);
    SWEEP_CHECK(s, lengths[2] - lengths[1] == 0 || lengths[2] - lengths[1] == 20);
    SWEEP_CHECK(s, lengths[3] - lengths[2] == 0 || lengths[3] - lengths[2] == 24);
    SWEEP_CHECK(s, (five == 5 && afterText == atText + 20) || s.Injected());
    if (clone) {
        TestObject copy(&g_info_MemoryFile, nullptr, MemoryFile_Free);
        copy.word(1, 0) = clone;
        // A file without its state clones to an empty one.
        SWEEP_CHECK(s, MemoryFile_GetLength(copy) == (length < 0 ? 0 : length));
    }
    SWEEP_CHECK(s, rt.LiveValues() == 0);
}

void FileWork(Sweep& s) {
    CountingRuntime rt;
    Values v;
    TempFile withSignature("signed"), plain("plain");
    unsigned char* name = v.Text(withSignature.wide());
    unsigned char* bytes = v.Bin("\xEF\xBB\xBF" "file bytes");
    if (FILE* f = std::fopen(plain.path(), "wb")) {
        std::fputs("plain bytes without a signature", f);
        std::fclose(f);
    }
    unsigned char* plainName = v.Text(plain.wide());
    TestObject bin(&g_info_BinaryFile, nullptr, BinaryFile_Free);
    TestObject text(&g_info_TextFile, nullptr, TextFile_Free, 3);
    s.Arm();
    BinaryFile_Init(bin);
    int wrote = BinaryFile_WriteFile(bin, bytes, name, 1);
    int type = BinaryFile_GetFileType(bin, name);
    DropTakenOver(BinaryFile_ReadFile(bin, name, 4));
    TextFile_Init(text);
    int plainType = BinaryFile_GetFileType(bin, plainName);
    DropTakenOver(BinaryFile_ReadFile(bin, plainName, 5));
    int opened = TextFile_Open(text, name, 0, 0);
    int ok = 0;
    Drop(TextFile_Read(text, 4, &ok));
    s.Disarm();
    SWEEP_CHECK(s, (wrote && type == 4) || s.Injected());
    SWEEP_CHECK(s, opened == 0 || opened == 1);
    SWEEP_CHECK(s, plainType == 5 || s.Injected());
    SWEEP_CHECK(s, rt.LiveValues() == 0);
}

void GeometryWork(Sweep& s) {
    CountingRuntime rt;
    Values v;
    unsigned char* pair = v.Text(L" 3 , 4 ");
    unsigned char* rgb = v.Text(L"1,2,3");
    TestObject point(&g_info_Point, nullptr, Point_Free), size(&g_info_Size, nullptr, Size_Free);
    TestObject color(&g_info_Color, nullptr, Color_Free);
    TestObject real(&g_info_DoubleClass, nullptr, DoubleClass_Free), logical(&g_info_BoolClass, nullptr, BoolClass_Free);
    TestObject date(&g_info_DatetimeClass), integer(&g_info_IntClass), address(&g_info_Address);
    TestObject stream(&g_info_MemoryStream, MemoryStream_Init, MemoryStream_Free);
    s.Arm();
    Point_Init(point);
    int saved = Point_Serialize(point, stream);  // through the stream's interface
    int loaded = Point_Unserialize(point, stream);
    DatetimeClass_Init(date);
    Drop(DatetimeClass_ToString(date));
    IntClass_Init(integer);
    Drop(Address_ToString(address));
    Size_Init(size);
    Size_FromText(size, pair);
    Drop(Size_ToText(size));
    Color_Init(color);
    Color_FromText(color, rgb);
    Drop(Color_ToText(color));
    DoubleClass_Init(real);
    BoolClass_Init(logical);
    s.Disarm();
    SWEEP_CHECK(s, (saved == 1 && loaded == 1) || s.Injected());
    SWEEP_CHECK(s, rt.LiveValues() == 0);
}

// Keys that compare by value: the text objects' getters run inside the table.
void MapByValueWork(Sweep& s) {
    CountingRuntime rt;
    Values v;
    unsigned char* same = v.Text(L"同一个键");
    TestObject k1(&g_info_String, String_Init, String_Free), k2(&g_info_String, String_Init, String_Free);
    TestObject value(&kItem);
    String_SetText(k1, same);
    String_SetText(k2, same);
    {
        TestObject map(&g_info_Map, Map_Init, Map_Free);
        s.Arm();
        Map_SetValue(map, k1, value);
        Map_SetValue(map, k2, value);
        int has = Map_HasKey(map, k2);
        s.Disarm();
        SWEEP_CHECK(s, Map_GetCount(map) <= 1);
        SWEEP_CHECK(s, (has == 1 && Map_GetCount(map) == 1) || s.Injected());
        SWEEP_CHECK(s, rt.Net(value) == Map_GetCount(map));
    }
    SWEEP_CHECK(s, rt.Net(k1) == 0 && rt.Net(k2) == 0 && rt.Net(value) == 0);
    SWEEP_CHECK(s, rt.LiveValues() == 0);
}

// Wide strings, string lists, escapes, conversions and clones.
void TextSupportWork(Sweep& s) {
    CountingRuntime rt;
    wchar_t longNumber[] = L"  +000000000000000000000000000042";
    int escapedArray[] = {0, 1, 2, 0, 0};
    CMString text(L"  前后有空白  ");
    CMStringArray items;
    CMiniMem utf8, wide, escaped, mbs;
    s.Arm();
    text.TrimLeft();
    text.TrimRight();
    text += L"，再加一段";
    CMString left = text.Left(2), right = text.Right(2);
    text.Format(L"%s|%d|%0300d", L"长格式", 12, 7);  // longer than the first try
    int n = GetStringList(L"一, 二 ,三", items);
    items.InsertAt(0, L"零");
    items.RemoveAt(1);
    wchar_t* unescaped = ConvertEscapeSequences(L"a\\tb\\u4e2d", escaped);
    char* bytes = UCS_to_UTF8(L"中文", utf8);
    wchar_t* back = UTF8_to_UCS("中文", wide);
    CMString property;
    bool found = GetExtendPropertyValue(L"颜色=红;大小=3", L"大小", property);
    int number = myatoi(longNumber);
    wchar_t* converted = MIntToMString(12345);
    unsigned char* asBin = MStringToMBin(const_cast<wchar_t*>(L"字节"));
    wchar_t* fromBin = MBinToMString(asBin);
    wchar_t* narrow = MCloneText(const_cast<char*>("narrow"));
    char* multibyte = GetMBSText(const_cast<wchar_t*>(L"multibyte"), mbs);
    int* arrayCopy = MCloneArray(escapedArray, DATATYPE_TEXT_ARRAY);
    ZelMallocer block(64);
    s.Disarm();
    SWEEP_CHECK(s, number == 42 || number == 0);
    SWEEP_CHECK(s, n <= 3 && items.GetSize() <= 3);
    SWEEP_CHECK(s, (unescaped && bytes && back) || s.Injected());
    SWEEP_CHECK(s, !found || property == L"3");
    SWEEP_CHECK(s, left.GetLength() <= 2 && right.GetLength() <= 2);
    for (void* p : {static_cast<void*>(converted), static_cast<void*>(asBin), static_cast<void*>(fromBin),
                    static_cast<void*>(narrow), static_cast<void*>(arrayCopy)})
        zel_free(p);
    (void)multibyte;
    items.RemoveAll();
}

// The converters, clones, wrappers and the byte buffer's edits and files.
void ValueSupportWork(Sweep& s) {
    CountingRuntime rt;
    Values v;
    unsigned char* one = v.Text(L"一");
    unsigned char* two = v.Bin("two");
    // One dimension: word 1 counts dimensions, word 2 is the size, the elements follow.
    int textArray[] = {0, 1, 2, int(reinterpret_cast<intptr_t>(one)), int(reinterpret_cast<intptr_t>(one))};
    int binArray[] = {0, 1, 1, int(reinterpret_cast<intptr_t>(two))};
    TempFile temp("buffer");
    CMiniMem mem;
    CMIntArray numbers;
    s.Arm();
    void* made[] = {MDoubleToMBin(2.5), MIntToMBin(3), MBoolToMString(1), MDoubleToMString(0.25),
                    MIntToMString(-4), MCloneZelText(const_cast<char*>("窄")), MCloneZelTextToString(one),
                    MCloneArray(textArray, DATATYPE_TEXT_ARRAY), MCloneArray(binArray, DATATYPE_BIN_ARRAY)};
    {
        ZelBinWrapper wrapper(16);
        zel_free(wrapper.Detach());  // this runtime takes over no blocks
        ZelTextWrapper text(const_cast<wchar_t*>(L"包装"));
    }
    mem.AddText(const_cast<wchar_t*>(L"文本"));
    mem.AddBin(two);
    mem.Insert(0, const_cast<char*>("head"), 4);
    mem.Replace(0, 4, reinterpret_cast<unsigned char*>(const_cast<char*>("HEADER")), 6);
    mem.Remove(0, 2);
    int wrote = mem.WriteIntoFile(const_cast<wchar_t*>(temp.wide()), -1);
    CMiniMem back;
    int read = back.ReadFromFile(const_cast<wchar_t*>(temp.wide()), -1);
    for (int i = 0; i < 100; ++i) numbers.AddInt(i);
    s.Disarm();
    SWEEP_CHECK(s, !wrote || !read || back.GetSize() == mem.GetSize() || s.Injected());
    SWEEP_CHECK(s, numbers.GetSize() % 4 == 0);
    for (void* p : made) {
        int* words = static_cast<int*>(p);
        // The array clones' elements are blocks of their own.
        if ((p == made[7] || p == made[8]) && !IsConstData(p))
            for (int i = 0; i < words[2]; ++i) zel_free(reinterpret_cast<void*>(intptr_t(words[3 + i])));
        zel_free(p);
    }
    SWEEP_CHECK(s, rt.LiveValues() == 0);
}

// The tables are made inside the sweep, so their bucket arrays can fail too.
void HashWork(Sweep& s) {
    alignas(CPtr2PtrHashmap) unsigned char numbersRoom[sizeof(CPtr2PtrHashmap)];
    alignas(CText2PtrHashmap) unsigned char namesRoom[sizeof(CText2PtrHashmap)];
    wchar_t key[8];
    CThreadSafePtr2PtrHashmap shared;
    s.Arm();
    auto& numbers = *new (numbersRoom) CPtr2PtrHashmap;
    auto& names = *new (namesRoom) CText2PtrHashmap(2);
    names.SetIsNeedFreeKey(1);
    int stored = 0;
    for (int i = 1; i <= 40; ++i) stored += numbers.Set(reinterpret_cast<void*>(i), &numbers);
    for (int i = 0; i < 6; ++i) {
        std::swprintf(key, 8, L"k%d", i);
        wchar_t* copy = MCloneText(key);
        if (!names.Set(copy, &names)) zel_free(copy);
    }
    shared.Set(&shared, &shared);
    HashKV_iterator* it = numbers.CreateIterator();
    numbers.Remove(reinterpret_cast<void*>(7));
    s.Disarm();
    SWEEP_CHECK(s, numbers.GetCount() == stored - (stored == 40 ? 1 : 0) || s.Injected());
    SWEEP_CHECK(s, numbers.GetCount() <= 40);
    delete it;
    numbers.~CPtr2PtrHashmap();
    names.~CText2PtrHashmap();
}

void FileClassWork(Sweep& s) {
    CountingRuntime rt;
    Values v;
    TempFile temp("class");
    unsigned char* name = v.Text(temp.wide());
    unsigned char* bytes = v.Bin("twelve bytes");
    wchar_t characters[] = L"pointer text";
    TestObject file(&g_info_File, nullptr, File_Free, 2), pointer(&g_info_Pointer);
    Pointer_SetAddress(pointer, int(reinterpret_cast<intptr_t>(characters)));
    s.Arm();
    File_Init(file);
    int opened = File_Open(file, name, 5);
    int wrote = File_Write(file, bytes);
    File_SeekToBegin(file);
    int ok = 0;
    unsigned char* read = File_Read(file, 12, &ok);
    int length = File_GetLength(file);
    File_Close(file);
    Drop(Pointer_ReadText(pointer, 7));
    Drop(Pointer_ReadBin(pointer, 8));
    s.Disarm();
    SWEEP_CHECK(s, !opened || !wrote || length > 0);
    SWEEP_CHECK(s, !read || MGetZelBinLength(read) == 0 || MGetZelBinLength(read) == 12);
    Drop(read);
    SWEEP_CHECK(s, rt.LiveValues() == 0);
}

}  // namespace

const std::vector<Workload>& Workloads() {
    static const std::vector<Workload> all = {
        {"list", ListWork},     {"map", MapWork},         {"stack", StackWork},   {"text", StringWork},
        {"values", ValueWork},  {"support", SupportWork}, {"streams", StreamWork}, {"files", FileWork},
        {"geometry", GeometryWork}, {"map-by-value", MapByValueWork}, {"text-support", TextSupportWork},
        {"hash", HashWork}, {"file-class", FileClassWork}, {"value-support", ValueSupportWork},
    };
    return all;
}

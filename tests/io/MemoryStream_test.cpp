// CMemoryStream's byte format and reads, and the three memory stream classes
// as the stream calls of Serialize hooks reach them.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "common/test_object.h"
#include "io/MemoryStream.h"
#include "io_test_util.h"
#include "runtime/services.h"
#include "runtime/stream_calls.h"
#include "runtime/values.h"

extern "C" {
extern tagTBaseTypeInfo g_info_MemoryStream, g_info_MemoryIStream, g_info_MemoryOStream;
void MemoryStream_Init(ZelObject*);
void MemoryStream_Free(ZelObject*);
int MemoryStream_GetLength(ZelObject*);
}

namespace {

std::string Bytes(CMemoryStream& s) {
    return s.GetData() ? std::string(reinterpret_cast<char*>(s.GetData()), s.GetLength()) : "";
}

TEST(MemoryStream, TheFormatIsPackedLittleEndianWithoutTags) {
    CMemoryStream s;
    EXPECT_EQ(s.WriteInt(7), 1);
    EXPECT_EQ(s.WriteText(const_cast<wchar_t*>(L"ab")), 1);
    EXPECT_EQ(s.WriteDouble(1.5), 1);
    const unsigned char expected[24] = {0x07, 0, 0, 0, 0x61, 0, 0, 0, 0x62, 0, 0, 0,
                                        0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xF8, 0x3F};
    ASSERT_EQ(s.GetLength(), 24);
    EXPECT_EQ(std::memcmp(s.GetData(), expected, 24), 0);

    EXPECT_EQ(s.ReadInt(), 7);
    EXPECT_EQ(Owned(s.ReadText()).text(), L"ab");
    EXPECT_EQ(s.ReadDouble(), 1.5);
    EXPECT_EQ(s.GetPosition(), 24);
}

TEST(MemoryStream, ReadClipsToWhatRemains) {
    CMemoryStream s;
    s.InitData(const_cast<char*>("0123456789ABCDEFGHIJ"), 20);
    Owned first(s.Read(10));
    Owned rest(s.Read(100));
    EXPECT_EQ(rest.bytes(), "ABCDEFGHIJ");
    EXPECT_EQ(s.GetPosition(), 20);
    Owned none(s.Read(5));
    EXPECT_EQ(none.binLength(), 0);
    s.InitData(const_cast<char*>("01"), 2);  // keeps the position, now past the end
    EXPECT_EQ(s.GetPosition(), 20);
    EXPECT_EQ(s.Read(5), nullptr);
    EXPECT_EQ(s.Read(-1), nullptr);
}

// Malformed data never reads outside the buffer nor moves past the length.
TEST(MemoryStream, MalformedTextsAndByteSetsTakeWhatIsThere) {
    CMemoryStream text;
    text.InitData(const_cast<wchar_t*>(L"abc"), 12);  // no zero unit
    EXPECT_EQ(Owned(text.ReadText()).text(), L"abc");
    EXPECT_EQ(text.GetPosition(), 12);
    EXPECT_EQ(Owned(text.ReadText()).text(), L"");
    EXPECT_EQ(text.GetPosition(), 12);

    int header[] = {0, 1, 1000};
    CMemoryStream longCount;
    longCount.InitData(header, 12);
    longCount.AddText(const_cast<wchar_t*>(L"x"));
    Owned partial(longCount.ReadBin());
    EXPECT_EQ(partial.binLength(), 4);
    EXPECT_EQ(longCount.GetPosition(), longCount.GetLength());

    CMemoryStream cutHeader;
    cutHeader.InitData(header, 10);
    EXPECT_EQ(Owned(cutHeader.ReadBin()).binLength(), 0);
    EXPECT_LE(cutHeader.GetPosition(), 10);

    CMemoryStream tiny;
    tiny.InitData(header, 2);
    EXPECT_EQ(Owned(tiny.ReadBin()).binLength(), 0);
    EXPECT_EQ(tiny.GetPosition(), 2);
}

TEST(MemoryStream, CopiesTakeBytesNotPositions) {
    CMemoryStream a;
    a.WriteInt(1);
    a.WriteInt(2);
    a.ReadInt();
    CMemoryStream b(a);
    EXPECT_EQ(b.GetPosition(), 0);
    EXPECT_EQ(Bytes(b), Bytes(a));
    CMemoryStream c;
    c.WriteInt(9);
    c.ReadInt();
    c = a;
    EXPECT_EQ(c.GetPosition(), 4);
    EXPECT_EQ(c.ReadInt(), 2);
    c = c;
    EXPECT_EQ(c.GetLength(), 8);
    c.Init();
    EXPECT_EQ(c.GetLength(), 0);
    EXPECT_EQ(c.GetPosition(), 0);
    EXPECT_EQ(c.GetData(), nullptr);
}

// What a Serialize hook writes through 系统.输出流 reads back through
// 系统.输入流 of the same stream object.
TEST(MemoryStreamClasses, SlotsServeBothStreamInterfaces) {
    TestObject s(&g_info_MemoryStream, MemoryStream_Init, MemoryStream_Free);
    Owned text(zel::NewText(L"名字"));
    Owned bin(MakeBin("ab"));
    EXPECT_TRUE(zel::StreamWriteInt(s, -3));
    EXPECT_TRUE(zel::StreamWriteDouble(s, 2.25));
    EXPECT_TRUE(zel::StreamWriteBool(s, 1));
    EXPECT_TRUE(zel::StreamWriteText(s, text.h));
    EXPECT_TRUE(zel::StreamWriteBin(s, bin.h));
    EXPECT_EQ(MemoryStream_GetLength(s), 4 + 8 + 4 + 12 + 14);

    EXPECT_EQ(zel::StreamReadInt(s), -3);
    EXPECT_EQ(zel::StreamReadDouble(s), 2.25);
    EXPECT_EQ(zel::StreamReadBool(s), 1);
    EXPECT_EQ(Owned(zel::StreamReadText(s)).text(), L"名字");
    EXPECT_EQ(Owned(zel::StreamReadBin(s)).bytes(), "ab");

    for (tagTBaseTypeInfo* record : {&g_info_MemoryStream, &g_info_MemoryIStream, &g_info_MemoryOStream})
        for (int i = 0; i < record->interfaceCount; ++i) {
            EXPECT_EQ(record->interfaces[i].slotCount, 6);
            auto nothing = reinterpret_cast<int (*)(ZelObject*)>(record->interfaces[i].slots[5]);
            EXPECT_EQ(nothing(s), 0);
        }
    EXPECT_EQ(g_info_MemoryStream.interfaceCount, 2);
    EXPECT_EQ(zel::InterfaceSlot(TestObject(&g_info_MemoryIStream).get(), L"系统.输出流", 1), nullptr);
}

}  // namespace

// The owning wrappers of runtime handles and blocks, and the stream-call
// helpers that Serialize and Unserialize hooks go through.
#include <gtest/gtest.h>

#include <cstring>

#include <zel/memory.h>
#include <zel/stream_calls.h>
#include <zel/values.h>

#include "common/counting_runtime.h"
#include "common/test_object.h"

extern "C" {
extern tagTBaseTypeInfo g_info_MemoryStream, g_info_MemoryIStream, g_info_MemoryOStream, g_info_Point;
void MemoryIStream_Init(ZelObject*), MemoryIStream_Free(ZelObject*);
void MemoryOStream_Init(ZelObject*), MemoryOStream_Free(ZelObject*);
}

// ZelMallocer owns one block at a time: a new one frees the old (the
// sanitizers see any leak).
TEST(Wrappers, MallocerOwnsOneBlockAtATime) {
    ZelMallocer block(16);
    ASSERT_NE(block.GetData(), nullptr);
    block.Atach(zel_malloc(4), 4);
    EXPECT_EQ(block.GetSize(), 4);
    zel_free(block.Detach());
    EXPECT_TRUE(block.GetData() == nullptr && block.GetSize() == 0);
}

TEST(Wrappers, TextAndBinWrappersReleaseWhatTheyHold) {
    CountingRuntime runtime;
    {
        ZelTextWrapper text(const_cast<wchar_t*>(L"工具"));
        EXPECT_STREQ(static_cast<wchar_t*>(text), L"工具");
        EXPECT_EQ(runtime.LiveValues(), 1);
        text.Atach(zel::NewText(L"b"));  // releases the first text
        EXPECT_EQ(runtime.LiveValues(), 1);
        EXPECT_STREQ(text.GetText(), L"b");
        ZelBinWrapper bin(const_cast<char*>("xyz"), 3);
        EXPECT_EQ(bin.GetCDataLength(), 3);
        EXPECT_EQ(runtime.LiveValues(), 2);
    }
    EXPECT_EQ(runtime.LiveValues(), 0);

    // Detach hands the value over: the wrapper no longer releases it.
    unsigned char* kept;
    {
        ZelTextWrapper text(const_cast<wchar_t*>(L"kept"));
        kept = static_cast<unsigned char*>(text.Detach());
        EXPECT_EQ(text.GetText(), nullptr);
    }
    EXPECT_EQ(runtime.LiveValues(), 1);
    zel::Release(kept);
}

TEST(Wrappers, DataWrapperBalancesTheReferenceItTakes) {
    CountingRuntime runtime;
    TestObject object(&g_info_Point);
    {
        ZelDataWrapper held(object.get());
        held.AddRef();
        EXPECT_EQ(runtime.Net(object), 1);
    }
    EXPECT_EQ(runtime.Net(object), 0);
}

TEST(Wrappers, BinAndObjectWithoutTheRuntimeServices) {
    // Without a runtime to take the block over, the handle is the block; a
    // negative length still gets the three header words.
    ZelBinWrapper odd(-7);
    ASSERT_NE(odd.GetData(), nullptr);
    EXPECT_EQ(odd.GetCDataLength(), -7);
    zel_free(odd.Detach());
    CountingRuntime runtime;  // it has no object service
    ZelObjectWrapper object(const_cast<wchar_t*>(L"工具.坐标点"));
    EXPECT_EQ(static_cast<ZelObject*>(object), nullptr);
}

TEST(StreamCalls, OneDirectionStreamsAndOtherObjectsGiveTheSentinels) {
    CountingRuntime runtime;
    TestObject input(&g_info_MemoryIStream, MemoryIStream_Init, MemoryIStream_Free);
    TestObject output(&g_info_MemoryOStream, MemoryOStream_Init, MemoryOStream_Free);
    TestObject point(&g_info_Point);
    EXPECT_FALSE(zel::StreamWriteText(input, zel::EmptyText()) || zel::StreamWriteBin(point, zel::EmptyBin()));
    EXPECT_TRUE(zel::StreamReadText(output) == nullptr && zel::StreamReadBin(point) == nullptr);
    // Slots count from 1 and end with the interface.
    EXPECT_EQ(zel::InterfaceSlot(input, L"系统.输入流", 0), nullptr);
    EXPECT_NE(zel::InterfaceSlot(input, L"系统.输入流", 6), nullptr);
    EXPECT_EQ(zel::InterfaceSlot(input, L"系统.输入流", 7), nullptr);
    // An empty input stream reads the sentinels of its own slots.
    EXPECT_EQ(zel::StreamReadDouble(input), -1.0);
    EXPECT_EQ(runtime.LiveValues(), 0);
}

TEST(StreamCalls, AStreamWithoutItsStateReadsSentinelsAndWritesNothing) {
    CountingRuntime runtime;
    TestObject stream(&g_info_MemoryStream);  // no Init hook: no CMemoryStream
    EXPECT_FALSE(zel::StreamWriteInt(stream, 1));
    EXPECT_EQ(zel::StreamReadDouble(stream), -1.0);
    unsigned char* text = zel::StreamReadText(stream);  // an empty text, not null
    EXPECT_STREQ(zel::TextChars(text), L"");
    zel::Release(text);
    EXPECT_EQ(MGetZelBinLength(zel::StreamReadBin(stream)), 0);
    EXPECT_EQ(runtime.LiveValues(), 0);
}

// The owning wrappers of runtime handles, variables that store runtime
// values, and the stream-call helpers that Serialize and Unserialize hooks
// go through.
#include <gtest/gtest.h>

#include <zel/memory.h>
#include <zel/stream_calls.h>
#include <zel/values.h>

#include "common/counting_runtime.h"
#include "common/test_object.h"

extern "C" {
extern tagTBaseTypeInfo g_info_MemoryStream, g_info_MemoryIStream, g_info_Point;
void MemoryIStream_Init(ZelObject*), MemoryIStream_Free(ZelObject*);
}

TEST(Wrappers, WrappersReleaseWhatTheyHoldUnlessDetached) {
    CountingRuntime runtime;
    TestObject object(&g_info_Point);
    unsigned char* kept;
    {
        ZelTextWrapper text(const_cast<wchar_t*>(L"工具"));
        text.Atach(zel::NewText(L"b"));  // releases the first text
        EXPECT_EQ(runtime.LiveValues(), 1);
        EXPECT_STREQ(text.GetText(), L"b");
        ZelBinWrapper bin(const_cast<char*>("xyz"), 3);
        EXPECT_EQ(bin.GetCDataLength(), 3);
        kept = static_cast<unsigned char*>(bin.Detach());  // handed over: no longer released
        ZelDataWrapper held(object.get());
        held.AddRef();
        EXPECT_EQ(runtime.Net(object), 1);
    }
    EXPECT_EQ(runtime.Net(object), 0);
    EXPECT_EQ(runtime.LiveValues(), 1);
    zel::Release(kept);
    ZelObjectWrapper none(const_cast<wchar_t*>(L"工具.坐标点"));  // this runtime makes no objects
    EXPECT_EQ(static_cast<ZelObject*>(none), nullptr);
    ZelDataWrapper empty;
    empty.AddRef();  // nothing held: nothing taken
    EXPECT_EQ(empty.GetData(), nullptr);
}

// Without a runtime to take the block over, the handle is the block; a
// negative length still gets the three header words.
TEST(Wrappers, BinOfANegativeLengthWithoutRuntime) {
    ZelBinWrapper odd(-7);
    ASSERT_NE(odd.GetData(), nullptr);
    EXPECT_EQ(odd.GetCDataLength(), -7);
    zel_free(odd.Detach());
}

TEST(Variables, StoringReleasesTheOldValueAndSharesTheNew) {
    CountingRuntime runtime;
    unsigned char* text = nullptr;
    SetCloneIntoTextVar(&text, zel::NewText(L"一"));
    unsigned char* second = zel::NewText(L"二");
    SetCloneIntoTextVar(&text, second);
    EXPECT_EQ(text, second);
    EXPECT_EQ(runtime.LiveValues(), 1);  // the first text was released
    unsigned char* bin = nullptr;
    SetCloneIntoBinVar(&bin, nullptr);
    EXPECT_EQ(bin, zel::EmptyBin());
    unsigned char bytes[] = {1, 2};
    SetCloneIntoBinVar(&bin, zel::NewBin(bytes, 2));
    int* array = nullptr;
    SetCloneIntoArrayVar(&array, reinterpret_cast<int*>(zel::NewBin(bytes, 2)));
    SetCloneIntoArrayVar(&array, nullptr);
    EXPECT_TRUE(MGetZelBinLength(bin) == 2 && array == reinterpret_cast<int*>(zel::EmptyBin()));
    EXPECT_EQ(runtime.LiveValues(), 2);
    SetCloneIntoBinVar(&bin, nullptr);
    ZelObject* object = nullptr;
    ZelObject other{&other, nullptr, nullptr};
    SetCloneIntoObjectVar(&object, &other);
    EXPECT_TRUE(object == &other && runtime.Net(&other) == 1);
    SetCloneIntoObjectVar(&object, nullptr);
    EXPECT_TRUE(object == nullptr && runtime.Net(&other) == 0);
    SetCloneIntoTextVar(&text, nullptr);
    EXPECT_EQ(runtime.LiveValues(), 0);
}

// Objects that cannot take a call give the sentinels: an input stream has no
// writer, a point no stream at all, a stream without its state reads empty.
TEST(StreamCalls, ObjectsWithoutTheSlotGiveTheSentinels) {
    CountingRuntime runtime;
    TestObject input(&g_info_MemoryIStream, MemoryIStream_Init, MemoryIStream_Free);
    TestObject point(&g_info_Point), stateless(&g_info_MemoryStream);  // no Init hook: no CMemoryStream
    EXPECT_FALSE(zel::StreamWriteText(input, zel::EmptyText()) || zel::StreamWriteBin(point, zel::EmptyBin()));
    EXPECT_EQ(zel::StreamReadBin(point), nullptr);
    // Slots count from 1 and end with the interface.
    EXPECT_EQ(zel::InterfaceSlot(input, L"系统.输入流", 0), nullptr);
    EXPECT_NE(zel::InterfaceSlot(input, L"系统.输入流", 6), nullptr);
    EXPECT_EQ(zel::InterfaceSlot(input, L"系统.输入流", 7), nullptr);
    EXPECT_EQ(zel::StreamReadDouble(input), -1.0);
    EXPECT_FALSE(zel::StreamWriteInt(stateless, 1));
    unsigned char* text = zel::StreamReadText(stateless);  // an empty text, not null
    EXPECT_STREQ(zel::TextChars(text), L"");
    zel::Release(text);
    EXPECT_EQ(runtime.LiveValues(), 0);
}

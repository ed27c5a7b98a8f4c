// How the stream-call helpers find a stream's slot along a class chain, and
// that the slot they remember never serves another class.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include <zel/class_table.h>
#include <zel/stream_calls.h>

#include "runtime/chained_object.h"

namespace {

std::vector<std::string> g_calls;
int WriteIntA(ZelObject*, int v) { g_calls.push_back("A" + std::to_string(v)); return 1; }
int WriteIntB(ZelObject*, int v) { g_calls.push_back("B" + std::to_string(v)); return 1; }
int ReadEleven(ZelObject*) { return 11; }
int ReadEight(ZelObject*) { return 8; }

void* kOutA[] = {zel::Fn2Ptr(WriteIntA), nullptr, nullptr, nullptr, nullptr};
void* kOutB[] = {zel::Fn2Ptr(WriteIntB), nullptr, nullptr, nullptr, nullptr};
void* kInEleven[] = {zel::Fn2Ptr(ReadEleven), nullptr, nullptr, nullptr, nullptr};
void* kInEight[] = {zel::Fn2Ptr(ReadEight), nullptr, nullptr, nullptr, nullptr};
tagInterfaceEntry kStreamA[] = {zel::Interface(L"系统.输出流", kOutA), zel::Interface(L"系统.输入流", kInEleven)};
tagInterfaceEntry kStreamB[] = {zel::Interface(L"系统.输出流", kOutB)};
tagInterfaceEntry kReaderEight[] = {zel::Interface(L"系统.输入流", kInEight)};

tagTBaseTypeInfo Stream(tagInterfaceEntry* entries, int count) {
    tagTBaseTypeInfo r{};
    r.kind = ZEL_KIND_CLASS;
    r.interfaces = entries;
    r.interfaceCount = count;
    return r;
}

TEST(StreamSlots, FoundPastAbsentLevels) {
    tagTBaseTypeInfo a = Stream(kStreamA, 2);
    ChainedObject derived({&a, nullptr});  // the own level has no record: the base serves
    g_calls.clear();
    EXPECT_TRUE(zel::StreamWriteInt(derived, 1));
    EXPECT_EQ(zel::StreamReadInt(derived), 11);
    EXPECT_EQ(zel::StreamReadDouble(derived), -1.0);  // a slot left empty reads the sentinel
    EXPECT_EQ(g_calls, std::vector<std::string>{"A1"});
    ChainedObject noLevels({});
    ZelObject noChain{nullptr, nullptr, nullptr};
    for (ZelObject* odd : {static_cast<ZelObject*>(noLevels), &noChain, static_cast<ZelObject*>(nullptr)}) {
        EXPECT_FALSE(zel::StreamWriteInt(odd, 4));
        EXPECT_EQ(zel::StreamReadInt(odd), -1);
        EXPECT_EQ(zel::InterfaceSlot(odd, L"系统.输出流", 1), nullptr);
    }
}

TEST(StreamSlots, AChainReusedForAnotherClassCallsTheNewClass) {
    tagTBaseTypeInfo a = Stream(kStreamA, 2), b = Stream(kStreamB, 1), plain = Stream(nullptr, 0);
    ChainedObject object({&a});
    g_calls.clear();
    EXPECT_TRUE(zel::StreamWriteInt(object, 1));
    object.chain[1] = int(reinterpret_cast<intptr_t>(&b));  // same chain words, another class
    EXPECT_TRUE(zel::StreamWriteInt(object, 2));
    EXPECT_EQ(zel::StreamReadInt(object), -1);  // b reads nothing
    object.chain[1] = int(reinterpret_cast<intptr_t>(&plain));
    EXPECT_FALSE(zel::StreamWriteInt(object, 3));
    object.chain[1] = int(reinterpret_cast<intptr_t>(&a));
    EXPECT_TRUE(zel::StreamWriteInt(object, 4));
    EXPECT_EQ(g_calls, (std::vector<std::string>{"A1", "B2", "A4"}));
}

// Streams of different classes taking turns on two threads at once each get
// their own slot.
TEST(StreamSlots, ThreadsSharingTheMemoNeverMixUpClasses) {
    tagTBaseTypeInfo elevens = Stream(kStreamA, 2), eights = Stream(kReaderEight, 1);
    ChainedObject eleven({&elevens}), eight({&eights});
    auto reader = [](ZelObject* a, int ra, ZelObject* b, int rb, int* wrong) {
        for (int i = 0; i < 200000; ++i) *wrong += (zel::StreamReadInt(a) != ra) + (zel::StreamReadInt(b) != rb);
    };
    int wrongOne = 0, wrongTwo = 0;
    std::thread one(reader, eleven.get(), 11, eight.get(), 8, &wrongOne);
    std::thread two(reader, eight.get(), 8, eleven.get(), 11, &wrongTwo);
    one.join();
    two.join();
    EXPECT_EQ(wrongOne + wrongTwo, 0);
}

}  // namespace

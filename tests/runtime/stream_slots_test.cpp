// How the stream-call helpers find a stream's slot along odd class chains,
// and that a chain reused for another class never calls the old class's slot.
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
int ReadIntA(ZelObject*) { return 11; }

void* kOutA[] = {zel::Fn2Ptr(WriteIntA), nullptr, nullptr, nullptr, nullptr};
void* kOutB[] = {zel::Fn2Ptr(WriteIntB), nullptr, nullptr, nullptr, nullptr};
void* kInA[] = {zel::Fn2Ptr(ReadIntA), nullptr, nullptr, nullptr, nullptr};

tagInterfaceEntry kStreamA[] = {zel::Interface(L"系统.输出流", kOutA), zel::Interface(L"系统.输入流", kInA)};
tagInterfaceEntry kStreamB[] = {zel::Interface(L"系统.输出流", kOutB)};
// Declares the interface but has no slot table; a second entry of the same name does.
tagInterfaceEntry kHollowFirst[] = {tagInterfaceEntry{const_cast<wchar_t*>(L"系统.输出流"), 0, 5, nullptr},
                                    zel::Interface(L"系统.输出流", kOutB)};

tagTBaseTypeInfo Stream(tagInterfaceEntry* entries, int count) {
    tagTBaseTypeInfo r{};
    r.kind = ZEL_KIND_CLASS;
    r.interfaces = entries;
    r.interfaceCount = count;
    return r;
}

int ReadsEight(ZelObject*) { return 8; }
void* kInEight[] = {zel::Fn2Ptr(ReadsEight), nullptr, nullptr, nullptr, nullptr};
tagInterfaceEntry kReaderEight[] = {zel::Interface(L"系统.输入流", kInEight)};

TEST(StreamSlots, FoundPastAbsentLevelsAndHollowEntries) {
    tagTBaseTypeInfo a = Stream(kStreamA, 2), hollow = Stream(kHollowFirst, 2);
    ChainedObject derived({&a, nullptr});  // the own level has no record: the base serves
    g_calls.clear();
    EXPECT_TRUE(zel::StreamWriteInt(derived, 1));
    EXPECT_EQ(zel::StreamReadInt(derived), 11);
    EXPECT_EQ(zel::StreamReadDouble(derived), -1.0);  // a slot left empty reads the sentinel
    ChainedObject skipsHollow({&hollow});
    EXPECT_TRUE(zel::StreamWriteInt(skipsHollow, 2));
    EXPECT_EQ(zel::InterfaceSlot(skipsHollow, L"系统.输出流", 1), zel::Fn2Ptr(WriteIntB));
    // An interface record in the chain is no class: its entries are not slots.
    tagTBaseTypeInfo notAClass = Stream(kStreamB, 1);
    notAClass.kind = ZEL_KIND_INTERFACE;
    ChainedObject withInterface({&a, &notAClass});
    EXPECT_TRUE(zel::StreamWriteInt(withInterface, 3));
    EXPECT_EQ(g_calls, (std::vector<std::string>{"A1", "B2", "A3"}));

    ChainedObject noLevels({});
    EXPECT_FALSE(zel::StreamWriteInt(noLevels, 4));
    EXPECT_EQ(g_calls.size(), 3u);
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

// The helpers remember the slot found last: streams of different classes
// taking turns, on two threads at once, each get their own.
TEST(StreamMemo, ThreadsSharingTheMemoNeverMixUpClasses) {
    tagTBaseTypeInfo elevens = Stream(kStreamA, 2), eights = Stream(kReaderEight, 1);
    ChainedObject eleven({&elevens}), eight({&eights});
    auto reader = [](ZelObject* a, int ra, ZelObject* b, int rb, int* wrong) {
        for (int i = 0; i < 200000; ++i) {
            if (zel::StreamReadInt(a) != ra) ++*wrong;
            if (zel::StreamReadInt(b) != rb) ++*wrong;
        }
    };
    int wrongOne = 0, wrongTwo = 0;
    std::thread one(reader, eleven.get(), 11, eight.get(), 8, &wrongOne);
    std::thread two(reader, eight.get(), 8, eleven.get(), 11, &wrongTwo);
    one.join();
    two.join();
    EXPECT_EQ(wrongOne + wrongTwo, 0);
}

}  // namespace

// zel::StreamReadInt remembers the slot it found last: streams of different
// classes taking turns, on one thread and on two at once, each get their own.
#include <gtest/gtest.h>

#include <thread>

#include <zel/class_table.h>
#include <zel/stream_calls.h>

#include "common/test_object.h"

namespace {

int ReadsSeven(ZelObject*) { return 7; }
int ReadsEight(ZelObject*) { return 8; }

void* kSevenSlots[] = {zel::Fn2Ptr(ReadsSeven)};
void* kEightSlots[] = {zel::Fn2Ptr(ReadsEight)};
tagInterfaceEntry kSevenInterfaces[] = {zel::Interface(L"系统.输入流", kSevenSlots)};
tagInterfaceEntry kEightInterfaces[] = {zel::Interface(L"系统.输入流", kEightSlots)};
tagMethodItem kNoMethods[] = {zel::Method(L"无", L"_i", ReadsSeven, L"")};
tagTBaseTypeInfo g_seven =
    zel::WithInterfaces(zel::ClassRecord(L"测试.七", L"", kNoMethods, nullptr), kSevenInterfaces);
tagTBaseTypeInfo g_eight =
    zel::WithInterfaces(zel::ClassRecord(L"测试.八", L"", kNoMethods, nullptr), kEightInterfaces);

TEST(StreamMemo, StreamsOfOtherClassesTakingTurnsGetTheirOwnSlots) {
    TestObject seven(&g_seven), eight(&g_eight);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(zel::StreamReadInt(seven), 7);
        EXPECT_EQ(zel::StreamReadInt(seven), 7);
        EXPECT_EQ(zel::StreamReadInt(eight), 8);
        EXPECT_EQ(zel::StreamReadDouble(eight), -1.0);  // no second slot
    }
}

TEST(StreamMemo, ThreadsSharingTheMemoNeverMixUpClasses) {
    TestObject seven(&g_seven), eight(&g_eight);
    auto reader = [](ZelObject* a, int ra, ZelObject* b, int rb, int* wrong) {
        for (int i = 0; i < 200000; ++i) {
            if (zel::StreamReadInt(a) != ra) ++*wrong;
            if (zel::StreamReadInt(b) != rb) ++*wrong;
        }
    };
    int wrongOne = 0, wrongTwo = 0;
    std::thread one(reader, seven.get(), 7, eight.get(), 8, &wrongOne);
    std::thread two(reader, eight.get(), 8, seven.get(), 7, &wrongTwo);
    one.join();
    two.join();
    EXPECT_EQ(wrongOne + wrongTwo, 0);
}

}  // namespace

// Wrapped keys are covered end to end by tests/scripts/containers_map.zs; these pin the raw
// values, the odd orders kept on purpose and the references a node holds.
#include <zel/node.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <utility>

#include "common/test_object.h"
#include "common/counting_runtime.h"
#include "node_relations.h"
#include <zel/class_table.h>

namespace {

// Stand-ins for the wrapper classes, with their names and getters; each keeps
// its value at data word 0 (the text and the byte set by pointer).
void* State(ZelObject* o) { return GetDataItemData(o, 1, 0); }
int IntValue(ZelObject* o) { return int(reinterpret_cast<intptr_t>(State(o))); }
unsigned char* TextValue(ZelObject* o) { return zel::NewText(static_cast<wchar_t*>(State(o))); }
int BinLength(ZelObject* o) { return MGetZelBinLength(static_cast<unsigned char*>(State(o))); }
unsigned char* BinValue(ZelObject* o) { return zel::NewBin(MGetZelBinData((unsigned char*)State(o)), BinLength(o)); }

tagMethodItem kIntMethods[] = {zel::Getter(L"整数", L"_i", IntValue)};
tagMethodItem kTextMethods[] = {zel::Getter(L"文本", L"_s", TextValue)};
tagParamItem kBinParam[] = {zel::Param(L"值", L"_bn")};
// Found by name: the length method and the setter come before the getter.
tagMethodItem kBinMethods[] = {zel::Method(L"取数据长度", L"_i", BinLength), zel::Setter(L"字节集", kBinParam, nullptr),
                               zel::Getter(L"字节集", L"_bn", BinValue)};
tagElementItem kElements[] = {zel::HiddenState()};
tagTBaseTypeInfo kInt = zel::ClassRecord(L"工具.整数类", L"", kIntMethods, kElements);
tagTBaseTypeInfo kText = zel::ClassRecord(L"工具.文本类", L"", kTextMethods, kElements);
tagTBaseTypeInfo kBin = zel::ClassRecord(L"工具.字节集类", L"", kBinMethods, kElements);

template <typename T>
CNode Make(void (CNode::*set)(T), T value) {
    CNode node;
    (node.*set)(value);
    return node;
}

TEST(CNode, SetDataCopiesTheBytesItIsGiven) {
    CNode text = Make(&CNode::SetText, (wchar_t*)nullptr);
    EXPECT_EQ(text.GetData(), nullptr);
    EXPECT_TRUE(text == Make(&CNode::SetText, (wchar_t*)nullptr));
    unsigned char bytes[] = {1, 2};
    text.SetData(CNode::NodeBin, bytes, -3);
    EXPECT_EQ(text.GetDataLength(), -3) << "a negative size is kept as the length";

    wchar_t source[] = L"ab";
    CNode node = Make(&CNode::SetInt, 5);
    node.SetText(source);
    source[0] = L'x';
    EXPECT_EQ(node.GetDataLength(), 12);
    EXPECT_STREQ(node.GetText(), L"ab");
    node.SetText(node.GetText() + 1);  // a source inside the node's own bytes
    EXPECT_STREQ(node.GetText(), L"b");

    int sized[] = {0, 1, 8, 4, 0};  // the word at byte 12 says 4: 4 + 8 bytes
    int oversized[] = {0, 1, 4, 1000}, empty[] = {0, 1, 0};  // too long, or no such word: the whole block
    for (auto [block, length] : {std::pair{sized, 12}, {oversized, 16}, {empty, 12}}) {
        node.SetBin(reinterpret_cast<unsigned char*>(block));
        EXPECT_EQ(node.GetDataLength(), length);
    }
}

TEST(CNode, ValuesCompareByTypeThenLengthThenValue) {
    EXPECT_EQ(Relate(Make(&CNode::SetInt, -1), Make(&CNode::SetInt, 1)), kBelow);
    EXPECT_EQ(Relate(Make(&CNode::SetInt, 5), Make(&CNode::SetDouble, 5.0)), kUnrelated);
    EXPECT_EQ(Relate(Make(&CNode::SetDouble, double(NAN)), Make(&CNode::SetDouble, double(NAN))), kUnrelated);
    EXPECT_EQ(Relate(Make(&CNode::SetBool, 1), Make(&CNode::SetBool, 2)), kBelow) << "logicals are not folded";
    EXPECT_EQ(Relate(Make(&CNode::SetText, (wchar_t*)L"ab"), Make(&CNode::SetText, (wchar_t*)L"a")), kUnrelated)
        << "texts of different lengths are equivalent";

    unsigned char low[] = {0x7f, 9}, high[] = {0x80, 0};
    CNode a, b;
    a.SetBin(low, 2);
    b.SetBin(high, 2);
    EXPECT_EQ(Relate(a, b), kBelow) << "bytes compare unsigned";
    // Too few bytes for an integer: compared as bytes, never read past.
    a.SetData(CNode::NodeInt, low, 1);
    b.SetData(CNode::NodeInt, high, 1);
    EXPECT_EQ(Relate(a, b), kBelow);
    EXPECT_EQ(a.GetInt(), 0);
}

TEST(CNode, WrappedValuesGoThroughGettersOfTheirOwnClassOnly) {
    CountingRuntime runtime;
    int abc[] = {0, 1, 3, 0x636261}, abd[] = {0, 1, 3, 0x646261};
    Boxed x(&kBin, abc), y(&kBin, abd);
    // Equality reads the blocks from their start, header included, so two sets
    // of three bytes are equal whatever their bytes; the order reads the data.
    EXPECT_EQ(Relate(x.node(), y.node()), (Relations{true, true, false}));
    Boxed number(&kInt, reinterpret_cast<void*>(7)), text(&kText, L"7");
    EXPECT_FALSE(number.node() == text.node()) << "different classes: identity decides";
    EXPECT_FALSE(text.node() == number.node());
    EXPECT_EQ(runtime.LiveValues(), 0) << "the texts and byte sets the getters made are dropped";
}

TEST(CNode, CopiesHoldTheirOwnReferenceAndComparingTakesNone) {
    CountingRuntime runtime;
    Boxed seven(&kInt, reinterpret_cast<void*>(7)), eight(&kInt, reinterpret_cast<void*>(8));
    {
        CNode node = seven.node(), copy(node), other = eight.node();
        EXPECT_EQ(runtime.Net(seven), 2);
        (void)(node == other), (void)(node < other);
        EXPECT_EQ(runtime.Net(seven), 2);
        ZelObject* got = node.GetObject();
        EXPECT_EQ(got, seven.get()) << "the object itself, not the stored copy";
        EXPECT_EQ(runtime.Net(seven), 3);
        zel::Release(got);
        copy = copy;
        copy = other;
        EXPECT_EQ(runtime.Net(seven), 1);
        EXPECT_EQ(runtime.Net(eight), 2);
        node.SetInt(1);
        EXPECT_EQ(runtime.Net(seven), 0) << "a new value drops the object";
        EXPECT_EQ(node.GetObject(), nullptr) << "only object nodes hand out objects";
    }
    EXPECT_EQ(runtime.Net(eight), 0);
}

}  // namespace

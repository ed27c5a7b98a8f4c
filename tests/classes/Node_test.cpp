// Wrapped keys are covered end to end by tests/scripts/containers_map.zs; these pin the raw
// values, the odd orders kept on purpose, the references a node holds, and nodes
// that hold nothing, too little or malformed bytes.
#include <zel/node.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <new>
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

// Malformed stand-ins: byte sets whose getter gives fewer bytes than they report.
int ReportedLength(ZelObject* o) { return int(reinterpret_cast<intptr_t>(State(o))); }
unsigned char* TwoBytes(ZelObject*) { return zel::NewBin("xy", 2); }
int TwoReported(ZelObject*) { return 2; }
unsigned char* BytesOfState(ZelObject* o) {
    auto* bytes = static_cast<const char*>(State(o));
    return zel::NewBin(bytes, int(std::strlen(bytes)));
}

tagMethodItem kShortBinMethods[] = {zel::Method(L"取数据长度", L"_i", ReportedLength),
                                    zel::Getter(L"字节集", L"_bn", TwoBytes)};
tagMethodItem kMixedBinMethods[] = {zel::Method(L"取数据长度", L"_i", TwoReported),
                                    zel::Getter(L"字节集", L"_bn", BytesOfState)};
tagTBaseTypeInfo kShortBin = zel::ClassRecord(L"工具.字节集类", L"", kShortBinMethods, kElements);
tagTBaseTypeInfo kMixedBin = zel::ClassRecord(L"工具.字节集类", L"", kMixedBinMethods, kElements);

TEST(CNode, SetDataCopiesTheBytesItIsGiven) {
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

TEST(CNode, ShortAndMisfitNodesReadAsNothing) {
    unsigned char four[] = {1, 0, 0, 0};
    CNode shortDouble, nullBlock, noObject, smallObject;
    shortDouble.SetData(CNode::NodeDouble, four, 4);
    nullBlock.SetBin(static_cast<unsigned char*>(nullptr));
    noObject.SetObject(nullptr);
    smallObject.SetData(CNode::NodeObject, four, 4);
    for (const CNode* node : {&shortDouble, &nullBlock, &smallObject}) {
        EXPECT_EQ(node->GetDouble(), 0.0);
        EXPECT_EQ(node->GetObject(), nullptr) << "no whole handle, no object";
    }
    int length = -1;
    EXPECT_TRUE(nullBlock.GetBin(&length) == nullptr && length == 0);
    EXPECT_EQ(shortDouble.GetInt(), 1);

    CNode target;
    target.SetInt(3);
    target = noObject;  // an empty object node copies as one, taking no reference
    EXPECT_TRUE(target.GetType() == CNode::NodeObject && target.GetData() == nullptr && target.GetDataLength() == 0);
    EXPECT_EQ(Relate(target, noObject), kSame);
}

// Malformed texts compare as bytes; byte sets whose getter hands out fewer
// bytes than reported are compared over what both hand out, never past it.
TEST(CNode, MalformedTextsAndShortByteSets) {
    CNode a, b;
    const wchar_t unterminated[] = {L'x', L'y', L'z'};
    a.SetText(const_cast<wchar_t*>(L"ab"));
    b.SetData(CNode::NodeText, const_cast<wchar_t*>(unterminated), sizeof unterminated);
    EXPECT_EQ(Relate(a, b), kBelow);
    EXPECT_EQ(Relate(b, a), (Relations{false, false, true}));
    unsigned char odd[] = {'a', 0, 0}, same[] = {'a', 0, 0};  // not whole code units: never read as text
    a.SetData(CNode::NodeText, odd, 3);
    b.SetData(CNode::NodeText, same, 3);
    EXPECT_EQ(Relate(a, b), kSame);

    CountingRuntime runtime;
    auto ten = reinterpret_cast<void*>(10), three = reinterpret_cast<void*>(3);
    Boxed short1(&kShortBin, ten), short2(&kShortBin, ten), shorter(&kShortBin, three);
    EXPECT_EQ(Relate(short1.node(), short2.node()), kSame);
    EXPECT_EQ(Relate(shorter.node(), short1.node()), kBelow) << "the shorter reported length comes first";
    Boxed whole(&kMixedBin, "xy"), cut(&kMixedBin, "z");  // both report two bytes; one gives one
    EXPECT_EQ(Relate(whole.node(), cut.node()), kSame);
    EXPECT_EQ(runtime.LiveValues(), 0) << "the getters' values are dropped";
}

// A node that cannot copy raises and keeps its old value (the sweep in
// tests/sweep fails every allocation of nodes on an empty one).
TEST(CNode, ANodeThatCannotCopyRaisesAndHoldsNoReference) {
    CountingRuntime runtime;
    TestObject item(&kInt);
    CNode node;
    node.SetInt(7);
    zel::FailAllocationAfter(1);
    EXPECT_THROW(node.SetObject(item), std::bad_alloc);
    zel::FailAllocationAfter(0);
    EXPECT_EQ(node.GetType(), CNode::NodeInt);
    EXPECT_EQ(node.GetInt(), 7);
    EXPECT_EQ(runtime.Net(item), 0);
}

}  // namespace

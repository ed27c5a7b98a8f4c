// Nodes that hold nothing, too little or malformed bytes, and wrapped values
// whose class lacks the getters a comparison would call.
#include <zel/node.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "common/counting_runtime.h"
#include "common/test_object.h"
#include "node_relations.h"
#include <zel/class_table.h>
#include <zel/services.h>
#include <zel/values.h>

namespace {

TEST(CNodeEdges, EmptyShortAndMisfitNodesReadAsNothing) {
    unsigned char four[] = {1, 0, 0, 0};
    CNode none, shortDouble, nullBytes, nullBlock, noObject, smallObject;
    shortDouble.SetData(CNode::NodeDouble, four, 4);
    nullBytes.SetBin(nullptr, 5);
    nullBlock.SetBin(static_cast<unsigned char*>(nullptr));
    noObject.SetObject(nullptr);
    smallObject.SetData(CNode::NodeObject, four, 4);
    struct Case {
        const CNode& node;
        CNode::NodeType type;
        int length;
    } cases[] = {{none, CNode::NodeNone, 0},       {shortDouble, CNode::NodeDouble, 4},
                 {nullBytes, CNode::NodeBin, 0},   {nullBlock, CNode::NodeBin, 0},
                 {noObject, CNode::NodeObject, 0}, {smallObject, CNode::NodeObject, 4}};
    for (const Case& c : cases) {
        EXPECT_EQ(c.node.GetType(), c.type);
        int length = -1;
        EXPECT_EQ(c.node.GetBin(&length), c.node.GetData());
        EXPECT_EQ(length, c.length);
        EXPECT_EQ(c.node.GetDouble(), 0.0);
        EXPECT_EQ(c.node.GetObject(), nullptr) << "no whole handle, no object";
    }
    EXPECT_EQ(none.GetInt(), 0);
    EXPECT_EQ(shortDouble.GetInt(), 1);
    EXPECT_EQ(none.GetBin(nullptr), nullptr);

    CNode target;
    target.SetInt(3);
    target = noObject;  // an empty object node copies as one, taking no reference
    EXPECT_TRUE(target.GetType() == CNode::NodeObject && target.GetData() == nullptr && target.GetDataLength() == 0);
    EXPECT_EQ(Relate(target, noObject), kSame);
}

TEST(CNodeEdges, TextsOrderByContentAndMalformedTextsByBytes) {
    CNode a, b;
    a.SetText(const_cast<wchar_t*>(L"a"));
    b.SetText(const_cast<wchar_t*>(L"b"));
    EXPECT_EQ(Relate(a, b), kBelow);

    // Same type and length, one without its terminator: both compare as bytes.
    const wchar_t unterminated[] = {L'x', L'y', L'z'};
    a.SetText(const_cast<wchar_t*>(L"ab"));
    b.SetData(CNode::NodeText, const_cast<wchar_t*>(unterminated), sizeof unterminated);
    EXPECT_EQ(Relate(a, b), kBelow);
    EXPECT_EQ(Relate(b, a), (Relations{false, false, true}));
    // A length that is not whole code units is never read as text.
    unsigned char odd[] = {'a', 0, 0}, same[] = {'a', 0, 0};
    a.SetData(CNode::NodeText, odd, 3);
    b.SetData(CNode::NodeText, same, 3);
    EXPECT_EQ(Relate(a, b), kSame);
}

// Stand-ins: an integer class and a byte-set class without methods, a byte
// set whose getter gives fewer bytes than it reports, and a text class.
void* State(ZelObject* o) { return GetDataItemData(o, 1, 0); }
int ReportedLength(ZelObject* o) { return int(reinterpret_cast<intptr_t>(State(o))); }
unsigned char* TwoBytes(ZelObject*) { return zel::NewBin("xy", 2); }
unsigned char* TextOf(ZelObject* o) { return zel::NewText(static_cast<wchar_t*>(State(o))); }
int TwoReported(ZelObject*) { return 2; }
unsigned char* BytesOfState(ZelObject* o) {
    auto* bytes = static_cast<const char*>(State(o));
    return zel::NewBin(bytes, int(std::strlen(bytes)));
}

tagMethodItem kShortBinMethods[] = {zel::Method(L"取数据长度", L"_i", ReportedLength),
                                    zel::Getter(L"字节集", L"_bn", TwoBytes)};
tagMethodItem kTextMethods[] = {zel::Getter(L"文本", L"_s", TextOf)};
tagMethodItem kMixedBinMethods[] = {zel::Method(L"取数据长度", L"_i", TwoReported),
                                    zel::Getter(L"字节集", L"_bn", BytesOfState)};
tagMethodItem kUnrelatedMethods[] = {zel::Method(L"别的", L"_i", TwoReported)};
tagElementItem kElements[] = {zel::HiddenState()};
tagTBaseTypeInfo kBareInt = zel::ClassRecord(L"工具.整数类", L"", nullptr, kElements);
tagTBaseTypeInfo kBareBin = zel::ClassRecord(L"工具.字节集类", L"", nullptr, kElements);
tagTBaseTypeInfo kShortBin = zel::ClassRecord(L"工具.字节集类", L"", kShortBinMethods, kElements);
tagTBaseTypeInfo kText = zel::ClassRecord(L"工具.文本类", L"", kTextMethods, kElements);
tagTBaseTypeInfo kMixedBin = zel::ClassRecord(L"工具.字节集类", L"", kMixedBinMethods, kElements);
tagTBaseTypeInfo kUnrelatedBin = zel::ClassRecord(L"工具.字节集类", L"", kUnrelatedMethods, kElements);
// A record that counts a method but has no table of them.
tagTBaseTypeInfo CountedWithoutTable() {
    tagTBaseTypeInfo record = kBareInt;
    record.methodCount = 1;
    return record;
}
tagTBaseTypeInfo kCountedInt = CountedWithoutTable();

TEST(CNodeEdges, WrappedValuesWithoutGettersOrWithShortBlocks) {
    CountingRuntime runtime;
    Boxed int1(&kBareInt, nullptr), int2(&kBareInt, nullptr);
    EXPECT_EQ(Relate(int1.node(), int2.node()), kSame) << "no getter reads as zero";
    Boxed bin1(&kBareBin, nullptr), bin2(&kBareBin, nullptr);
    EXPECT_EQ(Relate(bin1.node(), bin2.node()), kSame) << "no length, no bytes";
    Boxed counted1(&kCountedInt, nullptr), counted2(&kCountedInt, nullptr);
    EXPECT_EQ(Relate(counted1.node(), counted2.node()), kSame);
    Boxed other1(&kUnrelatedBin, nullptr), other2(&kUnrelatedBin, nullptr);
    EXPECT_EQ(Relate(other1.node(), other2.node()), kSame) << "no method of that name";

    // Both report ten bytes but hand out two: compared over no bytes.
    auto ten = reinterpret_cast<void*>(10), three = reinterpret_cast<void*>(3);
    Boxed short1(&kShortBin, ten), short2(&kShortBin, ten), shorter(&kShortBin, three);
    EXPECT_EQ(Relate(short1.node(), short2.node()), kSame);
    EXPECT_EQ(Relate(shorter.node(), short1.node()), kBelow) << "the shorter reported length comes first";
    Boxed whole(&kMixedBin, "xy"), cut(&kMixedBin, "z");  // both report two bytes; one gives one
    EXPECT_EQ(Relate(whole.node(), cut.node()), kSame);

    Boxed a(&kText, L"a"), b(&kText, L"b");
    EXPECT_EQ(Relate(a.node(), b.node()), kBelow);
    EXPECT_EQ(Relate(a.node(), a.node()), kSame);
    EXPECT_EQ(runtime.LiveValues(), 0) << "the getters' values are dropped";
}

}  // namespace

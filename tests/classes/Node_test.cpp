#include "classes/Node.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

#include "common/test_object.h"
#include "counting_runtime.h"
#include "runtime/class_table.h"

namespace {

// Wrapper classes of the same names and shapes, each keeping its value at
// data word 0 (the double, the text and the byte set by pointer).
void* State(ZelObject* o) { return GetDataItemData(o, 1, 0); }
int IntValue(ZelObject* o) { return int(reinterpret_cast<intptr_t>(State(o))); }
double DoubleValue(ZelObject* o) { return *static_cast<double*>(State(o)); }
unsigned char* TextValue(ZelObject* o) { return zel::NewText(static_cast<wchar_t*>(State(o))); }
unsigned char* BytesValue(ZelObject* o) {
    auto* bin = static_cast<unsigned char*>(State(o));
    return zel::NewBin(MGetZelBinData(bin), MGetZelBinLength(bin));
}
int BytesLength(ZelObject* o) { return MGetZelBinLength(static_cast<unsigned char*>(State(o))); }

tagParamItem kValue[] = {zel::Param(L"值", L"_i")};
tagParamItem kBytes[] = {zel::Param(L"值", L"_bn")};
tagMethodItem kIntMethods[] = {zel::Getter(L"整数", L"_i", IntValue)};
tagMethodItem kDoubleMethods[] = {zel::Getter(L"小数", L"_db", DoubleValue)};
tagMethodItem kBoolMethods[] = {zel::Getter(L"逻辑", L"_b", IntValue)};
tagMethodItem kTextMethods[] = {zel::Getter(L"文本", L"_s", TextValue)};
// The length method and a setter of the same name come before the getter.
tagMethodItem kBytesMethods[] = {
    zel::Method(L"取数据长度", L"_i", BytesLength),
    zel::Setter(L"字节集", kBytes, nullptr),
    zel::Getter(L"字节集", L"_bn", BytesValue),
};
tagMethodItem kOtherMethods[] = {zel::Getter(L"整数", L"_i", IntValue)};
tagElementItem kElements[] = {zel::HiddenState()};
tagTBaseTypeInfo kInt = zel::ClassRecord(L"工具.整数类", L"", kIntMethods, kElements);
tagTBaseTypeInfo kDouble = zel::ClassRecord(L"工具.双精度类", L"", kDoubleMethods, kElements);
tagTBaseTypeInfo kBool = zel::ClassRecord(L"工具.逻辑类", L"", kBoolMethods, kElements);
tagTBaseTypeInfo kText = zel::ClassRecord(L"工具.文本类", L"", kTextMethods, kElements);
tagTBaseTypeInfo kBytesClass = zel::ClassRecord(L"工具.字节集类", L"", kBytesMethods, kElements);
tagTBaseTypeInfo kDatetime = zel::ClassRecord(L"工具.日期时间类", L"", kOtherMethods, kElements);
tagTBaseTypeInfo kPlain = zel::ClassRecord(L"测试.对象", L"", kOtherMethods, kElements);

struct Boxed {
    Boxed(tagTBaseTypeInfo* record, void* state) : object(record) { object.word(1, 0) = state; }
    TestObject object;
};

CNode ObjectNode(ZelObject* obj) {
    CNode node;
    node.SetObject(obj);
    return node;
}

// Both relations of a pair, in both directions.
struct Relations {
    bool equal, less, greater;
};
Relations Relate(const CNode& a, const CNode& b) { return {a == b, a < b, b < a}; }
bool operator==(Relations x, Relations y) { return x.equal == y.equal && x.less == y.less && x.greater == y.greater; }
const Relations kSame{true, false, false}, kBelow{false, true, false}, kUnrelated{false, false, false};

template <typename Set, typename T>
CNode Make(Set set, T value) {
    CNode node;
    (node.*set)(value);
    return node;
}

TEST(CNode, SetDataKeepsTypeLengthAndPrivateBytes) {
    CNode empty, other;
    EXPECT_EQ(Relate(empty, other), kSame);
    EXPECT_EQ(empty.GetInt(), 0) << "no bytes read as 0";

    CNode text;
    text.SetText(nullptr);
    EXPECT_EQ(text.GetType(), CNode::NodeText);
    EXPECT_EQ(text.GetDataLength(), 0);
    EXPECT_EQ(text.GetData(), nullptr);
    CNode text2;
    text2.SetText(nullptr);
    EXPECT_TRUE(text == text2);

    unsigned char bytes[] = {1, 2};
    CNode bin;
    bin.SetBin(bytes, 0);
    EXPECT_EQ(bin.GetType(), CNode::NodeBin);
    EXPECT_EQ(bin.GetDataLength(), 0);
    EXPECT_EQ(bin.GetData(), nullptr);
    bin.SetData(CNode::NodeBin, bytes, -3);
    EXPECT_EQ(bin.GetDataLength(), -3);
    EXPECT_EQ(bin.GetData(), nullptr);

    wchar_t source[] = L"ab";
    CNode node;
    node.SetInt(5);
    node.SetText(source);
    source[0] = L'x';
    EXPECT_EQ(node.GetType(), CNode::NodeText);
    EXPECT_EQ(node.GetDataLength(), 12);
    EXPECT_STREQ(node.GetText(), L"ab");
    node.SetText(node.GetText() + 1);  // a source inside the node's own bytes
    EXPECT_STREQ(node.GetText(), L"b");
}

TEST(CNode, SetBinOfBlockTakesItsSizeFromByteTwelve) {
    int block[] = {0, 1, 8, 4, 0x11223344};  // the word at byte 12 says 4: 12 bytes copied
    CNode node;
    node.SetBin(reinterpret_cast<unsigned char*>(block));
    EXPECT_EQ(node.GetDataLength(), 12);
    int oversized[] = {0, 1, 4, 1000};  // would run past the block: the whole block instead
    node.SetBin(reinterpret_cast<unsigned char*>(oversized));
    EXPECT_EQ(node.GetDataLength(), 16);
    int empty[] = {0, 1, 0};  // no word at byte 12 at all
    node.SetBin(reinterpret_cast<unsigned char*>(empty));
    EXPECT_EQ(node.GetDataLength(), 12);
    node.SetBin(static_cast<unsigned char*>(nullptr));
    EXPECT_EQ(node.GetDataLength(), 0);
}

TEST(CNode, ValuesCompareByTypeThenLengthThenValue) {
    EXPECT_EQ(Relate(Make(&CNode::SetInt, 5), Make(&CNode::SetInt, 5)), kSame);
    EXPECT_EQ(Relate(Make(&CNode::SetInt, -1), Make(&CNode::SetInt, 1)), kBelow);
    EXPECT_EQ(Relate(Make(&CNode::SetInt, 5), Make(&CNode::SetDouble, 5.0)), kUnrelated);
    EXPECT_EQ(Relate(Make(&CNode::SetDouble, 1.5), Make(&CNode::SetDouble, 2.5)), kBelow);
    EXPECT_EQ(Relate(Make(&CNode::SetDouble, NAN), Make(&CNode::SetDouble, NAN)), kUnrelated);
    EXPECT_EQ(Relate(Make(&CNode::SetBool, 1), Make(&CNode::SetBool, 2)), kBelow) << "logicals are not folded";
    EXPECT_EQ(Relate(Make(&CNode::SetText, (wchar_t*)L"a"), Make(&CNode::SetText, (wchar_t*)L"b")), kBelow);
    EXPECT_EQ(Relate(Make(&CNode::SetText, (wchar_t*)L"ab"), Make(&CNode::SetText, (wchar_t*)L"a")), kUnrelated)
        << "texts of different lengths are equivalent";
    EXPECT_TRUE(Make(&CNode::SetText, (wchar_t*)L"ab") != Make(&CNode::SetText, (wchar_t*)L"a"));

    unsigned char low[] = {0x7f, 9}, high[] = {0x80, 0};
    CNode a, b;
    a.SetBin(low, 2);
    b.SetBin(high, 2);
    EXPECT_EQ(Relate(a, b), kBelow) << "bytes compare unsigned";
    b.SetBin(low, 2);
    EXPECT_EQ(Relate(a, b), kSame);

    // Too few bytes for an integer: compared as bytes, never read past.
    a.SetData(CNode::NodeInt, low, 1);
    b.SetData(CNode::NodeInt, high, 1);
    EXPECT_EQ(Relate(a, b), kBelow);
    EXPECT_EQ(a.GetInt(), 0);
}

class CNodeObjects : public ::testing::Test {
protected:
    CountingRuntime runtime;
};

TEST_F(CNodeObjects, WrappedValuesCompareThroughTheirGetters) {
    Boxed seven(&kInt, reinterpret_cast<void*>(7)), seven2(&kInt, reinterpret_cast<void*>(7)),
        eight(&kInt, reinterpret_cast<void*>(8));
    EXPECT_EQ(Relate(ObjectNode(seven.object), ObjectNode(seven2.object)), kSame);
    EXPECT_EQ(Relate(ObjectNode(seven.object), ObjectNode(eight.object)), kBelow);

    double one = 1.0, two = 2.0;
    Boxed d1(&kDouble, &one), d2(&kDouble, &two);
    EXPECT_EQ(Relate(ObjectNode(d1.object), ObjectNode(d2.object)), kBelow);

    Boxed t1(&kBool, reinterpret_cast<void*>(1)), t2(&kBool, reinterpret_cast<void*>(2));
    EXPECT_EQ(Relate(ObjectNode(t1.object), ObjectNode(t2.object)), kBelow);

    Boxed a(&kText, (void*)L"a"), ab(&kText, (void*)L"ab"), b(&kText, (void*)L"b"), ab2(&kText, (void*)L"ab");
    EXPECT_EQ(Relate(ObjectNode(ab.object), ObjectNode(b.object)), kBelow) << "texts of any length by their order";
    EXPECT_EQ(Relate(ObjectNode(a.object), ObjectNode(ab.object)), kBelow);
    EXPECT_EQ(Relate(ObjectNode(ab.object), ObjectNode(ab2.object)), kSame);
    EXPECT_EQ(runtime.LiveValues(), 0) << "the texts the getters made are dropped";
}

TEST_F(CNodeObjects, ByteSetsCompareByLengthThenBytes) {
    int abc[] = {0, 1, 3, 0x636261}, abd[] = {0, 1, 3, 0x646261}, abc2[] = {0, 1, 3, 0x636261}, ab[] = {0, 1, 2, 0x6261};
    Boxed x(&kBytesClass, abc), y(&kBytesClass, abd), x2(&kBytesClass, abc2), shorter(&kBytesClass, ab);
    EXPECT_EQ(Relate(ObjectNode(x.object), ObjectNode(x2.object)), kSame);
    // Equality reads the blocks from their start, header included, so two sets of
    // three bytes are equal whatever their bytes; the order reads the data.
    EXPECT_EQ(Relate(ObjectNode(x.object), ObjectNode(y.object)), (Relations{true, true, false}));
    EXPECT_EQ(Relate(ObjectNode(shorter.object), ObjectNode(x.object)), kBelow);
    EXPECT_EQ(runtime.LiveValues(), 0);
}

TEST_F(CNodeObjects, DatetimesAreNeverEqualAndOthersCompareByIdentity) {
    Boxed when(&kDatetime, nullptr);
    CNode node = ObjectNode(when.object);
    CNode copy(node);
    EXPECT_EQ(Relate(node, copy), kUnrelated);
    EXPECT_FALSE(node == node);

    Boxed p(&kPlain, reinterpret_cast<void*>(7)), q(&kPlain, reinterpret_cast<void*>(7));
    EXPECT_EQ(Relate(ObjectNode(p.object), ObjectNode(p.object)), kSame);
    EXPECT_FALSE(ObjectNode(p.object) == ObjectNode(q.object));
    EXPECT_NE(ObjectNode(p.object) < ObjectNode(q.object), ObjectNode(q.object) < ObjectNode(p.object));

    // A wrapper's getter never runs on another class's object: identity decides.
    Boxed number(&kInt, reinterpret_cast<void*>(7)), text(&kText, (void*)L"7");
    EXPECT_FALSE(ObjectNode(number.object) == ObjectNode(text.object));
    EXPECT_FALSE(ObjectNode(text.object) == ObjectNode(number.object));
}

TEST_F(CNodeObjects, EveryReferenceTakenIsDropped) {
    Boxed seven(&kInt, reinterpret_cast<void*>(7)), eight(&kInt, reinterpret_cast<void*>(8));
    {
        CNode node = ObjectNode(seven.object);
        EXPECT_EQ(runtime.Net(seven.object), 1);
        CNode copy(node), other = ObjectNode(eight.object);
        EXPECT_EQ(runtime.Net(seven.object), 2) << "a copy holds its own reference";
        (void)(node == other), (void)(node < other);
        EXPECT_EQ(runtime.Net(seven.object), 2) << "comparing takes nothing";
        ZelObject* got = node.GetObject();
        EXPECT_EQ(got, seven.object.get()) << "the object itself, not the stored copy";
        EXPECT_EQ(runtime.Net(seven.object), 3);
        zel::Release(got);
        copy = copy;
        copy = other;
        EXPECT_EQ(runtime.Net(seven.object), 1);
        EXPECT_EQ(runtime.Net(eight.object), 2);
        node.SetInt(1);
        EXPECT_EQ(runtime.Net(seven.object), 0) << "a new value drops the object";
        EXPECT_EQ(node.GetObject(), nullptr) << "only object nodes hand out objects";
    }
    EXPECT_EQ(runtime.Net(eight.object), 0);
    CNode none = ObjectNode(nullptr);
    EXPECT_EQ(none.GetDataLength(), 0);
    EXPECT_TRUE(none == ObjectNode(nullptr));
}

}  // namespace

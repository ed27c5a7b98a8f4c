#include <zel/node.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include <zel/loader.h>
#include <zel/memory.h>
#include <zel/services.h>
#include <zel/values.h>
#include <zel/textfuncs.h>

namespace {

enum Test { kEqual, kLess };

// Bytes compared as unsigned from the first; no bytes are equal.
bool ByteRule(const void* a, const void* b, int length, Test test) {
    int order = (length > 0 && a && b) ? std::memcmp(a, b, length) : 0;
    return test == kEqual ? order == 0 : order < 0;
}

template <typename T>
bool Relate(T a, T b, Test test) { return test == kEqual ? a == b : a < b; }

// A reference taken for the length of one comparison.
class HeldObject {
public:
    explicit HeldObject(ZelObject* obj) : m_obj(obj) {}
    ~HeldObject() { if (m_obj) zel::Release(m_obj); }
    HeldObject(const HeldObject&) = delete;
    HeldObject& operator=(const HeldObject&) = delete;
    ZelObject* get() const { return m_obj; }

private:
    ZelObject* m_obj;
};

void* FirstMethod(ZelObject* obj) {
    tagTBaseTypeInfo* cls = ZelOwnClass(obj);
    return cls && cls->methodCount > 0 && cls->methods ? cls->methods[0].function : nullptr;
}

void* MethodNamed(ZelObject* obj, const wchar_t* name, bool getter) {
    tagTBaseTypeInfo* cls = ZelOwnClass(obj);
    if (!cls || !cls->methods) return nullptr;
    for (int i = 0; i < cls->methodCount; ++i) {
        tagMethodItem* item = &cls->methods[i];
        if (mystrcmp(item->name, name) == 0 && (!getter || MethodIsReadProperty(item))) return item->function;
    }
    return nullptr;
}

template <typename R>
R CallGetter(void* fn, ZelObject* obj) {
    return fn ? reinterpret_cast<R (*)(ZelObject*)>(fn)(obj) : R();
}

// A text or byte set made by a getter belongs to the caller: a runtime value
// when there is a runtime, else a plain block.
void DropValue(unsigned char* value) {
    if (!value) return;
    if (g_pGCClassInfo)
        zel::Release(value);
    else
        zel_free(value);
}

bool CompareIntegers(ZelObject* a, ZelObject* b, Test test) {
    return Relate(CallGetter<int>(FirstMethod(a), a), CallGetter<int>(FirstMethod(b), b), test);
}

bool CompareDoubles(ZelObject* a, ZelObject* b, Test test) {
    return Relate(CallGetter<double>(FirstMethod(a), a), CallGetter<double>(FirstMethod(b), b), test);
}

bool NeverRelated(ZelObject*, ZelObject*, Test) { return false; }

bool CompareTexts(ZelObject* a, ZelObject* b, Test test) {
    unsigned char* x = CallGetter<unsigned char*>(FirstMethod(a), a);
    unsigned char* y = CallGetter<unsigned char*>(FirstMethod(b), b);
    int order = mystrcmp(zel::TextChars(x), zel::TextChars(y));
    DropValue(x);
    DropValue(y);
    return test == kEqual ? order == 0 : order < 0;
}

// Equality looks at the blocks from their first byte, the order at their data
// parts; both over the data length.
bool CompareByteSets(ZelObject* a, ZelObject* b, Test test) {
    int lengthA = CallGetter<int>(MethodNamed(a, L"取数据长度", false), a);
    int lengthB = CallGetter<int>(MethodNamed(b, L"取数据长度", false), b);
    if (lengthA != lengthB) return test == kLess && lengthA < lengthB;
    unsigned char* blockA = CallGetter<unsigned char*>(MethodNamed(a, L"字节集", true), a);
    unsigned char* blockB = CallGetter<unsigned char*>(MethodNamed(b, L"字节集", true), b);
    // A block shorter than the reported length is compared over no bytes.
    int length = MGetZelBinLength(blockA) >= lengthA && MGetZelBinLength(blockB) >= lengthA ? lengthA : 0;
    bool result = test == kEqual ? ByteRule(blockA, blockB, length, test)
                                 : ByteRule(MGetZelBinData(blockA), MGetZelBinData(blockB), length, test);
    DropValue(blockA);
    DropValue(blockB);
    return result;
}

struct WrapperRule {
    const wchar_t* className;
    bool (*compare)(ZelObject*, ZelObject*, Test);
    bool callsGetters;
};

// Objects of these classes compare by value; any other object by its handle.
const WrapperRule kWrapperRules[] = {
    {L"工具.整数类", CompareIntegers, true},
    {L"工具.双精度类", CompareDoubles, true},
    {L"工具.逻辑类", CompareIntegers, true},
    {L"工具.日期时间类", NeverRelated, false},
    {L"工具.文本类", CompareTexts, true},
    {L"工具.字节集类", CompareByteSets, true},
};

const WrapperRule* RuleFor(const wchar_t* className) {
    for (const WrapperRule& rule : kWrapperRules)
        if (mystrcmp(className, rule.className) == 0) return &rule;
    return nullptr;
}

// A private copy of size bytes, or null for no bytes; throws std::bad_alloc.
unsigned char* CopyOf(const void* source, int size) {
    if (!source || size <= 0) return nullptr;
    auto* copy = new unsigned char[size];
    std::memcpy(copy, source, size);
    return copy;
}

}  // namespace

CNode::CNode() : m_type(NodeNone), m_length(0), m_data(nullptr) {}

CNode::CNode(CNode const& other) : CNode() { *this = other; }

CNode::~CNode() { ReleaseData(); }

// A copy of an object node holds its own reference. The reference is taken
// once the copy exists and before the old data goes, so a failed allocation
// leaks none and assigning a node to itself keeps the object.
CNode& CNode::operator=(CNode const& other) {
    unsigned char* copy = CopyOf(other.m_data, other.m_length);
    if (other.m_type == NodeObject && copy) zel::AddRef(other.m_data);
    Store(other.m_type, copy, other.m_data ? other.m_length : 0);
    return *this;
}

CNode::NodeType CNode::GetType() const { return m_type; }
int CNode::GetDataLength() const { return m_length; }
void* CNode::GetData() const { return m_data; }

// Reading a node that holds fewer bytes than the value needs gives 0.
int CNode::GetInt() const {
    int value = 0;
    if (m_data && m_length >= int(sizeof value)) std::memcpy(&value, m_data, sizeof value);
    return value;
}

int CNode::GetBool() const { return GetInt(); }

double CNode::GetDouble() const {
    double value = 0;
    if (m_data && m_length >= int(sizeof value)) std::memcpy(&value, m_data, sizeof value);
    return value;
}

wchar_t* CNode::GetText() const { return reinterpret_cast<wchar_t*>(m_data); }

unsigned char* CNode::GetBin(int* length) const {
    if (length) *length = m_length;
    return m_data;
}

// Only a node holding a whole handle copy has an object to hand out.
ZelObject* CNode::GetObject() const {
    if (m_type != NodeObject || !m_data || m_length != int(sizeof(ZelObject))) return nullptr;
    return static_cast<ZelObject*>(zel::AddRef(m_data));
}

void CNode::ReleaseData() {
    if (m_type == NodeObject && m_data) zel::Release(m_data);
    delete[] m_data;
    m_data = nullptr;
}

// The bytes are copied before the old data is released, so a source inside
// this node's own data stays readable.
void CNode::SetData(CNode::NodeType type, void* source, int size) { Store(type, CopyOf(source, size), source ? size : 0); }

void CNode::Store(CNode::NodeType type, unsigned char* copy, int length) {
    ReleaseData();
    m_type = type;
    m_length = length;
    m_data = copy;
}

void CNode::SetInt(int value) { SetData(NodeInt, &value, sizeof value); }
void CNode::SetDouble(double value) { SetData(NodeDouble, &value, sizeof value); }
void CNode::SetBool(int value) { SetData(NodeBool, &value, sizeof value); }

void CNode::SetText(wchar_t* text) {
    SetData(NodeText, text, text ? int(sizeof(wchar_t)) * (mystrlen(text) + 1) : 0);
}

void CNode::SetBin(unsigned char* bytes, int count) { SetData(NodeBin, bytes, bytes ? count : 0); }

// The size is the word at byte 12 plus 8; when that word does not exist or
// the size would run past the block, the whole block is copied instead.
void CNode::SetBin(unsigned char* block) {
    if (!block) return SetBin(nullptr, 0);
    int64_t whole = 12 + int64_t(std::max(MGetZelBinLength(block), 0));
    int64_t size = whole;
    if (whole >= 16) {
        int word;
        std::memcpy(&word, block + 12, sizeof word);
        if (int64_t(word) + 8 <= whole) size = int64_t(word) + 8;
    }
    SetData(NodeBin, block, int(size));
}

// The reference is taken once the copy exists: a failed allocation leaks none.
void CNode::SetObject(ZelObject* object) {
    unsigned char* copy = CopyOf(object, sizeof(ZelObject));
    if (copy) zel::AddRef(object);
    Store(NodeObject, copy, object ? int(sizeof(ZelObject)) : 0);
}

namespace {

// Whether the bytes hold a whole value of the node's type; anything else is
// compared by its bytes, so no comparison reads past the data.
bool WellFormed(CNode::NodeType type, const unsigned char* data, int length) {
    if (!data) return false;
    switch (type) {
    case CNode::NodeInt:
    case CNode::NodeBool: return length == 4;
    case CNode::NodeDouble: return length == 8;
    case CNode::NodeObject: return length == int(sizeof(ZelObject));
    case CNode::NodeText: {
        if (length % int(sizeof(wchar_t)) != 0) return false;
        wchar_t last;
        std::memcpy(&last, data + length - sizeof last, sizeof last);
        return last == 0;
    }
    default: return false;
    }
}

bool CompareObjectNodes(const CNode& a, const CNode& b, Test test) {
    HeldObject x(a.GetObject());
    HeldObject y(b.GetObject());
    auto handles = [&] { return ByteRule(a.GetData(), b.GetData(), a.GetDataLength(), test); };
    if (!x.get() || !y.get()) return handles();
    const wchar_t* className = MGetClassName(x.get());
    const WrapperRule* rule = RuleFor(className);
    if (!rule) return handles();
    // A getter of one class must not run on an object of another.
    if (rule->callsGetters && mystrcmp(className, MGetClassName(y.get())) != 0) return handles();
    return rule->compare(x.get(), y.get(), test);
}

bool CompareNodes(const CNode& a, const CNode& b, Test test) {
    if (a.GetType() != b.GetType() || a.GetDataLength() != b.GetDataLength()) return false;
    auto* data = static_cast<const unsigned char*>(a.GetData());
    if (!WellFormed(a.GetType(), data, a.GetDataLength()) ||
        !WellFormed(b.GetType(), static_cast<const unsigned char*>(b.GetData()), b.GetDataLength()))
        return ByteRule(data, b.GetData(), a.GetDataLength(), test);
    switch (a.GetType()) {
    case CNode::NodeInt:
    case CNode::NodeBool: return Relate(a.GetInt(), b.GetInt(), test);
    case CNode::NodeDouble: return Relate(a.GetDouble(), b.GetDouble(), test);
    case CNode::NodeText: {
        int order = mystrcmp(a.GetText(), b.GetText());
        return test == kEqual ? order == 0 : order < 0;
    }
    default: return CompareObjectNodes(a, b, test);
    }
}

}  // namespace

bool CNode::operator==(CNode const& other) const { return CompareNodes(*this, other, kEqual); }
bool CNode::operator!=(CNode const& other) const { return !(*this == other); }
bool CNode::operator<(CNode const& other) const { return CompareNodes(*this, other, kLess); }

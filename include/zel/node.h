// The tagged value the containers store: one integer, double, logical, text,
// byte set or object, always as a private copy of the bytes it was given.
// An object node keeps a 12-byte copy of the object handle's first words and
// holds one reference on the object for as long as it holds the copy.
// Allocation failure throws std::bad_alloc and leaves the node as it was.
#pragma once

#include <zel/zel_types.h>

class ZEL_API CNode {
public:
    enum NodeType {
        NodeNone = 0,
        NodeInt = 1,
        NodeDouble = 2,
        NodeBool = 3,
        NodeText = 4,
        NodeBin = 5,
        NodeObject = 6,
    };

    CNode();
    CNode(CNode const& other);
    virtual ~CNode();
    CNode& operator=(CNode const& other);

    NodeType GetType() const;
    int GetDataLength() const;
    void* GetData() const;
    int GetInt() const;
    int GetBool() const;
    double GetDouble() const;
    wchar_t* GetText() const;
    unsigned char* GetBin(int* length) const;
    // A new reference on the stored object, or null; the caller releases it.
    ZelObject* GetObject() const;

    void ReleaseData();
    void SetData(CNode::NodeType type, void* source, int size);
    void SetInt(int value);
    void SetDouble(double value);
    void SetBool(int value);
    void SetText(wchar_t* text);
    void SetBin(unsigned char* bytes, int count);
    void SetBin(unsigned char* block);
    void SetObject(ZelObject* object);

    bool operator==(CNode const& other) const;
    bool operator!=(CNode const& other) const;
    bool operator<(CNode const& other) const;

private:
    // Releases the old data and keeps `copy`, already allocated, as the new.
    __attribute__((visibility("hidden"))) void Store(CNode::NodeType type, unsigned char* copy, int length);

    NodeType m_type;
    int m_length;
    unsigned char* m_data;
};

static_assert(sizeof(CNode::NodeType) == 4);
static_assert(sizeof(CNode) == 16);

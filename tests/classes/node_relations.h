// For the node tests: a stand-in object of a given class record whose value
// sits at data word 0 (the node holding it at hand), and the three relations
// of two nodes at once.
#pragma once

#include <zel/node.h>

#include "common/test_object.h"

struct Boxed : TestObject {
    Boxed(tagTBaseTypeInfo* record, const void* state) : TestObject(record) { word(1, 0) = const_cast<void*>(state); }
    CNode node() {
        CNode n;
        n.SetObject(get());
        return n;
    }
};

// (a == b, a < b, b < a)
struct Relations {
    bool equal, less, greater;
    bool operator==(const Relations&) const = default;
};
inline Relations Relate(const CNode& a, const CNode& b) { return {a == b, a < b, b < a}; }
inline constexpr Relations kSame{true, false, false}, kBelow{false, true, false}, kUnrelated{false, false, false};

// Positions that hold no node, and a list destroyed with links broken from
// outside: its destructor lets no exception escape.
#include <zel/ptrlist.h>

#include <gtest/gtest.h>

#include <cstdint>

namespace {

void* P(intptr_t v) { return reinterpret_cast<void*>(v); }

TEST(PtrListEdges, NullPositionsChangeNothing) {
    PtrList list;
    list.insert(list.end(), P(1));
    EXPECT_EQ(list.insert(PtrList::iterator(), P(2)), list.end());
    EXPECT_EQ(list.erase(PtrList::iterator()), list.end());
    EXPECT_TRUE(list.size() == 1u && *list.get(0) == P(1));
}

TEST(PtrListEdges, DestructorSwallowsTheThrowOfBrokenLinks) {
    PtrList::Node* orphan = nullptr;
    {
        PtrList list;
        list.insert(list.end(), P(1));
        list.insert(list.end(), P(2));
        orphan = list.get(1).node();
        list.get(0).node()->next = nullptr;  // the walk stops after the first node
    }
    EXPECT_EQ(orphan->value, P(2)) << "the unreachable node is left alone";
    delete orphan;
}

}  // namespace

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
    PtrList::Node *first = nullptr, *second = nullptr;
    {
        PtrList list;
        list.insert(list.end(), P(1));
        list.insert(list.end(), P(2));
        first = list.get(0).node();
        second = list.get(1).node();
        first->next = nullptr;  // the walk stops at the first node
    }
    EXPECT_TRUE(first->value == P(1) && second->value == P(2)) << "nodes the walk could not pass are left alone";
    delete first;
    delete second;
}

}  // namespace

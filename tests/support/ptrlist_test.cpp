#include <zel/ptrlist.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {

void* P(intptr_t v) { return reinterpret_cast<void*>(v); }

std::vector<intptr_t> Values(PtrList& list) {
    std::vector<intptr_t> out;
    for (auto it = list.begin(); it != list.end(); ++it) out.push_back(reinterpret_cast<intptr_t>(*it));
    return out;
}

// The message thrown by call, or "" when nothing is thrown.
std::string Thrown(void (*call)(PtrList&), PtrList& list) {
    try { call(list); } catch (const char* message) { return message; }
    return "";
}

bool SameParity(void* a, void* b) { return (reinterpret_cast<intptr_t>(a) - reinterpret_cast<intptr_t>(b)) % 2 == 0; }

// Sentinels are never erased and nothing goes before the head.
TEST(PtrList, InsertsEraseAndTheSentinelsStay) {
    PtrList list(SameParity);
    EXPECT_TRUE(list.erase(list.begin()) == list.end() && list.insert(PtrList::iterator(), P(1)) == list.end());
    list.insert(list.end(), P(2));
    list.insert(list.get(0), P(1));
    list.insert(list[2], P(4));  // operator[] yields an iterator
    EXPECT_EQ(Values(list), (std::vector<intptr_t>{1, 2, 4}));
    EXPECT_TRUE(*list.find(P(8)) == P(2) && *list.rfind(P(8)) == P(4));  // first and last match
    EXPECT_EQ(*list.erase(list.get(1)), P(4));
    EXPECT_TRUE(list.erase(list.end()) == list.end() && list.erase(list.rend()) == list.end());
    EXPECT_EQ(list.insert(list.rend(), P(5)), list.end());
    EXPECT_EQ(Values(list), (std::vector<intptr_t>{1, 4}));
}

TEST(PtrList, MisuseThrowsItsMessage) {
    PtrList list;
    EXPECT_EQ(Thrown([](PtrList& l) { auto it = l.end(); ++it; }, list), "iterator out of range");
    list.insert(list.end(), P(1));
    list.insert(list.end(), P(2));
    PtrList::Node* first = list.get(0).node();
    PtrList::Node* last = list.get(1).node();
    EXPECT_TRUE(list.find(P(7)) == list.end() && list.rfind(P(7)) == list.rend());
    // Links that contradict the count.
    last->next = nullptr;
    EXPECT_EQ(Thrown([](PtrList& l) { l.rfind(P(7)); }, list), "access value of iterator end()");
    last->next = list.end().node();
    last->prev = nullptr;
    EXPECT_EQ(Thrown([](PtrList& l) { l.rfind(P(7)); }, list), "access value of iterator rend()");
    last->prev = first;
    first->next = nullptr;
    EXPECT_EQ(Thrown([](PtrList& l) { l.get(1); }, list), "iterator out of range");
    EXPECT_EQ(Thrown([](PtrList& l) { l.find(P(7)); }, list), "iterator out of range");
    first->next = last;
    EXPECT_EQ(Values(list), (std::vector<intptr_t>{1, 2}));
}

// Links broken from outside: the destructor lets no exception escape.
TEST(PtrList, DestructorSwallowsTheThrowOfBrokenLinks) {
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

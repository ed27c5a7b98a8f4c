// A doubly linked list of untyped pointers between two sentinel nodes held in
// the list itself. Iterators are plain node handles; misuse of an iterator
// throws one of three constant narrow messages ("iterator out of range",
// "access value of iterator rend()", "access value of iterator end()").
// The list never owns what its elements point to.
#pragma once

#include <cstddef>

#include <zel/zel_types.h>

class ZEL_API PtrList {
public:
    // (searched value, element value): true when they match.
    typedef bool (*EqualFn)(void*, void*);

    struct Node {
        Node* prev;   // null only in the head sentinel
        Node* next;   // null only in the end sentinel
        void* value;
    };

    class iterator {
    public:
        iterator(Node* node = nullptr) : m_node(node) {}
        Node* node() const { return m_node; }
        void*& operator*() const { return m_node->value; }
        iterator& operator++() {
            if (!m_node->next) throw "iterator out of range";
            m_node = m_node->next;
            return *this;
        }
        iterator& operator--() {
            if (!m_node->prev) throw "iterator out of range";
            m_node = m_node->prev;
            return *this;
        }
        bool operator==(const iterator& other) const { return m_node == other.m_node; }
        bool operator!=(const iterator& other) const { return m_node != other.m_node; }

    private:
        Node* m_node;
    };

    explicit PtrList(EqualFn equal = nullptr);
    virtual ~PtrList();
    PtrList(const PtrList&) = delete;
    PtrList& operator=(const PtrList&) = delete;

    iterator begin() { return iterator(m_head.next); }
    iterator end() { return iterator(&m_end); }
    iterator rend() { return iterator(&m_head); }
    unsigned int size() const { return m_count; }

    iterator insert(PtrList::iterator pos, void* value);
    iterator erase(PtrList::iterator pos);
    void clear();
    iterator get(unsigned int index);
    iterator operator[](unsigned int index);
    iterator find(void* value) const;
    iterator rfind(void* value) const;

private:
    Node m_head;
    Node m_end;
    unsigned int m_count;
    EqualFn m_equal;
};

static_assert(sizeof(PtrList::Node) == 12);
static_assert(sizeof(PtrList::iterator) == sizeof(void*));
static_assert(sizeof(PtrList) == 36);
